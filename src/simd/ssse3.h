// SSSE3: the 128-bit vocabulary with byte shuffles.
#pragma once

#include "simd/vectors128.h"

#include "simd/pixels128.h"

#include <tmmintrin.h>

namespace {

// One 3-byte pixel per lane, its top byte 0. Reads 3 bytes a lane, no more.
inline u32s loadPixels24(const uint8_t *from)
{
    const __m128i first8 = _mm_loadl_epi64((const __m128i *)from);
    const __m128i last4 = _mm_cvtsi32_si128(loadPiece<int>(from + 8));
    const __m128i spread = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
    return {_mm_shuffle_epi8(_mm_unpacklo_epi64(first8, last4), spread)};
}

// The low three bytes of every lane, pushed together: 12 bytes, zeros behind them.
inline __m128i pack24(__m128i x)
{
    return _mm_shuffle_epi8(x, _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
}

// One 3-byte sample per lane, in its top three bytes, a zero byte below. Reads 3 bytes a lane, no more.
inline i32s loadTop24(const uint8_t *from) { return shiftLeft<8>(as<i32s>(loadPixels24(from))); }

// 1 or -1 with the sign of x; 0 or 1 where x is 0.
inline i16s unitWithSignOf(i16s x) { return {_mm_sign_epi16(_mm_set1_epi16(1), x.v)}; }

// A register of pixels as 12 bytes of packed 3-byte pixels.
inline void storePixels24(uint8_t *to, u32s x) { store12(to, pack24(x.v)); }

// 4 registers of pixels as packed 3-byte pixels: 12 bytes a register.
inline void storePixels24(uint8_t *to, u32s a, u32s b, u32s c, u32s d)
{
    store48(to, pack24(a.v), pack24(b.v), pack24(c.v), pack24(d.v));
}

} // namespace
