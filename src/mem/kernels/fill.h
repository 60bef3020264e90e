// Fills with a value that repeats.
#pragma once

#include "mem/kernels/copy.h"

namespace {

// The same piece at the start and at the end of n bytes.
template <class Piece> inline void fillEnds(uint8_t *dst, Piece first, Piece last, ptrdiff_t n)
{
    memcpy(dst, &first, sizeof(Piece));
    memcpy(dst + n - sizeof(Piece), &last, sizeof(Piece));
}

// Up to 15 bytes, which begin with `first` and end with `last`.
inline void fillFew(uint8_t *dst, uint64_t first, uint64_t last, ptrdiff_t n)
{
    if (n >= 8)
        fillEnds(dst, first, last, n);
    else if (n >= 4)
        fillEnds(dst, (uint32_t)first, (uint32_t)(last >> 32), n);
    else if (n >= 2)
        fillEnds(dst, (uint16_t)first, (uint16_t)(last >> 48), n);
    else if (n)
        *dst = (uint8_t)first;
}

// Writes the block again and again from an aligned address on, while all of it lies below `end`; returns where it
// stopped. Streaming stores pay from the same traffic on as in copies.
template <int count> inline uint8_t *repeat(uint8_t *to, const uint8_t *end, Block<count> block, bool streaming)
{
    if (streaming) {
        for (; end - to >= block.size; to += block.size)
            block.streamTo(to);
        _mm_sfence();
    } else {
        for (; end - to >= block.size; to += block.size)
            block.storeTo(to);
    }
    return to;
}

// --- Elements of 1, 2, 4 and 8 bytes -------------------------------------------------------------------------

// Eight bytes of elements, beginning `by` bytes later.
inline uint64_t later(uint64_t eight, ptrdiff_t by)
{
    const int bits = (int)(8 * (by & 7));
    return eight >> bits | eight << (-bits & 63);
}

// Registers of 16 bytes fill a cache at half the rate that it takes. From 2 KiB on the processor's own loop is faster,
// twice as fast from 4 KiB on (Zen 4), at every alignment; unlike `rep movsb` it has no bad cases. With 32-byte
// registers it gains nothing.
constexpr ptrdiff_t storedByProcessor = sizeof(u8s) > 16 ? PTRDIFF_MAX : 2048;

// Whole words from an aligned address on, the last of which ends at most 7 bytes before `end`.
inline void storeWords(uint8_t *to, const uint8_t *end, uint64_t word)
{
    ptrdiff_t words = (end - to) / 8;
    __asm__ volatile("rep stosq" : "+D"(to), "+c"(words) : "a"(word) : "memory");
}

template <int count> inline void fillEndBlocks(uint8_t *dst, u8s value, ptrdiff_t n)
{
    Block<count> block;
    for (u8s &x : block.registers)
        x = value;
    block.storeTo(dst);
    block.storeTo(dst + n - block.size);
}

// n bytes, whole elements; `eight` holds eight bytes of them.
inline void fillBytes(uint8_t *dst, uint64_t eight, ptrdiff_t n)
{
    constexpr ptrdiff_t size = sizeof(u8s);
    if (n < 16) {
        fillFew(dst, eight, eight, n);
        return;
    }
    if (n <= 32) {
        const __m128i half = _mm_set1_epi64x((long long)eight);
        fillEnds(dst, half, half, n);
        return;
    }
    const u8s value = as<u8s>(splat64(eight));
    if (n <= 2 * size) {
        fillEndBlocks<1>(dst, value, n);
    } else if (n <= 4 * size) {
        fillEndBlocks<2>(dst, value, n);
    } else if (n <= 8 * size) {
        fillEndBlocks<4>(dst, value, n);
    } else if (n <= 16 * size) {
        fillEndBlocks<8>(dst, value, n);
    } else {
        const ptrdiff_t skip = toAligned(dst);
        const uint64_t word = later(eight, skip);
        const u8s aligned = as<u8s>(splat64(word));
        uint8_t *const last = dst + n - size;
        store(dst, value);
        if (n >= storedByProcessor && n < streamedTraffic) {
            storeWords(dst + skip, dst + n, word);
        } else {
            uint8_t *to = repeat<4>(dst + skip, last, {{aligned, aligned, aligned, aligned}}, n >= streamedTraffic);
            for (; to < last; to += size) // up to three: fewer stores than a block from the end
                store(to, aligned);
        }
        store(last, value);
    }
}

void MemFill8(uint8_t *dst, uint8_t value, uint64_t count)
{
    fillBytes(dst, 0x0101010101010101u * value, (ptrdiff_t)count);
}

void MemFill16(uint16_t *dst, uint16_t value, uint64_t count)
{
    fillBytes((uint8_t *)dst, 0x0001000100010001u * value, 2 * (ptrdiff_t)count);
}

void MemFill32(uint32_t *dst, uint32_t value, uint64_t count)
{
    fillBytes((uint8_t *)dst, 0x0000000100000001u * value, 4 * (ptrdiff_t)count);
}

void MemFill64(uint64_t *dst, uint64_t value, uint64_t count)
{
    fillBytes((uint8_t *)dst, value, 8 * (ptrdiff_t)count);
}

// --- Elements of 3 bytes -------------------------------------------------------------------------------------

// The bytes p q r p q r ... of a 24-bit value, lowest first.
struct Threes {
    uint64_t words[3]; // the eight bytes from p, from q and from r on

