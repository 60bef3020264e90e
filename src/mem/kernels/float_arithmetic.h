// Arithmetic of floats and doubles, element by element.
#pragma once

namespace {

// --- Gains ---------------------------------------------------------------------------------------------------

void MemScaleF32(float *dst, const float *src, float factor, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [f = splatF32(factor)](f32s x) { return x * f; }, src);
}

void MemScaleF64(double *dst, const double *src, double factor, uint64_t count)
{
    map<f64s>(
        dst, (ptrdiff_t)count, [f = splatF64(factor)](f64s x) { return x * f; }, src);
}

void MemGainF32(float *dst, const float *src, float gain, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [g = splatF32(gain)](f32s x) { return x * g; }, src);
}

void MemGainAddF32(float *dst, const float *src, float gain, uint64_t count)
{
    update<f32s>(
        dst, (ptrdiff_t)count, [g = splatF32(gain)](f32s old, f32s x) { return old + x * g; }, src);
}

void MemScaleF64ToF64(double *dst, const double *src, double gain, uint64_t count)
{
    map<f64s>(
        dst, (ptrdiff_t)count, [g = splatF64(gain)](f64s x) { return x * g; }, src);
}

void MemScaleAddF64(double *dst, const double *src, double gain, uint64_t count)
{
    update<f64s>(
        dst, (ptrdiff_t)count, [g = splatF64(gain)](f64s old, f64s x) { return old + x * g; }, src);
}

void MemScaleF32ToF32(float *dst, const float *src, double gain, uint64_t count)
{
    map<DoubledFloats>(
        dst, (ptrdiff_t)count, [g = splatF64(gain)](DoubledFloats x) { return x * g; }, src);
}

void MemScaleAddF32(float *dst, const float *src, double gain, uint64_t count)
{
    update<DoubledFloats>(
        dst, (ptrdiff_t)count, [g = splatF64(gain)](DoubledFloats old, DoubledFloats x) { return old + x * g; }, src);
}

// --- Two signals ---------------------------------------------------------------------------------------------

void MemAddF32(float *dst, const float *a, const float *b, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [](f32s x, f32s y) { return x + y; }, a, b);
}

void MemAddF64(double *dst, const double *a, const double *b, uint64_t count)
{
    map<f64s>(
        dst, (ptrdiff_t)count, [](f64s x, f64s y) { return x + y; }, a, b);
}

void MemSubF32(float *dst, const float *a, const float *b, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [](f32s x, f32s y) { return x - y; }, a, b);
}

void MemSubF64(double *dst, const double *a, const double *b, uint64_t count)
{
    map<f64s>(
        dst, (ptrdiff_t)count, [](f64s x, f64s y) { return x - y; }, a, b);
}

void MemMulF32(float *dst, const float *a, const float *b, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [](f32s x, f32s y) { return x * y; }, a, b);
}

void MemMulF32InPlace(float *dst, const float *src, uint64_t count)
{
    update<f32s>(
        dst, (ptrdiff_t)count, [](f32s x, f32s y) { return x * y; }, src);
}

void MemDivF32(float *dst, const float *a, const float *b, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [](f32s x, f32s y) { return x / y; }, a, b);
}

// --- Polarity ------------------------------------------------------------------------------------------------

// The sign bit, also of 0 and NaN.
void MemNegateF32(float *dst, const float *src, uint64_t count)
{
    map<f32s>(
        dst, (ptrdiff_t)count, [](f32s x) { return x ^ splatF32(-0.0f); }, src);
}

// A subtraction: no zero becomes -0.
void MemNegateF64(double *dst, const double *src, uint64_t count)
{
    map<f64s>(
        dst, (ptrdiff_t)count, [](f64s x) { return zero<f64s>() - x; }, src);
}

} // namespace
