// Signal kernels: results computed by hand, so that kernel and oracle cannot err together.

#include "oracles/oracles.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace vela::test {
namespace {

// --- Sharpening ----------------------------------------------------------------------------------------------

// One kernel as a function of lumas; chroma is other in every row and must come out as it was in the middle one.
template <class Sample> struct Layout {
    void(VCB_CALL *kernel)(Sample *, const Sample *, const Sample *, const Sample *, uint32_t, int32_t);
    std::size_t samples; // a pixel
    std::size_t luma;    // which of them

    std::vector<int> sharpen(const std::vector<int> &above, const std::vector<int> &row, const std::vector<int> &below,
                             uint32_t shift) const
    {
        std::vector<Sample> out(row.size() * samples, Sample{77});
        const std::vector<Sample> middle = pixels(row, 30);
        kernel(out.data(), pixels(above, 10).data(), middle.data(), pixels(below, 20).data(), shift,
               static_cast<int32_t>(row.size()));
        std::vector<int> lumas;
        for (std::size_t i = 0; i < out.size(); ++i) {
            if (i % samples == luma)
                lumas.push_back(out[i]);
            else
                EXPECT_EQ(out[i], middle[i]) << "chroma " << i;
        }
        return lumas;
    }

    std::vector<Sample> pixels(const std::vector<int> &lumas, int chroma) const
    {
        std::vector<Sample> all(lumas.size() * samples, static_cast<Sample>(chroma));
        for (std::size_t i = 0; i < lumas.size(); ++i)
            all[i * samples + luma] = static_cast<Sample>(lumas[i]);
        return all;
    }
};

template <class Sample> void expectSharpened(const Layout<Sample> &layout, int largest, uint32_t mostShift)
{
    using Row = std::vector<int>;
    const Row zeros(5, 0), full(5, largest);
    EXPECT_EQ(layout.sharpen(zeros, {0, 0, 100, 0, 0}, zeros, 0), (Row{0, 0, largest == 255 ? 255 : 500, 0, 0}));
    EXPECT_EQ(layout.sharpen(full, full, full, 0), full);
    EXPECT_EQ(layout.sharpen({1, 2, 3}, {10, 20, 30}, {4, 5, 6}, 0), (Row{15, 53, 91})); // L = 5, 33, 61
    // L = -1, and -1 >> anything is -1; L = 1 >> anything is 0.
    EXPECT_EQ(layout.sharpen({10, 10}, {10, 10}, {11, 9}, 1), (Row{9, 10}));
    for (const uint32_t shift : {mostShift, mostShift + 1, 0x80000000, 0xFFFFFFFF})
        EXPECT_EQ(layout.sharpen(full, {0, largest}, full, shift), (Row{0, largest})) << shift;
    EXPECT_EQ(layout.sharpen({9, 9}, {8, 8}, {8, 7}, 0xFFFFFFFF), (Row{7, 8}));
    // Alone, the pixel is its own left and right: L = 4*9 - (1 + 2 + 9 + 9).
    EXPECT_EQ(layout.sharpen({1}, {9}, {2}, 0), (Row{24}));
}

TEST(SharpenLuma, EveryLayout)
{
    const VcbSignalProcs &signal = oracle::signalProcs;
    const Layout<uint8_t> bytes[] = {
        {signal.SharpenLuma422YFirst8, 2, 0}, {signal.SharpenLuma422CFirst8, 2, 1}, {signal.SharpenLumaVariant3, 1, 0}};
    for (const auto &layout : bytes)
        expectSharpened(layout, 255, 15);
    const Layout<uint16_t> words[] = {{signal.SharpenLuma422YFirst16, 2, 0},
                                      {signal.SharpenLuma422CFirst16, 2, 1},
                                      {signal.SharpenLumaVariant6, 1, 0}};
    for (const auto &layout : words)
        expectSharpened(layout, 65535, 31);
    // -4 * 65535 needs all bits below a shift of 31, but not of 15.
    EXPECT_EQ(words[2].sharpen({65535}, {0}, {65535}, 15), (std::vector<int>{0}));
    EXPECT_EQ(words[2].sharpen({0}, {40000}, {0}, 15), (std::vector<int>{40002}));
    EXPECT_EQ(words[2].sharpen({0}, {40000}, {0}, 16), (std::vector<int>{40001}));
    EXPECT_EQ(words[2].sharpen({0}, {40000}, {0}, 17), (std::vector<int>{40000}));
}

// --- Magnitudes and dot products -----------------------------------------------------------------------------

TEST(Magnitude, LargestOne)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const double a[] = {3, -5, nan, 0, 1e200}, b[] = {4, -12, 1, -0.0, 0};
    double out[5] = {};
    EXPECT_EQ(oracle::signalProcs.MagnitudeF64(out, a, b, 4), 13);
    EXPECT_EQ(out[0], 5);
    EXPECT_EQ(out[1], 13);
    EXPECT_TRUE(std::isnan(out[2]));
    EXPECT_EQ(out[3], 0);
    EXPECT_EQ(oracle::signalProcs.MagnitudeF64(out, a + 4, b + 4, 1), std::numeric_limits<double>::infinity());
    EXPECT_EQ(oracle::signalProcs.MagnitudeF64(out, a + 2, b + 2, 1), 0);
    EXPECT_EQ(oracle::signalProcs.MagnitudeF64(out, a, b, 0), 0);
    EXPECT_EQ(oracle::signalProcs.MagnitudeF64(out, a, b, -3), 0);
}

