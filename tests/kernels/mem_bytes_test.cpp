// The byte kernels: worked examples for their oracles, and proofs over whole domains.

#include "every_tier.hpp"
#include "oracles/oracles.hpp"
#include "support/domains.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <random>

namespace vela::test {
namespace {

using Arith = VcbMemArithOps;
using Misc = VcbMemMiscOps;
using Bytes = std::vector<uint8_t>;
using Mix = void(VCB_CALL *)(uint8_t *, const uint8_t *, const uint8_t *, double, uint64_t);

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// --- Worked examples -----------------------------------------------------------------------------------------

TEST(ByteOracle, Mixes)
{
    const Arith &arith = oracle::memArithOps;
    const Misc &misc = oracle::memMiscOps;
    const struct {
        const char *name;
        Mix mix;
        double weight;
        uint8_t a, b, expected;
    } cases[] = {
        {"a cross-fade, halves up", arith.MemBlend8, 0.5, 255, 0, 128},
        {"from the other side", arith.MemBlend8, 0.5, 0, 255, 128},
        {"beyond a", arith.MemBlend8, 1.5, 120, 100, 130},
        {"no number is the least weight", arith.MemBlend8, nan, 255, 0, 0},
        {"no number is the least weight", arith.MemBlend8, nan, 0, 100, 255},
        {"a layer on top", arith.MemMixOp13, 0.25, 100, 200, 150},
        {"a layer taken away", arith.MemMixOp13, -0.5, 100, 51, 75},
        {"99.5 to 100", arith.MemMixOp13, -0.5, 100, 1, 100},
        {"a centred difference", arith.MemMixOp15, 0.5, 0, 255, 1},
        {"limited", arith.MemMixOp15, 8, 20, 0, 255},
        {"grain", arith.MemMixOp17, 1, 10, 130, 12},
        {"twice the darkest grain", arith.MemMixOp17, 2, 255, 0, 0},
        {"lighter by half", arith.MemMixOp19, 0.5, 100, 110, 105},
        {"not darker", arith.MemMixOp19, 0.5, 100, 90, 100},
        {"darker by half", arith.MemMixOp21, 0.5, 100, 90, 95},
        {"not lighter", arith.MemMixOp21, 0.5, 100, 110, 100},
        {"10.5 to 11", arith.MemMixOp23, 1.5, 3, 10, 11},
        {"a negative distance", arith.MemMixOp23, -1, 3, 10, 0},
        {"the larger", misc.MemMixOp4, 0.5, 10, 200, 200},
        {"all of a, half of b", misc.MemMixOp4, 0.25, 10, 200, 100},
        {"b alone", misc.MemMixOp4, 3, 250, 7, 7},
        {"neither", misc.MemMixOp4, nan, 250, 7, 0},
    };
    for (const auto &c : cases) {
        uint8_t out = 0xEE;
        c.mix(&out, &c.a, &c.b, c.weight, 1);
        EXPECT_EQ(out, c.expected) << c.name;
    }
}

TEST(ByteOracle, Gains)
{
    const struct {
        double gain;
        uint8_t x, expected;
    } cases[] = {{1, 201, 201}, {0.5, 1, 1}, {0.5, 3, 2}, {-1, 200, 0}, {8, 10, 80}, {infinity, 10, 80}, {nan, 9, 0}};
    for (const auto &c : cases) {
        uint8_t out = 0xEE;
        oracle::memArithOps.MemScale8(&out, &c.x, c.gain, 1);
        EXPECT_EQ(out, c.expected) << c.gain << " * " << int{c.x};
    }
}

// A weight is rounded to a 16384th, ties to even: seen where it meets the largest difference of words.
TEST(ByteOracle, WordMixRoundsItsWeightToEven)
{
    const auto mix = [](uint16_t a, uint16_t b, double weight, uint16_t lower, uint16_t upper) {
        uint16_t out = 0xEEEE;
        oracle::memMiscOps.MemMixOp61(&out, &a, &b, weight, lower, upper, 1);
        return out;
    };
    EXPECT_EQ(mix(65535, 0, 0.5 / 16384, 0, 65535), 0);
    EXPECT_EQ(mix(65535, 0, 1.5 / 16384, 0, 65535), 8);
    EXPECT_EQ(mix(65535, 0, 2.5 / 16384, 0, 65535), 8);
    EXPECT_EQ(mix(0, 100, nan, 0, 65535), 200); // the least weight is just above -1
    EXPECT_EQ(mix(0, 40000, -1, 0, 60000), 60000);
    EXPECT_EQ(mix(0, 40000, 1, 64, 60000), 64);
    EXPECT_EQ(mix(50, 50, 1, 200, 100), 100); // upper wins
}

TEST(ByteOracle, MixesOfSeveralInputs)
{
    const auto mix = [](const Bytes &inputs, const std::vector<float> &weights) {
        std::vector<const uint8_t *> rows;
        for (const uint8_t &input : inputs)
            rows.push_back(&input);
        uint8_t out = 0xEE;
        oracle::memMiscOps.MemMixOp6(&out, rows.data(), weights.data(), static_cast<int32_t>(rows.size()), 1);
        return int{out};
    };
    const float third = 1.0f / 3;
    EXPECT_EQ(mix({10, 20, 40}, {third, third, third}), 23);
    EXPECT_EQ(mix({}, {}), 0);
    EXPECT_EQ(mix({255, 255, 255, 255}, {2, 2, -2, -1.5}), 127);     // 127.5 less what the products drop
    EXPECT_EQ(mix({255, 255, 255, 255, 255}, {2, 2, 2, -2, -2}), 4); // the third is, where 510 would come out

    const uint8_t a = 10;
    const uint8_t b = 60;
    uint8_t out = 0xEE;
    oracle::memMiscOps.MemMixOp37(&out, &a, &b, -32768, 16384, 1);
    EXPECT_EQ(out, 40);
}

TEST(ByteOracle, MaskedMix)
{
    const Bytes a = {255, 255, 255, 7};
    const Bytes b = {0, 9, 0, 200};
    const Bytes mask = {255, 0, 128, 255};
    Bytes out(4);
    oracle::memMiscOps.MemMixOp47(out.data(), a.data(), b.data(), mask.data(), 1, 4);
    EXPECT_EQ(out, (Bytes{255, 9, 128, 7}));
    oracle::memMiscOps.MemMixOp47(out.data(), a.data(), b.data(), mask.data(), 0, 4);
    EXPECT_EQ(out, b);
}

// Above 255 the blocks of 16 take the low half of the threshold, signed and limited; the tail takes it as it is.
TEST(ByteOracle, CountsHaveTwoThresholds)
{
    const Arith &arith = oracle::memArithOps;
    const Bytes white(31, 255);
    const Bytes black(31, 0);
    EXPECT_EQ(arith.MemCountBelow8(white.data(), 300, 16), 0u);
    EXPECT_EQ(arith.MemCountBelow8(white.data(), 300, 15), 15u);
    EXPECT_EQ(arith.MemCountBelow8(white.data(), 300, 31), 15u);
    EXPECT_EQ(arith.MemCountBelow8(black.data(), 0x10000, 31), 15u);
    EXPECT_EQ(arith.MemCountBelow8(black.data(), 0x8005, 31), 15u); // negative in the blocks
    EXPECT_EQ(arith.MemCountBelow8(black.data(), 1, 31), 31u);
    EXPECT_EQ(arith.MemCountBelow8Pair(white.data(), black.data(), 300, 31), 15u);
    EXPECT_EQ(arith.MemCountBelow8Pair(white.data(), black.data(), 1, -5), 0u);
    EXPECT_EQ(arith.MemCountAtMost8(white.data(), 0x100FE, 31), 15u);
    EXPECT_EQ(arith.MemCountAtMost8(white.data(), 300, 31), 31u);
    EXPECT_EQ(arith.MemCountAtMost8Pair(black.data(), white.data(), 254, 31), 0u);
    EXPECT_EQ(arith.MemCountEqual8(white.data(), 300, 31), 16u);
    EXPECT_EQ(arith.MemCountEqual8(black.data(), 0, 31), 31u);
    EXPECT_EQ(arith.MemCountEqual8Pair(black.data(), white.data(), 255, 31), 31u);
    EXPECT_EQ(arith.MemCountEqual8Pair(white.data(), white.data(), 0x10000, 31), 16u);
}

TEST(ByteOracle, Statistics)
{
    const Misc &misc = oracle::memMiscOps;
    const Bytes row = {10, 0, 5, 250};
    EXPECT_EQ(misc.MemMean8(row.data(), 4), 66.25);
    EXPECT_EQ(misc.MemMean8(row.data(), 0), 0);
    EXPECT_EQ(misc.MemMeanOp3(row.data(), 1, 10, 4), 7.5);
    EXPECT_EQ(misc.MemMeanOp3(row.data(), -7, 255, 4), 66.25);
    EXPECT_EQ(misc.MemMeanOp3(row.data(), 256, 300, 4), 0);
    EXPECT_EQ(misc.MemStatOp24(row.data(), 3), 125.0 / 3 - 25);
    EXPECT_EQ(misc.MemStatOp24(row.data(), 0), 0);
    EXPECT_EQ(misc.MemStatOp38(row.data(), 3), 7.5f);
    EXPECT_EQ(misc.MemStatOp38(row.data(), 1), 0);
    Bytes large(65794, 255);
    large.back() = 2; // 2^24 + 1
    EXPECT_EQ(misc.MemSumU8ToF32(large.data(), large.size()), 16777216.0f);
}

TEST(ByteOracle, Rows)
{
    const Misc &misc = oracle::memMiscOps;
    const Bytes rows = {0, 10, 10, 7, 20, 20, 0, 40, 255};
    Bytes out(3, 0xEE);
    misc.MemRowFilter8(out.data(), rows.data() + 3, 3, 3);
    // S = 14, 90, 305; D = 0, 30, 245: (76 + 2 * 30 + 2) >> 2, (215 + 2 * 275 + 2) >> 2
    EXPECT_EQ(out, (Bytes{0, 34, 191}));
    misc.MemRowFilter8(out.data(), rows.data() + 6, 0, 3);
    EXPECT_EQ(out, (Bytes{0, 40, 215})); // S = 0, 160, 1020

    const Bytes a = {1, 2, 3, 4, 5, 6, 7, 8, 200, 0};
    const Bytes b = {0, 0, 0, 0, 0, 0, 0, 10, 0, 255};
    std::vector<uint16_t> sums = {65500, 7, 99};
    misc.MemDiffOp57(sums.data(), a.data(), b.data(), 10);
    EXPECT_EQ(sums, (std::vector<uint16_t>{65530, 462, 99}));
    misc.MemDiffOp57(sums.data(), a.data(), b.data(), 9);
    EXPECT_EQ(sums, (std::vector<uint16_t>{65535, 662, 99}));
    std::vector<int16_t> changes = {32760, -32760, 99};
    misc.MemDiffOp58(changes.data(), a.data(), b.data(), 10);
    EXPECT_EQ(changes, (std::vector<int16_t>{32767, -32768, 99}));

    Bytes masks(3);
    misc.MemThresholdOp50(masks.data(), rows.data(), 1, 9, 3);
    EXPECT_EQ(masks, (Bytes{0, 0, 0}));
    misc.MemThresholdOp50(masks.data(), rows.data(), -5, 9, 3);
    EXPECT_EQ(masks, (Bytes{255, 0, 0}));
    misc.MemCompareMask8(masks.data(), rows.data(), 3);
    EXPECT_EQ(masks, (Bytes{255, 0, 0}));
}

// --- Whole domains -------------------------------------------------------------------------------------------

// All pairs of bytes: a is the high byte of the index, b the low one.
struct AllPairs {
    Bytes a = Bytes(65536);
    Bytes b = Bytes(65536);

