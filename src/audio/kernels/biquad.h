// The second-order recursive filter. One sample waits for the one before through a product, a difference and two sums,
// and their grouping leaves no way around it: everything else, of whatever kind, fits into that time. So this goes
// sample by sample, with all that does not depend on y[n-1] ready when it comes.
#pragma once

#include "audio/kernels/samples.h"

namespace {

// in points to x[-2], out to y[0].
template <class Sample>
inline void biquad(double *out, const void *in, ptrdiff_t stride, const double *c, int32_t count)
{
    if (count < 1)
        return;
    const double k0 = element(c, 0) * Sample::scale;
    const double k1 = element(c, 1) * Sample::scale;
    const double k2 = element(c, 2) * Sample::scale;
    const double c3 = element(c, 3);
    const double c4 = element(c, 4);
    double y2 = element(out, -2);
    double y1 = element(out, -1);
    const uint8_t *from = (const uint8_t *)in;
    double x2 = Sample::at(from);
    double x1 = Sample::at(from + stride);
    for (ptrdiff_t n = 0; n < count; ++n) {
        const double x = Sample::at(from + (n + 2) * stride);
        const double y = ((k0 * x2 - c3 * y1) + k2 * x) + (k1 * x1 - c4 * y2);
        setElement(out, n, y);
        y2 = y1;
        y1 = y;
        x2 = x1;
        x1 = x;
    }
}

void AudioBiquadS16(double *out, const int16_t *in, const double c[5], int32_t count)
{
    biquad<SampleS16>(out, in, SampleS16::unit, c, count);
}

void AudioBiquadS24(double *out, const uint8_t *in, const double c[5], int32_t count)
{
    biquad<SampleS24>(out, in, SampleS24::unit, c, count);
}

void AudioBiquadS32(double *out, const int32_t *in, const double c[5], int32_t count)
{
    biquad<SampleS32>(out, in, SampleS32::unit, c, count);
}

void AudioBiquadF64(double *out, const double *in, const double c[5], int32_t count)
{
    biquad<SampleF64>(out, in, SampleF64::unit, c, count);
}

void AudioBiquadS16Strided(double *out, const int16_t *in, int32_t strideBytes, const double c[5], int32_t count)
{
    biquad<SampleS16>(out, in, strideBytes, c, count);
}

void AudioBiquadS24Strided(double *out, const uint8_t *in, int32_t strideBytes, const double c[5], int32_t count)
{
    biquad<SampleS24>(out, in, strideBytes, c, count);
}

void AudioBiquadS32Strided(double *out, const int32_t *in, int32_t strideBytes, const double c[5], int32_t count)
{
    biquad<SampleS32>(out, in, strideBytes, c, count);
}

} // namespace
