// Loops and ragged ends, written once for all kernels. A tier source includes its vocabulary first.
//
// A row that is at least a block long ends with a block that overlaps the one before: any width costs at most one
// block more than it needs. A shorter row travels through a block on the stack. Nothing outside the row is touched.
#pragma once

#include "simd/composed.h"

namespace {

// The word at an address of any alignment.
inline uint16_t loadWord(const void *from)
{
    uint16_t word;
    memcpy(&word, from, sizeof(word));
    return word;
}

// Copies n bytes behind which `room` bytes are free, the rest of them zeroed. Whole registers at a time: a load of what
// a narrower store has just written would have to wait for it.
template <ptrdiff_t room> inline void copyPadded(uint8_t *to, const uint8_t *from, ptrdiff_t n)
{
    static_assert(room % 16 == 0);
    for (ptrdiff_t i = 0; i < room; i += 16) {
        __m128i bytes = _mm_setzero_si128();
        if (n - i >= 16)
            bytes = _mm_loadu_si128((const __m128i *)(from + i));
        else if (n > i)
            bytes = loadFew(from + i, n - i);
        _mm_storeu_si128((__m128i *)(to + i), bytes);
    }
}

// Copies n bytes without a call.
inline void copyFew(uint8_t *to, const uint8_t *from, ptrdiff_t n)
{
    for (; n >= 16; n -= 16, to += 16, from += 16)
        _mm_storeu_si128((__m128i *)to, _mm_loadu_si128((const __m128i *)from));
    if (n)
        storeEnds16(to, loadEnds16(from, n), n);
}

// A source row of `unit` bytes a unit. Around its block a step also reads `before` bytes ahead of it and `after`
// bytes behind it, which the row's owner provides at both ends of the row.
template <int unit, int before = 0, int after = 0> struct In {
    const void *row;

    const uint8_t *at(ptrdiff_t i) const { return (const uint8_t *)row + i * unit; }

    // Room for a row that is shorter than a block of `size`.
    template <int size> struct Short {
        static constexpr ptrdiff_t room = (before + size * unit + after + 15) / 16 * 16;
        uint8_t bytes[room];

        Short() {} // leaves the bytes alone: most rows never come here
        In take(In from, ptrdiff_t n)
        {
            copyPadded<room>(bytes, from.at(0) - before, before + n * unit + after);
            return {bytes + before};
        }
        void giveBack(In, ptrdiff_t) const {}
    };
};

// A destination row of `unit` bytes a unit.
template <int unit> struct Out {
    void *row;

    uint8_t *at(ptrdiff_t i) const { return (uint8_t *)row + i * unit; }

    template <int size> struct Short {
        uint8_t bytes[size * unit];

        Short() {}
        Out take(Out, ptrdiff_t) { return {bytes}; }
        void giveBack(Out to, ptrdiff_t n) const { copyFew(to.at(0), bytes, n * unit); }
    };
};

// Runs step over n units, `size` at a time; step gets a pointer into every row (Out or In) and handles exactly
// `size` units. Rows must not overlap. A count of 0 or less does nothing.
template <int size, class Step, class... Rows> inline void forBlocks(ptrdiff_t n, Step step, Rows... rows)
{
    if (n <= 0)
        return;
    const bool isShort = n < size;
    [&](typename Rows::template Short<size>... shorts) {
        [&](auto... work) {
            const ptrdiff_t last = isShort ? 0 : n - size;
            for (ptrdiff_t i = 0; i < last; i += size)
                step(work.at(i)...);
            step(work.at(last)...);
        }((isShort ? shorts.take(rows, n) : rows)...);
        if (isShort)
            (shorts.giveBack(rows, n), ...);
    }(typename Rows::template Short<size>()...);
}

// dst[i] = op(sources[i]...) over n elements, a register at a time. All rows have elements of one size; dst may equal
// any of the sources: the last block is computed first, from inputs that nothing has overwritten yet.
template <class Vector, class Element, class Op, class... Sources>
inline void map(Element *dst, ptrdiff_t n, Op op, const Sources *...sources)
{
    static_assert(((sizeof(Sources) == sizeof(Element)) && ...));
    constexpr int size = Vector::lanes;
    static_assert(size * sizeof(Element) == sizeof(Vector));
    if (n >= size) {
        const auto last = op(load<Vector>(sources + (n - size))...);
        ptrdiff_t i = 0;
        // A register at a time, four a turn: with several loaded ahead of the stores this ran a fifth slower (Zen 4).
        for (; i < n - 4 * size; i += 4 * size) {
            store(dst + i, op(load<Vector>(sources + i)...));
            store(dst + i + size, op(load<Vector>(sources + i + size)...));
            store(dst + i + 2 * size, op(load<Vector>(sources + i + 2 * size)...));
            store(dst + i + 3 * size, op(load<Vector>(sources + i + 3 * size)...));
        }
        for (; i < n - size; i += size)
            store(dst + i, op(load<Vector>(sources + i)...));
        store(dst + (n - size), last);
    } else if (n > 0) {
        const ptrdiff_t bytes = n * (ptrdiff_t)sizeof(Element);
        storeEnds(dst, op(loadEnds<Vector>(sources, bytes)...), bytes);
    }
}

// --- Reductions ----------------------------------------------------------------------------------------------
// A source of a reduction hands out vectors of elements: at(i) those from element i on, first(i, k) the k elements from
// i on, zeros behind them, k from 1 to a whole vector. Nothing outside the row is read.

template <class V> struct Lanes {
    using Vector = V;
    const void *row;

    static constexpr ptrdiff_t unit = sizeof(V) / V::lanes;
    V at(ptrdiff_t i) const { return load<V>((const uint8_t *)row + i * unit); }
    V first(ptrdiff_t i, ptrdiff_t k) const { return loadFirst<V>((const uint8_t *)row + i * unit, k * unit); }
};

// Floats to sum up in doubles.
struct FloatsAsDoubles {
    using Vector = f64s;
    const float *row;

