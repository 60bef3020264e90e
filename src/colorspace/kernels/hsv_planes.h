// RGB to planes of hue, saturation and value, by the processor's approximate reciprocal. Its error decides the last
// bits, so neither a division nor a refined reciprocal can stand in for it.
#pragma once

#include "colorspace/kernels/hues.h"
#include "colorspace/kernels/kernel.h"

namespace {

template <class Target, class Source> struct RgbToHsv {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    VELA_FUSED static Pixels<u16s> load(ConstLine line) { return Source::template load<u16s>(line); }

    // Every component is the largest of some pixels, and its candidate holds there. Where two are, both do, and their
    // bits are merged: two sums near the same hue, which the reciprocal's error may have moved apart.
    VELA_FUSED static f32s hue(f32s r, f32s g, f32s b, f32s most, f32s least)
    {
        const f32s k = approximateReciprocal(most - least) * splatF32(60);
        const f32s turn = without(splatF32(360), atLeast(g, b));
        const f32s ofRed = ((g - b) * k + turn) & atLeast(r, most);
        const f32s ofGreen = ((b - r) * k + splatF32(120)) & atLeast(g, most);
        const f32s ofBlue = ((r - g) * k + splatF32(240)) & atLeast(b, most);
        return (ofRed | ofGreen) | ofBlue;
    }
    VELA_FUSED static f32s saturation(f32s most, f32s least)
    {
        return splatF32(255 + 0.49999988f) - least * approximateReciprocal(most) * splatF32(255);
    }

    // Greys have no hue and black has no saturation: there, infinity times 0 is a NaN, which truncates to the least
    // integer, and lower limits make that 0.
    VELA_FUSED static void convert(i32s &h, i32s &s, f32s r, f32s g, f32s b)
    {
        const f32s most = larger(larger(r, g), b);
        const f32s least = smaller(smaller(r, g), b);
        h = truncate(hue(r, g, b, most, least) + splatF32(0.49999988f));
        s = truncate(saturation(most, least));
    }
    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        const i16s v = larger(larger(as<i16s>(x.c[0]), as<i16s>(x.c[1])), as<i16s>(x.c[2]));
        const Floats r = toFloats(x.c[0]);
        const Floats g = toFloats(x.c[1]);
        const Floats b = toFloats(x.c[2]);
        Pair<i32s> h;
        Pair<i32s> s;
        convert(h.low, s.low, r.low, g.low, b.low);
        convert(h.high, s.high, r.high, g.high, b.high);
        const i16s hues = larger(narrow(h.low, h.high), zero<i16s>());
        return pixels(as<u16s>(hues), as<u16s>(narrow(s.low, s.high)), as<u16s>(v), as<u16s>(v));
    }
};

// Returns the end of the hues.
template <class Source, class Width>
int16_t *convertToHsv(int16_t *hue, uint8_t *saturation, uint8_t *value, const uint8_t *src, Width width)
{
    kernel<HuePlanes, Source, RgbToHsv, Width>(hue, saturation, value, src, width);
    return width > 0 ? hue + width : hue;
}

constexpr auto CscRgb24ToHsvPlanes = convertToHsv<Rgb24, int32_t>;
constexpr auto CscRgb24ToHsvPlanesB = convertToHsv<Bgr24, int32_t>;
constexpr auto CscRgb32ToHsvPlanes = convertToHsv<Rgba32, uint32_t>;
constexpr auto CscRgb32ToHsvPlanesB = convertToHsv<Bgra32, uint32_t>;

} // namespace
