// Recursive filters, interpolators, mixers.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

// --- Samples -------------------------------------------------------------------------------------------------

// Sample number k of a row; its distance to the next one is the caller's, so it may lie anywhere.
struct S16 {
    static constexpr double scale = 0x1p-15;
    static double at(const int16_t *in, int64_t strideBytes, int64_t k)
    {
        int16_t x;
        std::memcpy(&x, reinterpret_cast<const char *>(in) + k * strideBytes, sizeof(x));
        return x;
    }
};

struct S24 {
    static constexpr double scale = 0x1p-23;
    static double at(const uint8_t *in, int64_t strideBytes, int64_t k)
    {
        const uint8_t *bytes = in + k * strideBytes;
        return bytes[0] + 256 * bytes[1] + 65536 * static_cast<int8_t>(bytes[2]);
    }
};

struct S32 {
    static constexpr double scale = 0x1p-31;
    static double at(const int32_t *in, int64_t strideBytes, int64_t k)
    {
        int32_t x;
        std::memcpy(&x, reinterpret_cast<const char *>(in) + k * strideBytes, sizeof(x));
        return x;
    }
};

struct F64 {
    static constexpr double scale = 1;
    static double at(const double *in, int64_t /*strideBytes*/, int64_t k) { return in[k]; }
};

// --- Filters -------------------------------------------------------------------------------------------------

// in points to x[-2], out to y[0].
template <class Format, class Sample>
void biquad(double *out, const Sample *in, int64_t strideBytes, const double *c, int32_t count)
{
    const double k0 = c[0] * Format::scale;
    const double k1 = c[1] * Format::scale;
    const double k2 = c[2] * Format::scale;
    const double c3 = c[3];
    const double c4 = c[4];
    const auto x = [=](int64_t n) { return Format::at(in, strideBytes, n + 2); };
    for (int64_t n = 0; n < count; ++n)
        out[n] = ((k0 * x(n - 2) - c3 * out[n - 1]) + k2 * x(n)) + (k1 * x(n - 1) - c4 * out[n - 2]);
}

void AudioBiquadS16(double *out, const int16_t *in, const double c[5], int32_t count)
{
    biquad<S16>(out, in, 2, c, count);
}

void AudioBiquadS24(double *out, const uint8_t *in, const double c[5], int32_t count)
{
    biquad<S24>(out, in, 3, c, count);
}

void AudioBiquadS32(double *out, const int32_t *in, const double c[5], int32_t count)
{
    biquad<S32>(out, in, 4, c, count);
}

void AudioBiquadF64(double *out, const double *in, const double c[5], int32_t count)
{
    biquad<F64>(out, in, 8, c, count);
}

void AudioBiquadS16Strided(double *out, const int16_t *in, int32_t strideBytes, const double c[5], int32_t count)
{
    biquad<S16>(out, in, strideBytes, c, count);
}

void AudioBiquadS24Strided(double *out, const uint8_t *in, int32_t strideBytes, const double c[5], int32_t count)
{
    biquad<S24>(out, in, strideBytes, c, count);
}

void AudioBiquadS32Strided(double *out, const int32_t *in, int32_t strideBytes, const double c[5], int32_t count)
{
    biquad<S32>(out, in, strideBytes, c, count);
}

// --- Interpolators -------------------------------------------------------------------------------------------

// The sum of m(0) to m(11), as the two tiers add.
struct EvensAndOdds {
    template <class Product> static double sum(Product m)
    {
        return (m(0) + m(2) + m(4) + m(6) + m(8) + m(10)) + (m(1) + m(3) + m(5) + m(7) + m(9) + m(11));
    }
};

struct FourLanes {
    template <class Product> static double sum(Product m)
    {
        const auto lane = [=](int j) { return (m(j) + m(j + 4)) + m(j + 8); };
        return (lane(0) + lane(2)) + (lane(1) + lane(3));
    }
};

template <class Format, class Order, class Sample>
void upsample4(double *out, const Sample *in, int64_t strideBytes, const double *coef, int32_t count)
{
    for (int64_t k = 0; k < count; ++k)
        for (int p = 0; p < 4; ++p)
            out[4 * k + p] =
                Order::sum([=](int j) { return coef[12 * p + j] * Format::at(in, strideBytes, k - 5 + j); }) *
                Format::scale;
}

template <class Order> void upsampleS16(double *out, const int16_t *in, const double coef[48], int32_t count)
{
    upsample4<S16, Order>(out, in, 2, coef, count);
}

template <class Order> void upsampleS24(double *out, const uint8_t *in, const double coef[48], int32_t count)
{
    upsample4<S24, Order>(out, in, 3, coef, count);
}

template <class Order> void upsampleS32(double *out, const int32_t *in, const double coef[48], int32_t count)
{
    upsample4<S32, Order>(out, in, 4, coef, count);
}

template <class Order>
void upsampleS16Strided(double *out, const int16_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<S16, Order>(out, in, strideBytes, coef, count);
}

template <class Order>
void upsampleS24Strided(double *out, const uint8_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<S24, Order>(out, in, strideBytes, coef, count);
}

template <class Order>
void upsampleS32Strided(double *out, const int32_t *in, int32_t strideBytes, const double coef[48], int32_t count)
{
    upsample4<S32, Order>(out, in, strideBytes, coef, count);
}

// --- Mixers --------------------------------------------------------------------------------------------------

int32_t mixed(int32_t accumulator, int32_t source, float gain)
{
    float v = static_cast<float>(source) * gain + static_cast<float>(accumulator);
    v = v < 2147483392.0f ? v : 2147483392.0f;
    v = v > -2147483648.0f ? v : -2147483648.0f;
    return static_cast<int32_t>(std::nearbyint(v));
}

void AudioMixS16(int16_t *accumulator, const int16_t *source, uint32_t count, double gain)
{
    for (uint32_t i = 0; i < count; ++i) {
        const int32_t sum = mixed(accumulator[i], source[i], static_cast<float>(gain));
        accumulator[i] = static_cast<int16_t>(sum < -32768 ? -32768 : sum > 32767 ? 32767 : sum);
    }
}

void AudioMixS32(int32_t *accumulator, const int32_t *source, uint32_t count, double gain)
{
    for (uint32_t i = 0; i < count; ++i)
        accumulator[i] = mixed(accumulator[i], source[i], static_cast<float>(gain));
}

} // namespace
