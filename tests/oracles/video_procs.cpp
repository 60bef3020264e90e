#include "oracles/oracles.hpp"

namespace {

int clampToByte(int x) { return x < 0 ? 0 : x > 255 ? 255 : x; }

// --- Smoothing -----------------------------------------------------------------------------------------------

void rows121(uint16_t *dst, const uint8_t *r0, const uint8_t *r1, const uint8_t *r2, int32_t pixels)
{
    for (int64_t i = 0; i < int64_t{pixels} * 4; ++i)
        dst[i] = static_cast<uint16_t>(r0[i] + 2 * r1[i] + r2[i]);
}

void SmoothRows121U8(uint16_t *dst, const uint8_t *r0, const uint8_t *r1, const uint8_t *r2, int32_t count)
{
    rows121(dst, r0, r1, r2, count);
}

void SmoothRows121Rgb32(uint16_t *dst, const uint8_t *r0, const uint8_t *r1, const uint8_t *r2, int32_t width)
{
    rows121(dst, r0, r1, r2, width);
}

// The weighted mean of a sum and its neighbours `distance` words away.
uint8_t weigh(const uint16_t *sum, int distance, int shift)
{
    const int total = sum[-distance] + 2 * sum[0] + sum[distance] + (1 << (shift - 1));
    return static_cast<uint8_t>(total >> shift < 255 ? total >> shift : 255);
}

void SmoothCols121U16ToU8(uint8_t *dst, const uint16_t *sums, int32_t count)
{
    for (int64_t i = 0; i < int64_t{count} * 4; ++i)
        dst[i] = weigh(sums + i, 4, 4);
}

// Pairs of four words. Luma is every second word and lies 2 words from its neighbours, U and V return every 4.
void cols422(uint8_t *dst, const uint16_t *words, int32_t pixels, int firstLumaWord, int shift)
{
    for (int64_t i = 0; i < int64_t{pixels / 2} * 4; ++i)
        dst[i] = weigh(words + i, i % 2 == firstLumaWord ? 2 : 4, shift);
}

void SmoothCols121U16ToU8_A(uint8_t *dst, const uint16_t *sums, int32_t count) { cols422(dst, sums, count, 0, 4); }
void SmoothCols121U16ToU8_B(uint8_t *dst, const uint16_t *sums, int32_t count) { cols422(dst, sums, count, 1, 4); }
void SmoothCols121U16ToU8Q_A(uint8_t *dst, const uint16_t *line, int32_t count) { cols422(dst, line, count, 0, 2); }
void SmoothCols121U16ToU8Q_B(uint8_t *dst, const uint16_t *line, int32_t count) { cols422(dst, line, count, 1, 2); }

void SmoothHoriz121Rgb32(uint8_t *dst, const uint8_t *src, int32_t count)
{
    for (int64_t x = 0; x < count; ++x) {
        const int64_t left = x > 0 ? x - 1 : x;
        const int64_t right = x < count - 1 ? x + 1 : x;
        for (int c = 0; c < 4; ++c) {
            const int neighbours = (src[4 * left + c] + src[4 * right + c] + 1) >> 1;
            dst[4 * x + c] = static_cast<uint8_t>((neighbours + src[4 * x + c] + 1) >> 1);
        }
    }
}

// --- Sharpening ----------------------------------------------------------------------------------------------

void SharpenU8(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count)
{
    for (int64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(clampToByte(a[i] + ((5 * (a[i] - b[i]) + 8) >> 4)));
}

} // namespace

#define VELA_SUBTABLE_LIST "vela/slots/video_procs.def"
extern constinit const VcbVideoProcs vela::test::ORACLE::videoProcs = {
#include "frame/every_slot.h"
};
