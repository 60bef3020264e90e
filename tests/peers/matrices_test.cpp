// Matrices and ranges beside zimg at 16 bits, and beside libswscale for layouts of 10 bits.

#include "image.hpp"

#include <zimg.h>

#include <functional>
#include <memory>

namespace vela::test {
namespace {

// --- zimg ------------------------------------------------------------------------------------------------------

struct Colour {
    VcbCscMatrix matrix;
    VcbCscRange range;
};

zimg_image_format formatOf(const Image &image, Colour colour)
{
    constexpr zimg_matrix_coefficients_e matrices[] = {ZIMG_MATRIX_ST170_M, ZIMG_MATRIX_BT709, ZIMG_MATRIX_BT2020_NCL,
                                                       ZIMG_MATRIX_ST240_M};
    const bool isRgb = image.layout->flags & AV_PIX_FMT_FLAG_RGB;
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(image.width);
    format.height = static_cast<unsigned>(image.height);
    format.pixel_type = ZIMG_PIXEL_WORD;
    format.depth = 16;
    format.color_family = image.planeCount == 1 ? ZIMG_COLOR_GREY : isRgb ? ZIMG_COLOR_RGB : ZIMG_COLOR_YUV;
    format.matrix_coefficients = isRgb ? ZIMG_MATRIX_RGB : matrices[colour.matrix];
    format.pixel_range = colour.range == VCB_CSC_FULL ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    return format;
}

// zimg's planes are R G B or Y U V; rows begin at 64 bytes, as those of 384 words do where the first does.
struct Planes {
    std::array<std::vector<std::uint16_t>, 3> room;
    std::array<std::uint16_t *, 3> plane{};

