// Pixels in 256-bit registers: the names of pixels128.h. Part of the vocabulary: avx2.h includes it at its end.
#pragma once

namespace {

// --- Parts of a register -------------------------------------------------------------------------------------

// The lower half and the lowest quarter; what lies above is anything.
template <class Vector> inline Vector loadHalf(const void *from)
{
    return fromBits<Vector>(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)from)));
}
template <class Vector> inline Vector loadHalves(const void *lower, const void *upper)
{
    return fromBits<Vector>(_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128((const __m128i *)lower)),
                                                    _mm_loadu_si128((const __m128i *)upper), 1));
}
template <class Vector> inline Vector loadQuarter(const void *from)
{
    return fromBits<Vector>(_mm256_castsi128_si256(_mm_loadl_epi64((const __m128i *)from)));
}
template <class Vector> inline void storeHalf(void *to, Vector x)
{
    _mm_storeu_si128((__m128i *)to, _mm256_castsi256_si128(bitsOf(x.v)));
}
template <class Vector> inline void storeUpperHalf(void *to, Vector x)
{
    _mm_storeu_si128((__m128i *)to, _mm256_extracti128_si256(bitsOf(x.v), 1));
}
template <class Vector> inline void storeQuarter(void *to, Vector x)
{
    _mm_storel_epi64((__m128i *)to, _mm256_castsi256_si128(bitsOf(x.v)));
}
template <class Vector> inline Vector upperHalf(Vector x)
{
    return fromBits<Vector>(_mm256_castsi128_si256(_mm256_extracti128_si256(bitsOf(x.v), 1)));
}

// --- Pairs ---------------------------------------------------------------------------------------------------

// The even and the odd lanes of a followed by b.
inline u8s evens(u8s a, u8s b)
{
    const __m256i mask = _mm256_set1_epi16(0xFF);
    return {unmix(_mm256_packus_epi16(_mm256_and_si256(a.v, mask), _mm256_and_si256(b.v, mask)))};
}
inline u8s odds(u8s a, u8s b)
{
    return {unmix(_mm256_packus_epi16(_mm256_srli_epi16(a.v, 8), _mm256_srli_epi16(b.v, 8)))};
}
inline u16s evens(u16s a, u16s b)
{
    const __m256i mask = _mm256_set1_epi32(0xFFFF);
    return {unmix(_mm256_packus_epi32(_mm256_and_si256(a.v, mask), _mm256_and_si256(b.v, mask)))};
}
inline u16s odds(u16s a, u16s b)
{
    return {unmix(_mm256_packus_epi32(_mm256_srli_epi32(a.v, 16), _mm256_srli_epi32(b.v, 16)))};
}

// Even lanes in the lower half, odd lanes in the upper half.
inline u8s splitPairs(u8s x)
{
    const __m128i order = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    return {unmix(_mm256_shuffle_epi8(x.v, _mm256_broadcastsi128_si256(order)))};
}
inline u16s splitPairs(u16s x)
{
    const __m128i order = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    return {unmix(_mm256_shuffle_epi8(x.v, _mm256_broadcastsi128_si256(order)))};
}

// a0 b0 a2 b2 ... and a1 b1 a3 b3 ...: applied to their own results they give a and b back.
inline u8s pairEvens(u8s a, u8s b)
{
    return {_mm256_blendv_epi8(_mm256_slli_epi16(b.v, 8), a.v, _mm256_set1_epi16(0xFF))};
}
inline u8s pairOdds(u8s a, u8s b)
{
    return {_mm256_blendv_epi8(b.v, _mm256_srli_epi16(a.v, 8), _mm256_set1_epi16(0xFF))};
}
inline u16s pairEvens(u16s a, u16s b) { return {_mm256_blend_epi16(a.v, _mm256_slli_epi32(b.v, 16), 0xAA)}; }
inline u16s pairOdds(u16s a, u16s b) { return {_mm256_blend_epi16(_mm256_srli_epi32(a.v, 16), b.v, 0xAA)}; }

