#include "support/kernel_tables.hpp"

#include <limits>

namespace vela::test {
namespace {

Argument outMatrix() { return aligned(16, standingDestination(sizeof(VcbMat4))); }
Argument outVector() { return aligned(16, standingDestination(sizeof(VcbVec4))); }
Argument matrix() { return aligned(16, standingSource(sizeof(VcbMat4))); }
Argument vector() { return aligned(16, standingSource(sizeof(VcbVec4))); }

Argument factors()
{
    using Limits = std::numeric_limits<float>;
    return numbers<float>({0, -0.0f, 0x1p-23f, -0x1p-23f, 0x1.fffffep-24f, -0x1.fffffep-24f, 1e-30f, 3e38f,
                           Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN(), -0.7f});
}

// A matrix or vector, and the same with one element moved by about the threshold, far away, or a NaN.
template <class Floats> std::vector<Floats> around(const Floats &centre)
{
    constexpr float steps[] = {0x1p-23f,
                               0x1p-24f,
                               0x1p-25f,
                               0x1.fffffep-24f,
                               -0x1p-23f,
                               -0x1p-24f,
                               -0x1.fffffep-24f,
                               5,
                               -5,
                               std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN()};
    std::vector<Floats> all;
    for (std::size_t i = 0; i < sizeof(Floats) / sizeof(float); ++i) {
        for (const float step : steps) {
            Floats moved = centre;
            float &element = reinterpret_cast<float *>(&moved)[i];
            element += step;
            all.push_back(moved);
        }
    }
    all.push_back(centre);
    return all;
}

Argument nearIdentity()
{
    return aligned(16, blocks(around(VcbMat4{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}})));
}
Argument nearVector() { return aligned(16, blocks(around(VcbVec4{{0.5f, -0.25f, 0, 0.125f}}))); }

} // namespace

std::vector<KernelCase> matrixCases()
{
    return {
        kernelCase<&VcbMatrixProcs::MatIdentity>({outMatrix()}),
        kernelCase<&VcbMatrixProcs::MatIsIdentity>({nearIdentity()}),
        kernelCase<&VcbMatrixProcs::MatTranspose>({outMatrix()}),
        kernelCase<&VcbMatrixProcs::MatMultiply>({outMatrix(), matrix(), matrix()}).mayEqual({1, 2}),
        kernelCase<&VcbMatrixProcs::MatTransformVec>({outVector(), matrix(), vector()}).mayEqual({2}),
        kernelCase<&VcbMatrixProcs::MatAdd>({outMatrix(), matrix(), matrix()}).mayEqual({1, 2}),
        kernelCase<&VcbMatrixProcs::MatSub>({outMatrix(), matrix(), matrix()}).mayEqual({1, 2}),
        kernelCase<&VcbMatrixProcs::MatNearlyEqual>({nearIdentity(), nearIdentity()}),
        kernelCase<&VcbMatrixProcs::MatScale>({outMatrix(), matrix(), factors()}).mayEqual({1}),
        kernelCase<&VcbMatrixProcs::MatDivide>({outMatrix(), matrix(), factors()}).mayEqual({1}),

        kernelCase<&VcbVectorProcs::VecDot>({vector(), vector()}),
        kernelCase<&VcbVectorProcs::VecLength>({vector()}),
        kernelCase<&VcbVectorProcs::VecScale>({outVector(), vector(), factors()}).mayEqual({1}),
        kernelCase<&VcbVectorProcs::VecDivide>({outVector(), vector(), factors()}).mayEqual({1}),
        kernelCase<&VcbVectorProcs::VecAdd>({outVector(), vector(), vector()}).mayEqual({1, 2}),
        kernelCase<&VcbVectorProcs::VecSub>({outVector(), vector(), vector()}).mayEqual({1, 2}),
        kernelCase<&VcbVectorProcs::VecNearlyEqual>({nearVector(), nearVector()}),
    };
}

} // namespace vela::test
