#include "support/kernel_tables.hpp"

#include <limits>

namespace vela::test {
namespace {

std::vector<Argument> rows(std::int64_t destinationBytes, std::int64_t sourceBytes)
{
    return {destination(destinationBytes), source(sourceBytes), count()};
}

// What a host passes, what saturates, what becomes an infinity as a float, and what is no number.
template <class T> Argument gains()
{
    return numbers<T>({0, -0.0f, 1, -1, T(0.5), 2, T(1.0 / 3), 255.5f, 65536, -4e9f, T(1e-40),
                       std::numeric_limits<T>::max(), -std::numeric_limits<T>::infinity(),
                       std::numeric_limits<T>::quiet_NaN(), T(0.7)});
}

std::vector<Argument> scaling(std::int64_t destinationBytes, std::int64_t sourceBytes)
{
    return {destination(destinationBytes), source(sourceBytes), gains<double>(), count()};
}

// Blocks of eight doubles lie twelve apart; behind the last one comes the tail.
std::int64_t spacedBlocks(std::int64_t n)
{
    const std::int64_t blocks = n / 8;
    const std::int64_t tail = n % 8;
    return 8 * (tail || !blocks ? 12 * blocks + tail : 12 * blocks - 4);
}

} // namespace

std::vector<KernelCase> memFormatCases()
{
    using Formats = VcbSampleFormatOps;
    using Arith = VcbMemArithOps;
    using Misc = VcbMemMiscOps;
    const Argument limits = numbers<std::int32_t>({INT32_MAX, INT32_MIN, 0, 16777217, 8388607, -8388608});
    return {
        kernelCase<&Formats::ConvertU8ToF32>(rows(4, 1)),
        kernelCase<&Formats::ConvertS32ToF32Gain>({destination(4), source(4), gains<float>(), count()}).mayEqual({1}),
        kernelCase<&Formats::ConvertF64ToF32>(rows(4, 8)),
        kernelCase<&Formats::ConvertF32ToF64>(rows(8, 4)),
        kernelCase<&Formats::ConvertS8ToS16>(rows(2, 1)),
        kernelCase<&Formats::ConvertS8ToS24>(rows(3, 1)),
        kernelCase<&Formats::ConvertS8ToS32>(rows(4, 1)),
        kernelCase<&Formats::ConvertS16ToS24>(rows(3, 2)),
        kernelCase<&Formats::ConvertS16ToS32>(rows(4, 2)),
        kernelCase<&Formats::ConvertS24ToS32>(rows(4, 3)),
        kernelCase<&Formats::ConvertS8ToF32>(rows(4, 1)),
        kernelCase<&Formats::ConvertS16ToF32>(rows(4, 2)),
        kernelCase<&Formats::ConvertS24ToF32>(rows(4, 3)),
        kernelCase<&Formats::ConvertS32ToF32Scaled>(rows(4, 4)).mayEqual({1}),
        kernelCase<&Formats::ConvertS8ToF64>(rows(8, 1)),
        kernelCase<&Formats::ConvertS16ToF64>(rows(8, 2)),
        kernelCase<&Formats::ConvertS24ToF64>(rows(8, 3)),
        kernelCase<&Formats::ConvertS32ToF64>(rows(8, 4)),
        kernelCase<&Formats::ConvertF32ToS8>(rows(1, 4)),
        kernelCase<&Formats::ConvertF32ToS16>(rows(2, 4)),
        kernelCase<&Formats::ConvertF32ToS24>(rows(3, 4)),
        kernelCase<&Formats::ConvertF32ToS32>(rows(4, 4)).mayEqual({1}),
        kernelCase<&Formats::ConvertF64ToS8>(rows(1, 8)),
        kernelCase<&Formats::ConvertF64ToS16>(rows(2, 8)),
        kernelCase<&Formats::ConvertF64ToS24>(rows(3, 8)),
        kernelCase<&Formats::ConvertF64ToS32>({destination(4), source(spacedBlocks), count()}),
        kernelCase<&Formats::ConvertUnitF32ToU8>(rows(1, 4)),
        kernelCase<&Formats::ConvertF32ToU8>(rows(1, 4)),

        kernelCase<&Arith::MemScaleS16>(scaling(2, 2)).mayEqual({1}),
        kernelCase<&Arith::MemScaleS32>(scaling(4, 4)).mayEqual({1}),
        kernelCase<&Arith::MemScaleOp51>(scaling(2, 4)),
        kernelCase<&Arith::MemScaleClampS32>({destination(4), source(4), gains<double>(), limits, limits, count()})
            .mayEqual({1}),
        kernelCase<&Misc::MemScaleU16>(scaling(2, 2)).mayEqual({1}),
        kernelCase<&Misc::MemScaleOp39>({destination(3), source(3), gains<float>(), count()}).mayEqual({1}),
        kernelCase<&Misc::MemScaleOp40>(scaling(3, 4)),
        kernelCase<&Misc::MemScaleOp41>(scaling(2, 4)),
    };
}

} // namespace vela::test