// The pairs of lanes one place on, the last one twice.
inline u16s nextPairs(u16s x) { return {_mm256_permutevar8x32_epi32(x.v, _mm256_setr_epi32(1, 2, 3, 4, 5, 6, 7, 7))}; }
inline u8s nextPairs(u8s x)
{
    const __m256i last = _mm256_set1_epi16((short)_mm256_extract_epi16(x.v, 15));
    return {_mm256_alignr_epi8(_mm256_permute2x128_si256(x.v, last, 0x21), x.v, 2)};
}

// A quarter of a register of bytes each as words: in pairs a0 b0 a1 b1 ..., or a in the lower half and b in the upper.
// Back from there with the bytes limited.
inline u16s loadPairs(const uint8_t *a, const uint8_t *b)
{
    return {_mm256_cvtepu8_epi16(
        _mm_unpacklo_epi8(_mm_loadl_epi64((const __m128i *)a), _mm_loadl_epi64((const __m128i *)b)))};
}
inline u16s loadApart(const uint8_t *a, const uint8_t *b)
{
    return {_mm256_cvtepu8_epi16(
        _mm_unpacklo_epi64(_mm_loadl_epi64((const __m128i *)a), _mm_loadl_epi64((const __m128i *)b)))};
}
inline void storeApart(uint8_t *a, uint8_t *b, i16s x)
{
    const __m128i bytes = _mm_packus_epi16(_mm256_castsi256_si128(x.v), _mm256_extracti128_si256(x.v, 1));
    _mm_storel_epi64((__m128i *)a, bytes);
    _mm_storeh_pi((__m64 *)b, _mm_castsi128_ps(bytes));
}

// Sums of evens and of odds as one row of words, limited.
inline __m256i joinHalvesOfLanes(__m256i x)
{
    const __m128i order = _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    return _mm256_shuffle_epi8(x, _mm256_broadcastsi128_si256(order));
}
inline i16s narrowPairs(i32s even, i32s odd) { return {joinHalvesOfLanes(_mm256_packs_epi32(even.v, odd.v))}; }
inline u16s narrowPairsUnsigned(i32s even, i32s odd) { return {joinHalvesOfLanes(_mm256_packus_epi32(even.v, odd.v))}; }

// The upper halves of the lanes.
inline i16s highPairs(i32s even, i32s odd) { return {_mm256_blend_epi16(_mm256_srli_epi32(even.v, 16), odd.v, 0xAA)}; }

// a0 b0 a1 b1 ... as bytes, limited.
inline u8s narrowInterleaved(i16s a, i16s b)
{
    const __m128i order = _mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15);
    return {_mm256_shuffle_epi8(_mm256_packus_epi16(a.v, b.v), _mm256_broadcastsi128_si256(order))};
}

// --- Fours ---------------------------------------------------------------------------------------------------
// The work is that of pixels128.h in both halves of the registers; permutations ahead of it or behind it mend the
// order.

template <class Vector> struct Fours {
    Vector a;
    Vector b;
    Vector c;
    Vector d;
};

// x x x last x x x last ...
inline f32s splatFours(float x, float last) { return {_mm256_setr_ps(x, x, x, last, x, x, x, last)}; }
inline i16s splatFours(int16_t x, int16_t last)
{
    return {_mm256_setr_epi16(x, x, x, last, x, x, x, last, x, x, x, last, x, x, x, last)};
}

