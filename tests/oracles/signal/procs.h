// Luma sharpening, magnitudes, sliding dot products.
#pragma once

#include <cmath>
#include <cstdint>

namespace {

// --- Sharpening ----------------------------------------------------------------------------------------------

// Pixels of `size` samples, of which number `luma` is the luma.
template <int size, int luma, class Sample>
void sharpenLuma(Sample *out, const Sample *above, const Sample *row, const Sample *below, uint32_t shift,
                 int32_t count)
{
    constexpr uint32_t mostShift = sizeof(Sample) == 1 ? 15 : 31;
    constexpr int32_t most = sizeof(Sample) == 1 ? 255 : 65535;
    const uint32_t s = shift < mostShift ? shift : mostShift;
    for (int64_t i = 0; i < count; ++i) {
        const int64_t at = size * i + luma;
        const int32_t y = row[at];
        const int32_t left = i > 0 ? row[at - size] : y;
        const int32_t right = i < count - 1 ? row[at + size] : y;
        const int32_t laplacian = 4 * y - (above[at] + below[at] + left + right);
        const int32_t sharp = y + (laplacian >> s);
        if (size == 2)
            out[2 * i + 1 - luma] = row[2 * i + 1 - luma];
        out[at] = static_cast<Sample>(sharp < 0 ? 0 : sharp > most ? most : sharp);
    }
}

void SharpenLuma422YFirst8(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, uint32_t shift,
                           int32_t count)
{
    sharpenLuma<2, 0>(out, above, row, below, shift, count);
}

void SharpenLuma422CFirst8(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, uint32_t shift,
                           int32_t count)
{
    sharpenLuma<2, 1>(out, above, row, below, shift, count);
}

void SharpenLumaVariant3(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, uint32_t shift,
                         int32_t count)
{
    sharpenLuma<1, 0>(out, above, row, below, shift, count);
}

void SharpenLuma422YFirst16(uint16_t *out, const uint16_t *above, const uint16_t *row, const uint16_t *below,
                            uint32_t shift, int32_t count)
{
    sharpenLuma<2, 0>(out, above, row, below, shift, count);
}

void SharpenLuma422CFirst16(uint16_t *out, const uint16_t *above, const uint16_t *row, const uint16_t *below,
                            uint32_t shift, int32_t count)
{
    sharpenLuma<2, 1>(out, above, row, below, shift, count);
}

void SharpenLumaVariant6(uint16_t *out, const uint16_t *above, const uint16_t *row, const uint16_t *below,
                         uint32_t shift, int32_t count)
{
    sharpenLuma<1, 0>(out, above, row, below, shift, count);
}

// --- Magnitudes ----------------------------------------------------------------------------------------------

double MagnitudeF64(double *out, const double *a, const double *b, int32_t count)
{
    double m = 0;
    for (int64_t i = 0; i < count; ++i) {
        const double v = std::sqrt(a[i] * a[i] + b[i] * b[i]);
        out[i] = v;
        m = v > m ? v : m;
    }
    return m;
}

// --- Sliding dot products ------------------------------------------------------------------------------------

void SlidingDotF32(float *out, const float *sig, const float *h, int32_t taps, int32_t count)
{
    for (int64_t r = 0; r < count; ++r) {
        float p[4] = {0, 0, 0, 0};
        int64_t k = 0;
        for (; k + 4 <= taps; k += 4)
            for (int j = 0; j < 4; ++j)
                p[j] += sig[r + k + j] * h[k + j];
        float sum = (p[0] + p[2]) + (p[1] + p[3]);
        for (; k < taps; ++k)
            sum += sig[r + k] * h[k];
        out[r] = sum;
    }
}

void SlidingDotF64(double *out, const double *sig, const double *h, int32_t taps, int32_t count)
{
    for (int64_t r = 0; r < count; ++r) {
        double p[2] = {0, 0};
        int64_t k = 0;
        for (; k + 2 <= taps; k += 2)
            for (int j = 0; j < 2; ++j)
                p[j] += sig[r + k + j] * h[k + j];
        double sum = p[0] + p[1];
        for (; k < taps; ++k)
            sum += sig[r + k] * h[k];
        out[r] = sum;
    }
}

} // namespace
