// Effect building blocks: scalar steps.
#pragma once

#include "audio/kernels/samples.h"

namespace {

double EffectDot2(double a, double b, double c, double d) { return a * b + c * d; }

double EffectMultiply(double a, double b) { return a * b; }

void EffectBiquadStep(const double x[3], double y[3], const double b[3], const double a[2])
{
    const double first =
        (element(x, 0) * element(b, 0) + element(x, 2) * element(b, 2)) - element(y, 1) * element(a, 0);
    const double second = element(x, 1) * element(b, 1) - element(y, 2) * element(a, 1);
    setElement(y, 0, first + second);
}

// Products from both ends in two lanes: with the factors f[i] = t - (i - 3),
//   ends[i]                = P[i], Q[7-i]          P[i] = f[0]*...*f[i-1], Q[i] = f[7]*...*f[i+1]
//   ends[i] * ends[7-i]'   = P[i]*Q[i], Q[7-i]*P[7-i]    the lanes of the second exchanged
// Pairs of terms, i and 7-i, then are ordered into even and odd ones to be added up.
double EffectLagrange8(double t, const double p[8])
{
    const __m128d position = _mm_set1_pd(t);
    const auto factors = [position](int i) { return _mm_sub_pd(position, _mm_setr_pd(i - 3, 4 - i)); };
    const __m128d ends0 = _mm_set1_pd(1);
    const __m128d ends1 = factors(0);
    const __m128d ends2 = _mm_mul_pd(ends1, factors(1));
    const __m128d ends3 = _mm_mul_pd(ends2, factors(2));
    const __m128d ends4 = _mm_mul_pd(ends3, factors(3));
    const __m128d ends5 = _mm_mul_pd(ends4, factors(4));
    const __m128d ends6 = _mm_mul_pd(ends5, factors(5));
    const __m128d ends7 = _mm_mul_pd(ends6, factors(6));
    const auto terms = [p](int i, __m128d ends, __m128d opposite, double c) {
        const __m128d products = _mm_mul_pd(ends, _mm_shuffle_pd(opposite, opposite, 1));
        return _mm_mul_pd(_mm_div_pd(products, _mm_setr_pd(c, -c)), _mm_setr_pd(element(p, i), element(p, 7 - i)));
    };
    const __m128d terms07 = terms(0, ends0, ends7, -5040);
    const __m128d terms16 = terms(1, ends1, ends6, 720);
    const __m128d terms25 = terms(2, ends2, ends5, -240);
    const __m128d terms34 = terms(3, ends3, ends4, 144);
    __m128d sums = _mm_add_pd(_mm_unpacklo_pd(terms07, terms16), _mm_unpacklo_pd(terms25, terms34));
    sums = _mm_add_pd(sums, _mm_unpackhi_pd(terms34, terms25));
    sums = _mm_add_pd(sums, _mm_unpackhi_pd(terms16, terms07));
    return _mm_cvtsd_f64(_mm_add_sd(sums, _mm_unpackhi_pd(sums, sums)));
}

void EffectShiftHistory(double v, double y[3], double z[3])
{
    setElement(y, 2, element(y, 1));
    setElement(y, 1, element(y, 0));
    setElement(y, 0, v);
    setElement(z, 2, element(z, 1));
    setElement(z, 1, element(z, 0));
}

} // namespace