// Bytes a0 b0 c0 d0 a1 ... of words, limited, and back.
//   a0 c0 | b0 d0  ->  a0 b0 .. | c0 d0 ..  ->  a0 b0 c0 d0
inline Pair<u32s> interleaveFours(i16s a, i16s b, i16s c, i16s d)
{
    const __m256i ac = _mm256_packus_epi16(a.v, c.v);
    const __m256i bd = _mm256_packus_epi16(b.v, d.v);
    const __m256i ab = _mm256_unpacklo_epi8(ac, bd);
    const __m256i cd = _mm256_unpackhi_epi8(ac, bd);
    const __m256i low = _mm256_unpacklo_epi16(ab, cd);  // pixels 0-3, 8-11
    const __m256i high = _mm256_unpackhi_epi16(ab, cd); // pixels 4-7, 12-15
    return {{lowerHalves(low, high)}, {upperHalves(low, high)}};
}
inline Fours<u16s> splitFours(Pair<u32s> x)
{
    const __m256i low = lowerHalves(x.low.v, x.high.v);  // pixels 0-3, 8-11
    const __m256i high = upperHalves(x.low.v, x.high.v); // pixels 4-7, 12-15
    const __m128i order = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    const __m256i p = _mm256_shuffle_epi8(low, _mm256_broadcastsi128_si256(order)); // a of 0-3, b, c, d
    const __m256i q = _mm256_shuffle_epi8(high, _mm256_broadcastsi128_si256(order));
    const __m256i ab = _mm256_unpacklo_epi32(p, q); // a of 0-7, b
    const __m256i cd = _mm256_unpackhi_epi32(p, q);
    const __m256i none = _mm256_setzero_si256();
    return {{_mm256_unpacklo_epi8(ab, none)},
            {_mm256_unpackhi_epi8(ab, none)},
            {_mm256_unpacklo_epi8(cd, none)},
            {_mm256_unpackhi_epi8(cd, none)}};
}

// The same of bytes, four registers.
inline Fours<u32s> interleaveFours(u8s a, u8s b, u8s c, u8s d)
{
    const __m256i abLow = _mm256_unpacklo_epi8(a.v, b.v);
    const __m256i abHigh = _mm256_unpackhi_epi8(a.v, b.v);
    const __m256i cdLow = _mm256_unpacklo_epi8(c.v, d.v);
    const __m256i cdHigh = _mm256_unpackhi_epi8(c.v, d.v);
    const __m256i p = _mm256_unpacklo_epi16(abLow, cdLow); // pixels 0-3, 16-19
    const __m256i q = _mm256_unpackhi_epi16(abLow, cdLow);
    const __m256i r = _mm256_unpacklo_epi16(abHigh, cdHigh);
    const __m256i s = _mm256_unpackhi_epi16(abHigh, cdHigh);
    return {{lowerHalves(p, q)}, {lowerHalves(r, s)}, {upperHalves(p, q)}, {upperHalves(r, s)}};
}
inline Fours<u8s> splitFours(Fours<u32s> x)
{
    const __m256i order =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
    const __m256i p = _mm256_shuffle_epi8(lowerHalves(x.a.v, x.c.v), order); // a of 0-3, 16-19, b, c, d
    const __m256i q = _mm256_shuffle_epi8(upperHalves(x.a.v, x.c.v), order); // a of 4-7, 20-23
    const __m256i r = _mm256_shuffle_epi8(lowerHalves(x.b.v, x.d.v), order);
    const __m256i s = _mm256_shuffle_epi8(upperHalves(x.b.v, x.d.v), order);
    const __m256i abLow = _mm256_unpacklo_epi32(p, q);
    const __m256i cdLow = _mm256_unpackhi_epi32(p, q);
    const __m256i abHigh = _mm256_unpacklo_epi32(r, s);
    const __m256i cdHigh = _mm256_unpackhi_epi32(r, s);
    return {{_mm256_unpacklo_epi64(abLow, abHigh)},
            {_mm256_unpackhi_epi64(abLow, abHigh)},
            {_mm256_unpacklo_epi64(cdLow, cdHigh)},
            {_mm256_unpackhi_epi64(cdLow, cdHigh)}};
}

