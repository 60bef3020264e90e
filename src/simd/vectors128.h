// The vector vocabulary on 128-bit registers: what every instruction set from SSE2 on does the same way. A tier source
// includes sse2.h or ssse3.h, which add the verbs that differ; avx2.h has the same names at 256 bits. A kernel text
// spells these names and never a width.
//
// Vectors hold elements in memory order: lane 0 is the element at the lowest address.
#pragma once

#include "simd/ends.h"

#include <emmintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace {

// One register each, by lane: unsigned and signed integers, floats. Masks have all bits of a lane set or none and the
// type of what was compared.
struct u8s {
    static constexpr int lanes = 16;
    __m128i v;
};
struct i8s {
    static constexpr int lanes = 16;
    __m128i v;
};
struct u16s {
    static constexpr int lanes = 8;
    __m128i v;
};
struct i16s {
    static constexpr int lanes = 8;
    __m128i v;
};
struct u32s {
    static constexpr int lanes = 4;
    __m128i v;
};
struct i32s {
    static constexpr int lanes = 4;
    __m128i v;
};
struct u64s {
    static constexpr int lanes = 2;
    __m128i v;
};
struct f32s {
    static constexpr int lanes = 4;
    __m128 v;
};
struct f64s {
    static constexpr int lanes = 2;
    __m128d v;
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

// Magnitudes of signed integers in the form that compares best, here negative: there is room for that of the least
// integer. Zeros are zeros.
template <class Vector> struct Magnitudes {
    Vector negative;
};

// --- Bits ----------------------------------------------------------------------------------------------------

inline __m128i bitsOf(__m128i x) { return x; }
inline __m128i bitsOf(__m128 x) { return _mm_castps_si128(x); }
inline __m128i bitsOf(__m128d x) { return _mm_castpd_si128(x); }
template <class Vector> inline Vector fromBits(__m128i x) { return {x}; }
template <> inline f32s fromBits<f32s>(__m128i x) { return {_mm_castsi128_ps(x)}; }
template <> inline f64s fromBits<f64s>(__m128i x) { return {_mm_castsi128_pd(x)}; }

// The same bits under another type.
template <class To, class From> inline To as(From x) { return fromBits<To>(bitsOf(x.v)); }

template <class Vector> inline Vector load(const void *from)
{
    return fromBits<Vector>(_mm_loadu_si128((const __m128i *)from));
}
template <class Vector> inline void store(void *to, Vector x) { _mm_storeu_si128((__m128i *)to, bitsOf(x.v)); }
// Past the caches, to an aligned address; a fence must follow the last one.
template <class Vector> inline void storeStreaming(void *to, Vector x) { _mm_stream_si128((__m128i *)to, bitsOf(x.v)); }

// A run of n bytes, fewer than a register holds, as its first and its last bytes: see ends.h.
template <class Vector> inline Vector loadEnds(const void *from, ptrdiff_t n)
{
    return fromBits<Vector>(loadEnds16((const uint8_t *)from, n));
}
template <class Vector> inline void storeEnds(void *to, Vector x, ptrdiff_t n)
{
    storeEnds16((uint8_t *)to, bitsOf(x.v), n);
}

// n bytes, 1 to a whole register, zeros behind them.
template <class Vector> inline Vector loadFirst(const void *from, ptrdiff_t n)
{
    return n >= 16 ? load<Vector>(from) : fromBits<Vector>(loadFew((const uint8_t *)from, n));
}

// The first n bytes, 1 to a whole register less one.
template <class Vector> inline void storeFirst(void *to, Vector x, ptrdiff_t n)
{
    storeFew((uint8_t *)to, bitsOf(x.v), n);
}

// Lane 0, the element of 4 or 8 bytes at an address; zeros behind it.
template <class Vector> inline Vector loadOne(const void *from)
{
    if constexpr (Vector::lanes == 4)
        return fromBits<Vector>(_mm_cvtsi32_si128(loadPiece<int>((const uint8_t *)from)));
    else
        return fromBits<Vector>(_mm_loadl_epi64((const __m128i *)from));
}
template <class Vector> inline void storeOne(void *to, Vector x) { storeOne16<16 / Vector::lanes>(to, bitsOf(x.v)); }

template <class Vector> inline Vector zero() { return fromBits<Vector>(_mm_setzero_si128()); }
inline u8s splat8(uint8_t x) { return {_mm_set1_epi8((char)x)}; }
inline u16s splat16(uint16_t x) { return {_mm_set1_epi16((short)x)}; }
inline u32s splat32(uint32_t x) { return {_mm_set1_epi32((int)x)}; }
inline u64s splat64(uint64_t x) { return {_mm_set1_epi64x((long long)x)}; }
inline i16s splatI16(int16_t x) { return {_mm_set1_epi16(x)}; }
inline i32s splatI32(int32_t x) { return {_mm_set1_epi32(x)}; }
inline f32s splatF32(float x) { return {_mm_set1_ps(x)}; }
inline f64s splatF64(double x) { return {_mm_set1_pd(x)}; }

template <class Vector> inline Vector operator&(Vector a, Vector b) { return {_mm_and_si128(a.v, b.v)}; }
template <class Vector> inline Vector operator|(Vector a, Vector b) { return {_mm_or_si128(a.v, b.v)}; }
template <class Vector> inline Vector operator^(Vector a, Vector b) { return {_mm_xor_si128(a.v, b.v)}; }
// The bits of x that mask has not.
template <class Vector> inline Vector without(Vector x, Vector mask) { return {_mm_andnot_si128(mask.v, x.v)}; }

inline f32s operator&(f32s a, f32s b) { return {_mm_and_ps(a.v, b.v)}; }
inline f32s operator|(f32s a, f32s b) { return {_mm_or_ps(a.v, b.v)}; }
inline f32s operator^(f32s a, f32s b) { return {_mm_xor_ps(a.v, b.v)}; }
inline f32s without(f32s x, f32s mask) { return {_mm_andnot_ps(mask.v, x.v)}; }
inline f64s operator&(f64s a, f64s b) { return {_mm_and_pd(a.v, b.v)}; }
inline f64s operator|(f64s a, f64s b) { return {_mm_or_pd(a.v, b.v)}; }
inline f64s operator^(f64s a, f64s b) { return {_mm_xor_pd(a.v, b.v)}; }
inline f64s without(f64s x, f64s mask) { return {_mm_andnot_pd(mask.v, x.v)}; }

// Where mask's bits are set a, elsewhere b.
template <class Vector> inline Vector select(Vector mask, Vector a, Vector b) { return (mask & a) | without(b, mask); }

// --- Integers ------------------------------------------------------------------------------------------------
// Additions, subtractions and products keep the low bits of a lane; those named ...Limited saturate.

inline u8s operator+(u8s a, u8s b) { return {_mm_add_epi8(a.v, b.v)}; }
inline u8s operator-(u8s a, u8s b) { return {_mm_sub_epi8(a.v, b.v)}; }
inline u16s operator+(u16s a, u16s b) { return {_mm_add_epi16(a.v, b.v)}; }
inline u16s operator-(u16s a, u16s b) { return {_mm_sub_epi16(a.v, b.v)}; }
inline i16s operator+(i16s a, i16s b) { return {_mm_add_epi16(a.v, b.v)}; }
inline i16s operator-(i16s a, i16s b) { return {_mm_sub_epi16(a.v, b.v)}; }
inline u32s operator+(u32s a, u32s b) { return {_mm_add_epi32(a.v, b.v)}; }
inline u32s operator-(u32s a, u32s b) { return {_mm_sub_epi32(a.v, b.v)}; }
inline i32s operator+(i32s a, i32s b) { return {_mm_add_epi32(a.v, b.v)}; }
inline i32s operator-(i32s a, i32s b) { return {_mm_sub_epi32(a.v, b.v)}; }
inline u64s operator+(u64s a, u64s b) { return {_mm_add_epi64(a.v, b.v)}; }
inline i16s operator*(i16s a, i16s b) { return {_mm_mullo_epi16(a.v, b.v)}; }

// An addition: more units of a processor add than shift.
inline u16s twice(u16s a) { return a + a; }

// Zeros come in from the right end; from the left the sign of signed lanes, zeros of unsigned ones.
template <int bits> inline u16s shiftLeft(u16s a) { return {_mm_slli_epi16(a.v, bits)}; }
template <int bits> inline i16s shiftLeft(i16s a) { return {_mm_slli_epi16(a.v, bits)}; }
template <int bits> inline u32s shiftLeft(u32s a) { return {_mm_slli_epi32(a.v, bits)}; }
template <int bits> inline i32s shiftLeft(i32s a) { return {_mm_slli_epi32(a.v, bits)}; }
template <int bits> inline u64s shiftLeft(u64s a) { return {_mm_slli_epi64(a.v, bits)}; }
template <int bits> inline u16s shiftRight(u16s a) { return {_mm_srli_epi16(a.v, bits)}; }
template <int bits> inline i16s shiftRight(i16s a) { return {_mm_srai_epi16(a.v, bits)}; }
template <int bits> inline u32s shiftRight(u32s a) { return {_mm_srli_epi32(a.v, bits)}; }
template <int bits> inline i32s shiftRight(i32s a) { return {_mm_srai_epi32(a.v, bits)}; }
template <int bits> inline u64s shiftRight(u64s a) { return {_mm_srli_epi64(a.v, bits)}; }

inline u8s addLimited(u8s a, u8s b) { return {_mm_adds_epu8(a.v, b.v)}; }
inline u8s subtractLimited(u8s a, u8s b) { return {_mm_subs_epu8(a.v, b.v)}; }
inline u16s addLimited(u16s a, u16s b) { return {_mm_adds_epu16(a.v, b.v)}; }
inline u16s subtractLimited(u16s a, u16s b) { return {_mm_subs_epu16(a.v, b.v)}; }
inline i16s addLimited(i16s a, i16s b) { return {_mm_adds_epi16(a.v, b.v)}; }
inline i16s subtractLimited(i16s a, i16s b) { return {_mm_subs_epi16(a.v, b.v)}; }

// |a - b|
inline u8s distance(u8s a, u8s b) { return subtractLimited(a, b) | subtractLimited(b, a); }
inline u16s distance(u16s a, u16s b) { return subtractLimited(a, b) | subtractLimited(b, a); }

// a >> 1
inline u8s half(u8s a) { return {_mm_and_si128(_mm_srli_epi16(a.v, 1), _mm_set1_epi8(0x7F))}; }

// (a + b + 1) >> 1
inline u8s average(u8s a, u8s b) { return {_mm_avg_epu8(a.v, b.v)}; }
inline u16s average(u16s a, u16s b) { return {_mm_avg_epu16(a.v, b.v)}; }

// Masks.
inline u8s equal(u8s a, u8s b) { return {_mm_cmpeq_epi8(a.v, b.v)}; }
inline u16s equal(u16s a, u16s b) { return {_mm_cmpeq_epi16(a.v, b.v)}; }
inline u32s equal(u32s a, u32s b) { return {_mm_cmpeq_epi32(a.v, b.v)}; }
inline i16s greater(i16s a, i16s b) { return {_mm_cmpgt_epi16(a.v, b.v)}; }
inline i32s greater(i32s a, i32s b) { return {_mm_cmpgt_epi32(a.v, b.v)}; }

inline u8s larger(u8s a, u8s b) { return {_mm_max_epu8(a.v, b.v)}; }
inline u8s smaller(u8s a, u8s b) { return {_mm_min_epu8(a.v, b.v)}; }
inline i16s larger(i16s a, i16s b) { return {_mm_max_epi16(a.v, b.v)}; }
inline i16s smaller(i16s a, i16s b) { return {_mm_min_epi16(a.v, b.v)}; }
inline i32s larger(i32s a, i32s b) { return select(greater(a, b), a, b); }
inline i32s smaller(i32s a, i32s b) { return select(greater(b, a), a, b); }

// |a| for a above -32768. (The subtraction saturates, as compilers expand a plain one into the terms of a.)
inline i16s absolute(i16s a) { return larger(a, subtractLimited(zero<i16s>(), a)); }

inline Magnitudes<i16s> magnitude(i16s x) { return {smaller(x, i16s{_mm_setzero_si128()} - x)}; }
inline Magnitudes<i32s> magnitude(i32s x)
{
    const i32s sign = shiftRight<31>(x);
    return {sign - (x ^ sign)};
}
template <class Vector> inline Magnitudes<Vector> larger(Magnitudes<Vector> a, Magnitudes<Vector> b)
{
    return {smaller(a.negative, b.negative)};
}

// The top bit of every byte, that of lane 0 lowest.
inline uint32_t topBits(u8s x) { return (uint32_t)_mm_movemask_epi8(x.v); }
constexpr uint32_t allTopBits = 0xFFFF;

// The upper 16 bits of the 32-bit products.
inline i16s multiplyHigh(i16s a, i16s b) { return {_mm_mulhi_epi16(a.v, b.v)}; }
inline u16s multiplyHigh(u16s a, u16s b) { return {_mm_mulhi_epu16(a.v, b.v)}; }

// a[2i]*b[2i] + a[2i+1]*b[2i+1] in 32 bits.
inline i32s multiplyAddPairs(i16s a, i16s b) { return {_mm_madd_epi16(a.v, b.v)}; }

// Sums of |a - b| over every eight bytes.
inline u64s sumDistances(u8s a, u8s b) { return {_mm_sad_epu8(a.v, b.v)}; }

// --- Order ---------------------------------------------------------------------------------------------------

// a0 b0 a1 b1 ...: the first and the second half of the interleaved sequence.
inline u8s interleaveLow(u8s a, u8s b) { return {_mm_unpacklo_epi8(a.v, b.v)}; }
inline u8s interleaveHigh(u8s a, u8s b) { return {_mm_unpackhi_epi8(a.v, b.v)}; }
inline u16s interleaveLow(u16s a, u16s b) { return {_mm_unpacklo_epi16(a.v, b.v)}; }
inline u16s interleaveHigh(u16s a, u16s b) { return {_mm_unpackhi_epi16(a.v, b.v)}; }
inline u32s interleaveLow(u32s a, u32s b) { return {_mm_unpacklo_epi32(a.v, b.v)}; }
inline u32s interleaveHigh(u32s a, u32s b) { return {_mm_unpackhi_epi32(a.v, b.v)}; }

// Lanes a, b, c, d of every four.
template <int a, int b, int c, int d> inline u16s orderFours(u16s x)
{
    constexpr int order = _MM_SHUFFLE(d, c, b, a);
    return {_mm_shufflehi_epi16(_mm_shufflelo_epi16(x.v, order), order)};
}
template <int a, int b, int c, int d> inline u32s orderFours(u32s x)
{
    return {_mm_shuffle_epi32(x.v, _MM_SHUFFLE(d, c, b, a))};
}

// The two bytes of every lane exchanged.
inline u16s swapBytes(u16s x) { return shiftLeft<8>(x) | shiftRight<8>(x); }

// The lanes in reverse order.
inline u32s reversed(u32s x) { return orderFours<3, 2, 1, 0>(x); }
inline u16s reversed(u16s x)
{
    const u16s halves = orderFours<3, 2, 1, 0>(x);
    return {_mm_shuffle_epi32(halves.v, _MM_SHUFFLE(1, 0, 3, 2))};
}
inline u8s reversed(u8s x) { return as<u8s>(swapBytes(reversed(as<u16s>(x)))); }

// The even and the odd lanes of a followed by b.
inline u32s evens(u32s a, u32s b)
{
    return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v), _MM_SHUFFLE(2, 0, 2, 0)))};
}
inline u32s odds(u32s a, u32s b)
{
    return {_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.v), _mm_castsi128_ps(b.v), _MM_SHUFFLE(3, 1, 3, 1)))};
}

