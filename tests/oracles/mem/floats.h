// Arithmetic, sums and peaks of floats; sums and peaks of samples; look-ups.
#pragma once

#include <cmath>
#include <cstdint>

namespace {

// --- Element by element --------------------------------------------------------------------------------------

void MemScaleF32(float *dst, const float *src, float factor, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] * factor;
}

void MemScaleF64(double *dst, const double *src, double factor, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] * factor;
}

void MemSubF32(float *dst, const float *a, const float *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] - b[i];
}

void MemSubF64(double *dst, const double *a, const double *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] - b[i];
}

void MemAddF32(float *dst, const float *a, const float *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] + b[i];
}

void MemAddF64(double *dst, const double *a, const double *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] + b[i];
}

void MemNegateF32(float *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = -src[i];
}

void MemNegateF64(double *dst, const double *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = 0.0 - src[i];
}

void MemMulF32(float *dst, const float *a, const float *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] * b[i];
}

void MemMulF32InPlace(float *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = dst[i] * src[i];
}

void MemDivF32(float *dst, const float *a, const float *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = a[i] / b[i];
}

void MemGainF32(float *dst, const float *src, float gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] * gain;
}

void MemGainAddF32(float *dst, const float *src, float gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = dst[i] + src[i] * gain;
}

void MemScaleF32ToF32(float *dst, const float *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(static_cast<double>(src[i]) * gain);
}

void MemScaleF64ToF64(double *dst, const double *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] * gain;
}

void MemScaleAddF32(float *dst, const float *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(static_cast<double>(dst[i]) + static_cast<double>(src[i]) * gain);
}

void MemScaleAddF64(double *dst, const double *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = dst[i] + src[i] * gain;
}

// --- Sums of floats ------------------------------------------------------------------------------------------

// term(i) goes to lane i mod L; then lane j takes lane j + L/2, j + L/4, ... down to one.
template <class Float, int laneCount, class Term> Float laneSum(int64_t count, Term term)
{
    Float lane[laneCount] = {};
    for (int64_t i = 0; i < count; ++i)
        lane[i % laneCount] += term(i);
    for (int h = laneCount / 2; h > 0; h /= 2)
        for (int j = 0; j < h; ++j)
            lane[j] += lane[j + h];
    return lane[0];
}

float MemSumF32(const float *src, uint64_t count)
{
    return laneSum<float, 32>(static_cast<int64_t>(count), [=](int64_t i) { return src[i]; });
}

double MemSumF64(const double *src, uint64_t count)
{
    return laneSum<double, 16>(static_cast<int64_t>(count), [=](int64_t i) { return src[i]; });
}

double MemSumF32B(const float *src, uint64_t count)
{
    return laneSum<double, 16>(static_cast<int64_t>(count), [=](int64_t i) { return static_cast<double>(src[i]); });
}

float MemSumSquaresF32(const float *src, int32_t count)
{
    return laneSum<float, 32>(count, [=](int64_t i) { return src[i] * src[i]; });
}

double MemSumSquaresF64(const double *src, uint64_t count)
{
    return laneSum<double, 16>(static_cast<int64_t>(count), [=](int64_t i) { return src[i] * src[i]; });
}

float MemReduceF32Pair(const float *a, const float *b, uint64_t count)
{
    return laneSum<float, 32>(static_cast<int64_t>(count), [=](int64_t i) {
        const float d = a[i] - b[i];
        return d * d;
    });
}

float MemSumF32Scalar(const float *src, uint64_t count)
{
    float s = 0;
    for (uint64_t i = 0; i < count; ++i)
        s = s + src[i];
    return s;
}

float ssim(float p, float q, float a, float b, float d, float e, float c1, float c2)
{
    return (((p + p) + c1) * ((q + q) + c2)) / (((a + b) + c1) * ((d + e) + c2));
}

float MemSsimSumF32(const float *p, const float *q, const float *a, const float *b, const float *d, const float *e,
                    float c1, float c2, uint64_t count)
{
    return laneSum<float, 32>(static_cast<int64_t>(count),
                              [=](int64_t i) { return ssim(p[i], q[i], a[i], b[i], d[i], e[i], c1, c2); });
}

float MemSsimSumF32B(float *map, const float *p, const float *q, const float *a, const float *b, const float *d,
                     const float *e, float c1, float c2, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        map[i] = ssim(p[i], q[i], a[i], b[i], d[i], e[i], c1, c2);
    return MemSumF32(map, count);
}

template <class Float, int laneCount>
Float deviationSums(Float *sums, const Float *a, const Float *b, Float meanA, Float meanB, uint64_t count)
{
    if (count == 0)
        return 0;
    const auto n = static_cast<int64_t>(count);
    sums[0] += laneSum<Float, laneCount>(n, [=](int64_t i) { return (a[i] - meanA) * (a[i] - meanA); });
    sums[1] += laneSum<Float, laneCount>(n, [=](int64_t i) { return (b[i] - meanB) * (b[i] - meanB); });
    sums[2] += laneSum<Float, laneCount>(n, [=](int64_t i) { return (a[i] - meanA) * (b[i] - meanB); });
    const Float product = std::sqrt(sums[0]) * std::sqrt(sums[1]);
    return product > 0 ? sums[2] / product : 0;
}