    explicit Planes(const Image &image)
    {
        for (int i = 0; i < image.layout->nb_components; ++i) {
            auto &words = room[static_cast<std::size_t>(i)];
            words.resize(static_cast<std::size_t>(image.width * image.height) + 32);
            void *start = words.data();
            std::size_t space = words.size() * 2;
            plane[static_cast<std::size_t>(i)] = static_cast<std::uint16_t *>(std::align(64, space - 64, start, space));
        }
    }
};

void convertByZimg(Image &to, Colour toColour, const Image &from, Colour fromColour)
{
    const zimg_image_format source = formatOf(from, fromColour);
    const zimg_image_format target = formatOf(to, toColour);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.dither_type = ZIMG_DITHER_NONE;
    const std::unique_ptr<zimg_filter_graph, decltype(&zimg_filter_graph_free)> graph(
        zimg_filter_graph_build(&source, &target, &parameters), &zimg_filter_graph_free);
    ASSERT_TRUE(graph);
    Planes in(from);
    Planes out(to);
    zimg_image_buffer_const input = {ZIMG_API_VERSION, {}};
    zimg_image_buffer output = {ZIMG_API_VERSION, {}};
    const auto pitch = static_cast<std::ptrdiff_t>(from.width) * 2;
    for (int i = 0; i < from.layout->nb_components; ++i) {
        const auto c = static_cast<std::size_t>(i);
        for (int y = 0; y < from.height; ++y)
            for (int x = 0; const std::uint32_t code : from.line(i, y))
                in.plane[c][y * from.width + x++] = static_cast<std::uint16_t>(code);
        input.plane[i] = {in.plane[c], pitch, ZIMG_BUFFER_MAX};
        output.plane[i] = {out.plane[c], pitch, ZIMG_BUFFER_MAX};
    }
    std::size_t size = 0;
    zimg_filter_graph_get_tmp_size(graph.get(), &size);
    std::vector<std::uint8_t> room(size + 64);
    void *start = room.data();
    std::size_t space = room.size();
    void *scratch = std::align(64, size, start, space);
    ASSERT_EQ(zimg_filter_graph_process(graph.get(), &input, &output, scratch, nullptr, nullptr, nullptr, nullptr), 0);
    for (int i = 0; i < to.layout->nb_components; ++i)
        for (int y = 0; y < to.height; ++y)
            std::copy_n(out.plane[static_cast<std::size_t>(i)] + y * to.width, to.width,
                        static_cast<std::uint16_t *>(to.row(to.layout->comp[i].plane, y)));
}

class Zimg : public testing::TestWithParam<Colour> {};

constexpr Colour rgbFull{VCB_CSC_BT709, VCB_CSC_FULL};

// Both compute in floats and round to nearest, in another order of the products.
constexpr Tolerance aCode{1, 0.01};

TEST_P(Zimg, MatricesOf16Bits)
{
    const Colour colour = GetParam();
    for (const Image &rgb :
         {photographAs(AV_PIX_FMT_GBRP16LE, Detail::photograph), noise(av_pix_fmt_desc_get(AV_PIX_FMT_GBRP16LE))}) {
        Image yuv(AV_PIX_FMT_YUV444P16LE, rgb.width, rgb.height);
        Image theirYuv = yuv;
        convert(procs().CscGbr16ToI416, yuv, rgb, toYuv(colour.matrix, colour.range, 16, 16));
        convertByZimg(theirYuv, colour, rgb, rgbFull);
        expectNear(yuv, theirYuv, aCode);

        Image back = rgb;
        Image theirs = rgb;
        convert(procs().CscI416ToGbr16, back, theirYuv, toRgb(colour.matrix, colour.range, 16, 16));
        convertByZimg(theirs, rgbFull, theirYuv, colour);
        expectNear(back, theirs, aCode);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Zimg,
                         testing::Values(Colour{VCB_CSC_BT601, VCB_CSC_LIMITED}, Colour{VCB_CSC_BT709, VCB_CSC_LIMITED},
                                         Colour{VCB_CSC_BT709, VCB_CSC_FULL},
                                         Colour{VCB_CSC_BT2020_NCL, VCB_CSC_LIMITED},
                                         Colour{VCB_CSC_BT2020_NCL, VCB_CSC_FULL},
                                         Colour{VCB_CSC_SMPTE240M, VCB_CSC_LIMITED}));

TEST(Zimg, RangesOf16Bits)
{
    constexpr Colour limited{VCB_CSC_BT709, VCB_CSC_LIMITED};
    constexpr Colour full{VCB_CSC_BT709, VCB_CSC_FULL};
    const Image from = noise(av_pix_fmt_desc_get(AV_PIX_FMT_GRAY16LE));
    Image ours = from;
    Image theirs = from;
    convert(procs().CscLuma16ToFullRange, ours, from);
    convertByZimg(theirs, full, from, limited);
    expectNear(ours, theirs, aCode);
    convert(procs().CscLuma16ToLimitedRange, ours, from);
    convertByZimg(theirs, limited, from, full);
    expectNear(ours, theirs, aCode);
}

// --- libswscale ------------------------------------------------------------------------------------------------

struct Case {
    const char *kernel;
    AVPixelFormat to;
    AVPixelFormat from;
    Tolerance tolerance;
    std::function<void(Image &, const Image &)> ours;
};

template <auto member, class... Given>
Case conversion(const char *kernel, AVPixelFormat to, AVPixelFormat from, Tolerance tolerance, Given... given)
{
    return {kernel, to, from, tolerance,
            [=](Image &target, const Image &source) { convert(procs().*member, target, source, given...); }};
}
#define ROW(kernel, to, from, ...) conversion<&Procs::kernel>(#kernel, AV_PIX_FMT_##to, AV_PIX_FMT_##from, __VA_ARGS__)

// Both have more bits of fraction than a code needs and round to nearest; to YUV libswscale's weights are the coarser.
constexpr Tolerance roundings{1, 0.01, Columns::even};
constexpr Tolerance weights{1, 0.1, Columns::even};
// The kernels fill words of 16 bits, of which a format of 10 bits is the upper ones: truncated.
constexpr Tolerance upperBits{1, 0.55, Columns::even};

std::vector<Case> cases()
{
    constexpr std::uint8_t a = 255;
    const CscYuvToRgb *from10 = toRgb(VCB_CSC_BT709, VCB_CSC_LIMITED, 10, 8);
    const CscYuvToRgb *from16 = toRgb(VCB_CSC_BT709, VCB_CSC_LIMITED, 16, 8);
    const CscRgbToYuv *to10 = toYuv(VCB_CSC_BT709, VCB_CSC_LIMITED, 8, 10);
    const CscRgbToYuv *to16 = toYuv(VCB_CSC_BT709, VCB_CSC_LIMITED, 8, 16);
    return {
        ROW(CscP016ToBgra, BGRA, P010LE, roundings, from16, a),
        ROW(CscP216ToBgra, BGRA, P210LE, roundings, from16, a),
        ROW(CscI010ToBgra, BGRA, YUV420P10LE, roundings, from10, a),
        ROW(CscI210ToBgra, BGRA, YUV422P10LE, roundings, from10, a),
        ROW(CscI410ToBgra, BGRA, YUV444P10LE, roundings, from10, a),
        ROW(CscBgraToP016, P010LE, BGRA, upperBits, to16),
        ROW(CscBgraToP216, P210LE, BGRA, upperBits, to16),
        ROW(CscBgraToI010, YUV420P10LE, BGRA, weights, to10),
        ROW(CscBgraToI210, YUV422P10LE, BGRA, weights, to10),
        ROW(CscBgraToI410, YUV444P10LE, BGRA, weights, to10),
    };
}

void PrintTo(const Case &c, std::ostream *out) { *out << c.kernel; }

class Swscale : public testing::TestWithParam<Case> {};

TEST_P(Swscale, TenBitsBesideBgra)
{
    const Case &c = GetParam();
    const Image from = photographAs(c.from, Detail::doubled);
    Image ours(c.to, from.width, from.height);
    Image theirs = ours;
    c.ours(ours, from);
    convertBySwscale(theirs, from, VCB_CSC_BT709);
    expectNear(ours, theirs, c.tolerance);
}

// libswscale reads Y210 and does not write it; V210 it knows not at all.
TEST(Swscale, PackedTenBitsBesideBgra)
{
    const Image p210 = photographAs(AV_PIX_FMT_P210LE, Detail::doubled);
    Image y210(AV_PIX_FMT_Y210LE, p210.width, p210.height);
    Image ours(AV_PIX_FMT_BGRA, p210.width, p210.height);
    Image theirs = ours;
    const CscYuvToRgb *from10 = toRgb(VCB_CSC_BT709, VCB_CSC_LIMITED, 10, 8);
    convert(procs().CscP216ToY216, y210, p210);
    convertBySwscale(theirs, y210, VCB_CSC_BT709);
    convert(procs().CscY216ToBgra, ours, y210, toRgb(VCB_CSC_BT709, VCB_CSC_LIMITED, 16, 8), std::uint8_t{255});
    expectNear(ours, theirs, roundings);

    std::vector<std::uint32_t> v210(static_cast<std::size_t>(p210.width / 6 * 4));
    for (int y = 0; y < p210.height; ++y) {
        const std::vector<void *> rows = rowsAt(p210, y, 1);
        callWithRows(procs().CscP216ToV210, {v210.data(), rows[0], rows[1]}, std::make_index_sequence<3>(), p210.width);
        procs().CscV210ToBgra(static_cast<std::uint8_t *>(ours.row(0, y)), v210.data(), p210.width, from10, 255);
    }
    expectNear(ours, theirs, roundings);
}

INSTANTIATE_TEST_SUITE_P(All, Swscale, testing::ValuesIn(cases()), [](const auto &test) { return test.param.kernel; });

} // namespace
} // namespace vela::test
