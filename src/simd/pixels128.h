// Pixels in 128-bit registers: several components side by side, or every component in a register of its own. Part of
// the vocabulary; pixels256.h has the same names.
//
// Names: pairs are the lanes 2i and 2i + 1, fours the lanes 4i to 4i + 3.
#pragma once

#include "simd/vectors128.h"

namespace {

// --- Parts of a register -------------------------------------------------------------------------------------

// The lower half and the lowest quarter; what lies above is anything.
template <class Vector> inline Vector loadHalf(const void *from)
{
    return fromBits<Vector>(_mm_loadl_epi64((const __m128i *)from));
}
template <class Vector> inline Vector loadHalves(const void *lower, const void *upper)
{
    return fromBits<Vector>(
        _mm_unpacklo_epi64(_mm_loadl_epi64((const __m128i *)lower), _mm_loadl_epi64((const __m128i *)upper)));
}
template <class Vector> inline Vector loadQuarter(const void *from)
{
    return fromBits<Vector>(_mm_cvtsi32_si128(loadPiece<int>((const uint8_t *)from)));
}
template <class Vector> inline void storeHalf(void *to, Vector x) { _mm_storel_epi64((__m128i *)to, bitsOf(x.v)); }
template <class Vector> inline void storeUpperHalf(void *to, Vector x)
{
    _mm_storeh_pi((__m64 *)to, _mm_castsi128_ps(bitsOf(x.v)));
}
template <class Vector> inline void storeQuarter(void *to, Vector x)
{
    const int piece = _mm_cvtsi128_si32(bitsOf(x.v));
    memcpy(to, &piece, sizeof(piece));
}
template <class Vector> inline Vector upperHalf(Vector x)
{
    return fromBits<Vector>(_mm_unpackhi_epi64(bitsOf(x.v), bitsOf(x.v)));
}

// --- Pairs ---------------------------------------------------------------------------------------------------

// The even and the odd lanes of a followed by b.
inline u8s evens(u8s a, u8s b)
{
    const __m128i mask = _mm_set1_epi16(0xFF);
    return {_mm_packus_epi16(_mm_and_si128(a.v, mask), _mm_and_si128(b.v, mask))};
}
inline u8s odds(u8s a, u8s b) { return {_mm_packus_epi16(_mm_srli_epi16(a.v, 8), _mm_srli_epi16(b.v, 8))}; }
inline u16s evens(u16s a, u16s b)
{
    return as<u16s>(evens(as<u32s>(orderFours<0, 2, 1, 3>(a)), as<u32s>(orderFours<0, 2, 1, 3>(b))));
}
inline u16s odds(u16s a, u16s b)
{
    return as<u16s>(odds(as<u32s>(orderFours<0, 2, 1, 3>(a)), as<u32s>(orderFours<0, 2, 1, 3>(b))));
}

// Even lanes in the lower half, odd lanes in the upper half.
inline u8s splitPairs(u8s x)
{
    return {_mm_packus_epi16(_mm_and_si128(x.v, _mm_set1_epi16(0xFF)), _mm_srli_epi16(x.v, 8))};
}
inline u16s splitPairs(u16s x)
{
    const u16s fours = orderFours<0, 2, 1, 3>(x);
    return {_mm_shuffle_epi32(fours.v, _MM_SHUFFLE(3, 1, 2, 0))};
}

// a0 b0 a2 b2 ... and a1 b1 a3 b3 ...: applied to their own results they give a and b back.
inline u8s pairEvens(u8s a, u8s b)
{
    return {_mm_or_si128(_mm_and_si128(a.v, _mm_set1_epi16(0xFF)), _mm_slli_epi16(b.v, 8))};
}
inline u8s pairOdds(u8s a, u8s b)
{
    return {_mm_or_si128(_mm_srli_epi16(a.v, 8), _mm_andnot_si128(_mm_set1_epi16(0xFF), b.v))};
}
inline u16s pairEvens(u16s a, u16s b)
{
    return {_mm_or_si128(_mm_and_si128(a.v, _mm_set1_epi32(0xFFFF)), _mm_slli_epi32(b.v, 16))};
}
inline u16s pairOdds(u16s a, u16s b)
{
    return {_mm_or_si128(_mm_srli_epi32(a.v, 16), _mm_andnot_si128(_mm_set1_epi32(0xFFFF), b.v))};
}

// The pairs of lanes one place on, the last one twice.
inline u16s nextPairs(u16s x) { return {_mm_shuffle_epi32(x.v, _MM_SHUFFLE(3, 3, 2, 1))}; }
inline u8s nextPairs(u8s x) { return {_mm_insert_epi16(_mm_srli_si128(x.v, 2), _mm_extract_epi16(x.v, 7), 7)}; }

// A quarter of a register of bytes each as words: in pairs a0 b0 a1 b1 ..., or a in the lower half and b in the upper.
// Back from there with the bytes limited.
inline u16s loadPairs(const uint8_t *a, const uint8_t *b)
{
    return widenLow(interleaveLow(loadQuarter<u8s>(a), loadQuarter<u8s>(b)));
}
inline u16s loadApart(const uint8_t *a, const uint8_t *b)
{
    return widenLow(as<u8s>(interleaveLow(loadQuarter<u32s>(a), loadQuarter<u32s>(b))));
}
inline void storeApart(uint8_t *a, uint8_t *b, i16s x)
{
    const u32s bytes = as<u32s>(narrow(x, x));
    storeQuarter(a, bytes);
    storeQuarter(b, u32s{_mm_srli_epi64(bytes.v, 32)});
}

// Sums of evens and of odds as one row of words, limited.
inline i16s narrowPairs(i32s even, i32s odd)
{
    const __m128i apart = _mm_packs_epi32(even.v, odd.v);
    return {_mm_unpacklo_epi16(apart, _mm_unpackhi_epi64(apart, apart))};
}
inline u16s narrowPairsUnsigned(i32s even, i32s odd)
{
    const __m128i apart = narrowWords(even, odd).v;
    return {_mm_unpacklo_epi16(apart, _mm_unpackhi_epi64(apart, apart))};
}

// The upper halves of the lanes.
inline i16s highPairs(i32s even, i32s odd)
{
    return {_mm_or_si128(_mm_srli_epi32(even.v, 16), _mm_andnot_si128(_mm_set1_epi32(0xFFFF), odd.v))};
}

// a0 b0 a1 b1 ... as bytes, limited.
inline u8s narrowInterleaved(i16s a, i16s b)
{
    const __m128i apart = _mm_packus_epi16(a.v, b.v);
    return {_mm_unpacklo_epi8(apart, _mm_unpackhi_epi64(apart, apart))};
}

// --- Fours ---------------------------------------------------------------------------------------------------

template <class Vector> struct Fours {
    Vector a;
    Vector b;
    Vector c;
    Vector d;
};

// x x x last x x x last ...
inline f32s splatFours(float x, float last) { return {_mm_setr_ps(x, x, x, last)}; }
inline i16s splatFours(int16_t x, int16_t last) { return {_mm_setr_epi16(x, x, x, last, x, x, x, last)}; }

// Bytes a0 b0 c0 d0 a1 ... of words, limited, and back.
//   a0 c0 | b0 d0  ->  a0 b0 .. | c0 d0 ..  ->  a0 b0 c0 d0
inline Pair<u32s> interleaveFours(i16s a, i16s b, i16s c, i16s d)
{
    const __m128i ac = _mm_packus_epi16(a.v, c.v);
    const __m128i bd = _mm_packus_epi16(b.v, d.v);
    const __m128i ab = _mm_unpacklo_epi8(ac, bd);
    const __m128i cd = _mm_unpackhi_epi8(ac, bd);
    return {{_mm_unpacklo_epi16(ab, cd)}, {_mm_unpackhi_epi16(ab, cd)}};
}
inline Fours<u16s> splitFours(Pair<u32s> x)
{
    const __m128i p = _mm_unpacklo_epi8(x.low.v, x.high.v); // pixels 0 4 1 5
    const __m128i q = _mm_unpackhi_epi8(x.low.v, x.high.v); //        2 6 3 7
    const __m128i even = _mm_unpacklo_epi8(p, q);           // a of 0 2 4 6, b, c, d
    const __m128i odd = _mm_unpackhi_epi8(p, q);
    const u8s ab = {_mm_unpacklo_epi8(even, odd)};
    const u8s cd = {_mm_unpackhi_epi8(even, odd)};
    return {widenLow(ab), widenHigh(ab), widenLow(cd), widenHigh(cd)};
}

// The same of bytes, four registers.
inline Fours<u32s> interleaveFours(u8s a, u8s b, u8s c, u8s d)
{
    const __m128i abLow = _mm_unpacklo_epi8(a.v, b.v);
    const __m128i abHigh = _mm_unpackhi_epi8(a.v, b.v);
    const __m128i cdLow = _mm_unpacklo_epi8(c.v, d.v);
    const __m128i cdHigh = _mm_unpackhi_epi8(c.v, d.v);
    return {{_mm_unpacklo_epi16(abLow, cdLow)},
            {_mm_unpackhi_epi16(abLow, cdLow)},
            {_mm_unpacklo_epi16(abHigh, cdHigh)},
            {_mm_unpackhi_epi16(abHigh, cdHigh)}};
}
inline Fours<u8s> splitFours(Fours<u32s> x)
{
    const __m128i p = _mm_unpacklo_epi8(x.a.v, x.c.v); // pixels 0 8 1 9
    const __m128i q = _mm_unpackhi_epi8(x.a.v, x.c.v); //        2 10 3 11
    const __m128i r = _mm_unpacklo_epi8(x.b.v, x.d.v); //        4 12 5 13
    const __m128i s = _mm_unpackhi_epi8(x.b.v, x.d.v);
    const __m128i pr = _mm_unpacklo_epi8(p, r); // 0 4 8 12: a, b, c, d
    const __m128i prOdd = _mm_unpackhi_epi8(p, r);
    const __m128i qs = _mm_unpacklo_epi8(q, s); // 2 6 10 14
    const __m128i qsOdd = _mm_unpackhi_epi8(q, s);
    const __m128i evenAb = _mm_unpacklo_epi8(pr, qs); // a of 0 2 4 .. 14, b
    const __m128i evenCd = _mm_unpackhi_epi8(pr, qs);
    const __m128i oddAb = _mm_unpacklo_epi8(prOdd, qsOdd);
    const __m128i oddCd = _mm_unpackhi_epi8(prOdd, qsOdd);
    return {{_mm_unpacklo_epi8(evenAb, oddAb)},
            {_mm_unpackhi_epi8(evenAb, oddAb)},
            {_mm_unpacklo_epi8(evenCd, oddCd)},
            {_mm_unpackhi_epi8(evenCd, oddCd)}};
}

// Words a0 b0 c0 d0 a1 ... in four registers, and back.
inline Fours<u16s> interleaveFours(u16s a, u16s b, u16s c, u16s d)
{
    const u32s abLow = as<u32s>(interleaveLow(a, b));
    const u32s abHigh = as<u32s>(interleaveHigh(a, b));
    const u32s cdLow = as<u32s>(interleaveLow(c, d));
    const u32s cdHigh = as<u32s>(interleaveHigh(c, d));
    return {as<u16s>(interleaveLow(abLow, cdLow)), as<u16s>(interleaveHigh(abLow, cdLow)),
            as<u16s>(interleaveLow(abHigh, cdHigh)), as<u16s>(interleaveHigh(abHigh, cdHigh))};
}
inline Fours<u16s> splitFours(Fours<u16s> x)
{
    const __m128i p = _mm_unpacklo_epi16(x.a.v, x.b.v); // a of 0 2, b, c, d
    const __m128i q = _mm_unpackhi_epi16(x.a.v, x.b.v); // a of 1 3
    const __m128i r = _mm_unpacklo_epi16(x.c.v, x.d.v);
    const __m128i s = _mm_unpackhi_epi16(x.c.v, x.d.v);
    const __m128i abLow = _mm_unpacklo_epi16(p, q); // a of 0 1 2 3, b
    const __m128i cdLow = _mm_unpackhi_epi16(p, q);
    const __m128i abHigh = _mm_unpacklo_epi16(r, s);
    const __m128i cdHigh = _mm_unpackhi_epi16(r, s);
    return {{_mm_unpacklo_epi64(abLow, abHigh)},
            {_mm_unpackhi_epi64(abLow, abHigh)},
            {_mm_unpacklo_epi64(cdLow, cdHigh)},
            {_mm_unpackhi_epi64(cdLow, cdHigh)}};
}

// Floats a0 b0 c0 d0 a1 ... in four registers, and back: a transposition is its own inverse.
inline Fours<f32s> interleaveFours(f32s a, f32s b, f32s c, f32s d)
{
    const __m128 ab01 = _mm_unpacklo_ps(a.v, b.v);
    const __m128 ab23 = _mm_unpackhi_ps(a.v, b.v);
    const __m128 cd01 = _mm_unpacklo_ps(c.v, d.v);
    const __m128 cd23 = _mm_unpackhi_ps(c.v, d.v);
    return {{_mm_movelh_ps(ab01, cd01)},
            {_mm_movehl_ps(cd01, ab01)},
            {_mm_movelh_ps(ab23, cd23)},
            {_mm_movehl_ps(cd23, ab23)}};
}
inline Fours<f32s> splitFours(Fours<f32s> x) { return interleaveFours(x.a, x.b, x.c, x.d); }

// --- Threes --------------------------------------------------------------------------------------------------

// Three words for every four lanes, the fourth anything. Reads 6 bytes for every four lanes, no more.
inline u16s loadThrees(const uint8_t *from)
{
    const __m128i low = _mm_loadl_epi64((const __m128i *)from);
    const __m128i high = _mm_srli_epi64(_mm_loadl_epi64((const __m128i *)(from + 4)), 16);
    return {_mm_unpacklo_epi64(low, high)};
}
inline Fours<u16s> loadThrees4(const uint8_t *from)
{
    return {loadThrees(from), loadThrees(from + 12), loadThrees(from + 24), loadThrees(from + 36)};
}

// The first three of every four lanes, pushed together: 12 bytes, zeros behind them.
inline __m128i packThrees(u16s x)
{
    const __m128i sixes = _mm_and_si128(x.v, _mm_set1_epi64x(0x0000FFFFFFFFFFFF));
    return _mm_or_si128(_mm_move_epi64(sixes), _mm_slli_si128(_mm_srli_si128(sixes, 8), 6));
}
inline void storeThrees(uint8_t *to, u16s x) { store12(to, packThrees(x)); }
inline void storeThrees4(uint8_t *to, Fours<u16s> x)
{
    store48(to, packThrees(x.a), packThrees(x.b), packThrees(x.c), packThrees(x.d));
}

// --- Bytes of a word -----------------------------------------------------------------------------------------

// The bytes of every lane that `first` to `fourth` move up by `distance`, at their new places; zeros elsewhere.
template <int distance, int first, int second, int third, int fourth> inline u32s moveBytes(u32s x)
{
    constexpr uint32_t mask = (0 - first == distance ? 0xFFu : 0) | (1 - second == distance ? 0xFF00u : 0) |
                              (2 - third == distance ? 0xFF0000u : 0) | (3 - fourth == distance ? 0xFF000000u : 0);
    constexpr uint32_t moved = distance < 0 ? 0xFFFFFFFFu >> (-8 * distance) : 0xFFFFFFFFu << (8 * distance);
    if constexpr (mask == 0)
        return zero<u32s>();
    else if constexpr (distance < 0)
        x = shiftRight<-8 * distance>(x);
    else if constexpr (distance > 0)
        x = shiftLeft<8 * distance>(x);
    return mask == moved ? x : x & splat32(mask);
}
// Byte i of every lane is byte number `i` of the list: all that move equally far go together.
template <int... list> inline u32s orderBytes(u32s x)
{
    return moveBytes<0, list...>(x) | (moveBytes<-1, list...>(x) | moveBytes<1, list...>(x)) |
           (moveBytes<-2, list...>(x) | moveBytes<2, list...>(x)) |
           (moveBytes<-3, list...>(x) | moveBytes<3, list...>(x));
}

// Bytes first to fourth of every lane as words; words first to fourth of every four as bytes, limited.
template <int first, int second, int third, int fourth> inline Pair<u16s> widenFours(u32s x)
{
    if constexpr (first == 2 && second == 1 && third == 0 && fourth == 3) { // one register to swap, not two
        const u16s even = orderFours<1, 0, 3, 2>(as<u16s>(x & splat32(0x00FF00FF)));
        const u16s odd = shiftRight<8>(as<u16s>(x));
        return {interleaveLow(even, odd), interleaveHigh(even, odd)};
    } else {
        return {orderFours<first, second, third, fourth>(widenLow(as<u8s>(x))),
                orderFours<first, second, third, fourth>(widenHigh(as<u8s>(x)))};
    }
}
template <int... list> inline u32s narrowFours(u16s low, u16s high)
{
    return as<u32s>(narrow(as<i16s>(orderFours<list...>(low)), as<i16s>(orderFours<list...>(high))));
}

// Limited to bytes, in order.
inline u8s narrowToBytes(i32s a, i32s b, i32s c, i32s d) { return narrow(narrow(a, b), narrow(c, d)); }

// Byte n of every lane in both its words.
template <int n> inline u16s spreadByte(u32s x)
{
    u32s byte = x;
    if constexpr (n < 3)
        byte = shiftLeft<24 - 8 * n>(x);
    byte = shiftRight<24>(byte);
    return as<u16s>(byte | shiftLeft<16>(byte));
}

// Lanes as bytes of one lane, limited.
//   a a a a c c c c | b b b b d d d d  ->  a b a b ... c d c d ...  ->  a b c d
inline u32s narrowLanes(i32s a, i32s b, i32s c, i32s d)
{
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(a.v, c.v), _mm_packs_epi32(b.v, d.v));
    const __m128i pairs = _mm_unpacklo_epi8(bytes, _mm_srli_si128(bytes, 8));
    return {_mm_unpacklo_epi16(pairs, _mm_srli_si128(pairs, 8))};
}

// --- Shifts by a number that a caller gives ------------------------------------------------------------------

struct ShiftCount {
    __m128i v;
};
inline ShiftCount shiftCount(int bits) { return {_mm_cvtsi32_si128(bits)}; }
inline i16s shiftRight(i16s x, ShiftCount bits) { return {_mm_sra_epi16(x.v, bits.v)}; }
inline i32s shiftRight(i32s x, ShiftCount bits) { return {_mm_sra_epi32(x.v, bits.v)}; }

} // namespace
