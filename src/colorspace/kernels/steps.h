// The steps between a reader and a writer: depths, and matrices between YUV and RGB.
//
// A step takes whole pixels, or luma and the chroma pairs of a subsampled source, and makes whole pixels of them; or
// luma and pairs for a subsampled target. A matrix takes its source in the form that costs it least (load), and of that
// the even pixels, or the mean of those of two lines, for subsampled chroma.
#pragma once

#include "colorspace/kernels/layouts.h"

#include <vela/color_coefficients.h>

namespace {

// --- Alpha ---------------------------------------------------------------------------------------------------

enum class AlphaFrom { nowhere, source, argument, opaque };

template <class Target, class Source> constexpr AlphaFrom alphaFrom()
{
    constexpr int to = Target::depths[3];
    if (to == 0)
        return AlphaFrom::nowhere;
    if (Source::depths[3] != 0)
        return AlphaFrom::source;
    return to == 8 || to == 16 ? AlphaFrom::argument : AlphaFrom::opaque;
}

// What a target without alpha gets.
struct Anything {
    template <class Samples> VELA_FUSED operator Samples() const { return Samples(); }
};

template <class Target, class Source, AlphaFrom from = alphaFrom<Target, Source>()> struct Alpha {
    static constexpr int depth = Target::depths[3];
    using Arguments = List<>;

    template <class Samples> VELA_FUSED auto operator()(Samples carried) const
    {
        if constexpr (from == AlphaFrom::source && Source::depths[3] == depth)
            return carried;
        else if constexpr (from == AlphaFrom::source)
            return fullDepth<Source::depths[3], depth>(carried);
        else if constexpr (from == AlphaFrom::nowhere)
            return Anything();
        else if constexpr (depth == 32)
            return Floats{splatF32(1), splatF32(1)};
        else
            return splat16((uint16_t)largestCode(depth));
    }
};

template <class Target, class Source> struct Alpha<Target, Source, AlphaFrom::argument> {
    u16s alpha;
    using Arguments = List<Choose<Target::depths[3] == 8, uint8_t, uint16_t>>;

    explicit Alpha(uint16_t value) : alpha(splat16(value)) {}
    template <class Samples> VELA_FUSED auto operator()(Samples) const
    {
        if constexpr (Samples::lanes == u8s::lanes)
            return as<u8s>(alpha | shiftLeft<8>(alpha));
        else
            return alpha;
    }
};

// --- Depths --------------------------------------------------------------------------------------------------

// YUV to another depth, or only another layout.
template <class Target, class Source> struct Video {
    // Samples that pass unchanged.
    static constexpr bool passes = Target::depths[0] == Source::depths[0];
    // Between planes the block is whatever fills registers on both sides.
    static constexpr bool halvesPlanes()
    {
        if constexpr (Target::subsampled && !Source::subsampled)
            return Target::order == Chroma::apart && Source::lumaInPlane;
        return false;
    }
    static constexpr bool isPlanes =
        (Target::subsampled && Source::subsampled) || halvesPlanes() || (Target::oneComponent && Source::oneComponent);
    using OfPlanes =
        Choose<Source::inBytes, Choose<passes, Double<u8s>, Choose<Source::packed, Double<u16s>, u8s>>, Double<u16s>>;
    using Samples = Choose<isPlanes, OfPlanes, Choose<Target::inBytes && Source::inBytes, u8s, u16s>>;
    static constexpr int turns = isPlanes && isDouble<Samples> ? 1 : 2;
    using Arguments = typename Alpha<Target, Source>::Arguments;

    Alpha<Target, Source> alpha;

    template <class... Values> explicit Video(Values... values) : alpha(values...) {}

    VELA_FUSED static auto depth(Samples x) { return videoDepth<Source::depths[0], Target::depths[0]>(x); }
    VELA_FUSED static auto load(ConstLine line) { return Source::template load<Samples>(line); }
    VELA_FUSED auto operator()(Pixels<Samples> x) const
    {
        return Pixels<decltype(depth(x.c[0]))>{{depth(x.c[0]), depth(x.c[1]), depth(x.c[2])}, alpha(x.a)};
    }
    VELA_FUSED auto operator()(Samples y, ChromaPairs<Samples> c) const
    {
        return (*this)(pixels(y, pairEvens(c.even, c.odd), pairOdds(c.even, c.odd), y));
    }
    VELA_FUSED auto luma(Samples y) const { return depth(y); }
    VELA_FUSED auto luma(const Pixels<Samples> &x) const { return depth(x.c[0]); }
    static constexpr Chroma evensOrder = halvesPlanes() ? Chroma::apart : Chroma::uv;
    VELA_FUSED static Samples evens(const Pixels<Samples> &x)
    {
        if constexpr (halvesPlanes())
            return {::evens(x.c[1].low, x.c[1].high), ::evens(x.c[2].low, x.c[2].high)};
        else
            return pairEvens(x.c[1], x.c[2]);
    }
    VELA_FUSED static Samples meanOfEvens(const Pixels<Samples> &a, const Pixels<Samples> &b)
    {
        return average(evens(a), evens(b));
    }
    VELA_FUSED auto chroma(Samples pairs) const { return depth(pairs); }
};

// RGB, grey, alpha to another depth, floats among them: by component.
template <class Target, class Source> struct FullByPlanes {
    static constexpr bool isPlane = Target::oneComponent && Source::oneComponent;
    static constexpr bool isBytesAndWords = isPlane && Source::depths[0] + Target::depths[0] == 8 + 16;
    using Samples = Choose<isBytesAndWords, Choose<Source::inBytes, u8s, Double<u16s>>, u16s>;
    static constexpr int turns = isBytesAndWords ? 2 : isPlane ? 4 : 1;
    using Arguments = typename Alpha<Target, Source>::Arguments;

    Alpha<Target, Source> alpha;

    template <class... Values> explicit FullByPlanes(Values... values) : alpha(values...) {}

    template <int i, class Codes> VELA_FUSED static auto depth(Codes x)
    {
        if constexpr (isBytesAndWords)
            return fullDepthOfPlane(x);
        else
            return fullDepth<Source::depths[i], Target::depths[i]>(x);
    }
    VELA_FUSED static auto load(ConstLine line) { return Source::template load<Samples>(line); }
    template <class Codes> VELA_FUSED auto operator()(Pixels<Codes> x) const
    {
        return Pixels<decltype(depth<0>(x.c[0]))>{{depth<0>(x.c[0]), depth<1>(x.c[1]), depth<2>(x.c[2])}, alpha(x.a)};
    }
};

// By pixel, where a step treats components alike: nothing needs to be taken apart and joined again.
template <class Target, class Source> struct FullByFours {
    static constexpr int from = Source::depths[0];
    static constexpr int to = Target::depths[0];
    static constexpr AlphaFrom alphaSource = alphaFrom<Target, Source>();
    static constexpr bool addsAlpha = alphaSource == AlphaFrom::argument || alphaSource == AlphaFrom::opaque;
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = typename Alpha<Target, Source>::Arguments;

    Sample<to> alpha; // zeros at the other components

    explicit FullByFours(uint16_t value = 0xFFFF)
    {
        if constexpr (to == 32)
            alpha = {splatFours(0.0f, 1.0f), splatFours(0.0f, 1.0f)};
        else
            alpha = as<u16s>(splatFours(0, (int16_t)(Target::depths[3] == 2 ? 3 : value)));
    }

    VELA_FUSED static auto load(ConstLine line) { return Source::loadFours(line); }
    template <class Codes> VELA_FUSED PixelFours<Sample<to>> operator()(PixelFours<Codes> x) const
    {
        return {depth(x.a), depth(x.b), depth(x.c), depth(x.d)};
    }

private:
    static constexpr int alphaOr(int depth, int other) { return depth ? depth : other; }
    VELA_FUSED Sample<to> depth(Sample<from> x) const
    {
        const Sample<to> y =
            fullDepthOfFours<from, to, alphaOr(Source::depths[3], from), alphaOr(Target::depths[3], to)>(x);
        if constexpr (!addsAlpha)
            return y;
        else if constexpr (to == 32)
            return {y.low | alpha.low, y.high | alpha.high};
        else
            return y | alpha;
    }
};

template <class Target, class Source> constexpr bool fullByFours()
{
    constexpr bool isFloat = Target::depths[0] == 32 || Source::depths[0] == 32;
    constexpr bool isUniform = (Target::depths[3] == 0 || Target::depths[3] == Target::depths[0]) &&
                               (Source::depths[3] == 0 || Source::depths[3] == Source::depths[0]);
    return Target::inFours && Source::inFours && (isFloat || isUniform);
}
template <class Target, class Source>
using FullBy = Choose<fullByFours<Target, Source>(), FullByFours<Target, Source>, FullByPlanes<Target, Source>>;
template <class Target, class Source> struct Full : FullBy<Target, Source> {
    using Base = FullBy<Target, Source>;
    using Base::Base;
};

// Floats limited to 0..1, alpha too.
template <class Target, class Source> struct Clamp {
    using Samples = u16s;
    static constexpr int turns = 2;
    using Arguments = List<>;

    VELA_FUSED static Pixels<Floats> load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED Pixels<Floats> operator()(Pixels<Floats> x) const
    {
        return {{clampToUnit(x.c[0]), clampToUnit(x.c[1]), clampToUnit(x.c[2])}, clampToUnit(x.a)};
    }
};

// Pixels in words of 32 bits to another order of their bytes or fields.
template <class Target, class Source> struct Move {
    using Samples = u8s; // four registers of words
    static constexpr int turns = 1;
    using Arguments = typename Alpha<Target, Source>::Arguments;

    u32s alpha;

    Move() : alpha(splat32(Target::depths[3] == 2 ? 0xC0000000 : 0)) {}
    explicit Move(uint8_t value) : alpha(splat32((uint32_t)value << 8 * Target::at[3])) {}

    VELA_FUSED static PixelWords load(ConstLine line)
    {
        return {Source::loadWords(line[0], 0), Source::loadWords(line[0], 1), Source::loadWords(line[0], 2),
                Source::loadWords(line[0], 3)};
    }
    VELA_FUSED PixelWords operator()(PixelWords x) const { return {moved(x.a), moved(x.b), moved(x.c), moved(x.d)}; }

private:
    static constexpr bool addsAlpha = Target::depths[3] != 0 && Source::depths[3] == 0;
    static constexpr bool isBytes = Target::depths[0] == 8;

    // The byte of the source that goes to place `to`; the bytes that belong to no component are anything, or 0 where
    // alpha is added.
    static constexpr int byteFor(int to)
    {
        for (int i = 0; i < 4; ++i)
            if (Target::at[i] == to)
                return Source::at[i] < 0 ? 3 : Source::at[i];
        return to;
    }
    // The bits of the fields that move as far as component i does, at their new places; none if one before i does.
    static constexpr int distance(int i) { return Target::at[i] - Source::at[i]; }
    static constexpr bool moves(int i) { return Target::at[i] >= 0 && Source::at[i] >= 0; }
    static constexpr uint32_t fieldsAlong(int i)
    {
        uint32_t mask = 0;
        for (int k = 0; k < 4; ++k) {
            if (!moves(i) || !moves(k) || distance(k) != distance(i))
                continue;
            if (k < i)
                return 0;
            mask |= (k == 3 ? 3u : 0x3FFu) << Target::at[k];
        }
        return mask;
    }
    template <int i> VELA_FUSED static u32s fields(u32s x)
    {
        if constexpr (fieldsAlong(i) == 0)
            return zero<u32s>();
        else if constexpr (distance(i) < 0)
            return shiftRight<-distance(i)>(x) & splat32(fieldsAlong(i));
        else
            return shiftLeft<distance(i)>(x) & splat32(fieldsAlong(i));
    }
    VELA_FUSED u32s moved(u32s x) const
    {
        u32s y;
        if constexpr (isBytes)
            y = orderBytes<byteFor(0), byteFor(1), byteFor(2), byteFor(3)>(x);
        else
            y = fields<0>(x) | fields<1>(x) | fields<2>(x) | fields<3>(x);
        if constexpr (addsAlpha && Source::rows[0].unit == 4 && isBytes)
            y = without(y, splat32(0xFFu << 8 * Target::at[3]));
        if constexpr (addsAlpha)
            y = y | alpha;
        return y;
    }
};

// --- Integer matrices ----------------------------------------------------------------------------------------

// Every lane pair the words `even`, `odd`.
inline i16s splatPair(int even, int odd)
{
    return as<i16s>(splat32((uint32_t)(uint16_t)even | (uint32_t)(uint16_t)odd << 16));
}

// A block read from any address, its offsets worked into the biases: modulo 2^32, in which the sums are exact.
template <class Block> struct IntegerRows {
    Block block;
    i32s bias[3];
    ShiftCount shift;

    explicit IntegerRows(const Block *coef)
    {
        memcpy(&block, coef, sizeof(block));
        for (int row = 0; row < 3; ++row) {
            uint32_t sum = (uint32_t)block.qBias[row];
            for (int i = 0; i < 3; ++i)
                sum -= (uint32_t)(block.q[row][i] * block.qOff[i]);
            bias[row] = splatI32((int32_t)sum);
        }
        shift = shiftCount(block.qShift);
    }
};

template <class Target, class Source> struct IntegerToRgb {
    static constexpr int from = Source::depths[0];
    static constexpr int to = Target::depths[0];
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = Join<List<const CscYuvToRgb *>, typename Alpha<Target, Source>::Arguments>;

    // The words of luma are multiplied in pairs, too: one of them by 0.
    i16s chroma[3];
    i16s evenLuma[3];
    i16s oddLuma[3];
    i32s bias[3];
    ShiftCount shift;
    Alpha<Target, Source> alpha;

    template <class... Values> explicit IntegerToRgb(const CscYuvToRgb *coef, Values... values) : alpha(values...)
    {
        const IntegerRows<CscYuvToRgb> rows(coef);
        for (int row = 0; row < 3; ++row) {
            chroma[row] = splatPair(rows.block.q[row][1], rows.block.q[row][2]);
            evenLuma[row] = splatPair(rows.block.q[row][0], 0);
            oddLuma[row] = splatPair(0, rows.block.q[row][0]);
            bias[row] = rows.bias[row];
        }
        shift = rows.shift;
    }

    // 16 bits would not fit signed words.
    VELA_FUSED static i16s operands(u16s x) { return as<i16s>(videoDepth<from, (from < 14 ? from : 14)>(x)); }

    VELA_FUSED static auto load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED Pixels<u16s> operator()(u16s luma, ChromaPairs<u16s> c, u16s carriedAlpha) const
    {
        const i16s y = operands(luma);
        const i16s even = operands(c.even);
        const i16s odd = operands(c.odd);
        Pixels<u16s> rgb;
#pragma GCC unroll 3
        for (int row = 0; row < 3; ++row) {
            const i32s evens = multiplyAddPairs(even, chroma[row]) + multiplyAddPairs(y, evenLuma[row]) + bias[row];
            const i32s odds = multiplyAddPairs(odd, chroma[row]) + multiplyAddPairs(y, oddLuma[row]) + bias[row];
            rgb.c[row] = limited<to>(narrowPairs(shiftRight(evens, shift), shiftRight(odds, shift)));
        }
        rgb.a = alpha(carriedAlpha);
        return rgb;
    }
    VELA_FUSED Pixels<u16s> operator()(u16s luma, ChromaPairs<u16s> c) const { return (*this)(luma, c, luma); }
    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        return (*this)(x.c[0], {pairEvens(x.c[1], x.c[2]), pairOdds(x.c[1], x.c[2])}, x.a);
    }
};

