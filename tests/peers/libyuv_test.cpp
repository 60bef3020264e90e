// Conversions of a photograph beside libyuv's, for the layouts of 8 and 10 bits that both have.

#include "image.hpp"

#include <libyuv.h>

#include <functional>

namespace vela::test {
namespace {

struct Case {
    const char *kernel;
    const char *peer;
    Image (*source)();
    AVPixelFormat to;
    Tolerance tolerance;
    std::function<void(Image &, const Image &)> ours;
    std::function<void(Image &, const Image &)> theirs;
};

// libyuv's functions take a pointer and a distance in elements for every plane, then width and height.
template <class... Arguments, std::size_t... i>
void callPeer(int (*function)(Arguments...), Image &to, const Image &from, std::index_sequence<i...>)
{
    using All = std::tuple<Arguments...>;
    const auto planes = static_cast<std::size_t>(from.planeCount);
    ASSERT_EQ(sizeof...(Arguments), 2 * (planes + static_cast<std::size_t>(to.planeCount)) + 2);
    const auto argument = [&]<std::size_t at>() -> std::tuple_element_t<at, All> {
        using Type = std::tuple_element_t<at, All>;
        if constexpr (at + 2 == sizeof...(Arguments)) {
            return from.width;
        } else if constexpr (at + 1 == sizeof...(Arguments)) {
            return from.height;
        } else {
            const Image &image = at / 2 < planes ? from : to;
            const std::size_t plane = at / 2 < planes ? at / 2 : at / 2 - planes;
            if constexpr (std::is_pointer_v<Type>) {
                return static_cast<Type>(image.row(static_cast<int>(plane), 0));
            } else {
                using Element = std::remove_pointer_t<std::tuple_element_t<at - 1, All>>;
                return image.pitch[plane] / static_cast<int>(sizeof(Element));
            }
        }
    };
    ASSERT_EQ(function(argument.template operator()<i>()...), 0);
}

template <auto member, AVPixelFormat to, AVPixelFormat from, Detail detail, auto peer, class... Given>
Case conversion(const char *kernel, const char *name, Tolerance tolerance, Given... given)
{
    return {kernel,
            name,
            [] { return photographAs(from, detail); },
            to,
            tolerance,
            [=](Image &target, const Image &source) { convert(procs().*member, target, source, given...); },
            []<class... A>(int (*function)(A...)) {
                return [function](Image &target, const Image &source) {
                    callPeer(function, target, source, std::index_sequence_for<A...>());
                };
            }(peer)};
}

// Bytes that move are the same.
constexpr Tolerance exact{0, 0};
// To nearest beside truncation: a code of the narrower layout, and not everywhere.
constexpr Tolerance truncated{1, 0.75};
// libyuv has 6 bits of fraction to RGB, where the kernels have 13, and of samples of 10 bits it drops the lowest. Its
// chroma is the pair's for both pixels, so of RGB from subsampled chroma the even columns are compared, which have the
// pair's chroma in both.
constexpr Tolerance rgb{1, 0.25};
constexpr Tolerance rgbFromPairs{1, 0.25, Columns::even};
constexpr Tolerance rgbFrom10{3, 0.95, Columns::even};
// libyuv limits the weight of U in blue to 2, which is 2.11 in BT.709 and 2.14 in BT.2020.
constexpr Tolerance paleBlue{8, 2.2, Columns::even};
// It has 7 or 8 bits of fraction to YUV. Its chroma is the mean of a pair's pixels, the kernels' that of the even one:
// for a picture of doubled pixels.
constexpr Tolerance yuv{1, 0.6};

#define YUV_ROW(kernel, peer, detail, to, from, tolerance, ...)                                    \
    conversion<&Procs::kernel, AV_PIX_FMT_##to, AV_PIX_FMT_##from, Detail::detail, &libyuv::peer>( \
        #kernel, #peer, tolerance __VA_OPT__(, ) __VA_ARGS__)
#define ROW(kernel, peer, to, from, ...) YUV_ROW(kernel, peer, photograph, to, from, __VA_ARGS__)
#define DOUBLED(kernel, peer, to, from, ...) YUV_ROW(kernel, peer, doubled, to, from, __VA_ARGS__)

std::vector<Case> cases()
{
    constexpr std::uint8_t a = 255;
    const CscYuvToRgb *toRgb601 = toRgb(VCB_CSC_BT601, VCB_CSC_LIMITED, 8, 8);
    const CscYuvToRgb *toRgb601Full = toRgb(VCB_CSC_BT601, VCB_CSC_FULL, 8, 8);
    const CscYuvToRgb *toRgb709 = toRgb(VCB_CSC_BT709, VCB_CSC_LIMITED, 8, 8);
    const CscYuvToRgb *toRgb2020 = toRgb(VCB_CSC_BT2020_NCL, VCB_CSC_LIMITED, 8, 8);
    const CscYuvToRgb *toRgb10 = toRgb(VCB_CSC_BT601, VCB_CSC_LIMITED, 10, 8);
    const CscRgbToYuv *toYuv601 = toYuv(VCB_CSC_BT601, VCB_CSC_LIMITED, 8, 8);
    const CscRgbToYuv *toYuv601Full = toYuv(VCB_CSC_BT601, VCB_CSC_FULL, 8, 8);
    return {
        ROW(AppendAlpha24To32, RGB24ToARGB, BGRA, BGR24, exact, a),
        ROW(CscAppendAlphaSwap24To32, RAWToARGB, BGRA, RGB24, exact, a),
        ROW(CscSwapRb32, ARGBToABGR, RGBA, BGRA, exact),
        ROW(CscReverse32, ARGBToBGRA, ARGB, BGRA, exact),
        ROW(CscAlphaLastToFirst32, ARGBToRGBA, ABGR, BGRA, exact),
        ROW(CscAlphaFirstToLast32, RGBAToARGB, BGRA, ABGR, exact),
        ROW(CscDropAlpha32To24, ARGBToRGB24, BGR24, BGRA, exact),
        ROW(CscDropAlphaSwap32To24, ARGBToRAW, RGB24, BGRA, exact),
        ROW(CscSwapRb24, RAWToRGB24, BGR24, RGB24, exact),
        ROW(CscExtractAlpha32, ARGBExtractAlpha, GRAY8, BGRA, exact),

        ROW(CscYuyvToI422, YUY2ToI422, YUV422P, YUYV422, exact),
        ROW(CscUyvyToI422, UYVYToI422, YUV422P, UYVY422, exact),
        ROW(CscI422ToYuyv, I422ToYUY2, YUYV422, YUV422P, exact),
        ROW(CscI422ToUyvy, I422ToUYVY, UYVY422, YUV422P, exact),
        ROW(CscYuyvToI420, YUY2ToI420, YUV420P, YUYV422, exact),
        ROW(CscUyvyToI420, UYVYToI420, YUV420P, UYVY422, exact),
        ROW(CscYuyvToNv12, YUY2ToNV12, NV12, YUYV422, exact),
        ROW(CscUyvyToNv12, UYVYToNV12, NV12, UYVY422, exact),
        ROW(CscI420ToYuyv, I420ToYUY2, YUYV422, YUV420P, exact),
        ROW(CscI420ToUyvy, I420ToUYVY, UYVY422, YUV420P, exact),
        ROW(CscNv12ToI420, NV12ToI420, YUV420P, NV12, exact),
        ROW(CscI420ToNv12, I420ToNV12, NV12, YUV420P, exact),
        ROW(CscNv21ToI420, NV21ToI420, YUV420P, NV21, exact),
        ROW(CscI420ToNv21, I420ToNV21, NV21, YUV420P, exact),
        ROW(CscNv12ToNv21, NV21ToNV12, NV21, NV12, exact),
        ROW(CscP016ToI010, P010ToI010, YUV420P10LE, P010LE, exact),
        ROW(CscI010ToP016, I010ToP010, P010LE, YUV420P10LE, exact),
        ROW(CscI210ToP216, I210ToP210, P210LE, YUV422P10LE, exact),

        ROW(CscRgb565ToBgra, RGB565ToARGB, BGRA, RGB565LE, exact, a),
        ROW(CscArgb1555ToBgra, ARGB1555ToARGB, BGRA, RGB555LE, exact),
        ROW(CscArgb4444ToBgra, ARGB4444ToARGB, BGRA, RGB444LE, exact),
        ROW(CscBgraToRgb565, ARGBToRGB565, RGB565LE, BGRA, truncated),
        ROW(CscBgraToArgb1555, ARGBToARGB1555, RGB555LE, BGRA, truncated),
        ROW(CscBgraToArgb4444, ARGBToARGB4444, RGB444LE, BGRA, truncated),
        ROW(CscBgraToA2r10, ARGBToAR30, X2RGB10LE, BGRA, exact),
        ROW(CscBgraToA2b10, ARGBToAB30, X2BGR10LE, BGRA, exact),
        ROW(CscA2r10ToBgra, AR30ToARGB, BGRA, X2RGB10LE, truncated),
        ROW(CscBgraToRgba64, ARGBToAB64, RGBA64LE, BGRA, exact),
        ROW(CscRgba64ToBgra, AB64ToARGB, BGRA, RGBA64LE, truncated),

        ROW(CscPremultiplyAlpha32, ARGBAttenuate, BGRA, BGRA, truncated),

        ROW(CscYuyvToBgra, YUY2ToARGB, BGRA, YUYV422, rgbFromPairs, toRgb601, a),
        ROW(CscUyvyToBgra, UYVYToARGB, BGRA, UYVY422, rgbFromPairs, toRgb601, a),
        ROW(CscNv12ToBgra, NV12ToARGB, BGRA, NV12, rgbFromPairs, toRgb601, a),
        ROW(CscNv21ToBgra, NV21ToARGB, BGRA, NV21, rgbFromPairs, toRgb601, a),
        ROW(CscNv12ToRgba, NV12ToABGR, RGBA, NV12, rgbFromPairs, toRgb601, a),
        ROW(CscNv12ToBgr24, NV12ToRGB24, BGR24, NV12, rgbFromPairs, toRgb601),
        ROW(CscNv12ToRgb24, NV12ToRAW, RGB24, NV12, rgbFromPairs, toRgb601),
        ROW(CscI420ToBgra, I420ToARGB, BGRA, YUV420P, rgbFromPairs, toRgb601, a),
        ROW(CscI420ToRgba, I420ToABGR, RGBA, YUV420P, rgbFromPairs, toRgb601, a),
        ROW(CscI420ToBgr24, I420ToRGB24, BGR24, YUV420P, rgbFromPairs, toRgb601),
        ROW(CscI420ToRgb24, I420ToRAW, RGB24, YUV420P, rgbFromPairs, toRgb601),
        ROW(CscI420ToBgra, J420ToARGB, BGRA, YUV420P, rgbFromPairs, toRgb601Full, a),
        ROW(CscI420ToBgra, H420ToARGB, BGRA, YUV420P, paleBlue, toRgb709, a),
        ROW(CscI420ToBgra, U420ToARGB, BGRA, YUV420P, paleBlue, toRgb2020, a),
        ROW(CscI422ToBgra, I422ToARGB, BGRA, YUV422P, rgbFromPairs, toRgb601, a),
        ROW(CscI444ToBgra, I444ToARGB, BGRA, YUV444P, rgb, toRgb601, a),
        ROW(CscI444ToBgra, J444ToARGB, BGRA, YUV444P, rgb, toRgb601Full, a),
        ROW(CscI010ToBgra, I010ToARGB, BGRA, YUV420P10LE, rgbFrom10, toRgb10, a),
        ROW(CscI210ToBgra, I210ToARGB, BGRA, YUV422P10LE, rgbFrom10, toRgb10, a),

        DOUBLED(CscBgraToYuyv, ARGBToYUY2, YUYV422, BGRA, yuv, toYuv601),
        DOUBLED(CscBgraToUyvy, ARGBToUYVY, UYVY422, BGRA, yuv, toYuv601),
        DOUBLED(CscBgraToNv12, ARGBToNV12, NV12, BGRA, yuv, toYuv601),
        DOUBLED(CscBgraToNv21, ARGBToNV21, NV21, BGRA, yuv, toYuv601),
        DOUBLED(CscBgraToI420, ARGBToI420, YUV420P, BGRA, yuv, toYuv601),
        DOUBLED(CscBgraToI420, ARGBToJ420, YUV420P, BGRA, yuv, toYuv601Full),
        DOUBLED(CscRgbaToI420, ABGRToI420, YUV420P, RGBA, yuv, toYuv601),
        DOUBLED(CscBgr24ToI420, RGB24ToI420, YUV420P, BGR24, yuv, toYuv601),
        DOUBLED(CscRgb24ToI420, RAWToI420, YUV420P, RGB24, yuv, toYuv601),
        DOUBLED(CscBgraToI422, ARGBToI422, YUV422P, BGRA, yuv, toYuv601),
        ROW(CscBgraToI444, ARGBToI444, YUV444P, BGRA, yuv, toYuv601),
        ROW(CscBgraToGrey8, ARGBToJ400, GRAY8, BGRA, yuv, toYuv601Full),
    };
}

void PrintTo(const Case &c, std::ostream *out) { *out << c.kernel; }

class Libyuv : public testing::TestWithParam<Case> {};

TEST_P(Libyuv, ConvertsThePhotographAlike)
{
    const Case &c = GetParam();
    const Image from = c.source();
    Image ours(c.to, from.width, from.height);
    Image theirs(c.to, from.width, from.height);
    c.ours(ours, from);
    c.theirs(theirs, from);
    expectNear(ours, theirs, c.tolerance);
}

INSTANTIATE_TEST_SUITE_P(All, Libyuv, testing::ValuesIn(cases()),
                         [](const auto &test) { return std::string(test.param.kernel) + "_" + test.param.peer; });

TEST(Libyuv, UndoesPremultiplicationAlike)
{
    const Image straight = photograph(Detail::photograph);
    Image from = straight;
    Image ours = straight;
    Image theirs = straight;
    convert(procs().CscPremultiplyAlpha32, from, straight);
    convert(procs().CscUnpremultiplyAlpha32, ours, from);
    callPeer(libyuv::ARGBUnattenuate, theirs, from, std::make_index_sequence<6>());
    expectNear(ours, theirs, {2, 0.45}); // its reciprocals have 8 bits of fraction
}

} // namespace
} // namespace vela::test