    AllPairs()
    {
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] = static_cast<uint8_t>(i >> 8);
            b[i] = static_cast<uint8_t>(i);
        }
    }
};

std::string pairText(std::size_t i) { return std::to_string(i >> 8) + ", " + std::to_string(i & 255); }

// The first pair for which two results differ.
std::string difference(const Bytes &kernel, const Bytes &expected)
{
    const auto at = std::mismatch(kernel.begin(), kernel.end(), expected.begin());
    if (at.first == kernel.end())
        return "";
    return pairText(static_cast<std::size_t>(at.first - kernel.begin()) % 65536) + ": got " +
           std::to_string(*at.first) + ", expected " + std::to_string(*at.second);
}

double unitLimited(double y) { return std::clamp(y, 0.0, 1.0); }

// What the rows of the lists say, in real numbers.
struct PairMix {
    const char *name;
    Mix Arith::*inArith;
    Mix Misc::*inMisc;
    double span;      // of the weight
    double tolerance; // within the span
    double (*real)(double a, double b, double weight);

    Mix in(const Arith &arith, const Misc &misc) const { return inArith ? arith.*inArith : misc.*inMisc; }
};

const PairMix pairMixes[] = {
    {"MemBlend8", &Arith::MemBlend8, nullptr, 2, 0.6, [](double a, double b, double w) { return b + w * (a - b); }},
    {"MemMixOp13", &Arith::MemMixOp13, nullptr, 2, 0.6, [](double a, double b, double w) { return a + w * b; }},
    {"MemMixOp15", &Arith::MemMixOp15, nullptr, 8, 0.7, [](double a, double b, double w) { return 128 + w * (a - b); }},
    {"MemMixOp17", &Arith::MemMixOp17, nullptr, 2, 0.6, [](double a, double b, double w) { return a + w * (b - 128); }},
    {"MemMixOp19", &Arith::MemMixOp19, nullptr, 2, 0.6,
     [](double a, double b, double w) { return a + w * std::max(b - a, 0.0); }},
    {"MemMixOp21", &Arith::MemMixOp21, nullptr, 2, 0.6,
     [](double a, double b, double w) { return a + w * std::min(b - a, 0.0); }},
    {"MemMixOp23", &Arith::MemMixOp23, nullptr, 8, 0.7,
     [](double a, double b, double w) { return w * std::abs(a - b); }},
    {"MemMixOp4", nullptr, &Misc::MemMixOp4, infinity, 0.6,
     [](double a, double b, double w) { return std::max(unitLimited(2 - 2 * w) * a, unitLimited(2 * w) * b); }},
};

