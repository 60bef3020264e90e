#include "oracles/oracles.hpp"

namespace {

// --- Packed 4:2:2 and 4:4:4 ----------------------------------------------------------------------------------

// Where a pair's samples lie.
struct PairOrder {
    int y0, u, y1, v;
};
constexpr PairOrder yuyv{.y0 = 0, .u = 1, .y1 = 2, .v = 3};
constexpr PairOrder uyvy{.y0 = 1, .u = 0, .y1 = 3, .v = 2};

uint8_t mean(int a, int b) { return static_cast<uint8_t>((a + b + 1) >> 1); }

void expand(PairOrder order, uint8_t *dst, const uint8_t *src, uint32_t width, uint8_t alpha)
{
    const int64_t pairs = width / 2;
    for (int64_t k = 0; k < pairs; ++k) {
        const uint8_t *pair = src + 4 * k;
        const uint8_t *next = k + 1 < pairs ? pair + 4 : pair;
        uint8_t *even = dst + 8 * k;
        even[0] = pair[order.y0];
        even[1] = pair[order.u];
        even[2] = pair[order.v];
        even[3] = alpha;
        uint8_t *odd = even + 4;
        odd[0] = pair[order.y1];
        odd[1] = mean(pair[order.u], next[order.u]);
        odd[2] = mean(pair[order.v], next[order.v]);
        odd[3] = alpha;
    }
}

void pack(PairOrder order, uint8_t *dst, const uint8_t *src, uint32_t width)
{
    for (int64_t k = 0; k < (int64_t{width} + 1) / 2; ++k) {
        const uint8_t *even = src + 8 * k;
        const uint8_t *odd = 2 * k + 1 < int64_t{width} ? even + 4 : even;
        uint8_t *pair = dst + 4 * k;
        pair[order.y0] = even[0];
        pair[order.u] = even[1];
        pair[order.y1] = odd[0];
        pair[order.v] = even[2];
    }
}

void ExpandYuyvToYuva(uint8_t *dst, const uint8_t *src, uint32_t width, uint8_t alpha)
{
    expand(yuyv, dst, src, width, alpha);
}

void ExpandUyvyToYuva(uint8_t *dst, const uint8_t *src, uint32_t width, uint8_t alpha)
{
    expand(uyvy, dst, src, width, alpha);
}

void PackYuvaToYuyv(uint8_t *dst, const uint8_t *src, uint32_t width) { pack(yuyv, dst, src, width); }
void PackYuvaToUyvy(uint8_t *dst, const uint8_t *src, uint32_t width) { pack(uyvy, dst, src, width); }

void AppendAlpha24To32(uint8_t *dst, const uint8_t *src, uint32_t width, uint8_t alpha)
{
    for (int64_t i = 0; i < int64_t{width}; ++i) {
        for (int c = 0; c < 3; ++c)
            dst[4 * i + c] = src[3 * i + c];
        dst[4 * i + 3] = alpha;
    }
}

// --- Planar 16-bit 4:2:2 to packed bytes ---------------------------------------------------------------------

uint8_t topByte(uint16_t sample) { return static_cast<uint8_t>(sample >> 8); }

void PackPlanar16ToYuyv8(uint8_t *dst, const uint16_t *srcY, const uint16_t *srcU, const uint16_t *srcV, uint32_t width)
{
    const int64_t packed = width - width % 4;
    for (int64_t k = 0; k < width / 2; ++k) {
        const bool spread = 2 * k >= packed;
        uint8_t *pair = dst + 4 * k;
        const int distance = spread ? 2 : 1;
        pair[0 * distance] = topByte(srcY[2 * k]);
        pair[1 * distance] = topByte(srcU[k]);
        pair[2 * distance] = topByte(srcY[2 * k + 1]);
        pair[3 * distance] = topByte(srcV[k]);
    }
}

void PackPlanar16ToUyvy8(uint8_t *dst, const uint16_t *srcY, const uint16_t *srcU, const uint16_t *srcV, int32_t width)
{
    for (int64_t k = 0; k < width / 2; ++k) {
        uint8_t *pair = dst + 4 * k;
        pair[0] = topByte(srcU[k]);
        pair[1] = topByte(srcY[2 * k]);
        pair[2] = topByte(srcV[k]);
        pair[3] = topByte(srcY[2 * k + 1]);
    }
}

void CscNoOp() {}

} // namespace

#define VELA_SUBTABLE_LIST "vela/slots/color_space_procs.def"
extern constinit const VcbColorSpaceProcs vela::test::ORACLE::colorSpaceProcs = {
#include "frame/every_slot.h"
};
