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

} // namespace