// The large tap swallows a 1 that is added to it, but not a 2: so the result tells which ones met first.
template <class Real> struct Ones {
    std::vector<std::size_t> at;
    std::size_t taps;
    Real expected;
};

template <class Real, class Kernel> void expectOrder(Kernel *kernel, Real large, const std::vector<Ones<Real>> &cases)
{
    for (const Ones<Real> &c : cases) {
        std::vector<Real> h(c.taps);
        h[0] = large;
        for (const std::size_t tap : c.at)
            h[tap] = 1;
        const std::vector<Real> signal(c.taps, Real{1});
        Real out = 0;
        kernel(&out, signal.data(), h.data(), static_cast<int32_t>(c.taps), 1);
        EXPECT_EQ(out - large, c.expected) << "case " << &c - cases.data();
    }
}

TEST(SlidingDot, OrderOfAdditions)
{
    expectOrder<float>(oracle::signalProcs.SlidingDotF32, 16777216,
                       {
                           {{4, 8}, 12, 0},   // with the large one, in order
                           {{2, 6}, 8, 2},    // another sum
                           {{1, 3}, 4, 2},    // sums 1 and 3 meet first
                           {{1, 2}, 4, 0},    // sum 2 meets sum 0, then sum 1
                           {{1, 4, 5}, 8, 2}, // 1 and 5
                           {{4, 5}, 6, 0},    // behind the last whole group: one by one
                           {{3, 4, 7}, 8, 2}, // 3 and 7, but
                           {{3, 4, 6}, 7, 0}, // not here
                       });
    expectOrder<double>(oracle::signalProcs.SlidingDotF64, 9007199254740992,
                        {{{2, 4}, 6, 0}, {{1, 3}, 4, 2}, {{1, 2}, 3, 0}, {{2, 4}, 5, 0}});
}

TEST(SlidingDot, Slides)
{
    const float signal[] = {1, 2, 3, 4, 5}, h[] = {1, 10, 100};
    float out[3] = {};
    oracle::signalProcs.SlidingDotF32(out, signal, h, 3, 3);
    EXPECT_EQ(std::vector<float>(out, out + 3), (std::vector<float>{321, 432, 543}));
    oracle::signalProcs.SlidingDotF32(out, signal, h, 0, 3);
    EXPECT_EQ(std::vector<float>(out, out + 3), (std::vector<float>{0, 0, 0}));
    double one = 1;
    oracle::signalProcs.SlidingDotF64(&one, nullptr, nullptr, -1, 1);
    EXPECT_EQ(one, 0);
}

} // namespace
} // namespace vela::test
