// BT.2020 with the chroma of its constant-luminance form: how far a colour difference reaches, and so its divisor,
// depends on its sign. Full range; coefficients in 16384ths, cut off.
#pragma once

#include "colorspace/kernels/kernel.h"

namespace {

// The upper words of x << 5 times the scale for its sign: x times the scale, in eighths.
VELA_FUSED inline i16s scaledBySign(i16s x, i16s negative, i16s positive)
{
    return multiplyHigh(shiftLeft<5>(x), positive ^ (shiftRight<15>(x) & (negative ^ positive)));
}

template <class Target, class Source> struct RgbToYuv2020 {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = List<>;

    // Chroma needs the luma, so both come from one pass over the pixels.
    struct Form {
        u16s luma;
        i16s differences; // B - Y, R - Y of the even pixels
    };
    static constexpr bool blueFirst = Source::placeOf(2) == 0;
    static constexpr int kr = 4304;
    static constexpr int kg = 11108;
    static constexpr int kb = 972;
    static_assert(kr + kg + kb == 16384); // white is 255: luma needs no limit

    // Twice the luma, not rounded yet.
    VELA_FUSED static i32s doubleLuma(Terms terms)
    {
        const i16s outer = blueFirst ? splatPair(kb, kr) : splatPair(kr, kb);
        return shiftRight<13>(multiplyAddPairs(terms.outer, outer) + multiplyAddPairs(terms.middle, splatPair(kg, 0)));
    }
    VELA_FUSED static Form load(ConstLine line)
    {
        const Terms low = Source::termsOf(Source::loadRaw(line, 0));
        const Terms high = Source::termsOf(Source::loadRaw(line, 1));
        const u16s luma = average(as<u16s>(narrow(doubleLuma(low), doubleLuma(high))), zero<u16s>());
        const u16s outer = as<u16s>(::evens(as<u32s>(low.outer), as<u32s>(high.outer)));
        const u16s blueAndRed = blueFirst ? outer : swapPairs(outer);
        return {luma, as<i16s>(blueAndRed - orderFours<0, 0, 2, 2>(luma))};
    }

    VELA_FUSED u16s luma(const Form &form) const { return form.luma; }
    VELA_FUSED static i16s evens(const Form &form) { return form.differences; }
    VELA_FUSED u16s chroma(i16s differences) const
    {
        const i16s eighths = scaledBySign(differences, splatPair(8444, 9534), splatPair(10359, 16490));
        return as<u16s>(shiftRight<3>(eighths + splatI16(128 * 8 + 4))); // the centre, and half of the last place
    }
};

template <class Target, class Source> struct Yuv2020ToRgb {
    using Samples = u16s;
    static constexpr int turns = 1;
    using Arguments = List<int32_t>;

    u16s alpha;

    // The low byte of the value limited to a signed word.
    explicit Yuv2020ToRgb(int32_t value)
    {
        const int32_t notBelow = value < INT16_MIN ? INT16_MIN : value;
        alpha = splat16((uint8_t)(notBelow > INT16_MAX ? INT16_MAX : notBelow));
    }

    VELA_FUSED Pixels<u16s> operator()(u16s y, ChromaPairs<u16s> c) const
    {
        const i16s cb = as<i16s>(pairEvens(c.even, c.odd)) - splatI16(128);
        const i16s cr = as<i16s>(pairOdds(c.even, c.odd)) - splatI16(128);
        const i16s base = as<i16s>(shiftLeft<3>(y)) + splatI16(4);
        const i16s red = base + scaledBySign(cr, splatI16(28154), splatI16(16279));
        const i16s blue = base + scaledBySign(cb, splatI16(31792), splatI16(25913));
        const i16s green = base + scaledBySign(cb, splatI16(-2782), splatI16(-2267)) +
                           scaledBySign(cr, splatI16(-10910), splatI16(-6308));
        return pixels(as<u16s>(shiftRight<3>(red)), as<u16s>(shiftRight<3>(green)), as<u16s>(shiftRight<3>(blue)),
                      alpha);
    }
};

constexpr auto CscBgraToYuyv2020 = kernel<Yuyv, Bgra32, RgbToYuv2020>;
constexpr auto CscBgraToUyvy2020 = kernel<Uyvy, Bgra32, RgbToYuv2020>;
constexpr auto CscRgbaToYuyv2020 = kernel<Yuyv, Rgba32, RgbToYuv2020>;
constexpr auto CscRgbaToUyvy2020 = kernel<Uyvy, Rgba32, RgbToYuv2020>;

// Hosts tell the two kernels of an order by their addresses, so each is a function.
void CscYuyvToBgra2020(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    kernel<Bgra32, Yuyv, Yuv2020ToRgb>(dst, src, width, alpha);
}

void CscUyvyToBgra2020(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    kernel<Bgra32, Uyvy, Yuv2020ToRgb>(dst, src, width, alpha);
}

void CscYuyvToBgra2020B(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    kernel<Bgra32, Yuyv, Yuv2020ToRgb>(dst, src, width, alpha);
}

void CscUyvyToBgra2020B(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    kernel<Bgra32, Uyvy, Yuv2020ToRgb>(dst, src, width, alpha);
}

} // namespace
