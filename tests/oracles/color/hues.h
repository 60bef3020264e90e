// Hue, saturation, and value or lightness.
#pragma once

#include "oracles/color/rules.h"
#include "oracles/estimates.h"

namespace {

// How much of the full colour a component has at a hue of 0 to 360 degrees: 1 within 60 degrees of the component's own,
// 0 from 120 on.
struct HueWeights {
    float c[3];
    explicit HueWeights(std::int32_t hue)
    {
        const auto h = static_cast<float>(limited(hue, 0, 360));
        const float distances[3] = {std::min(h, 360 - h), std::abs(h - 120), std::abs(h - 240)};
        for (int i = 0; i < 3; ++i)
            c[i] = limitedToUnit((120 - distances[i]) * static_cast<float>(1.0 / 60.0));
    }
};

template <class Dst, class Src> struct FromHsv {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &hsv) const
    {
        const HueWeights weights(hsv.c[0]);
        const float s = unitOf(hsv.c[1], 8);
        const auto v = static_cast<float>(hsv.c[2]);
        const auto component = [&](float w) { return nearestCode(v * (1 - s * (1 - w)), 255); };
        return {{component(weights.c[0]), component(weights.c[1]), component(weights.c[2])}, 0};
    }
};

template <class Dst, class Src> struct FromHsl {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &hsl) const
    {
        const HueWeights weights(hsl.c[0]);
        const float s = unitOf(hsl.c[1], 8);
        const float l = unitOf(hsl.c[2], 8);
        const float c = (1 - std::abs((l + l) - 1)) * s;
        const float m = l - 0.5F * c;
        const auto component = [&](float w) { return nearestCode((m + c * w) * 255, 255); };
        return {{component(weights.c[0]), component(weights.c[1]), component(weights.c[2])}, 0};
    }
};

template <class Dst, class Src> struct ToHsl {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &rgb) const
    {
        const auto [r, g, b] = rgb.c;
        const std::int32_t largest = std::max({r, g, b});
        const std::int32_t least = std::min({r, g, b});
        const std::int32_t range = largest - least;
        const std::int32_t sum = largest + least;
        const std::int32_t lightness = (sum + 1) >> 1;
        if (range == 0)
            return {{0, 0, lightness}, 0};
        const float s = (static_cast<float>(range) * 255) / static_cast<float>(sum <= 255 ? sum : 510 - sum);
        const float k = 60 / static_cast<float>(range);
        float h = 0;
        if (largest == r) {
            h = static_cast<float>(g - b) * k;
            if (g < b)
                h = h + 360;
        } else if (largest == g) {
            h = static_cast<float>(b - r) * k + 120;
        } else {
            h = static_cast<float>(r - g) * k + 240;
        }
        return {{truncated(h + justBelowHalf), nearestCode(s, 255), lightness}, 0};
    }
};

inline std::uint32_t bitsOf(float x)
{
    std::uint32_t bits;
    std::memcpy(&bits, &x, sizeof(bits));
    return bits;
}

template <class Dst, class Src> struct ToHsv {
    Pixel<std::int32_t> operator()(const Pixel<std::int32_t> &rgb) const
    {
        const auto [r, g, b] = rgb.c;
        const std::int32_t largest = std::max({r, g, b});
        const std::int32_t least = std::min({r, g, b});
        return {{largest == least ? 0 : hue(r, g, b, largest, least), saturation(largest, least), largest}, 0};
    }

private:
    static std::int32_t saturation(std::int32_t largest, std::int32_t least)
    {
        if (largest == 0)
            return 0;
        const float q = (static_cast<float>(least) * estimatedReciprocal(static_cast<float>(largest))) * 255.0F;
        return limited(saturated16(truncated((255.0F + justBelowHalf) - q)), 0, 255);
    }

    // Where two components are the largest, two candidates hold and their bits are merged.
    static std::int32_t hue(std::int32_t r, std::int32_t g, std::int32_t b, std::int32_t largest, std::int32_t least)
    {
        const float k = estimatedReciprocal(static_cast<float>(largest - least)) * 60.0F;
        const float ofRed = static_cast<float>(g - b) * k;
        std::uint32_t merged = 0;
        if (largest == b)
            merged |= bitsOf(static_cast<float>(r - g) * k + 240.0F);
        if (largest == g)
            merged |= bitsOf(static_cast<float>(b - r) * k + 120.0F);
        if (largest == r)
            merged |= bitsOf(b > g ? ofRed + 360.0F : ofRed);
        float h;
        std::memcpy(&h, &merged, sizeof(h));
        return saturated16(truncated(h + justBelowHalf));
    }
};

} // namespace
