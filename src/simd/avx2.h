// The vector vocabulary on AVX2: 256-bit registers, the names of vectors128.h.
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

// One register each, by lane: unsigned and signed integers, floats. Masks have all bits of a lane set or none and the
// type of what was compared.
struct u8s {
    static constexpr int lanes = 32;
    __m256i v;
};
struct i8s {
    static constexpr int lanes = 32;
    __m256i v;
};
struct u16s {
    static constexpr int lanes = 16;
    __m256i v;
};
struct i16s {
    static constexpr int lanes = 16;
    __m256i v;
};
struct u32s {
    static constexpr int lanes = 8;
    __m256i v;
};
struct i32s {
    static constexpr int lanes = 8;
    __m256i v;
};
struct u64s {
    static constexpr int lanes = 4;
    __m256i v;
};
struct f32s {
    static constexpr int lanes = 8;
    __m256 v;
};
struct f64s {
    static constexpr int lanes = 4;
    __m256d v;
};

// Two registers of wider elements for one of narrower ones, in memory order.
template <class Vector> struct Pair {
    Vector low;
    Vector high;
};

// Signed 16-bit values for every byte of a u8s, in an order of the instruction set's own; narrow() restores the
// bytes' order. Cheaper than a Pair where that order is not memory's.
struct WideBytes {
    i16s first;
    i16s second;
};

// Magnitudes of signed integers in the form that compares best, here unsigned: there is room for that of the least
// integer. Zeros are zeros.
template <class Vector> struct Magnitudes {
    __m256i v;
};

// --- Bits ----------------------------------------------------------------------------------------------------

inline __m256i bitsOf(__m256i x) { return x; }
inline __m256i bitsOf(__m256 x) { return _mm256_castps_si256(x); }
inline __m256i bitsOf(__m256d x) { return _mm256_castpd_si256(x); }
template <class Vector> inline Vector fromBits(__m256i x) { return {x}; }
template <> inline f32s fromBits<f32s>(__m256i x) { return {_mm256_castsi256_ps(x)}; }
template <> inline f64s fromBits<f64s>(__m256i x) { return {_mm256_castsi256_pd(x)}; }

// The same bits under another type.
template <class To, class From> inline To as(From x) { return fromBits<To>(bitsOf(x.v)); }

template <class Vector> inline Vector load(const void *from)
{
    return fromBits<Vector>(_mm256_loadu_si256((const __m256i *)from));
}
template <class Vector> inline void store(void *to, Vector x) { _mm256_storeu_si256((__m256i *)to, bitsOf(x.v)); }
// Past the caches, to an aligned address; a fence must follow the last one.
template <class Vector> inline void storeStreaming(void *to, Vector x)
{
    _mm256_stream_si256((__m256i *)to, bitsOf(x.v));
}

// A run of n bytes as its first and its last bytes, as in ends.h; from 16 bytes on in the two halves.
template <class Vector> inline Vector loadEnds(const void *from, ptrdiff_t n)
{
    const uint8_t *bytes = (const uint8_t *)from;
    if (n < 16)
        return fromBits<Vector>(_mm256_castsi128_si256(loadEnds16(bytes, n)));
    return fromBits<Vector>(_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)bytes)),
                                                    _mm_loadu_si128((const __m128i *)(bytes + n - 16)), 1));
}
template <class Vector> inline void storeEnds(void *to, Vector x, ptrdiff_t n)
{
    uint8_t *bytes = (uint8_t *)to;
    const __m128i first = _mm256_castsi256_si128(bitsOf(x.v));
    if (n < 16) {
        storeEnds16(bytes, first, n);
        return;
    }
    _mm_storeu_si128((__m128i *)bytes, first);
    _mm_storeu_si128((__m128i *)(bytes + n - 16), _mm256_extracti128_si256(bitsOf(x.v), 1));
}

// n bytes, 1 to a whole register, zeros behind them.
template <class Vector> inline Vector loadFirst(const void *from, ptrdiff_t n)
{
    const uint8_t *bytes = (const uint8_t *)from;
    if (n >= 32)
        return load<Vector>(from);
    if (n < 16)
        return fromBits<Vector>(_mm256_zextsi128_si256(loadFew(bytes, n)));
    const __m128i upper = n > 16 ? loadFew(bytes + 16, n - 16) : _mm_setzero_si128();
    return fromBits<Vector>(
        _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)bytes)), upper, 1));
}

