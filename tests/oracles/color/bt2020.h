// BT.2020 with the chroma of its constant-luminance form: the scale of a colour difference depends on its sign. Full
// range; luma 0 to 255, chroma centred on 128. In 16384ths, truncated.
#pragma once

#include "oracles/color/rules.h"

namespace {

namespace bt2020 {

constexpr std::int32_t kr = 4304; // 0.2627, 0.6780, 0.0593: luma of R, G, B; their sum is exactly 16384
constexpr std::int32_t kg = 11108;
constexpr std::int32_t kb = 972;

// By the sign of a colour difference or of its code.
struct BySign {
    std::int32_t negative, positive;
    constexpr std::int32_t operator()(std::int32_t v) const { return v < 0 ? negative : positive; }
};
constexpr BySign codeOfBlue{8444, 10359};       // 1 / 1.9404, 1 / 1.5816: code a unit of B - Y
constexpr BySign codeOfRed{9534, 16490};        // 1 / 1.7184, 1 / 0.9936: of R - Y
constexpr BySign blueOfCode{31792, 25913};      // 1.9404, 1.5816
constexpr BySign redOfCode{28154, 16279};       // 1.7184, 0.9936
constexpr BySign greenOfBlueCode{-2782, -2267}; // times -kb / kg
constexpr BySign greenOfRedCode{-10910, -6308}; // times -kr / kg

inline std::int32_t byteOf(std::int32_t v) { return limited(v, 0, 255); }

// v times a scale, with three more fraction bits. Nothing here or below leaves 16 bits.
inline std::int32_t eighths(std::int32_t v, BySign scale) { return (scale(v) * (v * 32)) >> 16; }

} // namespace bt2020

template <class Dst, class Src> struct ToYuv2020 {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &rgb) const
    {
        using namespace bt2020;
        const auto [r, g, b] = rgb.c;
        const std::int32_t y = byteOf((b * kb + r * kr + 8192 + g * kg) >> 14);
        const auto code = [](std::int32_t difference, BySign scale) {
            return byteOf(((eighths(difference, scale) + 4) >> 3) + 128);
        };
        return {{y, code(b - y, codeOfBlue), code(r - y, codeOfRed)}, 0};
    }
};

template <class Dst, class Src> struct FromYuv2020 {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &yuv) const
    {
        using namespace bt2020;
        const std::int32_t base = yuv.c[0] * 8 + 4;
        const std::int32_t cb = yuv.c[1] - 128;
        const std::int32_t cr = yuv.c[2] - 128;
        return {{byteOf((base + eighths(cr, redOfCode)) >> 3),
                 byteOf((base + eighths(cb, greenOfBlueCode) + eighths(cr, greenOfRedCode)) >> 3),
                 byteOf((base + eighths(cb, blueOfCode)) >> 3)},
                0};
    }
};

} // namespace
