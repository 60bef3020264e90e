// Sample formats and the scaling of integer samples.
#pragma once

#include <cmath>

namespace {

// --- Numbers -------------------------------------------------------------------------------------------------

// x limited to low..high; a NaN gives low.
float limitSample(float x, float low, float high) { return x > low ? (x < high ? x : high) : low; }

// Towards zero; -2147483648 for a NaN and for whatever 32 bits do not hold.
int32_t trunc32(double x) { return x > -2147483649.0 && x < 2147483648.0 ? static_cast<int32_t>(x) : INT32_MIN; }

// Limited before the conversion, which then cuts off a fraction and no more.
int8_t trunc8(float x) { return static_cast<int8_t>(limitSample(x, -128.0f, 127.0f)); }
int16_t trunc16(float x) { return static_cast<int16_t>(limitSample(x, -32768.0f, 32767.0f)); }
uint8_t truncToByte(float x) { return static_cast<uint8_t>(limitSample(x, 0.0f, 255.0f)); }

// To the nearest integer, halves away from zero, limited to low..high. A float and a half are exact in double wherever
// a half matters.
int32_t roundSample(float x, int32_t low, int32_t high)
{
    const double rounded = x < 0 ? double{x} - 0.5 : double{x} + 0.5;
    if (rounded >= high)
        return high;
    return rounded > low ? static_cast<int32_t>(rounded) : low; // low for a NaN
}

// --- Packed 24-bit samples -----------------------------------------------------------------------------------

int32_t readS24(const uint8_t *bytes) { return bytes[0] + 256 * bytes[1] + 65536 * static_cast<int8_t>(bytes[2]); }

// The low three bytes.
void writeS24(uint8_t *bytes, int32_t x)
{
    bytes[0] = static_cast<uint8_t>(x & 255);
    bytes[1] = static_cast<uint8_t>((x >> 8) & 255);
    bytes[2] = static_cast<uint8_t>((x >> 16) & 255);
}

// --- From integers -------------------------------------------------------------------------------------------

void ConvertU8ToF32(float *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void ConvertS32ToF32Gain(float *dst, const int32_t *src, float gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]) * gain;
}

void ConvertS8ToS16(int16_t *dst, const int8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<int16_t>(src[i] * 256);
}

void ConvertS8ToS24(uint8_t *dst, const int8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        writeS24(dst + 3 * i, src[i] * 65536);
}

void ConvertS8ToS32(int32_t *dst, const int8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] * 16777216;
}

void ConvertS16ToS24(uint8_t *dst, const int16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        writeS24(dst + 3 * i, src[i] * 256);
}

void ConvertS16ToS32(int32_t *dst, const int16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] * 65536;
}

void ConvertS24ToS32(int32_t *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = readS24(src + 3 * i) * 256;
}

void ConvertS8ToF32(float *dst, const int8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]) * 0.0078125f;
}

void ConvertS16ToF32(float *dst, const int16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]) * (1.0f / 32768.0f);
}

void ConvertS24ToF32(float *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(readS24(src + 3 * i)) * (1.0f / 8388608.0f);
}

void ConvertS32ToF32Scaled(float *dst, const int32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]) * (1.0f / 2147483648.0f);
}

void ConvertS8ToF64(double *dst, const int8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<double>(static_cast<float>(src[i]) * 0.0078125f);
}

void ConvertS16ToF64(double *dst, const int16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<double>(static_cast<float>(src[i]) * (1.0f / 32768.0f));
}

void ConvertS24ToF64(double *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<double>(static_cast<float>(readS24(src + 3 * i)) * (1.0f / 8388608.0f));
}

void ConvertS32ToF64(double *dst, const int32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<double>(src[i]) * (1.0 / 2147483648.0);
}

// --- From floats ---------------------------------------------------------------------------------------------