// The same for blocks that any block but a hand-made one allows: luma has one weight and one bias in all rows, and
// nothing overflows when samples are scaled up until results sit in the upper halves of the sums. A quarter less work.
template <class Target, class Source> struct UniformToRgb {
    static constexpr int from = Source::depths[0];
    static constexpr int to = Target::depths[0];
    static constexpr int codeBits = from < 14 ? from : 14;
    static constexpr int shift = 13 + codeBits - to;
    static constexpr int up = shift < 16 ? 16 - shift : 0; // of the samples
    static constexpr int down = shift - 16 + up;           // of the upper halves
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = typename IntegerToRgb<Target, Source>::Arguments;

    i16s chroma[3];
    i16s evenLuma;
    i16s oddLuma;
    i16s centre;
    i32s bias;
    Alpha<Target, Source> alpha;

    static int64_t magnitude(int x) { return x < 0 ? -x : x; }
    template <class... Values> static bool fits(const CscYuvToRgb *coef, Values...)
    {
        CscYuvToRgb block;
        memcpy(&block, coef, sizeof(block));
        const int most = largestCode(codeBits);
        bool isUniform = block.qShift == shift;
        for (int i = 0; i < 3; ++i)
            isUniform = isUniform && block.qOff[i] >= 0 && block.qOff[i] <= most;
        for (int row = 0; row < 3; ++row) {
            const int64_t weights =
                magnitude(block.q[row][0]) + magnitude(block.q[row][1]) + magnitude(block.q[row][2]);
            isUniform = isUniform && block.q[row][0] == block.q[0][0] && block.qBias[row] == block.qBias[0] &&
                        2 * weights * most + magnitude(block.qBias[row]) < INT32_MAX >> up;
        }
        return isUniform;
    }
    template <class... Values> explicit UniformToRgb(const CscYuvToRgb *coef, Values... values) : alpha(values...)
    {
        CscYuvToRgb block;
        memcpy(&block, coef, sizeof(block));
        for (int row = 0; row < 3; ++row)
            chroma[row] = splatPair(block.q[row][1], block.q[row][2]);
        evenLuma = splatPair(block.q[0][0], 0);
        oddLuma = splatPair(0, block.q[0][0]);
        centre = splatPair(block.qOff[1], block.qOff[2]);
        bias = splatI32((block.qBias[0] - block.q[0][0] * block.qOff[0]) * (1 << up));
    }

    VELA_FUSED static i16s codes(u16s x) { return as<i16s>(videoDepth<from, codeBits>(x)); }
    VELA_FUSED static auto load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED Pixels<u16s> operator()(u16s luma, ChromaPairs<u16s> c, u16s carriedAlpha) const
    {
        const i16s y = shiftLeft<up>(codes(luma));
        const i16s even = shiftLeft<up>(codes(c.even) - centre);
        const i16s odd = shiftLeft<up>(codes(c.odd) - centre);
        const i32s evenY = multiplyAddPairs(y, evenLuma) + bias;
        const i32s oddY = multiplyAddPairs(y, oddLuma) + bias;
        Pixels<u16s> rgb;
#pragma GCC unroll 3
        for (int row = 0; row < 3; ++row)
            rgb.c[row] = limited<to>(shiftRight<down>(
                highPairs(multiplyAddPairs(even, chroma[row]) + evenY, multiplyAddPairs(odd, chroma[row]) + oddY)));
        rgb.a = alpha(carriedAlpha);
        return rgb;
    }
    VELA_FUSED Pixels<u16s> operator()(u16s luma, ChromaPairs<u16s> c) const { return (*this)(luma, c, luma); }
    VELA_FUSED Pixels<u16s> operator()(Pixels<u16s> x) const
    {
        return (*this)(x.c[0], {pairEvens(x.c[1], x.c[2]), pairOdds(x.c[1], x.c[2])}, x.a);
    }
};

