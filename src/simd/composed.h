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

// The two 16-bit halves of every lane exchanged.
inline u32s swapHalves(u32s x) { return as<u32s>(orderFours<1, 0, 3, 2>(as<u16s>(x))); }

} // namespace
