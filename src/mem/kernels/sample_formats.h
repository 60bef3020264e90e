// The sample formats as they lie in memory, and the loop that turns rows of one into rows of another:
// reader, step lane by lane, writer.
#pragma once

namespace {

// A block of samples, whatever their format: four registers of 32-bit lanes, or of pairs of 64-bit ones.
template <class Vector> struct SampleBlock {
    Vector a, b, c, d;
};
constexpr int blockSamples = 4 * i32s::lanes;

template <class Vector, class Step> inline auto each(SampleBlock<Vector> x, Step step)
{
    return SampleBlock<decltype(step(x.a))>{step(x.a), step(x.b), step(x.c), step(x.d)};
}

// The words in the upper halves of 32-bit lanes, zeros below.
inline i32s topLow(u16s x) { return as<i32s>(interleaveLow(zero<u16s>(), x)); }
inline i32s topHigh(u16s x) { return as<i32s>(interleaveHigh(zero<u16s>(), x)); }

// A format reads as many samples as there are 32-bit lanes, or a block of them. Formats of fewer than 32 bits write
// blocks alone. Signed samples are read into the top of their lanes, which makes 32-bit samples of all of them; written
// are plain integers, limited to the range of the format but for S24.
struct S8 {
    static constexpr int unit = 1;

    static i32s read(const uint8_t *from) { return loadTop8(from); }
    static SampleBlock<i32s> readBlock(const uint8_t *from)
    {
        const u8s x = load<u8s>(from);
        const u16s low = as<u16s>(interleaveLow(zero<u8s>(), x));
        const u16s high = as<u16s>(interleaveHigh(zero<u8s>(), x));
        return {topLow(low), topHigh(low), topLow(high), topHigh(high)};
    }
    static void writeBlock(uint8_t *to, SampleBlock<i32s> x)
    {
        store(to, narrowSigned(narrow(x.a, x.b), narrow(x.c, x.d)));
    }
};

struct S16 {
    static constexpr int unit = 2;

    static i32s read(const uint8_t *from) { return loadTop16(from); }
    static SampleBlock<i32s> readBlock(const uint8_t *from)
    {
        const u16s low = load<u16s>(from);
        const u16s high = load<u16s>(from + sizeof(u16s));
        return {topLow(low), topHigh(low), topLow(high), topHigh(high)};
    }
    static void writeBlock(uint8_t *to, SampleBlock<i32s> x)
    {
        store(to, narrow(x.a, x.b));
        store(to + sizeof(i16s), narrow(x.c, x.d));
    }
};

struct S24 {
    static constexpr int unit = 3;

    static i32s read(const uint8_t *from) { return loadTop24(from); }
    // The low three bytes, not limited.
    static void writeBlock(uint8_t *to, SampleBlock<i32s> x)
    {
        storePixels24(to, as<u32s>(x.a), as<u32s>(x.b), as<u32s>(x.c), as<u32s>(x.d));
    }
};

// Unsigned bytes, read and written as plain integers.
struct U8 {
    static constexpr int unit = 1;

    static i32s read(const uint8_t *from) { return loadAsWide(from); }
    static SampleBlock<i32s> readBlock(const uint8_t *from)
    {
        const u8s x = load<u8s>(from);
        const u16s low = widenLow(x);
        const u16s high = widenHigh(x);
        return {as<i32s>(widenLow(low)), as<i32s>(widenHigh(low)), as<i32s>(widenLow(high)), as<i32s>(widenHigh(high))};
    }
    static void writeBlock(uint8_t *to, SampleBlock<i32s> x) { store(to, narrow(narrow(x.a, x.b), narrow(x.c, x.d))); }
};

struct S32 {
    static constexpr int unit = 4;

    static i32s read(const uint8_t *from) { return load<i32s>(from); }
    static void write(uint8_t *to, i32s x) { store(to, x); }
};

struct F32 {
    static constexpr int unit = 4;

    static f32s read(const uint8_t *from) { return load<f32s>(from); }
    static void write(uint8_t *to, f32s x) { store(to, x); }
};

struct F64 {
    static constexpr int unit = 8;

    static Pair<f64s> read(const uint8_t *from) { return {load<f64s>(from), load<f64s>(from + sizeof(f64s))}; }
    static void write(uint8_t *to, Pair<f64s> x)
    {
        store(to, x.low);
        store(to + sizeof(f64s), x.high);
    }
};

// Formats from 24 bits on read a block as four single registers.
template <class Format> inline auto readBlock(const uint8_t *from)
{
    constexpr int step = Format::unit * i32s::lanes;
    if constexpr (Format::unit < 3) {
        return Format::readBlock(from);
    } else {
        return SampleBlock<decltype(Format::read(from))>{Format::read(from), Format::read(from + step),
                                                         Format::read(from + 2 * step), Format::read(from + 3 * step)};
    }
}

// One block of dst[i] = step(src[i]), a sample of format To from one of format From. Registers are stored in their
// order; where reading is no work each is stored before the next is loaded (Zen 4: up to a tenth faster).
template <class To, class From, class Step> inline void convertBlock(uint8_t *to, const uint8_t *from, Step step)
{
    constexpr int toStep = To::unit * i32s::lanes;
    constexpr int fromStep = From::unit * i32s::lanes;
    if constexpr (To::unit < 4) {
        To::writeBlock(to, each(readBlock<From>(from), step));
    } else if constexpr (From::unit < 4) {
        const auto x = readBlock<From>(from);
        To::write(to, step(x.a));
        To::write(to + toStep, step(x.b));
        To::write(to + 2 * toStep, step(x.c));
        To::write(to + 3 * toStep, step(x.d));
    } else {
        To::write(to, step(From::read(from)));
        To::write(to + toStep, step(From::read(from + fromStep)));
        To::write(to + 2 * toStep, step(From::read(from + 2 * fromStep)));
        To::write(to + 3 * toStep, step(From::read(from + 3 * fromStep)));
    }
}

// Rows of it, which must not overlap.
template <class To, class From, class Step> inline void convert(void *dst, const void *src, uint64_t count, Step step)
{
    const auto block = [step](uint8_t *to, const uint8_t *from) { convertBlock<To, From>(to, from, step); };
    const Out<To::unit> out{dst};
    const In<From::unit> in{src};
    if constexpr (To::unit < 4) {
        forBlocks<blockSamples>((ptrdiff_t)count, block, out, in);
    } else {
        const auto part = [step](uint8_t *to, const uint8_t *from) { To::write(to, step(From::read(from))); };
        forBlocksAndParts<blockSamples, i32s::lanes>((ptrdiff_t)count, block, part, out, in);
    }
}

// Rows of one format; dst may be src.
template <class Format, class Step> inline void convertWithin(void *dst, const void *src, uint64_t count, Step step)
{
    forBlocksInPlace<blockSamples>(
        (ptrdiff_t)count, [step](uint8_t *to, const uint8_t *from) { convertBlock<Format, Format>(to, from, step); },
        Out<Format::unit>{dst}, In<Format::unit>{src});
}

} // namespace