    explicit Threes(uint32_t value)
    {
        const uint64_t three = value & 0xFFFFFF;
        words[0] = three | three << 24 | three << 48;
        words[1] = words[0] >> 8 | words[0] << 40;
        words[2] = words[1] >> 8 | words[1] << 40;
    }

    // 16 bytes, the first of them byte `phase` of the value. The ninth has phase + 8, which is phase + 2.
    __m128i piece(ptrdiff_t phase) const
    {
        return _mm_set_epi64x((long long)words[(phase + 2) % 3], (long long)words[phase]);
    }

    // Three registers, a multiple of three bytes.
    Block<3> block() const
    {
        uint8_t bytes[Block<3>::size];
        for (ptrdiff_t i = 0; i < Block<3>::size; i += 16)
            _mm_storeu_si128((__m128i *)(bytes + i), piece(i % 3));
        return loadBlock<3>(bytes);
    }
};

inline uint32_t later24(uint32_t value, ptrdiff_t by)
{
    const uint32_t three = value & 0xFFFFFF;
    return by % 3 == 0 ? three : by % 3 == 1 ? three >> 8 | three << 16 : three >> 16 | three << 8;
}

void MemFill24(uint8_t *dst, uint32_t value, uint64_t count)
{
    const Threes threes(value);
    const ptrdiff_t n = 3 * (ptrdiff_t)count;
    if (n < 16) {
        fillFew(dst, threes.words[0], threes.words[1], n); // q r p q r p q r: ends with r
    } else if (n < Block<3>::size) {
        for (ptrdiff_t i = 0; i < n - 16; i += 16)
            _mm_storeu_si128((__m128i *)(dst + i), threes.piece(i % 3));
        _mm_storeu_si128((__m128i *)(dst + n - 16), threes.piece(2)); // r p q ... p q r
    } else {
        const Block<3> ends = threes.block();
        const ptrdiff_t skip = toAligned(dst);
        store(dst, ends.registers[0]);
        repeat<3>(dst + skip, dst + n, Threes(later24(value, skip)).block(), n >= streamedTraffic);
        ends.storeTo(dst + n - ends.size);
    }
}

void MemFillTopByte32(uint32_t *dst, uint8_t value, int32_t count)
{
    const u32s top = splat32((uint32_t)value << 24);
    const u32s kept = splat32(0x00FFFFFF);
    const int whole = count > 0 ? count - count % u32s::lanes : 0;
    map<u32s>(
        dst, whole, [=](u32s x) { return (x & kept) | top; }, dst);
    for (ptrdiff_t i = whole; i < count; ++i)
        ((uint8_t *)dst)[4 * i + 3] = value;
}

} // namespace
