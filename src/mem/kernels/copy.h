// Copies of any size and overlap.
//
// Up to eight registers a run is read whole before any of it is written, from both ends, so that neither its length
// nor an overlap matters. Longer runs go through a loop of aligned stores, away from the overlap; what is ragged at
// both ends is read before the loop and written behind it.
//
// `rep movsb` is left alone. Where a processor is good at it, it gains nothing on the loop of 32-byte registers, and
// Zen 4 copies 20 times as slowly with it (3.5 GB/s) when the destination lies a few bytes behind the source, modulo a
// page.
#pragma once

namespace {

// Streaming stores pay when what is read and written outgrows the last-level cache, even for a destination that is
// read next. With 32 MB of cache (Zen 4) a copy of 12 MiB loses a sixth by them if it is read next and gains a quarter
// if it is not; one of 16 MiB gains 5 % and 40 %, one of 32 MiB 45 % and 80 %. Half of that size is the least gain, and
// a small one, on a processor with less cache; with more, the copies between lose what they lose here at 12 MiB.
constexpr ptrdiff_t streamedTraffic = (ptrdiff_t)32 << 20;

// Registers in a row.
template <int count> struct Block {
    u8s registers[count];

    static constexpr ptrdiff_t size = count * (ptrdiff_t)sizeof(u8s);

    void storeTo(uint8_t *to) const
    {
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            store(to + i * (ptrdiff_t)sizeof(u8s), registers[i]);
    }
    void streamTo(uint8_t *to) const
    {
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            storeStreaming(to + i * (ptrdiff_t)sizeof(u8s), registers[i]);
    }
};
template <int count> inline Block<count> loadBlock(const uint8_t *from)
{
    Block<count> block;
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i)
        block.registers[i] = load<u8s>(from + i * (ptrdiff_t)sizeof(u8s));
    return block;
}

template <class Piece> inline void moveWhole(uint8_t *dst, const uint8_t *src)
{
    const Piece piece = loadPiece<Piece>(src);
    memcpy(dst, &piece, sizeof(piece));
}

// The bytes from `to` to the next address that is a multiple of a register's size, 1 to a whole register.
inline ptrdiff_t toAligned(const uint8_t *to) { return (ptrdiff_t)(sizeof(u8s) - (uintptr_t)to % sizeof(u8s)); }

// n bytes, one piece to two, as the first piece and the last.
template <class Piece> inline void moveEnds(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    const Piece first = loadPiece<Piece>(src);
    const Piece last = loadPiece<Piece>(src + n - sizeof(Piece));
    memcpy(dst, &first, sizeof(Piece));
    memcpy(dst + n - sizeof(Piece), &last, sizeof(Piece));
}
template <int count> inline void moveEndBlocks(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    const Block<count> first = loadBlock<count>(src);
    const Block<count> last = loadBlock<count>(src + n - first.size);
    first.storeTo(dst);
    last.storeTo(dst + n - last.size);
}

// At most 16 bytes.
inline void moveFew(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    if (n >= 8)
        moveEnds<uint64_t>(dst, src, n);
    else if (n >= 4)
        moveEnds<uint32_t>(dst, src, n);
    else if (n >= 2)
        moveEnds<uint16_t>(dst, src, n);
    else if (n)
        *dst = *src;
}

// More than eight registers, dst below src or apart from it. Only rows apart may be streamed, or the stores throw out
// of the cache what is read next.
template <bool streaming> inline void moveUpwards(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    const Block<1> first = loadBlock<1>(src);
    const Block<4> last = loadBlock<4>(src + n - last.size);
    uint8_t *const lastTo = dst + n - last.size;
    const ptrdiff_t skip = toAligned(dst);
    uint8_t *to = dst + skip;
    const uint8_t *from = src + skip;
    do {
        if constexpr (streaming) {
            for (ptrdiff_t line = 0; line < last.size; line += 64)
                _mm_prefetch((const char *)(from + 512 + line), _MM_HINT_T0);
            loadBlock<4>(from).streamTo(to);
        } else {
            loadBlock<4>(from).storeTo(to);
        }
        from += last.size;
        to += last.size;
    } while (to < lastTo);
    if constexpr (streaming)
        _mm_sfence();
    last.storeTo(lastTo);
    first.storeTo(dst);
}

// More than eight registers, dst above src.
inline void moveDownwards(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    const Block<4> first = loadBlock<4>(src);
    const Block<1> last = loadBlock<1>(src + n - last.size);
    uint8_t *const firstEnd = dst + first.size;
    const ptrdiff_t rest = n - 1 - (ptrdiff_t)((uintptr_t)(dst + n - 1) % sizeof(u8s));
    uint8_t *to = dst + rest;
    const uint8_t *from = src + rest;
    do {
        from -= first.size;
        to -= first.size;
        loadBlock<4>(from).storeTo(to);
    } while (to > firstEnd);
    first.storeTo(dst);
    last.storeTo(dst + n - last.size);
}

inline void moveBytes(uint8_t *dst, const uint8_t *src, ptrdiff_t n)
{
    constexpr ptrdiff_t size = sizeof(u8s);
    if (n <= 16)
        moveFew(dst, src, n);
    else if (n <= 32)
        moveEnds<__m128i>(dst, src, n);
    else if (n <= 2 * size)
        moveEndBlocks<1>(dst, src, n);
    else if (n <= 4 * size)
        moveEndBlocks<2>(dst, src, n);
    else if (n <= 8 * size)
        moveEndBlocks<4>(dst, src, n);
    else if ((uintptr_t)dst - (uintptr_t)src < (uintptr_t)n)
        moveDownwards(dst, src, n);
    else if (n < streamedTraffic / 2 || (uintptr_t)src - (uintptr_t)dst < (uintptr_t)n)
        moveUpwards<false>(dst, src, n);
    else
        moveUpwards<true>(dst, src, n);
}

void MemCopy(void *dst, const void *src, uint64_t bytes)
{
    moveBytes((uint8_t *)dst, (const uint8_t *)src, (ptrdiff_t)bytes);
}

} // namespace
