// Arrays, element by element.
#pragma once

namespace {

void ArrayOp4(float *out, const float *a, const float *b, uint32_t n, float s)
{
    map<f32s>(
        out, n, [factor = splatF32(s)](f32s x, f32s y) { return x + y * factor; }, a, b);
}

void ArrayOp5(double *out, const double *a, const double *b, uint32_t n, double s)
{
    map<f64s>(
        out, n, [factor = splatF64(s)](f64s x, f64s y) { return x + y * factor; }, a, b);
}

void ArrayPairOpF64(double *out, const double *a, const double *b, uint32_t n)
{
    map<f64s>(
        out, n, [](f64s x, f64s y) { return x * y; }, a, b);
}

// What is nearly zero, and a NaN, stays.
void ReciprocalF64(double *out, const double *in, uint32_t n)
{
    const auto reciprocal = [](f64s x) {
        return select(atLeast(magnitude(x), splatF64(0x1p-23)), approximateReciprocal(x), x);
    };
    map<f64s>(out, n, reciprocal, in);
}

} // namespace
