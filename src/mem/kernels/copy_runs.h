// Copies of runs of bytes at strides, in the order of the rows: a run may read what the runs before it wrote.
#pragma once

#include "mem/kernels/copy.h"

namespace {

template <class Move>
inline void forRuns(uint8_t *dst, const uint8_t *src, int64_t dstStride, int64_t srcStride, uint64_t rows, Move move)
{
    move(dst, src);
#pragma GCC unroll 4
    for (uint64_t r = 1; r < rows; ++r) {
        dst += dstStride;
        src += srcStride;
        move(dst, src);
    }
}

// More than count - 1 registers and at most count, as if through a buffer.
template <int count> inline void moveRegisters(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    const Block<count - 1> first = loadBlock<count - 1>(src);
    const Block<1> last = loadBlock<1>(src + n - last.size);
    first.storeTo(dst);
    last.storeTo(dst + n - last.size);
}

// The length of a run chooses the loop once, not in every row.
inline void moveRuns(uint8_t *dst, const uint8_t *src, int64_t dstStride, int64_t srcStride, ptrdiff_t runBytes,
                     uint64_t rows)
{
    const auto run = [=](auto move) { forRuns(dst, src, dstStride, srcStride, rows, move); };
    if (rows == 0 || runBytes == 0)
        return;
    if (runBytes == 1)
        run([](uint8_t *to, const uint8_t *from) { *to = *from; });
    else if (runBytes == 2)
        run([](uint8_t *to, const uint8_t *from) { moveWhole<uint16_t>(to, from); });
    else if (runBytes == 3)
        run([](uint8_t *to, const uint8_t *from) { moveEnds<uint16_t>(to, from, 3); });
    else if (runBytes == 4)
        run([](uint8_t *to, const uint8_t *from) { moveWhole<uint32_t>(to, from); });
    else if (runBytes < 8)
        run([=](uint8_t *to, const uint8_t *from) { moveEnds<uint32_t>(to, from, runBytes); });
    else if (runBytes == 8)
        run([](uint8_t *to, const uint8_t *from) { moveWhole<uint64_t>(to, from); });
    else if (runBytes < 16)
        run([=](uint8_t *to, const uint8_t *from) { moveEnds<uint64_t>(to, from, runBytes); });
    else if (runBytes <= 32)
        run([=](uint8_t *to, const uint8_t *from) { moveEnds<__m128i>(to, from, runBytes); });
    else if (runBytes <= 4 * (ptrdiff_t)sizeof(u8s))
        run([=](uint8_t *to, const uint8_t *from) { moveBytes(to, from, runBytes); });
    else if (runBytes <= 5 * (ptrdiff_t)sizeof(u8s))
        run([=](uint8_t *to, const uint8_t *from) { moveRegisters<5>(to, from, runBytes); });
    else if (runBytes <= 6 * (ptrdiff_t)sizeof(u8s))
        run([=](uint8_t *to, const uint8_t *from) { moveRegisters<6>(to, from, runBytes); });
    else
        run([=](uint8_t *to, const uint8_t *from) { moveBytes(to, from, runBytes); });
}

void MemCopyStrided(uint8_t *dst, const uint8_t *src, int64_t dstStride, int64_t srcStride, uint64_t runBytes,
                    uint64_t rows)
{
    moveRuns(dst, src, dstStride, srcStride, (ptrdiff_t)runBytes, rows);
}

void MemScatterStrided(uint8_t *dst, const uint8_t *src, int64_t dstStride, int64_t srcStride, uint64_t runBytes,
                       uint64_t rows)
{
    if (rows == 0)
        return;
    const int64_t last = (int64_t)rows - 1;
    const auto back = [](int64_t stride) { return (int64_t)(0 - (uint64_t)stride); }; // of any stride
    moveRuns(dst + last * dstStride, src + last * srcStride, back(dstStride), back(srcStride), (ptrdiff_t)runBytes,
             rows);
}

} // namespace
