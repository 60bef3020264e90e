// Hue, saturation and lightness or value in planes: a hue in whole degrees, the others as bytes.
#pragma once

#include "colorspace/kernels/steps.h"

namespace {

struct HuePlanes : WholePixels {
    using Elements = List<int16_t, uint8_t, uint8_t>;
    static constexpr RowShape rows[] = {{2}, {1}, {1}};
    static constexpr int depths[] = {8, 8, 8, 0};

    template <class> VELA_FUSED static Pixels<u16s> load(ConstLine line)
    {
        const u16s hue = Memory<uint16_t>::load<u16s>(line[0]);
        return {{hue, Memory<uint8_t>::load<u16s>(line[1]), Memory<uint8_t>::load<u16s>(line[2])}, hue};
    }
    VELA_FUSED static void store(Line line, Pixels<u16s> x)
    {
        Memory<uint16_t>::store(line[0], x.c[0]);
        Memory<uint8_t>::store(line[1], x.c[1]);
        Memory<uint8_t>::store(line[2], x.c[2]);
    }
};

VELA_FUSED inline Floats toFloats(i16s x) { return {toFloat(widenLow(x)), toFloat(widenHigh(x))}; }

template <class Target, class Source> struct RgbToHsl {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    VELA_FUSED static Pixels<u16s> load(ConstLine line) { return Source::template load<u16s>(line); }

    // The sector's hue is offset + numerator * 60 / d.
    VELA_FUSED static i32s hue(f32s numerator, f32s d, f32s offset)
    {
        return truncate(numerator * (splatF32(60) / d) + offset + splatF32(0.49999988f));
    }
    VELA_FUSED static f32s saturation(f32s d, f32s span) { return d * splatF32(255) / span; }

    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        const i16s r = as<i16s>(x.c[0]);
        const i16s g = as<i16s>(x.c[1]);
        const i16s b = as<i16s>(x.c[2]);
        const i16s most = larger(larger(r, g), b);
        const i16s least = smaller(smaller(r, g), b);
        const i16s d = most - least;
        const i16s t = most + least;
        const u16s isGrey = equal(as<u16s>(d), zero<u16s>());

        const i16s isRed = as<i16s>(equal(as<u16s>(most), as<u16s>(r)));
        const i16s isGreen = as<i16s>(equal(as<u16s>(most), as<u16s>(g)));
        const i16s numerator = select(isRed, g - b, select(isGreen, b - r, r - g));
        const i16s offset = select(isRed, greater(b, g) & splatI16(360), select(isGreen, splatI16(120), splatI16(240)));

        const Floats difference = toFloats(d);
        const Floats over = toFloats(numerator);
        const Floats from = toFloats(offset);
        const Floats span = toFloats(smaller(t, splatI16(510) - t));
        const u16s h =
            as<u16s>(narrow(hue(over.low, difference.low, from.low), hue(over.high, difference.high, from.high)));
        const u16s s = toCodes<8>({saturation(difference.low, span.low), saturation(difference.high, span.high)});
        const u16s l = shiftRight<1>(as<u16s>(t) + splat16(1));
        return pixels(without(h, isGrey), without(s, isGrey), l, l);
    }
};

// How much of a primary a hue has, by its distance on the circle: all of it within 60 degrees, nothing from 120 on.
struct Weights {
    Floats c[3];

    VELA_FUSED static Floats weight(i16s distance)
    {
        const Floats x = toFloats(splatI16(120) - distance);
        const f32s perDegree = splatF32((float)(1.0 / 60.0));
        return clampToUnit(Floats{x.low * perDegree, x.high * perDegree});
    }
    VELA_FUSED explicit Weights(u16s hue)
    {
        const i16s h = smaller(larger(as<i16s>(hue), zero<i16s>()), splatI16(360));
        c[0] = weight(smaller(h, splatI16(360) - h));
        c[1] = weight(absolute(h - splatI16(120)));
        c[2] = weight(absolute(h - splatI16(240)));
    }
};

template <class Target, class Source> struct HsvToRgb {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = typename Alpha<Target, Source>::Arguments;
    Alpha<Target, Source> alpha;

    template <class... Values> explicit HsvToRgb(Values... values) : alpha(values...) {}

    VELA_FUSED static Pixels<u16s> load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED static f32s colour(f32s v, f32s s, f32s w)
    {
        const f32s one = splatF32(1);
        return v * (one - s * (one - w));
    }
    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        const Weights w(x.c[0]);
        const Floats s = fullDepth<8, 32>(x.c[1]);
        const Floats v = toFloats(x.c[2]);
        Pixels<u16s> rgb;
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i)
            rgb.c[i] = toCodes<8>({colour(v.low, s.low, w.c[i].low), colour(v.high, s.high, w.c[i].high)});
        rgb.a = alpha(x.c[0]);
        return rgb;
    }
};

template <class Target, class Source> struct HslToRgb {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = typename Alpha<Target, Source>::Arguments;
    Alpha<Target, Source> alpha;

    template <class... Values> explicit HslToRgb(Values... values) : alpha(values...) {}

    VELA_FUSED static Pixels<u16s> load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED static f32s chroma(f32s l, f32s s)
    {
        const f32s one = splatF32(1);
        return (one - magnitude((l + l) - one)) * s;
    }
    VELA_FUSED static f32s colour(f32s l, f32s c, f32s w) { return ((l - splatF32(0.5f) * c) + c * w) * splatF32(255); }
    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        const Weights w(x.c[0]);
        const Floats s = fullDepth<8, 32>(x.c[1]);
        const Floats l = fullDepth<8, 32>(x.c[2]);
        const Floats c = {chroma(l.low, s.low), chroma(l.high, s.high)};
        Pixels<u16s> rgb;
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i)
            rgb.c[i] = toCodes<8>({colour(l.low, c.low, w.c[i].low), colour(l.high, c.high, w.c[i].high)});
        rgb.a = alpha(x.c[0]);
        return rgb;
    }
};

} // namespace
