// The steps from a source pixel to a destination pixel, chroma already sited. Integers are 32 bits wide, floats are
// rounded after every operation.
#pragma once

#include "oracles/color/layouts.h"

#include <vela/color_coefficients.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr std::int32_t largestOf(int bits) { return static_cast<std::int32_t>((1U << bits) - 1); }
constexpr std::int32_t limited(std::int32_t v, std::int32_t least, std::int32_t most)
{
    return v < least ? least : v > most ? most : v;
}

constexpr bool isFloat(int bits) { return bits == 32; }

// --- Rounding -----------------------------------------------------------------------------------------------------

constexpr float justBelowHalf = 0.49999988F;

// NaN and what no 32-bit integer holds become the lowest one.
inline std::int32_t truncated(float x)
{
    return x >= -0x1p31F && x < 0x1p31F ? static_cast<std::int32_t>(x) : INT32_MIN;
}

inline std::int32_t saturated16(std::int32_t v) { return limited(v, -32768, 32767); }

// 16-bit codes are limited as floats, so that everything too large is the largest; up to 10 bits beyond 2^31 it is 0.
inline std::int32_t nearestCode(float x, std::int32_t largest)
{
    float t = x + justBelowHalf;
    if (largest <= 1023)
        return limited(saturated16(truncated(t)), 0, largest);
    t = t > 0 ? t : 0;
    t = t < 65535 ? t : 65535;
    return static_cast<std::int32_t>(t);
}

// NaN becomes 0.
inline float limitedToUnit(float x)
{
    x = x > 0 ? x : 0;
    return x < 1 ? x : 1;
}

// --- Depths -------------------------------------------------------------------------------------------------------

constexpr std::int32_t videoDepth(std::int32_t v, int from, int to)
{
    return to > from ? v << (to - from) : v >> (from - to);
}

constexpr std::int32_t fullDepth(std::int32_t v, int from, int to)
{
    if (to == from)
        return v;
    if (to == 1)
        return v >> (from - 1);
    if (to < from)
        return (v - (v >> to) + (1 << (from - to - 1))) >> (from - to);
    std::int32_t wide = 0; // the bits repeated from the top
    for (int shift = to - from; shift > -from; shift -= from)
        wide |= shift > 0 ? v << shift : v >> -shift;
    return wide;
}

inline float unitOf(std::int32_t v, int bits)
{
    return static_cast<float>(v) * static_cast<float>(1.0 / largestOf(bits));
}

inline std::int32_t codeOf(float x, int bits)
{
    return nearestCode(x * static_cast<float>(largestOf(bits)), largestOf(bits));
}

// Full-scale samples between any two depths, 32 meaning float.
template <int to, int from, class S> auto fullScale(S v)
{
    if constexpr (isFloat(from) && isFloat(to))
        return v;
    else if constexpr (isFloat(to))
        return unitOf(v, from);
    else if constexpr (isFloat(from))
        return codeOf(v, to);
    else
        return fullDepth(v, from, to);
}

// What a step leaves alone: alpha where both sides have it.
template <class Dst, class Src> typename Dst::Sample carriedAlpha(const Pixel<typename Src::Sample> &pixel)
{
    if constexpr (Dst::hasAlpha && Src::hasAlpha)
        return fullScale<Dst::bits[3], Src::bits[3]>(pixel.a);
    else
        return 0;
}

template <class Dst, class Src> struct Move {
    Pixel<typename Dst::Sample> operator()(const Pixel<typename Src::Sample> &pixel) const
    {
        static_assert(Dst::bits[0] == Src::bits[0]);
        return {{pixel.c[0], pixel.c[1], pixel.c[2]}, carriedAlpha<Dst, Src>(pixel)};
    }
};

template <class Dst, class Src> struct VideoDepth {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &pixel) const
    {
        const auto step = [](std::int32_t v) { return videoDepth(v, Src::bits[0], Dst::bits[0]); };
        return {{step(pixel.c[0]), step(pixel.c[1]), step(pixel.c[2])}, carriedAlpha<Dst, Src>(pixel)};
    }
};

template <class Dst, class Src> struct FullDepth {
    Pixel<typename Dst::Sample> operator()(const Pixel<typename Src::Sample> &pixel) const
    {
        return {{fullScale<Dst::bits[0], Src::bits[0]>(pixel.c[0]), fullScale<Dst::bits[1], Src::bits[1]>(pixel.c[1]),
                 fullScale<Dst::bits[2], Src::bits[2]>(pixel.c[2])},
                carriedAlpha<Dst, Src>(pixel)};
    }
};

template <class Dst, class Src> struct Float : FullDepth<Dst, Src> {
    static_assert(isFloat(Dst::bits[0]) != isFloat(Src::bits[0]));
};

