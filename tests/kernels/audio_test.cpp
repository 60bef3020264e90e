// Audio kernels: results computed by hand, so that kernel and oracle cannot err together, and domains that are small
// enough to try everything.

#include "every_tier.hpp"
#include "oracles/oracles.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace vela::test {
namespace {

constexpr double swallowsOne = 9007199254740992; // 2^53: takes no 1, but a 2

// --- Recursive filters ---------------------------------------------------------------------------------------

TEST(AudioBiquad, ScalesFullScaleToOne)
{
    constexpr double copy[] = {0, 0, 1, 0, 0};
    double out[4] = {};
    const int16_t s16[] = {0, 0, 16384, -32768};
    oracle::audioProcs.AudioBiquadS16(out + 2, s16, copy, 2);
    EXPECT_EQ(out[2], 0.5);
    EXPECT_EQ(out[3], -1);
    const uint8_t s24[] = {0, 0, 0, 0, 0, 0, 0, 0, 0x80, 1, 0, 0};
    oracle::audioProcs.AudioBiquadS24(out + 2, s24, copy, 2);
    EXPECT_EQ(out[2], -1);
    EXPECT_EQ(out[3], 0x1p-23);
    const int32_t s32[] = {0, 0, INT32_MIN, 1};
    oracle::audioProcs.AudioBiquadS32(out + 2, s32, copy, 2);
    EXPECT_EQ(out[2], -1);
    EXPECT_EQ(out[3], 0x1p-31);
}

// An impulse shows which coefficient meets which sample, and histories of 1 what they are taken for.
TEST(AudioBiquad, ImpulseResponseAndHistory)
{
    constexpr double c[] = {3, 5, 7, 0.5, 0.25};
    const double impulse[] = {0, 0, 1, 0, 0, 0};
    double out[6] = {};
    oracle::audioProcs.AudioBiquadF64(out + 2, impulse, c, 4);
    EXPECT_EQ(std::vector<double>(out, out + 6), (std::vector<double>{0, 0, 7, 1.5, 0.5, -0.625}));

    const struct {
        double x2, x1, y2, y1, expected;
    } histories[] = {{1, 0, 0, 0, 3}, {0, 1, 0, 0, 5}, {0, 0, 1, 0, -0.25}, {0, 0, 0, 1, -0.5}};
    for (const auto &h : histories) {
        const double in[] = {h.x2, h.x1, 0};
        double row[] = {h.y2, h.y1, 99};
        oracle::audioProcs.AudioBiquadF64(row + 2, in, c, 1);
        EXPECT_EQ(row[2], h.expected);
        EXPECT_EQ(row[0], h.y2);
        EXPECT_EQ(row[1], h.y1);
    }
}

TEST(AudioBiquad, Grouping)
{
    constexpr double s = swallowsOne;
    const struct {
        double c[5];
        double expected;
    } cases[] = {
        {{s, -s, 1, -1, 0}, 0}, // ((s + 1) + 1) + (-s - 0)
        {{1, -s, s, -1, 0}, 2}, // ((1 + 1) + s) + (-s - 0)
        {{1, s, -s, 0, -1}, 1}, // ((1 - 0) - s) + (s + 1): 1 - s is exact, s + 1 is not
        {{0, s, s, 0, -1}, 2 * s},
    };
    for (const auto &c : cases) {
        const double ones[] = {1, 1, 1};
        double out[] = {1, 1, 0};
        oracle::audioProcs.AudioBiquadF64(out + 2, ones, c.c, 1);
        EXPECT_EQ(out[2], c.expected) << &c - cases;
    }
}

// Of four 16-bit channels the third, and the row backwards.
TEST(AudioBiquad, Strides)
{
    constexpr double copy[] = {0, 0, 32768, 0, 0};
    int16_t frames[5 * 4];
    for (int i = 0; i < 20; ++i)
        frames[i] = static_cast<int16_t>(10 * (i / 4) + i % 4);
    double out[5] = {};
    oracle::audioProcs.AudioBiquadS16Strided(out + 2, frames + 2, 8, copy, 3);
    EXPECT_EQ(std::vector<double>(out + 2, out + 5), (std::vector<double>{22, 32, 42}));
    oracle::audioProcs.AudioBiquadS16Strided(out + 2, frames + 18, -8, copy, 3);
    EXPECT_EQ(std::vector<double>(out + 2, out + 5), (std::vector<double>{22, 12, 2}));
    oracle::audioProcs.AudioBiquadS16Strided(out + 2, frames + 7, 0, copy, 3);
    EXPECT_EQ(std::vector<double>(out + 2, out + 5), (std::vector<double>{13, 13, 13}));
}

// --- Interpolators -------------------------------------------------------------------------------------------

TEST(AudioUpsample4, TapsMeetTheirSamples)
{
    const struct {
        int phase, tap, sample;
    } cases[] = {{0, 5, 0}, {1, 6, 1}, {2, 0, -5}, {3, 11, 6}};
    int32_t samples[14];
    for (int i = 0; i < 14; ++i)
        samples[i] = 100 + i - 5;
    for (const auto &c : cases) {
        double coef[48] = {};
        coef[12 * c.phase + c.tap] = 2147483648.0;
        double out[8];
        oracle::audioProcs.AudioUpsample4S32(out, samples + 5, coef, 2);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(out[i], i % 4 == c.phase ? 100 + c.sample + i / 4 : 0) << c.phase << ": " << i;
    }
}

TEST(AudioUpsample4, OrdersOfTheTiers)
{
    const struct {
        std::vector<int> ones; // taps of 1 beside the large tap 0
        double base, avx;
    } cases[] = {
        {{2, 6}, 0, 2},    // base adds them to tap 0 one by one; lane 2 adds them first
        {{4, 8}, 0, 0},    // one lane with tap 0
        {{1, 2}, 0, 0},    // base: 1 meets tap 0 when 2 has; AVX: so does lane 1 behind lane 2
        {{1, 3}, 2, 2},    // the odd ones meet first
        {{2, 10}, 0, 2},   // lane 2
        {{1, 5, 2}, 2, 2}, // lane 1
        {{6, 7, 11}, 2, 2},
    };
    const std::vector<int32_t> samples(12, 1);
    for (const auto &c : cases) {
        double coef[48] = {};
        coef[12] = swallowsOne;
        for (const int tap : c.ones)
            coef[12 + tap] = 1;
        double out[4];
        oracle::audioProcs.AudioUpsample4S32(out, samples.data() + 5, coef, 1);
        EXPECT_EQ(out[1] * 0x1p31 - swallowsOne, c.base) << &c - cases;
        oracle::audioProcsOfAvx.AudioUpsample4S32(out, samples.data() + 5, coef, 1);
        EXPECT_EQ(out[1] * 0x1p31 - swallowsOne, c.avx) << &c - cases;
    }
}

TEST(AudioUpsample4, TheScaleComesLast)
{
    const std::vector<int16_t> samples(12, 2);
    double coef[48] = {1e308};
    double out[4];
    oracle::audioProcs.AudioUpsample4S16(out, samples.data() + 5, coef, 1);
    EXPECT_EQ(out[0], std::numeric_limits<double>::infinity());
    const double small = 3 * std::numeric_limits<double>::denorm_min(); // times the scale it would be 0
    coef[0] = small;
    oracle::audioProcs.AudioUpsample4S16(out, std::vector<int16_t>(12, -32768).data() + 5, coef, 1);
    EXPECT_EQ(out[0], -small);
}

// --- Mixers --------------------------------------------------------------------------------------------------

TEST(AudioMix, LimitsAndTies)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        int32_t accumulator, source;
        double gain;
        int32_t expected;
    } words[] = {
        {2147483647, 0, 1, 2147483392},
        {2147483647, 2147483647, 1, 2147483392},
        {0, 5, nan, 2147483392},
        {INT32_MIN, INT32_MIN, 1, INT32_MIN},
        {INT32_MIN, 1, -1e300, INT32_MIN},
        {16777216, 1, 1, 16777216}, // low bits are lost
        {0, 1, 0.5, 0},
        {1, 1, 0.5, 2},
        {0, -1, 0.5, 0},
        {-1, -1, 0.5, -2},
        {0, 16777216, 1 + 0x1p-24 + 0x1p-30, 16777218}, // the gain becomes a float first
    };
    for (const auto &c : words) {
        int32_t accumulator = c.accumulator;
        oracle::audioProcs.AudioMixS32(&accumulator, &c.source, 1, c.gain);
        EXPECT_EQ(accumulator, c.expected) << &c - words;
    }
    const struct {
        int16_t accumulator, source;
        double gain;
        int16_t expected;
    } halves[] = {
        {30000, 30000, 1, 32767}, {-30000, -30000, 1, -32768},
        {0, 1, nan, 32767},       {0, 1, -1e300, -32768},
        {0, 5, 0.5, 2},           {1, 5, 0.5, 4},
    };
    for (const auto &c : halves) {
        int16_t accumulator = c.accumulator;
        oracle::audioProcs.AudioMixS16(&accumulator, &c.source, 1, c.gain);
        EXPECT_EQ(accumulator, c.expected) << &c - halves;
    }
}

