// The pixel layouts that this host knows: the pictures among those of docs/colour-layouts.md, and how their frames lie
// in memory and in files of raw frames.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

enum class Model { rgb, grey, alpha, yuv, hsv, hsl };
enum class Chroma { full, halfWidth, halfBoth };

// A row holds `bytes` for every `pixels`, and is as many whole grains as the width needs. The plane has a row for
// every `lines` lines of the picture.
struct Plane {
    int pixels;
    int bytes;
    int grain;
    int lines;

    constexpr std::size_t rowBytes(int width) const
    {
        const auto unit = std::size_t(pixels) * std::size_t(grain);
        return (std::size_t(width) * std::size_t(bytes) + unit - 1) / unit * std::size_t(grain);
    }
    constexpr int rows(int height) const { return (height + lines - 1) / lines; }
};

struct Layout {
    const char *name;
    Model model;
    int depth; // bits of a colour sample, the fewest; 32: float
    int alphaBits;
    Chroma chroma;
    std::array<Plane, 3> planes; // those without bytes are not there
    const char *ffmpeg;          // the pixel format that reads these bytes, if there is one
    bool limitsCodes = false;    // its writers cut off the codes at both ends of the range

    constexpr int planeCount() const
    {
        return static_cast<int>(std::ranges::count_if(planes, [](const Plane &plane) { return plane.bytes != 0; }));
    }
    // One row holds luma and the chroma of pixel pairs.
    constexpr bool holdsPairs() const { return chroma == Chroma::halfWidth && planeCount() == 1; }

    // Sides of up to largestSide give frames of less than 2^53 bytes.
    constexpr std::uint64_t frameBytes(int width, int height) const
    {
        std::uint64_t bytes = 0;
        for (const Plane &plane : planes)
            if (plane.bytes != 0)
                bytes += std::uint64_t{plane.rowBytes(width)} * static_cast<unsigned>(plane.rows(height));
        return bytes;
    }
};

constexpr int largestSide = 1 << 24;

namespace planes {
constexpr Plane full(int bytes) { return {1, bytes, bytes, 1}; }
constexpr Plane half(int bytes) { return {2, bytes, bytes, 1}; }
constexpr Plane quarter(int bytes) { return {2, bytes, bytes, 2}; }
constexpr Plane v210{48, 128, 128, 1};     // eight groups of six pixels, as video interfaces align them
constexpr Plane threeToAWord{3, 16, 4, 1}; // four components a pixel
} // namespace planes

