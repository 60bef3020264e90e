#include "image_test.hpp"

#include <vela/frame.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace std::string_literals;
using test::Fence;
using test::Picture;
using test::TempFile;

constexpr int64_t headersSize = 54;

// --- Writing ---

TEST(WriteBmp, EveryByteOfSmallFiles)
{
    const auto headers = [](char fileSize, char width, char bits, char imageSize) {
        return "BM"s + fileSize + "\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s + width + "\0\0\0\2\0\0\0\1\0"s + bits +
               "\0\0\0\0\0"s + imageSize + "\0\0\0"s + std::string(16, '\0');
    };
    const struct {
        int64_t stride;
        int32_t bits;
        uint8_t flip;
        std::string pixels; // from the lowest address; two rows of one pixel
        std::string file;
    } cases[] = {
        {3, 24, 0, "abcdef", headers(62, 1, 24, 8) + "abc0def0"},
        {3, 24, 1, "abcdef", headers(62, 1, 24, 8) + "def0abc0"},
        {4, 24, 0, "abcxdefy", headers(62, 1, 24, 8) + "abcxdefy"}, // in one piece
        {4, 24, 1, "abcxdefy", headers(62, 1, 24, 8) + "def0abc0"},
        {-3, 24, 0, "defabc", headers(60, 1, 24, 6) + "abcdef"},
        {-3, 24, 1, "defabc", headers(60, 1, 24, 6) + "defabc"},
        {2, 24, 0, "abcd", headers(60, 1, 24, 6) + "abccd0"}, // rows overlap; the last one ends early
        {0, 24, 0, "abc", headers(60, 1, 24, 6) + "abcabc"},
        {4, 32, 0, "abcdefgh", headers(62, 1, 32, 8) + "abcdefgh"},
        {5, 32, 1, "abcdxefghy", headers(62, 1, 32, 8) + "efghabcd"},
        {-4, 32, 0, "efghabcd", headers(62, 1, 32, 8) + "abcdefgh"},
        {2, 16, 0, "abcd", headers(58, 1, 16, 4) + "abcd"},
        {4, 15, 0, "axxxbyyy", headers(56, 1, 15, 2) + "ab"},
        {4, 1, 0, "axxxbyyy", headers(54, 1, 1, 0)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.pixels) + " stride " + std::to_string(c.stride) + " flip " +
                     std::to_string(c.flip));
        const TempFile file;
        const int64_t rowZero = c.stride < 0 ? -c.stride : 0;
        EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), c.pixels.data() + rowZero, c.stride, c.bits, 1, 2, c.flip), 1);
        EXPECT_EQ(file.read(), c.file);
    }
}

TEST(WriteBmp, GreyPalette)
{
    const TempFile file;
    EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), "abcdefghij", 5, 8, 5, 2, 0), 1);
    const std::string bytes = file.read();
    ASSERT_EQ(bytes.size(), 54 + 1024 + 16u);
    EXPECT_EQ(bytes.substr(2, 12), "\x46\4\0\0\0\0\0\0\x36\4\0\0"s);
    for (std::size_t i = 0; i < 256; ++i) {
        const char grey = static_cast<char>(i);
        EXPECT_EQ(bytes.substr(54 + 4 * i, 4), (std::string{grey, grey, grey, '\0'}));
    }
    EXPECT_EQ(bytes.substr(1078), "abcde000fghij000");
}

// The pixel bytes of a file, one by one.
std::string expectedRows(const Picture &picture, int64_t stride, int32_t bits, int64_t width, int64_t height, bool flip)
{
    const int64_t data = bits / 8 * width;
    const bool padded = bits == 8 || (bits == 24 && stride >= 3 * width % 4);
    const int64_t row = padded ? (data + 3) / 4 * 4 : data;
    const bool onePiece = row == (flip ? -stride : stride);
    const std::string buffer = picture.bytes();
    std::string rows;
    for (int64_t i = 0; i < height; ++i)
        for (int64_t c = 0; c < row; ++c) {
            const auto from = static_cast<std::size_t>(picture.offset(picture.fileRow(i, flip)) + c);
            rows += (c < data || onePiece) && from < buffer.size() ? buffer[from] : '0';
        }
    return rows;
}

