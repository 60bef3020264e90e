// Filters, matrices, arrays and 3-vectors beside VOLK, Eigen and plain C++.

#include "peer_arena.hpp"

#include <vela/frame.h>

#include <array>

namespace vela::test {

extern const CompiledPeers peersSSE2;
extern const CompiledPeers peersAVX;
extern const CompiledPeers peersAVX2;
extern const CompiledPeers peersFMA;

std::vector<const CompiledPeers *> compiledPeers()
{
    std::vector<const CompiledPeers *> all = {&peersSSE2};
    if (VCB_GetCPUInsHigh() >= VCB_CPU_AVX)
        all.push_back(&peersAVX);
    if (VCB_GetCPUInsHigh() >= VCB_CPU_AVX2) {
        all.push_back(&peersAVX2);
        if (__builtin_cpu_supports("fma"))
            all.push_back(&peersFMA);
    }
    return all;
}

namespace {

using Audio = VcbAudioProcs;
using Arrays = Vcb3DMathArrays;
using Matrices = VcbMatrixProcs;

constexpr double doubleSum = 1e-12; // of some thousand doubles in another order
constexpr double fewSums = 1e-5;    // of four floats
constexpr double estimate = 4e-4;

// --- Chains --------------------------------------------------------------------------------------------------

// So many additions, each of which waits for the one before.
template <class Real> void additions(unsigned n)
{
    const volatile Real one = 1; // the compiler may not know it
    const Real x = one;
    Real sum = 0;
    for (unsigned i = 0; i < n; ++i)
        sum += x;
    benchmark::DoNotOptimize(sum);
}

// From y[n-1] to y[n] in the kernels' grouping: a product, a difference, two sums.
void biquadChain(unsigned n)
{
    const volatile double half = 0.5; // the compiler may not know it
    const double x = half;
    double y = 0;
    for (unsigned i = 0; i < n; ++i)
        y = ((x - x * y) + x) + x;
    benchmark::DoNotOptimize(y);
}

// --- Filters -------------------------------------------------------------------------------------------------

constexpr double lowPass[5] = {0.06746, 0.13491, 0.06746, -1.14298, 0.41280};
constexpr const char *mulAndThreeAdds = "mul, 3 add";

// Strided ones take one channel of stereo.
template <auto member, class Sample, std::int32_t bytes> auto addBiquad(Arena &arena)
{
    // Samples of three bytes lie in rows of larger ones.
    auto rows = arena.contest<member, double, Sample>(doubleSum, "", [](auto kernel, auto &r, unsigned count) {
        double *out = r.to.data() + 2;
        const auto n = static_cast<std::int32_t>(count);
        const auto run = [&](const auto *in) {
            if constexpr (requires { kernel(out, in, bytes, lowPass, n); })
                kernel(out, in, 2 * bytes, lowPass, n);
            else
                kernel(out, in, lowPass, n);
        };
        if constexpr (bytes == 3)
            run(reinterpret_cast<const std::uint8_t *>(r.a.data()));
        else
            run(r.a.data());
    });
    arena.limit(mulAndThreeAdds, biquadChain);
    return rows;
}

void addFilters(Arena &arena)
{
    addBiquad<&Audio::AudioBiquadS16, std::int16_t, 2>(arena);
    addBiquad<&Audio::AudioBiquadS24, std::uint32_t, 3>(arena);
    addBiquad<&Audio::AudioBiquadS32, std::int32_t, 4>(arena);
    addBiquad<&Audio::AudioBiquadS16Strided, std::int16_t, 2>(arena);
    addBiquad<&Audio::AudioBiquadS24Strided, std::uint32_t, 3>(arena);
    addBiquad<&Audio::AudioBiquadS32Strided, std::int32_t, 4>(arena);
    auto rows = addBiquad<&Audio::AudioBiquadF64, double, 8>(arena);
    const auto plain = [&](const char *form, auto filter) {
        arena.compiled(plainName, form, [=](const CompiledPeers &peers) {
            return [=, run = peers.*filter](unsigned count) {
                run(rows->to.data() + 2, rows->a.data() + 2, lowPass, count);
            };
        });
    };
    plain("direct form", &CompiledPeers::biquadDirect);
    plain("transposed", &CompiledPeers::biquadTransposed);
}

void addInterpolator(Arena &arena)
{
    constexpr unsigned item = 8; // a position's output would outgrow rows otherwise
    constexpr int samplesAhead = 8;
    static const auto taps = [] {
        std::array<double, 48> all;
        std::mt19937_64 random(1);
        for (double &tap : all)
            tap = std::uniform_real_distribution<double>(-1, 1)(random);
        return all;
    }();
    static const auto byTaps = [] {
        std::array<double, 48> all;
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = taps[i % 4 * 12 + i / 4];
        return all;
    }();
    auto rows = arena.contest<&Audio::AudioUpsample4S16, double, std::int16_t>(
        doubleSum, "",
        [](auto kernel, auto &r, unsigned count) {
            kernel(r.to.data(), r.a.data() + samplesAhead, taps.data(), static_cast<std::int32_t>(count / item));
        },
        item);
    const auto plain = [&](const char *form, auto filter, const double *coefficients) {
        arena.compiled(plainName, form, [=](const CompiledPeers &peers) {
            return [=, run = peers.*filter](unsigned count) {
                run(rows->to.data(), rows->a.data() + samplesAhead, coefficients, count / item);
            };
        });
    };
    plain("by phases", &CompiledPeers::interpolate, taps.data());
    plain("by taps", &CompiledPeers::interpolateByTaps, byTaps.data());
}

// --- Arrays --------------------------------------------------------------------------------------------------

// Eigen's function takes the kernel's arguments.
template <auto member, class Real, class Call, class Function>
auto addArrays(Arena &arena, double tolerance, Call call, Function EigenArrays<Real>::*function)
{
    auto rows = arena.contest<member, Real, Real>(tolerance, "", call);
    arena.compiled(eigenName, "", [=](const CompiledPeers &peers) {
        const auto run = [&] {
            if constexpr (std::is_same_v<Real, float>)
                return peers.floats.*function;
            else
                return peers.doubles.*function;
        }();
        return [=](unsigned count) { call(run, *rows, count); };
    });
    return rows;
}

// A lane of the kernel's sum waits for one addition in so many elements.
template <auto member, class Real, class Call, class Function>
auto addSum(Arena &arena, unsigned block, Call call, Function EigenArrays<Real>::*function)
{
    auto rows = addArrays<member, Real>(arena, sizeof(Real) == 4 ? floatSum : doubleSum, call, function);
    arena.limit("add", [block](unsigned count) { additions<Real>(count / block); });
    return rows;
}

void addSums(Arena &arena)
{
    const auto ofPairs = [](auto sum, auto &r, unsigned count) { *r.to.data() = sum(r.a.data(), r.b.data(), count); };
    const auto mean = [](auto sum, auto &r, unsigned count) {
        *r.to.data() = sum(r.a.data(), static_cast<std::int32_t>(count));
    };
    const auto variance = [](auto sum, auto &r, unsigned count) {
        *r.to.data() = sum(r.a.data(), static_cast<std::int32_t>(count), 0.1f);
    };
    using Floats = EigenArrays<float>;
    using Doubles = EigenArrays<double>;
    auto rows = addSum<&Arrays::DotF32>(arena, 8, ofPairs, &Floats::dot);
    VOLK(32f_x2_dot_prod_32f, rows->to.data(), rows->a.data(), rows->b.data());
    addSum<&Arrays::DotF64>(arena, 4, ofPairs, &Doubles::dot);
    addSum<&Arrays::NormF32>(arena, 8, reduction, &Floats::norm);
    addSum<&Arrays::NormF64>(arena, 4, reduction, &Doubles::norm);
    addSum<&Arrays::ArrayOp7>(arena, 8, ofPairs, &Floats::distance);
    addSum<&Arrays::ArrayOp8>(arena, 4, ofPairs, &Doubles::distance);
    addSum<&Arrays::MeanF32>(arena, 16, mean, &Floats::mean);
    addSum<&Arrays::MeanF64>(arena, 8, mean, &Doubles::mean);
    addSum<&Arrays::VarianceF32>(arena, 8, variance, &Floats::variance);
    addSum<&Arrays::VarianceF64>(arena, 4, variance, &Doubles::variance);

    const auto addScaled = [](auto kernel, auto &r, unsigned count) {
        kernel(r.to.data(), r.a.data(), r.b.data(), count, 0.75f);
    };
    addArrays<&Arrays::ArrayOp4>(arena, exact, addScaled, &Floats::addScaled);
    addArrays<&Arrays::ArrayOp5>(arena, exact, addScaled, &Doubles::addScaled);
    auto products = arena.contest<&Arrays::ArrayPairOpF64, double, double>(exact, "", twoSources);
    VOLK(64f_x2_multiply_64f, products->to.data(), products->a.data(), products->b.data());
}

// --- Vectors and matrices ------------------------------------------------------------------------------------

// A kernel or Eigen on one vector or matrix after the other. `call` calls with the addresses of its operands.
template <auto member, class Call>
void addSteps(Arena &arena, double tolerance, const char *note, unsigned outSize, unsigned aSize, unsigned bSize,
              EigenOperation CompiledPeers::*operation, Call call)
{
    const unsigned item = std::max({outSize, aSize, bSize});
    const auto steps = [=](auto run, auto &r, unsigned count) {
        float *out = r.to.data();
        const float *a = r.a.data();
        const float *b = r.b.data();
        for (unsigned n = count / item; n > 0; --n, out += outSize, a += aSize, b += bSize)
            run(out, a, b);
    };
    auto rows = arena.contest<member, float, float>(
        tolerance, note,
        [=](auto kernel, auto &r, unsigned count) {
            steps([=](float *out, const float *a, const float *b) { call(kernel, out, a, b); }, r, count);
        },
        item);
    arena.compiled(eigenName, "", [=](const CompiledPeers &peers) {
        return [=, run = (peers.*operation).each](unsigned count) {
            run(rows->to.data(), rows->a.data(), rows->b.data(), count / item);
        };
    });
    arena.compiled(calledEigenName, "", [=](const CompiledPeers &peers) {
        return [=, run = (peers.*operation).one](unsigned count) { steps(run, *rows, count); };
    });
}

void addGeometry(Arena &arena)
{
    const auto matrix = [](float *m) { return reinterpret_cast<VcbMat4 *>(m); };
    const auto constMatrix = [](const float *m) { return reinterpret_cast<const VcbMat4 *>(m); };
    const auto constVector3 = [](const float *v) { return reinterpret_cast<const VcbVec3 *>(v); };
    const auto ofMatrices = [=](auto kernel, float *out, const float *a, const float *b) {
        kernel(matrix(out), constMatrix(a), constMatrix(b));
    };
    addSteps<&Matrices::MatMultiply>(arena, fewSums, "", 16, 16, 16, &CompiledPeers::multiply, ofMatrices);
    addSteps<&Matrices::MatTransformVec>(arena, fewSums, "", 4, 16, 4, &CompiledPeers::transform,
                                         [=](auto kernel, float *out, const float *m, const float *v) {
                                             kernel(reinterpret_cast<VcbVec4 *>(out), constMatrix(m),
                                                    reinterpret_cast<const VcbVec4 *>(v));
                                         });
    addSteps<&Matrices::MatTranspose>(
        arena, exact, "", 16, 16, 16, &CompiledPeers::transpose,
        [=](auto kernel, float *out, const float *, const float *) { kernel(matrix(out)); });
    addSteps<&Matrices::MatAdd>(arena, exact, "", 16, 16, 16, &CompiledPeers::add, ofMatrices);
    addSteps<&Vcb3DMathCross::Vec3Cross>(arena, exact, "", 3, 3, 3, &CompiledPeers::cross,
                                         [=](auto kernel, float *out, const float *a, const float *b) {
                                             kernel(reinterpret_cast<VcbVec3 *>(out), constVector3(a), constVector3(b));
                                         });
    addSteps<&Arrays::Vec3Normalize>(arena, estimate, "d", 3, 3, 3, &CompiledPeers::normalize,
                                     [=](auto kernel, float *out, const float *a, const float *) {
                                         kernel(reinterpret_cast<VcbVec3 *>(out), constVector3(a));
                                     });
}

} // namespace

void addMaths(Arena &arena)
{
    addFilters(arena);
    addInterpolator(arena);
    addSums(arena);
    addGeometry(arena);
}

} // namespace vela::test
