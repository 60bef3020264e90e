// 4-vectors: a register each, on every tier.
#pragma once

#include "matrix/kernels/matrices.h"

namespace {

// (x0 + x2) + (x1 + x3), in lane 0.
inline __m128 sumOfFour(__m128 x)
{
    const __m128 two = _mm_add_ps(x, _mm_movehl_ps(x, x));
    return _mm_add_ss(two, _mm_shuffle_ps(two, two, 1));
}

inline __m128 components(const VcbVec4 *a) { return _mm_load_ps(a->v); }
inline VcbVec4 *writeVector(VcbVec4 *out, __m128 x)
{
    _mm_store_ps(out->v, x);
    return out;
}

float VecDot(const VcbVec4 *a, const VcbVec4 *b)
{
    return _mm_cvtss_f32(sumOfFour(_mm_mul_ps(components(a), components(b))));
}

float VecLength(const VcbVec4 *a)
{
    return _mm_cvtss_f32(_mm_sqrt_ss(sumOfFour(_mm_mul_ps(components(a), components(a)))));
}

VcbVec4 *VecScale(VcbVec4 *out, const VcbVec4 *a, float s)
{
    return writeVector(out, _mm_mul_ps(components(a), _mm_set1_ps(s)));
}

VcbVec4 *VecDivide(VcbVec4 *out, const VcbVec4 *a, float s)
{
    return writeVector(out, _mm_mul_ps(components(a), divisionFactor(s)));
}

VcbVec4 *VecAdd(VcbVec4 *out, const VcbVec4 *a, const VcbVec4 *b)
{
    return writeVector(out, _mm_add_ps(components(a), components(b)));
}

VcbVec4 *VecSub(VcbVec4 *out, const VcbVec4 *a, const VcbVec4 *b)
{
    return writeVector(out, _mm_sub_ps(components(a), components(b)));
}

// Not "at most": a NaN counts as equal.
int32_t VecNearlyEqual(const VcbVec4 *a, const VcbVec4 *b)
{
    const __m128 differences = _mm_andnot_ps(_mm_set1_ps(-0.0f), _mm_sub_ps(components(a), components(b)));
    return !(_mm_cvtss_f32(sumOfFour(differences)) > 0x1p-23f);
}

} // namespace