template <class Target, class Source> struct IntegerToYuv {
    static constexpr int to = Target::depths[0];
    // Bytes of whole pixels go in blocks of bytes.
    static constexpr bool inBytes = to == 8 && Source::inBytes && Source::inWords && Target::inBytes;
    using Samples = Choose<inBytes, u8s, u16s>;
    static constexpr int turns = 1;
    using Arguments = Join<List<const CscRgbToYuv *>, typename Alpha<Target, Source>::Arguments>;

    i16s outer[3];
    i16s middle[3];
    i32s bias[3];
    ShiftCount shift;
    Alpha<Target, Source> alpha;

    template <class... Values> explicit IntegerToYuv(const CscRgbToYuv *coef, Values... values) : alpha(values...)
    {
        const IntegerRows<CscRgbToYuv> rows(coef);
        for (int row = 0; row < 3; ++row) {
            int16_t atPlace[4] = {};
            for (int i = 0; i < 3; ++i)
                atPlace[Source::placeOf(i)] = rows.block.q[row][i];
            outer[row] = splatPair(atPlace[0], atPlace[2]);
            middle[row] = splatPair(atPlace[1], atPlace[3]);
            bias[row] = rows.bias[row];
        }
        shift = rows.shift;
    }

    // Registers of pixels as the source has them.
    static constexpr int parts = inBytes ? 4 : 2;
    using Raw = typename Source::Raw;
    struct Form {
        Raw part[parts];
        Samples alpha;
    };
    VELA_FUSED static Form load(ConstLine line)
    {
        Form form;
#pragma GCC unroll 4
        for (int i = 0; i < parts; ++i)
            form.part[i] = Source::loadRaw(line, i);
        if constexpr (alphaFrom<Target, Source>() == AlphaFrom::source)
            form.alpha = Source::template load<Samples>(line).a;
        return form;
    }

    template <int row> VELA_FUSED i32s sum(Raw raw) const
    {
        const Terms terms = Source::termsOf(raw);
        const i32s products = multiplyAddPairs(terms.outer, outer[row]) + multiplyAddPairs(terms.middle, middle[row]);
        return shiftRight(products + bias[row], shift);
    }
    template <int row> VELA_FUSED Samples component(const Form &x) const
    {
        if constexpr (inBytes)
            return narrowToBytes(sum<row>(x.part[0]), sum<row>(x.part[1]), sum<row>(x.part[2]), sum<row>(x.part[3]));
        else if constexpr (to == 16)
            return narrowWords(sum<row>(x.part[0]), sum<row>(x.part[1]));
        else
            return limited<to>(narrow(sum<row>(x.part[0]), sum<row>(x.part[1])));
    }
    VELA_FUSED Samples luma(const Form &form) const { return component<0>(form); }
    VELA_FUSED Pixels<Samples> operator()(const Form &form) const
    {
        return {{component<0>(form), component<1>(form), component<2>(form)}, alpha(form.alpha)};
    }

    struct Evens {
        Raw part[parts / 2];
    };
    VELA_FUSED static Evens evens(const Form &form)
    {
        Evens result;
#pragma GCC unroll 2
        for (int i = 0; i < parts / 2; ++i)
            result.part[i] = ::evens(form.part[2 * i], form.part[2 * i + 1]);
        return result;
    }
    VELA_FUSED static Evens meanOfEvens(const Form &a, const Form &b)
    {
        Form form;
#pragma GCC unroll 4
        for (int i = 0; i < parts; ++i)
            form.part[i] = mean(a.part[i], b.part[i]);
        return evens(form);
    }
    VELA_FUSED Samples chroma(const Evens &x) const
    {
        if constexpr (inBytes)
            return narrow(narrowPairs(sum<1>(x.part[0]), sum<2>(x.part[0])),
                          narrowPairs(sum<1>(x.part[1]), sum<2>(x.part[1])));
        else if constexpr (to == 16)
            return narrowPairsUnsigned(sum<1>(x.part[0]), sum<2>(x.part[0]));
        else
            return limited<to>(narrowPairs(sum<1>(x.part[0]), sum<2>(x.part[0])));
    }
};