float MemDeviationSumsF32(float *sums, const float *a, const float *b, float meanA, float meanB, uint64_t count)
{
    return deviationSums<float, 8>(sums, a, b, meanA, meanB, count);
}

double MemDeviationSumsF64(double *sums, const double *a, const double *b, double meanA, double meanB, uint64_t count)
{
    return deviationSums<double, 4>(sums, a, b, meanA, meanB, count);
}

// --- Sums of samples -----------------------------------------------------------------------------------------

float MemSumS16F32(const int16_t *src, uint64_t count)
{
    return laneSum<float, 32>(static_cast<int64_t>(count),
                              [=](int64_t i) { return static_cast<float>(src[i]) * 0x1p-15f; });
}

float MemSumS24F32(const uint8_t *src, uint64_t count)
{
    return laneSum<float, 32>(static_cast<int64_t>(count), [=](int64_t i) {
        const int32_t unsignedSample = src[3 * i] + 256 * src[3 * i + 1] + 65536 * src[3 * i + 2];
        const int32_t sample = unsignedSample < 8388608 ? unsignedSample : unsignedSample - 16777216;
        return static_cast<float>(sample) * 0x1p-23f;
    });
}

float MemSumS32F32(const int32_t *src, uint64_t count)
{
    return laneSum<float, 32>(static_cast<int64_t>(count),
                              [=](int64_t i) { return static_cast<float>(src[i]) * 0x1p-31f; });
}

double MemSquaredDiffSumU16(const uint16_t *a, const uint16_t *b, uint64_t count)
{
    return static_cast<double>(laneSum<float, 32>(static_cast<int64_t>(count), [=](int64_t i) {
        const auto d = static_cast<float>(a[i] - b[i]);
        return d * d;
    }));
}

uint32_t MemAbsDiffSumS16(const int16_t *a, const int16_t *b, uint64_t count)
{
    int64_t sum = 0;
    for (uint64_t i = 0; i < count; ++i) {
        int difference = a[i] - b[i];
        difference = difference < -32768 ? -32768 : difference > 32767 ? 32767 : difference;
        sum += difference < 0 ? -difference : difference;
    }
    return static_cast<uint32_t>(sum);
}

int32_t MemMulAddS16(const int16_t *a, const int16_t *b, uint64_t count)
{
    int64_t sum = 0;
    for (uint64_t i = 0; i < count; ++i)
        sum += a[i] * b[i];
    return static_cast<int32_t>(sum);
}

// --- Peaks ---------------------------------------------------------------------------------------------------

float MemReduceF32(const float *src, uint64_t count)
{
    float m = 0;
    for (uint64_t i = 0; i < count; ++i)
        m = std::fabs(src[i]) > m ? std::fabs(src[i]) : m;
    return m;
}

double MemMaxAbsF64(const double *src, uint64_t count)
{
    double m = 0;
    for (uint64_t i = 0; i < count; ++i)
        m = std::fabs(src[i]) > m ? std::fabs(src[i]) : m;
    return m;
}

// SSE2's meaning, the largest positive element, and AVX2's, the largest magnitude.
int32_t MemMaxAbsS16(const int16_t *src, int32_t count)
{
    int32_t largest = 0;
    for (int64_t i = 0; i < count; ++i)
        largest = src[i] > largest ? src[i] : largest;
    return largest;
}

int32_t MemMaxAbsS16OfAvx2(const int16_t *src, int32_t count)
{
    int32_t largest = 0;
    for (int64_t i = 0; i < count; ++i) {
        const int32_t magnitude = src[i] < 0 ? -src[i] : src[i];
        largest = magnitude > largest ? magnitude : largest;
    }
    return largest;
}

uint32_t MemMaxAbsS32(const int32_t *src, int32_t count)
{
    uint32_t largest = 0;
    for (int64_t i = 0; i < count; ++i) {
        const int64_t x = src[i];
        const auto magnitude = static_cast<uint32_t>(x < 0 ? -x : x);
        largest = magnitude > largest ? magnitude : largest;
    }
    return largest;
}

// --- Look-ups ------------------------------------------------------------------------------------------------

void MemLookup8To32(uint32_t *dst, const uint8_t *indices, const uint32_t *table, int32_t count)
{
    for (int64_t i = 0; i < count; ++i)
        dst[i] = table[indices[i]];
}

void MemLookup16To32(uint32_t *dst, const uint16_t *indices, const uint32_t *table, int32_t count)
{
    for (int64_t i = 0; i < count; ++i)
        dst[i] = table[indices[i]];
}

} // namespace
