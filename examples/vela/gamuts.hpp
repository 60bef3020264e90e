// The primaries of RGB pictures, and the matrix from one set of them to another.
#pragma once

#include <array>
#include <span>
#include <string>

namespace host {

// Coordinates x and y of CIE 1931.
struct Chromaticity {
    double x;
    double y;
};

struct Primaries {
    const char *name;
    Chromaticity red;
    Chromaticity green;
    Chromaticity blue;
    Chromaticity white;
};

std::span<const Primaries> allPrimaries();

// Null if there is none of that name.
const Primaries *findPrimaries(const std::string &name);

using Matrix3 = std::array<std::array<double, 3>, 3>; // rows

// Takes light R, G, B to the same light in other primaries. Between different whites it adapts by Bradford's matrix, so
// that white stays white.
Matrix3 gamutMatrix(const Primaries &from, const Primaries &to);

} // namespace host