// --- Float matrices ------------------------------------------------------------------------------------------

struct FloatRows {
    f32s f[3][3];
    f32s off[3];
    f32s bias[3];

    template <class Block> explicit FloatRows(const Block *coef)
    {
        Block block;
        memcpy(&block, coef, sizeof(block));
        for (int row = 0; row < 3; ++row) {
            for (int i = 0; i < 3; ++i)
                f[row][i] = splatF32(block.f[row][i]);
            off[row] = splatF32(block.fOff[row]);
            bias[row] = splatF32(block.fBias[row]);
        }
    }
    template <int row> VELA_FUSED f32s operator()(const f32s (&x)[3]) const
    {
        return ((f[row][0] * x[0] + f[row][1] * x[1]) + f[row][2] * x[2]) + bias[row];
    }
};

template <class Target, class Source> struct FloatToRgb {
    static constexpr int to = Target::depths[0];
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = Join<List<const CscYuvToRgb *>, typename Alpha<Target, Source>::Arguments>;

    FloatRows rows;
    Alpha<Target, Source> alpha;

    template <class... Values>
    explicit FloatToRgb(const CscYuvToRgb *coef, Values... values) : rows(coef), alpha(values...)
    {
    }

    VELA_FUSED static auto load(ConstLine line) { return Source::template load<u16s>(line); }
    VELA_FUSED Pixels<Sample<to>> operator()(Pixels<u16s> x) const
    {
        f32s low[3];
        f32s high[3];
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i) {
            const Floats codes = toFloats(x.c[i]);
            low[i] = codes.low - rows.off[i];
            high[i] = codes.high - rows.off[i];
        }
        return {{store<0>(low, high), store<1>(low, high), store<2>(low, high)}, alpha(x.a)};
    }
    VELA_FUSED Pixels<Sample<to>> operator()(u16s y, ChromaPairs<u16s> c) const
    {
        return (*this)(pixels(y, pairEvens(c.even, c.odd), pairOdds(c.even, c.odd), y));
    }

