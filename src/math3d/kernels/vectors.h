// 3-vectors.
#pragma once

#include <vela/math3d.h>

namespace {

// A float at any address.
typedef float FloatAnywhere __attribute__((aligned(1)));

// All of a vector is read before anything is written: out may be an input.
inline VcbVec3 read(const VcbVec3 *from)
{
    const FloatAnywhere *components = (const FloatAnywhere *)from;
    return {components[0], components[1], components[2]};
}

inline VcbVec3 *write(VcbVec3 *to, VcbVec3 x)
{
    FloatAnywhere *components = (FloatAnywhere *)to;
    components[0] = x.x;
    components[1] = x.y;
    components[2] = x.z;
    return to;
}

inline VcbVec3 operator-(VcbVec3 a, VcbVec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline VcbVec3 operator*(VcbVec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline float lengthSquared(VcbVec3 a) { return (a.x * a.x + a.z * a.z) + a.y * a.y; }
// _mm_set_ss() would take GCC 12 by way of an integer register.
inline float length(VcbVec3 a) { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set1_ps(lengthSquared(a)))); }

VcbVec3 *VecOp14(VcbVec3 *out, const VcbVec3 *a, float s) { return write(out, read(a) * s); }

VcbVec3 *VecOp15(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b, float s)
{
    const VcbVec3 from = read(a);
    const VcbVec3 way = read(b) * s;
    return write(out, {from.x + way.x, from.y + way.y, from.z + way.z});
}

VcbVec3 *Vec3Add(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b)
{
    const VcbVec3 u = read(a);
    const VcbVec3 v = read(b);
    return write(out, {u.x + v.x, u.y + v.y, u.z});
}

VcbVec3 *Vec3Sub(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b) { return write(out, read(a) - read(b)); }

float Vec3Dot(const VcbVec3 *a, const VcbVec3 *b)
{
    const VcbVec3 u = read(a);
    const VcbVec3 v = read(b);
    return (u.x * v.x + u.y * v.y) + u.z * v.z;
}

float Vec3Length(const VcbVec3 *a) { return length(read(a)); }
float Vec3LengthSquared(const VcbVec3 *a) { return lengthSquared(read(a)); }
float Vec3Distance(const VcbVec3 *a, const VcbVec3 *b) { return length(read(a) - read(b)); }

VcbVec3 *Vec3Normalize(VcbVec3 *out, const VcbVec3 *a)
{
    const VcbVec3 v = read(a);
    const float s = lengthSquared(v);
    return write(out, s > 0x1p-23f ? v * _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set1_ps(s))) : v);
}

VcbVec3 *Vec3Cross(VcbVec3 *out, const VcbVec3 *a, const VcbVec3 *b)
{
    const VcbVec3 u = read(a);
    const VcbVec3 v = read(b);
    return write(out, {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x});
}

} // namespace
