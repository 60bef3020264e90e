// The layouts: how a block of pixels comes into registers and goes back. A new layout is a type here, and rows in
// conversions.h.
//
// A layout of whole pixels (no chroma shared between pixels of a line) loads and stores Pixels: each component in a
// register, or two for floats, in memory order. A subsampled layout loads and stores luma in a register and the chroma
// of every second pixel as pairs U V in another. In both, a block is as many pixels as a register has words, or bytes
// where both sides are bytes and nothing is computed.
#pragma once

#include "colorspace/kernels/depths.h"

namespace {

// R G B, Y U V or H S L; and alpha, which is anything where there is none.
template <class Samples> struct Pixels {
    Samples c[3];
    Samples a;
};

template <class Samples> VELA_FUSED inline Pixels<Samples> pixels(Samples c0, Samples c1, Samples c2, Samples a)
{
    return {{c0, c1, c2}, a};
}

// U V of the even and of the odd pixels.
template <class Samples> struct ChromaPairs {
    Samples even;
    Samples odd;
};

// The components of a register of pixels as operands of multiplyAddPairs: those at places 0 and 2, those at 1 and 3.
struct Terms {
    i16s outer;
    i16s middle;
};

VELA_FUSED inline i16s evens(i16s a, i16s b) { return as<i16s>(evens(as<u32s>(a), as<u32s>(b))); }
VELA_FUSED inline i16s mean(i16s a, i16s b) { return as<i16s>(average(as<u16s>(a), as<u16s>(b))); }
// Of pixels: the even ones of two registers, the mean of each two.
VELA_FUSED inline Terms evens(Terms a, Terms b) { return {evens(a.outer, b.outer), evens(a.middle, b.middle)}; }
VELA_FUSED inline Terms mean(Terms a, Terms b) { return {mean(a.outer, b.outer), mean(a.middle, b.middle)}; }
VELA_FUSED inline u32s mean(u32s a, u32s b) { return as<u32s>(average(as<u8s>(a), as<u8s>(b))); }

using Line = uint8_t *const *;            // the rows of a line at the block, by plane
using ConstLine = const uint8_t *const *; // the same of a source

// --- Samples of one component --------------------------------------------------------------------------------
// Memory<Element>: a block of samples side by side; and of two planes of chroma, in pairs or one after the other.

template <class Vector> constexpr bool isDouble = false;
template <class Vector> constexpr bool isDouble<Double<Vector>> = true;

// Elements as wide as the lanes of their registers.
template <class Vector> struct MemoryOf {
    template <class Samples> VELA_FUSED static Samples load(const uint8_t *from)
    {
        if constexpr (isDouble<Samples>)
            return {::load<Vector>(from), ::load<Vector>(from + sizeof(Vector))};
        else
            return ::load<Vector>(from);
    }
    VELA_FUSED static void store(uint8_t *to, Vector x) { ::store(to, x); }
    VELA_FUSED static void store(uint8_t *to, Double<Vector> x)
    {
        ::store(to, x.low);
        ::store(to + sizeof(Vector), x.high);
    }
    template <class Samples> VELA_FUSED static Samples loadApart(const uint8_t *u, const uint8_t *v)
    {
        if constexpr (isDouble<Samples>)
            return {::load<Vector>(u), ::load<Vector>(v)};
        else
            return loadHalves<Vector>(u, v);
    }
    VELA_FUSED static void storeApart(uint8_t *u, uint8_t *v, Vector x)
    {
        storeHalf(u, x);
        storeUpperHalf(v, x);
    }
    VELA_FUSED static void storeApart(uint8_t *u, uint8_t *v, Double<Vector> x)
    {
        ::store(u, x.low);
        ::store(v, x.high);
    }
    template <class Samples> VELA_FUSED static Samples loadPairs(const uint8_t *u, const uint8_t *v)
    {
        if constexpr (isDouble<Samples>) {
            const Vector us = ::load<Vector>(u);
            const Vector vs = ::load<Vector>(v);
            return {interleaveLow(us, vs), interleaveHigh(us, vs)};
        } else {
            return interleaveLow(loadHalf<Vector>(u), loadHalf<Vector>(v));
        }
    }
    VELA_FUSED static void storePairs(uint8_t *u, uint8_t *v, Vector x) { storeApart(u, v, splitPairs(x)); }
    VELA_FUSED static void storePairs(uint8_t *u, uint8_t *v, Double<Vector> x)
    {
        ::store(u, evens(x.low, x.high));
        ::store(v, odds(x.low, x.high));
    }
};

template <class Element> struct Memory : MemoryOf<u16s> {
};

// Bytes, in registers of words too: half as many.
template <> struct Memory<uint8_t> {
    using Bytes = MemoryOf<u8s>;

    template <class Samples> VELA_FUSED static Samples load(const uint8_t *from)
    {
        if constexpr (Samples::lanes == u16s::lanes)
            return widenLow(loadHalf<u8s>(from));
        else
            return Bytes::load<Samples>(from);
    }
    template <class Samples> VELA_FUSED static Samples loadApart(const uint8_t *u, const uint8_t *v)
    {
        if constexpr (Samples::lanes == u16s::lanes)
            return ::loadApart(u, v);
        else
            return Bytes::loadApart<Samples>(u, v);
    }
    template <class Samples> VELA_FUSED static Samples loadPairs(const uint8_t *u, const uint8_t *v)
    {
        if constexpr (Samples::lanes == u16s::lanes)
            return ::loadPairs(u, v);
        else
            return Bytes::loadPairs<Samples>(u, v);
    }
    template <class Samples> VELA_FUSED static void store(uint8_t *to, Samples x) { Bytes::store(to, x); }
    VELA_FUSED static void store(uint8_t *to, u16s x) { storeHalf(to, narrow(as<i16s>(x), as<i16s>(x))); }
    template <class Samples> VELA_FUSED static void storeApart(uint8_t *u, uint8_t *v, Samples x)
    {
        Bytes::storeApart(u, v, x);
    }
    VELA_FUSED static void storeApart(uint8_t *u, uint8_t *v, u16s x) { ::storeApart(u, v, as<i16s>(x)); }
    template <class Samples> VELA_FUSED static void storePairs(uint8_t *u, uint8_t *v, Samples x)
    {
        Bytes::storePairs(u, v, x);
    }
    VELA_FUSED static void storePairs(uint8_t *u, uint8_t *v, u16s x) { storeApart(u, v, splitPairs(x)); }
};

template <> struct Memory<float> {
    template <class> VELA_FUSED static Floats load(const uint8_t *from)
    {
        return {::load<f32s>(from), ::load<f32s>(from + sizeof(f32s))};
    }
    VELA_FUSED static void store(uint8_t *to, Floats x)
    {
        ::store(to, x.low);
        ::store(to + sizeof(f32s), x.high);
    }
};

// --- Whole pixels --------------------------------------------------------------------------------------------

// What the layouts of whole pixels have in common. A component's depth is depths[i], alpha's is depths[3], 0 if there
// is none.
struct WholePixels {
    static constexpr bool subsampled = false;
    static constexpr bool pairsOnly = false; // rows hold whole pixel pairs
    static constexpr bool inBytes = false;   // has blocks of bytes
    static constexpr bool inFours = false;   // loads and stores the components of a pixel side by side, too
    static constexpr bool inWords = false;   // loads and stores 32-bit words
    static constexpr bool oneComponent = false;
    static constexpr bool lumaInPlane = false; // the first
    static constexpr bool packed = false;
};

// Words R G B A R G B A ... of a block, or floats in registers of words: for steps that treat components alike. Where a
// source has no alpha it is 0.
template <class Samples> using PixelFours = Fours<Samples>;

// Pixels that a move takes as they are: words of 32 bits, four registers to a block.
using PixelWords = Fours<u32s>;

// Bytes c0 c1 c2 and alpha at these places of pixels of 3 or 4 bytes; alphaAt -1: none.
template <int bytes, int at0, int at1, int at2, int alphaAt> struct BytePixels : WholePixels {
    using Elements = List<uint8_t>;
    static constexpr RowShape rows[] = {{bytes}};
    static constexpr int depths[] = {8, 8, 8, alphaAt < 0 ? 0 : 8};
    static constexpr bool inBytes = true;
    static constexpr bool inWords = true;
    static constexpr bool inFours = bytes == 3 || alphaAt >= 0;
    static constexpr int at[] = {at0, at1, at2, alphaAt};

    // The words of `part` of the block, a register's worth.
    VELA_FUSED static u32s loadWords(const uint8_t *row, int part)
    {
        if constexpr (bytes == 4)
            return ::load<u32s>(row + part * (int)sizeof(u32s));
        else
            return loadPixels24(row + part * 3 * u32s::lanes);
    }
    VELA_FUSED static PixelWords loadWords(const uint8_t *row)
    {
        return {loadWords(row, 0), loadWords(row, 1), loadWords(row, 2), loadWords(row, 3)};
    }
    template <class Samples> VELA_FUSED static Pixels<Samples> load(ConstLine line)
    {
        Fours<Samples> x;
        if constexpr (Samples::lanes == u8s::lanes)
            x = splitFours(loadWords(line[0]));
        else
            x = splitFours(Pair<u32s>{loadWords(line[0], 0), loadWords(line[0], 1)});
        const Samples byte[] = {x.a, x.b, x.c, x.d};
        return {{byte[at0], byte[at1], byte[at2]}, byte[alphaAt < 0 ? at0 : alphaAt]};
    }
    template <class Samples> VELA_FUSED static void store(Line line, Pixels<Samples> x)
    {
        Samples byte[] = {x.c[0], x.c[0], x.c[0], x.c[0]}; // one of them is the fourth byte of a pixel of three
        byte[at0] = x.c[0];
        byte[at1] = x.c[1];
        byte[at2] = x.c[2];
        if constexpr (alphaAt >= 0)
            byte[alphaAt] = x.a;
        if constexpr (Samples::lanes == u8s::lanes)
            store(line, interleaveFours(byte[0], byte[1], byte[2], byte[3]));
        else
            storeWords(line[0],
                       interleaveFours(as<i16s>(byte[0]), as<i16s>(byte[1]), as<i16s>(byte[2]), as<i16s>(byte[3])));
    }
    VELA_FUSED static void storeWords(uint8_t *row, Pair<u32s> words)
    {
        if constexpr (bytes == 4) {
            ::store(row, words.low);
            ::store(row + sizeof(u32s), words.high);
        } else {
            storePixels24(row, words.low);
            storePixels24(row + 3 * u32s::lanes, words.high);
        }
    }

    VELA_FUSED static void store(Line line, PixelWords x)
    {
        if constexpr (bytes == 4) {
            ::store(line[0], x.a);
            ::store(line[0] + sizeof(u32s), x.b);
            ::store(line[0] + 2 * sizeof(u32s), x.c);
            ::store(line[0] + 3 * sizeof(u32s), x.d);
        } else {
            storePixels24(line[0], x.a, x.b, x.c, x.d);
        }
    }

    VELA_FUSED static PixelFours<u16s> loadFours(ConstLine line)
    {
        constexpr int last = alphaAt < 0 ? 3 : alphaAt; // of three bytes a 0
        const Pair<u16s> low = widenFours<at0, at1, at2, last>(loadWords(line[0], 0));
        const Pair<u16s> high = widenFours<at0, at1, at2, last>(loadWords(line[0], 1));
        return {low.low, low.high, high.low, high.high};
    }
    static constexpr int componentAt(int byte)
    {
        for (int i = 0; i < 4; ++i)
            if (at[i] == byte)
                return i;
        return 3;
    }
    VELA_FUSED static void storeFours(Line line, PixelFours<u16s> x)
    {
        storeWords(line[0], {narrowFours<componentAt(0), componentAt(1), componentAt(2), componentAt(3)>(x.a, x.b),
                             narrowFours<componentAt(0), componentAt(1), componentAt(2), componentAt(3)>(x.c, x.d)});
    }

    static constexpr int placeOf(int component) { return at[component]; }
    using Raw = u32s;
    VELA_FUSED static Raw loadRaw(ConstLine line, int part) { return loadWords(line[0], part); }
    VELA_FUSED static Terms termsOf(Raw words)
    {
        return {as<i16s>(words & splat32(0x00FF00FF)), as<i16s>(shiftRight<8>(as<u16s>(words)))};
    }
};

// Bit fields of 16-bit words, the lowest bit and the number of bits of each.
struct Field {
    int low;
    int bits;
};
template <Field r, Field g, Field b, Field a = Field{0, 0}> struct FieldPixels16 : WholePixels {
    using Elements = List<uint16_t>;
    static constexpr RowShape rows[] = {{2}};
    static constexpr int depths[] = {r.bits, g.bits, b.bits, a.bits};

    template <Field field> VELA_FUSED static u16s get(u16s words)
    {
        return shiftRight<field.low>(words) & splat16((uint16_t)largestCode(field.bits));
    }
    template <class> VELA_FUSED static Pixels<u16s> load(ConstLine line)
    {
        const u16s words = ::load<u16s>(line[0]);
        return {{get<r>(words), get<g>(words), get<b>(words)}, get<a>(words)};
    }
    VELA_FUSED static void store(Line line, Pixels<u16s> x)
    {
        u16s words = shiftLeft<r.low>(x.c[0]) | shiftLeft<g.low>(x.c[1]) | shiftLeft<b.low>(x.c[2]);
        if constexpr (a.bits > 0)
            words = words | shiftLeft<a.low>(x.a);
        ::store(line[0], words);
    }
};

// Ten bits a component in 32-bit words, the lowest bit of each; alpha, two bits, is at the top, or nowhere. Two spare
// bits are at the other end.
enum class ByteOrder { little, big };
template <int at0, int at1, int at2, bool hasAlpha, ByteOrder order = ByteOrder::little>
struct FieldPixels32 : WholePixels {
    using Elements = List<uint32_t>;
    static constexpr RowShape rows[] = {{4}};
    static constexpr int depths[] = {10, 10, 10, hasAlpha ? 2 : 0};
    static constexpr int at[] = {at0, at1, at2, hasAlpha ? 30 : -1};
    static constexpr bool inFours = true;
    static constexpr int spare = at0 % 10; // bits below the fields
    static constexpr bool isBig = order == ByteOrder::big;

