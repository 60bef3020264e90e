// How many bytes, or distances of bytes, are below, at or up to a threshold.
#pragma once

#include <vela/frame.h>

namespace {

enum class Counted { atLeast, atMost, equal };

// Masks of the bytes, or of the distances, that are counted.
template <Counted counted> struct Threshold {
    u8s limit;

    u8s operator()(u8s x) const
    {
        if constexpr (counted == Counted::atLeast)
            return equal(larger(x, limit), x);
        else if constexpr (counted == Counted::atMost)
            return equal(smaller(x, limit), x);
        else
            return equal(x, limit);
    }
    u8s operator()(u8s a, u8s b) const { return (*this)(distance(a, b)); }
};

// The instruction POPCNT, which is above the tiers that use it: g_CPUID is asked first.
inline uint64_t populationCount(uint64_t bits)
{
    asm("popcnt %0, %0" : "+r"(bits) : : "cc");
    return bits;
}

// Counts by the masks' top bits, 64 lanes at a time.
template <class Test, class... Rows> inline uint64_t countByPopulation(ptrdiff_t n, Test test, const Rows *...rows)
{
    constexpr ptrdiff_t size = u8s::lanes;
    uint64_t total = 0;
    ptrdiff_t i = 0;
    for (; i <= n - 64; i += 64) {
        uint64_t bits = 0;
#pragma GCC unroll 4
        for (ptrdiff_t j = 0; j < 64; j += size)
            bits |= (uint64_t)topBits(test(load<u8s>(rows + i + j)...)) << j;
        total += populationCount(bits);
    }
    uint64_t rest = 0; // of fewer than 64 lanes
    for (; i <= n - size; i += size)
        rest = rest << size | topBits(test(load<u8s>(rows + i)...));
    if (const ptrdiff_t k = n - i; k > 0) {
        const uint32_t last = n < size ? topBits(test(loadFirst<u8s>(rows, n)...)) << (size - k) & allTopBits
                                       : topBits(test(load<u8s>(rows + n - size)...));
        rest = rest << k | last >> (size - k);
    }
    return total + populationCount(rest);
}

// Counts by sums of bytes.
template <class Test, class... Rows> inline uint64_t countBySums(ptrdiff_t n, Test test, const Rows *...rows)
{
    u8s counts[accumulators] = {};
    u64s total = zero<u64s>();
    overBytes<255>(
        n, [&](int j, auto... x) { counts[j] = counts[j] - test(x...); }, // a mask is -1
        [&] {
#pragma GCC unroll 4
            for (u8s &count : counts) {
                total = total + sumDistances(count, splat8(0));
                count = splat8(0);
            }
        },
        rows...);
    // The last register had zeros beside the row's bytes, which may have been counted.
    const bool areZerosCounted = topBits(test(splat8(0))) & 1;
    return sum(total) - (areZerosCounted ? (uint64_t)-n % u8s::lanes : 0);
}

// A threshold above 255 is another one for the blocks of 16 than for the tail, all of whose bytes are below it.
template <Counted counted, class... Rows>
inline uint64_t countBytes(ptrdiff_t n, uint32_t threshold, const Rows *...rows)
{
    const int ofBlocks = (int16_t)threshold;
    const Threshold<counted> test = {splat8((uint8_t)(ofBlocks < 0 ? 0 : ofBlocks > 255 ? 255 : ofBlocks))};
    const ptrdiff_t tail = threshold > 255 ? n % 16 : 0;
    const uint64_t matches =
        g_CPUID.popcnt ? countByPopulation(n - tail, test, rows...) : countBySums(n - tail, test, rows...);
    return matches + (counted == Counted::atMost ? (uint64_t)tail : 0);
}

uint64_t MemCountBelow8(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return count - countBytes<Counted::atLeast>((ptrdiff_t)count, threshold, src);
}

uint64_t MemCountBelow8Pair(const uint8_t *a, const uint8_t *b, uint32_t threshold, int64_t count)
{
    return count > 0 ? (uint64_t)count - countBytes<Counted::atLeast>((ptrdiff_t)count, threshold, a, b) : 0;
}

uint64_t MemCountAtMost8(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return countBytes<Counted::atMost>((ptrdiff_t)count, threshold, src);
}

uint64_t MemCountAtMost8Pair(const uint8_t *a, const uint8_t *b, uint32_t threshold, uint64_t count)
{
    return countBytes<Counted::atMost>((ptrdiff_t)count, threshold, a, b);
}

uint64_t MemCountEqual8(const uint8_t *src, uint32_t threshold, uint64_t count)
{
    return countBytes<Counted::equal>((ptrdiff_t)count, threshold, src);
}

uint64_t MemCountEqual8Pair(const uint8_t *a, const uint8_t *b, uint32_t threshold, uint64_t count)
{
    return countBytes<Counted::equal>((ptrdiff_t)count, threshold, a, b);
}

} // namespace
