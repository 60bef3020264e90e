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
        if constexpr (isSpecial<Step>()) {
            if (Step::Special::fits(given...)) {
                run(targets, sources, pixels, typename Step::Special(given...));
                return;
            }
        }
        run(targets, sources, pixels, Step(given...));
    }

private:
    // A step that does the same with less work, for arguments that fit it.
    template <class Any> static constexpr bool isSpecial()
    {
        if constexpr (requires(Given... given) { Any::Special::fits(given...); })
            return true;
        return false;
    }
    template <class AnyStep>
    static void run(uint8_t *const *to, const uint8_t *const *from, ptrdiff_t pixels, const AnyStep &step)
    {
        if constexpr (isChunked<Target> || isChunked<Source>)
            convertInChunks<Target, Source>(to, from, pixels, step);
        else
            convertPlanes<Conversion<Target, Source, AnyStep>>(to, from, pixels, step);
    }
};

template <class Target, class Source, class Step, class Width> struct KernelOf {
    static constexpr int lines = Conversion<Unpacked<Target>, Unpacked<Source>, Step>::lines;
    using Type = Kernel<Target, Source, Step, Width, typename RowsOf<Target, lines>::Types,
                        typename RowsOf<Source, lines>::ConstTypes, typename Step::Arguments>;
};

// The kernel that reads Source, takes the step and writes Target.
template <class Target, class Source, template <class, class> class Step, class Width = int32_t>
constexpr auto kernel = &KernelOf<Target, Source, Step<Unpacked<Target>, Unpacked<Source>>, Width>::Type::convert;

// Layouts whose samples have one order on both sides, as planes of `samples` a pixel. Width in pixels, or whole pairs.
enum class WidthIn { pixels, pairs };
template <int samples, WidthIn unit, class Target, class Source, template <class, class> class Step, class To,
          class From>
void convertSamples(To *to, const From *from, int32_t width)
{
    using Typed = void (*)(To *, const From *, int64_t);
    const Typed convert = kernel<Target, Source, Step, int64_t>;
    convert(to, from, (int64_t)samples * (unit == WidthIn::pixels ? width : width & ~1));
}
template <class Elements> struct OnlyElement;
template <class Element> struct OnlyElement<List<Element>> {
    using Type = Element;
};
template <class Layout> using ElementOf = typename OnlyElement<typename Layout::Elements>::Type;
template <int samples, class Target, class Source, template <class, class> class Step, WidthIn unit = WidthIn::pixels>
constexpr auto sampleKernel =
    &convertSamples<samples, unit, Target, Source, Step, ElementOf<Target>, ElementOf<Source>>;

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