    VELA_FUSED static u32s loadWords(const uint8_t *row, int part)
    {
        const u32s words = ::load<u32s>(row + part * (int)sizeof(u32s));
        if constexpr (isBig)
            return orderBytes<3, 2, 1, 0>(words);
        else
            return words;
    }
    VELA_FUSED static void storeWords(uint8_t *row, int part, u32s words)
    {
        if constexpr (isBig)
            words = orderBytes<3, 2, 1, 0>(words);
        ::store(row + part * (int)sizeof(u32s), words);
    }
    VELA_FUSED static void store(Line line, PixelWords x)
    {
        storeWords(line[0], 0, x.a);
        storeWords(line[0], 1, x.b);
        storeWords(line[0], 2, x.c);
        storeWords(line[0], 3, x.d);
    }

    template <int low> VELA_FUSED static u16s get(u32s first, u32s second)
    {
        const u32s mask = splat32(0x3FF);
        return as<u16s>(narrow(as<i32s>(shiftRight<low>(first) & mask), as<i32s>(shiftRight<low>(second) & mask)));
    }
    template <class> VELA_FUSED static Pixels<u16s> load(ConstLine line)
    {
        const u32s first = loadWords(line[0], 0);
        const u32s second = loadWords(line[0], 1);
        Pixels<u16s> x = {{get<at0>(first, second), get<at1>(first, second), get<at2>(first, second)}, {}};
        if constexpr (hasAlpha)
            x.a = get<30>(first, second);
        return x;
    }
    VELA_FUSED static void store(Line line, Pixels<u16s> x)
    {
        u16s field[3];
        field[at0 / 10] = x.c[0];
        field[at1 / 10] = x.c[1];
        field[at2 / 10] = x.c[2];
        const u16s low = field[0] | shiftLeft<10>(field[1]);
        u16s high = shiftRight<6>(field[1]) | shiftLeft<4>(field[2]);
        if constexpr (hasAlpha)
            high = high | shiftLeft<14>(x.a);
        storeWords(line[0], 0, shiftLeft<spare>(as<u32s>(interleaveLow(low, high))));
        storeWords(line[0], 1, shiftLeft<spare>(as<u32s>(interleaveHigh(low, high))));
    }

