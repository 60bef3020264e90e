// Look-ups in tables of 32-bit entries.
#pragma once

namespace {

// Four entries meet in a register: a store each would take as long as the look-ups.
template <class Index> inline void lookUp(uint32_t *dst, const Index *indices, const uint32_t *table, ptrdiff_t count)
{
    const auto entry = [=](ptrdiff_t i) {
        const auto index = loadPiece<Index>((const uint8_t *)(indices + i));
        return loadPiece<int>((const uint8_t *)(table + index));
    };
    ptrdiff_t i = 0;
    for (; i <= count - 8; i += 8) {
#pragma GCC unroll 2
        for (ptrdiff_t j = i; j < i + 8; j += 4) {
            const __m128i low = _mm_unpacklo_epi32(_mm_cvtsi32_si128(entry(j)), _mm_cvtsi32_si128(entry(j + 1)));
            const __m128i high = _mm_unpacklo_epi32(_mm_cvtsi32_si128(entry(j + 2)), _mm_cvtsi32_si128(entry(j + 3)));
            _mm_storeu_si128((__m128i *)(dst + j), _mm_unpacklo_epi64(low, high));
        }
    }
    for (; i < count; ++i) {
        const int one = entry(i);
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
