// Between elements of two sizes, and between one row and two.
#pragma once

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
    const auto one = [](uint8_t *to, const uint8_t *from) { storePixels24(to, load<u32s>(from)); };
    const auto four = [](uint8_t *to, const uint8_t *from) {
        storePixels24(to, load<u32s>(from), load<u32s>(from + size), load<u32s>(from + 2 * size),
                      load<u32s>(from + 3 * size));
    };
    if (count < 4 * u32s::lanes)
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

// kept: the bits of the wide elements that stay. As in map, the last block is read before the one ahead of it is
// written.
template <class Narrow, bool upper, class Wide>
inline void insert(void *dst, const void *src, uint64_t count, Wide kept)
{
    constexpr ptrdiff_t size = sizeof(Narrow);
    const ptrdiff_t n = (ptrdiff_t)count * (size / Narrow::lanes); // bytes of the source
    uint8_t *const to = (uint8_t *)dst;
    const uint8_t *const from = (const uint8_t *)src;
    const auto merge = [=](ptrdiff_t low, ptrdiff_t high, Narrow x) {
        const Pair<Wide> wide = widenInto<Wide, upper>(x);
        return Pair<Wide>{(load<Wide>(to + low) & kept) | wide.low, (load<Wide>(to + high) & kept) | wide.high};
    };
    const auto put = [=](ptrdiff_t low, ptrdiff_t high, Pair<Wide> x) {
        store(to + low, x.low);
        store(to + high, x.high);
    };
    if (n >= size) {
        const ptrdiff_t end = n - size;
        const Pair<Wide> last = merge(2 * end, 2 * end + size, load<Narrow>(from + end));
#pragma GCC unroll 2
        for (ptrdiff_t i = 0; i < end; i += size)
            put(2 * i, 2 * i + size, merge(2 * i, 2 * i + size, load<Narrow>(from + i)));
        put(2 * end, 2 * end + size, last);
    } else if (n >= size / 2) { // half a register from either end
        const ptrdiff_t end = 2 * n - size;
        put(0, end, merge(0, end, loadEnds<Narrow>(from, n)));
    } else if (n >= 2) {
        const Wide x = widenInto<Wide, upper>(loadEnds<Narrow>(from, n)).low;
        storeEnds(to, (loadEnds<Wide>(to, 2 * n) & kept) | x, 2 * n);
    } else if (n == 1) {
        to[upper] = *from;
    }
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

void MemPackOp25(uint32_t *dst, const uint32_t *a, const uint32_t *b, uint64_t count)
{
    const auto step = [](uint8_t *to, const uint8_t *fromA, const uint8_t *fromB) {
        const u32s x = load<u32s>(fromA);
        const u32s y = load<u32s>(fromB);
        store(to, interleaveLow(x, y));
        store(to + sizeof(u32s), interleaveHigh(x, y));
    };
    forBlocks<u32s::lanes>((ptrdiff_t)count, step, Out<8>{dst}, In<4>{a}, In<4>{b});
}

void MemDeinterleave32(uint32_t *dst0, uint32_t *dst1, const uint32_t *src, uint64_t count)
{
    const auto step = [](uint8_t *to0, uint8_t *to1, const uint8_t *from) {
        const u32s x = load<u32s>(from);
        const u32s y = load<u32s>(from + sizeof(u32s));
        store(to0, evens(x, y));
        store(to1, odds(x, y));
    };
    forBlocks<u32s::lanes>((ptrdiff_t)count, step, Out<4>{dst0}, Out<4>{dst1}, In<8>{src});
}

} // namespace