    VELA_FUSED static void loadFours(u16s &low, u16s &high, u32s words)
    {
        const u32s field = splat32(0x3FF);
        const u32s rg = (shiftRight<at0>(words) & field) | (shiftLeft<16>(shiftRight<at1>(words) & field));
        u32s ba = shiftRight<at2>(words) & field;
        if constexpr (hasAlpha)
            ba = ba | shiftLeft<16>(shiftRight<30>(words));
        low = as<u16s>(interleaveLow(rg, ba));
        high = as<u16s>(interleaveHigh(rg, ba));
    }
    VELA_FUSED static PixelFours<u16s> loadFours(ConstLine line)
    {
        PixelFours<u16s> x;
        loadFours(x.a, x.b, loadWords(line[0], 0));
        loadFours(x.c, x.d, loadWords(line[0], 1));
        return x;
    }
    VELA_FUSED static u32s joinFours(u16s low, u16s high)
    {
        const u32s rg = evens(as<u32s>(low), as<u32s>(high));
        const u32s ba = odds(as<u32s>(low), as<u32s>(high));
        const u32s first = splat32(0xFFFF);
        u32s words = shiftLeft<at0>(rg & first) | shiftLeft<at1>(shiftRight<16>(rg)) | shiftLeft<at2>(ba & first);
        if constexpr (hasAlpha)
            words = words | shiftLeft<30>(shiftRight<16>(ba));
        return words;
    }
    VELA_FUSED static void storeFours(Line line, PixelFours<u16s> x)
    {
        storeWords(line[0], 0, joinFours(x.a, x.b));
        storeWords(line[0], 1, joinFours(x.c, x.d));
    }