private:
    template <int row> VELA_FUSED Sample<to> store(const f32s (&low)[3], const f32s (&high)[3]) const
    {
        const Floats x = {rows.operator()<row>(low), rows.operator()<row>(high)};
        if constexpr (to == 32)
            return clampToUnit(x);
        else
            return toCodes<to>(x);
    }
};

template <class Target, class Source> struct FloatToYuv {
    static constexpr int from = Source::depths[0];
    static constexpr int to = Target::depths[0];
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = Join<List<const CscRgbToYuv *>, typename Alpha<Target, Source>::Arguments>;

    FloatRows rows;
    Alpha<Target, Source> alpha;

    template <class... Values>
    explicit FloatToYuv(const CscRgbToYuv *coef, Values... values) : rows(coef), alpha(values...)
    {
    }

    using Form = Pixels<Sample<from>>;
    VELA_FUSED static Form load(ConstLine line) { return Source::template load<u16s>(line); }

    VELA_FUSED static Floats valuesOf(Floats x) { return x; }
    VELA_FUSED static Floats valuesOf(u16s codes) { return toFloats(codes); }
    template <int row> VELA_FUSED Floats component(const Form &x) const
    {
        f32s low[3];
        f32s high[3];
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i) {
            const Floats values = valuesOf(x.c[i]);
            low[i] = values.low - rows.off[i];
            high[i] = values.high - rows.off[i];
        }
        return {rows.operator()<row>(low), rows.operator()<row>(high)};
    }
    VELA_FUSED Sample<to> luma(const Form &x) const
    {
        if constexpr (to == 32)
            return component<0>(x); // as it is: no limits
        else
            return toCodes<to>(component<0>(x));
    }
    VELA_FUSED Pixels<u16s> operator()(const Form &x) const
    {
        return {{toCodes<to>(component<0>(x)), toCodes<to>(component<1>(x)), toCodes<to>(component<2>(x))}, alpha(x.a)};
    }

    // Every second pixel, in the lanes of a register of floats: still codes, until the mean has been taken.
    struct Evens {
        u32s codes[3];
        f32s values[3];
    };
    VELA_FUSED static Evens evens(const Form &x)
    {
        Evens result;
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i) {
            if constexpr (from == 32)
                result.values[i] = as<f32s>(::evens(as<u32s>(x.c[i].low), as<u32s>(x.c[i].high)));
            else
                result.codes[i] = as<u32s>(x.c[i]) & splat32(0xFFFF);
        }
        return result;
    }
    VELA_FUSED static Evens meanOfEvens(const Form &upper, const Form &lower)
    {
        const Evens a = evens(upper);
        const Evens b = evens(lower);
        Evens result;
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i) {
            if constexpr (from == 32)
                result.values[i] = (a.values[i] + b.values[i]) * splatF32(0.5f);
            else
                result.codes[i] = as<u32s>(average(as<u16s>(a.codes[i]), as<u16s>(b.codes[i])));
        }
        return result;
    }
    VELA_FUSED u16s chroma(const Evens &x) const
    {
        f32s rgb[3];
#pragma GCC unroll 3
        for (int i = 0; i < 3; ++i) {
            if constexpr (from == 32)
                rgb[i] = x.values[i] - rows.off[i];
            else
                rgb[i] = toFloat(as<i32s>(x.codes[i])) - rows.off[i];
        }
        const i32s u = toCode<to>(rows.operator()<1>(rgb));
        const i32s v = toCode<to>(rows.operator()<2>(rgb));
        if constexpr (to == 16)
            return narrowPairsUnsigned(u, v);
        else
            return limited<to>(narrowPairs(u, v));
    }
};

