// The layouts: where every sample of a row lies. Plain descriptions; the oracles read and write pixels through them,
// the cases take the lengths of rows from them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace {

// Components 0 to 2 of a pixel and its alpha. Integers up to 16 bits wide, or floats.
template <class S> struct Pixel {
    S c[3];
    S a;
};

// Components are R G B, Y U V, one sample, or hue, saturation and value.
enum class Model { rgb, yuv, single, hue };

// A chroma sample serves one pixel, the two of a pair, or the pairs of two lines.
enum class Chroma { everyPixel, pair, patch };

using Rows = void *const *;
using ConstRows = const void *const *;

template <class T> const T *row(ConstRows rows, int plane) { return static_cast<const T *>(rows[plane]); }
template <class T> T *row(Rows rows, int plane) { return static_cast<T *>(rows[plane]); }

constexpr std::int64_t pairsIn(std::int64_t width) { return (width + 1) / 2; }

// --- Layouts whose samples are elements of their own --------------------------------------------------------------

// Sample i of a component is element step * i + offset of its plane. i counts pixels, or chroma samples.
struct Place {
    int plane, step, offset;
};

struct Places {
    Place c[3];
    Place a;
};

constexpr Place absent{-1, 0, 0};

constexpr Places packed(int size, int c0, int c1, int c2)
{
    return {{{0, size, c0}, {0, size, c1}, {0, size, c2}}, absent};
}
constexpr Places packed(int size, int c0, int c1, int c2, int a)
{
    return {{{0, size, c0}, {0, size, c1}, {0, size, c2}}, {0, size, a}};
}
constexpr Places planar(int c0, int c1, int c2) { return {{{c0, 1, 0}, {c1, 1, 0}, {c2, 1, 0}}, absent}; }
constexpr Places semiPlanar(int u, int v) { return {{{0, 1, 0}, {1, 2, u}, {1, 2, v}}, absent}; }
constexpr Places packedPairs(int y, int u, int v) { return {{{0, 2, y}, {0, 4, u}, {0, 4, v}}, absent}; }
constexpr Places single() { return {{{0, 1, 0}, {0, 1, 0}, {0, 1, 0}}, absent}; } // reads as three equal components

template <class T, Model modelOf, int depth, Places at, Chroma chromaOf = Chroma::everyPixel> struct Samples {
    using Sample = std::conditional_t<std::is_same_v<T, float>, float, std::int32_t>;
    static constexpr Model model = modelOf;
    static constexpr Chroma chroma = chromaOf;
    static constexpr bool hasAlpha = at.a.plane >= 0;
    static constexpr int bits[4] = {depth, depth, depth, hasAlpha ? depth : 0};
    static constexpr int planes = at.c[2].plane > 0 || at.c[1].plane > 0 ? (at.c[1].plane == at.c[2].plane ? 2 : 3) : 1;
    static constexpr bool wholePairs = chroma == Chroma::pair && planes == 1;
    // Words of fewer bits than they could have: the others are 0.
    static constexpr std::uint32_t largest = depth < 16 && sizeof(T) == 2 ? (1U << depth) - 1 : 0;

    static constexpr bool isHalved(int plane) { return chroma != Chroma::everyPixel && planes > 1 && plane > 0; }

    static constexpr std::int64_t bytes(int plane, std::int64_t width)
    {
        if (wholePairs)
            return width / 2 * std::int64_t{4 * sizeof(T)};
        int step = 0;
        for (const Place &place : at.c)
            if (place.plane == plane)
                step = place.step;
        return (isHalved(plane) ? pairsIn(width) : width) * step * std::int64_t{sizeof(T)};
    }

    static Sample component(ConstRows rows, int c, std::int64_t i)
    {
        return row<T>(rows, at.c[c].plane)[at.c[c].step * i + at.c[c].offset];
    }
    static void put(Rows rows, int c, std::int64_t i, Sample value)
    {
        row<T>(rows, at.c[c].plane)[at.c[c].step * i + at.c[c].offset] = static_cast<T>(value);
    }

    static Pixel<Sample> read(ConstRows rows, std::int64_t x)
    {
        Pixel<Sample> pixel{{component(rows, 0, x), component(rows, 1, x), component(rows, 2, x)}, {}};
        if constexpr (hasAlpha)
            pixel.a = row<T>(rows, at.a.plane)[at.a.step * x + at.a.offset];
        return pixel;
    }
    static void write(Rows rows, std::int64_t x, const Pixel<Sample> &pixel)
    {
        for (int c = 0; c < (model == Model::single ? 1 : 3); ++c)
            put(rows, c, x, pixel.c[c]);
        if constexpr (hasAlpha)
            row<T>(rows, at.a.plane)[at.a.step * x + at.a.offset] = static_cast<T>(pixel.a);
    }
};

