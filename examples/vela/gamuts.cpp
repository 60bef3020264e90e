#include "gamuts.hpp"

#include <algorithm>

namespace host {
namespace {

constexpr Chromaticity d65{0.3127, 0.3290};
constexpr Chromaticity dciWhite{0.314, 0.351};

constexpr Primaries primaries[] = {
    {"bt709", {0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, d65},       // ITU-R BT.709-6
    {"bt2020", {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, d65},      // ITU-R BT.2020-2
    {"bt601-525", {0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, d65},   // ITU-R BT.601-7, 525 and
    {"bt601-625", {0.640, 0.330}, {0.290, 0.600}, {0.150, 0.060}, d65},   // 625 lines
    {"p3", {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, d65},          // SMPTE EG 432-1
    {"p3-dci", {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, dciWhite}, // SMPTE RP 431-2
    // Those of the cameras: Sony, Canon, RED, Panasonic.
    {"s-gamut3", {0.730, 0.280}, {0.140, 0.855}, {0.100, -0.050}, d65},
    {"s-gamut3.cine", {0.766, 0.275}, {0.225, 0.800}, {0.089, -0.087}, d65},
    {"cinema-gamut", {0.740, 0.270}, {0.170, 1.140}, {0.080, -0.100}, d65},
    {"redwidegamut", {0.780308, 0.304253}, {0.121595, 1.493994}, {0.095612, -0.084589}, d65},
    {"v-gamut", {0.730, 0.280}, {0.165, 0.840}, {0.100, -0.030}, d65},
};

using Vector3 = std::array<double, 3>;

constexpr Matrix3 bradford{{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};

Vector3 times(const Matrix3 &matrix, const Vector3 &v)
{
    Vector3 result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = matrix[i][0] * v[0] + matrix[i][1] * v[1] + matrix[i][2] * v[2];
    return result;
}

Matrix3 times(const Matrix3 &a, const Matrix3 &b)
{
    Matrix3 result{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            result[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    return result;
}

Matrix3 scaledColumns(Matrix3 matrix, const Vector3 &scale)
{
    for (Vector3 &row : matrix)
        for (std::size_t j = 0; j < 3; ++j)
            row[j] *= scale[j];
    return matrix;
}

// By cofactors, whose signs come from the cyclic order of the indices.
Matrix3 inverse(const Matrix3 &m)
{
    Matrix3 result{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t i1 = (i + 1) % 3;
            const std::size_t i2 = (i + 2) % 3;
            const std::size_t j1 = (j + 1) % 3;
            const std::size_t j2 = (j + 2) % 3;
            result[j][i] = m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
        }
    const double determinant = m[0][0] * result[0][0] + m[0][1] * result[1][0] + m[0][2] * result[2][0];
    return scaledColumns(result, {1 / determinant, 1 / determinant, 1 / determinant});
}

// X, Y, Z of luminance 1.
Vector3 tristimulus(Chromaticity c) { return {c.x / c.y, 1, (1 - c.x - c.y) / c.y}; }

// The normalised primary matrix of SMPTE RP 177: R, G, B to X, Y, Z, so that 1, 1, 1 is the white.
Matrix3 toXyz(const Primaries &of)
{
    Matrix3 columns{};
    const Vector3 primary[] = {tristimulus(of.red), tristimulus(of.green), tristimulus(of.blue)};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            columns[i][j] = primary[j][i];
    return scaledColumns(columns, times(inverse(columns), tristimulus(of.white)));
}

Matrix3 adaptation(Chromaticity from, Chromaticity to)
{
    const Vector3 before = times(bradford, tristimulus(from));
    const Vector3 after = times(bradford, tristimulus(to));
    return times(scaledColumns(inverse(bradford), {after[0] / before[0], after[1] / before[1], after[2] / before[2]}),
                 bradford);
}

} // namespace

std::span<const Primaries> allPrimaries() { return primaries; }

const Primaries *findPrimaries(const std::string &name)
{
    const auto *found = std::ranges::find(primaries, name, &Primaries::name);
    return found == std::end(primaries) ? nullptr : found;
}

Matrix3 gamutMatrix(const Primaries &from, const Primaries &to)
{
    Matrix3 xyz = toXyz(from);
    if (from.white.x != to.white.x || from.white.y != to.white.y)
        xyz = times(adaptation(from.white, to.white), xyz);
    return times(inverse(toXyz(to)), xyz);
}

} // namespace host
