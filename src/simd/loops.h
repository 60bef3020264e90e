// Loops and ragged ends, written once for all kernels. A tier source includes its vocabulary first.
//
// A row that is at least a block long ends with a block that overlaps the one before: any width costs at most one
// block more than it needs. A shorter row travels through a block on the stack. Nothing outside the row is touched.
#pragma once

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

// dst[i] = op(sources[i]...) over n bytes, a register at a time. dst may equal any of the sources: the last block
// is computed first, from inputs that nothing has overwritten yet.
template <class Op, class... Sources> inline void mapBytes(uint8_t *dst, ptrdiff_t n, Op op, const Sources *...sources)
{
    constexpr int size = u8s::lanes;
    if (n >= size) {
        const u8s last = op(load<u8s>(sources + (n - size))...);
        ptrdiff_t i = 0;
        // A register at a time, two a turn: with both loaded ahead of the stores this ran a fifth slower (Zen 4).
        for (; i < n - 2 * size; i += 2 * size) {
            store(dst + i, op(load<u8s>(sources + i)...));
            store(dst + i + size, op(load<u8s>(sources + i + size)...));
        }
        if (i < n - size)
            store(dst + i, op(load<u8s>(sources + i)...));
        store(dst + (n - size), last);
    } else if (n > 0) {
        storeEnds(dst, op(loadEnds(sources, n)...), n);
    }
}

} // namespace
