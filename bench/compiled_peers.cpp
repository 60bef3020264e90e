// Compiled with PEERS, the name of the table, INSTRUCTIONS and the flags of these. Eigen is a name of its own in every
// build (-DEigen=...): the linker would keep one copy of its templates for all.

#include "compiled_peers.hpp"

#include <Eigen/Dense>

namespace vela::test {
namespace {

// --- Eigen ---------------------------------------------------------------------------------------------------

template <class Real> struct Arrays {
    using Row = Eigen::Map<const Eigen::Array<Real, Eigen::Dynamic, 1>>;
    static auto vector(const Real *a, std::ptrdiff_t n) { return Row(a, n).matrix(); }

    static Real dot(const Real *a, const Real *b, std::ptrdiff_t n) { return vector(a, n).dot(vector(b, n)); }
    static Real norm(const Real *a, std::ptrdiff_t n) { return vector(a, n).norm(); }
    static Real distance(const Real *a, const Real *b, std::ptrdiff_t n)
    {
        return (vector(a, n) - vector(b, n)).norm();
    }
    static Real mean(const Real *a, std::ptrdiff_t n) { return Row(a, n).mean(); }
    static Real variance(const Real *a, std::ptrdiff_t n, Real mean) { return (Row(a, n) - mean).square().mean(); }
    static void addScaled(Real *out, const Real *a, const Real *b, std::ptrdiff_t n, Real s)
    {
        Eigen::Map<Eigen::Array<Real, Eigen::Dynamic, 1>>(out, n) = Row(a, n) + Row(b, n) * s;
    }

    static constexpr EigenArrays<Real> all = {dot, norm, distance, mean, variance, addScaled};
};

using Matrix = Eigen::Matrix<float, 4, 4, Eigen::RowMajor>;

template <class T, int alignment> struct Of {
    static auto in(const float *from) { return Eigen::Map<const T, alignment>(from); }
    static auto out(float *to) { return Eigen::Map<T, alignment>(to); }
    static constexpr int size = T::SizeAtCompileTime;
};
using Matrices = Of<Matrix, Eigen::Aligned16>;
using Vectors4 = Of<Eigen::Vector4f, Eigen::Aligned16>;
using Vectors3 = Of<Eigen::Vector3f, Eigen::Unaligned>;

void transpose(float *m, const float *, const float *) { Matrices::out(m).transposeInPlace(); }
void multiply(float *out, const float *a, const float *b)
{
    const auto left = Matrices::in(a);
    Matrices::out(out).noalias() = left * Matrices::in(b);
}
void transform(float *out, const float *m, const float *v)
{
    const auto matrix = Matrices::in(m);
    Vectors4::out(out).noalias() = matrix * Vectors4::in(v);
}
void add(float *out, const float *a, const float *b) { Matrices::out(out) = Matrices::in(a) + Matrices::in(b); }
void cross(float *out, const float *a, const float *b) { Vectors3::out(out) = Vectors3::in(a).cross(Vectors3::in(b)); }
void normalize(float *out, const float *a, const float *) { Vectors3::out(out) = Vectors3::in(a).normalized(); }

template <auto operation, class Out, class A, class B>
void each(float *out, const float *a, const float *b, std::ptrdiff_t n)
{
    for (std::ptrdiff_t i = 0; i < n; ++i)
        operation(out + i * Out::size, a + i * A::size, b + i * B::size);
}

template <auto operation, class Out, class A, class B>
constexpr EigenOperation eigen = {operation, each<operation, Out, A, B>};

// --- Plain filters -------------------------------------------------------------------------------------------

void biquadDirect(double *y, const double *x, const double *c, std::ptrdiff_t n)
{
    for (std::ptrdiff_t i = 0; i < n; ++i)
        y[i] = c[2] * x[i] + c[1] * x[i - 1] + c[0] * x[i - 2] - c[3] * y[i - 1] - c[4] * y[i - 2];
}

void biquadTransposed(double *y, const double *x, const double *c, std::ptrdiff_t n)
{
    double s2 = c[0] * x[-1] - c[4] * y[-1];
    double s1 = c[1] * x[-1] - c[3] * y[-1] + c[0] * x[-2] - c[4] * y[-2];
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        const double in = x[i];
        const double out = c[2] * in + s1;
        s1 = c[1] * in - c[3] * out + s2;
        s2 = c[0] * in - c[4] * out;
        y[i] = out;
    }
}

constexpr int phases = 4;
constexpr int tapsOfPhase = 12;
constexpr int ahead = 5;
constexpr double scale = 1.0 / 32768;

void interpolate(double *out, const std::int16_t *x, const double *taps, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        for (int p = 0; p < phases; ++p) {
            double sum = 0;
            for (int j = 0; j < tapsOfPhase; ++j)
                sum += taps[tapsOfPhase * p + j] * x[k - ahead + j];
            out[phases * k + p] = sum * scale;
        }
    }
}

void interpolateByTaps(double *out, const std::int16_t *x, const double *taps, std::ptrdiff_t n)
{
    for (std::ptrdiff_t k = 0; k < n; ++k) {
        double sums[phases] = {};
        for (int j = 0; j < tapsOfPhase; ++j)
            for (int p = 0; p < phases; ++p)
                sums[p] += taps[phases * j + p] * x[k - ahead + j];
        for (int p = 0; p < phases; ++p)
            out[phases * k + p] = sums[p] * scale;
    }
}

} // namespace

extern const CompiledPeers PEERS;
const CompiledPeers PEERS = {
    .instructions = INSTRUCTIONS,
    .floats = Arrays<float>::all,
    .doubles = Arrays<double>::all,
    .transpose = eigen<transpose, Matrices, Matrices, Matrices>,
    .multiply = eigen<multiply, Matrices, Matrices, Matrices>,
    .transform = eigen<transform, Vectors4, Matrices, Vectors4>,
    .add = eigen<add, Matrices, Matrices, Matrices>,
    .cross = eigen<cross, Vectors3, Vectors3, Vectors3>,
    .normalize = eigen<normalize, Vectors3, Vectors3, Vectors3>,
    .biquadDirect = biquadDirect,
    .biquadTransposed = biquadTransposed,
    .interpolate = interpolate,
    .interpolateByTaps = interpolateByTaps,
};

} // namespace vela::test
