// Rows of packed 4:2:2 that end in their own way.
#pragma once

#include "colorspace/kernels/kernel.h"

namespace {

// An odd last pixel becomes a pair.
template <class Packed> void packYuva(uint8_t *dst, const uint8_t *src, uint32_t width)
{
    kernel<Packed, Yuva32, Video, uint32_t>(dst, src, width);
    if (width & 1) {
        const uint8_t *pixel = src + (ptrdiff_t)(width / 2) * 8;
        uint8_t *pair = dst + (ptrdiff_t)(width / 2) * 4;
        constexpr int luma = Packed::lumaPlace;
        pair[luma] = pair[luma + 2] = pixel[0];
        pair[1 - luma] = pixel[1];
        pair[3 - luma] = pixel[2];
    }
}
constexpr auto PackYuvaToYuyv = packYuva<Yuyv>;
constexpr auto PackYuvaToUyvy = packYuva<Uyvy>;

// Hosts know a pair behind the last four pixels by its place: it has always been spread over eight bytes.
void PackPlanar16ToYuyv8(uint8_t *dst, const uint16_t *srcY, const uint16_t *srcU, const uint16_t *srcV, uint32_t width)
{
    const ptrdiff_t packed = (ptrdiff_t)(width & ~3u);
    kernel<Yuyv, I216, Video, ptrdiff_t>(dst, srcY, srcU, srcV, packed);
    if (width & 2) {
        uint8_t *pair = dst + packed * 2;
        pair[0] = (uint8_t)(loadWord(srcY + packed) >> 8);
        pair[2] = (uint8_t)(loadWord(srcU + packed / 2) >> 8);
        pair[4] = (uint8_t)(loadWord(srcY + packed + 1) >> 8);
        pair[6] = (uint8_t)(loadWord(srcV + packed / 2) >> 8);
    }
}

} // namespace
