// Runs that are shorter than a register, on the 128 bits that every instruction set has.
#pragma once

#include <emmintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace {

template <class Piece> inline Piece loadPiece(const uint8_t *from)
{
    Piece piece;
    memcpy(&piece, from, sizeof(piece));
    return piece;
}

// A run of n bytes, fewer than a register holds, as its first and its last bytes: the longest power of two that fits,
// taken at both ends. Lane by lane work needs no more, and a store of both ends puts the run back together.
inline __m128i loadEnds16(const uint8_t *from, ptrdiff_t n)
{
    if (n >= 8)
        return _mm_unpacklo_epi64(_mm_loadl_epi64((const __m128i *)from),
                                  _mm_loadl_epi64((const __m128i *)(from + n - 8)));
    if (n >= 4)
        return _mm_unpacklo_epi32(_mm_cvtsi32_si128(loadPiece<int>(from)),
                                  _mm_cvtsi32_si128(loadPiece<int>(from + n - 4)));
    if (n >= 2)
        return _mm_unpacklo_epi16(_mm_cvtsi32_si128(loadPiece<uint16_t>(from)),
                                  _mm_cvtsi32_si128(loadPiece<uint16_t>(from + n - 2)));
    return _mm_cvtsi32_si128(*from);
}
inline void storeEnds16(uint8_t *to, __m128i x, ptrdiff_t n)
{
    const __m128i second = _mm_srli_si128(x, 8);
    if (n >= 8) {
        _mm_storel_epi64((__m128i *)to, x);
        _mm_storel_epi64((__m128i *)(to + n - 8), second);
        return;
    }
    const uint64_t ends = (uint64_t)_mm_cvtsi128_si64(x);
    if (n >= 4) {
        memcpy(to, &ends, 4);
        const uint32_t last = (uint32_t)(ends >> 32);
        memcpy(to + n - 4, &last, 4);
    } else if (n >= 2) {
        memcpy(to, &ends, 2);
        const uint16_t last = (uint16_t)(ends >> 16);
        memcpy(to + n - 2, &last, 2);
    } else {
        *to = (uint8_t)ends;
    }
}

// n bytes, 1 to 15; a load leaves zeros behind them.
inline __m128i loadFew(const uint8_t *from, ptrdiff_t n)
{
    if (n >= 8) {
        const __m128i last = _mm_loadl_epi64((const __m128i *)(from + n - 8));
        const __m128i behind8 = _mm_srl_epi64(last, _mm_cvtsi32_si128((int)(8 * (16 - n)))); // 64 bits at n = 8: 0
        return _mm_unpacklo_epi64(_mm_loadl_epi64((const __m128i *)from), behind8);
    }
    uint64_t bytes = 0;
    if (n >= 4) {
        bytes = loadPiece<uint32_t>(from) | (uint64_t)loadPiece<uint32_t>(from + n - 4) << (8 * (n - 4));
    } else {
        bytes = from[0];
        bytes |= (uint64_t)from[n / 2] << (8 * (n / 2)); // n = 1: the same byte again
        bytes |= (uint64_t)from[n - 1] << (8 * (n - 1));
    }
    return _mm_cvtsi64_si128((long long)bytes);
}

inline void storeFew(uint8_t *to, __m128i x, ptrdiff_t n)
{
    if (n & 8) {
        _mm_storel_epi64((__m128i *)to, x);
        x = _mm_srli_si128(x, 8);
        to += 8;
    }
    uint64_t bytes = (uint64_t)_mm_cvtsi128_si64(x);
    if (n & 4) {
        memcpy(to, &bytes, 4);
        bytes >>= 32;
        to += 4;
    }
    if (n & 2) {
        memcpy(to, &bytes, 2);
        bytes >>= 16;
        to += 2;
    }
    if (n & 1)
        *to = (uint8_t)bytes;
}

// Four floats to any address.
inline void storeFour(uint8_t *to, float a, float b, float c, float d)
{
    _mm_storeu_ps((float *)to, _mm_setr_ps(a, b, c, d));
}

// The first element, of 4 or 8 bytes.
template <int bytes> inline void storeOne16(void *to, __m128i x)
{
    if constexpr (bytes == 4) {
        const int one = _mm_cvtsi128_si32(x);
        memcpy(to, &one, sizeof(one));
    } else {
        static_assert(bytes == 8);
        _mm_storel_epi64((__m128i *)to, x);
    }
}

} // namespace
