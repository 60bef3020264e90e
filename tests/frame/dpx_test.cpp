#include "image_test.hpp"

#include <vela/frame.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using test::Fence;
using test::Picture;
using test::TempFile;

constexpr uint32_t undefined32 = 0xFFFFFFFF;

struct Header {
    uint32_t width = 2;
    uint32_t height = 3;
    uint8_t descriptor = 50;
    uint8_t bitSize = 10;
    uint16_t packing = 1;
    uint32_t endOfLinePadding = 0;
    uint32_t dataOffset = 2080;
    bool bigEndian = true;
};

// What the reader does not use is nonsense.
std::string dpx(const Header &header, const std::string &rows)
{
    std::string bytes(2080, '\xDD');
    bytes.replace(0, 4, header.bigEndian ? "SDPX" : "XPDS");
    test::put32(bytes, 4, header.dataOffset, header.bigEndian);
    test::put32(bytes, 772, header.width, header.bigEndian);
    test::put32(bytes, 776, header.height, header.bigEndian);
    bytes[800] = static_cast<char>(header.descriptor);
    bytes[803] = static_cast<char>(header.bitSize);
    test::put16(bytes, 804, header.packing, header.bigEndian);
    test::put32(bytes, 812, header.endOfLinePadding, header.bigEndian);
    return bytes + rows;
}

struct Outcome {
    int32_t result = -1;
    int32_t width = -1;
    int32_t height = -1;
    int32_t format = -1;
    bool operator==(const Outcome &) const = default;
};

void PrintTo(const Outcome &o, std::ostream *out)
{
    *out << "result " << o.result << ", " << o.width << "x" << o.height << ", format " << o.format;
}

Outcome read(const TempFile &file, void *pixels, int64_t stride, bool flip = false)
{
    Outcome o;
    o.result = VCB_ReadDPX(file.wide().c_str(), pixels, stride, &o.width, &o.height, &o.format, flip);
    return o;
}

TEST(ReadDpx, Formats)
{
    const struct {
        uint8_t descriptor;
        uint8_t bitSize;
        uint16_t packing;
        int32_t format;
    } cases[] = {
        {50, 10, 1, 1037},
        {50, 10, 2, 1039},
        {51, 10, 1, 1041},
        {51, 10, 2, 1043},
        {52, 10, 1, 1042},
        {52, 10, 2, 1044},
        {49, 10, 1, VCB_DPX_UNSUPPORTED},
        {53, 10, 1, VCB_DPX_UNSUPPORTED},
        {50, 8, 1, VCB_DPX_UNSUPPORTED},
        {50, 10, 0, VCB_DPX_UNSUPPORTED},
        {50, 10, 3, VCB_DPX_UNSUPPORTED},
        {50, 10, 0x100, VCB_DPX_UNSUPPORTED}, // packing 1 in the other byte order
    };
    const std::string rows = test::noise(2 * 4 * 3);
    for (const auto &c : cases)
        for (const bool bigEndian : {false, true}) {
            const TempFile file(
                dpx({.descriptor = c.descriptor, .bitSize = c.bitSize, .packing = c.packing, .bigEndian = bigEndian},
                    rows));
            Picture picture(8, 3, Fence::After);
            const std::string untouched(24, '.');
            picture.fill(untouched);
            EXPECT_EQ(read(file, picture.pixels(), 8), (Outcome{1, 2, 3, c.format}));
            EXPECT_EQ(picture.bytes(), c.format == VCB_DPX_UNSUPPORTED ? untouched : rows);
        }
}

TEST(ReadDpx, OtherMagicIsLittleEndian)
{
    for (const char *magic : {"sdpx", "SDPY", "\xFF\xFF\xFF\xFF"}) {
        std::string bytes = dpx({.bigEndian = false}, "");
        bytes.replace(0, 4, magic);
        EXPECT_EQ(read(TempFile(bytes), nullptr, 0), (Outcome{1, 2, 3, VCB_DPX_RGB_A}));
    }
}

TEST(ReadDpx, RowsOfEveryShape)
{
    const struct {
        Header header;
        int64_t rowBytes;
        int64_t gap;
    } cases[] = {
        {{}, 8, 0},
        {{.width = 5, .bigEndian = false}, 20, 0},
        {{.endOfLinePadding = 4}, 8, 4},
        {{.endOfLinePadding = 5000}, 8, 5000},
        {{.endOfLinePadding = undefined32}, 8, 0},
        {{.endOfLinePadding = undefined32 - 1}, 8, 0xFFFFFFFE},
        {{.width = 7, .descriptor = 51, .packing = 2, .endOfLinePadding = 1}, 28, 1},
        {{.height = 1, .descriptor = 52}, 8, 0},
        {{.width = 0x55555556, .descriptor = 51}, 4, 0}, // 3 * width wraps
    };
    for (const auto &c : cases) {
        const auto height = static_cast<int64_t>(c.header.height);
        const std::size_t whole = c.gap < 10000 ? static_cast<std::size_t>((c.rowBytes + c.gap) * height) : 100;
        for (const std::size_t length : {whole + 9, whole, whole - 1, whole / 2, std::size_t{1}, std::size_t{0}}) {
            const std::string data = test::noise(length);
            const TempFile file(dpx(c.header, data));
            for (const int64_t stride : {c.rowBytes, c.rowBytes - 1, c.rowBytes + 1, int64_t{1}, int64_t{100}})
                for (const int64_t direction : {1, -1})
                    for (const bool flip : {false, true})
                        for (const Fence fence : test::fences) {
                            Picture picture(direction * stride, height, fence);
                            picture.fill(std::string(picture.bytes().size(), '.'));
                            const std::string expected = picture.afterReading(data, c.rowBytes, c.gap, flip);
                            EXPECT_EQ(read(file, picture.pixels(), direction * stride, flip).result, 1);
                            ASSERT_TRUE(picture.bytes() == expected && picture.canariesIntact())
                                << "row " << c.rowBytes << " + " << c.gap << ", " << length << " bytes, stride "
                                << direction * stride << ", flip " << flip;
                        }
        }
    }
}