template <int depth, Places at, class T = std::uint8_t> using Rgb = Samples<T, Model::rgb, depth, at>;
template <class T, int depth, Places at, Chroma chroma> using Yuv = Samples<T, Model::yuv, depth, at, chroma>;
template <class T, int depth> using Single = Samples<T, Model::single, depth, single()>;

struct BGRA32 : Rgb<8, packed(4, 2, 1, 0, 3)> {};
struct RGBA32 : Rgb<8, packed(4, 0, 1, 2, 3)> {};
struct ARGB32 : Rgb<8, packed(4, 1, 2, 3, 0)> {};
struct ABGR32 : Rgb<8, packed(4, 3, 2, 1, 0)> {};
struct BGR24 : Rgb<8, packed(3, 2, 1, 0)> {};
struct RGB24 : Rgb<8, packed(3, 0, 1, 2)> {};
struct RGB48 : Rgb<16, packed(3, 0, 1, 2), std::uint16_t> {};
struct RGBA64 : Rgb<16, packed(4, 0, 1, 2, 3), std::uint16_t> {};
struct F32x4 : Rgb<32, packed(4, 0, 1, 2, 3), float> {};
struct GBR8 : Rgb<8, planar(2, 0, 1)> {};
struct GBR16 : Rgb<16, planar(2, 0, 1), std::uint16_t> {};
struct GBRF32 : Rgb<32, planar(2, 0, 1), float> {};

struct GREY8 : Single<std::uint8_t, 8> {};
struct GREY16 : Single<std::uint16_t, 16> {};
struct GREYF32 : Single<float, 32> {};
struct A8 : Single<std::uint8_t, 8> {};
struct PLANE8 : Single<std::uint8_t, 8> {};
struct PLANE10 : Single<std::uint16_t, 10> {};
struct PLANE16 : Single<std::uint16_t, 16> {};
struct PLANEF32 : Single<float, 32> {};

struct YUYV : Yuv<std::uint8_t, 8, packedPairs(0, 1, 3), Chroma::pair> {};
struct UYVY : Yuv<std::uint8_t, 8, packedPairs(1, 0, 2), Chroma::pair> {};
struct YVYU : Yuv<std::uint8_t, 8, packedPairs(0, 3, 1), Chroma::pair> {};
struct Y216 : Yuv<std::uint16_t, 16, packedPairs(0, 1, 3), Chroma::pair> {};

struct YUVA32 : Yuv<std::uint8_t, 8, packed(4, 0, 1, 2, 3), Chroma::everyPixel> {};
struct VUYA32 : Yuv<std::uint8_t, 8, packed(4, 2, 1, 0, 3), Chroma::everyPixel> {};
struct Y416 : Yuv<std::uint16_t, 16, packed(4, 1, 0, 2, 3), Chroma::everyPixel> {};

struct I420 : Yuv<std::uint8_t, 8, planar(0, 1, 2), Chroma::patch> {};
struct I422 : Yuv<std::uint8_t, 8, planar(0, 1, 2), Chroma::pair> {};
struct I444 : Yuv<std::uint8_t, 8, planar(0, 1, 2), Chroma::everyPixel> {};
struct I010 : Yuv<std::uint16_t, 10, planar(0, 1, 2), Chroma::patch> {};
struct I210 : Yuv<std::uint16_t, 10, planar(0, 1, 2), Chroma::pair> {};
struct I410 : Yuv<std::uint16_t, 10, planar(0, 1, 2), Chroma::everyPixel> {};
struct I016 : Yuv<std::uint16_t, 16, planar(0, 1, 2), Chroma::patch> {};
struct I216 : Yuv<std::uint16_t, 16, planar(0, 1, 2), Chroma::pair> {};
struct I416 : Yuv<std::uint16_t, 16, planar(0, 1, 2), Chroma::everyPixel> {};

struct NV12 : Yuv<std::uint8_t, 8, semiPlanar(0, 1), Chroma::patch> {};
struct NV21 : Yuv<std::uint8_t, 8, semiPlanar(1, 0), Chroma::patch> {};
struct NV16 : Yuv<std::uint8_t, 8, semiPlanar(0, 1), Chroma::pair> {};
struct NV24 : Yuv<std::uint8_t, 8, semiPlanar(0, 1), Chroma::everyPixel> {};
struct P016 : Yuv<std::uint16_t, 16, semiPlanar(0, 1), Chroma::patch> {};
struct P216 : Yuv<std::uint16_t, 16, semiPlanar(0, 1), Chroma::pair> {};