TEST(WriteBmp, RowsOfEveryShape)
{
    const TempFile file;
    const std::wstring path = file.wide();
    for (const int32_t bits : {8, 16, 24, 32})
        for (const int32_t width : {0, 1, 2, 3, 4, 5})
            for (const int64_t stride : {-20, -16, -12, -5, -4, -3, -1, 1, 2, 3, 4, 5, 8, 9, 12, 16, 21})
                for (const uint32_t height : {0, 1, 3})
                    for (const bool flip : {false, true}) {
                        const Fence fence = width % 2 ? Fence::Before : Fence::After;
                        const Picture picture(stride, height, fence);
                        ASSERT_EQ(VCB_WriteBMP(path.c_str(), picture.pixels(), stride, bits, width, height, flip), 1);
                        const std::size_t rowsBegin = bits == 8 ? 1078 : 54;
                        ASSERT_EQ(file.read().substr(rowsBegin),
                                  expectedRows(picture, stride, bits, width, height, flip))
                            << bits << " bits, width " << width << ", stride " << stride << ", height " << height
                            << ", flip " << flip;
                    }
}

TEST(WriteBmp, StrideZeroRepeatsARow)
{
    const TempFile file;
    const test::FencedBytes row(5, Fence::After);
    std::copy_n("abcde", 5, row.begin());
    for (const bool flip : {false, true}) {
        EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), row.begin(), 0, 8, 5, 3, flip), 1);
        EXPECT_EQ(file.read().substr(1078), "abcde000abcde000abcde000");
    }
}

TEST(WriteBmp, Refuses)
{
    const TempFile file;
    const std::wstring path = file.wide();
    const int32_t wide = 0x7FFFFFFF;
    const char pixels[16] = {};
    EXPECT_EQ(VCB_WriteBMP(nullptr, pixels, 4, 32, 1, 1, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), nullptr, 4, 32, 1, 1, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, -32, 1, 1, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 65536, 1, 1, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 32, -1, 1, 0), 0);
    // sizes whose product passes 2^32, 2^63 and 2^64
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 32, wide, 1, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 32, 1, 0x40000000, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 32, 0x10000, 0x4000, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 65535, wide, 0xFFFFFFFF, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 64, 0x40000000, 0x80000000, 0), 0);
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, INT64_MIN, 8, wide, 0xFFFFFFFF, 1), 0);
    // 4 GiB with the headers, not without
    EXPECT_EQ(VCB_WriteBMP(path.c_str(), pixels, 4, 8, 0x7FFFFFFC, 2, 0), 0);
    EXPECT_FALSE(file.exists());
    EXPECT_EQ(VCB_WriteBMP((path + L"-no/such/directory").c_str(), pixels, 4, 32, 1, 1, 0), 0);
}

TEST(WriteBmp, NoRows)
{
    const TempFile file;
    EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), "", INT64_MIN, 32, 0x7FFFFFFF, 0, 1), 1);
    EXPECT_EQ(file.read().size(), 54u);
    EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), "", 7, 32, 0, 0xFFFFFFFF, 0), 1);
    EXPECT_EQ(file.read().size(), 54u);
    EXPECT_EQ(file.read().substr(22, 4), "\xFF\xFF\xFF\xFF");
}

// --- Reading ---

struct Header {
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t bits = 32;
    uint32_t imageSize = 0;
};

std::string bitmap(const Header &header, const std::string &rows)
{
    std::string bytes(54, '\xDD'); // magic, sizes and offset are nonsense
    test::put32(bytes, 18, header.width);
    test::put32(bytes, 22, header.height);
    test::put16(bytes, 28, header.bits);
    test::put32(bytes, 34, header.imageSize);
    return bytes + rows;
}

