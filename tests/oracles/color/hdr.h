// The oracle of the HDR conversion: curves, and a pixel's way through slot 401, straight from docs/hdr.md and the
// slot's row.
#pragma once

#include <vela/hdr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace vela::test::hdr {

// --- Curves -------------------------------------------------------------------------------------------------

constexpr std::int32_t curveCodes[] = {1,   4,   5,   6,   13,  14,  15,  16,  18,  100,
                                       101, 102, 110, 111, 112, 120, 200, 210, 228, 230};
constexpr std::int32_t codesWithoutCurve[] = {8, 9, 10, 201, 211};

inline int scaleOf(std::int32_t code)
{
    switch (code) {
    case 110:
    case 111:
    case 112:
    case 120:
    case 200:
    case 210:
        return 64;
    default:
        return 16;
    }
}

inline double pqLight(double c) // 1.0 is 10000 cd/m2
{
    const double p = std::pow(c, 1 / 78.84375);
    return std::pow(std::max(p - 0.8359375, 0.0) / (18.8515625 - 18.6875 * p), 1 / 0.1593017578125);
}
inline double pqCode(double light)
{
    const double p = std::pow(light, 0.1593017578125);
    return std::pow((0.8359375 + 18.8515625 * p) / (1 + 18.6875 * p), 78.84375);
}

// S-Log3, with `below` codes for every 0.01125 of light below 0.
inline double sLog3Light(double c, double below)
{
    const double code = c * 1023;
    const double joint = 420 + 261.5 * std::log10((0.01125 + 0.01) / 0.19);
    if (code >= joint)
        return std::pow(10.0, (code - 420) / 261.5) * 0.19 - 0.01;
    return (code - 95) * 0.01125 / (code >= 95 ? joint - 95 : below);
}
inline double sLog3Code(double x)
{
    const double joint = 420 + 261.5 * std::log10((0.01125 + 0.01) / 0.19);
    return (x >= 0.01125 ? 420 + 261.5 * std::log10((x + 0.01) / 0.19) : 95 + x * (joint - 95) / 0.01125) / 1023;
}

// a log10(b x + 1) + black and its mirror image
inline double mirroredLight(double c, double a, double b, double black)
{
    const double x = (std::pow(10.0, std::abs(c - black) / a) - 1) / b;
    return c < black ? -x : x;
}

inline double lightOf(std::int32_t code, double c)
{
    switch (code) {
    case 1:
    case 14:
    case 6:
        return c < 0.081 ? c / 4.5 : std::pow((c + 0.099) / 1.099, 1 / 0.45);
    case 15:
        return c < 0.0814 ? c / 4.5 : std::pow((c + 0.0993) / 1.0993, 1 / 0.45);
    case 4:
        return std::pow(c, 2.2);
    case 5:
        return std::pow(c, 2.8);
    case 13:
        return std::pow(c, 2.4);
    case 230:
        return std::pow(c, 2.6);
    case 16:
        return 100 * pqLight(c);
    case 18:
    case 228:
        return c <= 0.5 ? 4 * c * c : std::exp((c - 0.5599107) / 0.17883277) + 0.28466892;
    case 100:
        return 0.9 * (c >= 0.030001223 ? 219.0 / 155 * (std::pow(10.0, (c - 0.646596) / 0.432699) - 0.037584)
                                       : (c - 0.030001223) * 0.28258064);
    case 101:
        return sLog3Light(c, 64.989265);
    case 102: {
        const double x = sLog3Light(c, 68.589264);
        return x <= 3.7371928188 / 1.4948772 ? x : 3.7371928188 / 1.4948772 * (1 - 1.4948772) + 1.4948772 * x;
    }
    case 110:
        return mirroredLight(c, 0.45310178, 10.1596, 0.12512247);
    case 111:
        return mirroredLight(c, 0.24136077, 87.09937546, 0.092864126);
    case 112:
        if (c > 0.15277891)
            return (std::pow(10.0, (c - 0.12240537) / 0.36726844) - 1) / 14.98325;
        if (c < 0.09746547)
            return (1 - std::pow(10.0, (0.12783901 - c) / 0.36726844)) / 14.98325;
        return (c - 0.12512219) / 1.9754798;
    case 120:
        return (std::pow(10.0, c / 0.224282) - 1) / 155.97533 - 0.01;
    case 200:
        return c < 0.181 ? (c - 0.125) / 5.6 : std::pow(10.0, (c - 0.598206) / 0.241514) - 0.00873;
    case 210:
        if (c >= 0.125266)
            return (std::pow(10.0, (c - 0.125266) / 0.269036) - 1) / 40;
        if (c >= 0.076072)
            return -0.00467957 * (0.125266 - c) / (0.125266 - 0.076072);
        return -0.00467957 - (std::pow(10.0, (0.076072 - c) / 0.071569) - 1) / 42.062664;
    default:
        throw std::invalid_argument("no curve " + std::to_string(code));
    }
}

