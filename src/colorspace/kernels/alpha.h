// Alpha: premultiplication, planes of alpha, pixels over a colour.
#pragma once

#include "colorspace/kernels/steps.h"

namespace {

// a * b / 255 or / 65535, to nearest.
template <int depth> VELA_FUSED inline u16s scaled(u16s a, u16s b)
{
    const u16s products = as<u16s>(as<i16s>(a) * as<i16s>(b));
    if constexpr (depth == 8) {
        return multiplyHigh(products + splat16(128), splat16(257)); // (x + (x >> 8)) >> 8
    } else {
        // x = a * b + 32768, then (x + (x >> 16)) >> 16: of the second sum only the carry out of its low word counts.
        const u16s low = products + splat16(32768);
        const u16s high = multiplyHigh(a, b) + shiftRight<15>(products);
        const i16s sign = splatI16(-32768);
        const i16s carry = greater(as<i16s>(high) ^ sign, as<i16s>(low + high) ^ sign); // -1
        return high - as<u16s>(carry);
    }
}
template <int depth> VELA_FUSED inline Floats scaled(Floats a, Floats b) { return {a.low * b.low, a.high * b.high}; }

// Steps of this file take pixels as they are.
template <class Source> struct OnPixels {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = List<>;
    using Block = Pixels<Sample<Source::depths[0]>>;

    VELA_FUSED static auto load(ConstLine line) { return Source::template load<u16s>(line); }
};

template <class Target, class Source> struct PremultiplyPlanes : OnPixels<Source> {
    using typename OnPixels<Source>::Block;

    VELA_FUSED Block operator()(Block x) const
    {
        constexpr int bits = Source::depths[0];
        return {{scaled<bits>(x.c[0], x.a), scaled<bits>(x.c[1], x.a), scaled<bits>(x.c[2], x.a)}, x.a};
    }
};

// Bytes: two to a word where they are. Alpha is multiplied by 255, which is 1.
template <class Target, class Source> struct PremultiplyBytes {
    using Samples = u8s;
    static constexpr int turns = 1;
    using Arguments = List<>;
    static constexpr int alphaAt = Source::at[3];

    VELA_FUSED static PixelWords load(ConstLine line) { return Source::loadWords(line[0]); }
    VELA_FUSED PixelWords operator()(PixelWords x) const
    {
        return {premultiplied(x.a), premultiplied(x.b), premultiplied(x.c), premultiplied(x.d)};
    }

private:
    VELA_FUSED static u32s premultiplied(u32s x)
    {
        static_assert(alphaAt == 0 || alphaAt == 3);
        const u16s alphas = spreadByte<alphaAt>(x);
        const u16s one = splat16(255);
        const u16s withOne = alphaAt == 0 ? pairEvens(one, alphas) : pairEvens(alphas, one);
        const u16s even = scaled<8>(as<u16s>(x & splat32(0x00FF00FF)), alphaAt == 0 ? withOne : alphas);
        const u16s odd = scaled<8>(shiftRight<8>(as<u16s>(x)), alphaAt == 0 ? alphas : withOne);
        return as<u32s>(even | shiftLeft<8>(odd));
    }
};

template <class Target, class Source>
using PremultiplyBy =
    Choose<Source::depths[0] == 8, PremultiplyBytes<Target, Source>, PremultiplyPlanes<Target, Source>>;
template <class Target, class Source> struct Premultiply : PremultiplyBy<Target, Source> {
};

// Division of colours by one alpha. With half a code added to the dividend, (largest * c + a / 2) / a is at least
// 0.5 / a from any whole number, so that one reciprocal serves all colours.

// Words, in double precision. What is too large is limited ahead of the conversion to integers; where a is 0 the result
// is masked.
struct DivideWords {
    u16s isNone;
    Pair<f64s> halfLow;
    Pair<f64s> halfHigh;
    Pair<f64s> low;
    Pair<f64s> high;

    VELA_FUSED static Pair<f64s> plusHalf(u32s x)
    {
        const Pair<f64s> y = toDouble(as<i32s>(x));
        return {y.low + splatF64(0.5), y.high + splatF64(0.5)};
    }
    VELA_FUSED static Pair<f64s> reciprocal(u32s x)
    {
        const Pair<f64s> y = toDouble(as<i32s>(x));
        return {splatF64(1) / y.low, splatF64(1) / y.high};
    }
    VELA_FUSED explicit DivideWords(u16s a)
        : isNone(equal(a, zero<u16s>())), halfLow(plusHalf(widenLow(shiftRight<1>(a)))),
          halfHigh(plusHalf(widenHigh(shiftRight<1>(a)))), low(reciprocal(widenLow(a))), high(reciprocal(widenHigh(a)))
    {
    }
    VELA_FUSED static i32s divide(u32s c, const Pair<f64s> &half, const Pair<f64s> &by)
    {
        const Pair<f64s> x = toDouble(as<i32s>(c));
        const f64s largest = splatF64(65535);
        return truncate(smaller((x.low * largest + half.low) * by.low, largest),
                        smaller((x.high * largest + half.high) * by.high, largest));
    }
    VELA_FUSED u16s operator()(u16s c) const
    {
        return without(narrowWords(divide(widenLow(c), halfLow, low), divide(widenHigh(c), halfHigh, high)), isNone);
    }
};
struct DivideFloats {
    Floats a;

