// The tables that slot 400 builds, against the curves' formulas and against values that their publishers print.

#include "hdr/setup.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace vela::test::hdr {
namespace {

struct Tables {
    std::vector<float> input;
    std::vector<float> output;
};

Tables tablesOf(std::int32_t code)
{
    Setting setting;
    setting.srcCode = code;
    setting.dstCode = code;
    setUp(setting);
    const int scale = scaleOf(code);
    return {{state().input, state().input + 256 * scale}, {state().output, state().output + 4096 * scale}};
}

class Curves : public testing::TestWithParam<std::int32_t> {
protected:
    void SetUp() override
    {
        if (!processorRunsKernels())
            GTEST_SKIP() << "no kernels on this processor";
        tables = tablesOf(GetParam());
    }
    double codeAt(std::size_t i) const { return static_cast<double>(i) / static_cast<double>(tables.input.size() - 1); }
    static double lightAt(std::size_t i) { return static_cast<double>(i) / 4096; }

    Tables tables;
};

// A last place of the float; near 0 what differences of doubles leave. Mathematical libraries differ by less.
void expectNear(float found, double expected, const char *table, std::size_t i)
{
    EXPECT_LE(std::abs(static_cast<double>(found) - expected), 1.2e-7 * std::abs(expected) + 1e-14)
        << table << " entry " << i << ": " << found << ", expected " << expected;
}

TEST_P(Curves, EveryEntryIsTheFormula)
{
    for (std::size_t i = 0; i < tables.input.size() && !HasFailure(); ++i)
        expectNear(tables.input[i], lightOf(GetParam(), codeAt(i)), "input", i);
    for (std::size_t i = 0; i < tables.output.size() && !HasFailure(); ++i)
        expectNear(tables.output[i], limited(codeOf(GetParam(), lightAt(i)), 1.0), "output", i);
}

// But for the joint of BT.709 with its constants as published: there light falls by 8e-7.
TEST_P(Curves, NeverFall)
{
    const bool is709 = GetParam() == 1 || GetParam() == 14 || GetParam() == 6;
    for (const std::vector<float> *table : {&tables.input, &tables.output}) {
        for (std::size_t i = 1; i < table->size(); ++i) {
            const bool joint = is709 && table == &tables.input && i == 332;
            ASSERT_GE((*table)[i], (*table)[i - 1] - (joint ? 1e-6F : 0)) << i;
        }
        EXPECT_LT(table->front(), table->back());
    }
}

// A code value decoded is light between two entries of the output table, and those lie on both sides of the code; and
// light encoded, between two entries of the input table. Constants as published leave 3e-6 of a code, and 2.3e-4 at the
// joint of BT.709, where an entry is 1e-3.
TEST_P(Curves, RoundTripsWithinTheSteps)
{
    std::size_t trips = 0;
    for (std::size_t i = 0; i < tables.input.size(); ++i) {
        const double at = static_cast<double>(tables.input[i]) * 4096;
        const double code = codeAt(i);
        if (at < 0 || at >= static_cast<double>(tables.output.size() - 1))
            continue;
        const auto j = static_cast<std::size_t>(at);
        ASSERT_LE(static_cast<double>(tables.output[j]), code + 3e-6) << "code " << i;
        ASSERT_GE(static_cast<double>(tables.output[j + 1]), code - 3e-6) << "code " << i;
        ++trips;
    }
    EXPECT_GT(trips, tables.input.size() / 3); // a steep logarithm leaves the table's range early
    trips = 0;
    for (std::size_t i = 0; i < tables.output.size(); ++i) {
        const double at = static_cast<double>(tables.output[i]) * static_cast<double>(tables.input.size() - 1);
        const double light = lightAt(i);
        if (at >= static_cast<double>(tables.input.size() - 1))
            break;
        const auto j = static_cast<std::size_t>(at);
        ASSERT_LE(static_cast<double>(tables.input[j]), light * (1 + 3e-5) + 1e-9) << "light " << i;
        ASSERT_GE(static_cast<double>(tables.input[j + 1]), light * (1 - 3e-5) - 1e-9) << "light " << i;
        ++trips;
    }
    EXPECT_GE(trips, 4096u); // at least to 1.0
}

INSTANTIATE_TEST_SUITE_P(Codes, Curves, testing::ValuesIn(curveCodes),
                         [](const auto &of) { return std::to_string(of.param); });

// --- What the publishers say --------------------------------------------------------------------------------

struct Point {
    std::int32_t curve;
    double light;
    double code;
    double tolerance; // of the code
};

constexpr Point published[] = {
    {1, 0.018, 0.081, 3e-4},         // ITU-R BT.709: the joint
    {1, 1, 1, 1e-12},                //
    {15, 1, 1, 1e-12},               // ITU-R BT.2020
    {4, 0.217637641, 0.5, 1e-7},     // 0.5^2.2
    {16, 1, 0.508078, 1e-6},         // SMPTE ST 2084: 100 cd/m2,
    {16, 10, 0.751827, 1e-6},        // 1000 cd/m2,
    {16, 100, 1, 1e-9},              // 10000 cd/m2,
    {16, 0, 7.3e-7, 1e-8},           // c1^m2
    {228, 1, 0.5, 1e-9},             // ARIB STD-B67: the reference white of the square root,
    {18, 12, 1, 1e-6},               // the peak
    {100, 0, 0.030001223, 1e-6},     // Sony's paper on S-Log2: black 3.0 %,
    {100, 0.18, 0.323, 5e-4},        // grey 32.3 %,
    {100, 0.90, 0.59, 3e-3},         // white 59 %
    {101, 0, 95.0 / 1023, 1e-9},     // Sony's summary of S-Log3: black,
    {101, 0.18, 420.0 / 1023, 1e-9}, // the grey,
    {101, 0.90, 598.0 / 1023, 5e-4}, // the white
    {102, 0.18, 420.0 / 1023, 1e-9}, //
    {102, 0.90, 598.0 / 1023, 5e-4}, //
    {110, 0, 0.12512247, 1e-9},      // Canon: black is code 128 of 1023
    {110, 0.2, 0.343, 1e-3},         // Canon Log: grey 34.3 %
    {111, 0.2, 0.398, 1e-3},         // Canon Log 2: 39.8 %
    {112, 0.2, 0.343, 1e-3},         // Canon Log 3: 34.3 %
    {112, 0.014, 0.15277891, 1e-7},  //
    {112, -0.014, 0.09746547, 1e-7}, //
    {120, 0.18, 1.0 / 3, 1e-5},      // RED: grey is a third,
    {120, 184.322, 1, 1e-6},         // ten stops above it 1.0,
    {120, -0.01, 0, 1e-12},          //
    {200, 0, 0.125, 1e-9},           // Panasonic: black is code 128,
    {200, 0.18, 433.0 / 1023, 3e-4}, // grey 433,
    {200, 0.90, 602.0 / 1023, 3e-3}, // white 602 of 1023 (61 %)
    {210, 0.2, 0.381991, 1e-6},      //
    {210, -0.00467957, 0.076072, 1e-9},
};

TEST(PublishedPoints, AreOnTheCurves)
{
    for (const Point &point : published) {
        // Between two entries of the tables, or on one.
        if (!processorRunsKernels())
            GTEST_SKIP() << "no kernels on this processor";
        const Tables tables = tablesOf(point.curve);
        const auto at = static_cast<std::size_t>(std::max(point.light, 0.0) * 4096);
        if (point.light >= 0 && at + 1 < tables.output.size()) {
            const double fraction = point.light * 4096 - static_cast<double>(at);
            const double code = static_cast<double>(tables.output[at]) * (1 - fraction) +
                                static_cast<double>(tables.output[at + 1]) * fraction;
            EXPECT_NEAR(code, point.code, point.tolerance + 2e-7) << point.curve << " at light " << point.light;
        }
        const double place = point.code * static_cast<double>(tables.input.size() - 1);
        const auto code = static_cast<std::size_t>(place);
        if (code + 1 >= tables.input.size())
            continue;
        const double low = lightOf(point.curve, point.code - point.tolerance);
        const double high = lightOf(point.curve, point.code + point.tolerance);
        const double rounding = 1e-6 * std::abs(high) + 1e-9;
        EXPECT_LE(static_cast<double>(tables.input[code]), high + rounding) << point.curve << " code " << point.code;
        EXPECT_GE(static_cast<double>(tables.input[code + 1]), low - rounding) << point.curve << " code " << point.code;
    }
}

} // namespace
} // namespace vela::test::hdr
