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
    [&](typename Rows::template Short<size> &&...shorts) {
        [&](auto... work) {
            const ptrdiff_t last = isShort ? 0 : n - size;
#pragma GCC unroll 2 // worth 5 to 50 % where a step is a few instructions (Zen 4)
            for (ptrdiff_t i = 0; i < last; i += size)
                step(work.at(i)...);
            step(work.at(last)...);
        }((isShort ? shorts.take(rows, n) : rows)...);
        if (isShort)
            (shorts.giveBack(rows, n), ...);
    }(typename Rows::template Short<size>()...);
}

// forBlocks with smaller blocks of `part` units, run by partStep, where less than a block of `size` is left: for
// kernels so short that the overlap of a large block would show.
template <int size, int part, class Step, class PartStep, class... Rows>
inline void forBlocksAndParts(ptrdiff_t n, Step step, PartStep partStep, Rows... rows)
{
    if (n < part) {
        forBlocks<part>(n, partStep, rows...);
        return;
    }
    ptrdiff_t i = 0;
    for (; i <= n - size; i += size)
        step(rows.at(i)...);
    if (i == n)
        return;
    for (; i < n - part; i += part)
        partStep(rows.at(i)...);
    partStep(rows.at(n - part)...);
}

// forBlocks for one source, which the destination may be: a block may read only what it then writes. The source of the
// last block is set aside before the block that it overlaps is overwritten.
template <int size, int unit, class Step>
inline void forBlocksInPlace(ptrdiff_t n, Step step, Out<unit> dst, In<unit> src)
{
    if (n <= size) {
        forBlocks<size>(n, step, dst, src);
        return;
    }
    typename In<unit>::template Short<size> aside;
    const In<unit> last = aside.take({src.at(n - size)}, size);
    for (ptrdiff_t i = 0; i < n - size; i += size)
        step(dst.at(i), src.at(i));
    step(dst.at(n - size), last.at(0));
}

