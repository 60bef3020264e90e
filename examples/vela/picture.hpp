// Pictures in memory and in BMP files.
#pragma once

#include "library.hpp"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace host {

// Rows of pixels, top row first. Rows have room for an even number of pixels, since kernels on 4:2:2 pairs write
// whole pairs.
class Picture {
public:
    Picture(int width, int height, int bytesPerPixel);

    int width() const { return widthPixels; }
    int height() const { return heightRows; }
    int bytesPerPixel() const { return pixelBytes; }
    std::size_t strideBytes() const { return stride; }

    std::uint8_t *row(int y) { return bytes.data() + static_cast<std::size_t>(y) * stride; }
    const std::uint8_t *row(int y) const { return bytes.data() + static_cast<std::size_t>(y) * stride; }

private:
    int widthPixels;
    int heightRows;
    int pixelBytes;
    std::size_t stride;
    std::vector<std::uint8_t> bytes;
};

// Reads a BMP of 24 or 32 bits per pixel: bytes B, G, R and, with 32 bits, one more. Throws Failure.
Picture readBmp(const Library &library, const std::filesystem::path &path);

// Throws Failure.
void writeBmp(const Library &library, const std::filesystem::path &path, const Picture &picture);

// How far two pictures of four bytes per pixel are apart in one of their channels: the mean square of the differences.
double meanSquaredError(const Picture &a, const Picture &b, int channel);

// In decibels, for 8-bit channels; infinite for 0.
double peakSignalToNoise(double meanSquaredError);

} // namespace host