// The format names of ffmpeg are those of the same bytes; it has no use for the alpha of rgb555le, rgb444le, x2rgb10le,
// x2bgr10le, xv30le and xv48le.
inline constexpr auto layouts = [] {
    using enum Model;
    using namespace planes;
    constexpr Chroma c444 = Chroma::full;
    constexpr Chroma c422 = Chroma::halfWidth;
    constexpr Chroma c420 = Chroma::halfBoth;
    return std::to_array<Layout>({
        {"BGRA32", rgb, 8, 8, c444, {full(4)}, "bgra"},
        {"RGBA32", rgb, 8, 8, c444, {full(4)}, "rgba"},
        {"ARGB32", rgb, 8, 8, c444, {full(4)}, "argb"},
        {"ABGR32", rgb, 8, 8, c444, {full(4)}, "abgr"},
        {"BGR24", rgb, 8, 0, c444, {full(3)}, "bgr24"},
        {"RGB24", rgb, 8, 0, c444, {full(3)}, "rgb24"},
        {"GBR8", rgb, 8, 0, c444, {full(1), full(1), full(1)}, "gbrp"},
        {"RGB565", rgb, 5, 0, c444, {full(2)}, "rgb565le"},
        {"BGR565", rgb, 5, 0, c444, {full(2)}, "bgr565le"},
        {"ARGB1555", rgb, 5, 1, c444, {full(2)}, "rgb555le"},
        {"ARGB4444", rgb, 4, 4, c444, {full(2)}, "rgb444le"},
        {"A2R10G10B10", rgb, 10, 2, c444, {full(4)}, "x2rgb10le"},
        {"A2B10G10R10", rgb, 10, 2, c444, {full(4)}, "x2bgr10le"},
        {"DPX3A", rgb, 10, 0, c444, {full(4)}, ""},
        {"DPX3B", rgb, 10, 0, c444, {full(4)}, ""},
        {"DPX4A", rgb, 10, 10, c444, {threeToAWord}, ""},
        {"DPX4B", rgb, 10, 10, c444, {threeToAWord}, ""},
        {"RGB48", rgb, 16, 0, c444, {full(6)}, "rgb48le"},
        {"RGBA64", rgb, 16, 16, c444, {full(8)}, "rgba64le"},
        {"GBR16", rgb, 16, 0, c444, {full(2), full(2), full(2)}, "gbrp16le"},
        {"F32x4", rgb, 32, 32, c444, {full(16)}, "rgbaf32le"},
        {"GBRF32", rgb, 32, 0, c444, {full(4), full(4), full(4)}, "gbrpf32le"},
        {"GREY8", grey, 8, 0, c444, {full(1)}, "gray"},
        {"GREY16", grey, 16, 0, c444, {full(2)}, "gray16le"},
        {"GREYF32", grey, 32, 0, c444, {full(4)}, "grayf32le"},
        {"A8", Model::alpha, 8, 8, c444, {full(1)}, "gray"},
        {"YUYV", yuv, 8, 0, c422, {half(4)}, "yuyv422"},
        {"UYVY", yuv, 8, 0, c422, {half(4)}, "uyvy422"},
        {"YVYU", yuv, 8, 0, c422, {half(4)}, "yvyu422"},
        {"YUVA32", yuv, 8, 8, c444, {full(4)}, ""},
        {"VUYA32", yuv, 8, 8, c444, {full(4)}, "vuya"},
        {"I420", yuv, 8, 0, c420, {full(1), quarter(1), quarter(1)}, "yuv420p"},
        {"I422", yuv, 8, 0, c422, {full(1), half(1), half(1)}, "yuv422p"},
        {"I444", yuv, 8, 0, c444, {full(1), full(1), full(1)}, "yuv444p"},
        {"NV12", yuv, 8, 0, c420, {full(1), quarter(2)}, "nv12"},
        {"NV21", yuv, 8, 0, c420, {full(1), quarter(2)}, "nv21"},
        {"NV16", yuv, 8, 0, c422, {full(1), half(2)}, "nv16"},
        {"NV24", yuv, 8, 0, c444, {full(1), full(2)}, "nv24"},
        {"P016", yuv, 16, 0, c420, {full(2), quarter(4)}, "p016le, p010le"},
        {"P216", yuv, 16, 0, c422, {full(2), half(4)}, "p216le, p210le"},
        {"Y216", yuv, 16, 0, c422, {half(8)}, "y210le"},
        {"Y410", yuv, 10, 2, c444, {full(4)}, "xv30le"},
        {"Y416", yuv, 16, 16, c444, {full(8)}, "xv48le"},
        {"V210", yuv, 10, 0, c422, {v210}, "(codec v210)", true},
        {"I010", yuv, 10, 0, c420, {full(2), quarter(2), quarter(2)}, "yuv420p10le"},
        {"I210", yuv, 10, 0, c422, {full(2), half(2), half(2)}, "yuv422p10le"},
        {"I410", yuv, 10, 0, c444, {full(2), full(2), full(2)}, "yuv444p10le"},
        {"I016", yuv, 16, 0, c420, {full(2), quarter(2), quarter(2)}, "yuv420p16le"},
        {"I216", yuv, 16, 0, c422, {full(2), half(2), half(2)}, "yuv422p16le"},
        {"I416", yuv, 16, 0, c444, {full(2), full(2), full(2)}, "yuv444p16le"},
        {"HSV", hsv, 8, 0, c444, {full(2), full(1), full(1)}, ""},
        {"HSL", hsl, 8, 0, c444, {full(2), full(1), full(1)}, ""},
    });
}();

// The layout of that name in capitals or not; null if there is none.
constexpr const Layout *findLayout(std::string_view name)
{
    constexpr auto capital = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    const auto isNamed = [&](const Layout &layout) {
        return std::ranges::equal(name, std::string_view(layout.name), {}, capital, capital);
    };
    const auto found = std::ranges::find_if(layouts, isNamed);
    return found == layouts.end() ? nullptr : &*found;
}

} // namespace host
