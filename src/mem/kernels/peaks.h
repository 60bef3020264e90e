// Peaks of floats and samples.
#pragma once

namespace {

float MemReduceF32(const float *src, uint64_t count)
{
    return largestOf((ptrdiff_t)count, [](f32s x) { return magnitude(x); }, Lanes<f32s>{src});
}

double MemMaxAbsF64(const double *src, uint64_t count)
{
    return largestOf((ptrdiff_t)count, [](f64s x) { return magnitude(x); }, Lanes<f64s>{src});
}

// SSE2's meaning: the largest positive sample.
int32_t MemMaxAbsS16(const int16_t *src, int32_t count)
{
    return largestOf(
        count, [](i16s x) { return x; }, Lanes<i16s>{src});
}

// AVX2's meaning: the largest magnitude.
int32_t MemMaxMagnitudeS16(const int16_t *src, int32_t count)
{
    return largestOf(
        count, [](i16s x) { return magnitude(x); }, Lanes<i16s>{src});
}

uint32_t MemMaxAbsS32(const int32_t *src, int32_t count)
{
    return largestOf(
        count, [](i32s x) { return magnitude(x); }, Lanes<i32s>{src});
}

} // namespace
