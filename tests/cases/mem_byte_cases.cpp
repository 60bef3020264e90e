#include "support/kernel_tables.hpp"

#include <cstdlib>
#include <limits>

namespace vela::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::vector<Argument> twoToOne(std::int64_t bytes)
{
    return {destination(bytes), source(bytes), source(bytes), count()};
}

// Within the span of weights and of gains, at its ends and beyond.
Argument weight()
{
    return numbers<double>({0, 1, 0.5, -0.3, 1.4, -2, 2, 3.999, -8, 8, 1e300, -infinity, infinity, nan, 1e-9, 0.7});
}

std::vector<Argument> weightedMix() { return {destination(1), source(1), source(1), weight(), count()}; }

// Below, at and above a byte; low halves that are negative or a byte again.
Argument threshold()
{
    return numbers<std::uint32_t>({0, 1, 2, 127, 128, 254, 255, 256, 300, 0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x10005,
                                   0x12345680, 0x80000000, 0xFFFFFFFF, 100});
}

std::vector<Argument> countOne() { return {source(1), threshold(), count()}; }
std::vector<Argument> countPair() { return {source(1), source(1), threshold(), count()}; }

Argument lower() { return numbers<std::int32_t>({INT32_MIN, -1, 0, 1, 100, 128, 200, 255, 256, INT32_MAX, 16}); }
Argument upper() { return numbers<std::int32_t>({INT32_MIN, -1, 0, 1, 99, 127, 200, 254, 255, 256, INT32_MAX, 235}); }

std::vector<Argument> sumsOfGroups()
{
    return {destination([](std::int64_t n) { return (n + 7) / 8 * 2; }), source(1), source(1), count()};
}

// Three rows, `stride` bytes apart.
KernelCase rowFilter(std::int64_t stride)
{
    const auto row = [](std::int64_t n) { return n; };
    return kernelCase<&VcbMemMiscOps::MemRowFilter8>({destination(1),
                                                      paddedSource(row, std::abs(stride), std::abs(stride)),
                                                      numbers<std::int64_t>({stride}), count()});
}

} // namespace

std::vector<KernelCase> memByteCases()
{
    using Arith = VcbMemArithOps;
    using Misc = VcbMemMiscOps;
    return {
        kernelCase<&Arith::MemAddSat8>(twoToOne(1)).mayEqual({1, 2}),
        kernelCase<&Arith::MemBlend8>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemSubSat8>(twoToOne(1)).mayEqual({1, 2}),
        kernelCase<&Arith::MemAbsDiff8>(twoToOne(1)).mayEqual({1, 2}),
        kernelCase<&Arith::MemAverage8>(twoToOne(1)).mayEqual({1, 2}),
        kernelCase<&Arith::MemMax8>(twoToOne(1)).mayEqual({1, 2}),
        kernelCase<&Arith::MemMin8>(twoToOne(1)).mayEqual({1, 2}),
        kernelCase<&Arith::MemMax16>(twoToOne(2)).mayEqual({1, 2}),
        kernelCase<&Arith::MemMin16>(twoToOne(2)).mayEqual({1, 2}),
        kernelCase<&Arith::MemScale8>({destination(1), source(1), weight(), count()}).mayEqual({1}),
        kernelCase<&Arith::MemMixOp13>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemMixOp15>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemMixOp17>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemMixOp19>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemMixOp21>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemMixOp23>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Arith::MemCountBelow8>(countOne()).readsPopcnt(),
        kernelCase<&Arith::MemCountBelow8Pair>(countPair()).readsPopcnt(),
        kernelCase<&Arith::MemCountAtMost8>(countOne()).readsPopcnt(),
        kernelCase<&Arith::MemCountAtMost8Pair>(countPair()).readsPopcnt(),
        kernelCase<&Arith::MemCountEqual8>(countOne()).readsPopcnt(),
        kernelCase<&Arith::MemCountEqual8Pair>(countPair()).readsPopcnt(),

        kernelCase<&VcbMemCompareOps::MemCompare8>({source(1), source(1), count()}).endsAtDifference(),

        kernelCase<&Misc::MemMean8>({source(1), count()}),
        kernelCase<&Misc::MemMeanOp3>({source(1), lower(), upper(), count()}),
        kernelCase<&Misc::MemMixOp4>(weightedMix()).mayEqual({1, 2}),
        kernelCase<&Misc::MemMixOp6>({destination(1), sourceRows(1, 3), sourcePerInput(4, 3),
                                      numbers<std::int32_t>({-1, 0, 1, 2, 8, 15, 16, 17, 33, 3}), count()})
            .mayEqual({1}),
        kernelCase<&Misc::MemAverage16>(twoToOne(2)).mayEqual({1, 2}),
        kernelCase<&Misc::MemStatOp24>({source(1), count()}),
        kernelCase<&Misc::MemSumU8ToF32>({source(1), count()}),
        kernelCase<&Misc::MemMixOp37>({destination(1), source(1), source(1),
                                       numbers<std::int16_t>({0, 16384, 8192, -16384, -32768, 32767, -1, 12000}),
                                       numbers<std::int16_t>({0, 16384, 8192, -16384, -32768, 32767, -1, 7000}),
                                       count()})
            .mayEqual({1, 2}),
        kernelCase<&Misc::MemStatOp38>({source(1), count()}),
        kernelCase<&Misc::MemMixOp47>({destination(1), source(1), source(1), source(1), weight(), count()})
            .mayEqual({1, 2, 3}),
        rowFilter(9216),
        rowFilter(-131).named("upwards"),
        rowFilter(1).named("overlapping"),
        rowFilter(0).named("flat"),
        kernelCase<&Misc::MemThresholdOp50>({destination(1), source(1), lower(), upper(), count()}).mayEqual({1}),
        kernelCase<&Misc::MemDiffOp57>(sumsOfGroups()),
        kernelCase<&Misc::MemDiffOp58>(sumsOfGroups()),
        kernelCase<&Misc::MemCompareMask8>({destination(1), source(1), count()}).mayEqual({1}),
        kernelCase<&Misc::MemMixOp61>({destination(2), source(2), source(2), weight(),
                                       numbers<std::uint16_t>({0, 1, 40000, 65535, 64}),
                                       numbers<std::uint16_t>({65535, 0, 30000, 60000}), count()})
            .mayEqual({1, 2}),
    };
}

} // namespace vela::test
