// Between elements of two sizes, and between one row and two.
#pragma once

#include "mem/kernels/copy.h"

namespace {

// --- Narrower ------------------------------------------------------------------------------------------------

template <class Op> inline void narrowRow(uint8_t *dst, const uint16_t *src, uint64_t count, Op op)
{
    const auto step = [op](uint8_t *to, const uint8_t *from) {
        store(to, narrow(op(load<u16s>(from)), op(load<u16s>(from + sizeof(u16s)))));
    };
    forBlocks<u8s::lanes>((ptrdiff_t)count, step, Out<1>{dst}, In<2>{src});
}

void MemNarrow16To8Low(uint8_t *dst, const uint16_t *src, uint64_t count)
{
    narrowRow(dst, src, count, [mask = splat16(255)](u16s x) { return x & mask; });
}

void MemNarrow16To8High(uint8_t *dst, const uint16_t *src, uint64_t count)
{
    narrowRow(dst, src, count, [](u16s x) { return shiftRight<8>(x); });
}

void MemNarrow16To8Shift2(uint8_t *dst, const uint16_t *src, uint64_t count)
{
    narrowRow(dst, src, count, [](u16s x) { return shiftRight<2>(x); });
}

void MemPack24(uint8_t *dst, const uint32_t *src, uint64_t count)
{
    constexpr int size = sizeof(u32s);
    const auto pixel = [](uint8_t *to, const uint8_t *from) {
        moveWhole<uint16_t>(to, from);
        to[2] = from[2];
    };
    const auto one = [](uint8_t *to, const uint8_t *from) { storePixels24(to, load<u32s>(from)); };
    const auto four = [](uint8_t *to, const uint8_t *from) {
        storePixels24(to, load<u32s>(from), load<u32s>(from + size), load<u32s>(from + 2 * size),
                      load<u32s>(from + 3 * size));
    };
    if (count < u32s::lanes)
        forBlocks<1>((ptrdiff_t)count, pixel, Out<3>{dst}, In<4>{src});
    else if (count < 4 * u32s::lanes)
        forBlocks<u32s::lanes>((ptrdiff_t)count, one, Out<3>{dst}, In<4>{src});
    else
        forBlocks<4 * u32s::lanes>((ptrdiff_t)count, four, Out<3>{dst}, In<4>{src});
}

void MemUnpack24(uint32_t *dst, const uint8_t *src, uint64_t count)
{
    const auto step = [](uint8_t *to, const uint8_t *from) { store(to, loadPixels24(from)); };
    forBlocks<u32s::lanes>((ptrdiff_t)count, step, Out<4>{dst}, In<3>{src});
}

// --- Into the lower or the upper half of wider elements ------------------------------------------------------

// x at the lower or upper half of the wide elements: the first and the second half of them.
template <class Wide, bool upper, class Narrow> inline Pair<Wide> widenInto(Narrow x)
{
    const Narrow none = zero<Narrow>();
    return upper ? Pair<Wide>{as<Wide>(interleaveLow(none, x)), as<Wide>(interleaveHigh(none, x))}
                 : Pair<Wide>{as<Wide>(interleaveLow(x, none)), as<Wide>(interleaveHigh(x, none))};
}

// kept: the bits of the wide elements that stay. What is less than half a register at the end needs no reading of the
// destination: a row that is written again at once would load what overlapping stores have left, and wait.
template <class Narrow, bool upper, class Wide>
inline void insert(void *dst, const void *src, uint64_t count, Wide kept)
{
    constexpr ptrdiff_t size = sizeof(Narrow);
    constexpr ptrdiff_t unit = size / Narrow::lanes;
    const ptrdiff_t n = (ptrdiff_t)count * unit;
    uint8_t *const to = (uint8_t *)dst;
    const uint8_t *const from = (const uint8_t *)src;
    const auto merge = [=](uint8_t *at, Wide x) { store(at, (load<Wide>(at) & kept) | x); };
    ptrdiff_t i = 0;
#pragma GCC unroll 2
    for (; i <= n - size; i += size) {
        const Pair<Wide> x = widenInto<Wide, upper>(load<Narrow>(from + i));
        merge(to + 2 * i, x.low);
        merge(to + 2 * i + size, x.high);
    }
    if (n - i >= size / 2) {
        merge(to + 2 * i, widenInto<Wide, upper>(loadEnds<Narrow>(from + i, size / 2)).low);
        i += size / 2;
    }
    for (; i < n; i += unit)
        memcpy(to + 2 * i + (upper ? unit : 0), from + i, unit);
}

void MemInsertLow8(uint16_t *dst, const uint8_t *src, uint64_t count)
{
    insert<u8s, false>(dst, src, count, splat16(0xFF00));
}

void MemInsertHigh8(uint16_t *dst, const uint8_t *src, uint64_t count)
{
    insert<u8s, true>(dst, src, count, splat16(0x00FF));
}

void MemInsertLow16(uint32_t *dst, const uint16_t *src, uint64_t count)
{
    insert<u16s, false>(dst, src, count, splat32(0xFFFF0000));
}

void MemInsertHigh16(uint32_t *dst, const uint16_t *src, uint64_t count)
{
    insert<u16s, true>(dst, src, count, splat32(0x0000FFFF));
}

void MemInsertLow32(uint64_t *dst, const uint32_t *src, uint64_t count)
{
    insert<u32s, false>(dst, src, count, splat64(0xFFFFFFFF00000000));
}

void MemInsertHigh32(uint64_t *dst, const uint32_t *src, uint64_t count)
{
    insert<u32s, true>(dst, src, count, splat64(0x00000000FFFFFFFF));
}

// --- One row and two -----------------------------------------------------------------------------------------

// Rows shorter than a register are sooner done one by one than in a block on the stack.

void MemPackOp25(uint32_t *dst, const uint32_t *a, const uint32_t *b, uint64_t count)
{
    const auto one = [](uint8_t *to, const uint8_t *fromA, const uint8_t *fromB) {
        moveWhole<uint32_t>(to, fromA);
        moveWhole<uint32_t>(to + 4, fromB);
    };
    const auto step = [](uint8_t *to, const uint8_t *fromA, const uint8_t *fromB) {
        const u32s x = load<u32s>(fromA);
        const u32s y = load<u32s>(fromB);
        store(to, interleaveLow(x, y));
        store(to + sizeof(u32s), interleaveHigh(x, y));
    };
    if (count < u32s::lanes)
        forBlocks<1>((ptrdiff_t)count, one, Out<8>{dst}, In<4>{a}, In<4>{b});
    else
        forBlocks<u32s::lanes>((ptrdiff_t)count, step, Out<8>{dst}, In<4>{a}, In<4>{b});
}

void MemDeinterleave32(uint32_t *dst0, uint32_t *dst1, const uint32_t *src, uint64_t count)
{
    const auto one = [](uint8_t *to0, uint8_t *to1, const uint8_t *from) {
        moveWhole<uint32_t>(to0, from);
        moveWhole<uint32_t>(to1, from + 4);
    };
    const auto step = [](uint8_t *to0, uint8_t *to1, const uint8_t *from) {
        const u32s x = load<u32s>(from);
        const u32s y = load<u32s>(from + sizeof(u32s));
        store(to0, evens(x, y));
        store(to1, odds(x, y));
    };
    if (count < u32s::lanes)
        forBlocks<1>((ptrdiff_t)count, one, Out<4>{dst0}, Out<4>{dst1}, In<8>{src});
    else
        forBlocks<u32s::lanes>((ptrdiff_t)count, step, Out<4>{dst0}, Out<4>{dst1}, In<8>{src});
}

} // namespace