// Out of range pixels of floats.
template <class Dst, class Src> struct ClampToUnit {
    Pixel<float> operator()(const Pixel<float> &pixel) const
    {
        return {{limitedToUnit(pixel.c[0]), limitedToUnit(pixel.c[1]), limitedToUnit(pixel.c[2])},
                limitedToUnit(pixel.a)};
    }
};

// --- YUV and RGB --------------------------------------------------------------------------------------------------

// To grey: the row of Y alone, which is the only one that is stored.
template <class Dst, class Src>
using CoefficientBlock = std::conditional_t<Src::model == Model::yuv, CscYuvToRgb, CscRgbToYuv>;

template <class Dst, class Src> class IntegerMatrix {
public:
    using Block = CoefficientBlock<Dst, Src>;
    explicit IntegerMatrix(const Block *block) { std::memcpy(&block_, block, sizeof(block_)); }

    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &pixel) const
    {
        static_assert(Dst::bits[0] < 16 || Src::bits[0] < 16);
        return {{row(0, pixel), row(1, pixel), row(2, pixel)}, carriedAlpha<Dst, Src>(pixel)};
    }

private:
    // What is multiplied has at most 14 bits, so that the sums stay within 32.
    static constexpr int unused = Src::bits[0] == 16 ? 2 : 0;

    std::int32_t row(int i, const Pixel<std::int32_t> &pixel) const
    {
        const std::int16_t *q = block_.q[i];
        const std::int32_t sum = q[0] * ((pixel.c[0] >> unused) - block_.qOff[0]) +
                                 q[1] * ((pixel.c[1] >> unused) - block_.qOff[1]) +
                                 q[2] * ((pixel.c[2] >> unused) - block_.qOff[2]) + block_.qBias[i];
        return limited(sum >> block_.qShift, 0, largestOf(Dst::bits[0]));
    }

    Block block_;
};

template <class Dst, class Src> class FloatMatrix {
public:
    using Block = CoefficientBlock<Dst, Src>;
    explicit FloatMatrix(const Block *block) { std::memcpy(&block_, block, sizeof(block_)); }

    Pixel<typename Dst::Sample> operator()(const Pixel<typename Src::Sample> &pixel) const
    {
        return {{row(0, pixel), row(1, pixel), row(2, pixel)}, carriedAlpha<Dst, Src>(pixel)};
    }

private:
    typename Dst::Sample row(int i, const Pixel<typename Src::Sample> &pixel) const
    {
        const float s0 = static_cast<float>(pixel.c[0]) - block_.fOff[0];
        const float s1 = static_cast<float>(pixel.c[1]) - block_.fOff[1];
        const float s2 = static_cast<float>(pixel.c[2]) - block_.fOff[2];
        const float *f = block_.f[i];
        const float x = ((f[0] * s0 + f[1] * s1) + f[2] * s2) + block_.fBias[i];
        if constexpr (!isFloat(Dst::bits[0]))
            return nearestCode(x, largestOf(Dst::bits[0]));
        else if constexpr (Dst::model == Model::rgb)
            return limitedToUnit(x);
        else
            return x; // float grey keeps what is out of range
    }

    Block block_;
};

// --- Grey ---------------------------------------------------------------------------------------------------------

// Every component of a grey pixel is its sample, or, going to grey, the first one is stored.
template <class Dst, class Src> struct Grey : Move<Dst, Src> {
};

template <class Dst, class Src> struct GreyWithoutChroma {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &pixel) const { return {{pixel.c[0], 128, 128}, 0}; }
};

// --- Alpha --------------------------------------------------------------------------------------------------------

// t / 255 or t / 65535, to nearest, for t up to the square of the divisor.
inline std::int32_t dividedByLargest(std::uint32_t t, int bits)
{
    t += 1U << (bits - 1);
    return static_cast<std::int32_t>((t + (t >> bits)) >> bits);
}

inline std::int32_t scaled(std::int32_t a, std::int32_t b, int bits)
{
    return dividedByLargest(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b), bits);
}

template <class Dst, class Src> struct Premultiply {
    using S = typename Src::Sample;
    static S step(S c, S a)
    {
        if constexpr (isFloat(Src::bits[0]))
            return c * a;
        else
            return scaled(c, a, Src::bits[0]);
    }
    Pixel<S> operator()(const Pixel<S> &p) const
    {
        return {{step(p.c[0], p.a), step(p.c[1], p.a), step(p.c[2], p.a)}, p.a};
    }
};

template <class Dst, class Src> struct Unpremultiply {
    using S = typename Src::Sample;
    static S step(S c, S a)
    {
        if constexpr (isFloat(Src::bits[0])) {
            return a <= 1.1920929e-7F ? 0 : c / a;
        } else {
            constexpr auto largest = static_cast<std::uint32_t>(largestOf(Src::bits[0]));
            const auto divisor = static_cast<std::uint32_t>(a);
            if (divisor == 0)
                return 0;
            const std::uint32_t quotient = (static_cast<std::uint32_t>(c) * largest + (divisor >> 1)) / divisor;
            return static_cast<S>(std::min(quotient, largest));
        }
    }
    Pixel<S> operator()(const Pixel<S> &p) const
    {
        return {{step(p.c[0], p.a), step(p.c[1], p.a), step(p.c[2], p.a)}, p.a};
    }
};

