#include "support/kernel_tables.hpp"

#include <array>
#include <limits>

namespace vela::test {
namespace {

template <auto member> KernelCase reduction(std::int64_t bytes) { return kernelCase<member>({source(bytes), count()}); }

template <auto member> KernelCase pairReduction(std::int64_t bytes)
{
    return kernelCase<member>({source(bytes), source(bytes), count()});
}

template <class Real> Argument means() { return numbers<Real>({0, -1, Real(0.1)}); }
template <class Real> Argument factors()
{
    return numbers<Real>({0, -0.0, Real(3e38), std::numeric_limits<Real>::quiet_NaN(), Real(-0.7)});
}

template <auto member, class Real> KernelCase covariance()
{
    return kernelCase<member>({source(sizeof(Real)), means<Real>(), source(sizeof(Real)), means<Real>(), count()});
}

Argument outVector() { return standingDestination(sizeof(VcbVec3)); }
Argument vector() { return standingSource(sizeof(VcbVec3)); }

// The identity, and with one element next to it, of the other sign of zero, or a NaN.
Argument nearIdentity()
{
    using Floats = std::array<float, 16>;
    const Floats identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::vector<Floats> all;
    for (std::size_t i = 0; i < identity.size(); ++i) {
        const float changed[] = {identity[i] == 0 ? -0.0f : 1.0f, identity[i] == 0 ? 0x1p-149f : 0x1.fffffep-1f,
                                 1 - identity[i], std::numeric_limits<float>::quiet_NaN()};
        for (const float element : changed) {
            all.push_back(identity);
            all.back()[i] = element;
        }
    }
    all.push_back(identity);
    return blocks(all);
}

} // namespace

std::vector<KernelCase> math3dCases()
{
    return {
        pairReduction<&Vcb3DMathArrays::DotF32>(4),
        pairReduction<&Vcb3DMathArrays::DotF64>(8),
        reduction<&Vcb3DMathArrays::NormF32>(4),
        reduction<&Vcb3DMathArrays::NormF64>(8),
        kernelCase<&Vcb3DMathArrays::ArrayOp4>({destination(4), source(4), source(4), count(), factors<float>()})
            .mayEqual({1, 2}),
        kernelCase<&Vcb3DMathArrays::ArrayOp5>({destination(8), source(8), source(8), count(), factors<double>()})
            .mayEqual({1, 2}),
        kernelCase<&Vcb3DMathArrays::ArrayPairOpF64>({destination(8), source(8), source(8), count()}).mayEqual({1, 2}),
        pairReduction<&Vcb3DMathArrays::ArrayOp7>(4),
        pairReduction<&Vcb3DMathArrays::ArrayOp8>(8),
        kernelCase<&Vcb3DMathArrays::ReciprocalF64>({destination(8), source(8), count()}).mayEqual({1}),
        kernelCase<&Vcb3DMathArrays::VecOp14>({outVector(), vector(), factors<float>()}).mayEqual({1}),
        kernelCase<&Vcb3DMathArrays::VecOp15>({outVector(), vector(), vector(), factors<float>()}).mayEqual({1, 2}),
        kernelCase<&Vcb3DMathArrays::Vec3Add>({outVector(), vector(), vector()}).mayEqual({1, 2}),
        kernelCase<&Vcb3DMathArrays::Vec3Sub>({outVector(), vector(), vector()}).mayEqual({1, 2}),
        kernelCase<&Vcb3DMathArrays::Vec3Dot>({vector(), vector()}),
        kernelCase<&Vcb3DMathArrays::Vec3Length>({vector()}),
        kernelCase<&Vcb3DMathArrays::Vec3LengthSquared>({vector()}),
        kernelCase<&Vcb3DMathArrays::Vec3Distance>({vector(), vector()}),
        kernelCase<&Vcb3DMathArrays::Vec3Normalize>({outVector(), vector()}).mayEqual({1}),
        reduction<&Vcb3DMathArrays::MeanF32>(4),
        reduction<&Vcb3DMathArrays::MeanF64>(8),
        kernelCase<&Vcb3DMathArrays::VarianceF32>({source(4), count(), means<float>()}),
        kernelCase<&Vcb3DMathArrays::VarianceF64>({source(8), count(), means<double>()}),
        covariance<&Vcb3DMathArrays::CovarianceF32, float>(),
        covariance<&Vcb3DMathArrays::CovarianceF64, double>(),

        kernelCase<&Vcb3DMathIdentity::Mat4SetIdentity>({standingDestination(64)}),
        kernelCase<&Vcb3DMathIdentity::Mat4IsIdentity>({nearIdentity()}),

        kernelCase<&Vcb3DMathCross::Vec3Cross>({outVector(), vector(), vector()}).mayEqual({1, 2}),
    };
}

} // namespace vela::test
