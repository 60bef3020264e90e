// SSE2: the 128-bit vocabulary, with the verbs that it has to put together.
#pragma once

#include "simd/vectors128.h"

#include "simd/pixels128.h"

namespace {

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

// The low three bytes of every lane, pushed together: 12 bytes, zeros behind them.
//   p0 p0 p0 .. p1 p1 p1 .. | p2 p2 p2 .. p3 p3 p3 ..     per 64 bits: six bytes
//   p0 p0 p0 p1 p1 p1 .. .. | p2 p2 p2 p3 p3 p3 .. ..     the upper six move down by two
inline __m128i pack24(__m128i x)
{
    const __m128i first = _mm_and_si128(x, _mm_set1_epi64x(0x0000000000FFFFFF));
    const __m128i second = _mm_and_si128(_mm_srli_epi64(x, 8), _mm_set1_epi64x(0x0000FFFFFF000000));
    const __m128i sixes = _mm_or_si128(first, second);
    return _mm_or_si128(_mm_move_epi64(sixes), _mm_slli_si128(_mm_srli_si128(sixes, 8), 6));
}

// One 3-byte sample per lane, in its top three bytes, a zero byte below. Reads 3 bytes a lane, no more.
inline i32s loadTop24(const uint8_t *from)
{
    const __m128i low = _mm_loadl_epi64((const __m128i *)from);
    const __m128i high = _mm_srli_epi64(_mm_loadl_epi64((const __m128i *)(from + 4)), 16);
    const __m128i pairs = _mm_unpacklo_epi64(low, high);
    const __m128i first = _mm_and_si128(_mm_slli_epi64(pairs, 8), _mm_set1_epi64x(0x00000000FFFFFF00));
    const __m128i second = _mm_and_si128(_mm_slli_epi64(pairs, 16), _mm_set1_epi64x((long long)0xFFFFFF0000000000));
    return {_mm_or_si128(first, second)};
}

// 1 or -1 with the sign of x; 0 or 1 where x is 0.
inline i16s unitWithSignOf(i16s x) { return {_mm_or_si128(_mm_srai_epi16(x.v, 15), _mm_set1_epi16(1))}; }

// A register of pixels as 12 bytes of packed 3-byte pixels.
inline void storePixels24(uint8_t *to, u32s x) { store12(to, pack24(x.v)); }

// 4 registers of pixels as packed 3-byte pixels: 12 bytes a register.
inline void storePixels24(uint8_t *to, u32s a, u32s b, u32s c, u32s d)
{
    store48(to, pack24(a.v), pack24(b.v), pack24(c.v), pack24(d.v));
}

} // namespace
