// The four-lane powers against those of double precision, over the ranges that the HDR conversion uses, at both widths.

#include "simd/sse2.h"

#include "simd/loops.h"

#include "simd/powers.h"

#include "hdr/wide.hpp"
#include "support/domains.hpp"

#include <gtest/gtest.h>
#include <vela/frame.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

namespace vela::test {
namespace {

void powers(float *dst, const float *x, double exponent, int32_t count)
{
    map<f32s>(
        dst, count, [=](f32s v) { return power(v, splatF64(exponent)); }, x);
}

double ulpsOff(float found, double exact)
{
    const auto nearest = static_cast<float>(exact);
    const double ulp = std::ldexp(1.0, std::max(std::ilogb(nearest), -126) - 23);
    return std::abs(static_cast<double>(found) - exact) / ulp;
}

// Bits of positive floats from `first` to `last`, so many of them.
std::vector<float> floatsBetween(float first, float last, std::uint32_t number)
{
    const auto low = std::bit_cast<std::uint32_t>(first);
    const auto high = std::bit_cast<std::uint32_t>(last);
    std::vector<float> floats;
    for (std::uint32_t i = 0; i <= number; ++i)
        floats.push_back(
            std::bit_cast<float>(low + static_cast<std::uint32_t>(std::uint64_t{high - low} * i / number)));
    return floats;
}

struct Range {
    const char *use;
    double exponent;
    float from;
    float to;
};

constexpr float least = std::numeric_limits<float>::min();
constexpr float most = std::numeric_limits<float>::max();
constexpr Range ranges[] = {
    {"rendering of hybrid log-gamma", 0.20000005F, least, most},
    {"its inverse", -0.20000005 / 1.20000005, least, most},
    {"PQ encoding, m1", 0.1593017578125, least, 64},
    {"PQ decoding, 1 / m1", 1 / 0.1593017578125, 1e-6F, 4},
    {"a power of 78.84, m2", 78.84375, 0.83F, 1.0045F},
    {"adjustment", 1 / 1.03, least, most},
    {"scene light for 2 cd/m2", -0.94448, least, most},
    {"scene light for 10000 cd/m2", 0.35, least, most},
    {"power 2.4", 2.4, 1e-15F, 1e15F},
};

TEST(Power, IsWithinTwoUlp)
{
    const std::uint32_t number = samplesDomains() ? 100'000 : 1'000'000;
    const bool wide = VCB_GetCPUInsHigh() >= VCB_CPU_AVX2;
    double worst = 0;
    for (const Range &range : ranges) {
        const std::vector<float> x = floatsBetween(range.from, range.to, number);
        std::vector<float> found(x.size());
        powers(found.data(), x.data(), range.exponent, static_cast<std::int32_t>(x.size()));
        double worstHere = 0;
        float worstAt = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double off = ulpsOff(found[i], std::pow(static_cast<double>(x[i]), range.exponent));
            if (!(off <= worstHere)) {
                worstHere = off;
                worstAt = x[i];
            }
        }
        EXPECT_LE(worstHere, 2) << range.use << ", at " << worstAt;
        std::printf("%-32s %.3f ulp, at %.9g\n", range.use, worstHere, static_cast<double>(worstAt));
        worst = std::max(worst, worstHere);
        if (wide) {
            std::vector<float> foundWide(x.size());
            hdrWide.power(foundWide.data(), x.data(), range.exponent, static_cast<std::int32_t>(x.size()));
            EXPECT_EQ(foundWide, found) << range.use;
        }
    }
    RecordProperty("worst_ulp", std::to_string(worst));
}

TEST(Power, HasDefinedEnds)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float x[] = {0, -0.0F, -5, nan, -infinity, 1e-40F, least, infinity, 1};
    float squared[std::size(x)];
    float inverse[std::size(x)];
    float tenth[std::size(x)];
    powers(squared, x, 2, std::size(x));
    powers(inverse, x, -2, std::size(x));
    powers(tenth, x, 0.5, std::size(x));
    for (std::size_t i = 0; i < 7; ++i) {  // as the least normal number
        EXPECT_EQ(squared[i], least) << i; // nothing below it comes out
        EXPECT_EQ(inverse[i], infinity) << i;
        EXPECT_EQ(tenth[i], 0x1p-63F) << i;
    }
    EXPECT_EQ(squared[7], infinity);
    EXPECT_EQ(inverse[7], least);
    EXPECT_EQ(tenth[7], 0x1p64F); // as 2^128
    EXPECT_EQ(squared[8], 1.0F);
    EXPECT_EQ(inverse[8], 1.0F);
}

} // namespace
} // namespace vela::test