// The first n bytes, 1 to a whole register less one.
template <class Vector> inline void storeFirst(void *to, Vector x, ptrdiff_t n)
{
    __m128i some = _mm256_castsi256_si128(bitsOf(x.v));
    if (n >= 16) {
        _mm_storeu_si128((__m128i *)to, some);
        some = _mm256_extracti128_si256(bitsOf(x.v), 1);
    }
    storeFew((uint8_t *)to + (n & 16), some, n & 15);
}

// Lane 0, the element of 4 or 8 bytes at an address; zeros behind it.
template <class Vector> inline Vector loadOne(const void *from)
{
    if constexpr (Vector::lanes == 8)
        return fromBits<Vector>(_mm256_zextsi128_si256(_mm_cvtsi32_si128(loadPiece<int>((const uint8_t *)from))));
    else
        return fromBits<Vector>(_mm256_zextsi128_si256(_mm_loadl_epi64((const __m128i *)from)));
}
template <class Vector> inline void storeOne(void *to, Vector x)
{
    storeOne16<32 / Vector::lanes>(to, _mm256_castsi256_si128(bitsOf(x.v)));
}

template <class Vector> inline Vector zero() { return fromBits<Vector>(_mm256_setzero_si256()); }
inline u8s splat8(uint8_t x) { return {_mm256_set1_epi8((char)x)}; }
inline u16s splat16(uint16_t x) { return {_mm256_set1_epi16((short)x)}; }
inline u32s splat32(uint32_t x) { return {_mm256_set1_epi32((int)x)}; }
inline u64s splat64(uint64_t x) { return {_mm256_set1_epi64x((long long)x)}; }
inline i16s splatI16(int16_t x) { return {_mm256_set1_epi16(x)}; }
inline i32s splatI32(int32_t x) { return {_mm256_set1_epi32(x)}; }
inline f32s splatF32(float x) { return {_mm256_set1_ps(x)}; }
inline f64s splatF64(double x) { return {_mm256_set1_pd(x)}; }

template <class Vector> inline Vector operator&(Vector a, Vector b) { return {_mm256_and_si256(a.v, b.v)}; }
template <class Vector> inline Vector operator|(Vector a, Vector b) { return {_mm256_or_si256(a.v, b.v)}; }
template <class Vector> inline Vector operator^(Vector a, Vector b) { return {_mm256_xor_si256(a.v, b.v)}; }
// The bits of x that mask has not.
template <class Vector> inline Vector without(Vector x, Vector mask) { return {_mm256_andnot_si256(mask.v, x.v)}; }

inline f32s operator&(f32s a, f32s b) { return {_mm256_and_ps(a.v, b.v)}; }
inline f32s operator|(f32s a, f32s b) { return {_mm256_or_ps(a.v, b.v)}; }
inline f32s operator^(f32s a, f32s b) { return {_mm256_xor_ps(a.v, b.v)}; }
inline f32s without(f32s x, f32s mask) { return {_mm256_andnot_ps(mask.v, x.v)}; }
inline f64s operator&(f64s a, f64s b) { return {_mm256_and_pd(a.v, b.v)}; }
inline f64s operator|(f64s a, f64s b) { return {_mm256_or_pd(a.v, b.v)}; }
inline f64s operator^(f64s a, f64s b) { return {_mm256_xor_pd(a.v, b.v)}; }
inline f64s without(f64s x, f64s mask) { return {_mm256_andnot_pd(mask.v, x.v)}; }

// Where mask's bits are set a, elsewhere b.
template <class Vector> inline Vector select(Vector mask, Vector a, Vector b) { return (mask & a) | without(b, mask); }

// --- Integers ------------------------------------------------------------------------------------------------
// Additions, subtractions and products keep the low bits of a lane; those named ...Limited saturate.