    static constexpr int placeOf(int component) { return at[component] / 10; }
    using Raw = Terms;
    VELA_FUSED static Terms termsOf(Raw terms) { return terms; }
    VELA_FUSED static Raw loadRaw(ConstLine line, int part)
    {
        const u32s words = shiftRight<spare>(loadWords(line[0], part));
        return {as<i16s>((words & splat32(0x3FF)) | (shiftRight<4>(words) & splat32(0x3FF0000))),
                as<i16s>(shiftRight<10>(words) & splat32(0x3FF))};
    }
};

// Three or four words a pixel, the places of the components; alphaAt -1: none.
template <int words, int at0, int at1, int at2, int alphaAt, int bits = 16> struct WordPixels : WholePixels {
    using Elements = List<uint16_t>;
    static constexpr RowShape rows[] = {{2 * words}};
    static constexpr int depths[] = {bits, bits, bits, alphaAt < 0 ? 0 : bits};
    static constexpr bool inFours = at0 == 0 && at1 == 1 && at2 == 2;

    VELA_FUSED static Fours<u16s> loadWords(const uint8_t *row)
    {
        if constexpr (words == 4)
            return {::load<u16s>(row), ::load<u16s>(row + sizeof(u16s)), ::load<u16s>(row + 2 * sizeof(u16s)),
                    ::load<u16s>(row + 3 * sizeof(u16s))};
        else
            return loadThrees4(row);
    }
    VELA_FUSED static void storeWords(uint8_t *row, Fours<u16s> x)
    {
        if constexpr (words == 4) {
            ::store(row, x.a);
            ::store(row + sizeof(u16s), x.b);
            ::store(row + 2 * sizeof(u16s), x.c);
            ::store(row + 3 * sizeof(u16s), x.d);
        } else {
            storeThrees4(row, x);
        }
    }
    VELA_FUSED static PixelFours<u16s> loadFours(ConstLine line)
    {
        const Fours<u16s> x = loadWords(line[0]);
        const u16s mask = as<u16s>(splat64(alphaAt < 0 ? 0x0000FFFFFFFFFFFF : 0xFFFFFFFFFFFFFFFF));
        return {x.a & mask, x.b & mask, x.c & mask, x.d & mask};
    }
    VELA_FUSED static void storeFours(Line line, PixelFours<u16s> x) { storeWords(line[0], x); }

    template <class> VELA_FUSED static Pixels<u16s> load(ConstLine line)
    {
        const Fours<u16s> x = splitFours(loadWords(line[0]));
        const u16s word[] = {x.a, x.b, x.c, x.d};
        return {{word[at0], word[at1], word[at2]}, word[alphaAt < 0 ? at0 : alphaAt]};
    }
    VELA_FUSED static void store(Line line, Pixels<u16s> x)
    {
        u16s word[] = {x.c[0], x.c[0], x.c[0], x.c[0]};
        word[at0] = x.c[0];
        word[at1] = x.c[1];
        word[at2] = x.c[2];
        if constexpr (alphaAt >= 0)
            word[alphaAt] = x.a;
        storeWords(line[0], interleaveFours(word[0], word[1], word[2], word[3]));
    }
};

// Four floats a pixel, R G B A.
struct FloatPixels : WholePixels {
    using Elements = List<float>;
    static constexpr RowShape rows[] = {{16}};
    static constexpr int depths[] = {32, 32, 32, 32};
    static constexpr bool inFours = true;

