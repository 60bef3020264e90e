// Look-ups in tables of 32-bit entries.
#pragma once

namespace {

// Several indices come with one load: loads are what a look-up has too many of.
template <class Index> inline void lookUp(uint32_t *dst, const Index *indices, const uint32_t *table, ptrdiff_t count)
{
    constexpr int bits = 8 * (int)sizeof(Index);
    constexpr int perLoad = 64 / bits;
    const auto entry = [table](uint64_t index) { return loadPiece<uint32_t>((const uint8_t *)(table + index)); };
    ptrdiff_t i = 0;
    for (; i <= count - perLoad; i += perLoad) {
        uint64_t several = loadPiece<uint64_t>((const uint8_t *)(indices + i));
#pragma GCC unroll 8
        for (int j = 0; j < perLoad; j += 2, several >>= 2 * bits) {
            const uint64_t low = entry((Index)several);
            const uint64_t high = entry((Index)(several >> bits));
            const uint64_t two = low | high << 32;
            memcpy(dst + i + j, &two, sizeof(two));
        }
    }
    for (; i < count; ++i) {
        const uint32_t one = entry(loadPiece<Index>((const uint8_t *)(indices + i)));
        memcpy(dst + i, &one, sizeof(one));
    }
}

void MemLookup8To32(uint32_t *dst, const uint8_t *indices, const uint32_t *table, int32_t count)
{
    lookUp(dst, indices, table, count);
}

void MemLookup16To32(uint32_t *dst, const uint16_t *indices, const uint32_t *table, int32_t count)
{
    lookUp(dst, indices, table, count);
}

} // namespace
