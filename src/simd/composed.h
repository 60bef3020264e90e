// Verbs made of verbs, the same at every width.
#pragma once

namespace {

// Both registers of a WideBytes through the same step.
template <class Op> inline WideBytes both(WideBytes x, Op op) { return {op(x.first), op(x.second)}; }

inline WideBytes operator+(WideBytes a, WideBytes b) { return {a.first + b.first, a.second + b.second}; }
inline WideBytes operator-(WideBytes a, WideBytes b) { return {a.first - b.first, a.second - b.second}; }

// (x + rounding) >> bits, arithmetic.
template <int bits> inline WideBytes shiftRightRounded(WideBytes x)
{
    return both(x, [](i16s half) { return shiftRight<bits>(half + splatI16(1 << (bits - 1))); });
}

// Pairs as terms of a sum in lanes.
template <class Vector> inline Pair<Vector> operator+(Pair<Vector> a, Pair<Vector> b)
{
    return {a.low + b.low, a.high + b.high};
}
template <class Vector> inline Pair<Vector> keepFirst(Pair<Vector> x, ptrdiff_t n)
{
    return {keepFirst(x.low, n), keepFirst(x.high, n - Vector::lanes)};
}
template <class Vector> inline auto sumHalving(Pair<Vector> x) { return sumHalving(x.low + x.high); }

// A register's worth of floats in double precision; rounded once, when they are stored.
struct DoubledFloats {
    static constexpr int lanes = f32s::lanes;
    f64s low;
    f64s high;
};
inline DoubledFloats operator+(DoubledFloats a, DoubledFloats b) { return {a.low + b.low, a.high + b.high}; }
inline DoubledFloats operator*(DoubledFloats a, f64s b) { return {a.low * b, a.high * b}; }
// In halves from memory and to it: without shuffles.
template <> inline DoubledFloats load<DoubledFloats>(const void *from)
{
    return {loadAsDoubles((const float *)from), loadAsDoubles((const float *)from + f64s::lanes)};
}
template <> inline DoubledFloats loadEnds<DoubledFloats>(const void *from, ptrdiff_t n)
{
    const Pair<f64s> wide = toDouble(loadEnds<f32s>(from, n));
    return {wide.low, wide.high};
}
template <> inline DoubledFloats loadOne<DoubledFloats>(const void *from)
{
    const f64s one = toDouble(loadOne<f32s>(from)).low;
    return {one, one}; // two of the same cost what one does
}
inline void store(void *to, DoubledFloats x)
{
    storeAsFloats((float *)to, x.low);
    storeAsFloats((float *)to + f64s::lanes, x.high);
}
inline void storeEnds(void *to, DoubledFloats x, ptrdiff_t n) { storeEnds(to, toFloat(x.low, x.high), n); }
inline void storeOne(void *to, DoubledFloats x) { storeOne(to, toFloat(x.low, x.high)); }

// The two 16-bit halves of every lane exchanged.
inline u32s swapHalves(u32s x) { return as<u32s>(orderFours<1, 0, 3, 2>(as<u16s>(x))); }

} // namespace
