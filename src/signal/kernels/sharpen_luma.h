// Laplacian sharpening of luma.
#pragma once

namespace {

// --- The layouts ---------------------------------------------------------------------------------------------
// A layout takes the lumas of `size` pixels into lanes with room for the sums, and puts the limited result beside the
// chroma of the pixels that it came from. at: the first pixel.

// Packed 4:2:2 bytes: one 16-bit lane a pixel, its low byte first.
template <bool lumaFirst> struct PackedBytes {
    using Sample = uint8_t;
    using Lumas = i16s;
    using Pixels = u16s;
    static constexpr int unit = 2;
    static constexpr int size = u16s::lanes;
    static constexpr int luma = lumaFirst ? 0 : 1;
    static constexpr int32_t largestLuma = 255;

    static Lumas lumas(const uint8_t *at)
    {
        const u16s pixels = load<u16s>(at);
        if constexpr (lumaFirst)
            return as<i16s>(pixels & splat16(0x00FF));
        else
            return as<i16s>(shiftRight<8>(pixels));
    }
    static Pixels pixels(const uint8_t *at, Lumas sharp)
    {
        const u16s limited = as<u16s>(larger(smaller(sharp, splatI16(largestLuma)), splatI16(0)));
        if constexpr (lumaFirst)
            return (load<u16s>(at) & splat16(0xFF00)) | limited;
        else
            return (load<u16s>(at) & splat16(0x00FF)) | shiftLeft<8>(limited);
    }
};

// Bytes of luma.
struct LumaBytes {
    using Sample = uint8_t;
    using Lumas = WideBytes;
    using Pixels = u8s;
    static constexpr int unit = 1;
    static constexpr int size = u8s::lanes;
    static constexpr int luma = 0;
    static constexpr int32_t largestLuma = 255;

    static Lumas lumas(const uint8_t *at) { return widen(load<u8s>(at)); }
    static Pixels pixels(const uint8_t *, Lumas sharp) { return narrow(sharp); }
};

// Packed 4:2:2 words: one 32-bit lane a pixel.
template <bool lumaFirst> struct PackedWords {
    using Sample = uint16_t;
    using Lumas = Pair<i32s>;
    using Pixels = Pair<u16s>;
    static constexpr int unit = 4;
    static constexpr int size = 2 * u32s::lanes;
    static constexpr int luma = lumaFirst ? 0 : 1;
    static constexpr int32_t largestLuma = 65535;

    static i32s lumasOf(u32s pixels)
    {
        if constexpr (lumaFirst)
            return as<i32s>(pixels & splat32(0x0000FFFF));
        else
            return as<i32s>(shiftRight<16>(pixels));
    }
    static Lumas lumas(const uint8_t *at) { return {lumasOf(load<u32s>(at)), lumasOf(load<u32s>(at + sizeof(u32s)))}; }
    static Pixels pixels(const uint8_t *at, Lumas sharp)
    {
        const u16s limited = narrowWords(sharp.low, sharp.high);
        const u16s none = zero<u16s>();
        const u16s chroma = as<u16s>(splat32(lumaFirst ? 0xFFFF0000 : 0x0000FFFF));
        const u16s low = load<u16s>(at) & chroma;
        const u16s high = load<u16s>(at + sizeof(u16s)) & chroma;
        if constexpr (lumaFirst)
            return {low | interleaveLow(limited, none), high | interleaveHigh(limited, none)};
        else
            return {low | interleaveLow(none, limited), high | interleaveHigh(none, limited)};
    }
};

// Words of luma.
struct LumaWords {
    using Sample = uint16_t;
    using Lumas = Pair<i32s>;
    using Pixels = u16s;
    static constexpr int unit = 2;
    static constexpr int size = u16s::lanes;
    static constexpr int luma = 0;
    static constexpr int32_t largestLuma = 65535;