// The first 12 bytes.
inline void store12(uint8_t *to, __m128i x)
{
    const int last = _mm_cvtsi128_si32(_mm_unpackhi_epi64(x, x));
    _mm_storel_epi64((__m128i *)to, x);
    memcpy(to + 8, &last, sizeof(last));
}

// Four runs of 12 bytes, zeros behind each, as 48 bytes.
inline void store48(uint8_t *to, __m128i a, __m128i b, __m128i c, __m128i d)
{
    _mm_storeu_si128((__m128i *)to, _mm_or_si128(a, _mm_slli_si128(b, 12)));
    _mm_storeu_si128((__m128i *)(to + 16), _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
    _mm_storeu_si128((__m128i *)(to + 32), _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
}

// --- Widths --------------------------------------------------------------------------------------------------

// The lower and the upper half of x, zero- or sign-extended.
inline u16s widenLow(u8s x) { return {_mm_unpacklo_epi8(x.v, _mm_setzero_si128())}; }
inline u16s widenHigh(u8s x) { return {_mm_unpackhi_epi8(x.v, _mm_setzero_si128())}; }
inline u32s widenLow(u16s x) { return {_mm_unpacklo_epi16(x.v, _mm_setzero_si128())}; }
inline u32s widenHigh(u16s x) { return {_mm_unpackhi_epi16(x.v, _mm_setzero_si128())}; }
inline i16s widenLow(i8s x) { return {_mm_srai_epi16(_mm_unpacklo_epi8(x.v, x.v), 8)}; }
inline i16s widenHigh(i8s x) { return {_mm_srai_epi16(_mm_unpackhi_epi8(x.v, x.v), 8)}; }
inline i32s widenLow(i16s x) { return {_mm_srai_epi32(_mm_unpacklo_epi16(x.v, x.v), 16)}; }
inline i32s widenHigh(i16s x) { return {_mm_srai_epi32(_mm_unpackhi_epi16(x.v, x.v), 16)}; }

// low then high, limited to the narrower type's range; lanes of u16s must be at most 32767.
inline u8s narrow(u16s low, u16s high) { return {_mm_packus_epi16(low.v, high.v)}; }
inline u8s narrow(i16s low, i16s high) { return {_mm_packus_epi16(low.v, high.v)}; }
inline i8s narrowSigned(i16s low, i16s high) { return {_mm_packs_epi16(low.v, high.v)}; }
inline i16s narrow(i32s low, i32s high) { return {_mm_packs_epi32(low.v, high.v)}; }
// Lanes from 0 to 65535, moved to the signed range and back: only its limits are to be had.
inline u16s narrowWords(i32s low, i32s high)
{
    const __m128i middle = _mm_set1_epi32(32768);
    const __m128i words = _mm_packs_epi32(_mm_sub_epi32(low.v, middle), _mm_sub_epi32(high.v, middle));
    return {_mm_xor_si128(words, _mm_set1_epi16(-32768))};
}

inline WideBytes widen(u8s x) { return {{widenLow(x).v}, {widenHigh(x).v}}; }
// x << 8
inline WideBytes widenTop(u8s x)
{
    return {{_mm_unpacklo_epi8(_mm_setzero_si128(), x.v)}, {_mm_unpackhi_epi8(_mm_setzero_si128(), x.v)}};
}
// Limited to 0..255, in the order of the bytes that x came from.
inline u8s narrow(WideBytes x) { return narrow(x.first, x.second); }

// --- Floats --------------------------------------------------------------------------------------------------

inline f32s operator+(f32s a, f32s b) { return {_mm_add_ps(a.v, b.v)}; }
inline f32s operator-(f32s a, f32s b) { return {_mm_sub_ps(a.v, b.v)}; }
inline f32s operator*(f32s a, f32s b) { return {_mm_mul_ps(a.v, b.v)}; }
inline f32s operator/(f32s a, f32s b) { return {_mm_div_ps(a.v, b.v)}; }
inline f64s operator+(f64s a, f64s b) { return {_mm_add_pd(a.v, b.v)}; }
inline f64s operator-(f64s a, f64s b) { return {_mm_sub_pd(a.v, b.v)}; }
inline f64s operator*(f64s a, f64s b) { return {_mm_mul_pd(a.v, b.v)}; }
inline f64s operator/(f64s a, f64s b) { return {_mm_div_pd(a.v, b.v)}; }

// a > b ? a : b and a < b ? a : b: b where either is a NaN, and of two zeros b.
inline f32s larger(f32s a, f32s b) { return {_mm_max_ps(a.v, b.v)}; }
inline f32s smaller(f32s a, f32s b) { return {_mm_min_ps(a.v, b.v)}; }
inline f64s larger(f64s a, f64s b) { return {_mm_max_pd(a.v, b.v)}; }
inline f64s smaller(f64s a, f64s b) { return {_mm_min_pd(a.v, b.v)}; }

inline f64s squareRoot(f64s x) { return {_mm_sqrt_pd(x.v)}; }

inline f32s greater(f32s a, f32s b) { return {_mm_cmpgt_ps(a.v, b.v)}; }
inline f32s atLeast(f32s a, f32s b) { return {_mm_cmpge_ps(a.v, b.v)}; }
inline f64s atLeast(f64s a, f64s b) { return {_mm_cmpge_pd(a.v, b.v)}; }

// To 11 bits or better, processors differ; infinity for 0.
inline f32s approximateReciprocal(f32s x) { return {_mm_rcp_ps(x.v)}; }
// The same of doubles, by way of floats.
inline f64s approximateReciprocal(f64s x) { return {_mm_cvtps_pd(_mm_rcp_ps(_mm_cvtpd_ps(x.v)))}; }

inline f32s signBits(f32s x) { return x & splatF32(-0.0f); }
inline f64s signBits(f64s x) { return x & splatF64(-0.0); }
inline f32s magnitude(f32s x) { return without(x, splatF32(-0.0f)); }
inline f64s magnitude(f64s x) { return without(x, splatF64(-0.0)); }

inline f32s toFloat(i32s x) { return {_mm_cvtepi32_ps(x.v)}; }
// Toward zero; INT32_MIN for a NaN and for what 32 bits cannot hold.
inline i32s truncate(f32s x) { return {_mm_cvttps_epi32(x.v)}; }
// To the nearest, ties to even; likewise INT32_MIN for a NaN and beyond 32 bits.
inline i32s toNearestEven(f32s x) { return {_mm_cvtps_epi32(x.v)}; }
inline i32s truncate(f64s low, f64s high)
{
    return {_mm_unpacklo_epi64(_mm_cvttpd_epi32(low.v), _mm_cvttpd_epi32(high.v))};
}
inline Pair<f64s> toDouble(f32s x) { return {{_mm_cvtps_pd(x.v)}, {_mm_cvtps_pd(_mm_movehl_ps(x.v, x.v))}}; }
inline Pair<f64s> toDouble(i32s x) { return {{_mm_cvtepi32_pd(x.v)}, {_mm_cvtepi32_pd(_mm_unpackhi_epi64(x.v, x.v))}}; }
// As many as fit a vector of the wider type, read from memory and no more.
inline f64s loadAsDoubles(const float *from)
{
    return {_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64((const __m128i *)from)))};
}
inline i32s loadAsWide(const int16_t *from)
{
    const __m128i four = _mm_loadl_epi64((const __m128i *)from);
    return {_mm_srai_epi32(_mm_unpacklo_epi16(four, four), 16)};
}
inline i32s loadAsWide(const uint8_t *from)
{
    const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(loadPiece<int>(from)), _mm_setzero_si128());
    return {_mm_unpacklo_epi16(words, _mm_setzero_si128())};
}
// The same at the top of the lanes, zeros below.
inline i32s loadTop8(const uint8_t *from)
{
    const __m128i words = _mm_unpacklo_epi8(_mm_setzero_si128(), _mm_cvtsi32_si128(loadPiece<int>(from)));
    return {_mm_unpacklo_epi16(_mm_setzero_si128(), words)};
}
inline i32s loadTop16(const uint8_t *from)
{
    return {_mm_unpacklo_epi16(_mm_setzero_si128(), _mm_loadl_epi64((const __m128i *)from))};
}
// The entries of a table that every step-th index names.
template <int step> inline f32s lookUp(const float *table, const uint32_t *indices)
{
    return {_mm_setr_ps(table[indices[0]], table[indices[step]], table[indices[2 * step]], table[indices[3 * step]])};
}
// Rounded to nearest, as are those that go to memory as floats.
inline void storeAsFloats(float *to, f64s x) { _mm_storel_epi64((__m128i *)to, _mm_castps_si128(_mm_cvtpd_ps(x.v))); }
inline f32s toFloat(f64s low, f64s high) { return {_mm_movelh_ps(_mm_cvtpd_ps(low.v), _mm_cvtpd_ps(high.v))}; }

