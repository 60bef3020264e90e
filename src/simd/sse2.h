// The vector vocabulary on SSE2: 128-bit registers. A kernel text spells these names and never a width.
//
// Vectors hold elements in memory order: lane 0 is the element at the lowest address.
#pragma once

#include "simd/ends.h"

#include <emmintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace {

// One register each: 8-bit, 16-bit and 32-bit unsigned lanes.
struct u8s {
    static constexpr int lanes = 16;
    __m128i v;
};
struct u16s {
    static constexpr int lanes = 8;
    __m128i v;
};
struct u32s {
    static constexpr int lanes = 4;
    __m128i v;
};

template <class Vector> inline Vector load(const void *from) { return {_mm_loadu_si128((const __m128i *)from)}; }
template <class Vector> inline void store(void *to, Vector x) { _mm_storeu_si128((__m128i *)to, x.v); }

// A run of n bytes, fewer than a register holds, as its first and its last bytes: see ends.h.
inline u8s loadEnds(const uint8_t *from, ptrdiff_t n) { return {loadEnds16(from, n)}; }
inline void storeEnds(uint8_t *to, u8s x, ptrdiff_t n) { storeEnds16(to, x.v, n); }

// The same bits under another type.
template <class To, class From> inline To as(From x) { return {x.v}; }

inline u8s splat8(uint8_t x) { return {_mm_set1_epi8((char)x)}; }
inline u16s splat16(uint16_t x) { return {_mm_set1_epi16((short)x)}; }
inline u32s splat32(uint32_t x) { return {_mm_set1_epi32((int)x)}; }

template <class Vector> inline Vector operator&(Vector a, Vector b) { return {_mm_and_si128(a.v, b.v)}; }
template <class Vector> inline Vector operator|(Vector a, Vector b) { return {_mm_or_si128(a.v, b.v)}; }

// Where mask's bits are set a, elsewhere b.
template <class Vector> inline Vector select(Vector mask, Vector a, Vector b)
{
    return {_mm_or_si128(_mm_and_si128(mask.v, a.v), _mm_andnot_si128(mask.v, b.v))};
}

inline u16s operator+(u16s a, u16s b) { return {_mm_add_epi16(a.v, b.v)}; }
// An addition: more units of a processor add than shift.
inline u16s twice(u16s a) { return a + a; }
template <int bits> inline u16s shiftRight(u16s a) { return {_mm_srli_epi16(a.v, bits)}; }
template <int bits> inline u32s shiftLeft(u32s a) { return {_mm_slli_epi32(a.v, bits)}; }
template <int bits> inline u32s shiftRight(u32s a) { return {_mm_srli_epi32(a.v, bits)}; }

// a + b and a - b, limited to 0..255.
inline u8s addLimited(u8s a, u8s b) { return {_mm_adds_epu8(a.v, b.v)}; }
inline u8s subtractLimited(u8s a, u8s b) { return {_mm_subs_epu8(a.v, b.v)}; }

// a >> 1
inline u8s half(u8s a) { return {_mm_and_si128(_mm_srli_epi16(a.v, 1), _mm_set1_epi8(0x7F))}; }

// (a + b + 1) >> 1
inline u8s average(u8s a, u8s b) { return {_mm_avg_epu8(a.v, b.v)}; }

// a0 b0 a1 b1 ...: the first and the second half of the interleaved sequence.
inline u16s interleaveLow(u16s a, u16s b) { return {_mm_unpacklo_epi16(a.v, b.v)}; }
inline u16s interleaveHigh(u16s a, u16s b) { return {_mm_unpackhi_epi16(a.v, b.v)}; }
inline u32s interleaveLow(u32s a, u32s b) { return {_mm_unpacklo_epi32(a.v, b.v)}; }
inline u32s interleaveHigh(u32s a, u32s b) { return {_mm_unpackhi_epi32(a.v, b.v)}; }

// The even and the odd lanes of a followed by b.
inline u32s evens(u32s a, u32s b)
{
    return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v), _MM_SHUFFLE(2, 0, 2, 0)))};
}
inline u32s odds(u32s a, u32s b)
{
    return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v), _MM_SHUFFLE(3, 1, 3, 1)))};
}

// The lower and the upper half of x, zero-extended.
inline u16s widenLow(u8s x) { return {_mm_unpacklo_epi8(x.v, _mm_setzero_si128())}; }
inline u16s widenHigh(u8s x) { return {_mm_unpackhi_epi8(x.v, _mm_setzero_si128())}; }

// low then high, limited to 255. Lanes are at most 32767.
inline u8s narrow(u16s low, u16s high) { return {_mm_packus_epi16(low.v, high.v)}; }

// One 3-byte pixel per lane, its top byte 0. Reads 3 bytes a lane, no more.
//   bytes 0-7   p0 p0 p0 p1 p1 p1 ..             as is
//   bytes 4-11  .. .. p2 p2 p2 p3 p3 p3          shifted down by two bytes
inline u32s loadPixels24(const uint8_t *from)
{
    const __m128i low = _mm_loadl_epi64((const __m128i *)from);
    const __m128i high = _mm_srli_epi64(_mm_loadl_epi64((const __m128i *)(from + 4)), 16);
    const __m128i pairs = _mm_unpacklo_epi64(low, high);
    const __m128i first = _mm_and_si128(pairs, _mm_set1_epi64x(0x0000000000FFFFFF));
    const __m128i second = _mm_and_si128(_mm_slli_epi64(pairs, 8), _mm_set1_epi64x(0x00FFFFFF00000000));
    return {_mm_or_si128(first, second)};
}

} // namespace
