// Rows of bytes against each other and against their neighbours.
#pragma once

namespace {

uint64_t MemCompare8(const uint8_t *a, const uint8_t *b, uint64_t count)
{
    constexpr ptrdiff_t size = u8s::lanes;
    const ptrdiff_t n = (ptrdiff_t)count;
    const auto equalAt = [a, b](ptrdiff_t i) { return equal(load<u8s>(a + i), load<u8s>(b + i)); };
    const auto first = [](u8s equals) { return (uint64_t)__builtin_ctz(~topBits(equals)); };
    const auto isAll = [](u8s equals) { return topBits(equals) == allTopBits; };
    if (!n || *a != *b) // rows that differ mostly do so at once
        return 0;
    if (n < size) {
        const u8s equals = equal(loadFirst<u8s>(a, n), loadFirst<u8s>(b, n));
        return isAll(equals) ? count : first(equals);
    }
    ptrdiff_t i = 0;
    while (i <= n - 4 * size &&
           isAll((equalAt(i) & equalAt(i + size)) & (equalAt(i + 2 * size) & equalAt(i + 3 * size))))
        i += 4 * size;
    for (; i < n; i += size) {
        const ptrdiff_t at = i <= n - size ? i : n - size;
        const u8s equals = equalAt(at);
        if (!isAll(equals))
            return (uint64_t)at + first(equals);
    }
    return count;
}

// With a the row above, b the row, c the one below and ' for the byte before:
//   S - S' = (c - a') + (a - c') + 2 * (b - b')       -1020..1020
//   D + D' = (c - a') - (a - c')                      -510..510
//   (|S - S'| + 2 * |D + D'| + 2) >> 2 = ((|S - S'| >> 1) + |D + D'| + 1) >> 1, an average
inline i16s edgeStrength(i16s a, i16s aBefore, i16s b, i16s bBefore, i16s c, i16s cBefore)
{
    const i16s falling = c - aBefore;
    const i16s rising = a - cBefore;
    const i16s step = b - bBefore;
    const u16s across = as<u16s>(absolute((falling + rising) + (step + step)));
    return as<i16s>(average(shiftRight<1>(across), as<u16s>(absolute(falling - rising))));
}

void MemRowFilter8(uint8_t *dst, const uint8_t *src, int64_t stride, uint64_t count)
{
    if (!count)
        return;
    dst[0] = 0;
    forBlocks<u8s::lanes>((ptrdiff_t)count - 1,
                          [](uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below) {
                              const u8s a = load<u8s>(above);
                              const u8s aBefore = load<u8s>(above - 1);
                              const u8s b = load<u8s>(row);
                              const u8s bBefore = load<u8s>(row - 1);
                              const u8s c = load<u8s>(below);
                              const u8s cBefore = load<u8s>(below - 1);
                              // One half at a time: both at once need more registers than there are.
                              const i16s first =
                                  edgeStrength(widen(a).first, widen(aBefore).first, widen(b).first,
                                               widen(bBefore).first, widen(c).first, widen(cBefore).first);
                              const i16s second =
                                  edgeStrength(widen(a).second, widen(aBefore).second, widen(b).second,
                                               widen(bBefore).second, widen(c).second, widen(cBefore).second);
                              store(out, narrow(WideBytes{first, second}));
                          },
                          Out<1>{dst + 1}, In<1, 1>{src - stride + 1}, In<1, 1>{src + 1}, In<1, 1>{src + stride + 1});
}

// --- Sums over groups of eight bytes -------------------------------------------------------------------------

// Sums over eight bytes, from 64-bit lanes to one register of words. At most 8 * 255, so nothing is limited.
inline i16s packSums(u64s a, u64s b, u64s c, u64s d)
{
    const i16s first = narrow(as<i32s>(a), as<i32s>(b)); // every second word is 0
    const i16s second = narrow(as<i32s>(c), as<i32s>(d));
    return narrow(as<i32s>(first), as<i32s>(second));
}

// step(sums, ofA, ofB) adds to a register of sums what as many groups have, whose bytes ofA(i) and ofB(i) hand out in
// four registers. Behind the rows' ends they have zeros, which change no sum.
template <class Vector, class Step>
inline void forGroups(void *sums, const uint8_t *a, const uint8_t *b, ptrdiff_t n, Step step)
{
    constexpr ptrdiff_t size = u8s::lanes;
    constexpr ptrdiff_t block = 4 * size;
    uint8_t *words = (uint8_t *)sums;
    const auto whole = [](const uint8_t *row) { return [row](ptrdiff_t i) { return load<u8s>(row + i * size); }; };
    for (; n >= block; n -= block) {
        store(words, step(load<Vector>(words), whole(a), whole(b)));
        words += sizeof(Vector);
        a += block;
        b += block;
    }
    if (n > 0) {
        const auto part = [n](const uint8_t *row) {
            return [n, row](ptrdiff_t i) {
                const ptrdiff_t k = n - i * size;
                return k > 0 ? loadFirst<u8s>(row + i * size, k) : splat8(0);
            };
        };
        const ptrdiff_t bytes = (n + 7) / 8 * (ptrdiff_t)sizeof(uint16_t);
        uint8_t last[sizeof(Vector)];
        store(last, step(loadFirst<Vector>(words, bytes), part(a), part(b)));
        copyFew(words, last, bytes);
    }
}

void MemDiffOp57(uint16_t *sums, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    forGroups<u16s>(sums, a, b, (ptrdiff_t)count, [](u16s total, auto ofA, auto ofB) {
        const auto distances = [=](ptrdiff_t i) { return sumDistances(ofA(i), ofB(i)); };
        return addLimited(total, as<u16s>(packSums(distances(0), distances(1), distances(2), distances(3))));
    });
}

void MemDiffOp58(int16_t *sums, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    forGroups<i16s>(sums, a, b, (ptrdiff_t)count, [](i16s total, auto ofA, auto ofB) {
        const auto sumsOf = [](auto of) {
            const auto sum = [of](ptrdiff_t i) { return sumDistances(of(i), splat8(0)); };
            return packSums(sum(0), sum(1), sum(2), sum(3));
        };
        return addLimited(total, sumsOf(ofA) - sumsOf(ofB));
    });
}

} // namespace
