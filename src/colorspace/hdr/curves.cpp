#include "colorspace/hdr/curves.hpp"

#include <vela/hdr.h>

#include <algorithm>
#include <cmath>

namespace vela::colorspace::hdr {
namespace {

double tenTo(double x) { return std::pow(10.0, x); }

// --- Cameras of television: a straight line into a power 0.45 ------------------------------------------------

struct Camera {
    double lineEndsAt; // light
    double lineEnd;    // code value
    double gain;

    double lightOf(double c) const { return c < lineEnd ? c / 4.5 : std::pow((c + (gain - 1)) / gain, 1 / 0.45); }
    double codeValueOf(double x) const { return x < lineEndsAt ? 4.5 * x : gain * std::pow(x, 0.45) - (gain - 1); }
};
constexpr Camera bt709 = {0.018, 0.081, 1.099};
constexpr Camera bt2020 = {0.0181, 0.0814, 1.0993};

// --- Logarithms ---------------------------------------------------------------------------------------------

// gain log10(slope x + 1) + black.
struct Logarithm {
    double gain;
    double slope;
    double black;

    double lightOf(double c) const { return (tenTo((c - black) / gain) - 1) / slope; }
    double codeValueOf(double x) const { return gain * std::log10(slope * x + 1) + black; }
    // The same turned about (0, black), for light below 0.
    double mirroredLightOf(double c) const { return -lightOf(2 * black - c); }
};
constexpr Logarithm canonLog = {0.45310178, 10.1596, 0.12512247};
constexpr Logarithm canonLog2 = {0.24136077, 87.09937546, 0.092864126};
constexpr Logarithm canonLog3Above = {0.36726844, 14.98325, 0.12240537};
constexpr Logarithm canonLog3Below = {0.36726844, 14.98325, 0.12783901};
constexpr Logarithm log3G10 = {0.224282, 155.97533, 0};

double lightOfMirrored(const Logarithm &curve, double c)
{
    return c < curve.black ? curve.mirroredLightOf(c) : curve.lightOf(c);
}

// The pieces meet at light -0.014 and 0.014.
double canonLog3Light(double c)
{
    if (c > 0.15277891)
        return canonLog3Above.lightOf(c);
    if (c < 0.09746547)
        return canonLog3Below.mirroredLightOf(c);
    return (c - 0.12512219) / 1.9754798;
}
double canonLog3CodeValue(double x) { return x > 0.014 ? canonLog3Above.codeValueOf(x) : 1.9754798 * x + 0.12512219; }

// Code 210: light from 0 upward is a logarithm, 0.381991 for the middle grey 0.18 / 0.9. The line below it and the
// steeper mirrored logarithm below that are for light that encoding never meets.
constexpr Logarithm log210 = {0.269036, 40.0, 0.125266};
constexpr Logarithm log210Below = {0.071569, 42.062664, 0.076072};
double log210Light(double c)
{
    constexpr double lineEndsAt = -0.00467957;
    if (c >= log210.black)
        return log210.lightOf(c);
    if (c >= log210Below.black)
        return lineEndsAt * (log210.black - c) / (log210.black - log210Below.black);
    return lineEndsAt + log210Below.mirroredLightOf(c);
}

double vLogLight(double c) { return c < 0.181 ? (c - 0.125) / 5.6 : tenTo((c - 0.598206) / 0.241514) - 0.00873; }
double vLogCodeValue(double x) { return x < 0.01 ? 5.6 * x + 0.125 : 0.241514 * std::log10(x + 0.00873) + 0.598206; }

// --- Sony ---------------------------------------------------------------------------------------------------

// Of reflectance by 0.9, which is 219/155 of the signal's own scale.
double sLog2Light(double c)
{
    return c < 0.030001223 ? 0.9 * 0.28258064 * (c - 0.030001223)
                           : 0.9 * 219 / 155 * (tenTo((c - 0.646596) / 0.432699) - 0.037584);
}
double sLog2CodeValue(double x) { return 0.432699 * std::log10(x * 155 / (0.9 * 219) + 0.037584) + 0.646596; }

// S-Log3 in codes of 1023: a line from black to 171.21 at light 0.01125, then a logarithm. Light below 0 is ours to
// define; there a code of the host has so many codes for every 0.01125.
constexpr double sLog3Black = 95;
constexpr double sLog3LineEndsAt = 0.01125;
double sLog3Code(double x) { return 420 + 261.5 * std::log10((x + 0.01) / 0.19); }
double sLog3LineRise() { return sLog3Code(sLog3LineEndsAt) - sLog3Black; }

double sLog3Light(double c, double riseBelowBlack)
{
    const double code = 1023 * c;
    if (code < sLog3Black)
        return (code - sLog3Black) * sLog3LineEndsAt / riseBelowBlack;
    const double rise = sLog3LineRise();
    if (code < sLog3Black + rise)
        return (code - sLog3Black) * sLog3LineEndsAt / rise;
    return 0.19 * tenTo((code - 420) / 261.5) - 0.01;
}
double sLog3CodeValue(double x)
{
    return (x < sLog3LineEndsAt ? sLog3Black + x / sLog3LineEndsAt * sLog3LineRise() : sLog3Code(x)) / 1023;
}

// Code 102: light above the joint is stretched.
constexpr double stretch = 1.4948772;
constexpr double stretchesFrom = 3.7371928188 / stretch; // 2.5
double stretchedLight(double x) { return x <= stretchesFrom ? x : stretchesFrom + stretch * (x - stretchesFrom); }
double unstretchedLight(double x) { return x <= stretchesFrom ? x : stretchesFrom + (x - stretchesFrom) / stretch; }

// --- High dynamic range -------------------------------------------------------------------------------------

constexpr double pqM1 = 0.1593017578125;
constexpr double pqM2 = 78.84375;
constexpr double pqC1 = 0.8359375;
constexpr double pqC2 = 18.8515625;
constexpr double pqC3 = 18.6875;

// Hybrid log-gamma, scene light 0..12.
constexpr double hlgA = 0.17883277;
constexpr double hlgB = 0.28466892;
constexpr double hlgC = 0.5599107;
double hlgLight(double c) { return c <= 0.5 ? 4 * c * c : std::exp((c - hlgC) / hlgA) + hlgB; }
double hlgCodeValue(double x) { return x <= 1 ? 0.5 * std::sqrt(x) : hlgA * std::log(x - hlgB) + hlgC; }

} // namespace

double pqLight(double codeValue)
{
    const double p = std::pow(codeValue, 1 / pqM2);
    return std::pow(std::max(p - pqC1, 0.0) / (pqC2 - pqC3 * p), 1 / pqM1);
}

double pqCodeValue(double light)
{
    const double p = std::pow(light, pqM1);
    return std::pow((pqC1 + pqC2 * p) / (1 + pqC3 * p), pqM2);
}

constinit const Curve curves[curveCount] = {
    {VCB_HDR_BT709, 16, [](double c) { return bt709.lightOf(c); }, [](double x) { return bt709.codeValueOf(x); }},
    {VCB_HDR_POWER_2_2, 16, [](double c) { return std::pow(c, 2.2); }, [](double x) { return std::pow(x, 0.4545454); }},
    {VCB_HDR_POWER_2_8, 16, [](double c) { return std::pow(c, 2.8); }, [](double x) { return std::pow(x, 0.3571429); }},
    {VCB_HDR_BT601, 16, [](double c) { return bt709.lightOf(c); }, [](double x) { return bt709.codeValueOf(x); }},
    {VCB_HDR_POWER_2_4, 16, [](double c) { return std::pow(c, 2.4); }, [](double x) { return std::pow(x, 0.4166667); }},
    {VCB_HDR_BT2020_12BIT, 16, [](double c) { return bt2020.lightOf(c); },
     [](double x) { return bt2020.codeValueOf(x); }},
    {VCB_HDR_PQ, 16, [](double c) { return 100 * pqLight(c); }, [](double x) { return pqCodeValue(x / 100); }},
    {VCB_HDR_HLG, 16, hlgLight, hlgCodeValue},
    {VCB_HDR_S_LOG2, 16, sLog2Light, sLog2CodeValue},
    {VCB_HDR_S_LOG3, 16, [](double c) { return sLog3Light(c, 64.989265); }, sLog3CodeValue},
    {VCB_HDR_S_LOG3_HIGH, 16, [](double c) { return stretchedLight(sLog3Light(c, 68.589264)); },
     [](double x) { return sLog3CodeValue(unstretchedLight(x)); }},
    {VCB_HDR_CANON_LOG, 64, [](double c) { return lightOfMirrored(canonLog, c); },
     [](double x) { return canonLog.codeValueOf(x); }},
    {VCB_HDR_CANON_LOG2, 64, [](double c) { return lightOfMirrored(canonLog2, c); },
     [](double x) { return canonLog2.codeValueOf(x); }},
    {VCB_HDR_CANON_LOG3, 64, canonLog3Light, canonLog3CodeValue},
    {VCB_HDR_LOG3G10, 64, [](double c) { return log3G10.lightOf(c) - 0.01; },
     [](double x) { return log3G10.codeValueOf(x + 0.01); }},
    {VCB_HDR_V_LOG, 64, vLogLight, vLogCodeValue},
    {VCB_HDR_LOG_210, 64, log210Light, [](double x) { return log210.codeValueOf(x); }},
    {VCB_HDR_HLG_SCENE, 16, hlgLight, hlgCodeValue},
    {VCB_HDR_POWER_2_6, 16, [](double c) { return std::pow(c, 2.6); }, [](double x) { return std::pow(x, 0.3846154); }},
};

} // namespace vela::colorspace::hdr
