// Limited range to full range and back.
#pragma once

#include "colorspace/kernels/steps.h"

namespace {

// Bytes: b + (((v - a) * m + (1 << (s - 1))) >> s), and the writer limits that. Words: (v - a) * q + b, rounded.
struct RangeRule {
    int a;
    int b;
    int m;
    int s;
    float q;
};
constexpr RangeRule lumaToFull = {16, 0, 9539, 13, 65535.0f / 56064.0f};
constexpr RangeRule lumaToLimited = {0, 16, 14071, 14, 56064.0f / 65535.0f};
constexpr RangeRule chromaToFull = {128, 128, 9326, 13, 65535.0f / 57344.0f};
constexpr RangeRule chromaToLimited = {128, 128, 14392, 14, 57344.0f / 65535.0f};

template <int depth> VELA_FUSED inline u16s changeRange(u16s x, const RangeRule &rule)
{
    if constexpr (depth == 8) {
        // Shifted so that s is 16: the upper half of the product, and its rounding bit.
        const i16s scale = splatI16((int16_t)(1 << (16 - rule.s)));
        const i16s scaled = (as<i16s>(x) - splatI16((int16_t)rule.a)) * scale;
        const i16s m = splatI16((int16_t)rule.m);
        const i16s rounding = as<i16s>(shiftRight<15>(as<u16s>(scaled * m)));
        return as<u16s>(multiplyHigh(scaled, m) + rounding + splatI16((int16_t)rule.b));
    } else {
        const Floats values = toFloats(x);
        const f32s a = splatF32((float)(rule.a << 8));
        const f32s b = splatF32((float)(rule.b << 8));
        const f32s q = splatF32(rule.q);
        return toCodes<16>({(values.low - a) * q + b, (values.high - a) * q + b});
    }
}

// Components by the rule of luma; alpha is kept. Subsampled chroma by its own rule.
template <class Source, const RangeRule &luma_, const RangeRule &chroma_> struct ChangeRange {
    static constexpr int depth = Source::depths[0];
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    VELA_FUSED static Pixels<u16s> load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED u16s luma(u16s y) const { return changeRange<depth>(y, luma_); }
    VELA_FUSED u16s chroma(u16s pairs) const { return changeRange<depth>(pairs, chroma_); }
    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        return {{luma(x.c[0]), luma(x.c[1]), luma(x.c[2])}, x.a};
    }
};

template <class Target, class Source> struct ToFullRange : ChangeRange<Source, lumaToFull, chromaToFull> {
};
template <class Target, class Source> struct ToLimitedRange : ChangeRange<Source, lumaToLimited, chromaToLimited> {
};
template <class Target, class Source> struct ChromaToFullRange : ChangeRange<Source, chromaToFull, chromaToFull> {
};
template <class Target, class Source>
struct ChromaToLimitedRange : ChangeRange<Source, chromaToLimited, chromaToLimited> {
};

} // namespace
