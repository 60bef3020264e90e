// Loops and ragged ends, written once for all kernels. A tier source includes its vocabulary first.
//
// A row that is at least a block long ends with a block that overlaps the one before: any width costs at most one
// block more than it needs. A shorter row travels through a block on the stack. Nothing outside the row is touched.
#pragma once

namespace {

// Copies a few bytes without a call.
inline void copyFewBytes(uint8_t *to, const uint8_t *from, ptrdiff_t bytes)
{
    for (; bytes >= 16; bytes -= 16, to += 16, from += 16)
        memcpy(to, from, 16);
    for (int piece = 8; piece; piece /= 2) {
        if (!(bytes & piece))
            continue;
        switch (piece) {
        case 8: memcpy(to, from, 8); break;
        case 4: memcpy(to, from, 4); break;
        case 2: memcpy(to, from, 2); break;
        default: *to = *from; break;
        }
        to += piece;
        from += piece;
    }
}

// A source row of `unit` bytes a unit. Around its block a step also reads `before` bytes ahead of it and `after`
// bytes behind it, which the row's owner provides at both ends of the row.
template <int unit, int before = 0, int after = 0> struct In {
    const void *row;

    const uint8_t *at(ptrdiff_t i) const { return (const uint8_t *)row + i * unit; }

    // A copy of a row of n units, room for a block of `size`.
    template <int size> struct Short {
        uint8_t bytes[before + size * unit + after];

        Short(In from, ptrdiff_t n)
        {
            memset(bytes, 0, sizeof(bytes));
            copyFewBytes(bytes, from.at(0) - before, before + n * unit + after);
        }
        In in() const { return {bytes + before}; }
        void finish(In, ptrdiff_t) const {}
    };
};

// A destination row of `unit` bytes a unit.
template <int unit> struct Out {
    void *row;

    uint8_t *at(ptrdiff_t i) const { return (uint8_t *)row + i * unit; }

    template <int size> struct Short {
        uint8_t bytes[size * unit];

        Short(Out, ptrdiff_t) {}
        Out in() { return {bytes}; }
        void finish(Out to, ptrdiff_t n) const { copyFewBytes(to.at(0), bytes, n * unit); }
    };
};

// step(at...) over n >= size units, a block of `size` at a time.
template <int size, class Step, class... Rows> inline void forWholeBlocks(ptrdiff_t n, Step step, Rows... rows)
{
    for (ptrdiff_t i = 0; i < n; i += size) {
        if (i > n - size)
            i = n - size;
        step(rows.at(i)...);
    }
}

// Runs step over n units, `size` at a time; step gets a pointer into every row (Out or In) and handles exactly
// `size` units. Rows must not overlap. A count of 0 or less does nothing.
template <int size, class Step, class... Rows> inline void forBlocks(ptrdiff_t n, Step step, Rows... rows)
{
    if (n >= size) {
        forWholeBlocks<size>(n, step, rows...);
    } else if (n > 0) {
        [&](typename Rows::template Short<size>... shorts) {
            step(shorts.in().at(0)...);
            (shorts.finish(rows, n), ...);
        }(typename Rows::template Short<size>(rows, n)...);
    }
}

// dst[i] = op(sources[i]...) over n bytes, a register at a time. dst may equal any of the sources: the last block
// is computed first, from inputs that nothing has overwritten yet.
template <class Op, class... Sources> inline void mapBytes(uint8_t *dst, ptrdiff_t n, Op op, const Sources *...sources)
{
    constexpr int size = u8s::lanes;
    if (n >= size) {
        const u8s last = op(load<u8s>(sources + (n - size))...);
        ptrdiff_t i = 0;
        for (; i <= n - 2 * size; i += 2 * size) {
            const u8s first = op(load<u8s>(sources + i)...);
            const u8s second = op(load<u8s>(sources + i + size)...);
            store(dst + i, first);
            store(dst + i + size, second);
        }
        if (i <= n - size)
            store(dst + i, op(load<u8s>(sources + i)...));
        store(dst + (n - size), last);
    } else if (n > 0) {
        uint8_t result[size];
        store(result, op(load<u8s>(typename In<1>::template Short<size>({sources}, n).bytes)...));
        copyFewBytes(dst, result, n);
    }
}

} // namespace