// --- Across lanes --------------------------------------------------------------------------------------------

// The lanes below n as they are, +0 in the others.
inline f32s keepFirst(f32s x, ptrdiff_t n)
{
    const __m128i index = _mm_setr_epi32(0, 1, 2, 3);
    return {_mm_and_ps(x.v, _mm_castsi128_ps(_mm_cmplt_epi32(index, _mm_set1_epi32((int)n))))};
}
inline f64s keepFirst(f64s x, ptrdiff_t n)
{
    const __m128i index = _mm_setr_epi32(0, 0, 1, 1);
    return {_mm_and_pd(x.v, _mm_castsi128_pd(_mm_cmplt_epi32(index, _mm_set1_epi32((int)n))))};
}

// Halves by halves: lane j += lane j + lanes/2, and so on down to lane 0.
inline float sumHalving(f32s x)
{
    const __m128 two = _mm_add_ps(x.v, _mm_movehl_ps(x.v, x.v));
    return _mm_cvtss_f32(_mm_add_ss(two, _mm_shuffle_ps(two, two, 1)));
}
inline double sumHalving(f64s x) { return _mm_cvtsd_f64(_mm_add_sd(x.v, _mm_unpackhi_pd(x.v, x.v))); }

// The lanes of each added up by halves, times a factor.
inline void storeSums(double *to, f64s a, f64s b, f64s c, f64s d, double factor)
{
    const f64s ab = {_mm_add_pd(_mm_unpacklo_pd(a.v, b.v), _mm_unpackhi_pd(a.v, b.v))};
    const f64s cd = {_mm_add_pd(_mm_unpacklo_pd(c.v, d.v), _mm_unpackhi_pd(c.v, d.v))};
    store(to, ab * splatF64(factor));
    store(to + 2, cd * splatF64(factor));
}

