// Every conversion that is a reader, a step and a writer: kernel<target, source, step>, in slot order.
#pragma once

#include "colorspace/kernels/alpha.h"
#include "colorspace/kernels/hues.h"
#include "colorspace/kernels/kernel.h"
#include "colorspace/kernels/packed_yuv.h"
#include "colorspace/kernels/range.h"

namespace {

// Packed 4:2:2 and 4:4:4. Packed 8-bit pixels: alpha appended and dropped, byte orders.
constexpr auto ExpandYuyvToYuva = kernel<Yuva32, Yuyv, Video, uint32_t>;
constexpr auto ExpandUyvyToYuva = kernel<Yuva32, Uyvy, Video, uint32_t>;
constexpr auto AppendAlpha24To32 = kernel<Bgra32, Bgr24, Move, uint32_t>;
constexpr auto CscAppendAlphaSwap24To32 = kernel<Bgra32, Rgb24, Move, uint32_t>;
constexpr auto CscReverse32 = kernel<Argb32, Bgra32, Move>;
constexpr auto CscSwapRb32 = kernel<Rgba32, Bgra32, Move>;
constexpr auto CscAlphaFirstToLast32 = kernel<Rgba32, Argb32, Move>;
constexpr auto CscAlphaLastToFirst32 = kernel<Argb32, Rgba32, Move>;
constexpr auto CscDropAlpha32To24 = kernel<Bgr24, Bgra32, Move>;
constexpr auto CscDropAlphaSwap32To24 = kernel<Rgb24, Bgra32, Move>;
constexpr auto CscSwapRb24 = kernel<Rgb24, Bgr24, Move>;
constexpr auto CscPrependAlpha24To32 = kernel<Argb32, Rgb24, Move>;
constexpr auto CscPrependAlphaSwap24To32 = kernel<Argb32, Bgr24, Move>;
constexpr auto CscDropFirst32To24 = kernel<Rgb24, Argb32, Move>;
constexpr auto CscDropFirstSwap32To24 = kernel<Bgr24, Argb32, Move>;

// Packed 4:2:2 and 8-bit RGB.
constexpr auto CscYuyvToBgra = kernel<Bgra32, Yuyv, YuvToRgb>;
constexpr auto CscBgraToYuyv = kernel<Yuyv, Bgra32, RgbToYuv>;
constexpr auto CscUyvyToBgra = kernel<Bgra32, Uyvy, YuvToRgb>;
constexpr auto CscBgraToUyvy = kernel<Uyvy, Bgra32, RgbToYuv>;
constexpr auto CscYvyuToBgra = kernel<Bgra32, Yvyu, YuvToRgb>;
constexpr auto CscYuyvToRgba = kernel<Rgba32, Yuyv, YuvToRgb>;
constexpr auto CscRgbaToYuyv = kernel<Yuyv, Rgba32, RgbToYuv>;
constexpr auto CscUyvyToRgba = kernel<Rgba32, Uyvy, YuvToRgb>;
constexpr auto CscRgbaToUyvy = kernel<Uyvy, Rgba32, RgbToYuv>;
constexpr auto CscYuyvToBgr24 = kernel<Bgr24, Yuyv, YuvToRgb>;
constexpr auto CscBgr24ToYuyv = kernel<Yuyv, Bgr24, RgbToYuv>;
constexpr auto CscUyvyToBgr24 = kernel<Bgr24, Uyvy, YuvToRgb>;
constexpr auto CscBgr24ToUyvy = kernel<Uyvy, Bgr24, RgbToYuv>;
constexpr auto CscYuyvToRgb24 = kernel<Rgb24, Yuyv, YuvToRgb>;
constexpr auto CscRgb24ToYuyv = kernel<Yuyv, Rgb24, RgbToYuv>;
constexpr auto CscUyvyToRgb24 = kernel<Rgb24, Uyvy, YuvToRgb>;
constexpr auto CscRgb24ToUyvy = kernel<Uyvy, Rgb24, RgbToYuv>;

// 4:2:0 and 32-bit RGB.
constexpr auto CscNv12ToBgra = kernel<Bgra32, Nv12, YuvToRgb>;
constexpr auto CscBgraToNv12 = kernel<Nv12, Bgra32, RgbToYuv>;
constexpr auto CscNv21ToBgra = kernel<Bgra32, Nv21, YuvToRgb>;
constexpr auto CscI420ToBgra = kernel<Bgra32, I420, YuvToRgb>;
constexpr auto CscBgraToI420 = kernel<I420, Bgra32, RgbToYuv>;
constexpr auto CscBgraToNv21 = kernel<Nv21, Bgra32, RgbToYuv>;
constexpr auto CscNv12ToRgba = kernel<Rgba32, Nv12, YuvToRgb>;
constexpr auto CscRgbaToNv12 = kernel<Nv12, Rgba32, RgbToYuv>;
constexpr auto CscI420ToRgba = kernel<Rgba32, I420, YuvToRgb>;
constexpr auto CscRgbaToI420 = kernel<I420, Rgba32, RgbToYuv>;

// Packed 8-bit 4:2:2 and planar deep 4:2:2.
constexpr auto PackPlanar16ToUyvy8 = kernel<Uyvy, I216, Video>;
constexpr auto CscYuyvToI216 = kernel<I216, Yuyv, Video>;
constexpr auto CscUyvyToI216 = kernel<I216, Uyvy, Video>;
constexpr auto CscI210ToYuyv = kernel<Yuyv, I210, Video>;
constexpr auto CscI210ToUyvy = kernel<Uyvy, I210, Video>;

// Other YUV and BGRA32.
constexpr auto CscI422ToBgra = kernel<Bgra32, I422, YuvToRgb>;
constexpr auto CscBgraToI422 = kernel<I422, Bgra32, RgbToYuv>;
constexpr auto CscI444ToBgra = kernel<Bgra32, I444, YuvToRgb>;
constexpr auto CscBgraToI444 = kernel<I444, Bgra32, RgbToYuv>;
constexpr auto CscNv16ToBgra = kernel<Bgra32, Nv16, YuvToRgb>;
constexpr auto CscBgraToNv16 = kernel<Nv16, Bgra32, RgbToYuv>;
constexpr auto CscNv24ToBgra = kernel<Bgra32, Nv24, YuvToRgb>;
constexpr auto CscBgraToNv24 = kernel<Nv24, Bgra32, RgbToYuv>;
constexpr auto CscP016ToBgra = kernel<Bgra32, P016, YuvToRgb>;
constexpr auto CscBgraToP016 = kernel<P016, Bgra32, RgbToYuv>;
constexpr auto CscP216ToBgra = kernel<Bgra32, P216, YuvToRgb>;
constexpr auto CscBgraToP216 = kernel<P216, Bgra32, RgbToYuv>;
constexpr auto CscV210ToBgra = kernel<Bgra32, V210, YuvToRgb>;
constexpr auto CscBgraToV210 = kernel<V210, Bgra32, RgbToYuv>;

// YUV to YUV.
constexpr auto CscSwapYuyvUyvy = kernel<Uyvy, Yuyv, Video>;
constexpr auto CscNv12ToI420 = kernel<I420, Nv12, Video>;
constexpr auto CscI420ToNv12 = kernel<Nv12, I420, Video>;
constexpr auto CscNv21ToI420 = kernel<I420, Nv21, Video>;
constexpr auto CscI420ToNv21 = kernel<Nv21, I420, Video>;
constexpr auto CscNv12ToNv21 = kernel<Nv21, Nv12, Video>;
constexpr auto CscNv16ToI422 = kernel<I422, Nv16, Video>;
constexpr auto CscI422ToNv16 = kernel<Nv16, I422, Video>;
constexpr auto CscNv24ToI444 = kernel<I444, Nv24, Video>;
constexpr auto CscI444ToNv24 = kernel<Nv24, I444, Video>;
constexpr auto CscYuyvToNv12 = kernel<Nv12, Yuyv, Video>;
constexpr auto CscUyvyToNv12 = kernel<Nv12, Uyvy, Video>;
constexpr auto CscP016ToNv12 = kernel<Nv12, P016, Video>;
constexpr auto CscNv12ToP016 = kernel<P016, Nv12, Video>;
constexpr auto CscNv12ToYuyv = kernel<Yuyv, Nv12, Video>;
constexpr auto CscNv12ToUyvy = kernel<Uyvy, Nv12, Video>;
constexpr auto CscYuyvToI420 = kernel<I420, Yuyv, Video>;
constexpr auto CscUyvyToI420 = kernel<I420, Uyvy, Video>;
constexpr auto CscI420ToYuyv = kernel<Yuyv, I420, Video>;
constexpr auto CscI420ToUyvy = kernel<Uyvy, I420, Video>;
constexpr auto CscYuyvToI422 = kernel<I422, Yuyv, Video>;
constexpr auto CscUyvyToI422 = kernel<I422, Uyvy, Video>;
constexpr auto CscI422ToYuyv = kernel<Yuyv, I422, Video>;
constexpr auto CscI422ToUyvy = kernel<Uyvy, I422, Video>;
constexpr auto CscYuyvToNv16 = kernel<Nv16, Yuyv, Video>;
constexpr auto CscUyvyToNv16 = kernel<Nv16, Uyvy, Video>;
constexpr auto CscNv16ToYuyv = kernel<Yuyv, Nv16, Video>;
constexpr auto CscNv16ToUyvy = kernel<Uyvy, Nv16, Video>;
constexpr auto CscSwapChromaYuyv = kernel<Yvyu, Yuyv, Video>;
constexpr auto CscI422ToI420 = kernel<I420, I422, Video>;
constexpr auto CscI420ToI422 = kernel<I422, I420, Video>;
constexpr auto CscI444ToI420 = kernel<I420, I444, Video>;
constexpr auto CscI420ToI444 = kernel<I444, I420, Video>;
constexpr auto CscI444ToI422 = kernel<I422, I444, Video>;
constexpr auto CscI422ToI444 = kernel<I444, I422, Video>;
constexpr auto CscYuvaToI444 = kernel<I444, Yuva32, Video>;
constexpr auto CscI444ToYuva = kernel<Yuva32, I444, Video>;
constexpr auto CscVuyaToI444 = kernel<I444, Vuya32, Video>;
constexpr auto CscI444ToVuya = kernel<Vuya32, I444, Video>;
constexpr auto CscNv12ToYuva = kernel<Yuva32, Nv12, Video>;
constexpr auto CscYuvaToNv12 = kernel<Nv12, Yuva32, Video>;
constexpr auto CscI420ToYuva = kernel<Yuva32, I420, Video>;
constexpr auto CscYuvaToI420 = kernel<I420, Yuva32, Video>;

// Packed 4:4:4, grey.
constexpr auto CscYuvaToBgra = kernel<Bgra32, Yuva32, YuvToRgb>;
constexpr auto CscBgraToYuva = kernel<Yuva32, Bgra32, RgbToYuv>;
constexpr auto CscVuyaToBgra = kernel<Bgra32, Vuya32, YuvToRgb>;
constexpr auto CscBgraToVuya = kernel<Vuya32, Bgra32, RgbToYuv>;
constexpr auto CscYuvaToRgba = kernel<Rgba32, Yuva32, YuvToRgb>;
constexpr auto CscRgbaToYuva = kernel<Yuva32, Rgba32, RgbToYuv>;
constexpr auto CscBgraToGrey8 = kernel<Plane8, Bgra32, RgbToGrey>;
constexpr auto CscGrey8ToBgra = kernel<Bgra32, Plane8, Full>;

// Alpha of 32-bit pixels.
constexpr auto CscPremultiplyAlpha32 = kernel<Bgra32, Bgra32, Premultiply>;
constexpr auto CscUnpremultiplyAlpha32 = kernel<Bgra32, Bgra32, Unpremultiply>;
constexpr auto CscSetAlpha32 = kernel<Bgra32, Bgrx32, Move>;
constexpr auto CscExtractAlpha32 = kernel<Plane8, Bgra32, ExtractAlpha>;
constexpr auto CscInsertAlpha32 = kernel<Bgra32, WithAlphaPlane<Bgra32>, InsertAlpha>;
constexpr auto CscScaleAlpha32 = kernel<Bgra32, Bgra32, ScaleAlpha>;
constexpr auto CscMultiplyAlphaPlane32 = kernel<Bgra32, WithAlphaPlane<Bgra32>, MultiplyAlpha>;
constexpr auto CscFlattenAlpha32 = kernel<Bgra32, Bgra32, Flatten>;
constexpr auto CscFlattenPremultiplied32 = kernel<Bgra32, Bgra32, FlattenPremultiplied>;
constexpr auto CscPremultiplyAlphaFirst32 = kernel<Argb32, Argb32, Premultiply>;
constexpr auto CscUnpremultiplyAlphaFirst32 = kernel<Argb32, Argb32, Unpremultiply>;

// RGB and floats.
constexpr auto CscBgraToF32x4 = kernel<F32x4, Coded<Bgra32>, Full>;
constexpr auto CscRgbaToF32x4 = sampleKernel<4, PlaneF32, Coded<Plane8>, Full>;
constexpr auto CscBgr24ToF32x4 = kernel<F32x4, Coded<Bgr24>, Full>;
constexpr auto CscRgb24ToF32x4 = kernel<F32x4, Coded<Rgb24>, Full>;
constexpr auto CscRgb48ToF32x4 = kernel<F32x4, Coded<Rgb48>, Full>;
constexpr auto CscRgba64ToF32x4 = sampleKernel<4, PlaneF32, Coded<Plane16>, Full>;
constexpr auto CscA2b10ToF32x4 = kernel<F32x4, Coded<A2b10>, Full>;
constexpr auto CscF32x4ToBgra = kernel<Coded<Bgra32>, F32x4, Full>;
constexpr auto CscF32x4ToRgba = sampleKernel<4, Coded<Plane8>, PlaneF32, Full>;
constexpr auto CscF32x4ToBgr24 = kernel<Coded<Bgr24>, F32x4, Full>;
constexpr auto CscF32x4ToRgb24 = kernel<Coded<Rgb24>, F32x4, Full>;
constexpr auto CscF32x4ToRgb48 = kernel<Coded<Rgb48>, F32x4, Full>;
constexpr auto CscF32x4ToRgba64 = sampleKernel<4, Coded<Plane16>, PlaneF32, Full>;
constexpr auto CscF32x4ToA2b10 = kernel<Coded<A2b10>, F32x4, Full>;
constexpr auto CscA2r10ToF32x4 = kernel<F32x4, Coded<A2r10>, Full>;

// RGB of other depths.
constexpr auto CscRgb565ToBgra = kernel<Bgra32, Rgb565, Full>;
constexpr auto CscBgraToRgb565 = kernel<Rgb565, Bgra32, Full>;
constexpr auto CscBgr565ToBgra = kernel<Bgra32, Bgr565, Full>;
constexpr auto CscBgraToBgr565 = kernel<Bgr565, Bgra32, Full>;
constexpr auto CscArgb1555ToBgra = kernel<Bgra32, Argb1555, Full>;
constexpr auto CscBgraToArgb1555 = kernel<Argb1555, Bgra32, Full>;
constexpr auto CscArgb4444ToBgra = kernel<Bgra32, Argb4444, Full>;
constexpr auto CscBgraToArgb4444 = kernel<Argb4444, Bgra32, Full>;
constexpr auto CscA2r10ToBgra = kernel<Bgra32, A2r10, Full>;
constexpr auto CscBgraToA2r10 = kernel<A2r10, Bgra32, Full>;
constexpr auto CscA2b10ToBgra = kernel<Bgra32, A2b10, Full>;
constexpr auto CscBgraToA2b10 = kernel<A2b10, Bgra32, Full>;
constexpr auto CscDpx3AToBgra = kernel<Bgra32, Dpx3A, Full>;
constexpr auto CscBgraToDpx3A = kernel<Dpx3A, Bgra32, Full>;
constexpr auto CscDpx3BToBgra = kernel<Bgra32, Dpx3B, Full>;
constexpr auto CscBgraToDpx3B = kernel<Dpx3B, Bgra32, Full>;
constexpr auto CscRgba64ToBgra = kernel<Bgra32, Rgba64, Full>;
constexpr auto CscBgraToRgba64 = kernel<Rgba64, Bgra32, Full>;
constexpr auto CscRgba64ToRgba = sampleKernel<4, Plane8, Plane16, Full>;
constexpr auto CscRgbaToRgba64 = sampleKernel<4, Plane16, Plane8, Full>;
constexpr auto CscRgb48ToBgra = kernel<Bgra32, Rgb48, Full>;
constexpr auto CscBgraToRgb48 = kernel<Rgb48, Bgra32, Full>;
constexpr auto CscRgb48ToRgb24 = sampleKernel<3, Plane8, Plane16, Full>;
constexpr auto CscRgb24ToRgb48 = sampleKernel<3, Plane16, Plane8, Full>;
constexpr auto CscRgba64ToRgb48 = kernel<Rgb48, Rgba64, Full>;
constexpr auto CscRgb48ToRgba64 = kernel<Rgba64, Rgb48, Full>;
constexpr auto CscSwapRbA2r10 = kernel<A2b10, A2r10, Move>;
constexpr auto CscSwapEndian32 = kernel<WordSwapped32, Word32, Move>;
constexpr auto CscDpx3AToA2r10 = kernel<A2r10, Dpx3A, Move>;
constexpr auto CscA2r10ToDpx3A = kernel<Dpx3A, A2r10, Move>;

// Deep YUV.
constexpr auto CscV210ToUyvy = kernel<Uyvy, V210, Video>;
constexpr auto CscUyvyToV210 = kernel<V210, Uyvy, Video>;
constexpr auto CscI210ToV210 = kernel<V210, I210, Video>;
constexpr auto CscV210ToI210 = kernel<I210, V210, Video>;
constexpr auto CscV210ToP216 = kernel<P216, V210, Video>;
constexpr auto CscP216ToV210 = kernel<V210, P216, Video>;
constexpr auto CscV210ToY216 = kernel<Y216, V210, Video>;
constexpr auto CscY216ToV210 = kernel<V210, Y216, Video>;
constexpr auto CscV210ToP016 = kernel<P016, V210, Video>;
constexpr auto CscP016ToV210 = kernel<V210, P016, Video>;
constexpr auto CscY216ToI216 = kernel<I216, Y216, Video>;
constexpr auto CscI216ToY216 = kernel<Y216, I216, Video>;
constexpr auto CscY216ToP216 = kernel<P216, Y216, Video>;
constexpr auto CscP216ToY216 = kernel<Y216, P216, Video>;
constexpr auto CscY216ToYuyv = sampleKernel<2, Plane8, Plane16, Video, WidthIn::pairs>;
constexpr auto CscYuyvToY216 = sampleKernel<2, Plane16, Plane8, Video, WidthIn::pairs>;
constexpr auto CscP216ToI216 = kernel<I216, P216, Video>;
constexpr auto CscI216ToP216 = kernel<P216, I216, Video>;
constexpr auto CscP216ToI210 = kernel<I210, P216, Video>;
constexpr auto CscI210ToP216 = kernel<P216, I210, Video>;
constexpr auto CscP016ToI016 = kernel<I016, P016, Video>;
constexpr auto CscI016ToP016 = kernel<P016, I016, Video>;
constexpr auto CscP016ToI010 = kernel<I010, P016, Video>;
constexpr auto CscI010ToP016 = kernel<P016, I010, Video>;
constexpr auto CscP016ToP216 = kernel<P216, P016, Video>;
constexpr auto CscP216ToP016 = kernel<P016, P216, Video>;
constexpr auto CscP216ToNv16 = kernel<Nv16, P216, Video>;
constexpr auto CscNv16ToP216 = kernel<P216, Nv16, Video>;
constexpr auto CscY410ToI410 = kernel<I410, Y410, Video>;
constexpr auto CscI410ToY410 = kernel<Y410, I410, Video>;
constexpr auto CscY416ToI416 = kernel<I416, Y416, Video>;
constexpr auto CscI416ToY416 = kernel<Y416, I416, Video>;

// Deep YUV and floats, deep RGB.
constexpr auto CscP016ToF32x4 = kernel<F32x4, P016, YuvToRgb>;
constexpr auto CscF32x4ToP016 = kernel<P016, F32x4, RgbToYuv>;
constexpr auto CscP216ToF32x4 = kernel<F32x4, P216, YuvToRgb>;
constexpr auto CscF32x4ToP216 = kernel<P216, F32x4, RgbToYuv>;
constexpr auto CscY216ToF32x4 = kernel<F32x4, Y216, YuvToRgb>;
constexpr auto CscF32x4ToY216 = kernel<Y216, F32x4, RgbToYuv>;
constexpr auto CscY410ToF32x4 = kernel<F32x4, Y410, YuvToRgb>;
constexpr auto CscF32x4ToY410 = kernel<Y410, F32x4, RgbToYuv>;
constexpr auto CscY416ToF32x4 = kernel<F32x4, Y416, YuvToRgb>;
constexpr auto CscF32x4ToY416 = kernel<Y416, F32x4, RgbToYuv>;
constexpr auto CscV210ToF32x4 = kernel<F32x4, V210, YuvToRgb>;
constexpr auto CscF32x4ToV210 = kernel<V210, F32x4, RgbToYuv>;
constexpr auto CscI010ToF32x4 = kernel<F32x4, I010, YuvToRgb>;
constexpr auto CscF32x4ToI010 = kernel<I010, F32x4, RgbToYuv>;
constexpr auto CscI210ToF32x4 = kernel<F32x4, I210, YuvToRgb>;
constexpr auto CscF32x4ToI210 = kernel<I210, F32x4, RgbToYuv>;
constexpr auto CscI410ToF32x4 = kernel<F32x4, I410, YuvToRgb>;
constexpr auto CscF32x4ToI410 = kernel<I410, F32x4, RgbToYuv>;
constexpr auto CscI016ToF32x4 = kernel<F32x4, I016, YuvToRgb>;
constexpr auto CscF32x4ToI016 = kernel<I016, F32x4, RgbToYuv>;
constexpr auto CscI216ToF32x4 = kernel<F32x4, I216, YuvToRgb>;
constexpr auto CscF32x4ToI216 = kernel<I216, F32x4, RgbToYuv>;
constexpr auto CscI416ToF32x4 = kernel<F32x4, I416, YuvToRgb>;
constexpr auto CscF32x4ToI416 = kernel<I416, F32x4, RgbToYuv>;
constexpr auto CscP016ToRgba64 = kernel<Rgba64, P016, YuvToRgb>;
constexpr auto CscRgba64ToP016 = kernel<P016, Rgba64, RgbToYuv>;
constexpr auto CscP216ToRgba64 = kernel<Rgba64, P216, YuvToRgb>;
constexpr auto CscRgba64ToP216 = kernel<P216, Rgba64, RgbToYuv>;
constexpr auto CscY416ToRgba64 = kernel<Rgba64, Y416, YuvToRgb>;
constexpr auto CscRgba64ToY416 = kernel<Y416, Rgba64, RgbToYuv>;
constexpr auto CscI416ToRgba64 = kernel<Rgba64, I416, YuvToRgb>;
constexpr auto CscRgba64ToI416 = kernel<I416, Rgba64, RgbToYuv>;
constexpr auto CscP016ToA2b10 = kernel<A2b10, P016, YuvToRgb>;
constexpr auto CscA2b10ToP016 = kernel<P016, A2b10, RgbToYuv>;
constexpr auto CscY410ToY416 = kernel<Y416, Y410, Video>;
constexpr auto CscY416ToY410 = kernel<Y410, Y416, Video>;

// Deep chroma.
constexpr auto CscI216ToI016 = kernel<I016, I216, Video>;
constexpr auto CscI016ToI216 = kernel<I216, I016, Video>;
constexpr auto CscI416ToI016 = kernel<I016, I416, Video>;
constexpr auto CscI016ToI416 = kernel<I416, I016, Video>;
constexpr auto CscI416ToI216 = kernel<I216, I416, Video>;
constexpr auto CscI216ToI416 = kernel<I416, I216, Video>;

// DPX and floats.
constexpr auto CscDpx3AToF32x4 = kernel<F32x4, Dpx3A, Full>;
constexpr auto CscF32x4ToDpx3A = kernel<Dpx3A, F32x4, Full>;
constexpr auto CscDpx3BToF32x4 = kernel<F32x4, Dpx3B, Full>;
constexpr auto CscF32x4ToDpx3B = kernel<Dpx3B, F32x4, Full>;
constexpr auto CscDpx4AToF32x4 = convertDpx4ToF32x4<2>;
constexpr auto CscF32x4ToDpx4A = convertF32x4ToDpx4<2>;
constexpr auto CscDpx4BToF32x4 = convertDpx4ToF32x4<0>;
constexpr auto CscF32x4ToDpx4B = convertF32x4ToDpx4<0>;

// Hues.
constexpr auto CscHsvPlanesToBgr24 = kernel<Bgr24, HuePlanes, HsvToRgb>;
constexpr auto CscHsvPlanesToRgb24 = kernel<Rgb24, HuePlanes, HsvToRgb>;
constexpr auto CscHsvPlanesToRgba = kernel<Rgba32, HuePlanes, HsvToRgb>;
constexpr auto CscHsvPlanesToBgra = kernel<Bgra32, HuePlanes, HsvToRgb>;
constexpr auto CscRgb24ToHslPlanes = kernel<HuePlanes, Rgb24, RgbToHsl>;
constexpr auto CscBgraToHslPlanes = kernel<HuePlanes, Bgra32, RgbToHsl>;
constexpr auto CscHslPlanesToRgb24 = kernel<Rgb24, HuePlanes, HslToRgb>;
constexpr auto CscHslPlanesToBgra = kernel<Bgra32, HuePlanes, HslToRgb>;

// Float helpers.
constexpr auto CscF32x4ToA2r10 = kernel<Coded<A2r10>, F32x4, Full>;
constexpr auto CscClampF32x4 = sampleKernel<4, PlaneF32, PlaneF32, Clamp>;
constexpr auto CscGreyF32ToF32x4 = kernel<F32x4, PlaneF32, Full>;
constexpr auto CscF32x4ToGreyF32 = kernel<PlaneF32, F32x4, RgbToGrey>;

// Deep YUV and BGRA32.
constexpr auto CscY216ToBgra = kernel<Bgra32, Y216, YuvToRgb>;
constexpr auto CscBgraToY216 = kernel<Y216, Bgra32, RgbToYuv>;
constexpr auto CscY410ToBgra = kernel<Bgra32, Y410, YuvToRgb>;
constexpr auto CscBgraToY410 = kernel<Y410, Bgra32, RgbToYuv>;
constexpr auto CscY416ToBgra = kernel<Bgra32, Y416, YuvToRgb>;
constexpr auto CscBgraToY416 = kernel<Y416, Bgra32, RgbToYuv>;
constexpr auto CscI010ToBgra = kernel<Bgra32, I010, YuvToRgb>;
constexpr auto CscBgraToI010 = kernel<I010, Bgra32, RgbToYuv>;
constexpr auto CscI210ToBgra = kernel<Bgra32, I210, YuvToRgb>;
constexpr auto CscBgraToI210 = kernel<I210, Bgra32, RgbToYuv>;
constexpr auto CscI410ToBgra = kernel<Bgra32, I410, YuvToRgb>;
constexpr auto CscBgraToI410 = kernel<I410, Bgra32, RgbToYuv>;

// Luma of packed 4:2:2.
constexpr auto CscYuyvToGrey8 = kernel<Luma8, Yuyv, Video>;
constexpr auto CscUyvyToGrey8 = kernel<Luma8, Uyvy, Video>;
constexpr auto CscGrey8ToYuyv = kernel<Yuyv, Luma8, Video>;
constexpr auto CscGrey8ToUyvy = kernel<Uyvy, Luma8, Video>;

// Ranges.
constexpr auto CscYuyvToFullRange = kernel<Yuyv, Yuyv, ToFullRange>;
constexpr auto CscYuyvToLimitedRange = kernel<Yuyv, Yuyv, ToLimitedRange>;
constexpr auto CscUyvyToFullRange = kernel<Uyvy, Uyvy, ToFullRange>;
constexpr auto CscUyvyToLimitedRange = kernel<Uyvy, Uyvy, ToLimitedRange>;
constexpr auto CscRgb32ToFullRange = kernel<Bgra32, Bgra32, ToFullRange>;
constexpr auto CscRgb32ToLimitedRange = kernel<Bgra32, Bgra32, ToLimitedRange>;
constexpr auto CscLuma8ToFullRange = kernel<Plane8, Plane8, ToFullRange>;
constexpr auto CscLuma8ToLimitedRange = kernel<Plane8, Plane8, ToLimitedRange>;
constexpr auto CscChroma8ToFullRange = kernel<Plane8, Plane8, ChromaToFullRange>;
constexpr auto CscChroma8ToLimitedRange = kernel<Plane8, Plane8, ChromaToLimitedRange>;
constexpr auto CscLuma16ToFullRange = kernel<Plane16, Plane16, ToFullRange>;
constexpr auto CscLuma16ToLimitedRange = kernel<Plane16, Plane16, ToLimitedRange>;
constexpr auto CscChroma16ToFullRange = kernel<Plane16, Plane16, ChromaToFullRange>;
constexpr auto CscChroma16ToLimitedRange = kernel<Plane16, Plane16, ChromaToLimitedRange>;

// Depths of planes.
constexpr auto CscVideoU8ToU10 = kernel<Plane10, Plane8, Video>;
constexpr auto CscVideoU8ToU16 = kernel<Plane16, Plane8, Video>;
constexpr auto CscVideoU10ToU8 = kernel<Plane8, Plane10, Video>;
constexpr auto CscVideoU10ToU16 = kernel<Plane16, Plane10, Video>;
constexpr auto CscVideoU16ToU8 = kernel<Plane8, Plane16, Video>;
constexpr auto CscVideoU16ToU10 = kernel<Plane10, Plane16, Video>;
constexpr auto CscFullU8ToU16 = kernel<Plane16, Plane8, Full>;
constexpr auto CscFullU16ToU8 = kernel<Plane8, Plane16, Full>;
constexpr auto CscFullU8ToF32 = kernel<PlaneF32, Plane8, Full>;
constexpr auto CscFullF32ToU8 = kernel<Plane8, PlaneF32, Full>;
constexpr auto CscFullU16ToF32 = kernel<PlaneF32, Plane16, Full>;
constexpr auto CscFullF32ToU16 = kernel<Plane16, PlaneF32, Full>;

// Planar RGB, deep grey.
constexpr auto CscBgraToGbr8 = kernel<Gbr8, Bgra32, Video>;
constexpr auto CscGbr8ToBgra = kernel<Bgra32, Gbr8, Video>;
constexpr auto CscRgba64ToGbr16 = kernel<Gbr16, Rgba64, Full>;
constexpr auto CscGbr16ToRgba64 = kernel<Rgba64, Gbr16, Full>;
constexpr auto CscF32x4ToGbrF32 = kernel<GbrF32, F32x4, Full>;
constexpr auto CscGbrF32ToF32x4 = kernel<F32x4, GbrF32, Full>;
constexpr auto CscGbr8ToF32x4 = kernel<F32x4, Gbr8, Full>;
constexpr auto CscF32x4ToGbr8 = kernel<Gbr8, F32x4, Full>;
constexpr auto CscGbr16ToF32x4 = kernel<F32x4, Gbr16, Full>;
constexpr auto CscF32x4ToGbr16 = kernel<Gbr16, F32x4, Full>;
constexpr auto CscGbr8ToI444 = kernel<I444, Gbr8, RgbToYuv>;
constexpr auto CscI444ToGbr8 = kernel<Gbr8, I444, YuvToRgb>;
constexpr auto CscGbr16ToI416 = kernel<I416, Gbr16, RgbToYuv>;
constexpr auto CscI416ToGbr16 = kernel<Gbr16, I416, YuvToRgb>;
constexpr auto CscRgba64ToGrey16 = kernel<Plane16, Rgba64, RgbToGrey>;
constexpr auto CscGrey16ToRgba64 = kernel<Rgba64, Plane16, Full>;

// Alpha of deep pixels.
constexpr auto CscPremultiplyAlpha64 = kernel<Rgba64, Rgba64, Premultiply>;
constexpr auto CscUnpremultiplyAlpha64 = kernel<Rgba64, Rgba64, Unpremultiply>;
constexpr auto CscSetAlpha64 = kernel<Rgba64, Rgba64, SetAlpha>;
constexpr auto CscPremultiplyAlphaF32 = kernel<F32x4, F32x4, Premultiply>;
constexpr auto CscUnpremultiplyAlphaF32 = kernel<F32x4, F32x4, Unpremultiply>;
constexpr auto CscSetAlphaF32 = kernel<F32x4, F32x4, SetAlpha>;

// 8-bit YUV and floats.
constexpr auto CscYuyvToF32x4 = kernel<F32x4, Yuyv, YuvToRgb>;
constexpr auto CscF32x4ToYuyv = kernel<Yuyv, F32x4, RgbToYuv>;
constexpr auto CscUyvyToF32x4 = kernel<F32x4, Uyvy, YuvToRgb>;
constexpr auto CscF32x4ToUyvy = kernel<Uyvy, F32x4, RgbToYuv>;
constexpr auto CscYuvaToF32x4 = kernel<F32x4, Yuva32, YuvToRgb>;
constexpr auto CscF32x4ToYuva = kernel<Yuva32, F32x4, RgbToYuv>;
constexpr auto CscI420ToF32x4 = kernel<F32x4, I420, YuvToRgb>;
constexpr auto CscF32x4ToI420 = kernel<I420, F32x4, RgbToYuv>;
constexpr auto CscI444ToF32x4 = kernel<F32x4, I444, YuvToRgb>;
constexpr auto CscF32x4ToI444 = kernel<I444, F32x4, RgbToYuv>;
constexpr auto CscNv12ToF32x4 = kernel<F32x4, Nv12, YuvToRgb>;
constexpr auto CscF32x4ToNv12 = kernel<Nv12, F32x4, RgbToYuv>;

// 4:2:0 and 24-bit RGB.
constexpr auto CscNv12ToBgr24 = kernel<Bgr24, Nv12, YuvToRgb>;
constexpr auto CscBgr24ToNv12 = kernel<Nv12, Bgr24, RgbToYuv>;
constexpr auto CscNv12ToRgb24 = kernel<Rgb24, Nv12, YuvToRgb>;
constexpr auto CscRgb24ToNv12 = kernel<Nv12, Rgb24, RgbToYuv>;
constexpr auto CscI420ToBgr24 = kernel<Bgr24, I420, YuvToRgb>;
constexpr auto CscBgr24ToI420 = kernel<I420, Bgr24, RgbToYuv>;
constexpr auto CscI420ToRgb24 = kernel<Rgb24, I420, YuvToRgb>;
constexpr auto CscRgb24ToI420 = kernel<I420, Rgb24, RgbToYuv>;

} // namespace