inline u8s operator+(u8s a, u8s b) { return {_mm256_add_epi8(a.v, b.v)}; }
inline u8s operator-(u8s a, u8s b) { return {_mm256_sub_epi8(a.v, b.v)}; }
inline u16s operator+(u16s a, u16s b) { return {_mm256_add_epi16(a.v, b.v)}; }
inline u16s operator-(u16s a, u16s b) { return {_mm256_sub_epi16(a.v, b.v)}; }
inline i16s operator+(i16s a, i16s b) { return {_mm256_add_epi16(a.v, b.v)}; }
inline i16s operator-(i16s a, i16s b) { return {_mm256_sub_epi16(a.v, b.v)}; }
inline u32s operator+(u32s a, u32s b) { return {_mm256_add_epi32(a.v, b.v)}; }
inline u32s operator-(u32s a, u32s b) { return {_mm256_sub_epi32(a.v, b.v)}; }
inline i32s operator+(i32s a, i32s b) { return {_mm256_add_epi32(a.v, b.v)}; }
inline i32s operator-(i32s a, i32s b) { return {_mm256_sub_epi32(a.v, b.v)}; }
inline u64s operator+(u64s a, u64s b) { return {_mm256_add_epi64(a.v, b.v)}; }
inline i16s operator*(i16s a, i16s b) { return {_mm256_mullo_epi16(a.v, b.v)}; }

// An addition: more units of a processor add than shift.
inline u16s twice(u16s a) { return a + a; }

// Zeros come in from the right end; from the left the sign of signed lanes, zeros of unsigned ones.
template <int bits> inline u16s shiftLeft(u16s a) { return {_mm256_slli_epi16(a.v, bits)}; }
template <int bits> inline i16s shiftLeft(i16s a) { return {_mm256_slli_epi16(a.v, bits)}; }
template <int bits> inline u32s shiftLeft(u32s a) { return {_mm256_slli_epi32(a.v, bits)}; }
template <int bits> inline i32s shiftLeft(i32s a) { return {_mm256_slli_epi32(a.v, bits)}; }
template <int bits> inline u64s shiftLeft(u64s a) { return {_mm256_slli_epi64(a.v, bits)}; }
template <int bits> inline u16s shiftRight(u16s a) { return {_mm256_srli_epi16(a.v, bits)}; }
template <int bits> inline i16s shiftRight(i16s a) { return {_mm256_srai_epi16(a.v, bits)}; }
template <int bits> inline u32s shiftRight(u32s a) { return {_mm256_srli_epi32(a.v, bits)}; }
template <int bits> inline i32s shiftRight(i32s a) { return {_mm256_srai_epi32(a.v, bits)}; }
template <int bits> inline u64s shiftRight(u64s a) { return {_mm256_srli_epi64(a.v, bits)}; }

inline u8s addLimited(u8s a, u8s b) { return {_mm256_adds_epu8(a.v, b.v)}; }
inline u8s subtractLimited(u8s a, u8s b) { return {_mm256_subs_epu8(a.v, b.v)}; }
inline u16s addLimited(u16s a, u16s b) { return {_mm256_adds_epu16(a.v, b.v)}; }
inline u16s subtractLimited(u16s a, u16s b) { return {_mm256_subs_epu16(a.v, b.v)}; }
inline i16s addLimited(i16s a, i16s b) { return {_mm256_adds_epi16(a.v, b.v)}; }
inline i16s subtractLimited(i16s a, i16s b) { return {_mm256_subs_epi16(a.v, b.v)}; }

// |a - b|
inline u8s distance(u8s a, u8s b) { return subtractLimited(a, b) | subtractLimited(b, a); }
inline u16s distance(u16s a, u16s b) { return subtractLimited(a, b) | subtractLimited(b, a); }

// a >> 1
inline u8s half(u8s a) { return {_mm256_and_si256(_mm256_srli_epi16(a.v, 1), _mm256_set1_epi8(0x7F))}; }

// (a + b + 1) >> 1
inline u8s average(u8s a, u8s b) { return {_mm256_avg_epu8(a.v, b.v)}; }
inline u16s average(u16s a, u16s b) { return {_mm256_avg_epu16(a.v, b.v)}; }

inline u8s larger(u8s a, u8s b) { return {_mm256_max_epu8(a.v, b.v)}; }
inline u8s smaller(u8s a, u8s b) { return {_mm256_min_epu8(a.v, b.v)}; }
inline i16s larger(i16s a, i16s b) { return {_mm256_max_epi16(a.v, b.v)}; }
inline i16s smaller(i16s a, i16s b) { return {_mm256_min_epi16(a.v, b.v)}; }
inline i32s larger(i32s a, i32s b) { return {_mm256_max_epi32(a.v, b.v)}; }
inline i32s smaller(i32s a, i32s b) { return {_mm256_min_epi32(a.v, b.v)}; }

