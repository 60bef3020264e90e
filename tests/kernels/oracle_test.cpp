// Worked examples: the oracles against results computed by hand, so that kernel and oracle cannot err together.

#include "oracles/oracles.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace vela::test {
namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

TEST(Oracle, Sharpen)
{
    const struct {
        uint8_t a, b, expected;
    } cases[] = {
        {0, 255, 0}, {255, 0, 255}, {100, 99, 100}, {100, 102, 99}, {100, 90, 103}, {7, 7, 7}, {0, 1, 0}, {1, 2, 1},
    };
    for (const auto &c : cases) {
        uint8_t out = 0xEE;
        oracle::videoProcs.SharpenU8(&out, &c.a, &c.b, 1);
        EXPECT_EQ(out, c.expected) << int{c.a} << ", " << int{c.b};
    }
}

TEST(Oracle, SmoothingWeighsNeighbours)
{
    const uint8_t above[4] = {1, 0, 255, 10};
    const uint8_t row[4] = {2, 0, 255, 20};
    const uint8_t below[4] = {3, 1, 255, 30};
    Words sums(4);
    oracle::videoProcs.SmoothRows121U8(sums.data(), above, row, below, 1);
    EXPECT_EQ(sums, (Words{8, 1, 1020, 80}));

    // One Rgb32 pixel between two of padding; 1020s give 255.
    const Words line = {16, 0, 1020, 0, 32, 8, 1020, 0, 16, 0, 1020, 7};
    Bytes pixel(4);
    oracle::videoProcs.SmoothCols121U16ToU8(pixel.data(), line.data() + 4, 1);
    EXPECT_EQ(pixel, (Bytes{6, 1, 255, 0}));
}

// Y0 U Y1 V: the pair before, the pair, the pair behind.
TEST(Oracle, SmoothingKeepsLumaAndChromaApart)
{
    const Words a = {0, 40, 4, 80, 8, 44, 12, 84, 16, 48, 20, 88};
    Bytes pair(4);
    oracle::videoProcs.SmoothCols121U16ToU8Q_A(pair.data(), a.data() + 4, 2);
    EXPECT_EQ(pair, (Bytes{8, 44, 12, 84}));
    const Words b = {40, 0, 80, 4, 44, 8, 84, 12, 48, 16, 88, 20};
    oracle::videoProcs.SmoothCols121U16ToU8Q_B(pair.data(), b.data() + 4, 3); // the odd pixel stays out
    EXPECT_EQ(pair, (Bytes{44, 8, 84, 12}));
    const Words peak = {0, 0, 0, 0, 160, 0, 0, 160, 0, 0, 0, 0};
    oracle::videoProcs.SmoothCols121U16ToU8_A(pair.data(), peak.data() + 4, 2);
    EXPECT_EQ(pair, (Bytes{20, 0, 10, 20}));
}

TEST(Oracle, HorizontalSofteningRepeatsTheEdge)
{
    const Bytes row = {10, 0, 0, 0, 13, 0, 0, 0, 20, 0, 0, 0};
    Bytes out(12);
    oracle::videoProcs.SmoothHoriz121Rgb32(out.data(), row.data(), 3);
    EXPECT_EQ(out, (Bytes{11, 0, 0, 0, 14, 0, 0, 0, 19, 0, 0, 0}));
    oracle::videoProcs.SmoothHoriz121Rgb32(out.data(), row.data(), 1);
    EXPECT_EQ(out[0], 10);
}

TEST(Oracle, ExpansionInterpolatesChromaRoundingUp)
{
    const Bytes row = {1, 10, 2, 100, 3, 13, 4, 100, 5, 6};
    Bytes out(16, 0xEE);
    oracle::colorSpaceProcs.ExpandYuyvToYuva(out.data(), row.data(), 5, 9); // two pairs
    EXPECT_EQ(out, (Bytes{1, 10, 100, 9, 2, 12, 100, 9, 3, 13, 100, 9, 4, 13, 100, 9}));
    Bytes untouched(8, 0xEE);
    oracle::colorSpaceProcs.ExpandUyvyToYuva(untouched.data(), row.data(), 1, 9);
    EXPECT_EQ(untouched, Bytes(8, 0xEE));
}

TEST(Oracle, PackingKeepsTheEvenChroma)
{
    const Bytes row = {1, 10, 20, 0, 2, 11, 21, 0, 3, 12, 22, 0};
    Bytes out(8);
    oracle::colorSpaceProcs.PackYuvaToYuyv(out.data(), row.data(), 3);
    EXPECT_EQ(out, (Bytes{1, 10, 2, 20, 3, 12, 3, 22}));
    oracle::colorSpaceProcs.PackYuvaToUyvy(out.data(), row.data(), 3);
    EXPECT_EQ(out, (Bytes{10, 1, 20, 2, 12, 3, 22, 3}));
}

TEST(Oracle, PlanarPackingSpreadsItsLastPair)
{
    const Words y = {0x01FF, 0x0200, 0x0300, 0x0400, 0x0500, 0x0600, 0x0700};
    const Words u = {0x1100, 0x12FF, 0x1300};
    const Words v = {0x2100, 0x2200, 0x2300};
    Bytes out(16, 0xEE);
    oracle::colorSpaceProcs.PackPlanar16ToYuyv8(out.data(), y.data(), u.data(), v.data(), 7);
    EXPECT_EQ(out, (Bytes{1, 0x11, 2, 0x21, 3, 0x12, 4, 0x22, 5, 0xEE, 0x13, 0xEE, 6, 0xEE, 0x23, 0xEE}));
    out.assign(16, 0xEE);
    oracle::colorSpaceProcs.PackPlanar16ToUyvy8(out.data(), y.data(), u.data(), v.data(), 7);
    EXPECT_EQ(out, (Bytes{0x11, 1, 0x21, 2, 0x12, 3, 0x22, 4, 0x13, 5, 0x23, 6, 0xEE, 0xEE, 0xEE, 0xEE}));
}

} // namespace
} // namespace vela::test
