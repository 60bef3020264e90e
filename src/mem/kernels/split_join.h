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
    const auto step = [](uint8_t *to, const uint8_t *from) {
        storePixels24(to, load<u32s>(from), load<u32s>(from + size), load<u32s>(from + 2 * size),
                      load<u32s>(from + 3 * size));
    };
    forBlocks<4 * u32s::lanes>((ptrdiff_t)count, step, Out<3>{dst}, In<4>{src});
}

void MemUnpack24(uint32_t *dst, const uint8_t *src, uint64_t count)
{
    const auto step = [](uint8_t *to, const uint8_t *from) { store(to, loadPixels24(from)); };
    forBlocks<u32s::lanes>((ptrdiff_t)count, step, Out<4>{dst}, In<3>{src});
}

// --- Into the lower or the upper half of wider elements ------------------------------------------------------

// Narrow and Wide: vectors of the elements; kept: the bits of a wide element that stay. The source's elements are
// interleaved with zeros, above or below them.
template <class Narrow, bool high, class Wide> inline void insert(void *dst, const void *src, uint64_t count, Wide kept)
{
    const auto step = [kept](uint8_t *to, const uint8_t *from) {
        const Narrow x = load<Narrow>(from);
        const Narrow none = zero<Narrow>();
        const Wide first = as<Wide>(high ? interleaveLow(none, x) : interleaveLow(x, none));
        const Wide second = as<Wide>(high ? interleaveHigh(none, x) : interleaveHigh(x, none));
        store(to, (load<Wide>(to) & kept) | first);
        store(to + sizeof(Wide), (load<Wide>(to + sizeof(Wide)) & kept) | second);
    };
    constexpr int unit = sizeof(Narrow) / Narrow::lanes;
    forBlocks<Narrow::lanes>((ptrdiff_t)count, step, InOut<2 * unit>{dst}, In<unit>{src});
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
