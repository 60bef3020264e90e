#include "support/kernel_tables.hpp"

namespace vela::test {
namespace {

// So many bytes a pixel. Shifts beyond the limits, "negative" ones too.
template <auto member> KernelCase sharpen(std::int64_t bytes)
{
    return kernelCase<member>({destination(bytes), source(bytes), source(bytes), source(bytes),
                               number({0, 1, 3, 14, 15, 16, 30, 31, 32, 0x80000000, 0xFFFFFFFF, 2}), count()})
        .mayEqual({2});
}

template <auto member> KernelCase slidingDot(std::int64_t bytes)
{
    const auto signal = [bytes](std::int64_t n, std::int64_t taps) {
        return Span{.before = 0, .bytes = taps > 0 ? (n + taps - 1) * bytes : 0, .after = 0};
    };
    return kernelCase<member>({destination(bytes), sourceBy(3, signal), sourcePerInput(bytes, 3),
                               numbers<std::int32_t>({INT32_MIN, 0, 1, 2, 3, 4, 5, 7, 8, 9, 19, 32}), count()});
}

} // namespace

std::vector<KernelCase> signalCases()
{
    return {
        sharpen<&VcbSignalProcs::SharpenLuma422YFirst8>(2),
        sharpen<&VcbSignalProcs::SharpenLuma422CFirst8>(2),
        sharpen<&VcbSignalProcs::SharpenLumaVariant3>(1),
        sharpen<&VcbSignalProcs::SharpenLuma422YFirst16>(4),
        sharpen<&VcbSignalProcs::SharpenLuma422CFirst16>(4),
        sharpen<&VcbSignalProcs::SharpenLumaVariant6>(2),
        kernelCase<&VcbSignalProcs::MagnitudeF64>({destination(8), source(8), source(8), count()}),
        slidingDot<&VcbSignalProcs::SlidingDotF32>(4),
        slidingDot<&VcbSignalProcs::SlidingDotF64>(8),
    };
}

} // namespace vela::test
