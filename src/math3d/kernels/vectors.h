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

// A component in lane 0. GCC 12 takes a float that it has computed into a vector by way of a shuffle or an integer
// register; one from memory is there.
inline __m128 component(const VcbVec3 *from, int i) { return _mm_set_ss(((const FloatAnywhere *)from)[i]); }

inline float length(__m128 x, __m128 y, __m128 z)
{
    const __m128 squares = _mm_add_ss(_mm_add_ss(_mm_mul_ss(x, x), _mm_mul_ss(z, z)), _mm_mul_ss(y, y));
    return _mm_cvtss_f32(_mm_sqrt_ss(squares));
}

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

float Vec3Length(const VcbVec3 *a) { return length(component(a, 0), component(a, 1), component(a, 2)); }
float Vec3LengthSquared(const VcbVec3 *a) { return lengthSquared(read(a)); }
float Vec3Distance(const VcbVec3 *a, const VcbVec3 *b)
{
    const auto difference = [=](int i) { return _mm_sub_ss(component(a, i), component(b, i)); };
    return length(difference(0), difference(1), difference(2));
}

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