    VELA_FUSED explicit DivideFloats(Floats alpha) : a(alpha) {}
    VELA_FUSED static f32s divide(f32s c, f32s by) { return without(c / by, atLeast(splatF32(1.1920929e-7f), by)); }
    VELA_FUSED Floats operator()(Floats c) const { return {divide(c.low, a.low), divide(c.high, a.high)}; }
};

template <class Target, class Source> struct UnpremultiplyPlanes : OnPixels<Source> {
    using typename OnPixels<Source>::Block;
    using Divide = Choose<Source::depths[0] == 16, DivideWords, DivideFloats>;

    VELA_FUSED Block operator()(Block x) const
    {
        const Divide divided(x.a);
        return {{divided(x.c[0]), divided(x.c[1]), divided(x.c[2])}, x.a};
    }
};

// Bytes, pixel by pixel where they are, as c * (255 / a) + (a / 2 + 0.5) / a. The reciprocal is an estimate and one
// step of Newton's; with all roundings the sum misses by less than 0.05 / a. What is too large is limited on the way to
// bytes. An alpha of 0 makes a NaN, which becomes the least integer, which is limited to 0.
template <class Target, class Source> struct UnpremultiplyBytes {
    using Samples = u8s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    VELA_FUSED static PixelWords load(ConstLine line) { return Source::loadWords(line[0]); }
    VELA_FUSED PixelWords operator()(PixelWords x) const
    {
        return {divided(x.a), divided(x.b), divided(x.c), divided(x.d)};
    }

private:
    static constexpr int alphaAt = Source::at[3];

    template <int byte> VELA_FUSED static i32s get(u32s x)
    {
        return as<i32s>(byte == 3 ? shiftRight<24>(x) : shiftRight<8 * byte>(x) & splat32(0xFF));
    }
    template <int byte> VELA_FUSED static i32s divided(u32s x, i32s alpha, f32s scale, f32s half)
    {
        return byte == alphaAt ? alpha : truncate(toFloat(get<byte>(x)) * scale + half);
    }
    VELA_FUSED static u32s divided(u32s x)
    {
        const i32s alpha = get<alphaAt>(x);
        const f32s a = toFloat(alpha);
        const f32s estimate = approximateReciprocal(a);
        const f32s reciprocal = estimate * (splatF32(2) - a * estimate);
        const f32s scale = splatF32(255) * reciprocal;
        const f32s half = (toFloat(shiftRight<1>(alpha)) + splatF32(0.5f)) * reciprocal;
        return narrowLanes(divided<0>(x, alpha, scale, half), divided<1>(x, alpha, scale, half),
                           divided<2>(x, alpha, scale, half), divided<3>(x, alpha, scale, half));
    }
};

template <class Target, class Source>
using UnpremultiplyBy =
    Choose<Source::depths[0] == 8, UnpremultiplyBytes<Target, Source>, UnpremultiplyPlanes<Target, Source>>;
template <class Target, class Source> struct Unpremultiply : UnpremultiplyBy<Target, Source> {
};

// --- Another alpha -------------------------------------------------------------------------------------------

// (Of bytes it is a Move from a layout without alpha.)
template <class Target, class Source> struct SetAlpha {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = typename Target::Elements;
    using Codes = Sample<Source::depths[0]>;
    Codes colours; // a mask
    Codes alpha;

    explicit SetAlpha(uint16_t value)
        : colours(as<u16s>(splatFours((int16_t)-1, 0))), alpha(as<u16s>(splatFours(0, (int16_t)value)))
    {
    }
    explicit SetAlpha(float value)
    {
        colours.low = colours.high = atLeast(splatFours(1.0f, -1.0f), zero<f32s>());
        alpha.low = alpha.high = splatFours(0.0f, value);
    }

    VELA_FUSED static PixelFours<Codes> load(ConstLine line) { return Source::loadFours(line); }
    VELA_FUSED PixelFours<Codes> operator()(PixelFours<Codes> x) const
    {
        return {replaced(x.a), replaced(x.b), replaced(x.c), replaced(x.d)};
    }

private:
    VELA_FUSED u16s replaced(u16s x) const { return (x & colours) | alpha; }
    VELA_FUSED Floats replaced(Floats x) const
    {
        return {(x.low & colours.low) | alpha.low, (x.high & colours.high) | alpha.high};
    }
};

template <class Target, class Source> struct ScaleAlpha : OnPixels<Source> {
    using typename OnPixels<Source>::Block;
    using Arguments = List<uint8_t>;
    u16s scale;

    explicit ScaleAlpha(uint8_t value) : scale(splat16(value)) {}
    VELA_FUSED Block operator()(Block x) const { return {{x.c[0], x.c[1], x.c[2]}, scaled<8>(x.a, scale)}; }
};

template <class Target, class Source> struct ExtractAlpha {
    using Samples = u8s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    VELA_FUSED static PixelWords load(ConstLine line) { return Source::loadWords(line[0]); }
    VELA_FUSED static i16s alphas(u32s low, u32s high)
    {
        return narrow(as<i32s>(shiftRight<8 * Source::at[3]>(low)), as<i32s>(shiftRight<8 * Source::at[3]>(high)));
    }
    VELA_FUSED Pixels<u8s> operator()(PixelWords x) const
    {
        static_assert(Source::at[3] == 3); // nothing above it
        const u8s a = narrow(alphas(x.a, x.b), alphas(x.c, x.d));
        return pixels(a, a, a, a);
    }
};

// Pixels, and a plane of alpha for them.
struct WordsAndAlpha {
    PixelWords words;
    u8s alpha;
};
struct PixelsAndAlpha {
    Pixels<u16s> pixels;
    u16s alpha;
};
template <class Layout> struct WithAlphaPlane : Layout {
    using Elements = List<uint8_t, uint8_t>;
    static constexpr RowShape rows[] = {Layout::rows[0], {1}};

    template <class> VELA_FUSED static PixelsAndAlpha load(ConstLine line)
    {
        return {Layout::template load<u16s>(line), Memory<uint8_t>::load<u16s>(line[1])};
    }
};

template <class Target, class Source> struct InsertAlpha {
    using Samples = u8s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    VELA_FUSED static WordsAndAlpha load(ConstLine line)
    {
        return {Source::loadWords(line[0]), Memory<uint8_t>::load<u8s>(line[1])};
    }
    VELA_FUSED PixelWords operator()(const WordsAndAlpha &x) const
    {
        static_assert(Source::at[3] == 3);
        const u32s colours = splat32(0x00FFFFFF);
        const u16s low = as<u16s>(interleaveLow(zero<u8s>(), x.alpha));
        const u16s high = as<u16s>(interleaveHigh(zero<u8s>(), x.alpha));
        const u16s none = zero<u16s>();
        return {(x.words.a & colours) | as<u32s>(interleaveLow(none, low)),
                (x.words.b & colours) | as<u32s>(interleaveHigh(none, low)),
                (x.words.c & colours) | as<u32s>(interleaveLow(none, high)),
                (x.words.d & colours) | as<u32s>(interleaveHigh(none, high))};
    }
};
template <class Target, class Source> struct MultiplyAlpha : OnPixels<Source> {
    VELA_FUSED Pixels<u16s> operator()(PixelsAndAlpha x) const
    {
        return {{x.pixels.c[0], x.pixels.c[1], x.pixels.c[2]}, scaled<8>(x.pixels.a, x.alpha)};
    }
};

// --- Over a colour -------------------------------------------------------------------------------------------

// The colour's bytes are in the order of the pixels.
template <class Source> struct Background {
    u16s c[3];

    explicit Background(uint32_t bytes)
    {
        for (int i = 0; i < 3; ++i)
            c[i] = splat16((uint16_t)((bytes >> 8 * Source::at[i]) & 0xFF));
    }
};

template <class Target, class Source> struct Flatten : OnPixels<Source> {
    using typename OnPixels<Source>::Block;
    using Arguments = List<uint32_t>;
    Background<Source> background;

    explicit Flatten(uint32_t colour) : background(colour) {}
    VELA_FUSED Block operator()(Block x) const
    {
        const u16s opaque = splat16(255);
        Block over;
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i) {
            const i16s parts = as<i16s>(x.c[i]) * as<i16s>(x.a) +
                               as<i16s>(background.c[i]) * as<i16s>(opaque - x.a); // at most 255 * 255
            over.c[i] = multiplyHigh(as<u16s>(parts) + splat16(128), splat16(257));
        }
        over.a = opaque;
        return over;
    }
};

template <class Target, class Source> struct FlattenPremultiplied : OnPixels<Source> {
    using typename OnPixels<Source>::Block;
    using Arguments = List<uint32_t>;
    Background<Source> background;

    explicit FlattenPremultiplied(uint32_t colour) : background(colour) {}
    VELA_FUSED Block operator()(Block x) const
    {
        const u16s opaque = splat16(255);
        Block over;
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i)
            over.c[i] = x.c[i] + scaled<8>(background.c[i], opaque - x.a); // the writer limits it
        over.a = opaque;
        return over;
    }
};

} // namespace
