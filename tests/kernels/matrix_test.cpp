// 4x4 matrices and 4-vectors: results computed by hand.

#include "every_tier.hpp"

#include <cmath>
#include <limits>

namespace vela::test {
namespace {

constexpr float epsilon = std::numeric_limits<float>::epsilon();
constexpr float below = 0x1.fffffep-24f; // the float before it
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr VcbMat4 identity = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
constexpr VcbMat4 counting = {{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};

VcbMat4 with(VcbMat4 matrix, int row, int column, float value)
{
    matrix.m[row][column] = value;
    return matrix;
}

VcbMat4 filledWith(float value)
{
    VcbMat4 matrix;
    for (auto &row : matrix.m)
        for (float &element : row)
            element = value;
    return matrix;
}

TEST(Matrix, RowsTimesColumns)
{
    onEveryTier<VcbMatrixProcs>([](const VcbMatrixProcs &procs) {
        VcbMat4 out;
        // Row 1 of the left one is (0, 0, 1, 0): row 2 of the right one becomes row 1.
        const VcbMat4 rowsChanged = {{{1, 0, 0, 0}, {0, 0, 1, 0}, {0, 2, 0, 0}, {0, 0, 0, 1}}};
        EXPECT_EQ(procs.MatMultiply(&out, &rowsChanged, &counting), &out);
        EXPECT_EQ(out.m[1][0], 9);
        EXPECT_EQ(out.m[1][3], 12);
        EXPECT_EQ(out.m[2][0], 10);
        EXPECT_EQ(out.m[3][2], 15);

        const VcbVec4 column = {{1, 10, 100, 1000}};
        VcbVec4 transformed;
        EXPECT_EQ(procs.MatTransformVec(&transformed, &counting, &column), &transformed);
        EXPECT_EQ(transformed.v[0], 4321);
        EXPECT_EQ(transformed.v[1], 8765);
        EXPECT_EQ(transformed.v[2], 13209);
        EXPECT_EQ(transformed.v[3], 17653);

        VcbMat4 turned = counting;
        EXPECT_EQ(procs.MatTranspose(&turned), &turned);
        EXPECT_EQ(turned.m[0][3], 13);
        EXPECT_EQ(turned.m[3][0], 4);
        EXPECT_EQ(turned.m[1][2], 10);
    });
}

// 2^24 swallows a 1, but not a 2: a sum tells which terms met first.
TEST(Matrix, ProductsAddByPairs)
{
    constexpr float large = 16777216;
    const struct {
        float terms[4];
        float matrix; // (t0 + t1) + (t2 + t3)
        float vector; // (t0 + t2) + (t1 + t3)
    } cases[] = {
        {{large, 0, 1, 1}, large + 2, large}, {{large, 1, 0, 1}, large, large + 2}, {{large, 1, 1, 0}, large, large},
        {{1, 1, large, 0}, large + 2, large}, {{1, 0, large, 1}, large, large}, // large + 1 twice
        {{0, 1, large, 1}, large, large + 2},
    };
    const VcbVec4 ones = {{1, 1, 1, 1}};
    const VcbMat4 manyOnes = filledWith(1);
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        VcbMat4 matrix;
        for (auto &row : matrix.m)
            std::copy(std::begin(c.terms), std::end(c.terms), row);
        onEveryTier<VcbMatrixProcs>([&](const VcbMatrixProcs &procs) {
            VcbMat4 product;
            procs.MatMultiply(&product, &matrix, &manyOnes);
            VcbVec4 transformed;
            procs.MatTransformVec(&transformed, &matrix, &ones);
            for (int i = 0; i < 4; ++i) {
                EXPECT_EQ(product.m[i][3 - i], c.matrix);
                EXPECT_EQ(transformed.v[i], c.matrix);
            }
        });
        onEveryTier<VcbVectorProcs>([&](const VcbVectorProcs &procs) {
            VcbVec4 terms;
            std::copy(std::begin(c.terms), std::end(c.terms), terms.v);
            EXPECT_EQ(procs.VecDot(&terms, &ones), c.vector);
        });
    }
}

// Only elements below the other matrix's count.
TEST(Matrix, ComparisonIsOneSided)
{
    const struct {
        VcbMat4 a, b;
        int32_t result;
    } cases[] = {
        {identity, identity, 1},
        {filledWith(5), identity, 1},
        {with(identity, 2, 2, 0.5f), identity, 0},
        {with(identity, 1, 3, -epsilon), identity, 0},
        {with(identity, 1, 3, -below), identity, 1},
        {with(identity, 3, 3, 1 - epsilon), identity, 0},
        {with(identity, 3, 3, 1 - epsilon / 2), identity, 1},
        {with(identity, 0, 1, notANumber), identity, 0},
        {with(identity, 0, 1, infinity), identity, 1},
        {with(identity, 0, 1, infinity), with(identity, 0, 1, infinity), 0}, // their difference is a NaN
        {identity, with(identity, 0, 0, notANumber), 0},
        {counting, with(counting, 3, 0, 1), 1},
        {with(counting, 3, 0, 1), counting, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        onEveryTier<VcbMatrixProcs>([&](const VcbMatrixProcs &procs) {
            EXPECT_EQ(procs.MatNearlyEqual(&c.a, &c.b), c.result);
            if (std::memcmp(&c.b, &identity, sizeof(identity)) == 0) {
                EXPECT_EQ(procs.MatIsIdentity(&c.a), c.result);
            }
        });
    }
}

TEST(Matrix, DivisionByNearlyNothingMultiplies)
{
    const struct {
        float divisor, factor;
    } cases[] = {{2, 0.5f},      {-4, -0.25f},     {epsilon, 0x1p23f}, {-epsilon, -0x1p23f},
                 {below, below}, {-below, -below}, {1e-8f, 1e-8f},     {0, 0},
                 {-0.0f, -0.0f}, {infinity, 0},    {3, 1.0f / 3.0f}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.divisor);
        onEveryTier<VcbMatrixProcs>([&](const VcbMatrixProcs &procs) {
            VcbMat4 out;
            EXPECT_EQ(procs.MatDivide(&out, &counting, c.divisor), &out);
            EXPECT_EQ(out.m[0][0], c.factor);
            EXPECT_EQ(out.m[3][3], 16 * c.factor);
            EXPECT_EQ(out.m[1][1], 6 * c.factor); // for 1/3 other than 6 / 3: the factor is rounded
            EXPECT_EQ(std::signbit(out.m[2][2]), std::signbit(c.factor));
        });
        onEveryTier<VcbVectorProcs>([&](const VcbVectorProcs &procs) {
            const VcbVec4 a = {{1, -5, 7, 16}};
            VcbVec4 out;
            EXPECT_EQ(procs.VecDivide(&out, &a, c.divisor), &out);
            EXPECT_EQ(out.v[0], c.factor);
            EXPECT_EQ(out.v[1], -5 * c.factor);
            EXPECT_EQ(out.v[3], 16 * c.factor);
        });
    }
}

TEST(Matrix, VectorDifferencesAddUp)
{
    const VcbVec4 zero = {};
    const struct {
        VcbVec4 a;
        int32_t result;
    } cases[] = {
        {{{0, 0, 0, 0}}, 1},
        {{{1e-7f, 0, 0, 0}}, 1},
        {{{1e-7f, 0, -1e-7f, 0}}, 0},
        {{{0, -1e-7f, 0, 1e-7f}}, 0},
        {{{0, 0, epsilon, 0}}, 1},
        {{{0, 0, 0, -epsilon * (1 + epsilon)}}, 0},
        {{{epsilon / 2, 0, 0, -epsilon / 2}}, 1},
        {{{5, 0, 0, notANumber}}, 1},
        {{{infinity, 0, 0, 0}}, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        onEveryTier<VcbVectorProcs>([&](const VcbVectorProcs &procs) {
            EXPECT_EQ(procs.VecNearlyEqual(&c.a, &zero), c.result);
            EXPECT_EQ(procs.VecNearlyEqual(&zero, &c.a), c.result);
        });
    }
    onEveryTier<VcbVectorProcs>([](const VcbVectorProcs &procs) {
        const VcbVec4 a = {{1, -2, 2, -4}};
        EXPECT_EQ(procs.VecLength(&a), 5);
    });
}

} // namespace
} // namespace vela::test