// dst[i] = op(sources[i]...) over n elements, a register at a time. All rows have elements of one size; dst may equal
// any of the sources: the last block is computed first, from inputs that nothing has overwritten yet.
template <class Vector, class Element, class Op, class... Sources>
inline void map(Element *dst, ptrdiff_t n, Op op, const Sources *...sources)
{
    static_assert(((sizeof(Sources) == sizeof(Element)) && ...));
    constexpr int size = Vector::lanes;
    static_assert(size * sizeof(Element) == sizeof(u8s)); // a Vector itself may be several registers
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

// dst[i] = op(dst[i], src[i]) over n elements; dst may equal src. The ragged end goes element by element: a row that is
// added to again and again loads what it stored last, and a load that meets two stores, as overlapping blocks leave
// them, waits for both.
template <class Vector, class Element, class Op>
inline void update(Element *dst, ptrdiff_t n, Op op, const Element *src)
{
    constexpr int size = Vector::lanes;
    const auto step = [=](ptrdiff_t i) {
        store(dst + i, op(load<Vector>(dst + i), load<Vector>(src + i)));
        __asm__ volatile("" ::: "memory"); // no load ahead of the store: a tenth faster (Zen 4)
    };
    ptrdiff_t i = 0;
    for (; i <= n - 4 * size; i += 4 * size) {
        step(i);
        step(i + size);
        step(i + 2 * size);
        step(i + 3 * size);
    }
    for (; i <= n - size; i += size)
        step(i);
    for (; i < n; ++i)
        storeOne(dst + i, op(loadOne<Vector>(dst + i), loadOne<Vector>(src + i)));
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

// Packed signed 24-bit samples as floats, 256 times too large, which costs no precision and saves a shift.
struct Bytes24AsFloats {
    using Vector = f32s;
    const uint8_t *row;

    f32s at(ptrdiff_t i) const { return toFloat(loadTop24(row + 3 * i)); }
    f32s first(ptrdiff_t i, ptrdiff_t k) const
    {
        constexpr ptrdiff_t room = (3 * f32s::lanes + 15) / 16 * 16;
        uint8_t bytes[room];
        copyPadded<room>(bytes, row + 3 * i, 3 * k);
        return toFloat(loadTop24(bytes));
    }
};

// Reductions are inlined by force: GCC 12 keeps large ones apart from their only caller, and passes sums through
// memory.

// Calls op with 0, 1, ... n-1, constants all, as long as it returns true. An array whose every index is a constant
// lives in registers; an unrolled loop comes too late for that (GCC 12).
template <int value> struct Constant {
    constexpr operator int() const { return value; }
};
template <int n, class Op> inline bool forConstants(Op op)
{
    if constexpr (n > 0)
        return forConstants<n - 1>(op) && op(Constant<n - 1>());
    else
        return true;
}

// parts[j] = join(parts[j], parts[j + half]) for half of them, and so on down to one.
template <int registers, class Part, class Join> inline Part joinHalves(Part *parts, Join join)
{
    constexpr int half = registers / 2;
    if constexpr (half > 0) {
        forConstants<half>([&](auto j) {
            parts[j] = join(parts[j], parts[j + half]);
            return true;
        });
        return joinHalves<half>(parts, join);
    } else {
        return parts[0];
    }
}

// The sum of term(sources[i]...) over n elements in `lanes` lanes: element i goes to lane i % lanes, then lane j takes
// lane j + lanes/2, and so on by halves. The order of additions is thereby the same at every width. A term may be
// several vectors that are summed up side by side: whatever has +, keepFirst and sumHalving.
template <int lanes, class Term, class First, class... Rest>
__attribute__((always_inline)) inline auto sumInLanes(ptrdiff_t n, Term term, First first, Rest... rest)
{
    constexpr int size = First::Vector::lanes;
    constexpr int registers = lanes / size;
    using Sum = decltype(term(first.at(0), rest.at(0)...));
    const auto termAt = [&](ptrdiff_t at) { return term(first.at(at), rest.at(at)...); };
    Sum sums[registers] = {};
    ptrdiff_t i = 0;
    for (; i <= n - lanes; i += lanes)
        forConstants<registers>([&](auto j) {
            sums[j] = sums[j] + termAt(i + j * size);
            return true;
        });
    Sum ragged = {};
    if (const ptrdiff_t k = (n - i) % size; k > 0)
        ragged = keepFirst(term(first.first(n - k, k), rest.first(n - k, k)...), k);
    forConstants<registers>([&](auto j) {
        const bool whole = n - i >= (j + 1) * size;
        sums[j] = sums[j] + (whole ? termAt(i + j * size) : ragged);
        return whole;
    });
    return sumHalving(joinHalves<registers>(sums, [](Sum a, Sum b) { return a + b; }));
}

// Joins `start` and term(sources[i]...) of the whole registers among n elements, in any order.
template <int registers, class Part, class Term, class Join, class First, class... Rest>
__attribute__((always_inline)) inline Part joinWhole(ptrdiff_t n, Part start, Term term, Join join, First first,
                                                     Rest... rest)
{
    constexpr int size = First::Vector::lanes;
    Part joined = start;
    ptrdiff_t i = 0;
    if (n >= registers * size) {
        Part parts[registers] = {start};
        for (; i <= n - registers * size; i += registers * size)
            forConstants<registers>([&](auto j) {
                parts[j] = join(parts[j], term(first.at(i + j * size), rest.at(i + j * size)...));
                return true;
            });
        joined = joinHalves<registers>(parts, join);
    }
    for (; i <= n - size; i += size)
        joined = join(joined, term(first.at(i), rest.at(i)...));
    return joined;
}

// The sum of the lanes of term(sources[i]...), integers, modulo the lane. Terms of zeros must be zeros.
template <class Term, class First, class... Rest>
__attribute__((always_inline)) inline auto sumOf(ptrdiff_t n, Term term, First first, Rest... rest)
{
    using Sum = decltype(term(first.at(0), rest.at(0)...));
    Sum ragged = {};
    if (const ptrdiff_t k = n % First::Vector::lanes; k > 0)
        ragged = term(first.first(n - k, k), rest.first(n - k, k)...);
    return sum(joinWhole<4>(
        n, ragged, term, [](Sum a, Sum b) { return a + b; }, first, rest...));
}

// The largest term(source[i]) of n elements that is above 0, or +0. A NaN is never larger. Eight registers hide the
// latency of the comparison; the last one overlaps the one before.
template <class Term, class Source>
__attribute__((always_inline)) inline auto largestOf(ptrdiff_t n, Term term, Source source)
{
    constexpr int size = Source::Vector::lanes;
    using Part = decltype(term(source.at(0)));
    const auto join = [](Part most, Part next) { return larger(next, most); };
    Part last = {};
    if (n >= size)
        last = join(last, term(source.at(n - size)));
    else if (n > 0)
        last = join(last, term(source.first(0, n)));
    return largest(joinWhole<8>(n, last, term, join, source));
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
