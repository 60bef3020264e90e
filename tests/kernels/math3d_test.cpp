// Array statistics and 3-vectors: results computed by hand, and how good the estimates are.

#include "every_tier.hpp"
#include "oracles/estimates.h"

#include <cmath>
#include <limits>
#include <vector>

namespace vela::test {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// --- Sums ----------------------------------------------------------------------------------------------------
// Next to a large term a sum swallows a 1, but not a 2: 2^24 in float, 2^53 in double. So a total tells which terms met
// before they met the large one.

struct SumCase {
    std::size_t count;
    std::size_t large;
    std::vector<std::size_t> ones;
    int more; // what is left of the ones
};

template <class Real> std::vector<Real> rowOf(const SumCase &c, Real large)
{
    std::vector<Real> row(c.count);
    row[c.large] = large;
    for (const std::size_t i : c.ones)
        row[i] = 1;
    return row;
}

TEST(Math3D, ProductsOfFloatsAddUpInBlocksOfTwoVectors)
{
    const SumCase cases[] = {
        {16, 0, {4, 12}, 0}, // each is swallowed in its block
        {16, 0, {8, 12}, 2}, // of the second block the vectors meet first
        {16, 0, {1, 3}, 2},  // lane 1 and lane 3 meet
        {16, 0, {1, 2}, 0},  // lane 2 meets lane 0
        {12, 0, {9, 11}, 2}, // a single vector goes to the lanes too
        {11, 1, {8, 10}, 0}, // less than a vector does not: one by one
        {11, 10, {8, 9}, 2}, // in order
    };
    constexpr float large = 16777216;
    const std::vector<float> ones(16, 1);
    for (const SumCase &c : cases) {
        SCOPED_TRACE(&c - cases);
        const std::vector<float> row = rowOf(c, large);
        const std::vector<float> roots = rowOf<float>(c, 4096);
        const auto n = static_cast<int32_t>(c.count);
        const float total = large + static_cast<float>(c.more);
        onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
            EXPECT_EQ(procs.DotF32(row.data(), ones.data(), static_cast<uint32_t>(n)), total);
            EXPECT_EQ(procs.CovarianceF32(row.data(), 0, ones.data(), 0, n), total / static_cast<float>(n));
            EXPECT_EQ(procs.VarianceF32(roots.data(), n, 0), total / static_cast<float>(n));
        });
    }
}

TEST(Math3D, ProductsOfDoublesAddUpInBlocksOfTwoVectors)
{
    const SumCase cases[] = {
        {8, 0, {2, 6}, 0}, {8, 0, {4, 6}, 2}, {8, 0, {1, 3}, 2},
        {6, 0, {1, 5}, 2}, {5, 0, {1, 4}, 0}, {5, 4, {0, 1}, 2},
    };
    constexpr double large = 9007199254740992;
    const std::vector<double> ones(8, 1);
    for (const SumCase &c : cases) {
        SCOPED_TRACE(&c - cases);
        const std::vector<double> row = rowOf(c, large);
        const auto n = static_cast<int32_t>(c.count);
        onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
            EXPECT_EQ(procs.DotF64(row.data(), ones.data(), static_cast<uint32_t>(n)), large + c.more);
            EXPECT_EQ(procs.CovarianceF64(row.data(), 0, ones.data(), 0, n), (large + c.more) / n);
        });
    }
}

TEST(Math3D, MeansAddUpInBlocksOfFourVectors)
{
    const SumCase floats[] = {
        {32, 0, {16, 24}, 2},  // of the second block all four meet first
        {32, 0, {16, 20}, 2},  //
        {16, 0, {8, 12}, 2},   // the last two meet
        {16, 0, {4, 12}, 0},   // by pairs
        {24, 0, {16, 20}, 2},  // a block of two vectors follows
        {24, 0, {16, 18}, 0},  //
        {28, 0, {25, 27}, 2},  // a vector
        {31, 1, {28, 30}, 0},  // and the last ones, one by one
        {31, 30, {28, 29}, 2}, //
    };
    for (const SumCase &c : floats) {
        SCOPED_TRACE(&c - floats);
        const std::vector<float> row = rowOf<float>(c, 16777216);
        const float mean = (16777216 + static_cast<float>(c.more)) / static_cast<float>(c.count);
        onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
            EXPECT_EQ(procs.MeanF32(row.data(), static_cast<int32_t>(c.count)), mean);
        });
    }
    const SumCase doubles[] = {
        {16, 0, {8, 12}, 2}, {8, 0, {4, 6}, 2},   {8, 0, {2, 6}, 0},
        {12, 0, {8, 10}, 2}, {14, 0, {1, 13}, 2}, {9, 0, {1, 8}, 0},
    };
    for (const SumCase &c : doubles) {
        SCOPED_TRACE(&c - doubles);
        const std::vector<double> row = rowOf<double>(c, 9007199254740992);
        const double mean = (9007199254740992 + c.more) / static_cast<double>(c.count);
        onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
            EXPECT_EQ(procs.MeanF64(row.data(), static_cast<int32_t>(c.count)), mean);
        });
    }
}