// Every 16-bit sample at gain 1 on accumulators at all corners; 32-bit ones near the limits, which random rows miss.
TEST(AudioMix, AllSamples)
{
    constexpr std::array<int, 5> corners = {-32768, -1, 0, 1, 32767};
    onTiersWith(&VcbAudioProcs::AudioMixS16, [&](const auto &tier, const VcbAudioProcs &kernels) {
        std::vector<int16_t> samples(65536);
        std::vector<int32_t> words(65536);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i] = static_cast<int16_t>(i);
            words[i] = static_cast<int32_t>(65537u * static_cast<uint32_t>(i));
        }
        for (const int corner : corners) {
            std::vector<int16_t> sums(samples.size(), static_cast<int16_t>(corner));
            std::vector<int32_t> wideSums(words.size(), corner * 65536);
            kernels.AudioMixS16(sums.data(), samples.data(), 65536, 1);
            kernels.AudioMixS32(wideSums.data(), words.data(), 65536, 1);
            for (std::size_t i = 0; i < samples.size(); ++i) {
                ASSERT_EQ(sums[i], std::clamp(samples[i] + corner, -32768, 32767)) << tier << ": " << i;
                const float exact = static_cast<float>(words[i]) + static_cast<float>(corner * 65536);
                ASSERT_EQ(wideSums[i], std::clamp(static_cast<double>(exact), -2147483648.0, 2147483392.0))
                    << tier << ": " << i;
            }
        }
    });
}

