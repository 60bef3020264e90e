// Layouts that share 32-bit words between pixels: V210 and DPX with four components. They go through an unpacked form
// on the stack, a chunk of a row at a time, which stays in the first cache.
#pragma once

#include "colorspace/kernels/convert.h"

namespace {

// Whole groups of six pixels, whole blocks of any size.
constexpr int chunkPixels = 192;

// Four words of three 10-bit fields for six pixels, all read and written whole:
//   U0 Y0 V0 | Y1 U2 Y2 | V2 Y3 U4 | Y4 V4 Y5     from the lowest bit up
// Unpacked as luma and pairs.
struct V210 {
    using Unpacked = SemiPlanarYuv<uint16_t, 10, Lines::all>;
    using Elements = List<uint32_t>;
    static constexpr RowShape rows[] = {{16, 6}};
    static constexpr bool pairsOnly = true;

    static u32s evenLanes() { return as<u32s>(splat64(0xFFFFFFFF)); }

    static void unpack(uint8_t *const *to, const uint8_t *row, ptrdiff_t pixels)
    {
        forBlocks<u32s::lanes>( // four registers
            rows[0].bytes(pixels) / 16,
            [](uint8_t *y, uint8_t *uv, const uint8_t *from) {
                Fours<u16s> luma;
                Fours<u16s> chroma;
                unpack(luma.a, chroma.a, from);
                unpack(luma.b, chroma.b, from + sizeof(u32s));
                unpack(luma.c, chroma.c, from + 2 * sizeof(u32s));
                unpack(luma.d, chroma.d, from + 3 * sizeof(u32s));
                storeThrees4(y, luma);
                storeThrees4(uv, chroma);
            },
            Out<12>{to[0]}, Out<12>{to[1]}, In<16>{row});
    }
    static void pack(uint8_t *row, uint8_t *const *from, ptrdiff_t pixels)
    {
        const ptrdiff_t groups = rows[0].bytes(pixels) / 16;
        for (ptrdiff_t i = pixels; i < 6 * groups; ++i) {
            storeSample(from[0] + 2 * i, 64);
            storeSample(from[1] + 2 * i, 512);
        }
        forBlocks<u32s::lanes>(
            groups,
            [](uint8_t *to, const uint8_t *y, const uint8_t *uv) {
                const Fours<u16s> luma = loadThrees4(y);
                const Fours<u16s> chroma = loadThrees4(uv);
                store(to, pack(luma.a, chroma.a));
                store(to + sizeof(u32s), pack(luma.b, chroma.b));
                store(to + 2 * sizeof(u32s), pack(luma.c, chroma.c));
                store(to + 3 * sizeof(u32s), pack(luma.d, chroma.d));
            },
            Out<16>{row}, In<12>{from[0]}, In<12>{from[1]});
    }

private:
    static void storeSample(uint8_t *to, uint16_t code) { memcpy(to, &code, sizeof(code)); }

