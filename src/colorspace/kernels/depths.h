// Depths: samples in registers, and how they change from one depth to another. A block is as many pixels as a register
// has words; depth 32 means float, two registers for one of words.
//
// Bytes travel as words, too. Writers of bytes limit what they get to 0..255, so a step whose results are bytes need
// not; results of other depths come limited.
#pragma once

#include "colorspace/kernels/rows.h"

namespace {

using Floats = Pair<f32s>;

// Two registers for one: a block twice as long.
template <class Vector> struct Double {
    static constexpr int lanes = 2 * Vector::lanes;
    Vector low;
    Vector high;
};
template <class Vector> VELA_FUSED inline Double<Vector> average(Double<Vector> a, Double<Vector> b)
{
    return {average(a.low, b.low), average(a.high, b.high)};
}

template <int bits> struct SampleOf {
    using Type = u16s;
};
template <> struct SampleOf<32> {
    using Type = Floats;
};
template <int bits> using Sample = typename SampleOf<bits>::Type;

constexpr int largestCode(int bits) { return (1 << bits) - 1; }

// Codes of limited range: the top bits keep their meaning, nothing is rounded.
template <int from, int to> VELA_FUSED inline u16s videoDepth(u16s x)
{
    if constexpr (from < to)
        return shiftLeft<to - from>(x);
    else if constexpr (from > to)
        return shiftRight<from - to>(x);
    else
        return x;
}
template <int from, int to> VELA_FUSED inline auto videoDepth(u8s x)
{
    static_assert(from == 8);
    if constexpr (to == 8)
        return x;
    else
        return Double<u16s>{videoDepth<from, to>(widenLow(x)), videoDepth<from, to>(widenHigh(x))};
}
template <int from, int to, class Vector> VELA_FUSED inline auto videoDepth(Double<Vector> x)
{
    if constexpr (from == to)
        return x;
    else if constexpr (to == 8)
        return narrow(videoDepth<from, to>(x.low), videoDepth<from, to>(x.high));
    else
        return Double<Vector>{videoDepth<from, to>(x.low), videoDepth<from, to>(x.high)};
}

template <int bits> VELA_FUSED inline u16s limited(i16s x)
{
    if constexpr (bits != 8)
        x = smaller(larger(x, zero<i16s>()), splatI16((int16_t)largestCode(bits)));
    return as<u16s>(x);
}

VELA_FUSED inline Floats toFloats(u16s x) { return {toFloat(as<i32s>(widenLow(x))), toFloat(as<i32s>(widenHigh(x)))}; }

// The code of a float: rounded, ties down by way of the bias; NaN gives 0.
template <int bits> VELA_FUSED inline i32s toCode(f32s x)
{
    x = x + splatF32(0.49999988f);
    if constexpr (bits == 16)
        x = smaller(larger(x, zero<f32s>()), splatF32(65535));
    return truncate(x);
}
template <int bits> VELA_FUSED inline u16s toCodes(Floats x)
{
    const i32s low = toCode<bits>(x.low);
    const i32s high = toCode<bits>(x.high);
    if constexpr (bits == 16)
        return narrowWords(low, high);
    else
        return limited<bits>(narrow(low, high));
}

template <int from, int to> VELA_FUSED inline u16s fullDepthOfCodes(u16s x)
{
    if constexpr (from == to) {
        return x;
    } else if constexpr (to > from && to <= 2 * from) {
        return shiftLeft<to - from>(x) | shiftRight<2 * from - to>(x); // the bits, repeated
    } else if constexpr (to > from) {
        static_assert(largestCode(to) % largestCode(from) == 0);
        return as<u16s>(as<i16s>(x) * splatI16((int16_t)(largestCode(to) / largestCode(from))));
    } else if constexpr (to == 1) {
        return shiftRight<from - 1>(x);
    } else {
        return shiftRight<from - to>(x - shiftRight<to>(x) + splat16((uint16_t)(1 << (from - to - 1))));
    }
}

// Codes from black to white, and floats from 0 to 1: widening repeats the bits, narrowing inverts that.
template <int from, int to> VELA_FUSED inline Sample<to> fullDepth(Sample<from> x)
{
    if constexpr (from == 32 && to == 32) {
        return x;
    } else if constexpr (to == 32) {
        const f32s unit = splatF32((float)(1.0 / largestCode(from)));
        const Floats codes = toFloats(x);
        return {codes.low * unit, codes.high * unit};
    } else if constexpr (from == 32) {
        const f32s largest = splatF32((float)largestCode(to));
        return toCodes<to>({x.low * largest, x.high * largest});
    } else {
        return fullDepthOfCodes<from, to>(x);
    }
}

// Bytes and words, whole registers of both.
VELA_FUSED inline Double<u16s> fullDepthOfPlane(u8s x)
{
    return {as<u16s>(interleaveLow(x, x)), as<u16s>(interleaveHigh(x, x))}; // times 257
}
VELA_FUSED inline u8s fullDepthOfPlane(Double<u16s> x)
{
    return narrow(fullDepthOfCodes<16, 8>(x.low), fullDepthOfCodes<16, 8>(x.high));
}

// The same for pixels side by side, alpha of a depth of its own. Codes to codes need equal depths.
template <int from, int to, int fromAlpha, int toAlpha> VELA_FUSED inline Sample<to> fullDepthOfFours(Sample<from> x)
{
    if constexpr (from != 32 && to == 32) {
        const f32s unit = splatFours((float)(1.0 / largestCode(from)), (float)(1.0 / largestCode(fromAlpha)));
        const Floats codes = toFloats(x);
        return {codes.low * unit, codes.high * unit};
    } else if constexpr (from == 32 && to != 32 && to != toAlpha) {
        const f32s largest = splatFours((float)largestCode(to), (float)largestCode(toAlpha));
        const i16s codes = narrow(toCode<to>(x.low * largest), toCode<to>(x.high * largest));
        const i16s limit = splatFours((int16_t)largestCode(to), (int16_t)largestCode(toAlpha));
        return as<u16s>(smaller(larger(codes, zero<i16s>()), limit));
    } else {
        return fullDepth<from, to>(x);
    }
}

VELA_FUSED inline f32s clampToUnit(f32s x) { return smaller(larger(x, zero<f32s>()), splatF32(1)); }
VELA_FUSED inline Floats clampToUnit(Floats x) { return {clampToUnit(x.low), clampToUnit(x.high)}; }

} // namespace