// Ordinary weights, the ends of both spans, ties of the fixed point, and what lies beyond.
std::vector<double> weights()
{
    std::vector<double> all = {0,         1,    0.5,         0.25,        -0.5,         -1,         0.7,    -0.3,
                               1.0 / 3,   2,    -2,          1.99997,     -1.999,       8,          -8,     7.9998,
                               5.3,       -4.1, 0.5e-14,     1e-5,        -1e-5,        1e300,      -1e300, infinity,
                               -infinity, nan,  0.5 / 16384, 1.5 / 16384, -2.5 / 16384, 2.5 / 4096, 0.75,   -0.001};
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> inSpan(-2, 2);
    for (int i = 0; i < 12; ++i)
        all.push_back(inSpan(random));
    if (samplesDomains()) {
        std::shuffle(all.begin() + 3, all.end(), random);
        all.resize(9);
    }
    return all;
}

TEST(ByteMixes, OraclesKeepTheirPromises)
{
    const AllPairs pairs;
    Bytes out(pairs.a.size());
    for (const PairMix &mix : pairMixes) {
        const Mix oracle = mix.in(oracle::memArithOps, oracle::memMiscOps);
        for (const double weight : weights()) {
            if (!(std::abs(weight) <= mix.span))
                continue;
            const double tolerance = weight == 0 || weight == 1 ? 0 : mix.tolerance;
            oracle(out.data(), pairs.a.data(), pairs.b.data(), weight, out.size());
            double worst = 0;
            std::size_t at = 0;
            for (std::size_t i = 0; i < out.size(); ++i) {
                const double real = std::clamp(mix.real(pairs.a[i], pairs.b[i], weight), 0.0, 255.0);
                if (std::abs(out[i] - real) > worst) {
                    worst = std::abs(out[i] - real);
                    at = i;
                }
            }
            EXPECT_LE(worst, tolerance) << mix.name << " by " << weight << " at " << pairText(at);
        }
    }
}