    static Lumas lumas(const uint8_t *at)
    {
        const u16s words = load<u16s>(at);
        return {as<i32s>(widenLow(words)), as<i32s>(widenHigh(words))};
    }
    static Pixels pixels(const uint8_t *, Lumas sharp) { return narrowWords(sharp.low, sharp.high); }
};

// --- The filter ----------------------------------------------------------------------------------------------

inline i16s sharpened(i16s y, i16s neighbours, ShiftCount shift)
{
    return y + shiftRight(shiftLeft<2>(y) - neighbours, shift);
}
inline i32s sharpened(i32s y, i32s neighbours, ShiftCount shift)
{
    return y + shiftRight(shiftLeft<2>(y) - neighbours, shift);
}
inline WideBytes sharpened(WideBytes y, WideBytes neighbours, ShiftCount shift)
{
    return {sharpened(y.first, neighbours.first, shift), sharpened(y.second, neighbours.second, shift)};
}
inline Pair<i32s> sharpened(Pair<i32s> y, Pair<i32s> neighbours, ShiftCount shift)
{
    return {sharpened(y.low, neighbours.low, shift), sharpened(y.high, neighbours.high, shift)};
}

inline void store(void *to, Pair<u16s> x)
{
    store(to, x.low);
    store((uint8_t *)to + sizeof(u16s), x.high);
}

template <class Layout> struct SharpenLuma {
    using Sample = typename Layout::Sample;
    using Pixels = typename Layout::Pixels;
    static constexpr ptrdiff_t unit = Layout::unit;

    uint8_t *out;
    const uint8_t *above;
    const uint8_t *row;
    const uint8_t *below;
    int shift;
    ptrdiff_t n;

    // The pixels from i on; those at their sides are there.
    Pixels block(ptrdiff_t i, ShiftCount bits) const
    {
        const auto beside = Layout::lumas(row + (i - 1) * unit) + Layout::lumas(row + (i + 1) * unit);
        const auto over = Layout::lumas(above + i * unit) + Layout::lumas(below + i * unit);
        const uint8_t *at = row + i * unit;
        return Layout::pixels(at, sharpened(Layout::lumas(at), over + beside, bits));
    }

    static int32_t luma(const uint8_t *pixel)
    {
        return loadPiece<Sample>(pixel + Layout::luma * (ptrdiff_t)sizeof(Sample));
    }
    // The luma of pixel i between these.
    Sample between(int32_t left, ptrdiff_t i, int32_t right) const
    {
        const int32_t y = luma(row + i * unit);
        const int32_t sum = luma(above + i * unit) + luma(below + i * unit) + left + right;
        const int32_t sharp = y + ((4 * y - sum) >> shift);
        return (Sample)(sharp < 0 ? 0 : sharp > Layout::largestLuma ? Layout::largestLuma : sharp);
    }
    void put(ptrdiff_t i, Sample sharp) const
    {
        constexpr ptrdiff_t luma = Layout::luma * (ptrdiff_t)sizeof(Sample);
        if constexpr (unit > (ptrdiff_t)sizeof(Sample)) {
            constexpr ptrdiff_t chroma = (ptrdiff_t)sizeof(Sample) - luma;
            const Sample kept = loadPiece<Sample>(row + i * unit + chroma);
            memcpy(out + i * unit + chroma, &kept, sizeof(kept));
        }
        memcpy(out + i * unit + luma, &sharp, sizeof(sharp));
    }

    void runOneByOne() const
    {
        int32_t left = luma(row);
        for (ptrdiff_t i = 0; i < n; ++i) {
            const int32_t y = luma(row + i * unit);
            put(i, between(left, i, i < n - 1 ? luma(row + (i + 1) * unit) : y));
            left = y;
        }
    }

    // out may be row: a block is stored when the next one has been computed, and the two ends and the last block, which
    // overlaps the one before, are computed ahead of all.
    void run() const
    {
        constexpr ptrdiff_t size = Layout::size;
        if (n < size + 2) {
            if (n > 0)
                runOneByOne();
            return;
        }
        const ShiftCount bits = shiftCount(shift);
        const Sample first = between(luma(row), 0, luma(row + unit));
        const Sample last = between(luma(row + (n - 2) * unit), n - 1, luma(row + (n - 1) * unit));
        const ptrdiff_t end = n - 1 - size;
        const Pixels lastBlock = block(end, bits);
        if (end > 1) {
            Pixels pending = block(1, bits);
            ptrdiff_t i = 1 + size;
            for (; i < end; i += size) {
                const Pixels next = block(i, bits);
                store(out + (i - size) * unit, pending);
                pending = next;
            }
            store(out + (i - size) * unit, pending);
        }
        store(out + end * unit, lastBlock);
        put(0, first);
        put(n - 1, last);
    }
};

template <class Layout, class Sample>
inline void sharpenLuma(Sample *out, const Sample *above, const Sample *row, const Sample *below, uint32_t shift,
                        int32_t count)
{
    constexpr uint32_t mostShift = sizeof(Sample) == 1 ? 15 : 31;
    SharpenLuma<Layout>{(uint8_t *)out,
                        (const uint8_t *)above,
                        (const uint8_t *)row,
                        (const uint8_t *)below,
                        (int)(shift < mostShift ? shift : mostShift),
                        count}
        .run();
}

void SharpenLuma422YFirst8(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, uint32_t shift,
                           int32_t count)
{
    sharpenLuma<PackedBytes<true>>(out, above, row, below, shift, count);
}

void SharpenLuma422CFirst8(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, uint32_t shift,
                           int32_t count)
{
    sharpenLuma<PackedBytes<false>>(out, above, row, below, shift, count);
}

void SharpenLumaVariant3(uint8_t *out, const uint8_t *above, const uint8_t *row, const uint8_t *below, uint32_t shift,
                         int32_t count)
{
    sharpenLuma<LumaBytes>(out, above, row, below, shift, count);
}

void SharpenLuma422YFirst16(uint16_t *out, const uint16_t *above, const uint16_t *row, const uint16_t *below,
                            uint32_t shift, int32_t count)
{
    sharpenLuma<PackedWords<true>>(out, above, row, below, shift, count);
}

void SharpenLuma422CFirst16(uint16_t *out, const uint16_t *above, const uint16_t *row, const uint16_t *below,
                            uint32_t shift, int32_t count)
{
    sharpenLuma<PackedWords<false>>(out, above, row, below, shift, count);
}

void SharpenLumaVariant6(uint16_t *out, const uint16_t *above, const uint16_t *row, const uint16_t *below,
                         uint32_t shift, int32_t count)
{
    sharpenLuma<LumaWords>(out, above, row, below, shift, count);
}

} // namespace
