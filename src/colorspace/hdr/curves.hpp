// The transfer curves, in double precision: docs/hdr.md lists them with their sources.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela::colorspace::hdr {

// Light is 1.0 at 100 cd/m2 where a curve is of displays; camera curves have their own scene-linear scale.
struct Curve {
    std::int32_t code;
    int scale; // 16 or 64: the tables have 256 and 4096 entries for each
    double (*lightOf)(double codeValue);
    double (*codeValueOf)(double light); // for light from 0 upward
};

inline constexpr std::size_t curveCount = 19;
extern const Curve curves[curveCount];

// SMPTE ST 2084, light relative to 10000 cd/m2.
double pqLight(double codeValue);
double pqCodeValue(double light);

} // namespace vela::colorspace::hdr
