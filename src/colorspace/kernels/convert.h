// Reader, step and writer for a block of pixels.
#pragma once

#include "colorspace/kernels/steps.h"

namespace {

// One block of a conversion, by what its sides share between pixels.
template <class TargetLayout, class SourceLayout, class Step> struct Conversion {
    static constexpr int lines = halvesLines<TargetLayout>() || halvesLines<SourceLayout>() ? 2 : 1;
    using Targets = RowsOf<TargetLayout, lines>;
    using Sources = RowsOf<SourceLayout, lines>;
    using Samples = typename Step::Samples;

    static constexpr int size = Samples::lanes * Step::turns;
    static constexpr bool inPairs = TargetLayout::subsampled || SourceLayout::subsampled;
    // Odd pixels take the mean of two chroma samples.
    static constexpr bool upsamples = SourceLayout::subsampled && !TargetLayout::subsampled;
    static constexpr bool readsNext(int source) { return upsamples && Sources::shape(source).pixels == 2; }
    static constexpr bool mayBeTarget(int source)
    {
        return source == 0 && lines == 1 && Targets::count() == 1 && Targets::shape(0).unit == Sources::shape(0).unit &&
               Targets::shape(0).pixels == Sources::shape(0).pixels;
    }

    // Planes that need no change are copied as a whole, ahead of the blocks.
    static constexpr bool passes()
    {
        if constexpr (requires { Step::passes; })
            return Step::passes;
        return false;
    }
    static constexpr bool lumaPasses = passes() && TargetLayout::lumaInPlane && SourceLayout::lumaInPlane;
    static constexpr bool allPasses()
    {
        if constexpr (lumaPasses && TargetLayout::subsampled && SourceLayout::subsampled)
            return TargetLayout::order == Chroma::apart && SourceLayout::order == Chroma::apart &&
                   (lines == 1 || halvesLines<SourceLayout>());
        return false;
    }

    // Of the chroma of even pixels.
    static constexpr Chroma evensOrder()
    {
        if constexpr (requires { Step::evensOrder; })
            return Step::evensOrder;
        return Chroma::uv;
    }

    template <class Rows> static constexpr RowShape shapeInBlocks(int row)
    {
        return lumaPasses && row < lines ? RowShape{0} : Rows::shape(row);
    }
    static constexpr RowShape targetShape(int row) { return shapeInBlocks<Targets>(row); }
    static constexpr RowShape sourceShape(int row) { return shapeInBlocks<Sources>(row); }

    template <class Rows, class Byte> struct LineOf {
        Byte *plane[Rows::planes];

        VELA_FUSED LineOf(Byte *const *rows, int line, int turn)
        {
#pragma GCC unroll 4
            for (int i = 0; i < Rows::planes; ++i) {
                const int row = Rows::indexOf(i, line);
                plane[i] = rows[row] + Rows::shape(row).bytes(turn * Samples::lanes);
            }
        }
    };
    using SourceLine = LineOf<Sources, const uint8_t>;
    using TargetLine = LineOf<Targets, uint8_t>;

    VELA_FUSED static void block(uint8_t *const *to, const uint8_t *const *from, const Step &step)
    {
        blockAt<false>(to, from, step);
    }
    // At the end of a row the last pair is its own next.
    template <bool isEnd>
    VELA_FUSED static void blockAt(uint8_t *const *to, const uint8_t *const *from, const Step &step)
    {
#pragma GCC unroll 4
        for (int turn = 0; turn < Step::turns; ++turn) {
            const SourceLine source(from, 0, turn);
            const TargetLine target(to, 0, turn);
            const SourceLine lowerSource(from, lines - 1, turn);
            const TargetLine lowerTarget(to, lines - 1, turn);
            if constexpr (!SourceLayout::subsampled)
                fromWholePixels(target.plane, lowerTarget.plane, source.plane, lowerSource.plane, step);
            else if constexpr (!TargetLayout::subsampled)
                upsample(target.plane, lowerTarget.plane, source.plane, lowerSource.plane, step,
                         isEnd && turn == Step::turns - 1);
            else
                keepSubsampled(target.plane, lowerTarget.plane, source.plane, lowerSource.plane, step);
        }
    }

    VELA_FUSED static void fromWholePixels(Line target, Line lowerTarget, ConstLine source, ConstLine lowerSource,
                                           const Step &step)
    {
        const auto upper = Step::load(source);
        if constexpr (!TargetLayout::subsampled) {
            storePixels(target, step(upper));
        } else if constexpr (lines == 1) {
            putLine<evensOrder()>(target, step.luma(upper), step.chroma(Step::evens(upper)));
        } else {
            storeLuma(target, step.luma(upper));
            const auto lower = Step::load(lowerSource);
            storeLuma(lowerTarget, step.luma(lower));
            TargetLayout::template storePairs<evensOrder()>(target, step.chroma(Step::meanOfEvens(upper, lower)));
        }
    }

    template <class Block> VELA_FUSED static void storePixels(Line target, const Block &block)
    {
        if constexpr (lumaPasses)
            TargetLayout::storeChroma(target, block);
        else
            TargetLayout::store(target, block);
    }
    template <class Codes> VELA_FUSED static void storePixels(Line target, const PixelFours<Codes> &block)
    {
        TargetLayout::storeFours(target, block);
    }
    VELA_FUSED static void storePixels(Line target, const PixelWords &block) { TargetLayout::store(target, block); }
    template <class Luma> VELA_FUSED static void storeLuma(Line target, Luma y)
    {
        if constexpr (!lumaPasses)
            TargetLayout::storeLuma(target, y);
    }

    VELA_FUSED static void upsample(Line target, Line lowerTarget, ConstLine source, ConstLine lowerSource,
                                    const Step &step, bool isEnd)
    {
        const Samples even = SourceLayout::template loadPairs<Samples, Chroma::uv>(source, 0);
        const Samples next = isEnd ? nextPairs(even) : SourceLayout::template loadPairs<Samples, Chroma::uv>(source, 1);
        const ChromaPairs<Samples> chroma = {even, average(even, next)};
        storePixels(target, step(SourceLayout::template loadLuma<Samples>(source), chroma));
        if constexpr (lines == 2) // the lower line has the same chroma
            storePixels(lowerTarget, step(SourceLayout::template loadLuma<Samples>(lowerSource), chroma));
    }

    VELA_FUSED static void keepSubsampled(Line target, Line lowerTarget, ConstLine source, ConstLine lowerSource,
                                          const Step &step)
    {
        // In the order that costs least: nothing here looks at it.
        constexpr Chroma order = SourceLayout::order != Chroma::apart   ? SourceLayout::order
                                 : TargetLayout::order != Chroma::apart ? TargetLayout::order
                                                                        : Chroma::apart;
        Samples pairs = SourceLayout::template loadPairs<Samples, order>(source, 0);
        if constexpr (lines == 2 && !halvesLines<SourceLayout>())
            pairs = average(pairs, SourceLayout::template loadPairs<Samples, order>(lowerSource, 0));
        const auto chroma = step.chroma(pairs);
        putLine<order>(target, step.luma(SourceLayout::template loadLuma<Samples>(source)), chroma);
        if constexpr (lines == 2) {
            const auto lower = step.luma(SourceLayout::template loadLuma<Samples>(lowerSource));
            if constexpr (halvesLines<TargetLayout>())
                storeLuma(lowerTarget, lower);
            else
                putLine<order>(lowerTarget, lower, chroma);
        }
    }

    template <Chroma order, class Codes> VELA_FUSED static void putLine(Line target, Codes y, Codes pairs)
    {
        if constexpr (TargetLayout::packed) {
            TargetLayout::template store<order>(target, y, pairs);
        } else {
            storeLuma(target, y);
            TargetLayout::template storePairs<order>(target, pairs);
        }
    }
};

// Copies rows that pass unchanged; where source and target are one row, it stays.
template <class Rows, class SourceRows>
inline void passPlane(uint8_t *const *to, const uint8_t *const *from, ptrdiff_t n, int plane, int lines)
{
    for (int line = 0; line < lines; ++line) {
        uint8_t *target = to[Rows::indexOf(plane, line)];
        const uint8_t *source = from[SourceRows::indexOf(plane, line)];
        if (target != source)
            memcpy(target, source, (size_t)Rows::shape(Rows::indexOf(plane, line)).bytes(n));
    }
}

// `more` promises that n is a number of whole blocks and that the source rows go on behind them.
template <class Inner, class Step>
inline void convertPlanes(uint8_t *const *to, const uint8_t *const *from, ptrdiff_t n, const Step &step,
                          bool more = false)
{
    using Targets = typename Inner::Targets;
    using Sources = typename Inner::Sources;
    if (n <= 0)
        return;
    if constexpr (Inner::lumaPasses)
        passPlane<Targets, Sources>(to, from, n, 0, Inner::lines);
    if constexpr (Inner::allPasses()) {
        for (int plane = 1; plane < Targets::planes; ++plane)
            passPlane<Targets, Sources>(to, from, n, plane, Targets::linesOf(plane));
    } else if (more) {
        runBlocks<Inner>(to, from, n, step);
    } else {
        convertRows<Inner>(to, from, n, step);
    }
}

} // namespace
