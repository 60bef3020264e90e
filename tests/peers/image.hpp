// Pictures in any layout that libavutil describes, the library's kernels on whole pictures, and their comparison,
// component by component.
#pragma once

#include <vela/vela.hpp>

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <array>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace vela::test {

using Procs = VcbColorSpaceProcs;
using Codes = std::vector<std::uint32_t>;

// Layouts are libavutil's descriptions, so that where a component lies is never our own opinion.
struct Image {
    const AVPixFmtDescriptor *layout;
    int width;
    int height;
    int planeCount = 0;
    std::array<std::vector<std::uint8_t>, 4> planes;
    std::array<int, 4> pitch{};

    Image(const AVPixFmtDescriptor *described, int columns, int lines);
    Image(AVPixelFormat format, int columns, int lines) : Image(av_pix_fmt_desc_get(format), columns, lines) {}

    bool halvesLines() const { return layout->log2_chroma_h > 0; }
    bool halvesLines(int plane) const { return halvesLines() && (plane == 1 || plane == 2); }
    void *row(int plane, int line) const;
    int widthOf(int component) const;
    int heightOf(int component) const;
    Codes line(int component, int y) const;
};

// Four floats R G B A: libavutil describes them from version 58 on.
const AVPixFmtDescriptor *floatPixels();

Image noise(const AVPixFmtDescriptor *layout);
// A crop of the photograph; `doubled` with every pixel four times, so that it does not matter which pixels of a block
// of four a chroma sample is taken from. Alpha is a ramp.
enum class Detail { photograph, doubled };
Image photograph(Detail detail);
// Converts by libswscale as exactly as it can; YUV is of limited range.
void convertBySwscale(Image &to, const Image &from, VcbCscMatrix matrix);
// The photograph in another layout, by libswscale and BT.601.
Image photographAs(AVPixelFormat format, Detail detail);

// --- Kernels ---------------------------------------------------------------------------------------------------

const Procs &procs();

const CscYuvToRgb *toRgb(VcbCscMatrix matrix, VcbCscRange yuvRange, int yuvDepth, int rgbDepth);
const CscRgbToYuv *toYuv(VcbCscMatrix matrix, VcbCscRange yuvRange, int rgbDepth, int yuvDepth);

template <class Result, class... Arguments, std::size_t... row, class... Given>
void callWithRows(Result (*kernel)(Arguments...), const std::vector<void *> &rows, std::index_sequence<row...>,
                  int width, Given... given)
{
    using All = std::tuple<Arguments...>;
    ASSERT_EQ(rows.size(), sizeof...(row));
    kernel(static_cast<std::tuple_element_t<row, All>>(rows[row])...,
           static_cast<std::tuple_element_t<sizeof...(row), All>>(width), given...);
}

std::vector<void *> rowsAt(const Image &image, int line, int lines);

// Runs a kernel over a picture; `given` is what follows the width.
template <class Result, class... Arguments, class... Given>
void convert(Result (*kernel)(Arguments...), Image &to, const Image &from, Given... given)
{
    const int lines = to.halvesLines() || from.halvesLines() ? 2 : 1;
    for (int y = 0; y < from.height; y += lines) {
        std::vector<void *> rows = rowsAt(to, y, lines);
        for (void *source : rowsAt(from, y, lines))
            rows.push_back(source);
        constexpr std::size_t count = sizeof...(Arguments) - 1 - sizeof...(Given);
        ASSERT_NO_FATAL_FAILURE(callWithRows(kernel, rows, std::make_index_sequence<count>(), from.width, given...));
    }
}

// --- Comparison ------------------------------------------------------------------------------------------------

struct Difference {
    double largest = 0;
    double mean = 0;
};
// Of codes of a component, in every pixel or in the even columns.
enum class Columns { all, even };
Difference difference(const Image &a, const Image &b, int component, Columns columns);

struct Tolerance {
    double largest;
    double mean;
    Columns columns = Columns::all;
};
// All components that both describe.
void expectNear(const Image &ours, const Image &theirs, Tolerance tolerance);

} // namespace vela::test
