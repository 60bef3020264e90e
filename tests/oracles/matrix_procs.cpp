#include "oracles/oracles.hpp"

#include <cmath>

namespace {

constexpr float threshold = 0x1p-23f;

// --- Matrices ------------------------------------------------------------------------------------------------

VcbMat4 *MatIdentity(VcbMat4 *m)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m->m[i][j] = i == j ? 1.0f : 0.0f;
    return m;
}

int32_t MatIsIdentity(const VcbMat4 *m)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (!((i == j ? 1.0f : 0.0f) - m->m[i][j] < threshold))
                return 0;
    return 1;
}

VcbMat4 *MatTranspose(VcbMat4 *m)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < i; ++j) {
            const float other = m->m[i][j];
            m->m[i][j] = m->m[j][i];
            m->m[j][i] = other;
        }
    }
    return m;
}

VcbMat4 *MatMultiply(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    VcbMat4 product;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            product.m[i][j] = (a->m[i][0] * b->m[0][j] + a->m[i][1] * b->m[1][j]) +
                              (a->m[i][2] * b->m[2][j] + a->m[i][3] * b->m[3][j]);
    *out = product;
    return out;
}

VcbVec4 *MatTransformVec(VcbVec4 *out, const VcbMat4 *m, const VcbVec4 *v)
{
    VcbVec4 transformed;
    for (int i = 0; i < 4; ++i)
        transformed.v[i] =
            (m->m[i][0] * v->v[0] + m->m[i][1] * v->v[1]) + (m->m[i][2] * v->v[2] + m->m[i][3] * v->v[3]);
    *out = transformed;
    return out;
}

VcbMat4 *MatAdd(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            out->m[i][j] = a->m[i][j] + b->m[i][j];
    return out;
}

VcbMat4 *MatSub(VcbMat4 *out, const VcbMat4 *a, const VcbMat4 *b)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            out->m[i][j] = a->m[i][j] - b->m[i][j];
    return out;
}

int32_t MatNearlyEqual(const VcbMat4 *a, const VcbMat4 *b)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (!(b->m[i][j] - a->m[i][j] < threshold))
                return 0;
    return 1;
}

VcbMat4 *MatScale(VcbMat4 *out, const VcbMat4 *a, float s)
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            out->m[i][j] = a->m[i][j] * s;
    return out;
}

float divisionFactor(float s) { return std::fabs(s) >= threshold ? 1 / s : s; }

VcbMat4 *MatDivide(VcbMat4 *out, const VcbMat4 *a, float s) { return MatScale(out, a, divisionFactor(s)); }

// --- Vectors -------------------------------------------------------------------------------------------------

float VecDot(const VcbVec4 *a, const VcbVec4 *b)
{
    float p[4];
    for (int i = 0; i < 4; ++i)
        p[i] = a->v[i] * b->v[i];
    return (p[0] + p[2]) + (p[1] + p[3]);
}

float VecLength(const VcbVec4 *a) { return std::sqrt(VecDot(a, a)); }

VcbVec4 *VecScale(VcbVec4 *out, const VcbVec4 *a, float s)
{
    for (int i = 0; i < 4; ++i)
        out->v[i] = a->v[i] * s;
    return out;
}

VcbVec4 *VecDivide(VcbVec4 *out, const VcbVec4 *a, float s) { return VecScale(out, a, divisionFactor(s)); }

VcbVec4 *VecAdd(VcbVec4 *out, const VcbVec4 *a, const VcbVec4 *b)
{
    for (int i = 0; i < 4; ++i)
        out->v[i] = a->v[i] + b->v[i];
    return out;
}

VcbVec4 *VecSub(VcbVec4 *out, const VcbVec4 *a, const VcbVec4 *b)
{
    for (int i = 0; i < 4; ++i)
        out->v[i] = a->v[i] - b->v[i];
    return out;
}

int32_t VecNearlyEqual(const VcbVec4 *a, const VcbVec4 *b)
{
    float d[4];
    for (int i = 0; i < 4; ++i)
        d[i] = std::fabs(a->v[i] - b->v[i]);
    return (d[0] + d[2]) + (d[1] + d[3]) > threshold ? 0 : 1;
}

} // namespace

#define VELA_SUBTABLE_LIST "vela/slots/matrix_procs.def"
extern constinit const VcbMatrixProcs vela::test::ORACLE::matrixProcs = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/vector_procs.def"
extern constinit const VcbVectorProcs vela::test::ORACLE::vectorProcs = {
#include "frame/every_slot.h"
};