TEST(ReadBmp, RowsOfEveryShape)
{
    const struct {
        Header header;
        int64_t fileRow;
    } cases[] = {
        {{1, 2, 24, 0}, 4},   {{5, 3, 24, 48}, 16},
        {{5, 3, 24, 45}, 15}, {{5, 3, 24, 50}, 16}, // a remainder
        {{5, 3, 24, 2}, 16},                        // less than a byte
        {{2, 3, 32, 24}, 8},  {{3, 1, 8, 0}, 4},
        {{3, 2, 16, 0}, 8},   {{1, 3, 32, 30000}, 10000}, // a lie
        {{0, 2, 24, 16}, 8},  {{0xFFFFFFFF, 2, 24, 16}, 8},
    };
    for (const auto &c : cases) {
        const auto height = static_cast<int64_t>(c.header.height);
        const std::string rows = test::noise(static_cast<std::size_t>(c.fileRow * height));
        for (const std::size_t length :
             {rows.size() + 9, rows.size(), rows.size() - 1, rows.size() / 2, std::size_t{1}, std::size_t{0}}) {
            const std::string data = test::noise(length);
            const TempFile file(bitmap(c.header, data));
            for (const int64_t stride : {c.fileRow, c.fileRow - 1, c.fileRow + 1, int64_t{1}, int64_t{24}})
                for (const int64_t direction : {1, -1})
                    for (const bool flip : {false, true})
                        for (const Fence fence : test::fences) {
                            Picture picture(direction * stride, height, fence);
                            picture.fill(std::string(picture.bytes().size(), '.'));
                            const std::string expected = picture.afterReading(data, c.fileRow, 0, flip);
                            int32_t width = 0;
                            EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), picture.pixels(), direction * stride, nullptr,
                                                  &width, nullptr, flip),
                                      1);
                            EXPECT_EQ(width, static_cast<int32_t>(c.header.width));
                            ASSERT_TRUE(picture.bytes() == expected && picture.canariesIntact())
                                << "row " << c.fileRow << ", " << length << " bytes, stride " << direction * stride
                                << ", flip " << flip;
                        }
        }
    }
}

TEST(ReadBmp, HeaderAlone)
{
    const TempFile file(bitmap({0x80000000, 0xFFFFFFFE, 65535, 7}, ""));
    int32_t bits = 0;
    int32_t width = 0;
    int32_t height = 0;
    EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), nullptr, 4, &bits, &width, &height, 0), 1);
    EXPECT_EQ(bits, 65535);
    EXPECT_EQ(width, INT32_MIN);
    EXPECT_EQ(height, -2);
    EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), nullptr, 0, nullptr, nullptr, nullptr, 1), 1);
}

TEST(ReadBmp, ShortHeader)
{
    const std::string whole = bitmap({1, 1, 32, 4}, "abcd");
    for (std::size_t length = 0; length < headersSize; ++length) {
        const TempFile file(whole.substr(0, length));
        int32_t values[] = {-5, -6, -7};
        char pixel[] = "....";
        EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), pixel, 4, &values[0], &values[1], &values[2], 0), 0);
        EXPECT_TRUE(values[0] == -5 && values[1] == -6 && values[2] == -7 && pixel == "...."s) << length;
    }
}

TEST(ReadBmp, NoFile)
{
    int32_t width = -5;
    EXPECT_EQ(VCB_ReadBMP(TempFile().wide().c_str(), nullptr, 4, nullptr, &width, nullptr, 0), 0);
    EXPECT_EQ(VCB_ReadBMP(nullptr, nullptr, 4, nullptr, &width, nullptr, 0), 0);
    EXPECT_EQ(width, -5);
}