TEST(ByteMixes, KernelsEqualOraclesOverAllPairs)
{
    const AllPairs pairs;
    Bytes expected(pairs.a.size());
    Bytes out(pairs.a.size());
    for (const PairMix &mix : pairMixes) {
        for (const double weight : weights()) {
            mix.in(oracle::memArithOps, oracle::memMiscOps)(expected.data(), pairs.a.data(), pairs.b.data(), weight,
                                                            out.size());
            const auto compare = [&](const std::string &tier, Mix kernel) {
                kernel(out.data(), pairs.a.data(), pairs.b.data(), weight, out.size());
                EXPECT_EQ(difference(out, expected), "") << mix.name << " on " << tier << " by " << weight;
            };
            if (mix.inArith)
                onTiersWith(mix.inArith,
                            [&](const auto &tier, const Arith &table) { compare(tier, table.*mix.inArith); });
            else
                onTiersWith(mix.inMisc, [&](const auto &tier, const Misc &table) { compare(tier, table.*mix.inMisc); });
        }
    }
}

TEST(ByteMixes, GainsOverAllBytes)
{
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    for (const double gain : weights()) {
        Bytes expected(256);
        oracle::memArithOps.MemScale8(expected.data(), bytes.data(), gain, 256);
        if (std::abs(gain) <= 8) {
            const double tolerance = gain == 0 || gain == 1 ? 0 : 0.7;
            for (std::size_t x = 0; x < 256; ++x)
                EXPECT_LE(std::abs(expected[x] - std::clamp(gain * static_cast<double>(x), 0.0, 255.0)), tolerance)
                    << gain << " * " << x;
        }
        onTiersWith(&Arith::MemScale8, [&](const auto &tier, const Arith &table) {
            Bytes out(256);
            table.MemScale8(out.data(), bytes.data(), gain, 256);
            EXPECT_EQ(out, expected) << tier << " by " << gain;
        });
    }
}

