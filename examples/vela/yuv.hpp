// Colours of this host's own making, pixel by pixel in plain C++: the library's kernels for these conversions come
// with a later version.
#pragma once

#include "picture.hpp"

namespace host {

// Pixels B G R A to Y U V A and back: the matrix of BT.601 over the full range 0..255 (as in JPEG files), each
// result rounded to the nearest integer and clamped.
Picture toYuva(const Picture &bgra);
Picture toBgra(const Picture &yuva);

// How far two pictures of four bytes per pixel are apart in one of their channels: the mean square of the differences.
double meanSquaredError(const Picture &a, const Picture &b, int channel);

// In decibels, for 8-bit channels; infinite for 0.
double peakSignalToNoise(double meanSquaredError);

} // namespace host