template <class Dst, class Src> struct SetAlpha {
    using S = typename Src::Sample;
    S alpha;
    explicit SetAlpha(S value) : alpha(value) {}
    Pixel<S> operator()(const Pixel<S> &p) const { return {{p.c[0], p.c[1], p.c[2]}, alpha}; }
};

template <class Dst, class Src> struct ExtractAlpha {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &p) const { return {{p.a, p.a, p.a}, 0}; }
};

template <class Dst, class Src> struct ScaleAlpha {
    std::int32_t scale;
    explicit ScaleAlpha(std::uint8_t value) : scale(value) {}
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &p) const
    {
        return {{p.c[0], p.c[1], p.c[2]}, scaled(p.a, scale, 8)};
    }
};

// Bytes 0 to 2 of the background in the order of the pixel's bytes, here B G R.
template <bool premultiplied> class FlattenOver {
public:
    explicit FlattenOver(std::uint32_t background) : background_(background) {}
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &p) const
    {
        return {{over(p.c[0], p.a, 16), over(p.c[1], p.a, 8), over(p.c[2], p.a, 0)}, 255};
    }

private:
    std::int32_t over(std::int32_t c, std::int32_t a, int shift) const
    {
        const auto b = static_cast<std::int32_t>(background_ >> shift & 255);
        if constexpr (premultiplied)
            return std::min(c + scaled(b, 255 - a, 8), 255);
        else
            return dividedByLargest(static_cast<std::uint32_t>(c * a + b * (255 - a)), 8);
    }

    std::uint32_t background_;
};

template <class Dst, class Src> struct Flatten : FlattenOver<false> {
    static_assert(std::is_same_v<Src, BGRA32>);
    using FlattenOver<false>::FlattenOver;
};
template <class Dst, class Src> struct FlattenPremultiplied : FlattenOver<true> {
    static_assert(std::is_same_v<Src, BGRA32>);
    using FlattenOver<true>::FlattenOver;
};

// --- Limited and full range ---------------------------------------------------------------------------------------

struct ByteRange {
    std::int32_t from, to, factor, shift;
    std::int32_t operator()(std::int32_t v) const
    {
        return limited(to + (((v - from) * factor + (1 << (shift - 1))) >> shift), 0, 255);
    }
};
constexpr ByteRange lumaBytesToFull{16, 0, 9539, 13};
constexpr ByteRange lumaBytesToLimited{0, 16, 14071, 14};
constexpr ByteRange chromaBytesToFull{128, 128, 9326, 13};
constexpr ByteRange chromaBytesToLimited{128, 128, 14392, 14};

struct WordRange {
    float from, to, factor;
    std::int32_t operator()(std::int32_t v) const
    {
        return nearestCode((static_cast<float>(v) - from) * factor + to, 65535);
    }
};
constexpr WordRange lumaWordsToFull{4096, 0, static_cast<float>(65535.0 / 56064.0)};
constexpr WordRange lumaWordsToLimited{0, 4096, static_cast<float>(56064.0 / 65535.0)};
constexpr WordRange chromaWordsToFull{32768, 32768, static_cast<float>(65535.0 / 57344.0)};
constexpr WordRange chromaWordsToLimited{32768, 32768, static_cast<float>(57344.0 / 65535.0)};

// Luma as component 0 of YUV, in RGB and in planes; chroma as components 1 and 2 of YUV.
template <class Src, auto lumaBytes, auto chromaBytes, auto words> struct RangeStep {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &p) const
    {
        if constexpr (Src::bits[0] == 16)
            return {{words(p.c[0]), words(p.c[1]), words(p.c[2])}, p.a};
        else if constexpr (Src::model == Model::yuv)
            return {{lumaBytes(p.c[0]), chromaBytes(p.c[1]), chromaBytes(p.c[2])}, p.a};
        else
            return {{lumaBytes(p.c[0]), lumaBytes(p.c[1]), lumaBytes(p.c[2])}, p.a};
    }
};

template <class Dst, class Src>
struct ToFullRange : RangeStep<Src, lumaBytesToFull, chromaBytesToFull, lumaWordsToFull> {
};
template <class Dst, class Src>
struct ToLimitedRange : RangeStep<Src, lumaBytesToLimited, chromaBytesToLimited, lumaWordsToLimited> {
};
template <class Dst, class Src>
struct ChromaToFullRange : RangeStep<Src, chromaBytesToFull, chromaBytesToFull, chromaWordsToFull> {
};
template <class Dst, class Src>
struct ChromaToLimitedRange : RangeStep<Src, chromaBytesToLimited, chromaBytesToLimited, chromaWordsToLimited> {
};

} // namespace
