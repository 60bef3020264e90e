// The sample formats as they lie in memory, and the loop that turns rows of one into rows of another:
// reader, step lane by lane, writer.
#pragma once

namespace {

// A block of samples, whatever their format: four registers of 32-bit lanes, or of pairs of 64-bit ones.
template <class Vector> struct Block {
    Vector a, b, c, d;
};
constexpr int blockSamples = 4 * i32s::lanes;

template <class Vector, class Step> inline auto each(Block<Vector> x, Step step)
{
    return Block<decltype(step(x.a))>{step(x.a), step(x.b), step(x.c), step(x.d)};
}

// The words in the upper halves of 32-bit lanes, zeros below.
inline i32s topLow(u16s x) { return as<i32s>(interleaveLow(zero<u16s>(), x)); }
inline i32s topHigh(u16s x) { return as<i32s>(interleaveHigh(zero<u16s>(), x)); }

// Signed samples are read into the top of their lanes, which makes 32-bit samples of all of them. Written are plain
// integers, limited to the range of the format but for S24.
struct S8 {
    static constexpr int unit = 1;

    static Block<i32s> read(const uint8_t *from)
    {
        const u8s x = load<u8s>(from);
        const u16s low = as<u16s>(interleaveLow(zero<u8s>(), x));
        const u16s high = as<u16s>(interleaveHigh(zero<u8s>(), x));
        return {topLow(low), topHigh(low), topLow(high), topHigh(high)};
    }
    static void write(uint8_t *to, Block<i32s> x) { store(to, narrowSigned(narrow(x.a, x.b), narrow(x.c, x.d))); }
};

struct S16 {
    static constexpr int unit = 2;

    static Block<i32s> read(const uint8_t *from)
    {
        const u16s low = load<u16s>(from);
        const u16s high = load<u16s>(from + sizeof(u16s));
        return {topLow(low), topHigh(low), topLow(high), topHigh(high)};
    }
    static void write(uint8_t *to, Block<i32s> x)
    {
        store(to, narrow(x.a, x.b));
        store(to + sizeof(i16s), narrow(x.c, x.d));
    }
};

struct S24 {
    static constexpr int unit = 3;
    static constexpr int step = unit * i32s::lanes;

    static Block<i32s> read(const uint8_t *from)
    {
        return {loadTop24(from), loadTop24(from + step), loadTop24(from + 2 * step), loadTop24(from + 3 * step)};
    }
    // The low three bytes, not limited.
    static void write(uint8_t *to, Block<i32s> x)
    {
        storePixels24(to, as<u32s>(x.a), as<u32s>(x.b), as<u32s>(x.c), as<u32s>(x.d));
    }
};

// Unsigned bytes, read and written as plain integers.
struct U8 {
    static constexpr int unit = 1;

    static Block<i32s> read(const uint8_t *from)
    {
        const u8s x = load<u8s>(from);
        const u16s low = widenLow(x);
        const u16s high = widenHigh(x);
        return {as<i32s>(widenLow(low)), as<i32s>(widenHigh(low)), as<i32s>(widenLow(high)), as<i32s>(widenHigh(high))};
    }
    static void write(uint8_t *to, Block<i32s> x) { store(to, narrow(narrow(x.a, x.b), narrow(x.c, x.d))); }
};

// Formats of 32 bits: nothing to do.
template <class Vector> struct Plain32 {
    static constexpr int unit = 4;
    static constexpr int step = sizeof(Vector);

    static Block<Vector> read(const uint8_t *from)
    {
        return {load<Vector>(from), load<Vector>(from + step), load<Vector>(from + 2 * step),
                load<Vector>(from + 3 * step)};
    }
    static void write(uint8_t *to, Block<Vector> x)
    {
        store(to, x.a);
        store(to + step, x.b);
        store(to + 2 * step, x.c);
        store(to + 3 * step, x.d);
    }
};
using S32 = Plain32<i32s>;
using F32 = Plain32<f32s>;

struct F64 {
    static constexpr int unit = 8;
    static constexpr int step = 2 * sizeof(f64s);

    static Block<Pair<f64s>> read(const uint8_t *from)
    {
        return {readPair(from), readPair(from + step), readPair(from + 2 * step), readPair(from + 3 * step)};
    }
    static void write(uint8_t *to, Block<Pair<f64s>> x)
    {
        writePair(to, x.a);
        writePair(to + step, x.b);
        writePair(to + 2 * step, x.c);
        writePair(to + 3 * step, x.d);
    }

private:
    static Pair<f64s> readPair(const uint8_t *from) { return {load<f64s>(from), load<f64s>(from + sizeof(f64s))}; }
    static void writePair(uint8_t *to, Pair<f64s> x)
    {
        store(to, x.low);
        store(to + sizeof(f64s), x.high);
    }
};

// dst[i] = step(src[i]), a sample of format To from one of format From. The rows must not overlap.
template <class To, class From, class Step> inline void convert(void *dst, const void *src, uint64_t count, Step step)
{
    forBlocks<blockSamples>((ptrdiff_t)count,
                            [step](uint8_t *to, const uint8_t *from) { To::write(to, each(From::read(from), step)); },
                            Out<To::unit>{dst}, In<From::unit>{src});
}

// The same within one format; dst may be src.
template <class Format, class Step> inline void convertWithin(void *dst, const void *src, uint64_t count, Step step)
{
    forBlocksInPlace<blockSamples>(
        (ptrdiff_t)count,
        [step](uint8_t *to, const uint8_t *from) { Format::write(to, each(Format::read(from), step)); },
        Out<Format::unit>{dst}, In<Format::unit>{src});
}

} // namespace