TEST(ReadDpx, DataOffset)
{
    const struct {
        uint32_t offset;
        std::string expected; // one row of 8 bytes
    } cases[] = {
        {2080, "abcdefgh"},        {2082, "cdefghij"},   {2088, "ij......"},
        {2090, "........"},        {100000, "........"}, {0, std::string("SDPX\0\0\0\0", 8)},
        {undefined32, "........"},
    };
    for (const auto &c : cases) {
        const TempFile file(dpx({.height = 1, .dataOffset = c.offset}, "abcdefghij"));
        char row[] = "........";
        EXPECT_EQ(read(file, row, 8), (Outcome{1, 2, 1, VCB_DPX_RGB_A}));
        EXPECT_EQ(std::string(row, 8), c.expected) << c.offset;
    }
}

// Headers that describe no rows: nothing may be written, wherever pixels points.
TEST(ReadDpx, NoRowsToRead)
{
    const struct {
        uint32_t width;
        uint32_t height;
        uint8_t descriptor;
        int64_t stride;
    } cases[] = {
        {0, 3, 50, 8},
        {0, 3, 51, 8},
        {2, 0, 50, 8},
        {2, 0x80000000, 50, 8},
        {2, 0xFFFFFFFF, 50, 8},
        {0xFFFFFFFF, 1, 50, 8},
        {0x80000000, 1, 51, 8},
        {0x20000000, 1, 50, 8},
        {0x7FFFFFFF, 1, 50, 8},
        {0xC0000001, 1, 50, 8},
        {0xFFFFFFFF, 1, 51, 8},
        {2, 3, 50, 0},
        {5000, 0x7FFFFFFF, 50, 0},
    };
    for (const auto &c : cases)
        for (const bool flip : {false, true}) {
            const TempFile file(
                dpx({.width = c.width, .height = c.height, .descriptor = c.descriptor}, test::noise(64)));
            const test::FencedBytes nothing(0, Fence::After);
            const Outcome o = read(file, nothing.begin(), c.stride, flip);
            EXPECT_EQ(o.result, 1);
            EXPECT_EQ(o.width, static_cast<int32_t>(c.width));
            EXPECT_EQ(o.height, static_cast<int32_t>(c.height));
            EXPECT_TRUE(nothing.canariesIntact());
        }
}

// Two billion rows are promised, three are there.
TEST(ReadDpx, PromisedRowsAreMissing)
{
    const int64_t height = 0x7FFFFFFF;
    const std::string data = test::noise(24);
    const TempFile file(dpx({.height = static_cast<uint32_t>(height)}, data));
    for (const int64_t stride : {9, -9})
        for (const bool flip : {false, true}) {
            const Picture picture(stride, 3, Fence::After);
            const std::string expected = picture.afterReading(data, 8, 0, flip);
            void *pixels = picture.pixels();
            if (flip)
                pixels = test::pixelsWithRowAt(pixels, stride, height - 3);
            EXPECT_EQ(read(file, pixels, stride, flip), (Outcome{1, 2, 0x7FFFFFFF, VCB_DPX_RGB_A}));
            EXPECT_EQ(picture.bytes(), expected);
            EXPECT_TRUE(picture.canariesIntact());
        }
}

TEST(ReadDpx, ShortHeaderAndNoFile)
{
    const Outcome nothing{0, 0, 0, VCB_DPX_UNSUPPORTED};
    const std::string whole = dpx({}, "");
    for (const std::size_t length : {0, 3, 4, 772, 816, 2048, 2079})
        EXPECT_EQ(read(TempFile(whole.substr(0, length)), nullptr, 8), nothing);
    EXPECT_EQ(read(TempFile(whole), nullptr, 8), (Outcome{1, 2, 3, VCB_DPX_RGB_A}));
    EXPECT_EQ(read(TempFile(), nullptr, 8), nothing);
}

TEST(ReadDpx, NullArguments)
{
    const TempFile file(dpx({}, ""));
    const std::wstring path = file.wide();
    for (int missing = 0; missing < 4; ++missing) {
        int32_t width = -1;
        int32_t height = -1;
        int32_t format = -1;
        EXPECT_EQ(VCB_ReadDPX(missing == 3 ? nullptr : path.c_str(), nullptr, 8, missing == 0 ? nullptr : &width,
                              missing == 1 ? nullptr : &height, missing == 2 ? nullptr : &format, 0),
                  0);
        EXPECT_EQ(width, missing == 0 ? -1 : 0);
        EXPECT_EQ(height, missing == 1 ? -1 : 0);
        EXPECT_EQ(format, missing == 2 ? -1 : VCB_DPX_UNSUPPORTED);
    }
}

} // namespace