// For light from 0 upward, which is what tables cover.
inline double codeOf(std::int32_t code, double x)
{
    switch (code) {
    case 1:
    case 14:
    case 6:
        return x < 0.018 ? 4.5 * x : 1.099 * std::pow(x, 0.45) - 0.099;
    case 15:
        return x < 0.0181 ? 4.5 * x : 1.0993 * std::pow(x, 0.45) - 0.0993;
    case 4:
        return std::pow(x, 0.4545454);
    case 5:
        return std::pow(x, 0.3571429);
    case 13:
        return std::pow(x, 0.4166667);
    case 230:
        return std::pow(x, 0.3846154);
    case 16:
        return pqCode(x / 100);
    case 18:
    case 228:
        return x <= 1 ? 0.5 * std::sqrt(x) : 0.17883277 * std::log(x - 0.28466892) + 0.5599107;
    case 100:
        return 0.432699 * std::log10(x / 0.9 * 155 / 219 + 0.037584) + 0.646596;
    case 101:
        return sLog3Code(x);
    case 102:
        return sLog3Code(x <= 2.5 ? x : 2.5 + (x - 2.5) / 1.4948772);
    case 110:
        return 0.45310178 * std::log10(10.1596 * x + 1) + 0.12512247;
    case 111:
        return 0.24136077 * std::log10(87.09937546 * x + 1) + 0.092864126;
    case 112:
        return x > 0.014 ? 0.36726844 * std::log10(14.98325 * x + 1) + 0.12240537 : 1.9754798 * x + 0.12512219;
    case 120:
        return 0.224282 * std::log10(155.97533 * (x + 0.01) + 1);
    case 200:
        return x < 0.01 ? 5.6 * x + 0.125 : 0.241514 * std::log10(x + 0.00873) + 0.598206;
    case 210:
        return 0.269036 * std::log10(40 * x + 1) + 0.125266;
    default:
        throw std::invalid_argument("no curve " + std::to_string(code));
    }
}

// --- Pixels -------------------------------------------------------------------------------------------------

struct Setting {
    std::int32_t srcCode = 2;
    std::int32_t dstCode = 2;
    HdrConversionParams params = VELA_HDR_CONVERSION_DEFAULTS;

    bool hasPowers() const
    {
        return srcCode == 18 || dstCode == 18 || params.toneMapMode == 2 || params.toneMapMode == 3 ||
               params.adjustMode == 1;
    }
};

// A pixel from step to step: in float, to the bit where no power is taken, or in double.
template <class Real> using Pixel = std::array<Real, 4>;

// a > b ? a : b, as for a NaN the second.
template <class Real> Real largerOf(Real a, Real b) { return a > b ? a : b; }
template <class Real> Real limited(Real x, Real top)
{
    const Real notBelow = largerOf(x, Real(0));
    return notBelow < top ? notBelow : top;
}

template <class Real> Real luma2020(const Pixel<Real> &p)
{
    return (Real(0.2627F) * p[0] + Real(0.678F) * p[1]) + Real(0.0593F) * p[2];
}

inline float looked(const float *table, int scale, int stepsPerUnit, float factor, float x)
{
    return table[static_cast<std::int32_t>(limited(x * factor, static_cast<float>(stepsPerUnit * scale - 1)))];
}

template <class Real> Real knee(Real x)
{
    if (x > Real(10))
        return 1;
    if (x > Real(5.8F))
        return (x - Real(5.8F)) / Real(4.2F) * Real(0.03F) + Real(0.97F);
    if (x > Real(3.3F))
        return (x - Real(3.3F)) / Real(2.5F) * Real(0.12F) + Real(0.85F);
    if (x > Real(0.0005F))
        return (x - Real(0.0005F)) / Real(3.2995F) * Real(0.8495F) + Real(0.0005F);
    return Real(0.0005F);
}