TEST(ByteMixes, MasksOverAllPairs)
{
    const AllPairs pairs;
    Bytes expected(pairs.a.size());
    Bytes out(pairs.a.size());
    for (const double weight : {1.0, 0.0, 0.7, -1.3, 2.0, nan, infinity}) {
        const int step = samplesDomains() ? 51 : 3;
        for (int m = 0; m < 256; m += m < 4 || m > 250 || (m > 124 && m < 132) ? 1 : step) {
            const Bytes mask(pairs.a.size(), static_cast<uint8_t>(m));
            oracle::memMiscOps.MemMixOp47(expected.data(), pairs.a.data(), pairs.b.data(), mask.data(), weight,
                                          out.size());
            onTiersWith(&Misc::MemMixOp47, [&](const auto &tier, const Misc &table) {
                table.MemMixOp47(out.data(), pairs.a.data(), pairs.b.data(), mask.data(), weight, out.size());
                EXPECT_EQ(difference(out, expected), "") << tier << ", mask " << m << " by " << weight;
            });
            if (m == 0 || weight == 0) {
                EXPECT_EQ(expected, pairs.b);
            }
            if (m == 255 && weight == 1) {
                EXPECT_EQ(expected, pairs.a);
            }
            if (!(std::abs(weight) <= 2))
                continue;
            double worst = 0;
            for (std::size_t i = 0; i < out.size(); ++i) {
                const double real = pairs.b[i] + weight * m / 255 * (pairs.a[i] - pairs.b[i]);
                worst = std::max(worst, std::abs(expected[i] - std::clamp(real, 0.0, 255.0)));
            }
            EXPECT_LE(worst, std::abs(weight) <= 1 ? 1.2 : 1.6) << "mask " << m << " by " << weight;
        }
    }
}

