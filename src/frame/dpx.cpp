// DPX pictures (SMPTE ST 268): 10-bit components in 32-bit words, handed on as the file has them.
#include "frame/image_file.hpp"
#include "platform/platform.hpp"

#include <vela/frame.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <limits>

namespace vela::frame {
namespace {

constexpr std::size_t headerSize = 2080; // generic, orientation and industry headers
constexpr uint32_t undefined32 = 0xFFFFFFFF;

// Offsets into the header; the last four are those of image element 1.
namespace field {
constexpr std::size_t dataOffset = 4;
constexpr std::size_t width = 772;
constexpr std::size_t height = 776;
constexpr std::size_t descriptor = 800;
constexpr std::size_t bitSize = 803;
constexpr std::size_t packing = 804;
constexpr std::size_t endOfLinePadding = 812;
} // namespace field

enum Descriptor : unsigned char { Rgb = 50, Rgba = 51, Abgr = 52 };

class DpxHeader {
public:
    bool read(std::FILE *file) { return std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size(); }
    uint32_t dataOffset() const { return word(field::dataOffset); }
    int32_t width() const { return static_cast<int32_t>(word(field::width)); }
    int32_t height() const { return static_cast<int32_t>(word(field::height)); }
    uint8_t descriptor() const { return bytes[field::descriptor]; }
    uint8_t bitSize() const { return bytes[field::bitSize]; }
    uint16_t packing() const
    {
        const unsigned char *at = &bytes[field::packing];
        return bigEndian() ? static_cast<uint16_t>(at[0] << 8 | at[1]) : littleEndian16(at);
    }
    uint32_t endOfLinePadding() const { return word(field::endOfLinePadding); }

private:
    // Any other magic counts as little-endian.
    bool bigEndian() const { return std::memcmp(bytes.data(), "SDPX", 4) == 0; }
    uint32_t word(std::size_t offset) const
    {
        const uint32_t value = littleEndian32(&bytes[offset]);
        return bigEndian() ? __builtin_bswap32(value) : value;
    }

    std::array<unsigned char, headerSize> bytes;
};

int32_t formatOf(const DpxHeader &header)
{
    const bool methodA = header.packing() == 1;
    if (header.bitSize() != 10 || (!methodA && header.packing() != 2))
        return VCB_DPX_UNSUPPORTED;
    switch (header.descriptor()) {
    case Rgb:
        return methodA ? VCB_DPX_RGB_A : VCB_DPX_RGB_B;
    case Rgba:
        return methodA ? VCB_DPX_RGBA_A : VCB_DPX_RGBA_B;
    case Abgr:
        return methodA ? VCB_DPX_ABGR_A : VCB_DPX_ABGR_B;
    default:
        return VCB_DPX_UNSUPPORTED;
    }
}

// ((3 * width + 2) / 3) * 4 where products and sums wrap, as hosts compute it too.
int32_t fourComponentRow(int32_t width)
{
    const int32_t components = static_cast<int32_t>(3 * static_cast<uint32_t>(width) + 2);
    return static_cast<int32_t>(static_cast<uint32_t>(components / 3) * 4);
}

// The length of a file row, or 0 if there are no rows to read.
uint64_t rowBytesOf(const DpxHeader &header, int32_t format)
{
    if (format == VCB_DPX_UNSUPPORTED || header.width() <= 0 || header.height() <= 0)
        return 0;
    const int64_t row = header.descriptor() == Rgb ? int64_t{4} * header.width() : fourComponentRow(header.width());
    return row > 0 && row <= std::numeric_limits<int32_t>::max() ? static_cast<uint64_t>(row) : 0;
}

} // namespace
} // namespace vela::frame

using namespace vela::frame;

extern "C" {

int32_t VCB_CALL VCB_ReadDPX(const wchar_t *path, void *pixels, int64_t stride, int32_t *width, int32_t *height,
                             int32_t *format, uint8_t flip) noexcept
{
    if (width)
        *width = 0;
    if (height)
        *height = 0;
    if (format)
        *format = VCB_DPX_UNSUPPORTED;
    if (!width || !height || !format)
        return 0;
    const ImageFile file = openImageFile(path, "rb");
    DpxHeader header;
    if (!file || !header.read(file.get()))
        return 0;
    *width = header.width();
    *height = header.height();
    *format = formatOf(header);

    const uint64_t rowBytes = rowBytesOf(header, *format);
    if (!pixels || rowBytes == 0 || !vela::platform::seekTo(file.get(), header.dataOffset()))
        return 1;
    const uint32_t padding = header.endOfLinePadding();
    readRows(file.get(), CallerRows(pixels, stride, static_cast<uint32_t>(header.height()), flip), rowBytes,
             padding == undefined32 ? 0 : padding);
    return 1;
}
}
