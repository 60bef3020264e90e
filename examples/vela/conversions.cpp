#include "conversions.hpp"

#include <compare>
#include <map>
#include <tuple>
#include <type_traits>
#include <utility>

namespace host {
namespace {

// --- Calls ---------------------------------------------------------------------------------------------------

// Deals arguments to a kernel by the types of its parameters. Of two integers the first is the width; the other one
// turns the order of DPX components around, which no layout of this host wants.
class Dealer {
public:
    explicit Dealer(const CallArguments &all)
        : arguments(all), target(all.targets.data()), source(all.sources.data()), width(all.width)
    {
    }

    template <class Parameter> Parameter next()
    {
        if constexpr (std::is_same_v<Parameter, const CscYuvToRgb *>)
            return arguments.toRgb;
        else if constexpr (std::is_same_v<Parameter, const CscRgbToYuv *>)
            return arguments.toYuv;
        else if constexpr (!std::is_pointer_v<Parameter>)
            return number<Parameter>();
        else if constexpr (std::is_const_v<std::remove_pointer_t<Parameter>>)
            return reinterpret_cast<Parameter>(*source++);
        else
            return reinterpret_cast<Parameter>(*target++);
    }

private:
    template <class Number> Number number()
    {
        if constexpr (std::is_same_v<Number, uint8_t>)
            return static_cast<uint8_t>(arguments.alpha);
        else if constexpr (std::is_same_v<Number, uint16_t>)
            return static_cast<uint16_t>(arguments.alpha * 257);
        else
            return static_cast<Number>(std::exchange(width, 0));
    }

