// The four-phase interpolator. Lanes are neighbouring positions of one phase: each adds its twelve products in the
// tier's order, and no sum runs across lanes.
#pragma once

#include "audio/kernels/samples.h"

namespace {

constexpr int upsampleTaps = 12;
constexpr int upsampleHistory = upsampleTaps - 1; // samples beside a position's own
constexpr int samplesAhead = 5;                   // of these

// The sum of m(0) to m(11).
struct EvenAndOddTaps {
    template <class Product> static f64s sum(Product m)
    {
        return (m(0) + m(2) + m(4) + m(6) + m(8) + m(10)) + (m(1) + m(3) + m(5) + m(7) + m(9) + m(11));
    }
};

struct EveryFourthTap {
    template <class Product> static f64s sum(Product m)
    {
        const f64s even = (m(0) + m(4) + m(8)) + (m(2) + m(6) + m(10));
        return even + ((m(1) + m(5) + m(9)) + (m(3) + m(7) + m(11)));
    }
};

// As many positions as there are lanes; x points to the first sample that the first of them needs.
template <class Order> inline void upsampleBlock(double *out, const double *x, const f64s *taps, f64s scale)
{
    const auto phase = [=](int p) {
        return Order::sum([=](int j) { return taps[upsampleTaps * p + j] * load<f64s>(x + j); }) * scale;
    };
    storeInterleaved(out, phase(0), phase(1), phase(2), phase(3));
}

// n positions. x has room for a whole last block. Not inlined: all formats share it.
template <class Order>
__attribute__((noinline)) void upsampleRun(double *out, double *x, const f64s *taps, double scale, int n)
{
    constexpr int lanes = f64s::lanes;
    int k = 0;
    for (; k <= n - lanes; k += lanes)
        upsampleBlock<Order>(out + 4 * k, x + k, taps, splatF64(scale));
    if (k == n)
        return;
    for (int i = n; i < k + lanes; ++i)
        x[upsampleHistory + i] = 0;
    double block[4 * lanes];
    upsampleBlock<Order>(block, x + k, taps, splatF64(scale));
    for (int i = 0; i < 4 * (n - k); ++i)
        setElement(out, 4 * k + i, block[i]);
}

template <class Sample, class Order>
inline void upsample4(double *out, const void *in, ptrdiff_t stride, const double *coef, int32_t count)
{
    constexpr int run = 64; // positions whose samples are converted at a time
    if (count < 1)
        return;
    f64s taps[4 * upsampleTaps];
    for (int i = 0; i < 4 * upsampleTaps; ++i)
        taps[i] = splatF64(element(coef, i));

    const uint8_t *from = (const uint8_t *)in - samplesAhead * stride;
    double x[upsampleHistory + run];
    for (int i = 0; i < upsampleHistory; ++i, from += stride)
        x[i] = Sample::at(from);
    for (ptrdiff_t left = count; left > 0; left -= run, out += 4 * run) {
        const int n = left < run ? (int)left : run;
        for (int i = 0; i < n; ++i, from += stride)
            x[upsampleHistory + i] = Sample::at(from);
        upsampleRun<Order>(out, x, taps, Sample::scale, n);
        memcpy(x, x + run, upsampleHistory * sizeof(double));
    }
}

template <class Order> void upsample4S16(double *out, const int16_t *in, const double coef[48], int32_t count)
{
    upsample4<SampleS16, Order>(out, in, SampleS16::unit, coef, count);
}

template <class Order> void upsample4S24(double *out, const uint8_t *in, const double coef[48], int32_t count)
{
    upsample4<SampleS24, Order>(out, in, SampleS24::unit, coef, count);
}

template <class Order> void upsample4S32(double *out, const int32_t *in, const double coef[48], int32_t count)
{
    upsample4<SampleS32, Order>(out, in, SampleS32::unit, coef, count);
}

template <class Order>
void upsample4S16Strided(double *out, const int16_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<SampleS16, Order>(out, in, strideBytes, coef, count);
}

template <class Order>
void upsample4S24Strided(double *out, const uint8_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<SampleS24, Order>(out, in, strideBytes, coef, count);
}

template <class Order>
void upsample4S32Strided(double *out, const int32_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<SampleS32, Order>(out, in, strideBytes, coef, count);
}

// The base tier's order; AVX has its own.
constexpr auto AudioUpsample4S16 = upsample4S16<EvenAndOddTaps>;
constexpr auto AudioUpsample4S24 = upsample4S24<EvenAndOddTaps>;
constexpr auto AudioUpsample4S32 = upsample4S32<EvenAndOddTaps>;
constexpr auto AudioUpsample4S16Strided = upsample4S16Strided<EvenAndOddTaps>;
constexpr auto AudioUpsample4S24Strided = upsample4S24Strided<EvenAndOddTaps>;
constexpr auto AudioUpsample4S32Strided = upsample4S32Strided<EvenAndOddTaps>;

} // namespace