// --- Layouts whose pixel is one word ------------------------------------------------------------------------------

// Bits low to low + bits - 1.
struct Field {
    int low, bits;
};

struct Fields {
    Field c[3];
    Field a;
};

enum class Order { littleEndian, bigEndian };

template <class Word, Order order> Word readWord(const Word *words, std::int64_t i)
{
    if constexpr (order == Order::littleEndian)
        return words[i];
    const std::uint8_t *bytes = reinterpret_cast<const std::uint8_t *>(words + i);
    Word word = 0;
    for (std::size_t b = 0; b < sizeof(Word); ++b)
        word = static_cast<Word>(word << 8 | bytes[b]);
    return word;
}

template <class Word, Order order> void writeWord(Word *words, std::int64_t i, Word word)
{
    if constexpr (order == Order::littleEndian) {
        words[i] = word;
        return;
    }
    std::uint8_t *bytes = reinterpret_cast<std::uint8_t *>(words + i);
    for (std::size_t b = sizeof(Word); b-- > 0; word = static_cast<Word>(word >> 8))
        bytes[b] = static_cast<std::uint8_t>(word);
}

template <class Word, Model modelOf, Fields at, Order order = Order::littleEndian> struct Words {
    using Sample = std::int32_t;
    static constexpr Model model = modelOf;
    static constexpr Chroma chroma = Chroma::everyPixel;
    static constexpr bool hasAlpha = at.a.bits > 0;
    static constexpr int bits[4] = {at.c[0].bits, at.c[1].bits, at.c[2].bits, at.a.bits};
    static constexpr int planes = 1;
    static constexpr bool wholePairs = false;
    static constexpr std::uint32_t largest = 0;

    static constexpr bool isHalved(int) { return false; }
    static constexpr std::int64_t bytes(int, std::int64_t width) { return width * std::int64_t{sizeof(Word)}; }

    static Sample get(Word word, Field field)
    {
        return static_cast<Sample>(word >> field.low & ((1U << field.bits) - 1));
    }

    static Pixel<Sample> read(ConstRows rows, std::int64_t x)
    {
        const Word word = readWord<Word, order>(row<Word>(rows, 0), x);
        return {{get(word, at.c[0]), get(word, at.c[1]), get(word, at.c[2])}, get(word, at.a)};
    }
    static void write(Rows rows, std::int64_t x, const Pixel<Sample> &pixel)
    {
        std::uint32_t word = hasAlpha ? static_cast<std::uint32_t>(pixel.a) << at.a.low : 0;
        for (int c = 0; c < 3; ++c)
            word |= static_cast<std::uint32_t>(pixel.c[c]) << at.c[c].low;
        writeWord<Word, order>(row<Word>(rows, 0), x, static_cast<Word>(word));
    }
};

template <Fields at> using Rgb16 = Words<std::uint16_t, Model::rgb, at>;
template <Fields at, Order order = Order::littleEndian> using Rgb30 = Words<std::uint32_t, Model::rgb, at, order>;

struct RGB565 : Rgb16<Fields{{{11, 5}, {5, 6}, {0, 5}}, {}}> {};
struct BGR565 : Rgb16<Fields{{{0, 5}, {5, 6}, {11, 5}}, {}}> {};
struct ARGB1555 : Rgb16<Fields{{{10, 5}, {5, 5}, {0, 5}}, {15, 1}}> {};
struct ARGB4444 : Rgb16<Fields{{{8, 4}, {4, 4}, {0, 4}}, {12, 4}}> {};
struct A2R10G10B10 : Rgb30<Fields{{{20, 10}, {10, 10}, {0, 10}}, {30, 2}}> {};
struct A2B10G10R10 : Rgb30<Fields{{{0, 10}, {10, 10}, {20, 10}}, {30, 2}}> {};
struct DPX3A : Rgb30<Fields{{{22, 10}, {12, 10}, {2, 10}}, {}}, Order::bigEndian> {};
struct DPX3B : Rgb30<Fields{{{20, 10}, {10, 10}, {0, 10}}, {}}, Order::bigEndian> {};
struct Y410 : Words<std::uint32_t, Model::yuv, Fields{{{10, 10}, {0, 10}, {20, 10}}, {30, 2}}> {};

// --- Streams of 10-bit fields, three to a word --------------------------------------------------------------------

// The first field of a word lies at bit low[0].
struct WordOfThree {
    int low[3];
};

template <WordOfThree at, Order order> std::int32_t fieldOf(const std::uint32_t *words, std::int64_t n)
{
    return static_cast<std::int32_t>(readWord<std::uint32_t, order>(words, n / 3) >> at.low[n % 3] & 1023);
}