    const CallArguments &arguments;
    std::byte *const *target;
    const std::byte *const *source;
    int width;
};

template <class Kernel> struct Signature;
template <class Result, class... Parameters> struct Signature<Result(VCB_CALL *)(Parameters...)> {
    using Kernel = Result(VCB_CALL *)(Parameters...);

    template <class Parameter>
    static constexpr bool isSource =
        std::is_pointer_v<Parameter> &&std::is_const_v<std::remove_pointer_t<Parameter>> &&
        !std::is_same_v<Parameter, const CscYuvToRgb *> && !std::is_same_v<Parameter, const CscRgbToYuv *>;
    template <class Parameter>
    static constexpr bool isTarget = std::is_pointer_v<Parameter> && !std::is_const_v<std::remove_pointer_t<Parameter>>;

    static constexpr int targets = (0 + ... + int{isTarget<Parameters>});
    static constexpr int sources = (0 + ... + int{isSource<Parameters>});
    static constexpr bool takesAlpha =
        ((std::is_same_v<Parameters, uint8_t> || std::is_same_v<Parameters, uint16_t>) || ...);
    static constexpr bool takesYuvToRgb = (std::is_same_v<Parameters, const CscYuvToRgb *> || ...);
    static constexpr bool takesRgbToYuv = (std::is_same_v<Parameters, const CscRgbToYuv *> || ...);

    static void call(VcbKernel kernel, const CallArguments &arguments)
    {
        Dealer dealer(arguments);
        std::tuple<Parameters...> parameters{dealer.next<Parameters>()...}; // braces: from left to right
        std::apply(reinterpret_cast<Kernel>(kernel), parameters);
    }
};

// --- The table -----------------------------------------------------------------------------------------------

constexpr int pointersTo(const Layout &layout, CallShape shape)
{
    if (shape == CallShape::planeRow)
        return 1;
    int pointers = 0;
    for (const Plane &plane : layout.planes)
        if (plane.bytes != 0)
            pointers += shape == CallShape::linePair && plane.lines == 1 ? 2 : 1;
    return pointers;
}

// Two layouts and a kernel's signature leave one shape of the call. A row of the table that cannot be is no constant.
template <class Kernel> constexpr CallShape shapeOf(const Layout &from, const Layout &to)
{
    const auto fits = [&](CallShape shape) {
        return Signature<Kernel>::targets == pointersTo(to, shape) &&
               Signature<Kernel>::sources == pointersTo(from, shape);
    };
    const bool pairs = from.chroma == Chroma::halfBoth || to.chroma == Chroma::halfBoth;
    const CallShape shape = pairs ? CallShape::linePair : CallShape::line;
    if (fits(shape))
        return shape;
    if (!fits(CallShape::planeRow) || from.planeCount() != to.planeCount() || from.chroma != to.chroma)
        throw "the kernel does not convert these layouts";
    return CallShape::planeRow;
}

// A layout by its exact name, in few steps: compilers count them.
constexpr const Layout &layoutNamed(const char *name)
{
    for (const Layout &layout : layouts) {
        const char *a = layout.name;
        const char *b = name;
        for (; *a != 0 && *a == *b; ++a)
            ++b;
        if (*a == *b)
            return layout;
    }
    throw "no such layout";
}

template <class Kernel> constexpr Conversion conversion(const char *from, const char *to, int slot)
{
    const Layout &source = layoutNamed(from);
    const Layout &target = layoutNamed(to);
    Conversion made{&source,
                    &target,
                    slot,
                    shapeOf<Kernel>(source, target),
                    source.holdsPairs() || target.holdsPairs() ? 2 : 1,
                    Signature<Kernel>::takesAlpha,
                    Signature<Kernel>::takesYuvToRgb,
                    Signature<Kernel>::takesRgbToYuv,
                    Signature<Kernel>::call};
    if (slot == VcbColorSpaceProcs_PackPlanar16ToYuyv8)
        made.widthStep = 4; // it spreads a last pair that fills no step of four pixels
    if ((made.takesYuvToRgb && (source.model != Model::yuv || target.model != Model::rgb)) ||
        (made.takesRgbToYuv && source.model != Model::rgb))
        throw "the kernel's coefficients are not for these layouts";
    return made;
}

// Not here: slots 184 to 191, which have coefficients of their own for YUYV and UYVY and so mean another YUV, and slot
// 181, which makes of DPX3B a transparent A2R10G10B10 and the other way leaves alpha in bits that DPX wants empty.
constexpr auto conversions = [] {
#define CONVERSION(from, to, name) conversion<decltype(VcbColorSpaceProcs::name)>(#from, #to, VcbColorSpaceProcs_##name)
    return std::to_array<Conversion>({
        CONVERSION(YUYV, YUVA32, ExpandYuyvToYuva),
        CONVERSION(YUVA32, YUYV, PackYuvaToYuyv),
        CONVERSION(UYVY, YUVA32, ExpandUyvyToYuva),
        CONVERSION(YUVA32, UYVY, PackYuvaToUyvy),
        CONVERSION(BGR24, BGRA32, AppendAlpha24To32),
        CONVERSION(RGB24, RGBA32, AppendAlpha24To32),
        CONVERSION(RGB24, BGRA32, CscAppendAlphaSwap24To32),
        CONVERSION(BGR24, RGBA32, CscAppendAlphaSwap24To32),
        CONVERSION(BGRA32, ARGB32, CscReverse32),
        CONVERSION(ARGB32, BGRA32, CscReverse32),
        CONVERSION(RGBA32, ABGR32, CscReverse32),
        CONVERSION(ABGR32, RGBA32, CscReverse32),
        CONVERSION(BGRA32, RGBA32, CscSwapRb32),
        CONVERSION(RGBA32, BGRA32, CscSwapRb32),
        CONVERSION(YUVA32, VUYA32, CscSwapRb32),
        CONVERSION(VUYA32, YUVA32, CscSwapRb32),
        CONVERSION(ARGB32, RGBA32, CscAlphaFirstToLast32),
        CONVERSION(ABGR32, BGRA32, CscAlphaFirstToLast32),
        CONVERSION(RGBA32, ARGB32, CscAlphaLastToFirst32),
        CONVERSION(BGRA32, ABGR32, CscAlphaLastToFirst32),
        CONVERSION(BGRA32, BGR24, CscDropAlpha32To24),
        CONVERSION(RGBA32, RGB24, CscDropAlpha32To24),
        CONVERSION(BGRA32, RGB24, CscDropAlphaSwap32To24),
        CONVERSION(RGBA32, BGR24, CscDropAlphaSwap32To24),
        CONVERSION(BGR24, RGB24, CscSwapRb24),
        CONVERSION(RGB24, BGR24, CscSwapRb24),
        CONVERSION(RGB24, ARGB32, CscPrependAlpha24To32),
        CONVERSION(BGR24, ABGR32, CscPrependAlpha24To32),
        CONVERSION(BGR24, ARGB32, CscPrependAlphaSwap24To32),
        CONVERSION(RGB24, ABGR32, CscPrependAlphaSwap24To32),
        CONVERSION(ARGB32, RGB24, CscDropFirst32To24),
        CONVERSION(ABGR32, BGR24, CscDropFirst32To24),
        CONVERSION(ARGB32, BGR24, CscDropFirstSwap32To24),
        CONVERSION(ABGR32, RGB24, CscDropFirstSwap32To24),
        CONVERSION(YUYV, BGRA32, CscYuyvToBgra),
        CONVERSION(BGRA32, YUYV, CscBgraToYuyv),
        CONVERSION(UYVY, BGRA32, CscUyvyToBgra),
        CONVERSION(BGRA32, UYVY, CscBgraToUyvy),
        CONVERSION(YVYU, BGRA32, CscYvyuToBgra),
        CONVERSION(YUYV, RGBA32, CscYuyvToRgba),
        CONVERSION(RGBA32, YUYV, CscRgbaToYuyv),
        CONVERSION(UYVY, RGBA32, CscUyvyToRgba),
        CONVERSION(RGBA32, UYVY, CscRgbaToUyvy),
        CONVERSION(YUYV, BGR24, CscYuyvToBgr24),
        CONVERSION(BGR24, YUYV, CscBgr24ToYuyv),
        CONVERSION(UYVY, BGR24, CscUyvyToBgr24),
        CONVERSION(BGR24, UYVY, CscBgr24ToUyvy),
        CONVERSION(YUYV, RGB24, CscYuyvToRgb24),
        CONVERSION(RGB24, YUYV, CscRgb24ToYuyv),
        CONVERSION(UYVY, RGB24, CscUyvyToRgb24),
        CONVERSION(RGB24, UYVY, CscRgb24ToUyvy),
        CONVERSION(NV12, BGRA32, CscNv12ToBgra),
        CONVERSION(BGRA32, NV12, CscBgraToNv12),
        CONVERSION(NV21, BGRA32, CscNv21ToBgra),
        CONVERSION(I420, BGRA32, CscI420ToBgra),
        CONVERSION(BGRA32, I420, CscBgraToI420),
        CONVERSION(BGRA32, NV21, CscBgraToNv21),
        CONVERSION(NV12, RGBA32, CscNv12ToRgba),
        CONVERSION(RGBA32, NV12, CscRgbaToNv12),
        CONVERSION(I420, RGBA32, CscI420ToRgba),
        CONVERSION(RGBA32, I420, CscRgbaToI420),
        CONVERSION(I216, YUYV, PackPlanar16ToYuyv8),
        CONVERSION(I216, UYVY, PackPlanar16ToUyvy8),
        CONVERSION(YUYV, I216, CscYuyvToI216),
        CONVERSION(UYVY, I216, CscUyvyToI216),
        CONVERSION(I210, YUYV, CscI210ToYuyv),
        CONVERSION(I210, UYVY, CscI210ToUyvy),
        CONVERSION(I422, BGRA32, CscI422ToBgra),
        CONVERSION(BGRA32, I422, CscBgraToI422),
        CONVERSION(I444, BGRA32, CscI444ToBgra),
        CONVERSION(BGRA32, I444, CscBgraToI444),
        CONVERSION(NV16, BGRA32, CscNv16ToBgra),
        CONVERSION(BGRA32, NV16, CscBgraToNv16),
        CONVERSION(NV24, BGRA32, CscNv24ToBgra),
        CONVERSION(BGRA32, NV24, CscBgraToNv24),
        CONVERSION(P016, BGRA32, CscP016ToBgra),
        CONVERSION(BGRA32, P016, CscBgraToP016),
        CONVERSION(P216, BGRA32, CscP216ToBgra),
        CONVERSION(BGRA32, P216, CscBgraToP216),
        CONVERSION(V210, BGRA32, CscV210ToBgra),
        CONVERSION(BGRA32, V210, CscBgraToV210),
        CONVERSION(YUYV, UYVY, CscSwapYuyvUyvy),
        CONVERSION(UYVY, YUYV, CscSwapYuyvUyvy),
        CONVERSION(NV12, I420, CscNv12ToI420),
        CONVERSION(I420, NV12, CscI420ToNv12),
        CONVERSION(NV21, I420, CscNv21ToI420),
        CONVERSION(I420, NV21, CscI420ToNv21),
        CONVERSION(NV12, NV21, CscNv12ToNv21),
        CONVERSION(NV21, NV12, CscNv12ToNv21),
        CONVERSION(NV16, I422, CscNv16ToI422),
        CONVERSION(I422, NV16, CscI422ToNv16),
        CONVERSION(NV24, I444, CscNv24ToI444),
        CONVERSION(I444, NV24, CscI444ToNv24),
        CONVERSION(YUYV, NV12, CscYuyvToNv12),
        CONVERSION(UYVY, NV12, CscUyvyToNv12),
        CONVERSION(P016, NV12, CscP016ToNv12),
        CONVERSION(NV12, P016, CscNv12ToP016),
        CONVERSION(NV12, YUYV, CscNv12ToYuyv),
        CONVERSION(NV12, UYVY, CscNv12ToUyvy),
        CONVERSION(YUYV, I420, CscYuyvToI420),
        CONVERSION(UYVY, I420, CscUyvyToI420),
        CONVERSION(I420, YUYV, CscI420ToYuyv),
        CONVERSION(I420, UYVY, CscI420ToUyvy),
        CONVERSION(YUYV, I422, CscYuyvToI422),
        CONVERSION(UYVY, I422, CscUyvyToI422),
        CONVERSION(I422, YUYV, CscI422ToYuyv),
        CONVERSION(I422, UYVY, CscI422ToUyvy),
        CONVERSION(YUYV, NV16, CscYuyvToNv16),
        CONVERSION(UYVY, NV16, CscUyvyToNv16),
        CONVERSION(NV16, YUYV, CscNv16ToYuyv),
        CONVERSION(NV16, UYVY, CscNv16ToUyvy),
        CONVERSION(YUYV, YVYU, CscSwapChromaYuyv),
        CONVERSION(YVYU, YUYV, CscSwapChromaYuyv),
        CONVERSION(I422, I420, CscI422ToI420),
        CONVERSION(I420, I422, CscI420ToI422),
        CONVERSION(I444, I420, CscI444ToI420),
        CONVERSION(I420, I444, CscI420ToI444),
        CONVERSION(I444, I422, CscI444ToI422),
        CONVERSION(I422, I444, CscI422ToI444),
        CONVERSION(YUVA32, I444, CscYuvaToI444),
        CONVERSION(I444, YUVA32, CscI444ToYuva),
        CONVERSION(VUYA32, I444, CscVuyaToI444),
        CONVERSION(I444, VUYA32, CscI444ToVuya),
        CONVERSION(NV12, YUVA32, CscNv12ToYuva),
        CONVERSION(YUVA32, NV12, CscYuvaToNv12),
        CONVERSION(I420, YUVA32, CscI420ToYuva),
        CONVERSION(YUVA32, I420, CscYuvaToI420),
        CONVERSION(YUVA32, BGRA32, CscYuvaToBgra),
        CONVERSION(BGRA32, YUVA32, CscBgraToYuva),
        CONVERSION(VUYA32, BGRA32, CscVuyaToBgra),
        CONVERSION(BGRA32, VUYA32, CscBgraToVuya),
        CONVERSION(YUVA32, RGBA32, CscYuvaToRgba),
        CONVERSION(RGBA32, YUVA32, CscRgbaToYuva),
        CONVERSION(BGRA32, GREY8, CscBgraToGrey8),
        CONVERSION(GREY8, BGRA32, CscGrey8ToBgra),
        CONVERSION(GREY8, RGBA32, CscGrey8ToBgra),
        CONVERSION(BGRA32, A8, CscExtractAlpha32),
        CONVERSION(RGBA32, A8, CscExtractAlpha32),
        CONVERSION(BGRA32, F32x4, CscBgraToF32x4),
        CONVERSION(RGBA32, F32x4, CscRgbaToF32x4),
        CONVERSION(BGR24, F32x4, CscBgr24ToF32x4),
        CONVERSION(RGB24, F32x4, CscRgb24ToF32x4),
        CONVERSION(RGB48, F32x4, CscRgb48ToF32x4),
        CONVERSION(RGBA64, F32x4, CscRgba64ToF32x4),
        CONVERSION(A2B10G10R10, F32x4, CscA2b10ToF32x4),
        CONVERSION(F32x4, BGRA32, CscF32x4ToBgra),
        CONVERSION(F32x4, RGBA32, CscF32x4ToRgba),
        CONVERSION(F32x4, BGR24, CscF32x4ToBgr24),
        CONVERSION(F32x4, RGB24, CscF32x4ToRgb24),
        CONVERSION(F32x4, RGB48, CscF32x4ToRgb48),
        CONVERSION(F32x4, RGBA64, CscF32x4ToRgba64),
        CONVERSION(F32x4, A2B10G10R10, CscF32x4ToA2b10),
        CONVERSION(A2R10G10B10, F32x4, CscA2r10ToF32x4),
        CONVERSION(RGB24, HSV, CscRgb24ToHsvPlanes),
        CONVERSION(BGR24, HSV, CscRgb24ToHsvPlanesB),
        CONVERSION(RGB565, BGRA32, CscRgb565ToBgra),
        CONVERSION(BGRA32, RGB565, CscBgraToRgb565),
        CONVERSION(BGR565, BGRA32, CscBgr565ToBgra),
        CONVERSION(BGRA32, BGR565, CscBgraToBgr565),
        CONVERSION(ARGB1555, BGRA32, CscArgb1555ToBgra),
        CONVERSION(BGRA32, ARGB1555, CscBgraToArgb1555),
        CONVERSION(ARGB4444, BGRA32, CscArgb4444ToBgra),
        CONVERSION(BGRA32, ARGB4444, CscBgraToArgb4444),
        CONVERSION(A2R10G10B10, BGRA32, CscA2r10ToBgra),
        CONVERSION(BGRA32, A2R10G10B10, CscBgraToA2r10),
        CONVERSION(A2B10G10R10, BGRA32, CscA2b10ToBgra),
        CONVERSION(BGRA32, A2B10G10R10, CscBgraToA2b10),
        CONVERSION(DPX3A, BGRA32, CscDpx3AToBgra),
        CONVERSION(BGRA32, DPX3A, CscBgraToDpx3A),
        CONVERSION(DPX3B, BGRA32, CscDpx3BToBgra),
        CONVERSION(BGRA32, DPX3B, CscBgraToDpx3B),
        CONVERSION(RGBA64, BGRA32, CscRgba64ToBgra),
        CONVERSION(BGRA32, RGBA64, CscBgraToRgba64),
        CONVERSION(RGBA64, RGBA32, CscRgba64ToRgba),
        CONVERSION(RGBA32, RGBA64, CscRgbaToRgba64),
        CONVERSION(RGB48, BGRA32, CscRgb48ToBgra),
        CONVERSION(BGRA32, RGB48, CscBgraToRgb48),
        CONVERSION(RGB48, RGB24, CscRgb48ToRgb24),
        CONVERSION(RGB24, RGB48, CscRgb24ToRgb48),
        CONVERSION(RGBA64, RGB48, CscRgba64ToRgb48),
        CONVERSION(RGB48, RGBA64, CscRgb48ToRgba64),
        CONVERSION(A2R10G10B10, A2B10G10R10, CscSwapRbA2r10),
        CONVERSION(A2B10G10R10, A2R10G10B10, CscSwapRbA2r10),
        CONVERSION(DPX3A, A2R10G10B10, CscDpx3AToA2r10),
        CONVERSION(A2R10G10B10, DPX3A, CscA2r10ToDpx3A),
        CONVERSION(V210, UYVY, CscV210ToUyvy),
        CONVERSION(UYVY, V210, CscUyvyToV210),
        CONVERSION(I210, V210, CscI210ToV210),
        CONVERSION(V210, I210, CscV210ToI210),
        CONVERSION(V210, P216, CscV210ToP216),
        CONVERSION(P216, V210, CscP216ToV210),
        CONVERSION(V210, Y216, CscV210ToY216),
        CONVERSION(Y216, V210, CscY216ToV210),
        CONVERSION(V210, P016, CscV210ToP016),
        CONVERSION(P016, V210, CscP016ToV210),
        CONVERSION(Y216, I216, CscY216ToI216),
        CONVERSION(I216, Y216, CscI216ToY216),
        CONVERSION(Y216, P216, CscY216ToP216),
        CONVERSION(P216, Y216, CscP216ToY216),
        CONVERSION(Y216, YUYV, CscY216ToYuyv),
        CONVERSION(YUYV, Y216, CscYuyvToY216),
        CONVERSION(P216, I216, CscP216ToI216),
        CONVERSION(I216, P216, CscI216ToP216),
        CONVERSION(P216, I210, CscP216ToI210),
        CONVERSION(I210, P216, CscI210ToP216),
        CONVERSION(P016, I016, CscP016ToI016),
        CONVERSION(I016, P016, CscI016ToP016),
        CONVERSION(P016, I010, CscP016ToI010),
        CONVERSION(I010, P016, CscI010ToP016),
        CONVERSION(P016, P216, CscP016ToP216),
        CONVERSION(P216, P016, CscP216ToP016),
        CONVERSION(P216, NV16, CscP216ToNv16),
        CONVERSION(NV16, P216, CscNv16ToP216),
        CONVERSION(Y410, I410, CscY410ToI410),
        CONVERSION(I410, Y410, CscI410ToY410),
        CONVERSION(Y416, I416, CscY416ToI416),
        CONVERSION(I416, Y416, CscI416ToY416),
        CONVERSION(P016, F32x4, CscP016ToF32x4),
        CONVERSION(F32x4, P016, CscF32x4ToP016),
        CONVERSION(P216, F32x4, CscP216ToF32x4),
        CONVERSION(F32x4, P216, CscF32x4ToP216),
        CONVERSION(Y216, F32x4, CscY216ToF32x4),
        CONVERSION(F32x4, Y216, CscF32x4ToY216),
        CONVERSION(Y410, F32x4, CscY410ToF32x4),
        CONVERSION(F32x4, Y410, CscF32x4ToY410),
        CONVERSION(Y416, F32x4, CscY416ToF32x4),
        CONVERSION(F32x4, Y416, CscF32x4ToY416),
        CONVERSION(V210, F32x4, CscV210ToF32x4),
        CONVERSION(F32x4, V210, CscF32x4ToV210),
        CONVERSION(I010, F32x4, CscI010ToF32x4),
        CONVERSION(F32x4, I010, CscF32x4ToI010),
        CONVERSION(I210, F32x4, CscI210ToF32x4),
        CONVERSION(F32x4, I210, CscF32x4ToI210),
        CONVERSION(I410, F32x4, CscI410ToF32x4),
        CONVERSION(F32x4, I410, CscF32x4ToI410),
        CONVERSION(I016, F32x4, CscI016ToF32x4),
        CONVERSION(F32x4, I016, CscF32x4ToI016),
        CONVERSION(I216, F32x4, CscI216ToF32x4),
        CONVERSION(F32x4, I216, CscF32x4ToI216),
        CONVERSION(I416, F32x4, CscI416ToF32x4),
        CONVERSION(F32x4, I416, CscF32x4ToI416),
        CONVERSION(P016, RGBA64, CscP016ToRgba64),
        CONVERSION(RGBA64, P016, CscRgba64ToP016),
        CONVERSION(P216, RGBA64, CscP216ToRgba64),
        CONVERSION(RGBA64, P216, CscRgba64ToP216),
        CONVERSION(Y416, RGBA64, CscY416ToRgba64),
        CONVERSION(RGBA64, Y416, CscRgba64ToY416),
        CONVERSION(I416, RGBA64, CscI416ToRgba64),
        CONVERSION(RGBA64, I416, CscRgba64ToI416),
        CONVERSION(P016, A2B10G10R10, CscP016ToA2b10),
        CONVERSION(A2B10G10R10, P016, CscA2b10ToP016),
        CONVERSION(Y410, Y416, CscY410ToY416),
        CONVERSION(Y416, Y410, CscY416ToY410),
        CONVERSION(I216, I016, CscI216ToI016),
        CONVERSION(I210, I010, CscI216ToI016),
        CONVERSION(I016, I216, CscI016ToI216),
        CONVERSION(I010, I210, CscI016ToI216),
        CONVERSION(I416, I016, CscI416ToI016),
        CONVERSION(I410, I010, CscI416ToI016),
        CONVERSION(I016, I416, CscI016ToI416),
        CONVERSION(I010, I410, CscI016ToI416),
        CONVERSION(I416, I216, CscI416ToI216),
        CONVERSION(I410, I210, CscI416ToI216),
        CONVERSION(I216, I416, CscI216ToI416),
        CONVERSION(I210, I410, CscI216ToI416),
        CONVERSION(DPX3A, F32x4, CscDpx3AToF32x4),
        CONVERSION(F32x4, DPX3A, CscF32x4ToDpx3A),
        CONVERSION(DPX3B, F32x4, CscDpx3BToF32x4),
        CONVERSION(F32x4, DPX3B, CscF32x4ToDpx3B),
        CONVERSION(DPX4A, F32x4, CscDpx4AToF32x4),
        CONVERSION(F32x4, DPX4A, CscF32x4ToDpx4A),
        CONVERSION(DPX4B, F32x4, CscDpx4BToF32x4),
        CONVERSION(F32x4, DPX4B, CscF32x4ToDpx4B),
        CONVERSION(HSV, BGR24, CscHsvPlanesToBgr24),
        CONVERSION(HSV, RGB24, CscHsvPlanesToRgb24),
        CONVERSION(HSV, RGBA32, CscHsvPlanesToRgba),
        CONVERSION(HSV, BGRA32, CscHsvPlanesToBgra),
        CONVERSION(RGB24, HSL, CscRgb24ToHslPlanes),
        CONVERSION(BGRA32, HSL, CscBgraToHslPlanes),
        CONVERSION(HSL, RGB24, CscHslPlanesToRgb24),
        CONVERSION(HSL, BGRA32, CscHslPlanesToBgra),
        CONVERSION(F32x4, A2R10G10B10, CscF32x4ToA2r10),
        CONVERSION(GREYF32, F32x4, CscGreyF32ToF32x4),
        CONVERSION(F32x4, GREYF32, CscF32x4ToGreyF32),
        CONVERSION(RGBA32, HSV, CscRgb32ToHsvPlanes),
        CONVERSION(BGRA32, HSV, CscRgb32ToHsvPlanesB),
        CONVERSION(Y216, BGRA32, CscY216ToBgra),
        CONVERSION(BGRA32, Y216, CscBgraToY216),
        CONVERSION(Y410, BGRA32, CscY410ToBgra),
        CONVERSION(BGRA32, Y410, CscBgraToY410),
        CONVERSION(Y416, BGRA32, CscY416ToBgra),
        CONVERSION(BGRA32, Y416, CscBgraToY416),
        CONVERSION(I010, BGRA32, CscI010ToBgra),
        CONVERSION(BGRA32, I010, CscBgraToI010),
        CONVERSION(I210, BGRA32, CscI210ToBgra),
        CONVERSION(BGRA32, I210, CscBgraToI210),
        CONVERSION(I410, BGRA32, CscI410ToBgra),
        CONVERSION(BGRA32, I410, CscBgraToI410),
        CONVERSION(YUYV, GREY8, CscYuyvToGrey8),
        CONVERSION(UYVY, GREY8, CscUyvyToGrey8),
        CONVERSION(GREY8, YUYV, CscGrey8ToYuyv),
        CONVERSION(GREY8, UYVY, CscGrey8ToUyvy),
        CONVERSION(I420, I010, CscVideoU8ToU10),
        CONVERSION(I422, I210, CscVideoU8ToU10),
        CONVERSION(I444, I410, CscVideoU8ToU10),
        CONVERSION(I420, I016, CscVideoU8ToU16),
        CONVERSION(I422, I216, CscVideoU8ToU16),
        CONVERSION(I444, I416, CscVideoU8ToU16),
        CONVERSION(I010, I420, CscVideoU10ToU8),
        CONVERSION(I210, I422, CscVideoU10ToU8),
        CONVERSION(I410, I444, CscVideoU10ToU8),
        CONVERSION(I010, I016, CscVideoU10ToU16),
        CONVERSION(I210, I216, CscVideoU10ToU16),
        CONVERSION(I410, I416, CscVideoU10ToU16),
        CONVERSION(I016, I420, CscVideoU16ToU8),
        CONVERSION(I216, I422, CscVideoU16ToU8),
        CONVERSION(I416, I444, CscVideoU16ToU8),
        CONVERSION(I016, I010, CscVideoU16ToU10),
        CONVERSION(I216, I210, CscVideoU16ToU10),
        CONVERSION(I416, I410, CscVideoU16ToU10),
        CONVERSION(GREY8, GREY16, CscFullU8ToU16),
        CONVERSION(GBR8, GBR16, CscFullU8ToU16),
        CONVERSION(GREY16, GREY8, CscFullU16ToU8),
        CONVERSION(GBR16, GBR8, CscFullU16ToU8),
        CONVERSION(GREY8, GREYF32, CscFullU8ToF32),
        CONVERSION(GBR8, GBRF32, CscFullU8ToF32),
        CONVERSION(GREYF32, GREY8, CscFullF32ToU8),
        CONVERSION(GBRF32, GBR8, CscFullF32ToU8),
        CONVERSION(GREY16, GREYF32, CscFullU16ToF32),
        CONVERSION(GBR16, GBRF32, CscFullU16ToF32),
        CONVERSION(GREYF32, GREY16, CscFullF32ToU16),
        CONVERSION(GBRF32, GBR16, CscFullF32ToU16),
        CONVERSION(BGRA32, GBR8, CscBgraToGbr8),
        CONVERSION(GBR8, BGRA32, CscGbr8ToBgra),
        CONVERSION(RGBA64, GBR16, CscRgba64ToGbr16),
        CONVERSION(GBR16, RGBA64, CscGbr16ToRgba64),
        CONVERSION(F32x4, GBRF32, CscF32x4ToGbrF32),
        CONVERSION(GBRF32, F32x4, CscGbrF32ToF32x4),
        CONVERSION(GBR8, F32x4, CscGbr8ToF32x4),
        CONVERSION(F32x4, GBR8, CscF32x4ToGbr8),
        CONVERSION(GBR16, F32x4, CscGbr16ToF32x4),
        CONVERSION(F32x4, GBR16, CscF32x4ToGbr16),
        CONVERSION(GBR8, I444, CscGbr8ToI444),
        CONVERSION(I444, GBR8, CscI444ToGbr8),
        CONVERSION(GBR16, I416, CscGbr16ToI416),
        CONVERSION(I416, GBR16, CscI416ToGbr16),
        CONVERSION(RGBA64, GREY16, CscRgba64ToGrey16),
        CONVERSION(GREY16, RGBA64, CscGrey16ToRgba64),
        CONVERSION(YUYV, F32x4, CscYuyvToF32x4),
        CONVERSION(F32x4, YUYV, CscF32x4ToYuyv),
        CONVERSION(UYVY, F32x4, CscUyvyToF32x4),
        CONVERSION(F32x4, UYVY, CscF32x4ToUyvy),
        CONVERSION(YUVA32, F32x4, CscYuvaToF32x4),
        CONVERSION(F32x4, YUVA32, CscF32x4ToYuva),
        CONVERSION(I420, F32x4, CscI420ToF32x4),
        CONVERSION(F32x4, I420, CscF32x4ToI420),
        CONVERSION(I444, F32x4, CscI444ToF32x4),
        CONVERSION(F32x4, I444, CscF32x4ToI444),
        CONVERSION(NV12, F32x4, CscNv12ToF32x4),
        CONVERSION(F32x4, NV12, CscF32x4ToNv12),
        CONVERSION(NV12, BGR24, CscNv12ToBgr24),
        CONVERSION(BGR24, NV12, CscBgr24ToNv12),
        CONVERSION(NV12, RGB24, CscNv12ToRgb24),
        CONVERSION(RGB24, NV12, CscRgb24ToNv12),
        CONVERSION(I420, BGR24, CscI420ToBgr24),
        CONVERSION(BGR24, I420, CscBgr24ToI420),
        CONVERSION(I420, RGB24, CscI420ToRgb24),
        CONVERSION(RGB24, I420, CscRgb24ToI420),
    });
#undef CONVERSION
}();

// --- Ways ----------------------------------------------------------------------------------------------------

// What a way loses beyond what its two ends lose anyway, the worst first; then its length.
struct Cost {
    int alphaBits = 0;    // of an alpha that both ends have
    int modelChanges = 0; // between RGB, YUV, ...
    int chroma = 0;       // halvings beyond those of both ends
    int bits = 0;         // below the depth of the poorer end
    int steps = 0;
    int lateBits = 0; // bits that could have been kept until the model changes, or from there on
    std::uint64_t bytes = 0;

