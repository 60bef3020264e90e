// A reader, a step and a writer as a kernel.
#pragma once

#include "colorspace/kernels/chunks.h"

namespace {

// A kernel's arguments: the rows of the target, those of the source, the width, what the step asks for.
template <class Target, class Source, class Step, class Width, class To, class From, class Given> struct Kernel;

template <class Target, class Source, class Step, class Width, class... To, class... From, class... Given>
struct Kernel<Target, Source, Step, Width, List<To...>, List<From...>, List<Given...>> {
    static void convert(To... to, From... from, Width width, Given... given)
    {
        uint8_t *const targets[] = {(uint8_t *)to...};
        const uint8_t *const sources[] = {(const uint8_t *)from...};
        ptrdiff_t pixels = (ptrdiff_t)width;
        if constexpr (Target::pairsOnly || Source::pairsOnly)
            pixels &= ~(ptrdiff_t)1;
        if constexpr (isChunked<Target> || isChunked<Source>)
            convertInChunks<Target, Source>(targets, sources, pixels, Step(given...));
        else
            convertRows<Conversion<Target, Source, Step>>(targets, sources, pixels, Step(given...));
    }
};

template <class Target, class Source, class Step, class Width> struct KernelOf {
    static constexpr int lines = Conversion<Unpacked<Target>, Unpacked<Source>, Step>::lines;
    using Type = Kernel<Target, Source, Step, Width, typename RowsOf<Target, lines>::Types,
                        typename RowsOf<Source, lines>::ConstTypes, typename Step::Arguments>;
};

// The kernel that reads Source, takes the step and writes Target.
template <class Target, class Source, template <class, class> class Step, class Width = int32_t>
constexpr auto kernel =
    &KernelOf<Target, Source, Step<Unpacked<Target>, Unpacked<Source>>, Width>::Type::convert;

// DPX with alpha: the caller says in which order the components are.
template <int spare> void convertDpx4ToF32x4(float *dst, const uint32_t *src, int32_t width, int32_t reversed)
{
    (reversed ? kernel<F32x4, Dpx4<spare, true>, Full> : kernel<F32x4, Dpx4<spare, false>, Full>)(dst, src, width);
}
template <int spare> void convertF32x4ToDpx4(uint32_t *dst, const float *src, int32_t width, int32_t reversed)
{
    (reversed ? kernel<Dpx4<spare, true>, F32x4, Full> : kernel<Dpx4<spare, false>, F32x4, Full>)(dst, src, width);
}

} // namespace