inline Magnitudes<i16s> magnitude(i16s x) { return {_mm256_abs_epi16(x.v)}; }
inline Magnitudes<i32s> magnitude(i32s x) { return {_mm256_abs_epi32(x.v)}; }
inline Magnitudes<i16s> larger(Magnitudes<i16s> a, Magnitudes<i16s> b) { return {_mm256_max_epu16(a.v, b.v)}; }
inline Magnitudes<i32s> larger(Magnitudes<i32s> a, Magnitudes<i32s> b) { return {_mm256_max_epu32(a.v, b.v)}; }

// |a| for a above -32768.
inline i16s absolute(i16s a) { return {_mm256_abs_epi16(a.v)}; }

// Masks.
inline u8s equal(u8s a, u8s b) { return {_mm256_cmpeq_epi8(a.v, b.v)}; }
inline u16s equal(u16s a, u16s b) { return {_mm256_cmpeq_epi16(a.v, b.v)}; }
inline u32s equal(u32s a, u32s b) { return {_mm256_cmpeq_epi32(a.v, b.v)}; }
inline i16s greater(i16s a, i16s b) { return {_mm256_cmpgt_epi16(a.v, b.v)}; }
inline i32s greater(i32s a, i32s b) { return {_mm256_cmpgt_epi32(a.v, b.v)}; }

// The top bit of every byte, that of lane 0 lowest.
inline uint32_t topBits(u8s x) { return (uint32_t)_mm256_movemask_epi8(x.v); }
constexpr uint32_t allTopBits = 0xFFFFFFFF;

// The upper 16 bits of the 32-bit products.
inline i16s multiplyHigh(i16s a, i16s b) { return {_mm256_mulhi_epi16(a.v, b.v)}; }
inline u16s multiplyHigh(u16s a, u16s b) { return {_mm256_mulhi_epu16(a.v, b.v)}; }

// a[2i]*b[2i] + a[2i+1]*b[2i+1] in 32 bits.
inline i32s multiplyAddPairs(i16s a, i16s b) { return {_mm256_madd_epi16(a.v, b.v)}; }

// Sums of |a - b| over every eight bytes.
inline u64s sumDistances(u8s a, u8s b) { return {_mm256_sad_epu8(a.v, b.v)}; }

// --- Order ---------------------------------------------------------------------------------------------------

// The lower halves of two registers, and the upper halves.
inline __m256i lowerHalves(__m256i a, __m256i b) { return _mm256_permute2x128_si256(a, b, 0x20); }
inline __m256i upperHalves(__m256i a, __m256i b) { return _mm256_permute2x128_si256(a, b, 0x31); }

// From 64-bit quarters a0 b0 a1 b1 to a0 a1 b0 b1: memory order after an instruction that took a and b by halves.
inline __m256i unmix(__m256i x) { return _mm256_permute4x64_epi64(x, _MM_SHUFFLE(3, 1, 2, 0)); }

// a0 b0 a1 b1 ...: the first and the second half of the interleaved sequence.
inline u8s interleaveLow(u8s a, u8s b)
{
    return {lowerHalves(_mm256_unpacklo_epi8(a.v, b.v), _mm256_unpackhi_epi8(a.v, b.v))};
}
inline u8s interleaveHigh(u8s a, u8s b)
{
    return {upperHalves(_mm256_unpacklo_epi8(a.v, b.v), _mm256_unpackhi_epi8(a.v, b.v))};
}
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

// Lanes a, b, c, d of every four.
template <int a, int b, int c, int d> inline u16s orderFours(u16s x)
{
    constexpr int order = _MM_SHUFFLE(d, c, b, a);
    return {_mm256_shufflehi_epi16(_mm256_shufflelo_epi16(x.v, order), order)};
}
template <int a, int b, int c, int d> inline u32s orderFours(u32s x)
{
    return {_mm256_shuffle_epi32(x.v, _MM_SHUFFLE(d, c, b, a))};
}

// The two bytes of every lane exchanged.
inline u16s swapBytes(u16s x) { return shiftLeft<8>(x) | shiftRight<8>(x); }