inline float largest(f32s x)
{
    const __m128 two = _mm_max_ps(x.v, _mm_movehl_ps(x.v, x.v));
    return _mm_cvtss_f32(_mm_max_ss(two, _mm_shuffle_ps(two, two, 1)));
}
inline double largest(f64s x) { return _mm_cvtsd_f64(_mm_max_sd(x.v, _mm_unpackhi_pd(x.v, x.v))); }
inline int16_t largest(i16s x)
{
    const __m128i four = _mm_max_epi16(x.v, _mm_unpackhi_epi64(x.v, x.v));
    const __m128i two = _mm_max_epi16(four, _mm_srli_epi64(four, 32));
    return (int16_t)_mm_cvtsi128_si32(_mm_max_epi16(two, _mm_srli_epi32(two, 16)));
}
inline uint16_t largest(Magnitudes<i16s> x)
{
    const __m128i four = _mm_min_epi16(x.negative.v, _mm_unpackhi_epi64(x.negative.v, x.negative.v));
    const __m128i two = _mm_min_epi16(four, _mm_srli_epi64(four, 32));
    return (uint16_t)-_mm_cvtsi128_si32(_mm_min_epi16(two, _mm_srli_epi32(two, 16)));
}
inline uint32_t largest(Magnitudes<i32s> x)
{
    const i32s two = smaller(x.negative, {_mm_unpackhi_epi64(x.negative.v, x.negative.v)});
    return 0 - (uint32_t)_mm_cvtsi128_si32(smaller(two, {_mm_srli_epi64(two.v, 32)}).v);
}

// The sum modulo 2^64 or 2^32.
inline uint64_t sum(u64s x) { return (uint64_t)_mm_cvtsi128_si64(_mm_add_epi64(x.v, _mm_unpackhi_epi64(x.v, x.v))); }
inline uint32_t sum(u32s x)
{
    const __m128i two = _mm_add_epi32(x.v, _mm_unpackhi_epi64(x.v, x.v));
    return (uint32_t)_mm_cvtsi128_si32(_mm_add_epi32(two, _mm_srli_epi64(two, 32)));
}

} // namespace