TEST(ByteMixes, SumsOverAllPairs)
{
    const AllPairs pairs;
    Bytes expected(pairs.a.size());
    Bytes out(pairs.a.size());
    std::vector<int16_t> fixed = {-32768, 16384, 8193, 32767, -32767, -16384, -5461, -1, 0, 127, 30001};
    fixed.resize(samplesDomains() ? 3 : fixed.size());
    const uint8_t *rows[] = {pairs.a.data(), pairs.b.data()};
    for (const int16_t ofA : fixed) {
        for (const int16_t ofB : fixed) {
            const auto real = [&](std::size_t i) {
                return std::clamp((pairs.a[i] * ofA + pairs.b[i] * ofB) / 16384.0, 0.0, 255.0);
            };
            const auto worst = [&] {
                double error = 0;
                for (std::size_t i = 0; i < out.size(); ++i)
                    error = std::max(error, std::abs(expected[i] - real(i)));
                return error;
            };
            oracle::memMiscOps.MemMixOp37(expected.data(), rows[0], rows[1], ofA, ofB, out.size());
            EXPECT_LE(worst(), 0.6) << ofA << ", " << ofB;
            onTiersWith(&Misc::MemMixOp37, [&](const auto &tier, const Misc &table) {
                table.MemMixOp37(out.data(), rows[0], rows[1], ofA, ofB, out.size());
                EXPECT_EQ(difference(out, expected), "") << "MemMixOp37 on " << tier << " by " << ofA << ", " << ofB;
            });

            // Two inputs never reach the limits of 16 bits.
            const float weights[] = {static_cast<float>(ofA) / 16384, static_cast<float>(ofB) / 16384};
            oracle::memMiscOps.MemMixOp6(expected.data(), rows, weights, 2, out.size());
            EXPECT_LE(worst(), 0.5 + 0.04 * 2) << ofA << ", " << ofB;
            onTiersWith(&Misc::MemMixOp6, [&](const auto &tier, const Misc &table) {
                table.MemMixOp6(out.data(), rows, weights, 2, out.size());
                EXPECT_EQ(difference(out, expected), "") << "MemMixOp6 on " << tier << " by " << ofA << ", " << ofB;
            });
        }
    }
}

// Every word against words at the ends, in the middle and at random: the products come close to 32 bits.
TEST(ByteMixes, WordsAtTheEnds)
{
    std::vector<uint16_t> a(65536);
    std::iota(a.begin(), a.end(), uint16_t{0});
    std::mt19937 random(1);
    for (int i = 0; i < (samplesDomains() ? 3 : 8); ++i) {
        const uint16_t ends[] = {0, 65535, 32767, 32768, 1};
        const std::vector<uint16_t> b(65536, i < 5 ? ends[i] : static_cast<uint16_t>(random()));
        for (const double weight : weights()) {
            std::vector<uint16_t> expected(65536);
            oracle::memMiscOps.MemMixOp61(expected.data(), a.data(), b.data(), weight, 0, 65535, 65536);
            if (weight == 1) {
                EXPECT_EQ(expected, a);
            }
            if (weight == 0) {
                EXPECT_EQ(expected, b);
            }
            onTiersWith(&Misc::MemMixOp61, [&](const auto &tier, const Misc &table) {
                std::vector<uint16_t> out(65536);
                table.MemMixOp61(out.data(), a.data(), b.data(), weight, 0, 65535, 65536);
                EXPECT_TRUE(out == expected) << tier << " by " << weight << ", b " << b[0];
            });
        }
    }
}

// --- Counts and comparison -----------------------------------------------------------------------------------

// What g_CPUID says, until the end of a scope.
class Popcnt {
public:
    explicit Popcnt(uint8_t value) : detected_(g_CPUID.popcnt) { g_CPUID.popcnt = value; }
    ~Popcnt() { g_CPUID.popcnt = detected_; }
    Popcnt(const Popcnt &) = delete;
    Popcnt &operator=(const Popcnt &) = delete;

private:
    uint8_t detected_;
};

