// Peers that come as source: Eigen, and filters as one writes them without a library. Compiled once for each
// instruction set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vela::test {

// The same for one vector or matrix and for n of them in a row, in one loop.
struct EigenOperation {
    void (*one)(float *out, const float *a, const float *b);
    void (*each)(float *out, const float *a, const float *b, std::ptrdiff_t n);
};

template <class Real> struct EigenArrays {
    Real (*dot)(const Real *a, const Real *b, std::ptrdiff_t n);
    Real (*norm)(const Real *a, std::ptrdiff_t n);
    Real (*distance)(const Real *a, const Real *b, std::ptrdiff_t n);
    Real (*mean)(const Real *a, std::ptrdiff_t n);
    Real (*variance)(const Real *a, std::ptrdiff_t n, Real mean);
    void (*addScaled)(Real *out, const Real *a, const Real *b, std::ptrdiff_t n, Real s);
};

struct CompiledPeers {
    const char *instructions;

    EigenArrays<float> floats;
    EigenArrays<double> doubles;
    EigenOperation transpose; // in place
    EigenOperation multiply;
    EigenOperation transform;
    EigenOperation add;
    EigenOperation cross;
    EigenOperation normalize;

    // y[-2], y[-1], x[-2], x[-1] are the history; c as AudioBiquadF64 has it.
    void (*biquadDirect)(double *y, const double *x, const double *c, std::ptrdiff_t n);
    void (*biquadTransposed)(double *y, const double *x, const double *c, std::ptrdiff_t n);
    // Four outputs a sample. Taps phase by phase, 12 of each; or the four phases of each tap side by side.
    void (*interpolate)(double *out, const std::int16_t *x, const double *taps, std::ptrdiff_t n);
    void (*interpolateByTaps)(double *out, const std::int16_t *x, const double *taps, std::ptrdiff_t n);
};

// Those that the processor runs.
std::vector<const CompiledPeers *> compiledPeers();

} // namespace vela::test