    f64s at(ptrdiff_t i) const { return loadAsDoubles(row + i); }
    f64s first(ptrdiff_t i, ptrdiff_t k) const
    {
        return toDouble(loadFirst<f32s>(row + i, k * (ptrdiff_t)sizeof(float))).low;
    }
};

// Signed 16-bit samples as floats, not scaled.
struct Words16AsFloats {
    using Vector = f32s;
    const int16_t *row;

    f32s at(ptrdiff_t i) const { return toFloat(loadAsWide(row + i)); }
    f32s first(ptrdiff_t i, ptrdiff_t k) const
    {
        return toFloat(widenLow(loadFirst<i16s>(row + i, k * (ptrdiff_t)sizeof(int16_t))));
    }
};

// Signed 32-bit samples as floats, not scaled.
struct Words32AsFloats {
    using Vector = f32s;
    const int32_t *row;

    f32s at(ptrdiff_t i) const { return toFloat(load<i32s>(row + i)); }
    f32s first(ptrdiff_t i, ptrdiff_t k) const
    {
        return toFloat(loadFirst<i32s>(row + i, k * (ptrdiff_t)sizeof(int32_t)));
    }
};

// Packed signed 24-bit samples as floats, not scaled.
struct Bytes24AsFloats {
    using Vector = f32s;
    const uint8_t *row;

