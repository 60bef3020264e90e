// Slots that are no conversion of a row of pixels by layout and step, or whose arguments stand in another order.
#pragma once

#include "oracles/color/bt2020.h"
#include "oracles/color/convert.h"

namespace {

// --- 4:4:4 to 4:2:2: an odd last pixel becomes a pair of its own --------------------------------------------------

template <class Pairs> void packYuva(uint8_t *dst, const uint8_t *src, uint32_t width)
{
    void *const to[] = {dst};
    const void *const from[] = {src};
    for (std::int64_t k = 0; k < pairsIn(width); ++k) {
        const Pixel<std::int32_t> even = YUVA32::read(from, 2 * k);
        const Pixel<std::int32_t> odd = 2 * k + 1 < width ? YUVA32::read(from, 2 * k + 1) : even;
        Pairs::put(to, 0, 2 * k, even.c[0]);
        Pairs::put(to, 0, 2 * k + 1, odd.c[0]);
        Pairs::put(to, 1, k, even.c[1]);
        Pairs::put(to, 2, k, even.c[2]);
    }
}

inline void PackYuvaToYuyv(uint8_t *dst, const uint8_t *src, uint32_t width) { packYuva<YUYV>(dst, src, width); }
inline void PackYuvaToUyvy(uint8_t *dst, const uint8_t *src, uint32_t width) { packYuva<UYVY>(dst, src, width); }

// --- Planes of words to packed bytes ------------------------------------------------------------------------------

inline uint8_t topByte(uint16_t sample) { return static_cast<uint8_t>(sample >> 8); }

inline void PackPlanar16ToYuyv8(uint8_t *dst, const uint16_t *srcY, const uint16_t *srcU, const uint16_t *srcV,
                                uint32_t width)
{
    const int64_t packedPixels = width - width % 4;
    for (int64_t k = 0; k < width / 2; ++k) {
        const bool spread = 2 * k >= packedPixels;
        uint8_t *pair = dst + 4 * k;
        const int distance = spread ? 2 : 1;
        pair[0 * distance] = topByte(srcY[2 * k]);
        pair[1 * distance] = topByte(srcU[k]);
        pair[2 * distance] = topByte(srcY[2 * k + 1]);
        pair[3 * distance] = topByte(srcV[k]);
    }
}

inline void PackPlanar16ToUyvy8(uint8_t *dst, const uint16_t *srcY, const uint16_t *srcU, const uint16_t *srcV,
                                int32_t width)
{
    for (int64_t k = 0; k < width / 2; ++k) {
        uint8_t *pair = dst + 4 * k;
        pair[0] = topByte(srcU[k]);
        pair[1] = topByte(srcY[2 * k]);
        pair[2] = topByte(srcV[k]);
        pair[3] = topByte(srcY[2 * k + 1]);
    }
}

// --- Alpha from a plane -------------------------------------------------------------------------------------------

template <class Op> void withAlphaPlane(uint8_t *dst, const uint8_t *src, int32_t width, Op alphaOf)
{
    for (int64_t x = 0; x < width; ++x) {
        for (int c = 0; c < 3; ++c)
            dst[4 * x + c] = src[4 * x + c];
        dst[4 * x + 3] = static_cast<uint8_t>(alphaOf(x));
    }
}

inline void CscInsertAlpha32(uint8_t *dst, const uint8_t *src, const uint8_t *srcA, int32_t width)
{
    withAlphaPlane(dst, src, width, [=](int64_t x) { return srcA[x]; });
}

inline void CscMultiplyAlphaPlane32(uint8_t *dst, const uint8_t *src, const uint8_t *srcA, int32_t width)
{
    withAlphaPlane(dst, src, width, [=](int64_t x) { return scaled(src[4 * x + 3], srcA[x], 8); });
}

// --- DPX ----------------------------------------------------------------------------------------------------------

// All 32 bits pass, those of no component too.
inline void CscSwapEndian32(uint32_t *dst, const uint32_t *src, int32_t width)
{
    for (int64_t x = 0; x < width; ++x)
        writeWord<uint32_t, Order::bigEndian>(dst, x, src[x]);
}

template <class Layout> void dpx4ToF32x4(float *dst, const uint32_t *src, int32_t width, int32_t reversed)
{
    for (int64_t x = 0; x < width; ++x)
        for (int c = 0; c < 4; ++c) // R G B A
            dst[4 * x + c] = unitOf(fieldOf<Layout::fields, Order::bigEndian>(src, 4 * x + (reversed ? 3 - c : c)), 10);
}

template <class Layout> void f32x4ToDpx4(uint32_t *dst, const float *src, int32_t width, int32_t reversed)
{
    FieldWriter<Layout::fields, Order::bigEndian> writer(dst);
    for (int64_t x = 0; x < width; ++x)
        for (int c = 0; c < 4; ++c)
            writer.put(codeOf(src[4 * x + (reversed ? 3 - c : c)], 10));
    writer.finish();
}

inline void CscDpx4AToF32x4(float *dst, const uint32_t *src, int32_t width, int32_t reversed)
{
    dpx4ToF32x4<DPX4A>(dst, src, width, reversed);
}
inline void CscDpx4BToF32x4(float *dst, const uint32_t *src, int32_t width, int32_t reversed)
{
    dpx4ToF32x4<DPX4B>(dst, src, width, reversed);
}
inline void CscF32x4ToDpx4A(uint32_t *dst, const float *src, int32_t width, int32_t reversed)
{
    f32x4ToDpx4<DPX4A>(dst, src, width, reversed);
}
inline void CscF32x4ToDpx4B(uint32_t *dst, const float *src, int32_t width, int32_t reversed)
{
    f32x4ToDpx4<DPX4B>(dst, src, width, reversed);
}

// --- BT.2020: alpha before the width, limited to 16 bits ----------------------------------------------------------

template <class Pairs> void fromYuv2020(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    const auto lowByte = static_cast<uint8_t>(saturated16(alpha) & 255);
    Conversion<BGRA32, Pairs, FromYuv2020>::template run<void>(dst, src, width, lowByte);
}

inline void CscYuyvToBgra2020(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    fromYuv2020<YUYV>(dst, src, alpha, width);
}
inline void CscUyvyToBgra2020(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    fromYuv2020<UYVY>(dst, src, alpha, width);
}
inline void CscYuyvToBgra2020B(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    fromYuv2020<YUYV>(dst, src, alpha, width);
}
inline void CscUyvyToBgra2020B(uint8_t *dst, const uint8_t *src, int32_t alpha, int32_t width)
{
    fromYuv2020<UYVY>(dst, src, alpha, width);
}

inline void CscNoOp() {}

} // namespace
