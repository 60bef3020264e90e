// Weights and gains in fixed point.
#pragma once

namespace {

constexpr int weightBits = 14;
constexpr int gainBits = 12;

// A parameter with so many fraction bits, to the nearest, ties to even; within -32767..32767, which a NaN is not above.
template <int fractionBits> inline int16_t toFixed(double x)
{
    double t = x * (1 << fractionBits);
    t = t > -32767 ? t : -32767;
    t = t < 32767 ? t : 32767;
    return (int16_t)_mm_cvtsd_si32(_mm_set_sd(t));
}

} // namespace