void ConvertF64ToF32(float *dst, const double *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void ConvertF32ToF64(double *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<double>(src[i]);
}

void ConvertF32ToS8(int8_t *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = trunc8(src[i] * 128.0f);
}

void ConvertF32ToS16(int16_t *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = trunc16(src[i] * 32768.0f);
}

void ConvertF32ToS24(uint8_t *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        writeS24(dst + 3 * i, trunc32(src[i] * 8388608.0f));
}

void ConvertF32ToS32(int32_t *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = trunc32(src[i] * 2147483648.0f);
}

void ConvertF64ToS8(int8_t *dst, const double *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = trunc8(static_cast<float>(src[i]) * 128.0f);
}

void ConvertF64ToS16(int16_t *dst, const double *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = trunc16(static_cast<float>(src[i]) * 32768.0f);
}

void ConvertF64ToS24(uint8_t *dst, const double *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        writeS24(dst + 3 * i, trunc32(static_cast<float>(src[i]) * 8388608.0f));
}

void ConvertF64ToS32(int32_t *dst, const double *src, uint64_t count)
{
    const uint64_t blocks = count / 8;
    for (uint64_t b = 0; b < blocks; ++b)
        for (uint64_t k = 0; k < 8; ++k)
            dst[k] = trunc32(k % 2 == 0 ? src[12 * b + k] * 2147483648.0 : src[12 * b + k]);
    for (uint64_t k = 0; k < count % 8; ++k)
        dst[k] = trunc32(src[12 * blocks + k] * 2147483648.0);
}

void ConvertUnitF32ToU8(uint8_t *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = truncToByte(src[i] * 255.0f + 0.5f);
}

void ConvertF32ToU8(uint8_t *dst, const float *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = truncToByte(src[i] + 0.5f);
}

// --- Scaling of samples --------------------------------------------------------------------------------------

void MemScaleS16(int16_t *dst, const int16_t *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] =
            static_cast<int16_t>(roundSample(static_cast<float>(src[i]) * static_cast<float>(gain), -32768, 32767));
}

void MemScaleS32(int32_t *dst, const int32_t *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = roundSample(static_cast<float>(src[i]) * static_cast<float>(gain), INT32_MIN, INT32_MAX);
}

void MemScaleOp51(int16_t *dst, const int16_t *src, double gain, uint64_t count)
{
    double fixed = gain * 16384.0;
    fixed = fixed > -32767.0 ? fixed : -32767.0;
    fixed = fixed < 32767.0 ? fixed : 32767.0;
    const int64_t weight = std::lrint(fixed);
    for (uint64_t i = 0; i < count; ++i) {
        const int64_t mono = ((src[2 * i] + src[2 * i + 1]) * weight + 8192) >> 14;
        dst[i] = static_cast<int16_t>(mono < -32768 ? -32768 : mono > 32767 ? 32767 : mono);
    }
}

void MemScaleClampS32(int32_t *dst, const int32_t *src, double gain, int32_t lower, int32_t upper, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        const int32_t r = roundSample(static_cast<float>(src[i]) * static_cast<float>(gain), INT32_MIN, INT32_MAX);
        const int32_t raised = r > lower ? r : lower;
        dst[i] = raised < upper ? raised : upper;
    }
}

void MemScaleU16(uint16_t *dst, const uint16_t *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint16_t>(roundSample(static_cast<float>(src[i]) * static_cast<float>(gain), 0, 65535));
}

void MemScaleOp39(uint8_t *dst, const uint8_t *src, float gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        writeS24(dst + 3 * i, roundSample(static_cast<float>(readS24(src + 3 * i)) * gain, -8388608, 8388607));
}

void MemScaleOp40(uint8_t *dst, const int32_t *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        writeS24(dst + 3 * i, roundSample(static_cast<float>(src[i]) * (static_cast<float>(gain) * (1.0f / 256.0f)),
                                          -8388608, 8388607));
}

void MemScaleOp41(int16_t *dst, const int32_t *src, double gain, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<int16_t>(
            roundSample(static_cast<float>(src[i]) * (static_cast<float>(gain) * (1.0f / 65536.0f)), -32768, 32767));
}

} // namespace
