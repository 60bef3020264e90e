// The vector vocabulary on AVX2: 256-bit registers, the names of sse2.h.
//
// Most byte and word instructions of AVX2 work on two 128-bit halves apart. Verbs that promise memory order mend
// that with a permutation; WideBytes leaves it as it is, since narrow() undoes it.
#pragma once

#include "simd/ends.h"

#include <immintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace {

struct u8s {
    static constexpr int lanes = 32;
    __m256i v;
};
struct u16s {
    static constexpr int lanes = 16;
    __m256i v;
};
struct u32s {
    static constexpr int lanes = 8;
    __m256i v;
};

// Signed 16-bit values for every byte of a u8s, in an order of the instruction set's own; narrow() restores the
// bytes' order.
struct WideBytes {
    __m256i first;
    __m256i second;
};

template <class Vector> inline Vector load(const void *from) { return {_mm256_loadu_si256((const __m256i *)from)}; }
template <class Vector> inline void store(void *to, Vector x) { _mm256_storeu_si256((__m256i *)to, x.v); }

// A run of n bytes as its first and its last bytes, as in ends.h; from 16 bytes on in the two halves.
inline u8s loadEnds(const uint8_t *from, ptrdiff_t n)
{
    if (n < 16)
        return {_mm256_castsi128_si256(loadEnds16(from, n))};
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)from)),
                                    _mm_loadu_si128((const __m128i *)(from + n - 16)), 1)};
}
inline void storeEnds(uint8_t *to, u8s x, ptrdiff_t n)
{
    const __m128i first = _mm256_castsi256_si128(x.v);
    if (n < 16) {
        storeEnds16(to, first, n);
        return;
    }
    _mm_storeu_si128((__m128i *)to, first);
    _mm_storeu_si128((__m128i *)(to + n - 16), _mm256_extracti128_si256(x.v, 1));
}

template <class To, class From> inline To as(From x) { return {x.v}; }

inline u8s splat8(uint8_t x) { return {_mm256_set1_epi8((char)x)}; }
inline u16s splat16(uint16_t x) { return {_mm256_set1_epi16((short)x)}; }
inline u32s splat32(uint32_t x) { return {_mm256_set1_epi32((int)x)}; }

template <class Vector> inline Vector operator&(Vector a, Vector b) { return {_mm256_and_si256(a.v, b.v)}; }
template <class Vector> inline Vector operator|(Vector a, Vector b) { return {_mm256_or_si256(a.v, b.v)}; }
template <class Vector> inline Vector select(Vector mask, Vector a, Vector b)
{
    return {_mm256_or_si256(_mm256_and_si256(mask.v, a.v), _mm256_andnot_si256(mask.v, b.v))};
}

inline u16s operator+(u16s a, u16s b) { return {_mm256_add_epi16(a.v, b.v)}; }
inline u16s twice(u16s a) { return a + a; }
template <int bits> inline u16s shiftRight(u16s a) { return {_mm256_srli_epi16(a.v, bits)}; }
template <int bits> inline u32s shiftLeft(u32s a) { return {_mm256_slli_epi32(a.v, bits)}; }
template <int bits> inline u32s shiftRight(u32s a) { return {_mm256_srli_epi32(a.v, bits)}; }

inline u8s addLimited(u8s a, u8s b) { return {_mm256_adds_epu8(a.v, b.v)}; }
inline u8s subtractLimited(u8s a, u8s b) { return {_mm256_subs_epu8(a.v, b.v)}; }
inline u8s half(u8s a) { return {_mm256_and_si256(_mm256_srli_epi16(a.v, 1), _mm256_set1_epi8(0x7F))}; }
inline u8s average(u8s a, u8s b) { return {_mm256_avg_epu8(a.v, b.v)}; }

// The lower halves of two registers, and the upper halves.
inline __m256i lowerHalves(__m256i a, __m256i b) { return _mm256_permute2x128_si256(a, b, 0x20); }
inline __m256i upperHalves(__m256i a, __m256i b) { return _mm256_permute2x128_si256(a, b, 0x31); }

inline u16s interleaveLow(u16s a, u16s b)
{
    return {lowerHalves(_mm256_unpacklo_epi16(a.v, b.v), _mm256_unpackhi_epi16(a.v, b.v))};
}
inline u16s interleaveHigh(u16s a, u16s b)
{
    return {upperHalves(_mm256_unpacklo_epi16(a.v, b.v), _mm256_unpackhi_epi16(a.v, b.v))};
}
inline u32s interleaveLow(u32s a, u32s b)
{
    return {lowerHalves(_mm256_unpacklo_epi32(a.v, b.v), _mm256_unpackhi_epi32(a.v, b.v))};
}
inline u32s interleaveHigh(u32s a, u32s b)
{
    return {upperHalves(_mm256_unpacklo_epi32(a.v, b.v), _mm256_unpackhi_epi32(a.v, b.v))};
}

// From 64-bit quarters a0 b0 a1 b1 to a0 a1 b0 b1: memory order after an instruction that took a and b by halves.
inline __m256i unmix(__m256i x) { return _mm256_permute4x64_epi64(x, _MM_SHUFFLE(3, 1, 2, 0)); }

inline u32s evens(u32s a, u32s b)
{
    return {unmix(_mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a.v), _mm256_castsi256_ps(b.v), _MM_SHUFFLE(2, 0, 2, 0))))};
}
inline u32s odds(u32s a, u32s b)
{
    return {unmix(_mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a.v), _mm256_castsi256_ps(b.v), _MM_SHUFFLE(3, 1, 3, 1))))};
}

inline u16s widenLow(u8s x) { return {_mm256_cvtepu8_epi16(_mm256_castsi256_si128(x.v))}; }
inline u16s widenHigh(u8s x) { return {_mm256_cvtepu8_epi16(_mm256_extracti128_si256(x.v, 1))}; }
inline u8s narrow(u16s low, u16s high) { return {unmix(_mm256_packus_epi16(low.v, high.v))}; }

// weightA*a + weightB*b per byte; the sum must fit 16 bits. One multiply-add does both products: a and b interleaved,
// the weights alternating.
template <int8_t weightA, int8_t weightB> inline WideBytes weightedSum(u8s a, u8s b)
{
    const __m256i weights = _mm256_set1_epi16((short)((uint8_t)weightA | (uint8_t)weightB << 8));
    return {_mm256_maddubs_epi16(_mm256_unpacklo_epi8(a.v, b.v), weights),
            _mm256_maddubs_epi16(_mm256_unpackhi_epi8(a.v, b.v), weights)};
}

// (x + rounding) >> bits, arithmetic.
template <int bits> inline WideBytes shiftRightRounded(WideBytes x)
{
    const __m256i rounding = _mm256_set1_epi16(1 << (bits - 1));
    return {_mm256_srai_epi16(_mm256_add_epi16(x.first, rounding), bits),
            _mm256_srai_epi16(_mm256_add_epi16(x.second, rounding), bits)};
}

// Limited to 0..255, in the order of the bytes that x came from.
inline u8s narrow(WideBytes x) { return {_mm256_packus_epi16(x.first, x.second)}; }

// Bytes 0-15 hold the pixels of the lower half, bytes 8-23 those of the upper half behind four other bytes.
inline u32s loadPixels24(const uint8_t *from)
{
    const __m256i bytes = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)from)),
                                                  _mm_loadu_si128((const __m128i *)(from + 8)), 1);
    const __m256i spread = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, //
                                            4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1);
    return {_mm256_shuffle_epi8(bytes, spread)};
}

} // namespace
