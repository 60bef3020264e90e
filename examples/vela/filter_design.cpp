#include "filter_design.hpp"

#include "failure.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace host {
namespace {

using std::numbers::pi;

constexpr double lowestFrequency = 0.1; // Hz; below, the poles come too close to 1
constexpr double smallestQ = 0.01;
constexpr double largestQ = 1000;
constexpr double largestFilterGain = 60; // dB, either way

struct NamedKind {
    const char *name;
    FilterKind kind;
    bool hasGain;
};
constexpr NamedKind kinds[] = {
    {"lowpass", FilterKind::lowpass, false},    {"highpass", FilterKind::highpass, false},
    {"bandpass", FilterKind::bandpass, false},  {"notch", FilterKind::notch, false},
    {"peak", FilterKind::peak, true},           {"lowshelf", FilterKind::lowshelf, true},
    {"highshelf", FilterKind::highshelf, true},
};

std::vector<std::string> partsOf(const std::string &text)
{
    std::vector<std::string> parts{""};
    for (const char c : text) {
        if (c == ':')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

double numberIn(const std::string &part, const char *what, double smallest, double largest)
{
    double number = 0;
    const char *const end = part.data() + part.size();
    const auto read = std::from_chars(part.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || !(number >= smallest && number <= largest))
        throw UsageError("--biquad: '" + part + "' is no " + what);
    return number;
}

// One side of the fraction that a section is.
struct Polynomial {
    double z0;
    double z1; // of z^-1
    double z2;
};

Section normalized(const Polynomial &b, const Polynomial &a)
{
    return {b.z2 / a.z0, b.z1 / a.z0, b.z0 / a.z0, a.z1 / a.z0, a.z2 / a.z0};
}

Section shelf(double amplitude, double cosine, double alpha)
{
    const double up = amplitude + 1;
    const double down = amplitude - 1;
    const double slope = 2 * std::sqrt(amplitude) * alpha;
    return normalized({amplitude * (up - down * cosine + slope), 2 * amplitude * (down - up * cosine),
                       amplitude * (up - down * cosine - slope)},
                      {up + down * cosine + slope, -2 * (down + up * cosine), up + down * cosine - slope});
}

// The modified Bessel function of order 0 by its series; x is small here.
double bessel0(double x)
{
    double sum = 1;
    double term = 1;
    for (int k = 1; term > 1e-17 * sum; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
    }
    return sum;
}

} // namespace

Filter parseFilter(const std::string &text)
{
    const std::vector<std::string> parts = partsOf(text);
    const auto kind = std::ranges::find(kinds, parts[0], &NamedKind::name);
    if (kind == std::end(kinds))
        throw UsageError("--biquad: no filter '" + parts[0] +
                         "'; lowpass, highpass, bandpass, notch, peak, lowshelf, highshelf");
    if (parts.size() < 2 || parts.size() > 4)
        throw UsageError("--biquad: '" + text + "' is not KIND:FREQUENCY[:Q[:GAIN]]");
    if (kind->hasGain != (parts.size() == 4))
        throw UsageError(std::string("--biquad: ") + kind->name +
                         (kind->hasGain ? " needs FREQUENCY, Q and GAIN" : " has no GAIN"));
    return {kind->kind, numberIn(parts[1], "frequency; hertz, from 0.1 on", lowestFrequency, 1e9),
            parts.size() > 2 ? numberIn(parts[2], "Q; 0.01 to 1000", smallestQ, largestQ) : std::numbers::sqrt2 / 2,
            parts.size() > 3 ? numberIn(parts[3], "gain; decibels, -60 to 60", -largestFilterGain, largestFilterGain)
                             : 0};
}

// Robert Bristow-Johnson's Audio EQ Cookbook, https://www.w3.org/TR/audio-eq-cookbook/.
Section sectionOf(const Filter &filter, double rate)
{
    const double w0 = 2 * pi * filter.frequency / rate;
    const double cosine = std::cos(w0);
    const double alpha = std::sin(w0) / (2 * filter.q);
    const double amplitude = std::pow(10, filter.gain / 40);
    // 1 - cos and 1 + cos, which lose no digits at either end.
    const double minus = 2 * std::pow(std::sin(w0 / 2), 2);
    const double plus = 2 * std::pow(std::cos(w0 / 2), 2);
    const Polynomial a{1 + alpha, -2 * cosine, 1 - alpha};
    switch (filter.kind) {
    case FilterKind::lowpass:
        return normalized({minus / 2, minus, minus / 2}, a);
    case FilterKind::highpass:
        return normalized({plus / 2, -plus, plus / 2}, a);
    case FilterKind::bandpass: // 0 dB at its frequency
        return normalized({alpha, 0, -alpha}, a);
    case FilterKind::notch:
        return normalized({1, -2 * cosine, 1}, a);
    case FilterKind::peak:
        return normalized({1 + alpha * amplitude, -2 * cosine, 1 - alpha * amplitude},
                          {1 + alpha / amplitude, -2 * cosine, 1 - alpha / amplitude});
    case FilterKind::lowshelf:
        return shelf(amplitude, cosine, alpha);
    case FilterKind::highshelf:
        break;
    }
    // The low shelf in a mirror: z becomes -z, and with it the sign of the cosine.
    Section section = shelf(amplitude, -cosine, alpha);
    section[1] = -section[1];
    section[3] = -section[3];
    return section;
}

// Time runs in samples of the input: phase p stands at p/4, tap j at j - 5. The 47 taps within the window are
// symmetrical about time 0; the 48th, at -6, is 0.
Phases upsamplingPhases()
{
    constexpr double beta = 5.874; // Kaiser's, 0.1102 * (A - 8.7) for an A of 62 dB
    constexpr double end = 6;
    Phases phases{};
    for (std::size_t p = 0; p < 4; ++p) {
        double sum = 0;
        for (std::size_t j = 0; j < 12; ++j) {
            const double time = static_cast<double>(p) / 4 + 5 - static_cast<double>(j);
            double &tap = phases[12 * p + j];
            if (std::abs(time) >= end)
                continue;
            const double window = bessel0(beta * std::sqrt(1 - std::pow(time / end, 2))) / bessel0(beta);
            tap = window * (time == 0 ? 1 : std::sin(pi * time) / (pi * time));
            sum += tap;
        }
        // What is constant stays so: all phases let it pass alike.
        for (std::size_t j = 0; j < 12; ++j)
            phases[12 * p + j] /= sum;
    }
    return phases;
}

} // namespace host
