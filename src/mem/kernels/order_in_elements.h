// The order of bytes in elements and of elements in groups.
#pragma once

#include "mem/kernels/copy.h"

namespace {

void MemSwapBytes16(uint16_t *dst, const uint16_t *src, uint64_t count)
{
    map<u16s>(
        dst, (ptrdiff_t)count, [](u16s x) { return swapBytes(x); }, src);
}

void MemSwapBytes32(uint32_t *dst, const uint32_t *src, int32_t count)
{
    map<u32s>(
        dst, count, [](u32s x) { return as<u32s>(swapBytes(as<u16s>(swapHalves(x)))); }, src);
}

void MemSwapHalves32(uint32_t *dst, const uint32_t *src, uint64_t count)
{
    map<u32s>(
        dst, (ptrdiff_t)count, [](u32s x) { return swapHalves(x); }, src);
}

// Groups of 4.
void MemShuffle16A(uint16_t *data, uint64_t count)
{
    map<u16s>(
        data, (ptrdiff_t)(count & ~(uint64_t)3), [](u16s x) { return orderFours<2, 1, 0, 3>(x); }, data);
}

void MemShuffle32A(uint32_t *data, uint64_t count)
{
    map<u32s>(
        data, (ptrdiff_t)(count & ~(uint64_t)3), [](u32s x) { return orderFours<2, 1, 0, 3>(x); }, data);
}

// Groups of 6, as groups A B C of three units of 4 bytes, of which B and C change places. A block of 48 bytes in three
// registers is 4 of them.
struct Block48 {
    __m128i x, y, z;

    explicit Block48(const uint8_t *from)
        : x(_mm_loadu_si128((const __m128i *)from)), y(_mm_loadu_si128((const __m128i *)(from + 16))),
          z(_mm_loadu_si128((const __m128i *)(from + 32)))
    {
    }
    void storeTo(uint8_t *to) const
    {
        _mm_storeu_si128((__m128i *)to, x);
        _mm_storeu_si128((__m128i *)(to + 16), y);
        _mm_storeu_si128((__m128i *)(to + 32), z);
    }
};

//   A B C A | B C A B | C A B C      numbered     0 1 2 3 | 4 5 6 7 | 8 9 10 11
//   A C B A | C B A C | B A C B      becomes      0 2 1 3 | 5 4 6 8 | 7 9 11 10
inline Block48 swapLastTwoOfThree(Block48 b)
{
    const auto pick = [](__m128i x) { return _mm_castsi128_ps(x); };
    const __m128 middle = _mm_shuffle_ps(pick(b.y), pick(b.z), _MM_SHUFFLE(1, 0, 3, 2)); // 6 7 8 9
    b.x = _mm_shuffle_epi32(b.x, _MM_SHUFFLE(3, 1, 2, 0));
    b.y = _mm_castps_si128(_mm_shuffle_ps(pick(b.y), middle, _MM_SHUFFLE(2, 0, 0, 1)));
    b.z = _mm_castps_si128(_mm_shuffle_ps(middle, pick(b.z), _MM_SHUFFLE(2, 3, 3, 1)));
    return b;
}

void MemShuffle16B(uint16_t *data, uint64_t count)
{
    constexpr ptrdiff_t group = 12;
    uint8_t *at = (uint8_t *)data;
    ptrdiff_t n = group * (ptrdiff_t)(count / 6);
    if (n >= 48) {
        const Block48 last = swapLastTwoOfThree(Block48(at + n - 48)); // before the block ahead of it is written
        for (ptrdiff_t i = 0; i < n - 48; i += 48)
            swapLastTwoOfThree(Block48(at + i)).storeTo(at + i);
        last.storeTo(at + n - 48);
        return;
    }
    for (; n > 0; n -= group, at += group) {
        const uint64_t pair = loadPiece<uint64_t>(at + 4);
        const uint64_t swapped = pair << 32 | pair >> 32;
        memcpy(at + 4, &swapped, sizeof(swapped));
    }
}

// The last four of six elements are a register whose halves change places: a store a group, where whole registers would
// be three for two groups.
void MemShuffle32B(uint32_t *data, uint64_t count)
{
    constexpr ptrdiff_t group = 24;
    uint8_t *at = (uint8_t *)data + 8;
#pragma GCC unroll 4
    for (uint64_t groups = count / 6; groups > 0; --groups, at += group) {
        const __m128i pair = _mm_loadu_si128((const __m128i *)at);
        _mm_storeu_si128((__m128i *)at, _mm_shuffle_epi32(pair, _MM_SHUFFLE(1, 0, 3, 2)));
    }
}

} // namespace
