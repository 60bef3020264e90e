// A conversion of a line, or of a pair of lines: reader, chroma, step, writer.
#pragma once

#include "oracles/color/hues.h"

#include <vela/base.h>

#include <array>
#include <tuple>
#include <utility>

namespace {

inline std::int32_t mean(std::int32_t a, std::int32_t b) { return (a + b + 1) >> 1; }
inline float mean(float a, float b) { return (a + b) * 0.5F; }

template <class S> Pixel<S> mean(const Pixel<S> &a, const Pixel<S> &b)
{
    return {{mean(a.c[0], b.c[0]), mean(a.c[1], b.c[1]), mean(a.c[2], b.c[2])}, a.a};
}

// The source with its chroma where a destination wants it. Chroma is sited on the even pixel of a pair, and midway
// between the lines of a patch.
template <class Src> struct Picture {
    std::array<std::array<const void *, 3>, 2> lines;
    std::int64_t width;

    // Of pixel x: the chroma of odd pixels lies between two samples, but for the last one.
    Pixel<typename Src::Sample> pixel(int line, std::int64_t x) const
    {
        if constexpr (Src::chroma == Chroma::everyPixel) {
            return Src::read(rows(line), x);
        } else {
            const std::int64_t k = x / 2;
            const bool between = x % 2 == 1 && k + 1 < pairsIn(width);
            const auto chroma = [&](int c) {
                const auto own = Src::component(rows(line), c, k);
                return between ? mean(own, Src::component(rows(line), c, k + 1)) : own;
            };
            return {{Src::component(rows(line), 0, x), chroma(1), chroma(2)}, 0};
        }
    }

    // Of pixels 2k and 2k + 1: the even one speaks for both.
    Pixel<typename Src::Sample> pair(int line, std::int64_t k) const
    {
        if constexpr (Src::chroma == Chroma::everyPixel)
            return Src::read(rows(line), 2 * k);
        else
            return {{Src::component(rows(line), 0, 2 * k), Src::component(rows(line), 1, k),
                     Src::component(rows(line), 2, k)},
                    0};
    }

    // Of the pairs of both lines.
    Pixel<typename Src::Sample> patch(std::int64_t k) const
    {
        if constexpr (Src::chroma == Chroma::patch)
            return pair(0, k);
        else
            return mean(pair(0, k), pair(1, k));
    }

private:
    ConstRows rows(int line) const { return lines[static_cast<std::size_t>(line)].data(); }
};

// What the destination alone has is set.
template <class Layout> constexpr bool takesAlpha = Layout::hasAlpha && (Layout::bits[3] == 8 || Layout::bits[3] == 16);

template <class Layout> typename Layout::Sample opaque()
{
    if constexpr (isFloat(Layout::bits[3]))
        return 1;
    else
        return largestOf(Layout::bits[3]);
}

template <class Dst, class Src, template <class, class> class Rule> class Conversion {
    static constexpr int lines = Dst::chroma == Chroma::patch || Src::chroma == Chroma::patch ? 2 : 1;
    static constexpr bool setsAlpha = Dst::hasAlpha && !Src::hasAlpha;

    // Pointers to a plane: one for each line, or one for both where its chroma serves a patch.
    template <class Layout> static constexpr int pointersTo(int plane)
    {
        return Layout::chroma == Chroma::patch && Layout::isHalved(plane) ? 1 : lines;
    }
    template <class Layout> static constexpr std::size_t pointers()
    {
        int sum = 0;
        for (int plane = 0; plane < Layout::planes; ++plane)
            sum += pointersTo<Layout>(plane);
        return static_cast<std::size_t>(sum);
    }
    template <class Layout, class Pointer> static auto planesOfLines(const Pointer *rows)
    {
        std::array<std::array<Pointer, 3>, 2> planes{};
        for (std::size_t plane = 0; plane < Layout::planes; ++plane) {
            const int count = pointersTo<Layout>(static_cast<int>(plane));
            planes[0][plane] = rows[0];
            planes[1][plane] = rows[count - 1];
            rows += count;
        }
        return planes;
    }

    template <class Result, class... Arguments> using Kernel = Result(VCB_CALL *)(Arguments...);

public:
    // Has whatever signature of such a conversion is asked for.
    template <class Result, class... Arguments> constexpr operator Kernel<Result, Arguments...>() const
    {
        return &run<Result, Arguments...>;
    }

    // Destination rows, source rows, width, what the step takes, alpha. A pointer that is returned is the end of the
    // first destination row. Flattened, so that the compiler sees each conversion whole, in however large a file.
    template <class Result, class... Arguments> [[gnu::flatten]] static Result VCB_CALL run(Arguments... arguments)
    {
        const auto all = std::tuple(arguments...);
        return convert<Result>(all, std::make_index_sequence<pointers<Dst>()>(),
                               std::make_index_sequence<pointers<Src>()>());
    }

private:
    template <class Result, class All, std::size_t... D, std::size_t... S>
    static Result convert(const All &all, std::index_sequence<D...>, std::index_sequence<S...>)
    {
        constexpr std::size_t width = sizeof...(D) + sizeof...(S);
        constexpr std::size_t end = std::tuple_size_v<All> - (setsAlpha && takesAlpha<Dst> ? 1 : 0);
        void *const destinations[] = {std::get<D>(all)...};
        const void *const sources[] = {std::get<sizeof...(D) + S>(all)...};

        std::int64_t pixels = std::max<std::int64_t>(std::get<width>(all), 0);
        if constexpr (Dst::wholePairs || Src::wholePairs)
            pixels = pixels / 2 * 2;
        const auto rule = ruleOf<width + 1>(all, std::make_index_sequence<end - width - 1>());
        typename Dst::Sample alpha{};
        if constexpr (setsAlpha && takesAlpha<Dst>)
            alpha = std::get<end>(all);
        else if constexpr (setsAlpha)
            alpha = opaque<Dst>();

        const Picture<Src> picture{planesOfLines<Src>(sources), pixels};
        const auto to = planesOfLines<Dst>(destinations);
        writeRows(to, picture, rule, alpha);
        if constexpr (!std::is_void_v<Result>)
            return std::get<0>(all) + pixels;
    }

    template <std::size_t first, class All, std::size_t... I>
    static Rule<Dst, Src> ruleOf(const All &all, std::index_sequence<I...>)
    {
        return Rule<Dst, Src>{std::get<first + I>(all)...};
    }

    static void writeRows(const std::array<std::array<void *, 3>, 2> &to, const Picture<Src> &picture,
                          const Rule<Dst, Src> &rule, typename Dst::Sample alpha)
    {
        for (int line = 0; line < lines; ++line) {
            Rows rows = to[static_cast<std::size_t>(line)].data();
            const auto luma = [&](std::int64_t x) { return rule(picture.pixel(line, x)).c[0]; };
            const auto chroma = [&](std::int64_t k) { return rule(picture.pair(line, k)); };
            if constexpr (Dst::chroma == Chroma::everyPixel)
                writePixels(rows, picture.width, [&](std::int64_t x) {
                    Pixel<typename Dst::Sample> pixel = rule(picture.pixel(line, x));
                    if constexpr (setsAlpha)
                        pixel.a = alpha;
                    return pixel;
                });
            else if constexpr (std::is_same_v<Dst, V210>)
                Dst::writeRow(rows, picture.width, luma, chroma);
            else if constexpr (Dst::wholePairs)
                writePairs(rows, picture.width, luma, chroma);
            else
                writeLuma(rows, picture.width, luma);
            if constexpr (Dst::chroma == Chroma::pair && !Dst::wholePairs)
                writeChroma(rows, picture.width, chroma);
        }
        if constexpr (Dst::chroma == Chroma::patch)
            writeChroma(to[0].data(), picture.width, [&](std::int64_t k) { return rule(picture.patch(k)); });
    }

    // Two at a time: even and odd pixels of shared chroma differ.
    template <class Pixels> static void writePixels(Rows rows, std::int64_t width, const Pixels &pixels)
    {
        if constexpr (Src::chroma == Chroma::everyPixel) {
            for (std::int64_t x = 0; x < width; ++x)
                Dst::write(rows, x, pixels(x));
        } else {
            for (std::int64_t x = 0; x + 1 < width; x += 2) {
                Dst::write(rows, x, pixels(x));
                Dst::write(rows, x + 1, pixels(x + 1));
            }
            if (width % 2 == 1)
                Dst::write(rows, width - 1, pixels(width - 1));
        }
    }

    template <class Luma, class ChromaOf>
    static void writePairs(Rows rows, std::int64_t width, const Luma &luma, const ChromaOf &chroma)
    {
        for (std::int64_t k = 0; k < width / 2; ++k) {
            const auto samples = chroma(k);
            Dst::put(rows, 0, 2 * k, luma(2 * k));
            Dst::put(rows, 1, k, samples.c[1]);
            Dst::put(rows, 0, 2 * k + 1, luma(2 * k + 1));
            Dst::put(rows, 2, k, samples.c[2]);
        }
    }

    template <class Luma> static void writeLuma(Rows rows, std::int64_t width, const Luma &luma)
    {
        for (std::int64_t x = 0; x < width; ++x)
            Dst::put(rows, 0, x, luma(x));
    }

    template <class ChromaOf> static void writeChroma(Rows rows, std::int64_t width, const ChromaOf &chroma)
    {
        for (std::int64_t k = 0; k < pairsIn(width); ++k) {
            const auto samples = chroma(k);
            Dst::put(rows, 1, k, samples.c[1]);
            Dst::put(rows, 2, k, samples.c[2]);
        }
    }
};

} // namespace
