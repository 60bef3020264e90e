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

    static constexpr int size = Samples::lanes;
    static constexpr bool inPairs = TargetLayout::subsampled || SourceLayout::subsampled;
    // Odd pixels take the mean of two chroma samples.
    static constexpr bool upsamples = SourceLayout::subsampled && !TargetLayout::subsampled;
    static constexpr bool readsNext(int source) { return upsamples && Sources::shape(source).pixels == 2; }
    static constexpr bool mayBeTarget(int source)
    {
        return source == 0 && lines == 1 && Targets::count() == 1 && Targets::shape(0).unit == Sources::shape(0).unit &&
               Targets::shape(0).pixels == Sources::shape(0).pixels;
    }

    template <class Rows, class Byte> struct LineOf {
        Byte *plane[Rows::planes];

        VELA_FUSED LineOf(Byte *const *rows, int line)
        {
#pragma GCC unroll 4
            for (int i = 0; i < Rows::planes; ++i)
                plane[i] = rows[Rows::indexOf(i, line)];
        }
    };

    VELA_FUSED static ChromaPairs<Samples> upsampled(ConstLine line)
    {
        const Samples pairs = SourceLayout::template loadPairs<Samples>(line, 0);
        return {pairs, average(pairs, SourceLayout::template loadPairs<Samples>(line, 1))};
    }

    VELA_FUSED static void block(uint8_t *const *to, const uint8_t *const *from, const Step &step)
    {
        if constexpr (SourceLayout::subsampled)
            fromSubsampled(to, from, step);
        else
            fromWholePixels(to, from, step);
    }

    VELA_FUSED static void fromWholePixels(uint8_t *const *to, const uint8_t *const *from, const Step &step)
    {
        const LineOf<Sources, const uint8_t> source(from, 0);
        const LineOf<Targets, uint8_t> target(to, 0);
        const auto upper = Step::load(source.plane);
        if constexpr (!TargetLayout::subsampled) {
            static_assert(lines == 1);
            TargetLayout::store(target.plane, step(upper));
        } else if constexpr (lines == 1) {
            putLine(target.plane, step.luma(upper), step.chroma(Step::evens(upper)));
        } else {
            const LineOf<Sources, const uint8_t> lowerSource(from, 1);
            const LineOf<Targets, uint8_t> lowerTarget(to, 1);
            const auto evens = Step::evens(upper);
            TargetLayout::storeLuma(target.plane, step.luma(upper));
            const auto lower = Step::load(lowerSource.plane);
            TargetLayout::storeLuma(lowerTarget.plane, step.luma(lower));
            TargetLayout::storePairs(target.plane, step.chroma(Step::mean(evens, Step::evens(lower))));
        }
    }

    VELA_FUSED static void fromSubsampled(uint8_t *const *to, const uint8_t *const *from, const Step &step)
    {
        const LineOf<Sources, const uint8_t> source(from, 0);
        const LineOf<Targets, uint8_t> target(to, 0);
        const LineOf<Sources, const uint8_t> lowerSource(from, lines - 1);
        const LineOf<Targets, uint8_t> lowerTarget(to, lines - 1);
        const Samples upper = SourceLayout::template loadLuma<Samples>(source.plane);
        if constexpr (!TargetLayout::subsampled) {
            const ChromaPairs<Samples> chroma = upsampled(source.plane);
            TargetLayout::store(target.plane, step(upper, chroma));
            if constexpr (lines == 2) // the lower line has the same chroma
                TargetLayout::store(lowerTarget.plane,
                                    step(SourceLayout::template loadLuma<Samples>(lowerSource.plane), chroma));
        } else {
            Samples pairs = SourceLayout::template loadPairs<Samples>(source.plane, 0);
            if constexpr (lines == 1) {
                putLine(target.plane, step.luma(upper), step.chroma(pairs));
            } else {
                const Samples lower = SourceLayout::template loadLuma<Samples>(lowerSource.plane);
                if constexpr (!halvesLines<SourceLayout>())
                    pairs = average(pairs, SourceLayout::template loadPairs<Samples>(lowerSource.plane, 0));
                pairs = step.chroma(pairs);
                putLine(target.plane, step.luma(upper), pairs);
                if constexpr (halvesLines<TargetLayout>())
                    TargetLayout::storeLuma(lowerTarget.plane, step.luma(lower));
                else
                    putLine(lowerTarget.plane, step.luma(lower), pairs);
            }
        }
    }

    VELA_FUSED static void putLine(Line target, Samples y, Samples pairs)
    {
        if constexpr (TargetLayout::packed) {
            TargetLayout::store(target, y, pairs);
        } else {
            TargetLayout::storeLuma(target, y);
            TargetLayout::storePairs(target, pairs);
        }
    }
};

} // namespace
