// Sums over bytes, exact in 64 bits for any count, and what is computed from them.
#pragma once

namespace {

// The sum of term(rows...), which is 0 for zeros, over n bytes. Lanes of 64 bits take more than any memory holds.
template <class Term, class... Rows> inline uint64_t sumOverBytes(ptrdiff_t n, Term term, const Rows *...rows)
{
    u64s sums[accumulators] = {};
    overBytes<PTRDIFF_MAX / 4096>(
        n, [&](int j, auto... x) { sums[j] = sums[j] + term(x...); }, [] {}, rows...);
    return sum((sums[0] + sums[1]) + (sums[2] + sums[3]));
}

inline uint64_t sumBytes(const uint8_t *src, uint64_t count)
{
    return sumOverBytes((ptrdiff_t)count, [](u8s x) { return sumDistances(x, splat8(0)); }, src);
}

double MemMean8(const uint8_t *src, uint64_t count) { return count ? (double)sumBytes(src, count) / (double)count : 0; }

float MemSumU8ToF32(const uint8_t *src, uint64_t count) { return (float)sumBytes(src, count); }

double MemMeanOp3(const uint8_t *src, int32_t lower, int32_t upper, uint64_t count)
{
    const ByteRange range(lower, upper);
    u64s sums[accumulators] = {};
    u8s insides[accumulators] = {};
    u64s inside = zero<u64s>();
    overBytes<255>((ptrdiff_t)count,
                   [&](int j, u8s x) {
                       const u8s mask = range.contains(x);
                       sums[j] = sums[j] + sumDistances(x & mask, splat8(0));
                       insides[j] = insides[j] - mask; // a mask is -1
                   },
                   [&] {
#pragma GCC unroll 4
                       for (u8s &bytes : insides) {
                           inside = inside + sumDistances(bytes, splat8(0));
                           bytes = splat8(0);
                       }
                   },
                   src);
    // The zeros beside the last bytes add to the number, if to anything.
    const bool areZerosInside = topBits(range.contains(splat8(0))) & 1;
    const uint64_t number = sum(inside) - (areZerosInside ? (uint64_t)-count % u8s::lanes : 0);
    const uint64_t total = sum((sums[0] + sums[1]) + (sums[2] + sums[3]));
    return number ? (double)total / (double)number : 0;
}

double MemStatOp24(const uint8_t *src, uint64_t count)
{
    if (!count)
        return 0;
    u64s sums[accumulators] = {};
    u32s squares[accumulators] = {};
    u64s allSquares = zero<u64s>();
    overBytes<16384>( // a register adds at most 4 * 255 * 255 to a lane: 16384 of them stay below 2^32
        (ptrdiff_t)count,
        [&](int j, u8s x) {
            const WideBytes wide = widen(x);
            const i32s first = multiplyAddPairs(wide.first, wide.first);
            const i32s second = multiplyAddPairs(wide.second, wide.second);
            squares[j] = squares[j] + as<u32s>(first + second);
            sums[j] = sums[j] + sumDistances(x, splat8(0));
        },
        [&] {
#pragma GCC unroll 4
            for (u32s &lanes : squares) {
                const u64s pairs = as<u64s>(lanes);
                allSquares = allSquares + (pairs & splat64(0xFFFFFFFF)) + shiftRight<32>(pairs);
                lanes = splat32(0);
            }
        },
        src);
    const double n = (double)count;
    const double mean = (double)sum((sums[0] + sums[1]) + (sums[2] + sums[3])) / n;
    const double variance = (double)sum(allSquares) / n - mean * mean;
    return variance > 0 ? variance : 0;
}

float MemStatOp38(const uint8_t *src, uint64_t count)
{
    if (count < 2)
        return 0;
    const uint64_t steps = count - 1;
    const uint64_t total =
        sumOverBytes((ptrdiff_t)steps, [](u8s x, u8s next) { return sumDistances(x, next); }, src, src + 1);
    return (float)((double)total / (double)steps);
}

} // namespace