    VELA_FUSED static Floats loadFloats(const uint8_t *row, int part)
    {
        return Memory<float>::load<Floats>(row + part * (int)sizeof(Floats));
    }
    VELA_FUSED static PixelFours<Floats> loadFours(ConstLine line)
    {
        return {loadFloats(line[0], 0), loadFloats(line[0], 1), loadFloats(line[0], 2), loadFloats(line[0], 3)};
    }
    VELA_FUSED static void storeFours(Line line, PixelFours<Floats> x)
    {
        Memory<float>::store(line[0], x.a);
        Memory<float>::store(line[0] + sizeof(Floats), x.b);
        Memory<float>::store(line[0] + 2 * sizeof(Floats), x.c);
        Memory<float>::store(line[0] + 3 * sizeof(Floats), x.d);
    }
    VELA_FUSED static Fours<f32s> loadPart(const uint8_t *row)
    {
        return splitFours(Fours<f32s>{::load<f32s>(row), ::load<f32s>(row + sizeof(f32s)),
                                      ::load<f32s>(row + 2 * sizeof(f32s)), ::load<f32s>(row + 3 * sizeof(f32s))});
    }
    VELA_FUSED static void storePart(uint8_t *row, f32s r, f32s g, f32s b, f32s a)
    {
        const Fours<f32s> x = interleaveFours(r, g, b, a);
        ::store(row, x.a);
        ::store(row + sizeof(f32s), x.b);
        ::store(row + 2 * sizeof(f32s), x.c);
        ::store(row + 3 * sizeof(f32s), x.d);
    }
    template <class> VELA_FUSED static Pixels<Floats> load(ConstLine line)
    {
        const Fours<f32s> low = loadPart(line[0]);
        const Fours<f32s> high = loadPart(line[0] + 4 * sizeof(f32s));
        return {{{low.a, high.a}, {low.b, high.b}, {low.c, high.c}}, {low.d, high.d}};
    }
    VELA_FUSED static void store(Line line, Pixels<Floats> x)
    {
        storePart(line[0], x.c[0].low, x.c[1].low, x.c[2].low, x.a.low);
        storePart(line[0] + 4 * sizeof(f32s), x.c[0].high, x.c[1].high, x.c[2].high, x.a.high);
    }
};

// A plane a component; the planes of the components.
template <class Element, int bits, int plane0 = 0, int plane1 = 1, int plane2 = 2> struct Planes : WholePixels {
    using Elements = List<Element, Element, Element>;
    static constexpr RowShape rows[] = {{sizeof(Element)}, {sizeof(Element)}, {sizeof(Element)}};
    static constexpr int depths[] = {bits, bits, bits, 0};
    static constexpr bool inBytes = sizeof(Element) == 1;
    static constexpr bool lumaInPlane = plane0 == 0;

    template <class Samples> VELA_FUSED static auto load(ConstLine line)
    {
        const auto c0 = Memory<Element>::template load<Samples>(line[plane0]);
        return pixels(c0, Memory<Element>::template load<Samples>(line[plane1]),
                      Memory<Element>::template load<Samples>(line[plane2]), c0);
    }
    template <class Samples> VELA_FUSED static void store(Line line, Pixels<Samples> x)
    {
        Memory<Element>::store(line[plane0], x.c[0]);
        storeChroma(line, x);
    }
    template <class Samples> VELA_FUSED static void storeChroma(Line line, Pixels<Samples> x)
    {
        Memory<Element>::store(line[plane1], x.c[1]);
        Memory<Element>::store(line[plane2], x.c[2]);
    }

    static constexpr int placeOf(int component) { return component; }
    using Raw = Terms;
    VELA_FUSED static Terms termsOf(Raw terms) { return terms; }
    VELA_FUSED static Raw loadRaw(ConstLine line, int part)
    {
        const Pixels<u16s> x = load<u16s>(line);
        if (part == 0)
            return {as<i16s>(interleaveLow(x.c[0], x.c[2])), as<i16s>(interleaveLow(x.c[1], zero<u16s>()))};
        return {as<i16s>(interleaveHigh(x.c[0], x.c[2])), as<i16s>(interleaveHigh(x.c[1], zero<u16s>()))};
    }
};

// One component.
template <class Element, int bits> struct Single : WholePixels {
    using Elements = List<Element>;
    static constexpr RowShape rows[] = {{sizeof(Element)}};
    static constexpr int depths[] = {bits, bits, bits, 0};
    static constexpr bool inBytes = sizeof(Element) == 1;
    static constexpr bool oneComponent = true;

    template <class Samples> VELA_FUSED static auto load(ConstLine line)
    {
        const auto x = Memory<Element>::template load<Samples>(line[0]);
        return pixels(x, x, x, x);
    }
    template <class Samples> VELA_FUSED static void store(Line line, Pixels<Samples> x)
    {
        Memory<Element>::store(line[0], x.c[0]);
    }
};

// Y in a plane, U V of every pixel as pairs in another.
template <class Element, int bits> struct LumaAndPairs : WholePixels {
    using Elements = List<Element, Element>;
    static constexpr bool lumaInPlane = true;
    static constexpr RowShape rows[] = {{sizeof(Element)}, {2 * sizeof(Element)}};
    static constexpr int depths[] = {bits, bits, bits, 0};
    static constexpr bool inBytes = sizeof(Element) == 1;

    template <class Samples> VELA_FUSED static Pixels<Samples> load(ConstLine line)
    {
        const Samples y = Memory<Element>::template load<Samples>(line[0]);
        const Samples low = Memory<Element>::template load<Samples>(line[1]);
        const Samples high = Memory<Element>::template load<Samples>(line[1] + Samples::lanes * sizeof(Element));
        return {{y, evens(low, high), odds(low, high)}, y};
    }
    template <class Samples> VELA_FUSED static void store(Line line, Pixels<Samples> x)
    {
        Memory<Element>::store(line[0], x.c[0]);
        storeChroma(line, x);
    }
    template <class Samples> VELA_FUSED static void storeChroma(Line line, Pixels<Samples> x)
    {
        Memory<Element>::store(line[1], interleaveLow(x.c[1], x.c[2]));
        Memory<Element>::store(line[1] + Samples::lanes * sizeof(Element), interleaveHigh(x.c[1], x.c[2]));
    }
};

// --- Subsampled ----------------------------------------------------------------------------------------------
// loadPairs(line, 1) is the chroma one pair further on.

template <class Element, int bits> struct SubsampledYuv {
    static constexpr bool subsampled = true;
    static constexpr bool pairsOnly = false;
    static constexpr bool inBytes = sizeof(Element) == 1;
    static constexpr bool oneComponent = false;
    static constexpr bool packed = false; // luma and chroma in one plane
    static constexpr bool lumaInPlane = true;
    static constexpr int depths[] = {bits, bits, bits, 0};
};

VELA_FUSED inline u8s swapPairs(u8s x) { return as<u8s>(swapBytes(as<u16s>(x))); }
VELA_FUSED inline u16s swapPairs(u16s x) { return orderFours<1, 0, 3, 2>(x); }
template <class Vector> VELA_FUSED inline Double<Vector> swapPairs(Double<Vector> x)
{
    return {swapPairs(x.low), swapPairs(x.high)};
}

enum class Lines { all, halved }; // of chroma: 4:2:2, 4:2:0

// Chroma in a register: pairs U V, pairs V U, or U in the lower half and V in the upper. `order` is a layout's own.
enum class Chroma { uv, vu, apart };

template <Chroma to, Chroma from, class Samples> VELA_FUSED inline Samples inOrder(Samples pairs)
{
    static_assert(to != Chroma::apart && from != Chroma::apart);
    return to == from ? pairs : swapPairs(pairs);
}

// Planes Y, U, V.
template <class Element, int bits, Lines lines> struct PlanarYuv : SubsampledYuv<Element, bits> {
    using Elements = List<Element, Element, Element>;
    static constexpr Chroma order = Chroma::apart;
    static constexpr bool halved = lines == Lines::halved;
    static constexpr RowShape rows[] = {{sizeof(Element)}, {sizeof(Element), 2, halved}, {sizeof(Element), 2, halved}};

    template <class Samples> VELA_FUSED static Samples loadLuma(ConstLine line)
    {
        return Memory<Element>::template load<Samples>(line[0]);
    }
    template <class Samples, Chroma wanted> VELA_FUSED static Samples loadPairs(ConstLine line, int ahead)
    {
        const uint8_t *u = line[1] + ahead * (int)sizeof(Element);
        const uint8_t *v = line[2] + ahead * (int)sizeof(Element);
        if constexpr (wanted == Chroma::apart)
            return Memory<Element>::template loadApart<Samples>(u, v);
        else if constexpr (wanted == Chroma::uv)
            return Memory<Element>::template loadPairs<Samples>(u, v);
        else
            return Memory<Element>::template loadPairs<Samples>(v, u);
    }
    template <class Samples> VELA_FUSED static void storeLuma(Line line, Samples y)
    {
        Memory<Element>::store(line[0], y);
    }
    template <Chroma given, class Samples> VELA_FUSED static void storePairs(Line line, Samples pairs)
    {
        if constexpr (given == Chroma::apart)
            Memory<Element>::storeApart(line[1], line[2], pairs);
        else if constexpr (given == Chroma::uv)
            Memory<Element>::storePairs(line[1], line[2], pairs);
        else
            Memory<Element>::storePairs(line[2], line[1], pairs);
    }
};

// A plane Y and one of pairs.
template <class Element, int bits, Lines lines, Chroma chroma = Chroma::uv>
struct SemiPlanarYuv : SubsampledYuv<Element, bits> {
    using Elements = List<Element, Element>;
    static constexpr Chroma order = chroma;
    static constexpr RowShape rows[] = {{sizeof(Element)}, {2 * sizeof(Element), 2, lines == Lines::halved}};

