#include "dpx.hpp"

#include "files.hpp"
#include "system.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

namespace host {
namespace {

constexpr std::size_t headerBytes = 2048;
constexpr std::uint8_t keepOrder = 0; // the files hold the top row first, as our pictures do
constexpr std::string_view bigEndianMagic = "SDPX";
constexpr std::string_view littleEndianMagic = "XPDS";

// Offsets into the header; the last two are those of image element 1.
enum Field : std::size_t { dataOffset = 4, encoding = 806, endOfLinePadding = 812 };

class Header {
public:
    explicit Header(const std::filesystem::path &path)
    {
        std::ifstream file(path, std::ios::binary);
        if (!file)
            throw unreadable(path, "no such file, or no permission");
        file.read(bytes.data(), headerBytes);
        whole = file.gcount() == headerBytes;
    }

    bool littleEndian() const { return begins(littleEndianMagic); }
    bool isDpx() const { return begins(bigEndianMagic) || littleEndian(); }
    bool isWhole() const { return whole; }

    std::uint32_t number(Field field, std::size_t count) const
    {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes[field + (littleEndian() ? count - 1 - i : i)]);
        return value;
    }

private:
    bool begins(std::string_view magic) const { return std::string_view(bytes.data(), magic.size()) == magic; }

    std::array<char, headerBytes> bytes{};
    bool whole = false;
};

// VCB_ReadDPX leaves rows that the file does not hold as they were; a file that really holds its rows also bounds the
// memory that they take.
void checkRows(const std::filesystem::path &path, const Header &header, int width, int height)
{
    constexpr std::uint32_t undefined = 0xFFFFFFFF;
    const std::uint32_t padding = header.number(endOfLinePadding, 4);
    const std::uintmax_t row = std::uintmax_t{4} * static_cast<unsigned>(width);
    const std::uintmax_t step = row + (padding == undefined ? 0 : padding);
    const std::uintmax_t end = header.number(dataOffset, 4) + step * (static_cast<unsigned>(height) - 1) + row;
    if (std::filesystem::file_size(path) < end)
        throw unreadable(path, "the file ends before its last row");
}

} // namespace

bool isDpx(const std::filesystem::path &path)
{
    checkIsFile(path);
    const std::filesystem::path extension = path.extension();
    return Header(path).isDpx() || extension == ".dpx" || extension == ".DPX";
}

DpxPicture readDpx(const Library &library, const std::filesystem::path &path)
{
    const auto read = LIBRARY_EXPORT(library, VCB_ReadDPX);
    const std::wstring name = widePath(path);

    const Header header(path);
    int32_t width = 0;
    int32_t height = 0;
    int32_t format = VCB_DPX_UNSUPPORTED;
    if (!header.isDpx())
        throw unreadable(path, "not a DPX file");
    if (!header.isWhole() || !read(name.c_str(), nullptr, 0, &width, &height, &format, keepOrder))
        throw unreadable(path, "the file ends within its header");
    if (format != VCB_DPX_RGB_A && format != VCB_DPX_RGB_B)
        throw unreadable(path, "only DPX of three components R, G, B with 10 bits each in words of 32 is wanted");
    if (header.number(encoding, 2) == 1)
        throw unreadable(path, "its rows are run-length encoded");
    if (width <= 0 || height <= 0)
        throw unreadable(path, "the picture is empty");
    checkRows(path, header, width, height);

    DpxPicture picture{Picture(width, height, 4), static_cast<VcbDpxFormat>(format), header.littleEndian()};
    if (!read(name.c_str(), picture.words.row(0), static_cast<int64_t>(picture.words.strideBytes()), &width, &height,
              &format, keepOrder))
        throw unreadable(path, "the library cannot open it");
    return picture;
}

} // namespace host