    // In 32-bit lanes, the outer fields as two words and the middle one:
    //   outer   U0 V0 | Y1 Y2 | V2 U4 | Y4 Y5
    //   middle  Y0 .. | U2 .. | Y3 .. | V4 ..
    VELA_FUSED static void unpack(u16s &luma, u16s &chroma, const uint8_t *from)
    {
        const u32s words = load<u32s>(from);
        const u32s outer = (words & splat32(0x3FF)) | (shiftRight<4>(words) & splat32(0x3FF0000));
        const u32s middle = shiftRight<10>(words) & splat32(0x3FF);
        const u64s y = as<u64s>(select(evenLanes(), middle, outer)); // Y0 .. Y1 Y2
        luma = as<u16s>(shiftRight<16>(y) | (y & splat64(0xFFFF)));
        chroma = as<u16s>(select(evenLanes(), outer, middle)); // U0 V0 U2 ..
    }
    VELA_FUSED static u16s codes(u16s x) { return as<u16s>(smaller(larger(as<i16s>(x), splatI16(4)), splatI16(1019))); }
    VELA_FUSED static u32s pack(u16s luma, u16s chroma)
    {
        const u64s y = as<u64s>(codes(luma));
        const u32s spread = as<u32s>(shiftLeft<16>(without(y, splat64(0xFFFF00000000FFFF))) | (y & splat64(0xFFFF)));
        const u32s uv = as<u32s>(codes(chroma));
        const u32s outer = select(evenLanes(), uv, spread);
        const u32s middle = select(evenLanes(), spread, uv) & splat32(0xFFFF);
        return (outer & splat32(0xFFFF)) | shiftLeft<10>(middle) | shiftLeft<4>(outer & splat32(0xFFFF0000));
    }
};

// A stream of 10-bit components, three to a big-endian word from its top, `spare` bits below the last: four a pixel,
// red first or, reversed, alpha. What a row's last word has left is 0.
template <int spare, bool reversed> struct Dpx4 {
    using Unpacked = Choose<reversed, WordPixels<4, 3, 2, 1, 0, 10>, WordPixels<4, 0, 1, 2, 3, 10>>;
    using Elements = List<uint32_t>;
    static constexpr RowShape rows[] = {{16, 3}}; // of whole chunks
    static constexpr bool pairsOnly = false;

    static ptrdiff_t wordsOf(ptrdiff_t pixels) { return (4 * pixels + 2) / 3; }

    static void unpack(uint8_t *const *to, const uint8_t *row, ptrdiff_t pixels)
    {
        forBlocks<2 * u32s::lanes>(
            wordsOf(pixels),
            [](uint8_t *out, const uint8_t *from) {
                Fours<u16s> threes;
                unpack(threes.a, threes.b, from);
                unpack(threes.c, threes.d, from + sizeof(u32s));
                storeThrees4(out, threes);
            },
            Out<6>{to[0]}, In<4>{row});
    }
    static void pack(uint8_t *row, uint8_t *const *from, ptrdiff_t pixels)
    {
        const ptrdiff_t words = wordsOf(pixels);
        for (ptrdiff_t i = 4 * pixels; i < 3 * words; ++i)
            from[0][2 * i] = from[0][2 * i + 1] = 0;
        forBlocks<2 * u32s::lanes>(
            words,
            [](uint8_t *to, const uint8_t *in) {
                const Fours<u16s> threes = loadThrees4(in);
                store(to, pack(threes.a, threes.b));
                store(to + sizeof(u32s), pack(threes.c, threes.d));
            },
            Out<4>{row}, In<6>{from[0]});
    }

private:
    // Components as words, in fours of which the last is unused: 0 1 2 .. of every 32-bit word.
    VELA_FUSED static void unpack(u16s &low, u16s &high, const uint8_t *from)
    {
        const u32s words = shiftRight<spare>(orderBytes<3, 2, 1, 0>(load<u32s>(from)));
        const u32s first = (shiftRight<20>(words) & splat32(0x3FF)) | (shiftLeft<6>(words) & splat32(0x3FF0000));
        const u32s last = words & splat32(0x3FF);
        low = as<u16s>(interleaveLow(first, last));
        high = as<u16s>(interleaveHigh(first, last));
    }
    VELA_FUSED static u32s pack(u16s low, u16s high)
    {
        const u32s first = evens(as<u32s>(low), as<u32s>(high));
        const u32s last = odds(as<u32s>(low), as<u32s>(high)) & splat32(0xFFFF);
        const u32s words = shiftLeft<20>(first) | (shiftRight<6>(first) & splat32(0xFFC00)) | last;
        return orderBytes<3, 2, 1, 0>(shiftLeft<spare>(words));
    }
};

// --- A side in chunks ----------------------------------------------------------------------------------------

template <class Layout, class = void> struct UnpackedOf {
    using Type = Layout;
    static constexpr bool chunked = false;
};
template <class...> using Void = void;
template <class Layout> struct UnpackedOf<Layout, Void<typename Layout::Unpacked>> {
    using Type = typename Layout::Unpacked;
    static constexpr bool chunked = true;
};
template <class Layout> using Unpacked = typename UnpackedOf<Layout>::Type;
template <class Layout> constexpr bool isChunked = UnpackedOf<Layout>::chunked;

// The unpacked rows of a chunk, every line's planes in the order of RowsOf.
template <class Layout, int lines> struct ChunkRows {
    using Rows = RowsOf<Unpacked<Layout>, lines>;
    // A group more than a chunk may be unpacked, in blocks of up to eight.
    static constexpr ptrdiff_t room = 8 * (chunkPixels + 48);
    alignas(32) uint8_t bytes[Rows::count()][room];

    ChunkRows() {} // leaves the bytes alone

    uint8_t *row(int i) { return bytes[i]; }
    void unpack(const uint8_t *const *from, ptrdiff_t first, ptrdiff_t pixels)
    {
        for (int line = 0; line < lines; ++line) {
            uint8_t *planes[Rows::planes];
            for (int plane = 0; plane < Rows::planes; ++plane)
                planes[plane] = bytes[Rows::indexOf(plane, line)];
            Layout::unpack(planes, from[line] + Layout::rows[0].bytes(first), pixels);
        }
    }
    void pack(uint8_t *const *to, ptrdiff_t first, ptrdiff_t pixels)
    {
        for (int line = 0; line < lines; ++line) {
            uint8_t *planes[Rows::planes];
            for (int plane = 0; plane < Rows::planes; ++plane)
                planes[plane] = bytes[Rows::indexOf(plane, line)];
            Layout::pack(to[line] + Layout::rows[0].bytes(first), planes, pixels);
        }
    }
};

struct NoChunk {};

template <class Target, class Source, class Step>
inline void convertInChunks(uint8_t *const *to, const uint8_t *const *from, ptrdiff_t n, const Step &step)
{
    using Inner = Conversion<Unpacked<Target>, Unpacked<Source>, Step>;
    constexpr int targets = Inner::Targets::count();
    constexpr int sources = Inner::Sources::count();
    [[maybe_unused]] Choose<isChunked<Target>, ChunkRows<Target, Inner::lines>, NoChunk> target;
    [[maybe_unused]] Choose<isChunked<Source>, ChunkRows<Source, Inner::lines>, NoChunk> source;
    for (ptrdiff_t first = 0; first < n; first += chunkPixels) {
        const bool more = n - first > chunkPixels;
        const ptrdiff_t pixels = more ? chunkPixels : n - first;
        uint8_t *targetRows[targets];
        const uint8_t *sourceRows[sources];
        for (int i = 0; i < targets; ++i) {
            if constexpr (isChunked<Target>)
                targetRows[i] = target.row(i);
            else
                targetRows[i] = to[i] + Inner::Targets::shape(i).bytes(first);
        }
        for (int i = 0; i < sources; ++i) {
            if constexpr (isChunked<Source>)
                sourceRows[i] = source.row(i);
            else
                sourceRows[i] = from[i] + Inner::Sources::shape(i).bytes(first);
        }
        if constexpr (isChunked<Source>)
            source.unpack(from, first, pixels + (more && Inner::upsamples ? 6 : 0)); // the next chroma sample, too
        convertPlanes<Inner>(targetRows, sourceRows, pixels, step, more);
        if constexpr (isChunked<Target>)
            target.pack(to, first, pixels);
    }
}

} // namespace