    template <class Samples> VELA_FUSED static Samples loadLuma(ConstLine line)
    {
        return Memory<Element>::template load<Samples>(line[0]);
    }
    template <class Samples, Chroma wanted> VELA_FUSED static Samples loadPairs(ConstLine line, int ahead)
    {
        return inOrder<wanted, chroma>(
            Memory<Element>::template load<Samples>(line[1] + ahead * 2 * (int)sizeof(Element)));
    }
    template <class Samples> VELA_FUSED static void storeLuma(Line line, Samples y)
    {
        Memory<Element>::store(line[0], y);
    }
    template <Chroma given, class Samples> VELA_FUSED static void storePairs(Line line, Samples pairs)
    {
        Memory<Element>::store(line[1], inOrder<chroma, given>(pairs));
    }
};

// Four samples for two pixels: luma at places 0 and 2, or at 1 and 3.
template <class Element, int bits, int lumaAt, Chroma chroma = Chroma::uv>
struct PackedYuv : SubsampledYuv<Element, bits> {
    using Elements = List<Element>;
    static constexpr int lumaPlace = lumaAt;
    static constexpr Chroma order = chroma;
    static constexpr bool packed = true;
    static constexpr bool lumaInPlane = false;
    static constexpr bool pairsOnly = true;
    static constexpr RowShape rows[] = {{4 * sizeof(Element), 2}};

