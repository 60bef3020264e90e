// The coefficients of filters: second-order sections, and the low-pass behind four-fold upsampling.
#pragma once

#include <array>
#include <string>

namespace host {

enum class FilterKind { lowpass, highpass, bandpass, notch, peak, lowshelf, highshelf };

struct Filter {
    FilterKind kind;
    double frequency; // Hz
    double q;
    double gain; // dB, of peaks and shelves
};

// "KIND:FREQUENCY[:Q[:GAIN]]". Throws UsageError.
Filter parseFilter(const std::string &text);

// As the AudioBiquad kernels take them: b2, b1, b0, a1, a2, where a0 is 1.
using Section = std::array<double, 5>;

// The frequency lies below half the rate.
Section sectionOf(const Filter &filter, double rate);

// As the AudioUpsample4 kernels take them: 12 taps for each of four phases, together a Kaiser window over sin(x)/x with
// its cut-off at half the old rate. It delays nothing, and every fourth sample is one of the input. Up to 0.34 of the
// old rate the response is 1 within 0.01 dB, images (from 0.66 on) are 60 dB below.
using Phases = std::array<double, 48>;
Phases upsamplingPhases();

} // namespace host
