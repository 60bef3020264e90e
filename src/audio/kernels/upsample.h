// The four-phase interpolator. Lanes are neighbouring taps, so that the tiers' orders of additions are those of their
// registers: whole registers of products one after the other, then the lanes by halves. Lanes of neighbouring positions
// would save shuffles, but need every tap spread over a register first: 5 % faster on long rows with SSE2, no faster
// with AVX, and slower below twenty positions (Zen 4).
#pragma once

#include "audio/kernels/samples.h"

namespace {

constexpr int upsampleTaps = 12;
constexpr int upsampleHistory = upsampleTaps - 1; // samples beside a position's own
constexpr int samplesAhead = 5;                   // of these

// n positions; x points to the first sample that the first of them needs. Not inlined: all formats share it.
__attribute__((noinline)) void upsampleRun(double *out, const double *x, const double *coef, double scale, int n)
{
    for (int k = 0; k < n; ++k, out += 4, ++x) {
        const auto phase = [=](int p) {
            const double *taps = coef + upsampleTaps * p;
            f64s sum = load<f64s>(taps) * load<f64s>(x);
#pragma GCC unroll 6
            for (int i = f64s::lanes; i < upsampleTaps; i += f64s::lanes)
                sum = sum + load<f64s>(taps + i) * load<f64s>(x + i);
            return sum;
        };
        storeSums(out, phase(0), phase(1), phase(2), phase(3), scale);
    }
}

template <class Sample>
inline void upsample4(double *out, const void *in, ptrdiff_t stride, const double *coef, int32_t count)
{
    constexpr int run = 64; // positions whose samples are converted at a time
    const uint8_t *from = (const uint8_t *)in - samplesAhead * stride;
    double x[upsampleHistory + run];
    if (count < 1)
        return;
    for (int i = 0; i < upsampleHistory; ++i, from += stride)
        x[i] = Sample::at(from);
    for (ptrdiff_t left = count; left > 0; left -= run, out += 4 * run) {
        const int n = left < run ? (int)left : run;
        for (int i = 0; i < n; ++i, from += stride)
            x[upsampleHistory + i] = Sample::at(from);
        upsampleRun(out, x, coef, Sample::scale, n);
        memcpy(x, x + run, upsampleHistory * sizeof(double));
    }
}

void AudioUpsample4S16(double *out, const int16_t *in, const double coef[48], int32_t count)
{
    upsample4<SampleS16>(out, in, SampleS16::unit, coef, count);
}

void AudioUpsample4S24(double *out, const uint8_t *in, const double coef[48], int32_t count)
{
    upsample4<SampleS24>(out, in, SampleS24::unit, coef, count);
}

void AudioUpsample4S32(double *out, const int32_t *in, const double coef[48], int32_t count)
{
    upsample4<SampleS32>(out, in, SampleS32::unit, coef, count);
}

void AudioUpsample4S16Strided(double *out, const int16_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<SampleS16>(out, in, strideBytes, coef, count);
}

void AudioUpsample4S24Strided(double *out, const uint8_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<SampleS24>(out, in, strideBytes, coef, count);
}

void AudioUpsample4S32Strided(double *out, const int32_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<SampleS32>(out, in, strideBytes, coef, count);
}

} // namespace