    // The samples at even places, or at odd ones.
    template <class Samples, int odd> VELA_FUSED static Samples loadEvery2(const uint8_t *row)
    {
        if constexpr (isDouble<Samples>) {
            using Vector = decltype(Samples::low);
            return {loadEvery2<Vector, odd>(row), loadEvery2<Vector, odd>(row + rows[0].bytes(Vector::lanes))};
        } else if constexpr (sizeof(Element) * Samples::lanes < sizeof(Samples)) { // bytes in a register of words
            const u16s both = ::load<u16s>(row);
            return odd ? shiftRight<8>(both) : both & splat16(0xFF);
        } else {
            const Samples low = ::load<Samples>(row);
            const Samples high = ::load<Samples>(row + sizeof(Samples));
            return odd ? odds(low, high) : evens(low, high);
        }
    }
    template <class Samples> VELA_FUSED static Samples loadLuma(ConstLine line)
    {
        return loadEvery2<Samples, lumaAt>(line[0]);
    }
    template <class Samples, Chroma wanted> VELA_FUSED static Samples loadPairs(ConstLine line, int ahead)
    {
        return inOrder<wanted, chroma>(loadEvery2<Samples, 1 - lumaAt>(line[0] + ahead * 4 * (int)sizeof(Element)));
    }
    template <Chroma given, class Samples> VELA_FUSED static void store(Line line, Samples y, Samples pairs)
    {
        const Samples c = inOrder<chroma, given>(pairs);
        const Samples even = lumaAt == 0 ? y : c;
        const Samples odd = lumaAt == 0 ? c : y;
        storeEvery2(line[0], even, odd);
    }
    template <class Samples> VELA_FUSED static void storeEvery2(uint8_t *row, Samples even, Samples odd)
    {
        if constexpr (sizeof(Element) * Samples::lanes < sizeof(Samples)) {
            ::store(row, narrowInterleaved(as<i16s>(even), as<i16s>(odd)));
        } else {
            ::store(row, interleaveLow(even, odd));
            ::store(row + sizeof(Samples), interleaveHigh(even, odd));
        }
    }
    template <class Vector> VELA_FUSED static void storeEvery2(uint8_t *row, Double<Vector> even, Double<Vector> odd)
    {
        storeEvery2(row, even.low, odd.low);
        storeEvery2(row + rows[0].bytes(Vector::lanes), even.high, odd.high);
    }
};

// Only the luma of 4:2:2: chroma is dropped, or that of grey.
template <class Element, int bits> struct LumaOf422 : SubsampledYuv<Element, bits> {
    using Elements = List<Element>;
    static constexpr Chroma order = Chroma::apart;
    static constexpr RowShape rows[] = {{sizeof(Element)}};

    template <class Samples> VELA_FUSED static Samples loadLuma(ConstLine line)
    {
        return Memory<Element>::template load<Samples>(line[0]);
    }
    template <class Samples, Chroma> VELA_FUSED static Samples loadPairs(ConstLine, int)
    {
        static_assert(bits == 8);
        return {splat8(128), splat8(128)};
    }
    template <class Samples> VELA_FUSED static void storeLuma(Line line, Samples y)
    {
        Memory<Element>::store(line[0], y);
    }
    template <Chroma, class Samples> VELA_FUSED static void storePairs(Line, Samples) {}
};

// --- As arguments --------------------------------------------------------------------------------------------

// A layout whose rows a kernel takes by other pointers.
template <class Layout, class Element> struct Typed : Layout {
    using Elements = List<Element>;
};
template <class Layout> using Coded = Typed<Layout, void>;

// --- The catalogue's names -----------------------------------------------------------------------------------

using Bgra32 = BytePixels<4, 2, 1, 0, 3>;
using Rgba32 = BytePixels<4, 0, 1, 2, 3>;
using Argb32 = BytePixels<4, 1, 2, 3, 0>;
using Abgr32 = BytePixels<4, 3, 2, 1, 0>;
using Bgrx32 = BytePixels<4, 2, 1, 0, -1>;
using Word32 = Typed<Rgba32, uint32_t>;
using WordSwapped32 = Typed<Abgr32, uint32_t>;
using Bgr24 = BytePixels<3, 2, 1, 0, -1>;
using Rgb24 = BytePixels<3, 0, 1, 2, -1>;
using Yuva32 = BytePixels<4, 0, 1, 2, 3>;
using Vuya32 = BytePixels<4, 2, 1, 0, 3>;

using Rgb565 = FieldPixels16<Field{11, 5}, Field{5, 6}, Field{0, 5}>;
using Bgr565 = FieldPixels16<Field{0, 5}, Field{5, 6}, Field{11, 5}>;
using Argb1555 = FieldPixels16<Field{10, 5}, Field{5, 5}, Field{0, 5}, Field{15, 1}>;
using Argb4444 = FieldPixels16<Field{8, 4}, Field{4, 4}, Field{0, 4}, Field{12, 4}>;
using A2r10 = FieldPixels32<20, 10, 0, true>;
using A2b10 = FieldPixels32<0, 10, 20, true>;
using Y410 = FieldPixels32<10, 0, 20, true>;
using Dpx3A = FieldPixels32<22, 12, 2, false, ByteOrder::big>;
using Dpx3B = FieldPixels32<20, 10, 0, false, ByteOrder::big>;

using Rgb48 = WordPixels<3, 0, 1, 2, -1>;
using Rgba64 = WordPixels<4, 0, 1, 2, 3>;
using Y416 = WordPixels<4, 1, 0, 2, 3>;
using F32x4 = FloatPixels;

using Gbr8 = Planes<uint8_t, 8, 2, 0, 1>;
using Gbr16 = Planes<uint16_t, 16, 2, 0, 1>;
using GbrF32 = Planes<float, 32, 2, 0, 1>;
using I444 = Planes<uint8_t, 8>;
using I410 = Planes<uint16_t, 10>;
using I416 = Planes<uint16_t, 16>;
using Nv24 = LumaAndPairs<uint8_t, 8>;

using Luma8 = LumaOf422<uint8_t, 8>;
using Plane8 = Single<uint8_t, 8>;
using Plane10 = Single<uint16_t, 10>;
using Plane16 = Single<uint16_t, 16>;
using PlaneF32 = Single<float, 32>;

using I420 = PlanarYuv<uint8_t, 8, Lines::halved>;
using I422 = PlanarYuv<uint8_t, 8, Lines::all>;
using I010 = PlanarYuv<uint16_t, 10, Lines::halved>;
using I210 = PlanarYuv<uint16_t, 10, Lines::all>;
using I016 = PlanarYuv<uint16_t, 16, Lines::halved>;
using I216 = PlanarYuv<uint16_t, 16, Lines::all>;
using Nv12 = SemiPlanarYuv<uint8_t, 8, Lines::halved>;
using Nv21 = SemiPlanarYuv<uint8_t, 8, Lines::halved, Chroma::vu>;
using Nv16 = SemiPlanarYuv<uint8_t, 8, Lines::all>;
using P016 = SemiPlanarYuv<uint16_t, 16, Lines::halved>;
using P216 = SemiPlanarYuv<uint16_t, 16, Lines::all>;
using Yuyv = PackedYuv<uint8_t, 8, 0>;
using Uyvy = PackedYuv<uint8_t, 8, 1>;
using Yvyu = PackedYuv<uint8_t, 8, 0, Chroma::vu>;
using Y216 = PackedYuv<uint16_t, 16, 0>;

} // namespace
