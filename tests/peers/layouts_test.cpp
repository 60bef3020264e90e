// Where our layouts keep their components, as libavutil and the decoders of libavcodec see it.

#include "image.hpp"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <bit>
#include <cstring>
#include <functional>
#include <memory>

namespace vela::test {
namespace {

// A kernel between two layouts that changes no colours: it moves samples, or changes their depth.
struct Pair {
    const char *kernel;
    const AVPixFmtDescriptor *to;
    const AVPixFmtDescriptor *from;
    std::function<void(Image &, const Image &)> run;
};

const AVPixFmtDescriptor *described(AVPixelFormat format) { return av_pix_fmt_desc_get(format); }
const AVPixFmtDescriptor *described(const AVPixFmtDescriptor *layout) { return layout; }

template <auto member, class To, class From, class... Given>
Pair pair(const char *kernel, To to, From from, Given... given)
{
    return {kernel, described(to), described(from),
            [=](Image &target, const Image &source) { convert(procs().*member, target, source, given...); }};
}
#define PAIR(to, from, kernel, ...) pair<&Procs::kernel>(#kernel, to, from __VA_OPT__(, ) __VA_ARGS__)

std::vector<Pair> pairs()
{
    constexpr std::uint8_t a8 = 200;
    constexpr std::uint16_t a16 = 51400;
    const AVPixFmtDescriptor *f32x4 = floatPixels();
    return {
        PAIR(AV_PIX_FMT_RGBA, AV_PIX_FMT_BGRA, CscSwapRb32),
        PAIR(AV_PIX_FMT_ARGB, AV_PIX_FMT_BGRA, CscReverse32),
        PAIR(AV_PIX_FMT_RGBA, AV_PIX_FMT_ARGB, CscAlphaFirstToLast32),
        PAIR(AV_PIX_FMT_ABGR, AV_PIX_FMT_BGRA, CscAlphaLastToFirst32),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_BGR24, AppendAlpha24To32, a8),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_RGB24, CscAppendAlphaSwap24To32, a8),
        PAIR(AV_PIX_FMT_BGR24, AV_PIX_FMT_BGRA, CscDropAlpha32To24),
        PAIR(AV_PIX_FMT_RGB24, AV_PIX_FMT_BGRA, CscDropAlphaSwap32To24),
        PAIR(AV_PIX_FMT_RGB24, AV_PIX_FMT_BGR24, CscSwapRb24),
        PAIR(AV_PIX_FMT_ARGB, AV_PIX_FMT_RGB24, CscPrependAlpha24To32, a8),
        PAIR(AV_PIX_FMT_ARGB, AV_PIX_FMT_BGR24, CscPrependAlphaSwap24To32, a8),
        PAIR(AV_PIX_FMT_RGB24, AV_PIX_FMT_ARGB, CscDropFirst32To24),
        PAIR(AV_PIX_FMT_BGR24, AV_PIX_FMT_ARGB, CscDropFirstSwap32To24),
        PAIR(AV_PIX_FMT_GBRP, AV_PIX_FMT_BGRA, CscBgraToGbr8),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_GBRP, CscGbr8ToBgra, a8),

        PAIR(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUYV422, CscSwapYuyvUyvy),
        PAIR(AV_PIX_FMT_YVYU422, AV_PIX_FMT_YUYV422, CscSwapChromaYuyv),
        PAIR(AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUYV422, CscYuyvToI422),
        PAIR(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV422P, CscI422ToUyvy),
        PAIR(AV_PIX_FMT_NV16, AV_PIX_FMT_YUYV422, CscYuyvToNv16),
        PAIR(AV_PIX_FMT_YUV422P, AV_PIX_FMT_NV16, CscNv16ToI422),
        PAIR(AV_PIX_FMT_NV24, AV_PIX_FMT_YUV444P, CscI444ToNv24),
        PAIR(AV_PIX_FMT_YUV444P, AV_PIX_FMT_NV24, CscNv24ToI444),
        PAIR(AV_PIX_FMT_YUV420P, AV_PIX_FMT_NV12, CscNv12ToI420),
        PAIR(AV_PIX_FMT_NV21, AV_PIX_FMT_YUV420P, CscI420ToNv21),
        PAIR(AV_PIX_FMT_NV12, AV_PIX_FMT_YUV420P, CscI420ToNv12),
        PAIR(AV_PIX_FMT_YUV420P, AV_PIX_FMT_NV21, CscNv21ToI420),