// Integers where a side has 8 or 10 bits and none is float.
constexpr bool integerMatrix(int a, int b) { return a != 32 && b != 32 && (a < 16 || b < 16); }

template <class Target, class Source>
using ToRgb = Choose<integerMatrix(Source::depths[0], Target::depths[0]), IntegerToRgb<Target, Source>,
                     FloatToRgb<Target, Source>>;
template <class Target, class Source>
using ToYuv = Choose<integerMatrix(Source::depths[0], Target::depths[0]), IntegerToYuv<Target, Source>,
                     FloatToYuv<Target, Source>>;

template <class Target, class Source> struct YuvToRgb : ToRgb<Target, Source> {
    using ToRgb<Target, Source>::ToRgb;
    using Special = Choose<integerMatrix(Source::depths[0], Target::depths[0]), UniformToRgb<Target, Source>, void>;
};
template <class Target, class Source> struct RgbToYuv : ToYuv<Target, Source> {
    using ToYuv<Target, Source>::ToYuv;
};

// Grey is luma of full range.
template <class Target, class Source> struct RgbToGrey : ToYuv<Target, Source> {
    using Base = ToYuv<Target, Source>;
    using Base::Base;

    VELA_FUSED auto operator()(const typename Base::Form &x) const
    {
        const auto y = this->luma(x);
        return pixels(y, y, y, y);
    }
};

} // namespace