// The lanes in reverse order.
inline __m256i swapHalves(__m256i x) { return _mm256_permute4x64_epi64(x, _MM_SHUFFLE(1, 0, 3, 2)); }
inline u32s reversed(u32s x) { return {swapHalves(orderFours<3, 2, 1, 0>(x).v)}; }
inline u16s reversed(u16s x)
{
    const __m128i order = _mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
    return {swapHalves(_mm256_shuffle_epi8(x.v, _mm256_broadcastsi128_si256(order)))};
}
inline u8s reversed(u8s x)
{
    const __m128i order = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    return {swapHalves(_mm256_shuffle_epi8(x.v, _mm256_broadcastsi128_si256(order)))};
}

// The even and the odd lanes of a followed by b.
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

// One 3-byte pixel per lane, its top byte 0. Reads 3 bytes a lane, no more: bytes 0-15 hold the pixels of the lower
// half, bytes 8-23 those of the upper half behind four other bytes.
inline __m256i load24(const uint8_t *from, __m256i spread)
{
    const __m256i bytes = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)from)),
                                                  _mm_loadu_si128((const __m128i *)(from + 8)), 1);
    return _mm256_shuffle_epi8(bytes, spread);
}
inline u32s loadPixels24(const uint8_t *from)
{
    return {load24(from, _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, //
                                          4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1))};
}
// One 3-byte sample per lane, in its top three bytes, a zero byte below. Reads 3 bytes a lane, no more.
inline i32s loadTop24(const uint8_t *from)
{
    return {load24(from, _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, //
                                          -1, 4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15))};
}

// The low three bytes of every lane, pushed together: 24 bytes in six of eight 32-bit places, order[i] being the piece
// at place i.
inline __m256i pack24(u32s x, __m256i order)
{
    const __m256i push = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, //
                                          0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(x.v, push), order);
}

