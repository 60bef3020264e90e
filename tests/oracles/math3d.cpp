#include "oracles/estimates.h"
#include "oracles/oracles.hpp"

#include <cmath>

namespace {

// --- Sums ----------------------------------------------------------------------------------------------------

template <class Real> struct Sum {
    static constexpr int64_t lanes = sizeof(Real) == sizeof(float) ? 4 : 2;
    Real lane[lanes] = {};
    int64_t done = 0;
};

// What Sum2 does from element s.done on.
template <class Real, class Term> Real finishSum2(Sum<Real> s, int64_t n, Term term)
{
    constexpr int64_t V = Sum<Real>::lanes;
    int64_t i = s.done;
    for (; n - i >= 2 * V; i += 2 * V)
        for (int64_t j = 0; j < V; ++j)
            s.lane[j] = s.lane[j] + (term(i + j) + term(i + V + j));
    for (; n - i >= V; i += V)
        for (int64_t j = 0; j < V; ++j)
            s.lane[j] = s.lane[j] + term(i + j);
    Real total;
    if constexpr (V == 4)
        total = (s.lane[1] + s.lane[3]) + (s.lane[0] + s.lane[2]);
    else
        total = s.lane[0] + s.lane[1];
    for (; i < n; ++i)
        total = total + term(i);
    return total;
}

template <class Real, class Term> Real sum2(int64_t n, Term term) { return finishSum2(Sum<Real>{}, n, term); }

template <class Real, class Term> Real sum4(int64_t n, Term term)
{
    constexpr int64_t V = Sum<Real>::lanes;
    Sum<Real> s;
    for (; n - s.done >= 4 * V; s.done += 4 * V)
        for (int64_t j = 0; j < V; ++j) {
            const int64_t i = s.done + j;
            s.lane[j] = s.lane[j] + ((term(i) + term(i + V)) + (term(i + 2 * V) + term(i + 3 * V)));
        }
    return finishSum2(s, n, term);
}

template <class Real> Real dot(const Real *a, const Real *b, int64_t n)
{
    return sum2<Real>(n, [=](int64_t i) { return a[i] * b[i]; });
}

float DotF32(const float *a, const float *b, uint32_t n) { return dot(a, b, n); }
double DotF64(const double *a, const double *b, uint32_t n) { return dot(a, b, n); }
float NormF32(const float *a, uint32_t n) { return std::sqrt(dot(a, a, n)); }
double NormF64(const double *a, uint32_t n) { return std::sqrt(dot(a, a, n)); }

template <class Real> Real distance(const Real *a, const Real *b, int64_t n)
{
    return std::sqrt(sum2<Real>(n, [=](int64_t i) { return (a[i] - b[i]) * (a[i] - b[i]); }));
}

float ArrayOp7(const float *a, const float *b, uint32_t n) { return distance(a, b, n); }
double ArrayOp8(const double *a, const double *b, uint32_t n) { return distance(a, b, n); }

template <class Real> Real mean(const Real *a, int32_t n)
{
    if (n < 1 || !a)
        return 0;
    return sum4<Real>(n, [=](int64_t i) { return a[i]; }) / static_cast<Real>(n);
}

float MeanF32(const float *a, int32_t n) { return mean(a, n); }
double MeanF64(const double *a, int32_t n) { return mean(a, n); }

template <class Real> Real covariance(const Real *a, Real meanA, const Real *b, Real meanB, int32_t n)
{
    if (n < 1 || !a || !b)
        return 0;
    return sum2<Real>(n, [=](int64_t i) { return (a[i] - meanA) * (b[i] - meanB); }) / static_cast<Real>(n);
}

float VarianceF32(const float *a, int32_t n, float mean) { return covariance(a, mean, a, mean, n); }
double VarianceF64(const double *a, int32_t n, double mean) { return covariance(a, mean, a, mean, n); }
float CovarianceF32(const float *a, float meanA, const float *b, float meanB, int32_t n)
{
    return covariance(a, meanA, b, meanB, n);
}
double CovarianceF64(const double *a, double meanA, const double *b, double meanB, int32_t n)
{
    return covariance(a, meanA, b, meanB, n);
}

// --- Element by element --------------------------------------------------------------------------------------

void ArrayOp4(float *out, const float *a, const float *b, uint32_t n, float s)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = a[i] + b[i] * s;
}

void ArrayOp5(double *out, const double *a, const double *b, uint32_t n, double s)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = a[i] + b[i] * s;
}

void ArrayPairOpF64(double *out, const double *a, const double *b, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] = a[i] * b[i];
}

void ReciprocalF64(double *out, const double *in, uint32_t n)
{
    for (uint32_t i = 0; i < n; ++i)
        out[i] =
            std::fabs(in[i]) >= 0x1p-23 ? static_cast<double>(estimatedReciprocal(static_cast<float>(in[i]))) : in[i];
}

// --- 3-vectors -----------------------------------------------------------------------------------------------

VcbVec3 *VecOp14(VcbVec3 *out, const VcbVec3 *a, float s)
{
    *out = {a->x * s, a->y * s, a->z * s};
    return out;
}

VcbVec3 *VecOp15(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b, float s)
{
    *out = {a->x + b->x * s, a->y + b->y * s, a->z + b->z * s};
    return out;
}

VcbVec3 *Vec3Add(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b)
{
    *out = {a->x + b->x, a->y + b->y, a->z};
    return out;
}

VcbVec3 *Vec3Sub(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b)
{
    *out = {a->x - b->x, a->y - b->y, a->z - b->z};
    return out;
}

float Vec3Dot(const VcbVec3 *a, const VcbVec3 *b) { return a->x * b->x + a->y * b->y + a->z * b->z; }
float Vec3LengthSquared(const VcbVec3 *a) { return (a->x * a->x + a->z * a->z) + a->y * a->y; }
float Vec3Length(const VcbVec3 *a) { return std::sqrt(Vec3LengthSquared(a)); }

float Vec3Distance(const VcbVec3 *a, const VcbVec3 *b)
{
    const VcbVec3 d = {a->x - b->x, a->y - b->y, a->z - b->z};
    return Vec3Length(&d);
}

VcbVec3 *Vec3Normalize(VcbVec3 *out, const VcbVec3 *a)
{
    const float s = Vec3LengthSquared(a);
    if (s > 0x1p-23f) {
        const float r = estimatedReciprocalRoot(s);
        *out = {a->x * r, a->y * r, a->z * r};
    } else {
        *out = *a;
    }
    return out;
}

VcbVec3 *Vec3Cross(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b)
{
    *out = {a->y * b->z - a->z * b->y, a->z * b->x - a->x * b->z, a->x * b->y - a->y * b->x};
    return out;
}

// --- Identity ------------------------------------------------------------------------------------------------

float *Mat4SetIdentity(float *m)
{
    for (int i = 0; i < 16; ++i)
        m[i] = i % 5 == 0 ? 1.0f : 0.0f;
    return m;
}

int32_t Mat4IsIdentity(const float *m)
{
    for (int i = 0; i < 16; ++i)
        if (!(m[i] == (i % 5 == 0 ? 1.0f : 0.0f)))
            return 0;
    return 1;
}

} // namespace

#define VELA_SUBTABLE_LIST "vela/slots/math3d_arrays.def"
extern constinit const Vcb3DMathArrays vela::test::ORACLE::math3dArrays = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_identity.def"
extern constinit const Vcb3DMathIdentity vela::test::ORACLE::math3dIdentity = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_cross.def"
extern constinit const Vcb3DMathCross vela::test::ORACLE::math3dCross = {
#include "frame/every_slot.h"
};