// Words a0 b0 c0 d0 a1 ... in four registers, and back.
inline Fours<u16s> interleaveFours(u16s a, u16s b, u16s c, u16s d)
{
    const __m256i abLow = _mm256_unpacklo_epi16(a.v, b.v);
    const __m256i abHigh = _mm256_unpackhi_epi16(a.v, b.v);
    const __m256i cdLow = _mm256_unpacklo_epi16(c.v, d.v);
    const __m256i cdHigh = _mm256_unpackhi_epi16(c.v, d.v);
    const __m256i p = _mm256_unpacklo_epi32(abLow, cdLow); // pixels 0 1, 8 9
    const __m256i q = _mm256_unpackhi_epi32(abLow, cdLow); // pixels 2 3, 10 11
    const __m256i r = _mm256_unpacklo_epi32(abHigh, cdHigh);
    const __m256i s = _mm256_unpackhi_epi32(abHigh, cdHigh);
    return {{lowerHalves(p, q)}, {lowerHalves(r, s)}, {upperHalves(p, q)}, {upperHalves(r, s)}};
}
inline Fours<u16s> splitFours(Fours<u16s> x)
{
    const __m256i x0 = lowerHalves(x.a.v, x.c.v); // pixels 0 1, 8 9
    const __m256i x1 = upperHalves(x.a.v, x.c.v); // pixels 2 3, 10 11
    const __m256i x2 = lowerHalves(x.b.v, x.d.v);
    const __m256i x3 = upperHalves(x.b.v, x.d.v);
    const __m256i p = _mm256_unpacklo_epi16(x0, x1); // a of 0 2, b, c, d
    const __m256i q = _mm256_unpackhi_epi16(x0, x1); // a of 1 3
    const __m256i r = _mm256_unpacklo_epi16(x2, x3);
    const __m256i s = _mm256_unpackhi_epi16(x2, x3);
    const __m256i abLow = _mm256_unpacklo_epi16(p, q); // a of 0 1 2 3, b
    const __m256i cdLow = _mm256_unpackhi_epi16(p, q);
    const __m256i abHigh = _mm256_unpacklo_epi16(r, s);
    const __m256i cdHigh = _mm256_unpackhi_epi16(r, s);
    return {{_mm256_unpacklo_epi64(abLow, abHigh)},
            {_mm256_unpackhi_epi64(abLow, abHigh)},
            {_mm256_unpacklo_epi64(cdLow, cdHigh)},
            {_mm256_unpackhi_epi64(cdLow, cdHigh)}};
}

// Floats a0 b0 c0 d0 a1 ... in four registers, and back.
inline Fours<f32s> transposeFours(f32s a, f32s b, f32s c, f32s d)
{
    const __m256d ab01 = _mm256_castps_pd(_mm256_unpacklo_ps(a.v, b.v));
    const __m256d ab23 = _mm256_castps_pd(_mm256_unpackhi_ps(a.v, b.v));
    const __m256d cd01 = _mm256_castps_pd(_mm256_unpacklo_ps(c.v, d.v));
    const __m256d cd23 = _mm256_castps_pd(_mm256_unpackhi_ps(c.v, d.v));
    return {{_mm256_castpd_ps(_mm256_unpacklo_pd(ab01, cd01))},
            {_mm256_castpd_ps(_mm256_unpackhi_pd(ab01, cd01))},
            {_mm256_castpd_ps(_mm256_unpacklo_pd(ab23, cd23))},
            {_mm256_castpd_ps(_mm256_unpackhi_pd(ab23, cd23))}};
}
inline f32s lowerHalves(f32s a, f32s b) { return {_mm256_permute2f128_ps(a.v, b.v, 0x20)}; }
inline f32s upperHalves(f32s a, f32s b) { return {_mm256_permute2f128_ps(a.v, b.v, 0x31)}; }
inline Fours<f32s> interleaveFours(f32s a, f32s b, f32s c, f32s d)
{
    const Fours<f32s> x = transposeFours(a, b, c, d); // pixels 0 4, 1 5, 2 6, 3 7
    return {lowerHalves(x.a, x.b), lowerHalves(x.c, x.d), upperHalves(x.a, x.b), upperHalves(x.c, x.d)};
}
inline Fours<f32s> splitFours(Fours<f32s> x)
{
    return transposeFours(lowerHalves(x.a, x.c), upperHalves(x.a, x.c), lowerHalves(x.b, x.d), upperHalves(x.b, x.d));
}

// --- Threes --------------------------------------------------------------------------------------------------