        PAIR(AV_PIX_FMT_P016LE, AV_PIX_FMT_NV12, CscNv12ToP016),
        PAIR(AV_PIX_FMT_NV12, AV_PIX_FMT_P016LE, CscP016ToNv12),
        PAIR(AV_PIX_FMT_P010LE, AV_PIX_FMT_YUV420P10LE, CscI010ToP016),
        PAIR(AV_PIX_FMT_YUV420P10LE, AV_PIX_FMT_P010LE, CscP016ToI010),
        PAIR(AV_PIX_FMT_P016LE, AV_PIX_FMT_YUV420P16LE, CscI016ToP016),
        PAIR(AV_PIX_FMT_YUV420P16LE, AV_PIX_FMT_P016LE, CscP016ToI016),
        PAIR(AV_PIX_FMT_P216LE, AV_PIX_FMT_YUV422P16LE, CscI216ToP216),
        PAIR(AV_PIX_FMT_P210LE, AV_PIX_FMT_YUV422P10LE, CscI210ToP216),
        PAIR(AV_PIX_FMT_YUV422P10LE, AV_PIX_FMT_P210LE, CscP216ToI210),
        PAIR(AV_PIX_FMT_Y210LE, AV_PIX_FMT_P210LE, CscP216ToY216),
        PAIR(AV_PIX_FMT_YUV422P16LE, AV_PIX_FMT_Y210LE, CscY216ToI216),
        PAIR(AV_PIX_FMT_YUYV422, AV_PIX_FMT_YUV422P10LE, CscI210ToYuyv),
        PAIR(AV_PIX_FMT_YUV422P16LE, AV_PIX_FMT_UYVY422, CscUyvyToI216),

        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_RGB565LE, CscRgb565ToBgra, a8),
        PAIR(AV_PIX_FMT_RGB565LE, AV_PIX_FMT_BGRA, CscBgraToRgb565),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_BGR565LE, CscBgr565ToBgra, a8),
        PAIR(AV_PIX_FMT_BGR565LE, AV_PIX_FMT_BGRA, CscBgraToBgr565),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_RGB555LE, CscArgb1555ToBgra),
        PAIR(AV_PIX_FMT_RGB555LE, AV_PIX_FMT_BGRA, CscBgraToArgb1555),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_RGB444LE, CscArgb4444ToBgra),
        PAIR(AV_PIX_FMT_RGB444LE, AV_PIX_FMT_BGRA, CscBgraToArgb4444),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_X2RGB10LE, CscA2r10ToBgra),
        PAIR(AV_PIX_FMT_X2RGB10LE, AV_PIX_FMT_BGRA, CscBgraToA2r10),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_X2BGR10LE, CscA2b10ToBgra),
        PAIR(AV_PIX_FMT_X2BGR10LE, AV_PIX_FMT_BGRA, CscBgraToA2b10),
        PAIR(AV_PIX_FMT_X2BGR10LE, AV_PIX_FMT_X2RGB10LE, CscSwapRbA2r10),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_RGBA64LE, CscRgba64ToBgra),
        PAIR(AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_BGRA, CscBgraToRgba64),
        PAIR(AV_PIX_FMT_RGB48LE, AV_PIX_FMT_RGB24, CscRgb24ToRgb48),
        PAIR(AV_PIX_FMT_BGRA, AV_PIX_FMT_RGB48LE, CscRgb48ToBgra, a8),
        PAIR(AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_RGB48LE, CscRgb48ToRgba64, a16),
        PAIR(AV_PIX_FMT_GBRP16LE, AV_PIX_FMT_RGBA64LE, CscRgba64ToGbr16),
        PAIR(AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_GBRP16LE, CscGbr16ToRgba64, a16),

        PAIR(f32x4, AV_PIX_FMT_BGRA, CscBgraToF32x4),
        PAIR(AV_PIX_FMT_BGRA, f32x4, CscF32x4ToBgra),
        PAIR(f32x4, AV_PIX_FMT_X2BGR10LE, CscA2b10ToF32x4),
        PAIR(f32x4, AV_PIX_FMT_GBRPF32LE, CscGbrF32ToF32x4),
        PAIR(AV_PIX_FMT_GBRPF32LE, f32x4, CscF32x4ToGbrF32),
        PAIR(AV_PIX_FMT_GRAY16LE, AV_PIX_FMT_GRAY8, CscFullU8ToU16),
        PAIR(AV_PIX_FMT_GRAYF32LE, AV_PIX_FMT_GRAY16LE, CscFullU16ToF32),
        PAIR(AV_PIX_FMT_GRAY8, AV_PIX_FMT_GRAYF32LE, CscFullF32ToU8),
    };
}

