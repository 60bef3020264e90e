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

// a0 b0 c0 d0 a1 b1 ...
inline void storeInterleaved(double *to, f64s a, f64s b, f64s c, f64s d)
{
    const __m256d abEven = _mm256_unpacklo_pd(a.v, b.v); // a0 b0 a2 b2
    const __m256d abOdd = _mm256_unpackhi_pd(a.v, b.v);
    const __m256d cdEven = _mm256_unpacklo_pd(c.v, d.v);
    const __m256d cdOdd = _mm256_unpackhi_pd(c.v, d.v);
    _mm256_storeu_pd(to, _mm256_permute2f128_pd(abEven, cdEven, 0x20));
    _mm256_storeu_pd(to + 4, _mm256_permute2f128_pd(abOdd, cdOdd, 0x20));
    _mm256_storeu_pd(to + 8, _mm256_permute2f128_pd(abEven, cdEven, 0x31));
    _mm256_storeu_pd(to + 12, _mm256_permute2f128_pd(abOdd, cdOdd, 0x31));
}

} // namespace
