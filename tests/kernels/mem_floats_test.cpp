// Float arithmetic, sums, peaks: results computed by hand, so that kernel and oracle cannot err together, and domains
// that are small enough to try everything.

#include "every_tier.hpp"
#include "oracles/oracles.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace vela::test {
namespace {

constexpr float floatNaN = std::numeric_limits<float>::quiet_NaN();
constexpr double doubleNaN = std::numeric_limits<double>::quiet_NaN();

// n zeros, and some other elements.
template <class T> std::vector<T> rowWith(std::size_t n, std::initializer_list<std::pair<std::size_t, T>> elements)
{
    std::vector<T> row(n);
    for (const auto &[index, value] : elements)
        row[index] = value;
    return row;
}

// 2^24 swallows a 1 that is added to it, but not a 2. So a sum tells which ones met before they met 2^24.
TEST(MemFloats, SumsGoByLanesAndThenByHalves)
{
    constexpr float large = 16777216;
    const struct {
        std::vector<std::pair<std::size_t, float>> elements;
        float expected;
    } cases[] = {
        {{{0, large}, {32, 1}, {64, 1}}, large},     // one lane, in order
        {{{0, 1}, {32, 1}, {64, large}}, large + 2}, // the same, the small ones first
        {{{0, large}, {1, 1}, {33, 1}}, large + 2},  // a lane of their own
        {{{0, large}, {1, 1}, {17, 1}}, large + 2},  // lanes 1 and 17 meet before lane 0 meets lane 1
        {{{0, large}, {16, 1}, {1, 1}}, large},      // lane 16 meets lane 0 alone
        {{{0, large}, {8, 1}, {24, 1}}, large + 2},  // lane 24 meets lane 8 before lane 0 does
        {{{0, large}, {1, 1}, {2, 1}}, large},       // lane 2 comes first, then lane 1
        {{{0, large}, {1, 1}, {3, 1}}, large + 2},
    };
    for (const auto &c : cases) {
        std::vector<float> row(70);
        for (const auto &[index, value] : c.elements)
            row[index] = value;
        EXPECT_EQ(oracle::memArithOps.MemSumF32(row.data(), row.size()), c.expected) << &c - cases;
    }

    const auto plain = rowWith<float>(40, {{0, large}, {1, 1}, {33, 1}});
    EXPECT_EQ(oracle::memCompareOps.MemSumF32Scalar(plain.data(), plain.size()), large);
    EXPECT_EQ(oracle::memMiscOps.MemSumF32B(plain.data(), plain.size()), 16777218.0);

    constexpr double huge = 9007199254740992; // 2^53, 16 lanes
    const auto apart = rowWith<double>(40, {{0, huge}, {1, 1}, {9, 1}});
    EXPECT_EQ(oracle::memArithOps.MemSumF64(apart.data(), apart.size()), huge + 2);
    const auto together = rowWith<double>(40, {{0, huge}, {16, 1}, {32, 1}});
    EXPECT_EQ(oracle::memArithOps.MemSumF64(together.data(), together.size()), huge);
}

TEST(MemFloats, NegationOfZeros)
{
    const float floats[] = {0.0f, -0.0f, 1.5f, floatNaN, -floatNaN};
    float negated[5];
    oracle::memArithOps.MemNegateF32(negated, floats, 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(std::bit_cast<uint32_t>(negated[i]), std::bit_cast<uint32_t>(floats[i]) ^ 0x80000000) << i;

    const double doubles[] = {0.0, -0.0, 1.5};
    double subtracted[3];
    oracle::memArithOps.MemNegateF64(subtracted, doubles, 3);
    EXPECT_EQ(std::bit_cast<uint64_t>(subtracted[0]), 0u);
    EXPECT_EQ(std::bit_cast<uint64_t>(subtracted[1]), 0u);
    EXPECT_EQ(subtracted[2], -1.5);
}

TEST(MemFloats, PeaksIgnoreNaN)
{
    const float floats[] = {floatNaN, -3, 2, -floatNaN, -0.0f};
    EXPECT_EQ(oracle::memArithOps.MemReduceF32(floats, 5), 3);
    EXPECT_EQ(std::bit_cast<uint32_t>(oracle::memArithOps.MemReduceF32(floats, 1)), 0u);
    EXPECT_EQ(std::bit_cast<uint32_t>(oracle::memArithOps.MemReduceF32(floats + 3, 2)), 0u);
    const double doubles[] = {doubleNaN, -std::numeric_limits<double>::infinity(), 2};
    EXPECT_EQ(oracle::memArithOps.MemMaxAbsF64(doubles, 3), std::numeric_limits<double>::infinity());
    EXPECT_EQ(oracle::memArithOps.MemMaxAbsF64(doubles, 1), 0);
}

TEST(MemFloats, PeaksOfSamplesDifferByTier)
{
    const struct {
        std::vector<int16_t> samples;
        int32_t sse2, avx2;
    } cases[] = {{{-5, 3}, 3, 5}, {{-32768}, 0, 32768}, {{32767, -32768}, 32767, 32768}, {{0, -1}, 0, 1}, {{}, 0, 0}};
    for (const auto &c : cases) {
        const auto count = static_cast<int32_t>(c.samples.size());
        EXPECT_EQ(oracle::memMiscOps.MemMaxAbsS16(c.samples.data(), count), c.sse2);
        EXPECT_EQ(oracle::memMiscOpsOfAvx2.MemMaxAbsS16(c.samples.data(), count), c.avx2);
    }
    const int32_t words[] = {INT32_MAX, INT32_MIN};
    EXPECT_EQ(oracle::memMiscOps.MemMaxAbsS32(words, 1), 2147483647u);
    EXPECT_EQ(oracle::memMiscOps.MemMaxAbsS32(words, 2), 2147483648u);
}

// The exact gain makes a tie an upward case, which a gain of float, or a second rounding, would send to even.
TEST(MemFloats, DoubleGainsRoundOnce)
{
    const float step = std::ldexp(1.0f, -23);
    float out = 0;
    const float x = 1 + step;
    oracle::memMiscOps.MemScaleF32ToF32(&out, &x, 1 + std::ldexp(1.0, -24), 1);
    EXPECT_EQ(out, 1 + 2 * step);

    const float one = 1;
    out = 1;
    oracle::memMiscOps.MemScaleAddF32(&out, &one, std::ldexp(1.0, -24) + std::ldexp(1.0, -50), 1);
    EXPECT_EQ(out, 1 + step);
    out = 1;
    oracle::memMiscOps.MemGainAddF32(&out, &one, std::ldexp(1.0f, -24), 1);
    EXPECT_EQ(out, 1);
}

TEST(MemFloats, Similarity)
{
    const float p[] = {4, 1}, q[] = {1, 1}, a[] = {4, 1}, b[] = {4, 3}, d[] = {1, 1}, e[] = {1, 1};
    EXPECT_EQ(oracle::memMiscOps.MemSsimSumF32(p, q, a, b, d, e, 0, 0, 2), 1.5f); // equal pictures, then 4 / 8
    float map[2] = {};
    // (8+2)(2+4) / (8+2)(2+4) and (2+2)(2+4) / (4+2)(2+4)
    EXPECT_EQ(oracle::memMiscOps.MemSsimSumF32B(map, p, q, a, b, d, e, 2, 4, 2), 1 + 24.0f / 36);
    EXPECT_EQ(map[0], 1);
    EXPECT_EQ(map[1], 24.0f / 36);
}

TEST(MemFloats, CorrelationAccumulates)
{
    const float a[] = {2, 4}, b[] = {5, 1};
    float sums[3] = {0, 0, 0};
    // x = (-1, 1), y = (2, -2)
    EXPECT_EQ(oracle::memMiscOps.MemDeviationSumsF32(sums, a, b, 3, 3, 2), -4.0f / (std::sqrt(2.0f) * std::sqrt(8.0f)));
    EXPECT_EQ(sums[0], 2);
    EXPECT_EQ(sums[1], 8);
    EXPECT_EQ(sums[2], -4);
    EXPECT_EQ(oracle::memMiscOps.MemDeviationSumsF32(sums, a, b, 3, 3, 0), 0);
    EXPECT_EQ(sums[2], -4);
    // x = y = (2, 4): sums 22, 28, 16
    EXPECT_EQ(oracle::memMiscOps.MemDeviationSumsF32(sums, a, a, 0, 0, 2), 16 / (std::sqrt(22.0f) * std::sqrt(28.0f)));

    double doubles[3] = {0, 0, 0};
    const double c[] = {1, 1};
    EXPECT_EQ(oracle::memMiscOps.MemDeviationSumsF64(doubles, c, c, 1, 0, 2), 0); // no deviation of a: no correlation
    EXPECT_EQ(doubles[1], 2);

    // Eight lanes: elements 0, 8 and 24 share one, where 32 lanes would let the ones meet first.
    const auto row = rowWith<float>(25, {{0, 4096}, {8, 1}, {24, 1}});
    float squares[3] = {0, 0, 0};
    oracle::memMiscOps.MemDeviationSumsF32(squares, row.data(), row.data(), 0, 0, row.size());
    EXPECT_EQ(squares[0], 16777216);
    // Four lanes of double: elements 0, 4 and 12. 2^54 swallows 1.5625, but not twice that.
    const auto wide = rowWith<double>(13, {{0, 134217728}, {4, 1.25}, {12, 1.25}});
    double wideSquares[3] = {0, 0, 0};
    oracle::memMiscOps.MemDeviationSumsF64(wideSquares, wide.data(), wide.data(), 0, 0, wide.size());
    EXPECT_EQ(wideSquares[0], 18014398509481984.0);
}

TEST(MemFloats, SumsOfSamples)
{
    const int16_t s16[] = {-32768, 16384};
    EXPECT_EQ(oracle::memMiscOps.MemSumS16F32(s16, 2), -0.5f);
    const uint8_t s24[] = {0, 0, 0x80, 0, 0, 0x40, 1, 0, 0, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(oracle::memMiscOps.MemSumS24F32(s24, 2), -0.5f);
    EXPECT_EQ(oracle::memMiscOps.MemSumS24F32(s24 + 6, 1), std::ldexp(1.0f, -23));
    EXPECT_EQ(oracle::memMiscOps.MemSumS24F32(s24 + 9, 1), -std::ldexp(1.0f, -23));
    const int32_t s32[] = {INT32_MIN, 0x40000000, INT32_MAX};
    EXPECT_EQ(oracle::memMiscOps.MemSumS32F32(s32, 2), -0.5f);
    EXPECT_EQ(oracle::memMiscOps.MemSumS32F32(s32 + 2, 1), 1); // rounded up to 2^31

    const uint16_t high = 65535, low = 0;
    // 65535^2 = 4294836225, floats of that size lie 256 apart
    EXPECT_EQ(oracle::memMiscOps.MemSquaredDiffSumU16(&low, &high, 1), 4294836224.0);
}

TEST(MemFloats, IntegerSumsWrap)
{
    const int16_t least[] = {-32768, -32768, 32767}, other[] = {1, -32768, -1};
    EXPECT_EQ(oracle::memMiscOps.MemAbsDiffSumS16(least, other, 1), 32768u);
    EXPECT_EQ(oracle::memMiscOps.MemAbsDiffSumS16(other, least, 1), 32767u);
    EXPECT_EQ(oracle::memMiscOps.MemAbsDiffSumS16(least, other, 3), 65535u);
    EXPECT_EQ(oracle::memMiscOps.MemMulAddS16(least, least, 1), 1 << 30);
    EXPECT_EQ(oracle::memMiscOps.MemMulAddS16(least, least, 2), INT32_MIN);

    const std::vector<int16_t> low(131072, -32768), high(131072, 32767);
    onTiersWith(&VcbMemMiscOps::MemAbsDiffSumS16, [&](const auto &tier, const VcbMemMiscOps &kernels) {
        EXPECT_EQ(kernels.MemAbsDiffSumS16(low.data(), high.data(), 131071), 4294934528u) << tier;
        EXPECT_EQ(kernels.MemAbsDiffSumS16(low.data(), high.data(), 131072), 0u) << tier;
    });
}

// Every 16-bit sample through the kernels that take them apart: magnitude, scale, difference.
TEST(MemFloats, AllSamples)
{
    for (const TierKernels &tier : kernelTableOf(typeid(VcbMemMiscOps)).tiers) {
        if (VCB_GetCPUInsHigh() < tier.needs)
            continue;
        const auto &kernels = *static_cast<const VcbMemMiscOps *>(tier.table);
        for (int x = -32768; x < 32768; ++x) {
            const auto sample = static_cast<int16_t>(x);
            if (kernels.MemMaxAbsS16) {
                ASSERT_EQ(kernels.MemMaxAbsS16(&sample, 1), tier.oracle ? std::abs(x) : std::max(x, 0)) << tier.name;
            }
            if (kernels.MemSumS16F32) {
                ASSERT_EQ(kernels.MemSumS16F32(&sample, 1), x / 32768.0) << tier.name;
            }
            if (kernels.MemAbsDiffSumS16) {
                for (const int16_t y : std::initializer_list<int16_t>{-32768, -1, 0, 1, 32767}) {
                    const double exact = std::abs(std::clamp(static_cast<double>(x - y), -32768.0, 32767.0));
                    ASSERT_EQ(kernels.MemAbsDiffSumS16(&sample, &y, 1), exact) << tier.name << ": " << x << ", " << y;
                }
            }
        }
    }
}

} // namespace
} // namespace vela::test
