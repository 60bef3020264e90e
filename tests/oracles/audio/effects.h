// Effect building blocks.
#pragma once

namespace {

double EffectDot2(double a, double b, double c, double d) { return a * b + c * d; }

double EffectMultiply(double a, double b) { return a * b; }

void EffectBiquadStep(const double x[3], double y[3], const double b[3], const double a[2])
{
    y[0] = ((x[0] * b[0] + x[2] * b[2]) - y[1] * a[0]) + (x[1] * b[1] - y[2] * a[1]);
}

// The polynomial through (i - 3, p[i]).
double EffectLagrange8(double t, const double p[8])
{
    constexpr double c[8] = {-5040, 720, -240, 144, -144, 240, -720, 5040};
    const auto factor = [t](int i) { return t - (i - 3); };
    const auto term = [&](int i) {
        double fromLeft = 1;
        for (int j = 0; j < i; ++j)
            fromLeft *= factor(j);
        double fromRight = 1;
        for (int j = 7; j > i; --j)
            fromRight *= factor(j);
        return fromLeft * fromRight / c[i] * p[i];
    };
    return (term(0) + term(2) + term(4) + term(6)) + (term(1) + term(3) + term(5) + term(7));
}

void EffectShiftHistory(double v, double y[3], double z[3])
{
    y[2] = y[1];
    y[1] = y[0];
    y[0] = v;
    z[2] = z[1];
    z[1] = z[0];
}

} // namespace