// Headers that describe no rows: nothing may be written, wherever pixels points.
TEST(ReadBmp, NoRowsToRead)
{
    const struct {
        Header header;
        int64_t stride;
    } cases[] = {
        {{1, 0, 32, 4}, 4},          {{1, 0xFFFFFFFF, 32, 4}, 4},
        {{1, 0xFFFFFFF0, 32, 4}, 4}, {{1, 0x80000000, 32, 0x80000000}, 4},
        {{1, 1, 32, 0x80000000}, 4}, {{1, 1, 32, 0xFFFFFFFF}, -4},
        {{0x7FFFFFFF, 1, 32, 0}, 4}, {{0x7FFFFFFF, 1, 65535, 0}, 4},
        {{0x7FFFFFFF, 1, 8, 0}, 4},  {{0x80000000, 1, 65535, 0}, 4},
        {{0xFFFFFFFF, 1, 32, 0}, 4}, {{0, 2, 32, 0}, 4},
        {{1, 2, 7, 0}, 4},           {{1, 2, 32, 8}, 0},
    };
    for (const auto &c : cases)
        for (const bool flip : {false, true}) {
            const TempFile file(bitmap(c.header, "abcdefghijklmnop"));
            const test::FencedBytes nothing(0, Fence::After);
            EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), nothing.begin(), c.stride, nullptr, nullptr, nullptr, flip), 1);
            EXPECT_TRUE(nothing.canariesIntact());
        }
}

// Two billion rows are promised, ten bytes are there.
TEST(ReadBmp, PromisedRowsAreMissing)
{
    const int64_t height = 0x7FFFFFFF;
    const TempFile file(bitmap({1, static_cast<uint32_t>(height), 8, 0x7FFFFFFF}, "abcdefghij"));
    for (const int64_t stride : {2, -2})
        for (const bool flip : {false, true}) {
            const Picture picture(stride, 10, Fence::After); // the ten rows that are read
            const std::string expected = picture.afterReading("abcdefghij", 1, 0, flip);
            void *pixels = picture.pixels();
            if (flip)
                pixels = test::pixelsWithRowAt(pixels, stride, height - 10);
            EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), pixels, stride, nullptr, nullptr, nullptr, flip), 1);
            EXPECT_EQ(picture.bytes(), expected);
            EXPECT_TRUE(picture.canariesIntact());
        }
}

TEST(ReadBmp, SmallestStride)
{
    const TempFile file(bitmap({1, 1, 32, 4}, "abcd"));
    for (const bool flip : {false, true}) {
        const test::FencedBytes row(4, Fence::After);
        EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), row.begin(), INT64_MIN, nullptr, nullptr, nullptr, flip), 1);
        EXPECT_EQ(row.bytes(), "abcd");
    }
}

TEST(Bmp, RoundTrip)
{
    for (const int32_t bits : {16, 24, 32})
        for (const int32_t width : {1, 2, 3, 4, 5, 1919})
            for (const bool flip : {false, true}) {
                const int64_t rowBytes = bits / 8 * width;
                const int64_t height = 7;
                const TempFile file;
                const Picture written(rowBytes, height, Fence::After);
                const Picture read(-rowBytes, height, Fence::Before);
                EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), written.pixels(), rowBytes, bits, width, height, flip), 1);
                EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), read.pixels(), -rowBytes, nullptr, nullptr, nullptr, flip),
                          1);
                for (int64_t r = 0; r < height; ++r)
                    EXPECT_EQ(read.bytes().substr(static_cast<std::size_t>(read.offset(r)),
                                                  static_cast<std::size_t>(rowBytes)),
                              written.bytes().substr(static_cast<std::size_t>(written.offset(r)),
                                                     static_cast<std::size_t>(rowBytes)));
            }
}

// At 8 bits per pixel the reader takes the palette for the first rows.
TEST(Bmp, PaletteReadAsPixels)
{
    const TempFile file;
    EXPECT_EQ(VCB_WriteBMP(file.wide().c_str(), "abcdefgh", 4, 8, 4, 2, 0), 1);
    char pixels[8];
    EXPECT_EQ(VCB_ReadBMP(file.wide().c_str(), pixels, 4, nullptr, nullptr, nullptr, 0), 1);
    EXPECT_EQ(std::string(pixels, 8), "\0\0\0\0\1\1\1\0"s);
}

} // namespace