TEST(Math3D, SmallArrays)
{
    onEveryTier<Vcb3DMathArrays>([](const Vcb3DMathArrays &procs) {
        const float floats[] = {3, 4, 1, 3};
        const double doubles[] = {3, 4, 1, 3};
        EXPECT_EQ(procs.NormF32(floats, 2), 5);
        EXPECT_EQ(procs.NormF64(doubles, 2), 5);
        EXPECT_EQ(procs.NormF64(doubles, 0), 0);
        EXPECT_EQ(procs.ArrayOp7(floats, floats + 2, 2), std::sqrt(5.0f));
        EXPECT_EQ(procs.ArrayOp8(doubles, doubles + 2, 2), std::sqrt(5.0));
        EXPECT_EQ(procs.VarianceF32(floats + 2, 2, 2), 1); // divided by 2
        EXPECT_EQ(procs.VarianceF64(doubles + 2, 2, 2), 1);
        EXPECT_EQ(procs.CovarianceF32(floats, 2, floats + 1, 1, 3), 1.0f / 3); // 1 * 3 + 2 * 0 - 1 * 2
    });
}

TEST(Math3D, StatisticsOfNothing)
{
    onEveryTier<Vcb3DMathArrays>([](const Vcb3DMathArrays &procs) {
        const float floats[] = {1, 2};
        const double doubles[] = {1, 2};
        for (const int32_t n : {0, -1, INT32_MIN}) {
            EXPECT_EQ(procs.MeanF32(floats, n), 0);
            EXPECT_EQ(procs.VarianceF64(doubles, n, 5), 0);
            EXPECT_EQ(procs.CovarianceF32(floats, 5, floats, 5, n), 0);
        }
        EXPECT_EQ(procs.MeanF32(nullptr, 2), 0);
        EXPECT_EQ(procs.MeanF64(nullptr, 2), 0);
        EXPECT_EQ(procs.VarianceF32(nullptr, 2, 1), 0);
        EXPECT_EQ(procs.VarianceF64(nullptr, 2, 1), 0);
        EXPECT_EQ(procs.CovarianceF32(nullptr, 5, floats, 5, 2), 0);
        EXPECT_EQ(procs.CovarianceF32(floats, 5, nullptr, 5, 2), 0);
        EXPECT_EQ(procs.CovarianceF64(nullptr, 5, doubles, 5, 2), 0);
        EXPECT_EQ(procs.CovarianceF64(doubles, 5, nullptr, 5, 2), 0);
    });
}

// --- Estimates -----------------------------------------------------------------------------------------------

constexpr double estimateError = 1.5 / 4096; // what rcpps and rsqrtps promise

TEST(Math3D, ReciprocalsAreGuarded)
{
    const struct {
        double x, reciprocal;
    } cases[] = {
        {4, 0.25},
        {-0x1p100, -0x1p-100},
        {0x1p-23, 0x1p23},
        {0x1.fffffffffffffp-24, 0x1.fffffffffffffp-24}, // the comparison is one of doubles
        {-0x1.fffffffffffffp-24, -0x1.fffffffffffffp-24},
        {1e-300, 1e-300},
        {0.0, 0.0},
        {-0.0, -0.0},
        {0x1p127, double{estimatedReciprocal(0x1p127f)}}, // a denormal: 0 on processors, itself on emulated ones
        {-1e300, -0.0},
        {infinity, 0.0},
        {notANumber, notANumber},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.x);
        onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
            double out;
            procs.ReciprocalF64(&out, &c.x, 1);
            if (c.x == c.reciprocal || c.reciprocal == 0) {
                EXPECT_EQ(out, c.reciprocal);
            } else if (!std::isnan(c.x)) {
                EXPECT_NEAR(out / c.reciprocal, 1, estimateError);
            }
            EXPECT_EQ(std::isnan(out), std::isnan(c.x));
            EXPECT_EQ(std::signbit(out), std::signbit(c.reciprocal));
        });
    }
}

TEST(Math3D, ReciprocalsAreGoodToTwelveBits)
{
    std::vector<double> x(1 << 16);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = 1 + static_cast<double>(i) / static_cast<double>(x.size()) + 0x1p-25; // not a float
    onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
        std::vector<double> reciprocals(x.size());
        procs.ReciprocalF64(reciprocals.data(), x.data(), static_cast<uint32_t>(x.size()));
        double worst = 0;
        for (std::size_t i = 0; i < x.size(); ++i)
            worst = std::max(worst, std::fabs(reciprocals[i] * x[i] - 1));
        EXPECT_LE(worst, estimateError + 0x1p-24);
    });
}

