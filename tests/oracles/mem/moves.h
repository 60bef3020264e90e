#pragma once

#include <cstdint>

namespace {

// --- Copies --------------------------------------------------------------------------------------------------

// As if through a buffer: from the end at which nothing is overwritten before it is read.
void copyRun(uint8_t *dst, const uint8_t *src, uint64_t bytes)
{
    if (reinterpret_cast<uintptr_t>(dst) <= reinterpret_cast<uintptr_t>(src))
        for (uint64_t i = 0; i < bytes; ++i)
            dst[i] = src[i];
    else
        for (uint64_t i = bytes; i > 0; --i)
            dst[i - 1] = src[i - 1];
}

void MemCopy(void *dst, const void *src, uint64_t bytes)
{
    copyRun(static_cast<uint8_t *>(dst), static_cast<const uint8_t *>(src), bytes);
}

void MemCopyStrided(uint8_t *dst, const uint8_t *src, int64_t dstStride, int64_t srcStride, uint64_t runBytes,
                    uint64_t rows)
{
    for (uint64_t r = 0; r < rows; ++r)
        copyRun(dst + static_cast<int64_t>(r) * dstStride, src + static_cast<int64_t>(r) * srcStride, runBytes);
}

void MemScatterStrided(uint8_t *dst, const uint8_t *src, int64_t dstStride, int64_t srcStride, uint64_t runBytes,
                       uint64_t rows)
{
    for (uint64_t r = rows; r > 0; --r)
        copyRun(dst + static_cast<int64_t>(r - 1) * dstStride, src + static_cast<int64_t>(r - 1) * srcStride, runBytes);
}

// --- Order ---------------------------------------------------------------------------------------------------

void MemReverseBytes(uint8_t *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[count - 1 - i];
}

void MemReverse16(uint16_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[count - 1 - i];
}

void MemReverse32(uint32_t *dst, const uint32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[count - 1 - i];
}

template <class Element> void exchange(Element &a, Element &b)
{
    const Element was = a;
    a = b;
    b = was;
}

void MemReverseBytesInPlace(uint8_t *data, uint64_t count)
{
    for (uint64_t i = 0; i < count / 2; ++i)
        exchange(data[i], data[count - 1 - i]);
}

void MemReverse16InPlace(uint16_t *data, uint64_t count)
{
    for (uint64_t i = 0; i < count / 2; ++i)
        exchange(data[i], data[count - 1 - i]);
}

void MemReverse32InPlace(uint32_t *data, uint64_t count)
{
    for (uint64_t i = 0; i < count / 2; ++i)
        exchange(data[i], data[count - 1 - i]);
}

void MemExchange(uint8_t *a, uint8_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        exchange(a[i], b[i]);
}

void MemSwapBytes16(uint16_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint16_t>(src[i] << 8 | src[i] >> 8);
}

void MemSwapBytes32(uint32_t *dst, const uint32_t *src, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t x = src[i];
        dst[i] = x << 24 | (x >> 8 & 255) << 16 | (x >> 16 & 255) << 8 | x >> 24;
    }
}

void MemSwapHalves32(uint32_t *dst, const uint32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = src[i] << 16 | src[i] >> 16;
}

void MemShuffle16A(uint16_t *data, uint64_t count)
{
    for (uint64_t group = 0; group < count / 4; ++group)
        exchange(data[4 * group], data[4 * group + 2]);
}

void MemShuffle32A(uint32_t *data, uint64_t count)
{
    for (uint64_t group = 0; group < count / 4; ++group)
        exchange(data[4 * group], data[4 * group + 2]);
}

void MemShuffle16B(uint16_t *data, uint64_t count)
{
    for (uint64_t group = 0; group < count / 6; ++group) {
        exchange(data[6 * group + 2], data[6 * group + 4]);
        exchange(data[6 * group + 3], data[6 * group + 5]);
    }
}

void MemShuffle32B(uint32_t *data, uint64_t count)
{
    for (uint64_t group = 0; group < count / 6; ++group) {
        exchange(data[6 * group + 2], data[6 * group + 4]);
        exchange(data[6 * group + 3], data[6 * group + 5]);
    }
}

// --- Fills ---------------------------------------------------------------------------------------------------

void MemFill8(uint8_t *dst, uint8_t value, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = value;
}

void MemFill16(uint16_t *dst, uint16_t value, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = value;
}

void MemFill32(uint32_t *dst, uint32_t value, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = value;
}

void MemFill24(uint8_t *dst, uint32_t value, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        dst[3 * i] = static_cast<uint8_t>(value);
        dst[3 * i + 1] = static_cast<uint8_t>(value >> 8);
        dst[3 * i + 2] = static_cast<uint8_t>(value >> 16);
    }
}

void MemFill64(uint64_t *dst, uint64_t value, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = value;
}

void MemFillTopByte32(uint32_t *dst, uint8_t value, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        dst[i] = (dst[i] & 0x00FFFFFF) | uint32_t{value} << 24;
}

// --- Elements of two sizes -----------------------------------------------------------------------------------

void MemNarrow16To8Low(uint8_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(src[i] & 255);
}

void MemNarrow16To8High(uint8_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(src[i] >> 8);
}

void MemNarrow16To8Shift2(uint8_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint8_t>(src[i] >> 2 < 255 ? src[i] >> 2 : 255);
}

void MemPack24(uint8_t *dst, const uint32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        dst[3 * i] = static_cast<uint8_t>(src[i]);
        dst[3 * i + 1] = static_cast<uint8_t>(src[i] >> 8);
        dst[3 * i + 2] = static_cast<uint8_t>(src[i] >> 16);
    }
}

void MemUnpack24(uint32_t *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = uint32_t{src[3 * i]} | uint32_t{src[3 * i + 1]} << 8 | uint32_t{src[3 * i + 2]} << 16;
}

void MemInsertLow8(uint16_t *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint16_t>((dst[i] & 0xFF00) | src[i]);
}

void MemInsertHigh8(uint16_t *dst, const uint8_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = static_cast<uint16_t>((dst[i] & 0x00FF) | src[i] << 8);
}

void MemInsertLow16(uint32_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = (dst[i] & 0xFFFF0000) | src[i];
}

void MemInsertHigh16(uint32_t *dst, const uint16_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = (dst[i] & 0x0000FFFF) | uint32_t{src[i]} << 16;
}

void MemInsertLow32(uint64_t *dst, const uint32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = (dst[i] & 0xFFFFFFFF00000000) | src[i];
}

void MemInsertHigh32(uint64_t *dst, const uint32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i)
        dst[i] = (dst[i] & 0x00000000FFFFFFFF) | uint64_t{src[i]} << 32;
}

void MemPackOp25(uint32_t *dst, const uint32_t *a, const uint32_t *b, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        dst[2 * i] = a[i];
        dst[2 * i + 1] = b[i];
    }
}

void MemDeinterleave32(uint32_t *dst0, uint32_t *dst1, const uint32_t *src, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        dst0[i] = src[2 * i];
        dst1[i] = src[2 * i + 1];
    }
}

} // namespace
