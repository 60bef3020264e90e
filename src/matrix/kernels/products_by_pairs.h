// Products of 4x4 matrices on 256-bit registers, two rows at a time: half the arithmetic of products.h.
#pragma once

#include <vela/matrix.h>

namespace {

inline __m256 twice(const float *row) { return _mm256_broadcast_ps((const __m128 *)row); }

// All of b is in registers, and two rows of a, before these are written: out may be either.
VcbMat4 *MatMultiply(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    const __m256 b0 = twice(b->m[0]);
    const __m256 b1 = twice(b->m[1]);
    const __m256 b2 = twice(b->m[2]);
    const __m256 b3 = twice(b->m[3]);
#pragma GCC unroll 2
    for (int i = 0; i < 4; i += 2) {
        const __m256 rows = _mm256_loadu_ps(a->m[i]);
        const __m256 first = _mm256_add_ps(_mm256_mul_ps(_mm256_permute_ps(rows, 0x00), b0),
                                           _mm256_mul_ps(_mm256_permute_ps(rows, 0x55), b1));
        const __m256 second = _mm256_add_ps(_mm256_mul_ps(_mm256_permute_ps(rows, 0xAA), b2),
                                            _mm256_mul_ps(_mm256_permute_ps(rows, 0xFF), b3));
        _mm256_storeu_ps(out->m[i], _mm256_add_ps(first, second));
    }
    return out;
}

// r0a is the sum of the first two products of row 0, r0b that of the other two.
//   r0a r0b r2a r2b | r1a r1b r3a r3b     neighbours added up
//   r0  r2  r1  r3                        and these
VcbVec4 *MatTransformVec(VcbVec4 *out, const VcbMat4 *m, const VcbVec4 *v)
{
    const __m256 column = twice(v->v);
    const __m256 upper = _mm256_mul_ps(_mm256_loadu_ps(m->m[0]), column);
    const __m256 lower = _mm256_mul_ps(_mm256_loadu_ps(m->m[2]), column);
    const __m256 halves = _mm256_add_ps(_mm256_shuffle_ps(upper, lower, _MM_SHUFFLE(2, 0, 2, 0)),
                                        _mm256_shuffle_ps(upper, lower, _MM_SHUFFLE(3, 1, 3, 1)));
    const __m128 even = _mm256_castps256_ps128(halves);
    const __m128 odd = _mm256_extractf128_ps(halves, 1);
    const __m128 rows = _mm_add_ps(_mm_shuffle_ps(even, odd, _MM_SHUFFLE(2, 0, 2, 0)),
                                   _mm_shuffle_ps(even, odd, _MM_SHUFFLE(3, 1, 3, 1)));
    _mm_store_ps(out->v, _mm_permute_ps(rows, _MM_SHUFFLE(3, 1, 2, 0)));
    return out;
}

} // namespace
