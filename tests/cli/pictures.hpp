// Pictures as tests make them, and their BMP files.
#pragma once

#include "run_vela.hpp"

#include <functional>
#include <random>

namespace vela::test {

inline constexpr std::size_t headerBytes = 54;

// A picture as a test sees it: B G R (and A), top row first, rows without padding.
struct Image {
    int width;
    int height;
    int channels;
    Bytes pixels;

    std::uint8_t at(int x, int y, int channel) const
    {
        const int column = std::clamp(x, 0, width - 1);
        const int line = std::clamp(y, 0, height - 1);
        return pixels[static_cast<std::size_t>((line * width + column) * channels + channel)];
    }
};

using PixelFunction = std::function<int(int x, int y, int channel)>;

inline Image makeImage(int width, int height, int channels, const PixelFunction &value)
{
    Image image{width, height, channels, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c)
                image.pixels.push_back(static_cast<std::uint8_t>(value(x, y, c)));
    return image;
}

inline Image noise(int width, int height, int channels)
{
    std::mt19937 random(1);
    return makeImage(width, height, channels, [&](int, int, int) { return static_cast<int>(random() & 0xFF); });
}

// The bytes of an uncompressed BMP, bottom row first.
inline Bytes bmpOf(const Image &image)
{
    const std::size_t row = static_cast<std::size_t>(image.width * image.channels);
    const std::size_t fileRow = (row + 3) / 4 * 4;
    const std::size_t imageBytes = fileRow * static_cast<std::size_t>(image.height);
    Bytes file(headerBytes);
    const auto put = [&](std::size_t offset, std::size_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            file[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
    };
    file[0] = 'B';
    file[1] = 'M';
    put(2, headerBytes + imageBytes);
    put(10, headerBytes);
    put(14, 40);
    put(18, static_cast<std::size_t>(image.width));
    put(22, static_cast<std::size_t>(image.height));
    file[26] = 1;
    file[28] = static_cast<std::uint8_t>(8 * image.channels);
    put(34, imageBytes);
    for (int y = image.height - 1; y >= 0; --y) {
        const auto start = image.pixels.begin() + static_cast<std::ptrdiff_t>(row) * y;
        file.insert(file.end(), start, start + static_cast<std::ptrdiff_t>(row));
        file.resize(file.size() + fileRow - row);
    }
    return file;
}

} // namespace vela::test