inline double rollOff(double x, const HdrConversionParams &params)
{
    const double source = pqCode(std::max(static_cast<double>(params.srcPeakLuminance), 0.0) / 10000);
    const double target = pqCode(std::max(static_cast<double>(params.dstPeakLuminance), 0.0) / 10000);
    const double maxLum = target / source;
    const double ks = 1.5 * maxLum - 0.5;
    const double light = std::min(std::max(x, 0.0), std::max(static_cast<double>(params.srcPeakLuminance), 0.0) / 100);
    const double e = std::min(pqCode(light / 100) / source, 1.0);
    if (e < ks || ks >= 1)
        return light;
    const double t = (e - ks) / (1 - ks);
    const double rolled = (2 * t * t * t - 3 * t * t + 1) * ks + (t * t * t - 2 * t * t + t) * (1 - ks) +
                          (-2 * t * t * t + 3 * t * t) * maxLum;
    return 100 * pqLight(std::max(rolled * source, 0.0));
}

template <class Real> void renderForDisplay(Pixel<Real> &p, double peak)
{
    const double limitedPeak = std::min(std::max(peak, 2.0), 10000.0);
    for (int c = 0; c < 3; ++c)
        p[c] = largerOf(Real(100) * p[c], Real(0));
    const double y = luma2020(p);
    const double sceneY = std::pow(y / 50.69702, 1 / 1.2);
    const double gamma = 1.2 + 0.42 * std::log10(limitedPeak / 1000);
    for (int c = 0; c < 3; ++c) {
        const double scene = y > 0 ? p[c] * std::pow(sceneY, -0.2) / 50.69702 : 0;
        p[c] = y > 0 ? Real(limitedPeak / std::pow(12, gamma) * std::pow(sceneY, gamma - 1) * scene / limitedPeak) : 0;
    }
}

// Steps 1 to 6.
template <class Real>
Pixel<Real> lightOfPixel(const float *src, const float *matrix, const Setting &setting, const float *inputTable)
{
    const HdrConversionParams &params = setting.params;
    const int scale = scaleOf(setting.srcCode);
    Pixel<Real> p;
    for (int c = 0; c < 3; ++c)
        p[c] = looked(inputTable, scale, 256, static_cast<float>(256 * scale - 1), src[c]);
    p[3] = src[3];

    if (setting.srcCode == 18) {
        for (int c = 0; c < 3; ++c)
            p[c] = largerOf(p[c], Real(0));
        const Real factor = std::pow(luma2020(p), Real(0.20000005F));
        for (int c = 0; c < 3; ++c)
            p[c] = p[c] * factor * Real(50.69702F) / Real(100);
    }

    if (params.toneMapMode == 1)
        for (Real &x : p)
            x = knee(x);
    if (params.toneMapMode == 2)
        for (int c = 0; c < 3; ++c)
            p[c] = Real(rollOff(p[c], params));
    if (params.toneMapMode == 3)
        renderForDisplay(p, params.dstPeakLuminance);

    Pixel<Real> q;
    for (int i = 0; i < 4; ++i)
        q[i] = ((Real(matrix[4 * i]) * p[0] + Real(matrix[4 * i + 1]) * p[1]) + Real(matrix[4 * i + 2]) * p[2]) +
               Real(matrix[4 * i + 3]) * p[3];

    if (params.adjustMode == 1) {
        for (Real &x : q)
            x = x * Real(params.adjustGain) / Real(10);
        const Real y =
            (Real(params.lumaWeightR) * q[0] + Real(params.lumaWeightG) * q[1]) + Real(params.lumaWeightB) * q[2];
        const Real lift = y > 0 ? std::pow(y, 1 / Real(params.adjustDivisor)) - y : 0;
        for (Real &x : q)
            x = (x + lift) * Real(10);
    }

    if (setting.dstCode == 18) {
        for (int c = 0; c < 3; ++c)
            q[c] = largerOf(q[c] * Real(100), Real(0));
        const Real y = luma2020(q);
        const Real factor = std::pow(y / Real(50.69702F), Real(-0.16666670)) / Real(50.69702F);
        for (int c = 0; c < 3; ++c)
            q[c] = y > 0 ? q[c] * factor : 0;
    }
    return q;
}

// Steps 7 and 8.
inline void encodePixel(float *dst, const Pixel<float> &light, std::int32_t dstCode, const float *outputTable)
{
    for (int c = 0; c < 3; ++c)
        dst[c] = limited(looked(outputTable, scaleOf(dstCode), 4096, 4096.0F, light[c]), 1.0F);
    dst[3] = limited(light[3], 1.0F);
}

} // namespace vela::test::hdr
