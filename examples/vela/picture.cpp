#include "picture.hpp"

#include "files.hpp"
#include "system.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

namespace host {
namespace {

constexpr std::size_t headerBytes = 54;
constexpr std::uint8_t flip = 1; // the files hold the bottom row first, our pictures the top row

using Header = std::array<unsigned char, headerBytes>;

std::uint32_t littleEndian32(const Header &header, std::size_t offset)
{
    return header[offset] | static_cast<std::uint32_t>(header[offset + 1]) << 8 |
           static_cast<std::uint32_t>(header[offset + 2]) << 16 | static_cast<std::uint32_t>(header[offset + 3]) << 24;
}

std::size_t fileRowBytes(int width, int bytesPerPixel)
{
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bytesPerPixel) + 3) / 4 * 4;
}

// VCB_ReadBMP copies the rows that follow the first 54 bytes and leaves it to the host to know that those are
// pixels, and of what kind.
void checkHeader(const std::filesystem::path &path)
{
    Header header{};
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw unreadable(path, "no such file, or no permission");
    file.read(reinterpret_cast<char *>(header.data()), headerBytes);
    if (file.gcount() != headerBytes || header[0] != 'B' || header[1] != 'M')
        throw unreadable(path, "not a BMP file");
    if (const std::uint32_t compression = littleEndian32(header, 30); compression != 0)
        throw unreadable(path,
                         "compressed, or with colour masks (BMP compression " + std::to_string(compression) + ")");
    if (littleEndian32(header, 10) != headerBytes)
        throw unreadable(path, "its pixels do not follow the 54-byte header; save it as a BMP of version 3");
}

void checkSize(const std::filesystem::path &path, int bitsPerPixel, int width, int height)
{
    if (bitsPerPixel != 24 && bitsPerPixel != 32)
        throw unreadable(path, std::to_string(bitsPerPixel) + " bits per pixel; 24 or 32 are wanted");
    if (width <= 0 || height <= 0)
        throw unreadable(path, height < 0 ? "top-down rows are not supported" : "the picture is empty");
    // A file that really holds its rows also bounds the memory that they take. Sizes stay below 2^62.
    const std::uintmax_t pixels = std::uintmax_t{fileRowBytes(width, bitsPerPixel / 8)} * static_cast<unsigned>(height);
    if (std::filesystem::file_size(path) < headerBytes + pixels)
        throw unreadable(path, "the file ends before its last row");
}

} // namespace

Picture::Picture(int width, int height, int bytesPerPixel)
    : widthPixels(width), heightRows(height), pixelBytes(bytesPerPixel),
      stride((static_cast<std::size_t>(width) + 1) / 2 * 2 * static_cast<std::size_t>(bytesPerPixel)),
      bytes(stride * static_cast<std::size_t>(height))
{
}

Picture readBmp(const Library &library, const std::filesystem::path &path)
{
    const auto read = LIBRARY_EXPORT(library, VCB_ReadBMP);
    const std::wstring name = widePath(path);

    checkHeader(path);
    int32_t bitsPerPixel = 0;
    int32_t width = 0;
    int32_t height = 0;
    if (!read(name.c_str(), nullptr, 0, &bitsPerPixel, &width, &height, flip))
        throw unreadable(path, "the library cannot open it");
    checkSize(path, bitsPerPixel, width, height);

    Picture picture(width, height, bitsPerPixel / 8);
    if (!read(name.c_str(), picture.row(0), static_cast<int64_t>(picture.strideBytes()), nullptr, nullptr, nullptr,
              flip))
        throw unreadable(path, "the library cannot open it");
    return picture;
}

void writeBmp(const Library &library, const std::filesystem::path &path, const Picture &picture)
{
    const int bitsPerPixel = 8 * picture.bytesPerPixel();
    const bool opened = LIBRARY_EXPORT(library, VCB_WriteBMP)(
        widePath(path).c_str(), picture.row(0), static_cast<int64_t>(picture.strideBytes()), bitsPerPixel,
        picture.width(), static_cast<uint32_t>(picture.height()), flip);
    if (!opened)
        throw unwritable(path, "the file cannot be created");

    // The export does not report what happens after the file is open.
    const std::uintmax_t wanted = headerBytes + fileRowBytes(picture.width(), picture.bytesPerPixel()) *
                                                    static_cast<std::size_t>(picture.height());
    std::error_code error;
    if (std::filesystem::file_size(path, error) != wanted)
        throw unwritable(path, "the file is incomplete; is the disk full?");
}

double meanSquaredError(const Picture &a, const Picture &b, int channel)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const int difference = a.row(y)[4 * x + channel] - b.row(y)[4 * x + channel];
            sum += difference * difference; // whole numbers below 2^53: exact
        }
    }
    return sum / (static_cast<double>(a.width()) * a.height());
}

double peakSignalToNoise(double meanSquaredError) { return 10.0 * std::log10(255.0 * 255.0 / meanSquaredError); }

} // namespace host