bool isFloat(const AVPixFmtDescriptor *layout) { return layout->flags & AV_PIX_FMT_FLAG_FLOAT; }
bool isYuv(const AVPixFmtDescriptor *layout)
{
    return layout->nb_components >= 3 && !(layout->flags & AV_PIX_FMT_FLAG_RGB);
}

// A sample as a part of white.
double partOf(std::uint32_t code, const AVPixFmtDescriptor *layout, int component)
{
    if (isFloat(layout))
        return static_cast<double>(std::bit_cast<float>(code));
    return code / static_cast<double>((1 << layout->comp[component].depth) - 1);
}

// Samples of one depth are the same. YUV keeps the bits that both depths have. RGB keeps its part of white: within a
// code where bits are repeated; within 0.69 codes where they are lost, since FullDepth undoes the repetition of bits
// instead of rounding the exact part (the largest error is that of code 254 of 10 bits at 8).
bool isSameSample(std::uint32_t to, std::uint32_t from, const Pair &pair, int component)
{
    const int toDepth = pair.to->comp[component].depth;
    const int fromDepth = pair.from->comp[component].depth;
    if (toDepth == fromDepth)
        return to == from;
    if (isYuv(pair.to)) {
        const int common = std::min(toDepth, fromDepth);
        return to >> (toDepth - common) == from >> (fromDepth - common);
    }
    const double distance = std::abs(partOf(to, pair.to, component) - partOf(from, pair.from, component));
    const double code = isFloat(pair.to) ? 1e-7 : 1.0 / ((1 << toDepth) - 1);
    return distance <= (toDepth < fromDepth ? 0.69 : 1) * code;
}

void PrintTo(const Pair &pair, std::ostream *out) { *out << pair.kernel; }

class Layouts : public testing::TestWithParam<Pair> {};

TEST_P(Layouts, ComponentsLieWhereLibavutilReadsThem)
{
    const Pair &pair = GetParam();
    const Image from = noise(pair.from);
    Image to(pair.to, from.width, from.height);
    pair.run(to, from);
    for (int i = 0; i < std::min(pair.to->nb_components, pair.from->nb_components); ++i) {
        ASSERT_EQ(to.heightOf(i), from.heightOf(i));
        for (int y = 0; y < to.heightOf(i); ++y) {
            const Codes target = to.line(i, y);
            const Codes source = from.line(i, y);
            ASSERT_EQ(target.size(), source.size());
            for (std::size_t x = 0; x < target.size(); ++x)
                ASSERT_TRUE(isSameSample(target[x], source[x], pair, i))
                    << "component " << i << " at " << x << ", " << y << ": " << target[x] << " of " << source[x];
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Layouts, testing::ValuesIn(pairs()), [](const auto &test) { return test.param.kernel; });

// --- Layouts that only decoders know -------------------------------------------------------------------------

struct Freer {
    void operator()(AVCodecContext *c) const { avcodec_free_context(&c); }
    void operator()(AVFrame *f) const { av_frame_free(&f); }
    void operator()(AVPacket *p) const { av_packet_free(&p); }
};

// What a decoder makes of bytes that hold a picture of the size of `to`.
void decode(AVCodecID codec, const std::vector<std::uint8_t> &bytes, Image &to)
{
    const std::unique_ptr<AVCodecContext, Freer> context(avcodec_alloc_context3(avcodec_find_decoder(codec)));
    context->width = to.width;
    context->height = to.height;
    ASSERT_EQ(avcodec_open2(context.get(), nullptr, nullptr), 0);
    const std::unique_ptr<AVPacket, Freer> packet(av_packet_alloc());
    const std::unique_ptr<AVFrame, Freer> frame(av_frame_alloc());
    ASSERT_EQ(av_new_packet(packet.get(), static_cast<int>(bytes.size())), 0);
    std::memcpy(packet->data, bytes.data(), bytes.size());
    ASSERT_EQ(avcodec_send_packet(context.get(), packet.get()), 0);
    ASSERT_EQ(avcodec_receive_frame(context.get(), frame.get()), 0);
    ASSERT_EQ(av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame->format)), to.layout);
    for (int i = 0; i < to.layout->nb_components; ++i)
        for (int y = 0; y < to.heightOf(i); ++y)
            std::memcpy(to.row(i, y), frame->data[i] + y * frame->linesize[i],
                        static_cast<std::size_t>(to.pitch[static_cast<std::size_t>(i)]));
}