// A register of pixels as 24 bytes of packed 3-byte pixels.
inline void storePixels24(uint8_t *to, u32s x)
{
    const __m256i bytes = pack24(x, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
    _mm_storeu_si128((__m128i *)to, _mm256_castsi256_si128(bytes));
    _mm_storel_epi64((__m128i *)(to + 16), _mm256_extracti128_si256(bytes, 1));
}

// 4 registers of pixels as packed 3-byte pixels: 24 bytes a register.
//   a a a a a a b b | b b b b c c c c | c c d d d d d d     in 32-bit pieces
inline void storePixels24(uint8_t *to, u32s a, u32s b, u32s c, u32s d)
{
    const __m256i first = pack24(a, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
    const __m256i second = pack24(b, _mm256_setr_epi32(2, 4, 5, 6, 3, 7, 0, 1));
    const __m256i third = pack24(c, _mm256_setr_epi32(5, 6, 3, 7, 0, 1, 2, 4));
    const __m256i fourth = pack24(d, _mm256_setr_epi32(3, 7, 0, 1, 2, 4, 5, 6));
    _mm256_storeu_si256((__m256i *)to, _mm256_blend_epi32(first, second, 0xC0));
    _mm256_storeu_si256((__m256i *)(to + 32), _mm256_blend_epi32(second, third, 0xF0));
    _mm256_storeu_si256((__m256i *)(to + 64), _mm256_blend_epi32(third, fourth, 0xFC));
}

// --- Widths --------------------------------------------------------------------------------------------------

// The lower and the upper half of x, zero- or sign-extended.
inline u16s widenLow(u8s x) { return {_mm256_cvtepu8_epi16(_mm256_castsi256_si128(x.v))}; }
inline u16s widenHigh(u8s x) { return {_mm256_cvtepu8_epi16(_mm256_extracti128_si256(x.v, 1))}; }
inline u32s widenLow(u16s x) { return {_mm256_cvtepu16_epi32(_mm256_castsi256_si128(x.v))}; }
inline u32s widenHigh(u16s x) { return {_mm256_cvtepu16_epi32(_mm256_extracti128_si256(x.v, 1))}; }
inline i16s widenLow(i8s x) { return {_mm256_cvtepi8_epi16(_mm256_castsi256_si128(x.v))}; }
inline i16s widenHigh(i8s x) { return {_mm256_cvtepi8_epi16(_mm256_extracti128_si256(x.v, 1))}; }
inline i32s widenLow(i16s x) { return {_mm256_cvtepi16_epi32(_mm256_castsi256_si128(x.v))}; }
inline i32s widenHigh(i16s x) { return {_mm256_cvtepi16_epi32(_mm256_extracti128_si256(x.v, 1))}; }

// low then high, limited to the narrower type's range; lanes of u16s must be at most 32767.
inline u8s narrow(u16s low, u16s high) { return {unmix(_mm256_packus_epi16(low.v, high.v))}; }
inline u8s narrow(i16s low, i16s high) { return {unmix(_mm256_packus_epi16(low.v, high.v))}; }
inline i8s narrowSigned(i16s low, i16s high) { return {unmix(_mm256_packs_epi16(low.v, high.v))}; }
inline i16s narrow(i32s low, i32s high) { return {unmix(_mm256_packs_epi32(low.v, high.v))}; }
// Lanes from 0 to 65535.
inline u16s narrowWords(i32s low, i32s high) { return {unmix(_mm256_packus_epi32(low.v, high.v))}; }

inline WideBytes widen(u8s x)
{
    return {{_mm256_unpacklo_epi8(x.v, _mm256_setzero_si256())}, {_mm256_unpackhi_epi8(x.v, _mm256_setzero_si256())}};
}
// x << 8
inline WideBytes widenTop(u8s x)
{
    return {{_mm256_unpacklo_epi8(_mm256_setzero_si256(), x.v)}, {_mm256_unpackhi_epi8(_mm256_setzero_si256(), x.v)}};
}
// Limited to 0..255, in the order of the bytes that x came from.
inline u8s narrow(WideBytes x) { return {_mm256_packus_epi16(x.first.v, x.second.v)}; }

// --- Floats --------------------------------------------------------------------------------------------------

inline f32s operator+(f32s a, f32s b) { return {_mm256_add_ps(a.v, b.v)}; }
inline f32s operator-(f32s a, f32s b) { return {_mm256_sub_ps(a.v, b.v)}; }
inline f32s operator*(f32s a, f32s b) { return {_mm256_mul_ps(a.v, b.v)}; }
inline f32s operator/(f32s a, f32s b) { return {_mm256_div_ps(a.v, b.v)}; }
inline f64s operator+(f64s a, f64s b) { return {_mm256_add_pd(a.v, b.v)}; }
inline f64s operator-(f64s a, f64s b) { return {_mm256_sub_pd(a.v, b.v)}; }
inline f64s operator*(f64s a, f64s b) { return {_mm256_mul_pd(a.v, b.v)}; }
inline f64s operator/(f64s a, f64s b) { return {_mm256_div_pd(a.v, b.v)}; }

// a > b ? a : b and a < b ? a : b: b where either is a NaN, and of two zeros b.
inline f32s larger(f32s a, f32s b) { return {_mm256_max_ps(a.v, b.v)}; }
inline f32s smaller(f32s a, f32s b) { return {_mm256_min_ps(a.v, b.v)}; }
inline f64s larger(f64s a, f64s b) { return {_mm256_max_pd(a.v, b.v)}; }
inline f64s smaller(f64s a, f64s b) { return {_mm256_min_pd(a.v, b.v)}; }

inline f64s squareRoot(f64s x) { return {_mm256_sqrt_pd(x.v)}; }

inline f32s greater(f32s a, f32s b) { return {_mm256_cmp_ps(a.v, b.v, _CMP_GT_OS)}; }
inline f32s atLeast(f32s a, f32s b) { return {_mm256_cmp_ps(a.v, b.v, _CMP_GE_OS)}; }
inline f64s atLeast(f64s a, f64s b) { return {_mm256_cmp_pd(a.v, b.v, _CMP_GE_OS)}; }

// To 11 bits or better, processors differ; infinity for 0.
inline f32s approximateReciprocal(f32s x) { return {_mm256_rcp_ps(x.v)}; }
// The same of doubles, by way of floats.
inline f64s approximateReciprocal(f64s x) { return {_mm256_cvtps_pd(_mm_rcp_ps(_mm256_cvtpd_ps(x.v)))}; }

inline f32s signBits(f32s x) { return x & splatF32(-0.0f); }
inline f64s signBits(f64s x) { return x & splatF64(-0.0); }
inline f32s magnitude(f32s x) { return without(x, splatF32(-0.0f)); }
inline f64s magnitude(f64s x) { return without(x, splatF64(-0.0)); }

inline f32s toFloat(i32s x) { return {_mm256_cvtepi32_ps(x.v)}; }
// Toward zero; INT32_MIN for a NaN and for what 32 bits cannot hold.
inline i32s truncate(f32s x) { return {_mm256_cvttps_epi32(x.v)}; }
// To the nearest, ties to even; likewise INT32_MIN for a NaN and beyond 32 bits.
inline i32s toNearestEven(f32s x) { return {_mm256_cvtps_epi32(x.v)}; }
inline i32s truncate(f64s low, f64s high)
{
    return {
        _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvttpd_epi32(low.v)), _mm256_cvttpd_epi32(high.v), 1)};
}
inline Pair<f64s> toDouble(f32s x)
{
    return {{_mm256_cvtps_pd(_mm256_castps256_ps128(x.v))}, {_mm256_cvtps_pd(_mm256_extractf128_ps(x.v, 1))}};
}
inline Pair<f64s> toDouble(i32s x)
{
    return {{_mm256_cvtepi32_pd(_mm256_castsi256_si128(x.v))}, {_mm256_cvtepi32_pd(_mm256_extracti128_si256(x.v, 1))}};
}
// As many as fit a vector of the wider type, read from memory and no more.
inline f64s loadAsDoubles(const float *from) { return {_mm256_cvtps_pd(_mm_loadu_ps(from))}; }
inline i32s loadAsWide(const int16_t *from) { return {_mm256_cvtepi16_epi32(_mm_loadu_si128((const __m128i *)from))}; }
inline i32s loadAsWide(const uint8_t *from) { return {_mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i *)from))}; }
// The same at the top of the lanes, zeros below.
inline i32s loadTop8(const uint8_t *from) { return shiftLeft<24>(loadAsWide(from)); }
inline i32s loadTop16(const uint8_t *from)
{
    return {_mm256_slli_epi32(_mm256_cvtepu16_epi32(_mm_loadu_si128((const __m128i *)from)), 16)};
}
// The entries of a table that every step-th index names.
template <int step> inline f32s lookUp(const float *table, const uint32_t *indices)
{
    return {_mm256_setr_ps(table[indices[0]], table[indices[step]], table[indices[2 * step]], table[indices[3 * step]],
                           table[indices[4 * step]], table[indices[5 * step]], table[indices[6 * step]],
                           table[indices[7 * step]])};
}
// Rounded to nearest, as are those that go to memory as floats.
inline void storeAsFloats(float *to, f64s x) { _mm_storeu_ps(to, _mm256_cvtpd_ps(x.v)); }
inline f32s toFloat(f64s low, f64s high)
{
    return {_mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(low.v)), _mm256_cvtpd_ps(high.v), 1)};
}