// Every threshold of a byte and those above, on all bytes and on all distances, by both ways of counting.
TEST(ByteCounts, EveryThreshold)
{
    VCB_GetCPUInsHigh(); // detects
    Bytes a(256 + 13);
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i] = static_cast<uint8_t>(i * 167);
    const Bytes b(a.size(), 0);
    std::vector<uint32_t> thresholds(300);
    std::iota(thresholds.begin(), thresholds.end(), 0u);
    thresholds.insert(thresholds.end(), {0x7FFF, 0x8000, 0xFF80, 0xFFFF, 0x10000, 0x10001, 0x100FF, 0xFFFFFFFF});
    const Arith &oracle = oracle::memArithOps;
    for (const uint8_t popcnt : {uint8_t{0}, g_CPUID.popcnt}) {
        const Popcnt setting(popcnt);
        onTiersWith(&Arith::MemCountBelow8, [&](const auto &tier, const Arith &table) {
            for (const uint32_t t : thresholds) {
                for (const std::size_t n : {a.size(), std::size_t{256}, std::size_t{15}, std::size_t{17}}) {
                    const auto what = [&] {
                        return tier + (popcnt ? " with" : " without") + " POPCNT, " + std::to_string(t) + ", " +
                               std::to_string(n);
                    };
                    const auto check = [&](auto count) {
                        EXPECT_EQ((table.*count)(a.data(), t, n), (oracle.*count)(a.data(), t, n)) << what();
                    };
                    const auto checkPair = [&](auto count) {
                        EXPECT_EQ((table.*count)(a.data(), b.data(), t, n), (oracle.*count)(a.data(), b.data(), t, n))
                            << what();
                    };
                    check(&Arith::MemCountBelow8);
                    check(&Arith::MemCountAtMost8);
                    check(&Arith::MemCountEqual8);
                    EXPECT_EQ(table.MemCountBelow8Pair(b.data(), a.data(), t, static_cast<int64_t>(n)),
                              oracle.MemCountBelow8Pair(b.data(), a.data(), t, static_cast<int64_t>(n)))
                        << what();
                    checkPair(&Arith::MemCountAtMost8Pair);
                    checkPair(&Arith::MemCountEqual8Pair);
                }
            }
        });
    }
}

// Rows so long that every narrow sum would overflow.
TEST(ByteCounts, LongRows)
{
    VCB_GetCPUInsHigh();
    constexpr std::size_t n = 5'000'003;
    Bytes white(n, 255);
    const Bytes black(n, 0);
    for (const uint8_t popcnt : {uint8_t{0}, g_CPUID.popcnt}) {
        const Popcnt setting(popcnt);
        onTiersWith(&Arith::MemCountEqual8, [&](const auto &tier, const Arith &table) {
            EXPECT_EQ(table.MemCountEqual8(white.data(), 255, n), n) << tier;
            EXPECT_EQ(table.MemCountBelow8Pair(white.data(), black.data(), 255, n), 0u) << tier;
        });
    }
    onTiersWith(&Misc::MemMean8, [&](const auto &tier, const Misc &table) {
        EXPECT_EQ(table.MemMean8(white.data(), n), 255.0) << tier;
        EXPECT_EQ(table.MemMeanOp3(white.data(), 255, 255, n), 255.0) << tier;
        EXPECT_EQ(table.MemStatOp24(white.data(), n), 0.0) << tier;
        EXPECT_EQ(table.MemSumU8ToF32(white.data(), n), static_cast<float>(255.0 * n)) << tier;
    });
    for (std::size_t i = 0; i < n; i += 2)
        white[i] = 0;
    onTiersWith(&Misc::MemStatOp38, [&](const auto &tier, const Misc &table) {
        EXPECT_EQ(table.MemStatOp38(white.data(), n), 255.0f) << tier;
        EXPECT_EQ(table.MemStatOp24(white.data(), n), oracle::memMiscOps.MemStatOp24(white.data(), n)) << tier;
    });
}

TEST(ByteComparison, FindsTheFirstDifference)
{
    onTiersWith(&VcbMemCompareOps::MemCompare8, [](const auto &tier, const VcbMemCompareOps &table) {
        const Bytes a(400, 7);
        for (std::size_t n = 0; n <= 300; ++n) {
            Bytes b = a;
            b[n] = 8; // behind the row
            ASSERT_EQ(table.MemCompare8(a.data(), b.data(), n), n) << tier;
            for (std::size_t at = 0; at < n; ++at) {
                b = a;
                b[at] = 8;
                b[n - 1] = 8;
                ASSERT_EQ(table.MemCompare8(a.data(), b.data(), n), at) << tier << ", " << n;
            }
        }
    });
}

} // namespace
} // namespace vela::test
