// Windows bitmaps, byte for byte as older writers of the format left them: see the notes at VCB_WriteBMP.
#include "frame/image_file.hpp"

#include <vela/frame.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace vela::frame {
namespace {

constexpr std::size_t headersSize = 14 + 40;
constexpr uint32_t paletteSize = 256 * 4;
constexpr int32_t mostBitsPerPixel = std::numeric_limits<uint16_t>::max();
constexpr uint64_t largestRow = std::numeric_limits<int32_t>::max();

using Headers = std::array<unsigned char, headersSize>;

// Offsets into the two headers.
namespace field {
constexpr std::size_t fileSize = 2;
constexpr std::size_t dataOffset = 10;
constexpr std::size_t infoSize = 14;
constexpr std::size_t width = 18;
constexpr std::size_t height = 22;
constexpr std::size_t planes = 26;
constexpr std::size_t bitsPerPixel = 28;
constexpr std::size_t imageSize = 34;
} // namespace field

int64_t paddedTo4(int64_t bytes) { return (bytes + 3) & ~int64_t{3}; }

// --- Writing ---

// The shape of an image in a file.
struct FileLayout {
    int64_t rowData = 0; // bytes of pixels in a row
    int64_t row = 0;     // with padding
    uint32_t dataOffset = 0;
};

FileLayout layoutOf(int64_t stride, int32_t bitsPerPixel, int32_t width)
{
    FileLayout layout;
    layout.rowData = int64_t{bitsPerPixel / 8} * width;
    layout.row = layout.rowData;
    layout.dataOffset = headersSize;
    if (bitsPerPixel == 8) {
        layout.row = paddedTo4(layout.rowData);
        layout.dataOffset += paletteSize;
    } else if (bitsPerPixel == 24 && stride >= layout.rowData % 4) {
        layout.row = paddedTo4(layout.rowData);
    }
    return layout;
}

bool fitsFile(const FileLayout &layout, uint32_t height)
{
    const int64_t room = int64_t{std::numeric_limits<uint32_t>::max()} - layout.dataOffset;
    return height == 0 || layout.row <= room / height;
}

void put16(Headers &headers, std::size_t offset, uint32_t value)
{
    headers[offset] = static_cast<unsigned char>(value);
    headers[offset + 1] = static_cast<unsigned char>(value >> 8);
}

void put32(Headers &headers, std::size_t offset, uint32_t value)
{
    put16(headers, offset, value);
    put16(headers, offset + 2, value >> 16);
}

void writeHeaders(std::FILE *file, const FileLayout &layout, int32_t bitsPerPixel, int32_t width, uint32_t height)
{
    const uint32_t imageSize = static_cast<uint32_t>(layout.row) * height;
    Headers headers{'B', 'M'};
    put32(headers, field::fileSize, layout.dataOffset + imageSize);
    put32(headers, field::dataOffset, layout.dataOffset);
    put32(headers, field::infoSize, 40);
    put32(headers, field::width, static_cast<uint32_t>(width));
    put32(headers, field::height, height);
    put16(headers, field::planes, 1);
    put16(headers, field::bitsPerPixel, static_cast<uint32_t>(bitsPerPixel));
    put32(headers, field::imageSize, imageSize);
    std::fwrite(headers.data(), 1, headers.size(), file);
}

void writeGreyPalette(std::FILE *file)
{
    std::array<unsigned char, paletteSize> palette{};
    for (std::size_t i = 0; i < palette.size(); ++i)
        palette[i] = i % 4 == 3 ? 0 : static_cast<unsigned char>(i / 4);
    std::fwrite(palette.data(), 1, palette.size(), file);
}

bool writePadding(std::FILE *file, uint64_t bytes)
{
    std::array<char, 256> zeros;
    zeros.fill('0'); // the character, as the older writers have it
    while (bytes > 0) {
        const std::size_t chunk = static_cast<std::size_t>(std::min<uint64_t>(bytes, zeros.size()));
        if (std::fwrite(zeros.data(), 1, chunk, file) != chunk)
            return false;
        bytes -= chunk;
    }
    return true;
}

void writeRows(std::FILE *file, const CallerRows &rows, const FileLayout &layout)
{
    const uint64_t rowBytes = static_cast<uint64_t>(layout.row);
    if (rows.adjoin(rowBytes)) {
        std::fwrite(rows.row(0), rowBytes, rows.count(), file);
        return;
    }
    for (uint32_t i = 0; i < rows.count(); ++i) {
        const uint64_t data = std::min(static_cast<uint64_t>(layout.rowData), rows.reach(i));
        if (std::fwrite(rows.row(i), 1, data, file) != data || !writePadding(file, rowBytes - data))
            return; // a full disk: nothing further will arrive either
    }
}

// --- Reading ---

// What the reader looks at.
struct BitmapHeader {
    int32_t bitsPerPixel = 0;
    int32_t width = 0;
    int32_t height = 0;
    uint32_t imageSize = 0;
};

bool readHeader(std::FILE *file, BitmapHeader &header)
{
    Headers bytes;
    if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size())
        return false;
    header.bitsPerPixel = littleEndian16(&bytes[field::bitsPerPixel]);
    header.width = static_cast<int32_t>(littleEndian32(&bytes[field::width]));
    header.height = static_cast<int32_t>(littleEndian32(&bytes[field::height]));
    header.imageSize = littleEndian32(&bytes[field::imageSize]);
    return true;
}

// The length of a file row, or 0 if there are no rows to read.
uint64_t fileRowOf(const BitmapHeader &header)
{
    if (header.height <= 0)
        return 0;
    int64_t row = int64_t{header.imageSize} / header.height;
    if (row == 0)
        row = paddedTo4(int64_t{header.bitsPerPixel / 8} * header.width);
    const uint64_t bytes = static_cast<uint64_t>(row); // beyond every limit if negative
    return bytes <= largestRow ? bytes : 0;
}

} // namespace
} // namespace vela::frame

using namespace vela::frame;

extern "C" {

int32_t VCB_CALL VCB_WriteBMP(const wchar_t *path, const void *pixels, int64_t stride, int32_t bitsPerPixel,
                              int32_t width, uint32_t height, uint8_t flip) noexcept
{
    if (!pixels || bitsPerPixel < 0 || bitsPerPixel > mostBitsPerPixel || width < 0)
        return 0;
    const FileLayout layout = layoutOf(stride, bitsPerPixel, width);
    if (!fitsFile(layout, height))
        return 0;
    const ImageFile file = openImageFile(path, "wb");
    if (!file)
        return 0;
    writeHeaders(file.get(), layout, bitsPerPixel, width, height);
    if (bitsPerPixel == 8)
        writeGreyPalette(file.get());
    if (layout.row > 0)
        writeRows(file.get(), CallerRows(pixels, stride, height, flip), layout);
    return 1;
}

int32_t VCB_CALL VCB_ReadBMP(const wchar_t *path, void *pixels, int64_t stride, int32_t *bitsPerPixel, int32_t *width,
                             int32_t *height, uint8_t flip) noexcept
{
    const ImageFile file = openImageFile(path, "rb");
    BitmapHeader header;
    if (!file || !readHeader(file.get(), header))
        return 0;
    if (bitsPerPixel)
        *bitsPerPixel = header.bitsPerPixel;
    if (width)
        *width = header.width;
    if (height)
        *height = header.height;
    // The rows are taken from right behind the headers, whatever the data offset says.
    const uint64_t fileRow = fileRowOf(header);
    if (pixels && fileRow > 0)
        readRows(file.get(), CallerRows(pixels, stride, static_cast<uint32_t>(header.height), flip), fileRow, 0);
    return 1;
}
}