TEST(Math3D, NormalizingStopsAtTheThreshold)
{
    const struct {
        VcbVec3 a, expected;
    } cases[] = {
        {{3, 0, -4}, {0.6f, 0, -0.8f}},
        {{0, -1e-3f, 0}, {0, -1, 0}},
        {{0x1p-12f, 0, 0x1p-12f}, {0x1p-12f, 0, 0x1p-12f}},                      // the square is 2^-23: as it was
        {{0x1p-12f, 0, 0x1.000002p-12f}, {std::sqrt(0.5f), 0, std::sqrt(0.5f)}}, // the float behind it
        {{0, 0, 0}, {0, 0, 0}},
        {{1e30f, -1, 2}, {0, 0, 0}}, // the square is infinite
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
            VcbVec3 out;
            EXPECT_EQ(procs.Vec3Normalize(&out, &c.a), &out);
            EXPECT_NEAR(out.x, c.expected.x, estimateError * std::fabs(c.expected.x) * 1.01);
            EXPECT_NEAR(out.y, c.expected.y, estimateError * std::fabs(c.expected.y) * 1.01);
            EXPECT_NEAR(out.z, c.expected.z, estimateError * std::fabs(c.expected.z) * 1.01);
        });
    }
    onEveryTier<Vcb3DMathArrays>([](const Vcb3DMathArrays &procs) {
        const VcbVec3 a = {static_cast<float>(notANumber), 10, -0.0f};
        VcbVec3 out;
        procs.Vec3Normalize(&out, &a);
        EXPECT_TRUE(std::isnan(out.x));
        EXPECT_EQ(out.y, 10);
        EXPECT_TRUE(std::signbit(out.z));
    });
}

// --- 3-vectors -----------------------------------------------------------------------------------------------

void expectEqual(const VcbVec3 &a, const VcbVec3 &b)
{
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    EXPECT_EQ(a.z, b.z);
}

TEST(Math3D, Vectors)
{
    const VcbVec3 a = {1, 2, 3};
    const VcbVec3 b = {10, 20, 30};
    onEveryTier<Vcb3DMathArrays>([&](const Vcb3DMathArrays &procs) {
        VcbVec3 out;
        EXPECT_EQ(procs.Vec3Add(&out, &a, &b), &out);
        expectEqual(out, {11, 22, 3}); // z is a's
        EXPECT_EQ(procs.Vec3Sub(&out, &b, &a), &out);
        expectEqual(out, {9, 18, 27});
        EXPECT_EQ(procs.VecOp14(&out, &b, 0.5f), &out);
        expectEqual(out, {5, 10, 15});
        EXPECT_EQ(procs.VecOp15(&out, &b, &a, -2), &out);
        expectEqual(out, {8, 16, 24});
        EXPECT_EQ(procs.Vec3Dot(&a, &b), 140);
        EXPECT_EQ(procs.Vec3LengthSquared(&a), 14);
        EXPECT_EQ(procs.Vec3Length(&b), std::sqrt(1400.0f));
        EXPECT_EQ(procs.Vec3Distance(&a, &b), std::sqrt(1134.0f));

        // Lengths add z before y, the dot product goes from left to right: 2^24 swallows the ones apart.
        const VcbVec3 c = {1, 4096, 1};
        EXPECT_EQ(procs.Vec3Dot(&c, &c), 16777216);
        EXPECT_EQ(procs.Vec3LengthSquared(&c), 16777218);
    });
    onEveryTier<Vcb3DMathCross>([](const Vcb3DMathCross &procs) {
        const VcbVec3 u = {2, 3, 5};
        const VcbVec3 v = {7, 11, 13};
        VcbVec3 out;
        EXPECT_EQ(procs.Vec3Cross(&out, &u, &v), &out);
        expectEqual(out, {-16, 9, 1});
    });
}

TEST(Math3D, IdentityIsExact)
{
    const struct {
        std::size_t index;
        float value;
        int32_t result;
    } cases[] = {{0, 1, 1}, {1, -0.0f, 1},   {15, 0x1.fffffep-1f, 0},
                 {5, 0, 0}, {14, 1e-45f, 0}, {7, static_cast<float>(notANumber), 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        onEveryTier<Vcb3DMathIdentity>([&](const Vcb3DMathIdentity &procs) {
            float m[16];
            EXPECT_EQ(procs.Mat4SetIdentity(m), m);
            m[c.index] = c.value;
            EXPECT_EQ(procs.Mat4IsIdentity(m), c.result);
        });
    }
}

} // namespace
} // namespace vela::test