// --- Across lanes --------------------------------------------------------------------------------------------

// The lanes below n as they are, +0 in the others.
inline f32s keepFirst(f32s x, ptrdiff_t n)
{
    const __m256i index = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return {_mm256_and_ps(x.v, _mm256_castsi256_ps(_mm256_cmpgt_epi32(_mm256_set1_epi32((int)n), index)))};
}
inline f64s keepFirst(f64s x, ptrdiff_t n)
{
    const __m256i index = _mm256_setr_epi32(0, 0, 1, 1, 2, 2, 3, 3);
    return {_mm256_and_pd(x.v, _mm256_castsi256_pd(_mm256_cmpgt_epi32(_mm256_set1_epi32((int)n), index)))};
}

// Halves by halves: lane j += lane j + lanes/2, and so on down to lane 0.
inline float sumHalving(f32s x)
{
    const __m128 four = _mm_add_ps(_mm256_castps256_ps128(x.v), _mm256_extractf128_ps(x.v, 1));
    const __m128 two = _mm_add_ps(four, _mm_movehl_ps(four, four));
    return _mm_cvtss_f32(_mm_add_ss(two, _mm_shuffle_ps(two, two, 1)));
}
inline double sumHalving(f64s x)
{
    const __m128d two = _mm_add_pd(_mm256_castpd256_pd128(x.v), _mm256_extractf128_pd(x.v, 1));
    return _mm_cvtsd_f64(_mm_add_sd(two, _mm_unpackhi_pd(two, two)));
}