// --- Effects -------------------------------------------------------------------------------------------------

TEST(AudioEffects, Steps)
{
    EXPECT_EQ(oracle::audioEffects.EffectDot2(2, 3, 5, 7), 41);
    EXPECT_EQ(oracle::audioEffects.EffectMultiply(-2, 3), -6);

    const double x[] = {1, 2, 3}, b[] = {10, 100, 1000}, a[] = {0.5, 0.25};
    double y[] = {-1, 4, 5};
    oracle::audioEffects.EffectBiquadStep(x, y, b, a);
    EXPECT_EQ(y[0], (10 + 3000 - 2) + (200 - 1.25));
    EXPECT_EQ(y[1], 4);

    // ((s + 1) + 1) + (-s): the ones are swallowed
    const double ones[] = {1, 1, 1}, large[] = {swallowsOne, -swallowsOne, 1}, feedback[] = {-1, 0};
    double step[] = {0, 1, 0};
    oracle::audioEffects.EffectBiquadStep(ones, step, large, feedback);
    EXPECT_EQ(step[0], 0);

    double inputs[] = {1, 2, 3}, outputs[] = {4, 5, 6};
    oracle::audioEffects.EffectShiftHistory(9, inputs, outputs);
    EXPECT_EQ(std::vector<double>(inputs, inputs + 3), (std::vector<double>{9, 1, 2}));
    EXPECT_EQ(std::vector<double>(outputs, outputs + 3), (std::vector<double>{4, 4, 5}));
}

// Polynomials up to degree 7 come back exactly wherever all products are whole numbers; at the midpoint the weights are
// those of the symmetric half-sample filter.
TEST(AudioEffects, Lagrange)
{
    for (int degree = 0; degree <= 7; ++degree) {
        double p[8];
        for (int i = 0; i < 8; ++i)
            p[i] = std::pow(i - 3, degree);
        for (int t = -9; t <= 9; ++t)
            EXPECT_EQ(oracle::audioEffects.EffectLagrange8(t, p), std::pow(t, degree)) << t << '^' << degree;
    }
    constexpr double midpoint[] = {-5, 49, -245, 1225, 1225, -245, 49, -5};
    for (int i = 0; i < 8; ++i) {
        double p[8] = {};
        p[i] = 2048;
        EXPECT_EQ(oracle::audioEffects.EffectLagrange8(0.5, p), midpoint[i]) << i;
    }
    const double p[] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(oracle::audioEffects.EffectLagrange8(i - 3, p), p[i]);
}

} // namespace
} // namespace vela::test
