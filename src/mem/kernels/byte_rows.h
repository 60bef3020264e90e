// Rows of bytes against each other and against their neighbours.
#pragma once

namespace {

uint64_t MemCompare8(const uint8_t *a, const uint8_t *b, uint64_t count)
{
    constexpr ptrdiff_t size = u8s::lanes;
    const ptrdiff_t n = (ptrdiff_t)count;
    const auto equalAt = [a, b](ptrdiff_t i) { return equal(load<u8s>(a + i), load<u8s>(b + i)); };
    ptrdiff_t i = 0;
    for (; i <= n - 4 * size; i += 4 * size) {
        const u8s all = (equalAt(i) & equalAt(i + size)) & (equalAt(i + 2 * size) & equalAt(i + 3 * size));
        if (topBits(all) != allTopBits)
            break;
    }
    while (i < n) {
        const ptrdiff_t k = n - i;
        const uint32_t different =
            topBits(k < size ? equal(loadFirst<u8s>(a + i, k), loadFirst<u8s>(b + i, k)) : equalAt(i)) ^ allTopBits;
        if (different)
            return (uint64_t)(i + __builtin_ctz(different));
        i += size;
    }
    return count;
}

// With a the row above, c the one below and ' for the byte before:
//   S - S' = (c - a') + (a - c') + 2 * (b - b')       -1020..1020
//   D + D' = (c - a') - (a - c')                      -510..510
//   (|S - S'| + 2 * |D + D'| + 2) >> 2 = ((|S - S'| >> 1) + |D + D'| + 1) >> 1, an average
void MemRowFilter8(uint8_t *dst, const uint8_t *src, int64_t stride, uint64_t count)
{
    if (!count)
        return;
    dst[0] = 0;
    forBlocks<u8s::lanes>((ptrdiff_t)count - 1,
                          [](uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below) {
                              const WideBytes falling = widen(load<u8s>(below)) - widen(load<u8s>(above - 1));
                              const WideBytes rising = widen(load<u8s>(above)) - widen(load<u8s>(below - 1));
                              const WideBytes middle = widen(load<u8s>(row)) - widen(load<u8s>(row - 1));
                              const auto strength = [](i16s fall, i16s rise, i16s step) {
                                  const u16s across = as<u16s>(magnitude((fall + rise) + (step + step)));
                                  return as<i16s>(average(shiftRight<1>(across), as<u16s>(magnitude(fall - rise))));
                              };
                              store(out, narrow(WideBytes{strength(falling.first, rising.first, middle.first),
                                                          strength(falling.second, rising.second, middle.second)}));
                          },
                          Out<1>{dst + 1}, In<1, 1>{src - stride + 1}, In<1, 1>{src + 1}, In<1, 1>{src + stride + 1});
}

// --- Sums over groups of eight bytes -------------------------------------------------------------------------

constexpr ptrdiff_t groupBytes = 8;

// Sums over eight bytes, from 64-bit lanes to one register of words. At most 8 * 255, so nothing is limited.
inline i16s packSums(u64s a, u64s b, u64s c, u64s d)
{
    const i16s first = narrow(as<i32s>(a), as<i32s>(b)); // every second word is 0
    const i16s second = narrow(as<i32s>(c), as<i32s>(d));
    return narrow(as<i32s>(first), as<i32s>(second));
}

// The sums of sumsOf(a, b) over as many groups as a register has words.
template <class SumsOf> inline i16s groupSums(const uint8_t *a, const uint8_t *b, SumsOf sumsOf)
{
    const auto at = [=](ptrdiff_t i) { return sumsOf(load<u8s>(a + i * u8s::lanes), load<u8s>(b + i * u8s::lanes)); };
    return packSums(at(0), at(1), at(2), at(3));
}

// Runs step(sums, a, b) for as many groups as a register of sums has words. The last groups travel through the stack,
// where zeros behind both rows change no sum.
template <class Step> inline void forGroups(void *sums, const uint8_t *a, const uint8_t *b, ptrdiff_t n, Step step)
{
    constexpr ptrdiff_t block = u16s::lanes * groupBytes;
    uint8_t *words = (uint8_t *)sums;
    for (; n >= block; n -= block) {
        step(words, a, b);
        words += sizeof(u16s);
        a += block;
        b += block;
    }
    if (n > 0) {
        uint8_t lastSums[sizeof(u16s)], lastA[block], lastB[block];
        const ptrdiff_t bytes = (n + groupBytes - 1) / groupBytes * (ptrdiff_t)sizeof(uint16_t);
        copyPadded<sizeof(u16s)>(lastSums, words, bytes);
        copyPadded<block>(lastA, a, n);
        copyPadded<block>(lastB, b, n);
        step(lastSums, lastA, lastB);
        copyFew(words, lastSums, bytes);
    }
}

void MemDiffOp57(uint16_t *sums, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    forGroups(sums, a, b, (ptrdiff_t)count, [](uint8_t *words, const uint8_t *x, const uint8_t *y) {
        const i16s distances = groupSums(x, y, [](u8s p, u8s q) { return sumDistances(p, q); });
        store(words, addLimited(load<u16s>(words), as<u16s>(distances)));
    });
}

void MemDiffOp58(int16_t *sums, const uint8_t *a, const uint8_t *b, uint64_t count)
{
    forGroups(sums, a, b, (ptrdiff_t)count, [](uint8_t *words, const uint8_t *x, const uint8_t *y) {
        const i16s ofX = groupSums(x, x, [](u8s p, u8s) { return sumDistances(p, splat8(0)); });
        const i16s ofY = groupSums(y, y, [](u8s p, u8s) { return sumDistances(p, splat8(0)); });
        store(words, addLimited(load<i16s>(words), ofX - ofY));
    });
}

} // namespace
