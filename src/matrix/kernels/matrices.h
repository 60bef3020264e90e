// 4x4 matrices, element by element. Rows are 16 bytes at multiples of 16: a register each, on every tier.
#pragma once

#include <vela/matrix.h>

namespace {

inline __m128 rowOf(const VcbMat4 *a, int i) { return _mm_load_ps(a->m[i]); }

// Row i of the identity.
inline __m128 identityRow(int i)
{
    return _mm_castsi128_ps(_mm_and_si128(_mm_cmpeq_epi32(_mm_setr_epi32(0, 1, 2, 3), _mm_set1_epi32(i)),
                                          _mm_castps_si128(_mm_set1_ps(1))));
}

// Writes op(0) to op(3) as rows. op(i) may read row i of what out is.
template <class Op> inline VcbMat4 *writeRows(VcbMat4 *out, Op op)
{
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i)
        _mm_store_ps(out->m[i], op(i));
    return out;
}

// Whether difference(i) is less than 2^-23 in every lane of every row. All are looked at: a jump a row costs more.
template <class Difference> inline int32_t allBelowThreshold(Difference difference)
{
    const __m128 threshold = _mm_set1_ps(0x1p-23f);
    const __m128 upper = _mm_and_ps(_mm_cmplt_ps(difference(0), threshold), _mm_cmplt_ps(difference(1), threshold));
    const __m128 lower = _mm_and_ps(_mm_cmplt_ps(difference(2), threshold), _mm_cmplt_ps(difference(3), threshold));
    return _mm_movemask_ps(_mm_and_ps(upper, lower)) == 15;
}

// 1 / s in every lane, or s itself where it is next to nothing. Hardly ever it is: a jump, and the quotient waits for
// nothing.
inline __m128 divisionFactor(float s) { return _mm_set1_ps(__builtin_fabsf(s) >= 0x1p-23f ? 1 / s : s); }

VcbMat4 *MatIdentity(VcbMat4 *m) { return writeRows(m, identityRow); }

int32_t MatIsIdentity(const VcbMat4 *m)
{
    return allBelowThreshold([m](int i) { return _mm_sub_ps(identityRow(i), rowOf(m, i)); });
}

// a0 a1 a2 a3        a0 b0 a1 b1        a0 b0 c0 d0
// b0 b1 b2 b3        a2 b2 a3 b3        a1 b1 c1 d1
// c0 c1 c2 c3   ->   c0 d0 c1 d1   ->   a2 b2 c2 d2
// d0 d1 d2 d3        c2 d2 c3 d3        a3 b3 c3 d3
VcbMat4 *MatTranspose(VcbMat4 *m)
{
    const __m128 abLow = _mm_unpacklo_ps(rowOf(m, 0), rowOf(m, 1));
    const __m128 abHigh = _mm_unpackhi_ps(rowOf(m, 0), rowOf(m, 1));
    const __m128 cdLow = _mm_unpacklo_ps(rowOf(m, 2), rowOf(m, 3));
    const __m128 cdHigh = _mm_unpackhi_ps(rowOf(m, 2), rowOf(m, 3));
    _mm_store_ps(m->m[0], _mm_movelh_ps(abLow, cdLow));
    _mm_store_ps(m->m[1], _mm_movehl_ps(cdLow, abLow));
    _mm_store_ps(m->m[2], _mm_movelh_ps(abHigh, cdHigh));
    _mm_store_ps(m->m[3], _mm_movehl_ps(cdHigh, abHigh));
    return m;
}

VcbMat4 *MatAdd(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    return writeRows(out, [=](int i) { return _mm_add_ps(rowOf(a, i), rowOf(b, i)); });
}

VcbMat4 *MatSub(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    return writeRows(out, [=](int i) { return _mm_sub_ps(rowOf(a, i), rowOf(b, i)); });
}

int32_t MatNearlyEqual(const VcbMat4 *a, const VcbMat4 *b)
{
    return allBelowThreshold([=](int i) { return _mm_sub_ps(rowOf(b, i), rowOf(a, i)); });
}

VcbMat4 *MatScale(VcbMat4 *out, const VcbMat4 *a, float s)
{
    return writeRows(out, [a, factor = _mm_set1_ps(s)](int i) { return _mm_mul_ps(rowOf(a, i), factor); });
}

VcbMat4 *MatDivide(VcbMat4 *out, const VcbMat4 *a, float s)
{
    return writeRows(out, [a, factor = divisionFactor(s)](int i) { return _mm_mul_ps(rowOf(a, i), factor); });
}

} // namespace