// A picture in one plane of 32-bit words that libavutil has no description of.
struct Words {
    int pitch;
    std::vector<std::uint8_t> bytes;

    Words(int bytesPerRow, int height) : pitch(bytesPerRow), bytes(static_cast<std::size_t>(bytesPerRow * height)) {}
    std::uint32_t *row(int y) { return reinterpret_cast<std::uint32_t *>(&bytes[static_cast<std::size_t>(y * pitch)]); }
};

TEST(DecodedLayouts, V210)
{
    Image planes = noise(av_pix_fmt_desc_get(AV_PIX_FMT_YUV422P10LE));
    Words v210(planes.width / 6 * 16, planes.height);
    for (int y = 0; y < planes.height; ++y) {
        const std::vector<void *> rows = rowsAt(planes, y, 1);
        callWithRows(procs().CscI210ToV210, {v210.row(y), rows[0], rows[1], rows[2]}, std::make_index_sequence<4>(),
                     planes.width);
    }
    Image decoded(AV_PIX_FMT_YUV422P10, planes.width, planes.height);
    decode(AV_CODEC_ID_V210, v210.bytes, decoded);
    for (int y = 0; y < planes.height; ++y) {
        const std::vector<void *> rows = rowsAt(planes, y, 1);
        callWithRows(procs().CscV210ToI210, {rows[0], rows[1], rows[2], v210.row(y)}, std::make_index_sequence<4>(),
                     planes.width);
    }
    expectNear(planes, decoded, {0, 0});
}

TEST(DecodedLayouts, Dpx3)
{
    const Image bgra = photograph(Detail::photograph);
    Words a(bgra.width * 4, bgra.height);
    Words b(bgra.width * 4, bgra.height);
    Image words(AV_PIX_FMT_X2RGB10LE, bgra.width, bgra.height);
    convert(procs().CscBgraToA2r10, words, bgra);
    for (int y = 0; y < bgra.height; ++y) {
        procs().CscBgraToDpx3A(a.row(y), static_cast<const std::uint8_t *>(bgra.row(0, y)), bgra.width);
        procs().CscBgraToDpx3B(b.row(y), static_cast<const std::uint8_t *>(bgra.row(0, y)), bgra.width);
    }
    Image decoded(AV_PIX_FMT_GBRP10, bgra.width, bgra.height);
    decode(AV_CODEC_ID_R10K, a.bytes, decoded);
    expectNear(words, decoded, {0, 0});
    decode(AV_CODEC_ID_R210, b.bytes, decoded);
    expectNear(words, decoded, {0, 0});
}

TEST(DecodedLayouts, Vuya)
{
    const Image planes = noise(av_pix_fmt_desc_get(AV_PIX_FMT_YUVA444P));
    Words vuya(planes.width * 4, planes.height);
    for (int y = 0; y < planes.height; ++y) {
        const std::vector<void *> rows = rowsAt(planes, y, 1);
        auto *row = reinterpret_cast<std::uint8_t *>(vuya.row(y));
        callWithRows(procs().CscI444ToVuya, {row, rows[0], rows[1], rows[2]}, std::make_index_sequence<4>(),
                     planes.width, std::uint8_t{0});
        procs().CscInsertAlpha32(row, row, static_cast<const std::uint8_t *>(rows[3]), planes.width);
    }
    Image decoded(AV_PIX_FMT_YUVA444P, planes.width, planes.height);
    decode(AV_CODEC_ID_AYUV, vuya.bytes, decoded);
    expectNear(planes, decoded, {0, 0});
}

} // namespace
} // namespace vela::test
