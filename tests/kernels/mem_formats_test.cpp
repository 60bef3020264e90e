// Sample formats and gains against results computed by hand, and over whole domains against the formula in double. The
// oracles and the kernels of every tier take the same examples, so that they cannot err together.

#include "mem/tiers.hpp"
#include "support/wide_texts.hpp"

#include <vela/frame.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace vela::test {
namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

struct Kernels {
    std::string name;
    int needs;
    const VcbSampleFormatOps &formats;
    const VcbMemArithOps &arith;
    const VcbMemMiscOps &misc;
};

class MemFormats : public testing::TestWithParam<Kernels> {
protected:
    void SetUp() override
    {
        if (VCB_GetCPUInsHigh() < GetParam().needs)
            GTEST_SKIP() << "the processor lacks this tier";
    }
    const VcbSampleFormatOps &formats() const { return GetParam().formats; }
    const VcbMemArithOps &arith() const { return GetParam().arith; }
    const VcbMemMiscOps &misc() const { return GetParam().misc; }
};

INSTANTIATE_TEST_SUITE_P(
    Tiers, MemFormats,
    testing::Values(Kernels{"oracle", 0, oracle::sampleFormatOps, oracle::memArithOps, oracle::memMiscOps},
                    Kernels{"sse2", VCB_CPU_SSE2, sampleFormatOpsSse2, memArithOpsSse2, memMiscOpsSse2},
                    Kernels{"wide", VCB_CPU_AVX2, sampleFormatOpsWide, memArithOpsWide, memMiscOpsWide}),
    [](const testing::TestParamInfo<Kernels> &tier) { return tier.param.name; });

// A row through a kernel of (destination, source, parameters, count).
template <class To, class From, class Kernel, class... Parameters>
std::vector<To> through(Kernel kernel, const std::vector<From> &row, Parameters... parameters)
{
    std::vector<To> out(row.size(), To(0x5A));
    kernel(out.data(), row.data(), parameters..., row.size());
    return out;
}

using Bytes = std::vector<std::uint8_t>;

// The same for rows of packed 24-bit samples, given as numbers.
template <class Kernel, class From, class... Parameters>
std::vector<int> toS24(Kernel kernel, const std::vector<From> &row, Parameters... parameters)
{
    Bytes out(row.size() * 3, 0x5A);
    kernel(out.data(), row.data(), parameters..., row.size());
    std::vector<int> samples;
    for (std::size_t i = 0; i < out.size(); i += 3)
        samples.push_back(out[i] | out[i + 1] << 8 | static_cast<std::int8_t>(out[i + 2]) * 65536);
    return samples;
}

Bytes packed24(const std::vector<int> &samples)
{
    Bytes bytes;
    for (const int sample : samples)
        for (int shift = 0; shift < 24; shift += 8)
            bytes.push_back(static_cast<std::uint8_t>(sample >> shift & 255));
    return bytes;
}

// --- Worked examples -----------------------------------------------------------------------------------------

TEST_P(MemFormats, IntegersKeepFullScale)
{
    const std::vector<std::int8_t> bytes = {-1, 127, -128, 1};
    EXPECT_EQ(through<std::int16_t>(formats().ConvertS8ToS16, bytes),
              (std::vector<std::int16_t>{-256, 32512, -32768, 256}));
    EXPECT_EQ(through<std::int32_t>(formats().ConvertS8ToS32, bytes),
              (std::vector<std::int32_t>{-16777216, 2130706432, INT32_MIN, 16777216}));
    Bytes out(12);
    formats().ConvertS8ToS24(out.data(), bytes.data(), 4);
    EXPECT_EQ(out, (Bytes{0, 0, 0xFF, 0, 0, 0x7F, 0, 0, 0x80, 0, 0, 1}));

    const std::vector<std::int16_t> words = {-2, 0x1234, -32768, 32767};
    formats().ConvertS16ToS24(out.data(), words.data(), 4);
    EXPECT_EQ(out, (Bytes{0, 0xFE, 0xFF, 0, 0x34, 0x12, 0, 0, 0x80, 0, 0xFF, 0x7F}));
    EXPECT_EQ(through<std::int32_t>(formats().ConvertS16ToS32, words),
              (std::vector<std::int32_t>{-131072, 0x12340000, INT32_MIN, 0x7FFF0000}));

    const Bytes samples = {0x56, 0x34, 0x12, 0xFF, 0xFF, 0xFF, 0, 0, 0x80};
    std::vector<std::int32_t> wide(3);
    formats().ConvertS24ToS32(wide.data(), samples.data(), 3);
    EXPECT_EQ(wide, (std::vector<std::int32_t>{0x12345600, -256, INT32_MIN}));
    std::vector<float> floats(3);
    formats().ConvertS24ToF32(floats.data(), samples.data(), 3);
    EXPECT_EQ(floats, (std::vector<float>{1193046.0f / 8388608, -1.0f / 8388608, -1}));
}

