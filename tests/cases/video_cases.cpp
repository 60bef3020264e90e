#include "support/kernel_tables.hpp"

namespace vela::test {
namespace {

std::int64_t wholePairs(std::int64_t pixels) { return pixels / 2; }

// Rows of three, sums of the vertical pass.
std::vector<Argument> sumRows() { return {destination(8), source(4), source(4), source(4), count()}; }

// A line of words with one pixel or pair of padding on each side, to a row of bytes.
std::vector<Argument> weighSums422(std::uint32_t largest)
{
    return {destination([](std::int64_t n) { return wholePairs(n) * 4; }),
            paddedWords([](std::int64_t n) { return wholePairs(n) * 8; }, 8, largest), count()};
}

} // namespace

std::vector<KernelCase> videoCases()
{
    constexpr std::uint32_t largestSum = 16381; // four of them and the rounding fit 16 bits
    constexpr std::uint32_t largestWord = 16383;
    return {
        kernelCase<&VcbVideoProcs::SmoothRows121U8>(sumRows()),
        kernelCase<&VcbVideoProcs::SmoothCols121U16ToU8>(
            {destination(4), paddedWords([](std::int64_t n) { return n * 8; }, 8, largestSum), count()}),
        kernelCase<&VcbVideoProcs::SmoothCols121U16ToU8_A>(weighSums422(largestSum)),
        kernelCase<&VcbVideoProcs::SmoothCols121U16ToU8_B>(weighSums422(largestSum)),
        kernelCase<&VcbVideoProcs::SmoothRows121Rgb32>(sumRows()),
        kernelCase<&VcbVideoProcs::SmoothHoriz121Rgb32>({destination(4), source(4), count()}),
        kernelCase<&VcbVideoProcs::SmoothCols121U16ToU8Q_A>(weighSums422(largestWord)),
        kernelCase<&VcbVideoProcs::SmoothCols121U16ToU8Q_B>(weighSums422(largestWord)),
        kernelCase<&VcbVideoProcs::SharpenU8>({destination(1), source(1), source(1), count()}).mayEqual({1, 2}),
    };
}

} // namespace vela::test
