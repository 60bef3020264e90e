// Products of 4x4 matrices, a row at a time.
#pragma once

#include <vela/matrix.h>

namespace {

// Lane j of x in every lane. The integer instruction needs no copy of x, which SSE's own would overwrite.
template <int j> inline __m128 everyLane(__m128 x)
{
    return _mm_castsi128_ps(_mm_shuffle_epi32(_mm_castps_si128(x), _MM_SHUFFLE(j, j, j, j)));
}

// All of b is in registers, and a row of a, before the row is written: out may be either.
VcbMat4 *MatMultiply(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    const __m128 b0 = _mm_load_ps(b->m[0]);
    const __m128 b1 = _mm_load_ps(b->m[1]);
    const __m128 b2 = _mm_load_ps(b->m[2]);
    const __m128 b3 = _mm_load_ps(b->m[3]);
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        const __m128 row = _mm_load_ps(a->m[i]);
        const __m128 first = _mm_add_ps(_mm_mul_ps(everyLane<0>(row), b0), _mm_mul_ps(everyLane<1>(row), b1));
        const __m128 second = _mm_add_ps(_mm_mul_ps(everyLane<2>(row), b2), _mm_mul_ps(everyLane<3>(row), b3));
        _mm_store_ps(out->m[i], _mm_add_ps(first, second));
    }
    return out;
}

// a0+a1 a2+a3 b0+b1 b2+b3
inline __m128 addNeighbours(__m128 a, __m128 b)
{
    return _mm_add_ps(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)), _mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)));
}

VcbVec4 *MatTransformVec(VcbVec4 *out, const VcbMat4 *m, const VcbVec4 *v)
{
    const __m128 column = _mm_load_ps(v->v);
    const auto products = [=](int i) { return _mm_mul_ps(_mm_load_ps(m->m[i]), column); };
    const __m128 upper = addNeighbours(products(0), products(1));
    const __m128 lower = addNeighbours(products(2), products(3));
    _mm_store_ps(out->v, addNeighbours(upper, lower));
    return out;
}

} // namespace