// Fields in their order; a word is written when it is full, or by finish(), with the missing fields 0.
template <WordOfThree at, Order order> class FieldWriter {
public:
    explicit FieldWriter(std::uint32_t *words) : words_(words) {}

    void put(std::int32_t value)
    {
        word_ |= static_cast<std::uint32_t>(value) << at.low[fields_];
        if (++fields_ == 3)
            flush();
    }
    void finish()
    {
        if (fields_ > 0)
            flush();
    }

private:
    void flush()
    {
        writeWord<std::uint32_t, order>(words_++, 0, word_);
        word_ = 0;
        fields_ = 0;
    }

    std::uint32_t *words_;
    std::uint32_t word_ = 0;
    int fields_ = 0;
};

// U Y V Y of every pair, in whole groups of six pixels.
struct V210 {
    using Sample = std::int32_t;
    static constexpr Model model = Model::yuv;
    static constexpr Chroma chroma = Chroma::pair;
    static constexpr bool hasAlpha = false;
    static constexpr int bits[4] = {10, 10, 10, 0};
    static constexpr int planes = 1;
    static constexpr bool wholePairs = true;
    static constexpr std::uint32_t largest = 0;
    static constexpr WordOfThree fields{{0, 10, 20}};

    static constexpr bool isHalved(int) { return false; }
    static constexpr std::int64_t pixelsInGroups(std::int64_t width) { return (width / 2 * 2 + 5) / 6 * 6; }
    static constexpr std::int64_t bytes(int, std::int64_t width) { return pixelsInGroups(width) / 6 * 16; }

    static Sample component(ConstRows rows, int c, std::int64_t i)
    {
        const std::int64_t field = c == 0 ? 2 * i + 1 : c == 1 ? 4 * i : 4 * i + 2;
        return fieldOf<fields, Order::littleEndian>(row<std::uint32_t>(rows, 0), field);
    }

    // luma(x) and chroma(k) give the samples of pixel x and pair k. Codes below 4 and above 1019 are for timing.
    template <class Luma, class ChromaOf>
    static void writeRow(Rows rows, std::int64_t width, const Luma &luma, const ChromaOf &chromaOf)
    {
        FieldWriter<fields, Order::littleEndian> writer(row<std::uint32_t>(rows, 0));
        const auto put = [&writer](Sample v) { writer.put(v < 4 ? 4 : v > 1019 ? 1019 : v); };
        std::int64_t k = 0;
        for (; 2 * k < width; ++k) {
            const Pixel<Sample> pair = chromaOf(k);
            put(pair.c[1]);
            put(luma(2 * k));
            put(pair.c[2]);
            put(luma(2 * k + 1));
        }
        for (; 2 * k < pixelsInGroups(width); ++k) // black
            for (const Sample missing : {512, 64, 512, 64})
                put(missing);
    }
};

// R G B A of every pixel, or A B G R. The last word's missing fields are 0.
template <WordOfThree at> struct Dpx4 {
    static constexpr int planes = 1;
    static constexpr WordOfThree fields = at;
    static constexpr std::int64_t bytes(int, std::int64_t width) { return (4 * width + 2) / 3 * 4; }
};
struct DPX4A : Dpx4<WordOfThree{{22, 12, 2}}> {};
struct DPX4B : Dpx4<WordOfThree{{20, 10, 0}}> {};

// --- Planes of hue, saturation, and value or lightness ------------------------------------------------------------

struct HSV {
    using Sample = std::int32_t;
    static constexpr Model model = Model::hue;
    static constexpr Chroma chroma = Chroma::everyPixel;
    static constexpr bool hasAlpha = false;
    static constexpr int bits[4] = {};
    static constexpr int planes = 3;
    static constexpr bool wholePairs = false;
    static constexpr std::uint32_t largest = 0;

    static constexpr bool isHalved(int) { return false; }
    static constexpr std::int64_t bytes(int plane, std::int64_t width) { return plane == 0 ? 2 * width : width; }

    static Pixel<Sample> read(ConstRows rows, std::int64_t x)
    {
        return {{row<std::int16_t>(rows, 0)[x], row<std::uint8_t>(rows, 1)[x], row<std::uint8_t>(rows, 2)[x]}, 0};
    }
    static void write(Rows rows, std::int64_t x, const Pixel<Sample> &pixel)
    {
        row<std::int16_t>(rows, 0)[x] = static_cast<std::int16_t>(pixel.c[0]);
        row<std::uint8_t>(rows, 1)[x] = static_cast<std::uint8_t>(pixel.c[1]);
        row<std::uint8_t>(rows, 2)[x] = static_cast<std::uint8_t>(pixel.c[2]);
    }
};
struct HSL : HSV {};

} // namespace
