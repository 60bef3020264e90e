// Rows in reverse order, out of place and in place, and the exchange of two rows.
#pragma once

namespace {

// The elements of a word, `unit` bytes each, in reverse order.
template <int unit> inline uint64_t reversedWord(uint64_t x)
{
    if (unit == 1)
        return __builtin_bswap64(x);
    if (unit == 4)
        return x << 32 | x >> 32;
    const uint64_t pairs = (x & 0x0000FFFF0000FFFF) << 16 | (x >> 16 & 0x0000FFFF0000FFFF);
    return pairs << 32 | pairs >> 32;
}
template <int unit> inline uint32_t reversedWord(uint32_t x)
{
    return unit == 1 ? __builtin_bswap32(x) : unit == 2 ? x << 16 | x >> 16 : x;
}
template <int unit> inline uint16_t reversedWord(uint16_t x) { return unit == 1 ? __builtin_bswap16(x) : x; }

// n bytes, one word to two: the first of the source become the last of the destination. Both are read before either is
// written, so dst may be src; so it is with all that follows.
template <int unit, class Word> inline void reverseEnds(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    const Word first = reversedWord<unit>(loadPiece<Word>(src));
    const Word last = reversedWord<unit>(loadPiece<Word>(src + n - sizeof(Word)));
    memcpy(dst, &last, sizeof(Word));
    memcpy(dst + n - sizeof(Word), &first, sizeof(Word));
}

// n bytes, fewer than a register.
template <int unit> inline void reverseFew(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    for (; n >= 16; n -= 16, dst += 8, src += 8)
        reverseEnds<unit, uint64_t>(dst, src, n);
    if (n >= 8)
        reverseEnds<unit, uint64_t>(dst, src, n);
    else if (n >= 4)
        reverseEnds<unit, uint32_t>(dst, src, n);
    else if (n >= 2)
        reverseEnds<unit, uint16_t>(dst, src, n);
    else if (n)
        *dst = *src;
}

template <class Vector> inline void reverseTo(void *dst, const void *src, uint64_t count)
{
    constexpr ptrdiff_t size = sizeof(Vector);
    constexpr int unit = size / Vector::lanes;
    const ptrdiff_t n = (ptrdiff_t)count * unit;
    uint8_t *to = (uint8_t *)dst;
    const uint8_t *first = (const uint8_t *)src;
    if (n < size) {
        reverseFew<unit>(to, first, n);
        return;
    }
    const uint8_t *from = first + n;
    uint8_t *const last = to + n - size;
    for (; from - first >= 4 * size; to += 4 * size) {
        from -= 4 * size;
        store(to, reversed(load<Vector>(from + 3 * size)));
        store(to + size, reversed(load<Vector>(from + 2 * size)));
        store(to + 2 * size, reversed(load<Vector>(from + size)));
        store(to + 3 * size, reversed(load<Vector>(from)));
    }
    for (; to < last; to += size) {
        from -= size;
        store(to, reversed(load<Vector>(from)));
    }
    store(last, reversed(load<Vector>(first)));
}

template <class Vector> inline void reverseInPlace(void *data, uint64_t count)
{
    constexpr ptrdiff_t size = sizeof(Vector);
    constexpr int unit = size / Vector::lanes;
    uint8_t *first = (uint8_t *)data;
    uint8_t *end = first + (ptrdiff_t)count * unit; // from first to end is still to be reversed
    const auto exchangeEnds = [&] {
        const Vector low = reversed(load<Vector>(first));
        const Vector high = reversed(load<Vector>(end - size));
        store(first, high);
        store(end - size, low);
    };
    for (; end - first >= 2 * size; first += size, end -= size)
        exchangeEnds();
    if (end - first >= size) // the two may share the middle, of which they make the same
        exchangeEnds();
    else
        reverseFew<unit>(first, first, end - first);
}

void MemReverseBytes(uint8_t *dst, const uint8_t *src, uint64_t count) { reverseTo<u8s>(dst, src, count); }
void MemReverse16(uint16_t *dst, const uint16_t *src, uint64_t count) { reverseTo<u16s>(dst, src, count); }
void MemReverse32(uint32_t *dst, const uint32_t *src, uint64_t count) { reverseTo<u32s>(dst, src, count); }

void MemReverseBytesInPlace(uint8_t *data, uint64_t count) { reverseInPlace<u8s>(data, count); }
void MemReverse16InPlace(uint16_t *data, uint64_t count) { reverseInPlace<u16s>(data, count); }
void MemReverse32InPlace(uint32_t *data, uint64_t count) { reverseInPlace<u32s>(data, count); }

template <class Piece> inline void exchangePiece(uint8_t *a, uint8_t *b)
{
    const Piece x = loadPiece<Piece>(a);
    const Piece y = loadPiece<Piece>(b);
    memcpy(a, &y, sizeof(Piece));
    memcpy(b, &x, sizeof(Piece));
}

// The ragged end goes in pieces that do not overlap: rows that are exchanged again at once are loaded as they were
// stored.
void MemExchange(uint8_t *a, uint8_t *b, uint64_t count)
{
    constexpr ptrdiff_t size = sizeof(u8s);
    const ptrdiff_t n = (ptrdiff_t)count;
    ptrdiff_t i = 0;
#pragma GCC unroll 4
    for (; i <= n - size; i += size) {
        const u8s x = load<u8s>(a + i);
        store(a + i, load<u8s>(b + i));
        store(b + i, x);
    }
    const auto piece = [&](auto type) {
        if ((n - i) & (ptrdiff_t)sizeof(type)) {
            exchangePiece<decltype(type)>(a + i, b + i);
            i += (ptrdiff_t)sizeof(type);
        }
    };
    if (size > 16)
        piece(__m128i());
    piece(uint64_t());
    piece(uint32_t());
    piece(uint16_t());
    piece(uint8_t());
}

} // namespace
