#include "support/kernel_tables.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vela::test {
namespace {

// --- Rows ----------------------------------------------------------------------------------------------------

// So many bytes a sample from `ahead` samples before the kernel's address on to `behind` beyond the last of the count.
Argument samples(std::int64_t bytes, std::int64_t ahead, std::int64_t behind)
{
    return paddedSource([bytes](std::int64_t n) { return n * bytes; }, ahead * bytes, behind * bytes);
}

// The same where argument 2 is the distance of samples.
Argument stridedSamples(std::int64_t bytes, std::int64_t ahead, std::int64_t behind)
{
    return sourceBy(2, [=](std::int64_t n, std::int64_t stride) {
        const std::int64_t first = -ahead * stride;
        const std::int64_t last = (n - 1 + behind) * stride;
        return Span{.before = -std::min(first, last), .bytes = std::max(first, last) + bytes, .after = 0};
    });
}

// None, less than a sample, other channels between, backwards; the bench takes stereo.
Argument strides(std::int32_t bytes)
{
    return numbers<std::int32_t>({0, 1, -1, 5, bytes, -bytes, 6 * bytes + 1, -2 * bytes, 2 * bytes});
}

// --- Filters -------------------------------------------------------------------------------------------------

// A copy, stable filters, one that grows, zeros of both signs, scaled coefficients that are denormals; what spreads.
// Last a low pass at a tenth of the sampling rate.
Argument biquadCoefficients()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return blocks<std::array<double, 5>>({
        {0, 0, 1, 0, 0},
        {0.25, 0.5, 0.25, -0.9, 0.2},
        {1, -2, 1, -1.96, 0.97},
        {0.3, -1.1, 0.7, 0.1, -0.05},
        {1, 1, 1, -2.5, 1.2},
        {-0.0, 0, -0.0, -0.0, 0.5},
        {1e-310, 5e-324, 3e300, 0.5, -0.25},
        {infinity, 0, 1, 0, 0},
        {0.06746, 0.13491, 0.06746, -1.14298, 0.41280},
    });
}

template <auto member> KernelCase biquad(std::int64_t bytes)
{
    return kernelCase<member>({continuedDestination(8, 16), samples(bytes, 0, 2), biquadCoefficients(), count()});
}

template <auto member> KernelCase biquadStrided(std::int32_t bytes)
{
    return kernelCase<member>(
        {continuedDestination(8, 16), stridedSamples(bytes, 0, 2), strides(bytes), biquadCoefficients(), count()});
}

template <auto member> KernelCase upsample(std::int64_t bytes)
{
    return kernelCase<member>({destination(4 * 8), samples(bytes, 5, 6), fixedSource(48 * 8), count()});
}

template <auto member> KernelCase upsampleStrided(std::int32_t bytes)
{
    return kernelCase<member>(
        {destination(4 * 8), stridedSamples(bytes, 5, 6), strides(bytes), fixedSource(48 * 8), count()});
}

template <auto member> KernelCase mixer(std::int64_t bytes)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return kernelCase<member>({destination(bytes), source(bytes), count(),
                               numbers<double>({0, -0.0, 1, -1, 1e-30, 1e6, 1e300, -infinity, std::nan(""), 0.7})});
}

// --- Effects -------------------------------------------------------------------------------------------------

Argument values()
{
    using Limits = std::numeric_limits<double>;
    return numbers<double>({0, -0.0, 1, -1, 0.1, -1.0 / 3, 1e-170, -3e200, Limits::denorm_min(), Limits::max(),
                            -Limits::infinity(), Limits::quiet_NaN(), 0.7});
}

// Nodes, their neighbours, everything between and beyond.
Argument positions()
{
    std::vector<double> all;
    for (int node = -3; node <= 4; ++node)
        for (const double towards : {-1e300, 0.0 + node, 1e300})
            all.push_back(std::nextafter(node, towards));
    for (double t = -6; t < 6; t += 0.0937)
        all.push_back(t);
    for (const double t : {-0.0, 1e-300, 1e60, -1e300, std::numeric_limits<double>::infinity(), std::nan(""), 0.37})
        all.push_back(t);
    return numbers<double>(all);
}

} // namespace

std::vector<KernelCase> audioCases()
{
    return {
        biquad<&VcbAudioProcs::AudioBiquadS16>(2),
        biquad<&VcbAudioProcs::AudioBiquadS24>(3),
        biquad<&VcbAudioProcs::AudioBiquadS32>(4),
        biquad<&VcbAudioProcs::AudioBiquadF64>(8),
        biquadStrided<&VcbAudioProcs::AudioBiquadS16Strided>(2),
        biquadStrided<&VcbAudioProcs::AudioBiquadS24Strided>(3),
        biquadStrided<&VcbAudioProcs::AudioBiquadS32Strided>(4),
        upsample<&VcbAudioProcs::AudioUpsample4S16>(2),
        upsample<&VcbAudioProcs::AudioUpsample4S24>(3),
        upsample<&VcbAudioProcs::AudioUpsample4S32>(4),
        upsampleStrided<&VcbAudioProcs::AudioUpsample4S16Strided>(2),
        upsampleStrided<&VcbAudioProcs::AudioUpsample4S24Strided>(3),
        upsampleStrided<&VcbAudioProcs::AudioUpsample4S32Strided>(4),
        mixer<&VcbAudioProcs::AudioMixS16>(2),
        mixer<&VcbAudioProcs::AudioMixS32>(4),

        kernelCase<&VcbAudioEffects::EffectDot2>({values(), values(), values(), values()}),
        kernelCase<&VcbAudioEffects::EffectMultiply>({values(), values()}),
        kernelCase<&VcbAudioEffects::EffectBiquadStep>(
            {standingSource(24), standingDestination(24), standingSource(24), standingSource(16)}),
        kernelCase<&VcbAudioEffects::EffectLagrange8>({positions(), standingSource(64)}),
        kernelCase<&VcbAudioEffects::EffectShiftHistory>({values(), standingDestination(24), standingDestination(24)}),
    };
}

} // namespace vela::test