// Three words for every four lanes, the fourth anything. Reads 6 bytes for every four lanes, no more.
inline u16s loadThrees(const uint8_t *from)
{
    return {load24(from, _mm256_setr_epi8(0, 1, 2, 3, 4, 5, -1, -1, 6, 7, 8, 9, 10, 11, -1, -1, //
                                          4, 5, 6, 7, 8, 9, -1, -1, 10, 11, 12, 13, 14, 15, -1, -1))};
}
inline Fours<u16s> loadThrees4(const uint8_t *from)
{
    return {loadThrees(from), loadThrees(from + 24), loadThrees(from + 48), loadThrees(from + 72)};
}

// The first three of every four lanes, the fourth pushed to the end of each half: then they are 3-byte pixels too.
inline u32s pushThrees(u16s x)
{
    return {_mm256_shuffle_epi8(x.v, _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 8, 9, 10, -1, 11, 12, 13, -1, //
                                                      0, 1, 2, -1, 3, 4, 5, -1, 8, 9, 10, -1, 11, 12, 13, -1))};
}
inline void storeThrees(uint8_t *to, u16s x) { storePixels24(to, pushThrees(x)); }
inline void storeThrees4(uint8_t *to, Fours<u16s> x)
{
    storePixels24(to, pushThrees(x.a), pushThrees(x.b), pushThrees(x.c), pushThrees(x.d));
}

// --- Bytes of a word -----------------------------------------------------------------------------------------

// Byte i of every lane is byte `from i` of it.
template <int first, int second, int third, int fourth> inline u32s orderBytes(u32s x)
{
    const __m128i order =
        _mm_setr_epi8(first, second, third, fourth, first + 4, second + 4, third + 4, fourth + 4, first + 8, second + 8,
                      third + 8, fourth + 8, first + 12, second + 12, third + 12, fourth + 12);
    return {_mm256_shuffle_epi8(x.v, _mm256_broadcastsi128_si256(order))};
}

// Bytes first to fourth of every lane as words; words first to fourth of every four as bytes, limited.
template <int... list> inline Pair<u16s> widenFours(u32s x)
{
    const u8s ordered = as<u8s>(orderBytes<list...>(x));
    return {widenLow(ordered), widenHigh(ordered)};
}
template <int... list> inline u32s narrowFours(u16s low, u16s high)
{
    return orderBytes<list...>(as<u32s>(narrow(as<i16s>(low), as<i16s>(high))));
}

// Limited to bytes, in order.
inline u8s narrowToBytes(i32s a, i32s b, i32s c, i32s d)
{
    const __m256i words = _mm256_packus_epi16(_mm256_packs_epi32(a.v, b.v), _mm256_packs_epi32(c.v, d.v));
    return {_mm256_permutevar8x32_epi32(words, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7))};
}

// Byte n of every lane in both its words.
template <int n> inline u16s spreadByte(u32s x)
{
    const __m128i order =
        _mm_setr_epi8(n, -1, n, -1, n + 4, -1, n + 4, -1, n + 8, -1, n + 8, -1, n + 12, -1, n + 12, -1);
    return {_mm256_shuffle_epi8(x.v, _mm256_broadcastsi128_si256(order))};
}

// Lanes as bytes of one lane, limited.
inline u32s narrowLanes(i32s a, i32s b, i32s c, i32s d)
{
    const __m256i bytes = _mm256_packus_epi16(_mm256_packs_epi32(a.v, b.v), _mm256_packs_epi32(c.v, d.v));
    const __m128i order = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    return {_mm256_shuffle_epi8(bytes, _mm256_broadcastsi128_si256(order))};
}

// --- Shifts by a number that a caller gives ------------------------------------------------------------------

struct ShiftCount {
    __m128i v;
};
inline ShiftCount shiftCount(int bits) { return {_mm_cvtsi32_si128(bits)}; }
inline i16s shiftRight(i16s x, ShiftCount bits) { return {_mm256_sra_epi16(x.v, bits.v)}; }
inline i32s shiftRight(i32s x, ShiftCount bits) { return {_mm256_sra_epi32(x.v, bits.v)}; }

} // namespace