// The lanes of each added up by halves, times a factor.
inline void storeSums(double *to, f64s a, f64s b, f64s c, f64s d, double factor)
{
    const __m256d ac = _mm256_add_pd(_mm256_permute2f128_pd(a.v, c.v, 0x20), _mm256_permute2f128_pd(a.v, c.v, 0x31));
    const __m256d bd = _mm256_add_pd(_mm256_permute2f128_pd(b.v, d.v, 0x20), _mm256_permute2f128_pd(b.v, d.v, 0x31));
    const __m256d abcd = _mm256_add_pd(_mm256_unpacklo_pd(ac, bd), _mm256_unpackhi_pd(ac, bd));
    _mm256_storeu_pd(to, _mm256_mul_pd(abcd, _mm256_set1_pd(factor)));
}

inline float largest(f32s x)
{
    const __m128 four = _mm_max_ps(_mm256_castps256_ps128(x.v), _mm256_extractf128_ps(x.v, 1));
    const __m128 two = _mm_max_ps(four, _mm_movehl_ps(four, four));
    return _mm_cvtss_f32(_mm_max_ss(two, _mm_shuffle_ps(two, two, 1)));
}
inline double largest(f64s x)
{
    const __m128d two = _mm_max_pd(_mm256_castpd256_pd128(x.v), _mm256_extractf128_pd(x.v, 1));
    return _mm_cvtsd_f64(_mm_max_sd(two, _mm_unpackhi_pd(two, two)));
}
inline int16_t largest(i16s x)
{
    const __m128i eight = _mm_max_epi16(_mm256_castsi256_si128(x.v), _mm256_extracti128_si256(x.v, 1));
    const __m128i four = _mm_max_epi16(eight, _mm_unpackhi_epi64(eight, eight));
    const __m128i two = _mm_max_epi16(four, _mm_srli_epi64(four, 32));
    return (int16_t)_mm_cvtsi128_si32(_mm_max_epi16(two, _mm_srli_epi32(two, 16)));
}
inline uint16_t largest(Magnitudes<i16s> x)
{
    const __m128i eight = _mm_max_epu16(_mm256_castsi256_si128(x.v), _mm256_extracti128_si256(x.v, 1));
    const __m128i four = _mm_max_epu16(eight, _mm_unpackhi_epi64(eight, eight));
    const __m128i two = _mm_max_epu16(four, _mm_srli_epi64(four, 32));
    return (uint16_t)_mm_cvtsi128_si32(_mm_max_epu16(two, _mm_srli_epi32(two, 16)));
}
inline uint32_t largest(Magnitudes<i32s> x)
{
    const __m128i four = _mm_max_epu32(_mm256_castsi256_si128(x.v), _mm256_extracti128_si256(x.v, 1));
    const __m128i two = _mm_max_epu32(four, _mm_unpackhi_epi64(four, four));
    return (uint32_t)_mm_cvtsi128_si32(_mm_max_epu32(two, _mm_srli_epi64(two, 32)));
}

// The sum modulo 2^64 or 2^32.
inline uint64_t sum(u64s x)
{
    const __m128i two = _mm_add_epi64(_mm256_castsi256_si128(x.v), _mm256_extracti128_si256(x.v, 1));
    return (uint64_t)_mm_cvtsi128_si64(_mm_add_epi64(two, _mm_unpackhi_epi64(two, two)));
}
inline uint32_t sum(u32s x)
{
    const __m128i four = _mm_add_epi32(_mm256_castsi256_si128(x.v), _mm256_extracti128_si256(x.v, 1));
    const __m128i two = _mm_add_epi32(four, _mm_unpackhi_epi64(four, four));
    return (uint32_t)_mm_cvtsi128_si32(_mm_add_epi32(two, _mm_srli_epi64(two, 32)));
}

// 1 or -1 with the sign of x; 0 or 1 where x is 0.
inline i16s unitWithSignOf(i16s x) { return {_mm256_sign_epi16(_mm256_set1_epi16(1), x.v)}; }

// weightA*a + weightB*b per byte; the sum must fit 16 bits. One multiply-add does both products: a and b interleaved,
// the weights alternating.
template <int8_t weightA, int8_t weightB> inline WideBytes weightedSum(u8s a, u8s b)
{
    const __m256i weights = _mm256_set1_epi16((short)((uint8_t)weightA | (uint8_t)weightB << 8));
    return {{_mm256_maddubs_epi16(_mm256_unpacklo_epi8(a.v, b.v), weights)},
            {_mm256_maddubs_epi16(_mm256_unpackhi_epi8(a.v, b.v), weights)}};
}

} // namespace

#include "simd/pixels256.h"