TEST_P(MemFormats, OnlyNarrowSamplesSaturate)
{
    const std::vector<float> x = {1, -1, 0.5f, -0.999f, 300, -300, 1e30f, -1e30f, inf, -inf, nan, -0.0f};
    EXPECT_EQ(through<std::int8_t>(formats().ConvertF32ToS8, x),
              (std::vector<std::int8_t>{127, -128, 64, -127, 127, -128, 127, -128, 127, -128, -128, 0}));
    EXPECT_EQ(through<std::int16_t>(formats().ConvertF32ToS16, x),
              (std::vector<std::int16_t>{32767, -32768, 16384, -32735, 32767, -32768, 32767, -32768, 32767, -32768,
                                         -32768, 0}));
    EXPECT_EQ(toS24(formats().ConvertF32ToS24, x),
              (std::vector<int>{-8388608, -8388608, 4194304, -8380219, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(through<std::int32_t>(formats().ConvertF32ToS32, x),
              (std::vector<std::int32_t>{INT32_MIN, INT32_MIN, 1073741824, -2145336192, INT32_MIN, INT32_MIN, INT32_MIN,
                                         INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, 0}));
    // Up to 256 the low three bytes of what 32 bits hold: 129.5 * 2^23 = 129 * 2^23 + 2^22.
    EXPECT_EQ(toS24(formats().ConvertF32ToS24, std::vector<float>{129.5f, 2, -256, 256}),
              (std::vector<int>{-4194304, 0, 0, 0}));
}

TEST_P(MemFormats, BytesFromFloats)
{
    const std::vector<float> x = {0.49f, 0.5f, 254.5f, 254.4999f, 255, 1e9f, 1e30f, inf, -0.4f, -7, -1e30f, nan};
    EXPECT_EQ(through<std::uint8_t>(formats().ConvertF32ToU8, x),
              (Bytes{0, 1, 255, 254, 255, 255, 255, 255, 0, 0, 0, 0}));
    // The largest float below a half and a half add up to 1: the sum is rounded.
    EXPECT_EQ(through<std::uint8_t>(formats().ConvertF32ToU8, std::vector<float>{std::nextafter(0.5f, 0.0f)}),
              (Bytes{1}));
    const std::vector<float> unit = {0, 1, 0.5f, 0.25f, 2, 1e30f, -1, -1e30f, inf, -inf, nan};
    EXPECT_EQ(through<std::uint8_t>(formats().ConvertUnitF32ToU8, unit),
              (Bytes{0, 255, 128, 64, 255, 255, 0, 0, 255, 0, 0}));
}

// Just below three steps: as a float it is three.
TEST_P(MemFormats, DoublesPassThroughFloat)
{
    const double below = 3 - 0x1p-40;
    EXPECT_EQ(through<std::int8_t>(formats().ConvertF64ToS8, std::vector<double>{below / 128, -below / 128, 1, 1e300}),
              (std::vector<std::int8_t>{3, -3, 127, 127}));
    EXPECT_EQ(through<std::int16_t>(formats().ConvertF64ToS16, std::vector<double>{below / 32768, 1, -1e300, nan}),
              (std::vector<std::int16_t>{3, 32767, -32768, -32768}));
    EXPECT_EQ(toS24(formats().ConvertF64ToS24, std::vector<double>{below / 8388608, 1, 1e300, nan}),
              (std::vector<int>{3, -8388608, 0, 0}));
    const std::vector<std::int32_t> large = {INT32_MAX, INT32_MIN, 16777217};
    EXPECT_EQ(through<double>(formats().ConvertS32ToF64, large),
              (std::vector<double>{1 - 0x1p-31, -1, 16777217 * 0x1p-31}));
    EXPECT_EQ(through<float>(formats().ConvertS32ToF32Scaled, large), (std::vector<float>{1, -1, 0x1p-7f}));
    EXPECT_EQ(through<float>(formats().ConvertS32ToF32Gain, large, 0.5f),
              (std::vector<float>{0x1p30f, -0x1p30f, 0x1p23f}));
}

TEST_P(MemFormats, DoublesToS32InBlocks)
{
    constexpr std::int32_t half = 1073741824;
    const auto convert = [this](const std::vector<double> &source, std::size_t count) {
        std::vector<std::int32_t> out(count, 7);
        formats().ConvertF64ToS32(out.data(), source.data(), count);
        return out;
    };
    EXPECT_EQ(convert(std::vector<double>(3, 0.5), 3), (std::vector<std::int32_t>{half, half, half}));
    EXPECT_EQ(convert(std::vector<double>(8, 0.5), 8), (std::vector<std::int32_t>{half, 0, half, 0, half, 0, half, 0}));

    // Element k is k steps of 2^-31, and at odd places k + 0.5 as it is.
    std::vector<double> source(48);
    for (std::size_t k = 0; k < source.size(); ++k)
        source[k] = static_cast<double>(k) * 0x1p-31;
    EXPECT_EQ(convert(source, 11), (std::vector<std::int32_t>{12, 13, 14, 0, 4, 0, 6, 0, 7, 7, 7}));
    for (std::size_t k = 1; k < source.size(); k += 2)
        source[k] = static_cast<double>(k) + 0.5;
    EXPECT_EQ(convert(source, 16), (std::vector<std::int32_t>{12, 13, 14, 15, 16, 17, 18, 19, 7, 7, 7, 7, 7, 7, 7, 7}));
    source[24] = -1;
    source[25] = nan;
    source[27] = -3e9;
    EXPECT_EQ(convert(source, 24),
              (std::vector<std::int32_t>{INT32_MIN, INT32_MIN, 26, INT32_MIN, 28, 29, 30, 31, 7, 7, 7, 7,
                                         7,         7,         7,  7,         7,  7,  7,  7,  7, 7, 7, 7}));
}

TEST_P(MemFormats, GainsRoundHalvesAwayFromZero)
{
    const std::vector<std::int16_t> x = {1, -1, 3, -3, 0, 32767, -32768};
    using Words = std::vector<std::int16_t>;
    EXPECT_EQ(through<std::int16_t>(arith().MemScaleS16, x, 0.5), (Words{1, -1, 2, -2, 0, 16384, -16384}));
    EXPECT_EQ(through<std::int16_t>(arith().MemScaleS16, x, 0.49999997), (Words{0, 0, 1, -1, 0, 16383, -16384}));
    EXPECT_EQ(through<std::int16_t>(arith().MemScaleS16, x, -1.0), (Words{-1, 1, -3, 3, 0, -32767, 32767}));
    EXPECT_EQ(through<std::int16_t>(arith().MemScaleS16, x, 1e300),
              (Words{32767, -32768, 32767, -32768, -32768, 32767, -32768})); // 0 times infinity is no number
    EXPECT_EQ(through<std::int16_t>(arith().MemScaleS16, x, double{nan}), Words(7, -32768));

    const std::vector<std::uint16_t> u = {1, 3, 0, 40000, 65535};
    EXPECT_EQ(through<std::uint16_t>(misc().MemScaleU16, u, 0.5), (std::vector<std::uint16_t>{1, 2, 0, 20000, 32768}));
    EXPECT_EQ(through<std::uint16_t>(misc().MemScaleU16, u, 1.75), (std::vector<std::uint16_t>{2, 5, 0, 65535, 65535}));
    EXPECT_EQ(through<std::uint16_t>(misc().MemScaleU16, u, -1.0), std::vector<std::uint16_t>(5, 0));
    EXPECT_EQ(through<std::uint16_t>(misc().MemScaleU16, u, 1e300),
              (std::vector<std::uint16_t>{65535, 65535, 0, 65535, 65535}));
}

TEST_P(MemFormats, GainsOnWideSamples)
{
    using Samples = std::vector<std::int32_t>;
    const Samples x = {INT32_MAX, INT32_MIN, 8388609, -8388609, 5};
    EXPECT_EQ(through<std::int32_t>(arith().MemScaleS32, x, 1.0),
              (Samples{INT32_MAX, INT32_MIN, 8388609, -8388609, 5}));
    EXPECT_EQ(through<std::int32_t>(arith().MemScaleS32, x, -1.0),
              (Samples{INT32_MIN, INT32_MAX, -8388609, 8388609, -5}));
    EXPECT_EQ(through<std::int32_t>(arith().MemScaleS32, x, 0.5),
              (Samples{1073741824, -1073741824, 4194305, -4194305, 3}));
    EXPECT_EQ(through<std::int32_t>(arith().MemScaleS32, x, double{nan}), Samples(5, INT32_MIN));
    EXPECT_EQ(through<std::int32_t>(arith().MemScaleClampS32, x, 1.0, -8388608, 8388607),
              (Samples{8388607, -8388608, 8388607, -8388608, 5}));
    EXPECT_EQ(through<std::int32_t>(arith().MemScaleClampS32, x, 1.0, 100, 50), Samples(5, 50));

    EXPECT_EQ(toS24(misc().MemScaleOp40, x, 1.0), (std::vector<int>{8388607, -8388608, 32768, -32768, 0}));
    EXPECT_EQ(toS24(misc().MemScaleOp40, Samples{128, -128, 127, 384}, 1.0), (std::vector<int>{1, -1, 0, 2}));
    EXPECT_EQ(toS24(misc().MemScaleOp40, x, double{nan}), std::vector<int>(5, -8388608));
    EXPECT_EQ(through<std::int16_t>(misc().MemScaleOp41, Samples{INT32_MAX, INT32_MIN, 32768, -32768, 32767}, 1.0),
              (std::vector<std::int16_t>{32767, -32768, 1, -1, 0}));

    const Bytes packed = packed24({8388607, -8388608, 1, -1, 100});
    const auto scale24 = [&](float gain) {
        Bytes out(packed);
        misc().MemScaleOp39(out.data(), out.data(), gain, 5);
        return out;
    };
    EXPECT_EQ(scale24(1), packed);
    EXPECT_EQ(scale24(-2), packed24({-8388608, 8388607, -2, 2, -200}));
    EXPECT_EQ(scale24(0.5f), packed24({4194304, -4194304, 1, -1, 50}));
    EXPECT_EQ(scale24(nan), packed24(std::vector<int>(5, -8388608)));
}

TEST_P(MemFormats, StereoToMonoAddsPairs)
{
    const std::vector<std::int16_t> stereo = {1, 2, -1, -2, 32767, 32767, -32768, -32768, 3, 2};
    const auto mono = [&](double gain) {
        std::vector<std::int16_t> out(5);
        arith().MemScaleOp51(out.data(), stereo.data(), gain, 5);
        return out;
    };
    using Words = std::vector<std::int16_t>;
    EXPECT_EQ(mono(0.5), (Words{2, -1, 32767, -32768, 3}));
    EXPECT_EQ(mono(1), (Words{3, -3, 32767, -32768, 5}));
    EXPECT_EQ(mono(-100), (Words{-6, 6, -32768, 32767, -10})); // limited to -1.99994
    EXPECT_EQ(mono(nan), mono(-100));
    EXPECT_EQ(mono(0x1p-15 * 5), (Words{0, 0, 8, -8, 0})); // 2.5 of 16384: to the even 2
}

// --- Whole domains -------------------------------------------------------------------------------------------

template <class T> std::vector<T> everyValue()
{
    std::vector<T> values;
    for (int x = std::numeric_limits<T>::min(); x <= std::numeric_limits<T>::max(); ++x)
        values.push_back(static_cast<T>(x));
    return values;
}

template <class To, class From, class Formula>
void expectFormula(const std::vector<To> &results, const std::vector<From> &row, Formula formula)
{
    for (std::size_t i = 0; i < row.size(); ++i)
        ASSERT_EQ(results[i], formula(row[i])) << "of " << +row[i] << " at " << i;
}

TEST_P(MemFormats, EveryNarrowSampleBecomesItsFraction)
{
    const auto bytes = everyValue<std::int8_t>();
    expectFormula(through<float>(formats().ConvertS8ToF32, bytes), bytes, [](double x) { return x / 128; });
    expectFormula(through<double>(formats().ConvertS8ToF64, bytes), bytes, [](double x) { return x / 128; });
    const auto words = everyValue<std::int16_t>();
    expectFormula(through<float>(formats().ConvertS16ToF32, words), words, [](double x) { return x / 32768; });
    expectFormula(through<double>(formats().ConvertS16ToF64, words), words, [](double x) { return x / 32768; });
    const auto pixels = everyValue<std::uint8_t>();
    expectFormula(through<float>(formats().ConvertU8ToF32, pixels), pixels, [](double x) { return x; });

    std::vector<int> samples;
    for (int high = -32768; high < 32768; ++high)
        for (int low : {0, 1, 0x55, 0x80, 0xFF})
            samples.push_back(high * 256 + low);
    const Bytes packed = packed24(samples);
    std::vector<float> floats(samples.size());
    formats().ConvertS24ToF32(floats.data(), packed.data(), samples.size());
    expectFormula(floats, samples, [](double x) { return x / 8388608; });
    std::vector<double> doubles(samples.size());
    formats().ConvertS24ToF64(doubles.data(), packed.data(), samples.size());
    expectFormula(doubles, samples, [](double x) { return x / 8388608; });
}

double roundedWithin(double x, double low, double high)
{
    if (std::isnan(x))
        return low;
    const double whole = std::trunc(x); // not std::round: MinGW takes the float below a half up
    return std::clamp(std::abs(x - whole) < 0.5 ? whole : whole + std::copysign(1.0, x), low, high);
}

// The product of two floats is exact in double, so that its conversion rounds once.
TEST_P(MemFormats, EveryWordTimesAGain)
{
    const auto words = everyValue<std::int16_t>();
    const auto unsignedWords = everyValue<std::uint16_t>();
    for (const double gain : {0.5, 0.7, 1.0, 1.0 / 3, -1.5, 0.49999997, 1e-3, 1000.5, 1e9, double{nan}}) {
        const auto product = [gain](double x) { return static_cast<float>(x * static_cast<float>(gain)); };
        expectFormula(through<std::int16_t>(arith().MemScaleS16, words, gain), words,
                      [=](double x) { return roundedWithin(product(x), -32768, 32767); });
        expectFormula(through<std::uint16_t>(misc().MemScaleU16, unsignedWords, gain), unsignedWords,
                      [=](double x) { return roundedWithin(product(x), 0, 65535); });
    }
}

// Every exponent with telling mantissas, and the neighbours of every half step of 8 and 16 bits, of both signs.
std::vector<float> tellingFloats()
{
    std::vector<float> floats;
    std::mt19937 random(1);
    for (std::uint32_t exponent = 0; exponent < 256; ++exponent) {
        std::vector<std::uint32_t> mantissas = {0,        1,        2,        0x1FFFFF, 0x200000, 0x3FFFFF,
                                                0x400000, 0x400001, 0x600000, 0x7FFFFE, 0x7FFFFF};
        for (int i = 0; i < 20; ++i)
            mantissas.push_back(random() & 0x7FFFFF);
        for (const std::uint32_t mantissa : mantissas)
            floats.push_back(std::bit_cast<float>(exponent << 23 | mantissa));
    }
    const auto around = [&floats](float x) {
        floats.insert(floats.end(), {std::nextafter(x, 0.0f), x, std::nextafter(x, inf)});
    };
    for (int half = 1; half <= 2 * 260; ++half) {
        const auto steps = static_cast<float>(half) / 2;
        around(steps);       // of bytes from 0 to 255
        around(steps / 255); // of bytes from 0 to 1
        around(steps / 128); // of S8
    }
    for (int half = 1; half <= 2 * 32770; ++half)
        around(static_cast<float>(half) / 2 / 32768); // of S16
    const std::size_t positive = floats.size();
    for (std::size_t i = 0; i < positive; ++i)
        floats.push_back(-floats[i]);
    return floats;
}

double truncatedWithin(double x, double low, double high)
{
    return std::isnan(x) ? low : std::clamp(std::trunc(x), low, high);
}

// The integer that 32 bits hold, or else the most negative one.
std::int32_t truncated32(double x)
{
    const double whole = std::trunc(x);
    return whole >= -0x1p31 && whole < 0x1p31 ? static_cast<std::int32_t>(whole) : INT32_MIN;
}

TEST_P(MemFormats, TellingFloatsBecomeIntegers)
{
    const std::vector<float> x = tellingFloats();
    const auto check = [](const auto &results, const std::vector<float> &row, auto formula) {
        expectFormula(results, row, formula);
    };
    // Scaling by powers of two is exact but for denormals, which truncation makes 0 anyway.
    const auto s8 = [](double v) { return truncatedWithin(v * 128, -128, 127); };
    const auto s16 = [](double v) { return truncatedWithin(v * 32768, -32768, 32767); };
    const auto s24 = [](double v) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(truncated32(v * 8388608)) << 8) >> 8;
    };
    check(through<std::int8_t>(formats().ConvertF32ToS8, x), x, s8);
    check(through<std::int16_t>(formats().ConvertF32ToS16, x), x, s16);
    check(toS24(formats().ConvertF32ToS24, x), x, s24);
    check(through<std::int32_t>(formats().ConvertF32ToS32, x), x, [](double v) { return truncated32(v * 0x1p31); });
    check(through<std::uint8_t>(formats().ConvertF32ToU8, x), x,
          [](float v) { return truncatedWithin(v + 0.5f, 0, 255); });
    check(through<std::uint8_t>(formats().ConvertUnitF32ToU8, x), x, [](float v) {
        const float scaled = v * 255; // rounded, and the sum again
        return truncatedWithin(scaled + 0.5f, 0, 255);
    });

    const std::vector<double> doubles(x.begin(), x.end());
    EXPECT_EQ(through<std::int8_t>(formats().ConvertF64ToS8, doubles),
              through<std::int8_t>(formats().ConvertF32ToS8, x));
    EXPECT_EQ(through<std::int16_t>(formats().ConvertF64ToS16, doubles),
              through<std::int16_t>(formats().ConvertF32ToS16, x));
    EXPECT_EQ(toS24(formats().ConvertF64ToS24, doubles), toS24(formats().ConvertF32ToS24, x));
}

// A gain of the telling value on one sample: rounding at every exponent, and both ends of the 32-bit range.
TEST_P(MemFormats, TellingGainsRoundWithinTheRange)
{
    for (const float gain : tellingFloats()) {
        const std::int32_t one = 1;
        std::int32_t out = 7;
        arith().MemScaleS32(&out, &one, gain, 1);
        ASSERT_EQ(out, roundedWithin(gain, -0x1p31, 0x1p31 - 1)) << gain;
        Bytes sample = {1, 0, 0};
        misc().MemScaleOp39(sample.data(), sample.data(), gain, 1);
        ASSERT_EQ(sample, packed24({static_cast<int>(roundedWithin(gain, -8388608, 8388607))})) << gain;
    }
}

} // namespace
} // namespace vela::test