    auto operator<=>(const Cost &) const = default; // NOLINT(modernize-use-nullptr): there is none, whatever it says

    Cost operator+(const Cost &other) const
    {
        return {
            alphaBits + other.alphaBits, modelChanges + other.modelChanges, chroma + other.chroma, bits + other.bits,
            steps + other.steps,         lateBits + other.lateBits,         bytes + other.bytes};
    }
};

constexpr int below(int bits, int wanted) { return std::max(wanted - bits, 0); }

// Of passing through a layout between two others.
Cost costOf(const Layout &passed, const Layout &from, const Layout &to)
{
    Cost cost;
    cost.alphaBits = below(passed.alphaBits, std::min(from.alphaBits, to.alphaBits));
    cost.chroma = std::max(static_cast<int>(passed.chroma) - static_cast<int>(std::max(from.chroma, to.chroma)), 0);
    // Away from the model of both ends and back again rounds twice, in floats the least.
    const bool detour = from.model == to.model && passed.model != from.model;
    const int enough = std::min(from.depth, to.depth);
    cost.bits = below(passed.depth, detour ? 32 : enough) + (passed.limitsCodes ? 1 : 0);
    cost.lateBits = below(passed.depth, passed.model == from.model ? from.depth
                                        : passed.model == to.model ? to.depth
                                                                   : enough);
    cost.bytes = passed.frameBytes(48, 2); // whole units of every layout
    return cost;
}

bool isGreyFromLuma(const Conversion &conversion)
{
    const auto between = [&](Model from, Model to) {
        return conversion.from->model == from && conversion.to->model == to;
    };
    return between(Model::yuv, Model::grey) || between(Model::grey, Model::yuv);
}

} // namespace

std::span<const Conversion> allConversions() { return conversions; }

std::vector<const Conversion *> findWay(const Layout &from, const Layout &to, bool fullRangeYuv)
{
    struct Reached {
        Cost cost;
        const Conversion *by;
    };
    std::map<const Layout *, Reached> reached{{&from, {}}};
    const auto improve = [&](const Conversion &step) {
        const auto start = reached.find(step.from);
        if (start == reached.end() || step.to == &from || (isGreyFromLuma(step) && !fullRangeYuv))
            return false;
        Cost cost = start->second.cost + (step.to == &to ? Cost{} : costOf(*step.to, from, to));
        cost.steps += 1;
        cost.modelChanges += step.from->model != step.to->model;
        const auto [end, isNew] = reached.try_emplace(step.to, Reached{cost, &step});
        const bool better = isNew || cost < end->second.cost;
        if (better)
            end->second = {cost, &step};
        return better;
    };
    for (bool improved = true; improved;) {
        improved = false;
        for (const Conversion &step : conversions)
            improved |= improve(step);
    }

    std::vector<const Conversion *> way;
    for (auto at = reached.find(&to); at != reached.end() && at->second.by; at = reached.find(at->second.by->from))
        way.push_back(at->second.by);
    std::ranges::reverse(way);
    return way;
}

} // namespace host
