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

// Groups of 6, as groups A B C of three units of 4 or 8 bytes, of which B and C change places. A block of 48 bytes in
// three registers is 4 or 2 of them.
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
inline void swapLastTwo(Block48 &b, uint32_t)
{
    const auto pick = [](__m128i x) { return _mm_castsi128_ps(x); };
    const __m128 middle = _mm_shuffle_ps(pick(b.y), pick(b.z), _MM_SHUFFLE(1, 0, 3, 2)); // 6 7 8 9
    b.x = _mm_shuffle_epi32(b.x, _MM_SHUFFLE(3, 1, 2, 0));
    b.y = _mm_castps_si128(_mm_shuffle_ps(pick(b.y), middle, _MM_SHUFFLE(2, 0, 0, 1)));
    b.z = _mm_castps_si128(_mm_shuffle_ps(middle, pick(b.z), _MM_SHUFFLE(2, 3, 3, 1)));
}

//   A B | C A | B C  becomes  A C | B A | C B
inline void swapLastTwo(Block48 &b, uint64_t)
{
    const __m128i firsts = _mm_unpacklo_epi64(b.x, b.y);
    b.y = _mm_unpackhi_epi64(b.x, b.y);
    b.x = firsts;
    b.z = _mm_shuffle_epi32(b.z, _MM_SHUFFLE(1, 0, 3, 2));
}

template <class Unit> inline void swapLastTwoOfThree(uint8_t *data, ptrdiff_t n)
{
    constexpr ptrdiff_t group = 3 * sizeof(Unit);
    const auto swapped = [](const uint8_t *from) {
        Block48 block(from);
        swapLastTwo(block, Unit());
        return block;
    };
    if (n >= 48) {
        const Block48 last = swapped(data + n - 48); // before the block ahead of it is written
        for (ptrdiff_t i = 0; i < n - 48; i += 48)
            swapped(data + i).storeTo(data + i);
        last.storeTo(data + n - 48);
        return;
    }
    for (; n > 0; n -= group, data += group) {
        const Unit b = loadPiece<Unit>(data + sizeof(Unit));
        moveWhole<Unit>(data + sizeof(Unit), data + 2 * sizeof(Unit));
        memcpy(data + 2 * sizeof(Unit), &b, sizeof(Unit));
    }
}

void MemShuffle16B(uint16_t *data, uint64_t count)
{
    swapLastTwoOfThree<uint32_t>((uint8_t *)data, 12 * (ptrdiff_t)(count / 6));
}

void MemShuffle32B(uint32_t *data, uint64_t count)
{
    swapLastTwoOfThree<uint64_t>((uint8_t *)data, 24 * (ptrdiff_t)(count / 6));
}

} // namespace