    f32s at(ptrdiff_t i) const { return toFloat(shiftRight<8>(loadTop24(row + 3 * i))); }
    f32s first(ptrdiff_t i, ptrdiff_t k) const
    {
        constexpr ptrdiff_t room = (3 * f32s::lanes + 15) / 16 * 16;
        uint8_t bytes[room];
        copyPadded<room>(bytes, row + 3 * i, 3 * k);
        return toFloat(shiftRight<8>(loadTop24(bytes)));
    }
};

// The sum of term(sources[i]...) over n elements in `lanes` lanes: element i goes to lane i % lanes, then lane j takes
// lane j + lanes/2, and so on by halves. The order of additions is thereby the same at every width.
template <int lanes, class Term, class First, class... Rest>
inline auto sumInLanes(ptrdiff_t n, Term term, First first, Rest... rest)
{
    using Vector = typename First::Vector;
    constexpr int size = Vector::lanes;
    constexpr int registers = lanes / size;
    Vector sums[registers];
#pragma GCC unroll 16
    for (int j = 0; j < registers; ++j)
        sums[j] = zero<Vector>();
    ptrdiff_t i = 0;
    for (; i <= n - lanes; i += lanes) {
#pragma GCC unroll 16
        for (int j = 0; j < registers; ++j)
            sums[j] = sums[j] + term(first.at(i + j * size), rest.at(i + j * size)...);
    }
    Vector *lane = sums;
    for (; i <= n - size; i += size, ++lane)
        *lane = *lane + term(first.at(i), rest.at(i)...);
    if (const ptrdiff_t k = n - i; k > 0)
        *lane = *lane + keepFirst(term(first.first(i, k), rest.first(i, k)...), k);
#pragma GCC unroll 16
    for (int half = registers / 2; half > 0; half /= 2) {
#pragma GCC unroll 16
        for (int j = 0; j < half; ++j)
            sums[j] = sums[j] + sums[j + half];
    }
    return sumHalving(sums[0]);
}

// The largest term(source[i]) of n elements that is above 0, or +0. A NaN is never larger.
template <class Term, class Source> inline auto largestOf(ptrdiff_t n, Term term, Source source)
{
    using Vector = typename Source::Vector;
    constexpr int size = Vector::lanes;
    constexpr int registers = 8; // hides the latency of the comparison
    Vector most[registers];
#pragma GCC unroll 16
    for (int j = 0; j < registers; ++j)
        most[j] = zero<Vector>();
    ptrdiff_t i = 0;
    for (; i <= n - registers * size; i += registers * size) {
#pragma GCC unroll 16
        for (int j = 0; j < registers; ++j)
            most[j] = larger(term(source.at(i + j * size)), most[j]);
    }
    for (; i <= n - size; i += size)
        most[0] = larger(term(source.at(i)), most[0]);
    if (i < n)
        most[0] = larger(term(source.first(i, n - i)), most[0]); // the zeros behind are no larger
#pragma GCC unroll 16
    for (int j = 1; j < registers; ++j)
        most[0] = larger(most[j], most[0]);
    return largest(most[0]);
}

// How many sums a step of overBytes may keep side by side, to hide the latency of its additions.
constexpr int accumulators = 4;

// A register of zeros and one of ones; the one that begins k bytes in has ones in its last k lanes.
struct ZerosThenOnes {
    uint8_t bytes[2 * u8s::lanes] = {};

    constexpr ZerosThenOnes()
    {
        for (int i = u8s::lanes; i < 2 * u8s::lanes; ++i)
            bytes[i] = 0xFF;
    }
};
constexpr ZerosThenOnes zerosThenOnes;

// Goes over n bytes of every row: step(j, vectors...) takes a register of each and adds to its sum j. The last bytes
// come with zeros on one side. gather() empties the sums, at the end and before any of them has seen more than `most`
// registers.
template <ptrdiff_t most, class Step, class Gather, class... Rows>
inline void overBytes(ptrdiff_t n, Step step, Gather gather, const Rows *...rows)
{
    constexpr ptrdiff_t size = u8s::lanes;
    constexpr ptrdiff_t turn = accumulators * size;
    constexpr ptrdiff_t run = (most - accumulators) * turn; // sum 0 also takes what is left of a last run
    for (ptrdiff_t i = 0; i < n;) {
        const ptrdiff_t end = n - i < run ? n : i + run;
        for (; i <= end - turn; i += turn) {
#pragma GCC unroll 4
            for (int j = 0; j < accumulators; ++j)
                step(j, load<u8s>(rows + i + j * size)...);
        }
        for (; i <= end - size; i += size)
            step(0, load<u8s>(rows + i)...);
        if (i < end) {
            if (n < size)
                step(0, loadFirst<u8s>(rows, n)...);
            else
                step(0, (load<u8s>(rows + n - size) & load<u8s>(zerosThenOnes.bytes + (n - i)))...);
            i = end;
        }
        gather();
    }
}

} // namespace
