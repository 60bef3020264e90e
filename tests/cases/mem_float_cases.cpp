#include "support/kernel_tables.hpp"

#include <limits>

namespace vela::test {
namespace {

template <class T> Argument gains()
{
    constexpr T infinity = std::numeric_limits<T>::infinity();
    return numbers<T>({0, T(-0.0), 1, -1, T(1e-30), T(3e38), infinity, std::numeric_limits<T>::quiet_NaN(), T(0.7)});
}

// dst, src, gain; and those whose destination is a source too.
template <auto member, class Gain> KernelCase gain(std::int64_t bytes)
{
    return kernelCase<member>({destination(bytes), source(bytes), gains<Gain>(), count()}).mayEqual({1});
}

template <auto member> KernelCase oneSignal(std::int64_t bytes)
{
    return kernelCase<member>({destination(bytes), source(bytes), count()}).mayEqual({1});
}

template <auto member> KernelCase twoSignals(std::int64_t bytes)
{
    return kernelCase<member>({destination(bytes), source(bytes), source(bytes), count()}).mayEqual({1, 2});
}

template <auto member> KernelCase reduction(std::int64_t bytes) { return kernelCase<member>({source(bytes), count()}); }

template <auto member> KernelCase pairReduction(std::int64_t bytes)
{
    return kernelCase<member>({source(bytes), source(bytes), count()});
}

// The second means are such that differences from them round.
template <auto member, class Value> KernelCase deviations()
{
    constexpr std::int64_t bytes = sizeof(Value);
    return kernelCase<member>({standingDestination(3 * bytes), source(bytes), source(bytes),
                               numbers<Value>({0, -1, Value(0.1)}), numbers<Value>({0, 1, Value(-0.3)}), count()});
}

Argument stabilisers() { return numbers<float>({0, 1, 6.5025f, 1e-4f}); }

} // namespace

std::vector<KernelCase> memFloatCases()
{
    return {
        gain<&VcbMemArithOps::MemScaleF32, float>(4),
        gain<&VcbMemArithOps::MemScaleF64, double>(8),
        twoSignals<&VcbMemArithOps::MemSubF32>(4),
        twoSignals<&VcbMemArithOps::MemSubF64>(8),
        twoSignals<&VcbMemArithOps::MemAddF32>(4),
        twoSignals<&VcbMemArithOps::MemAddF64>(8),
        oneSignal<&VcbMemArithOps::MemNegateF32>(4),
        oneSignal<&VcbMemArithOps::MemNegateF64>(8),
        reduction<&VcbMemArithOps::MemSumSquaresF32>(4),
        reduction<&VcbMemArithOps::MemSumSquaresF64>(8),
        reduction<&VcbMemArithOps::MemReduceF32>(4),
        reduction<&VcbMemArithOps::MemMaxAbsF64>(8),
        twoSignals<&VcbMemArithOps::MemMulF32>(4),
        oneSignal<&VcbMemArithOps::MemMulF32InPlace>(4),
        reduction<&VcbMemArithOps::MemSumF32>(4),
        reduction<&VcbMemArithOps::MemSumF64>(8),
        twoSignals<&VcbMemArithOps::MemDivF32>(4),

        reduction<&VcbMemCompareOps::MemSumF32Scalar>(4),
        kernelCase<&VcbMemCompareOps::MemLookup8To32>({destination(4), source(1), fixedSource(256 * 4), count()}),
        kernelCase<&VcbMemCompareOps::MemLookup16To32>({destination(4), source(2), fixedSource(65536 * 4), count()}),

        reduction<&VcbMemMiscOps::MemMaxAbsS16>(2),
        reduction<&VcbMemMiscOps::MemMaxAbsS32>(4),
        gain<&VcbMemMiscOps::MemGainF32, float>(4),
        gain<&VcbMemMiscOps::MemGainAddF32, float>(4),
        pairReduction<&VcbMemMiscOps::MemReduceF32Pair>(4),
        kernelCase<&VcbMemMiscOps::MemSsimSumF32>(
            {source(4), source(4), source(4), source(4), source(4), source(4), stabilisers(), stabilisers(), count()}),
        kernelCase<&VcbMemMiscOps::MemSsimSumF32B>({destination(4), source(4), source(4), source(4), source(4),
                                                    source(4), source(4), stabilisers(), stabilisers(), count()})
            .mayEqual({1, 2, 3, 4, 5, 6}),
        reduction<&VcbMemMiscOps::MemSumF32B>(4),
        deviations<&VcbMemMiscOps::MemDeviationSumsF32, float>(),
        deviations<&VcbMemMiscOps::MemDeviationSumsF64, double>(),
        reduction<&VcbMemMiscOps::MemSumS16F32>(2),
        reduction<&VcbMemMiscOps::MemSumS24F32>(3),
        reduction<&VcbMemMiscOps::MemSumS32F32>(4),
        gain<&VcbMemMiscOps::MemScaleF32ToF32, double>(4),
        gain<&VcbMemMiscOps::MemScaleF64ToF64, double>(8),
        gain<&VcbMemMiscOps::MemScaleAddF32, double>(4),
        gain<&VcbMemMiscOps::MemScaleAddF64, double>(8),
        pairReduction<&VcbMemMiscOps::MemAbsDiffSumS16>(2),
        pairReduction<&VcbMemMiscOps::MemMulAddS16>(2),
        pairReduction<&VcbMemMiscOps::MemSquaredDiffSumU16>(2),
    };
}

} // namespace vela::test
