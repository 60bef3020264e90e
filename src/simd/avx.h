// AVX: 256-bit registers of doubles, the names of vectors128.h. Integers have 128 bits before AVX2, so this is the part
// of the vocabulary that works on doubles alone; the loops of loops.h need all of it.
#pragma once

#include "simd/ends.h"

#include <immintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace {

struct f64s {
    static constexpr int lanes = 4;
    __m256d v;
};

template <class Vector> inline Vector load(const void *from);
template <> inline f64s load<f64s>(const void *from) { return {_mm256_loadu_pd((const double *)from)}; }

inline f64s splatF64(double x) { return {_mm256_set1_pd(x)}; }

inline f64s operator+(f64s a, f64s b) { return {_mm256_add_pd(a.v, b.v)}; }
inline f64s operator*(f64s a, f64s b) { return {_mm256_mul_pd(a.v, b.v)}; }

// The lanes of each added up by halves, times a factor.
inline void storeSums(double *to, f64s a, f64s b, f64s c, f64s d, double factor)
{
    const __m256d ac = _mm256_add_pd(_mm256_permute2f128_pd(a.v, c.v, 0x20), _mm256_permute2f128_pd(a.v, c.v, 0x31));
    const __m256d bd = _mm256_add_pd(_mm256_permute2f128_pd(b.v, d.v, 0x20), _mm256_permute2f128_pd(b.v, d.v, 0x31));
    const __m256d abcd = _mm256_add_pd(_mm256_unpacklo_pd(ac, bd), _mm256_unpackhi_pd(ac, bd));
    _mm256_storeu_pd(to, _mm256_mul_pd(abcd, _mm256_set1_pd(factor)));
}

} // namespace
