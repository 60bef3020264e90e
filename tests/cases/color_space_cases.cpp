#include "oracles/color/layouts.h"
#include "support/kernel_tables.hpp"

#include <limits>

namespace vela::test {
namespace {

// Arguments, and the ways in which rows may coincide.
struct Shape {
    std::vector<Argument> arguments;
    std::vector<SharedRows> shared = {};
};

// What the oracles know of a layout.
struct Layout {
    Model model;
    Chroma chroma;
    int bits; // of components
    int alphaBits;
    int planes;
    bool wholePairs;
    std::uint32_t largest;
    std::int64_t (*bytes)(int plane, std::int64_t width);

    bool isYuvIn(int count) const { return model == Model::yuv && planes >= count; }
};

template <class L>
constexpr Layout layoutOf{.model = L::model,
                          .chroma = L::chroma,
                          .bits = L::bits[0],
                          .alphaBits = L::bits[3],
                          .planes = L::planes,
                          .wholePairs = L::wholePairs,
                          .largest = L::largest,
                          .bytes = L::bytes};

// --- Coefficient blocks -------------------------------------------------------------------------------------------

void build(CscYuvToRgb &block, double kr, double kb, VcbCscRange yuv, int yuvDepth, VcbCscRange rgb, int rgbDepth)
{
    CscBuildYuvToRgb(&block, kr, kb, yuv, yuvDepth, rgb, rgbDepth);
}

void build(CscRgbToYuv &block, double kr, double kb, VcbCscRange yuv, int yuvDepth, VcbCscRange rgb, int rgbDepth)
{
    CscBuildRgbToYuv(&block, kr, kb, rgb, rgbDepth, yuv, yuvDepth);
}

enum class Form { integer, floats };

// What a kernel of the other form has no business with.
template <class Block> void spoil(Block &block, Form form)
{
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            if (form == Form::floats)
                block.q[row][column] = 0x5A5A;
            else
                block.f[row][column] = std::numeric_limits<float>::quiet_NaN();
        }
        if (form == Form::floats)
            block.qBias[row] = 0x5A5A5A5A;
        else
            block.fBias[row] = block.fOff[row] = 1e30F;
    }
}

template <class Block> void fillMatrix(Block &block, const std::int16_t (&q)[3][3], const float (&f)[3][3])
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            block.q[row][column] = q[row][column];
            block.f[row][column] = f[row][column];
        }
}

// Every matrix and range, and matrices that no builder makes: the largest of 16 bits, with floats beyond any code, and
// one that passes a component of each column on.
template <class Block> Argument coefficients(Form form, int yuvDepth, int rgbDepth, bool toGrey)
{
    std::vector<Block> all;
    const auto add = [&](VcbCscMatrix matrix, VcbCscRange yuv, VcbCscRange rgb) {
        double kr = 0;
        double kb = 0;
        CscMatrixWeights(matrix, &kr, &kb);
        build(all.emplace_back(), kr, kb, yuv, yuvDepth, rgb, rgbDepth);
    };
    for (const VcbCscMatrix matrix : {VCB_CSC_BT601, VCB_CSC_BT2020_NCL, VCB_CSC_SMPTE240M, VCB_CSC_BT709})
        for (const VcbCscRange yuv : {VCB_CSC_FULL, VCB_CSC_LIMITED})
            for (const VcbCscRange rgb : {VCB_CSC_LIMITED, VCB_CSC_FULL})
                if (yuv == VCB_CSC_FULL || !toGrey)
                    add(matrix, yuv, rgb);
    Block extreme = all[0];
    fillMatrix(extreme, {{32767, -32768, 32767}, {-32768, -32768, 32767}, {1, -32768, -32768}},
               {{3e7F, -2e7F, 1e7F}, {1000, -70, 0.5F}, {-1e-3F, 1e20F, -1}});
    Block passing = all[0];
    const auto one = static_cast<std::int16_t>(1 << std::min(passing.qShift, 14));
    fillMatrix(passing, {{0, one, 0}, {0, 0, one}, {one, 0, 0}}, {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}});
    for (Block &block : {std::ref(extreme), std::ref(passing)}) {
        spoil(block, form);
        all.insert(all.begin(), block);
    }
    return blocks(all);
}

Argument coefficients(Form form, const Layout &to, const Layout &from)
{
    if (from.model == Model::yuv)
        return coefficients<CscYuvToRgb>(form, from.bits, to.bits, false);
    return coefficients<CscRgbToYuv>(form, to.bits, from.bits, to.model == Model::single);
}

// --- Parameters ---------------------------------------------------------------------------------------------------

Argument byte() { return number({0, 255, 1, 128, 0x5A}); }
Argument word() { return number({0, 65535, 0x8001, 0x5AA5}); }
Argument background() { return number({0, 0xFFFFFFFF, 0x00FF00FF, 0xFF80407F}); }
Argument reversed() { return numbers<std::int32_t>({1, -256, INT32_MIN, 0}); }
Argument alphaOf16Bits() { return numbers<std::int32_t>({0, -1, 40000, -40000, INT32_MIN, INT32_MAX, 300, 255}); }

enum class Step {
    Move,
    VideoDepth,
    FullDepth,
    Float,
    ClampToUnit,
    IntegerMatrix,
    FloatMatrix,
    Grey,
    GreyWithoutChroma,
    Premultiply,
    Unpremultiply,
    SetAlpha,
    ExtractAlpha,
    ScaleAlpha,
    Flatten,
    FlattenPremultiplied,
    ToFullRange,
    ToLimitedRange,
    ChromaToFullRange,
    ChromaToLimitedRange,
    ToHsv,
    FromHsv,
    ToHsl,
    FromHsl,
    ToYuv2020,
};

Argument alphaOf(const Layout &layout)
{
    if (layout.alphaBits == 32)
        return numbers<float>({0, -1, std::numeric_limits<float>::quiet_NaN(), 0.7F});
    return layout.alphaBits == 8 ? byte() : word();
}

std::vector<Argument> parametersOf(Step step, const Layout &to, const Layout &from)
{
    switch (step) {
    case Step::IntegerMatrix:
        return {coefficients(Form::integer, to, from)};
    case Step::FloatMatrix:
        return {coefficients(Form::floats, to, from)};
    case Step::SetAlpha:
        return {alphaOf(to)};
    case Step::ScaleAlpha:
        return {byte()};
    case Step::Flatten:
    case Step::FlattenPremultiplied:
        return {background()};
    default:
        return {};
    }
}

// --- Rows ---------------------------------------------------------------------------------------------------------

// A plane and the arguments that are its rows: one for each line, but for chroma that serves a patch.
struct Plane {
    const Layout *layout;
    int number;
    std::size_t first, rows;

    std::int64_t bytes(std::int64_t width) const { return layout->bytes(number, width); }
};

std::vector<Plane> planesOf(const Layout &layout, std::size_t first, std::size_t lines)
{
    std::vector<Plane> planes;
    for (int number = 0; number < layout.planes; ++number) {
        const bool ofPatch = layout.chroma == Chroma::patch && number > 0;
        planes.push_back({&layout, number, first, ofPatch ? 1 : lines});
        first += planes.back().rows;
    }
    return planes;
}

bool areAsLong(const Plane &a, const Plane &b)
{
    for (std::int64_t width = 1; width < 13; ++width)
        if (a.bytes(width) != b.bytes(width))
            return false;
    return true;
}

// Single planes without chroma to resample, and planes that pass as they are: luma, and the chroma of a patch on its
// way to both lines.
bool mayLieInPlace(const Plane &to, const Plane &from)
{
    const Layout &dst = *to.layout;
    const Layout &src = *from.layout;
    if (dst.planes == 1 && src.planes == 1)
        return dst.chroma == src.chroma && areAsLong(to, from);
    const bool isPlanarYuv = dst.isYuvIn(2) && src.isYuvIn(2) && dst.bits == src.bits;
    const bool takesChromaOver = dst.planes == src.planes && dst.chroma == Chroma::pair && src.chroma == Chroma::patch;
    return isPlanarYuv && to.number == from.number && (to.number == 0 || takesChromaOver);
}

std::vector<SharedRows> sharedRows(const std::vector<Plane> &to, const std::vector<Plane> &from)
{
    std::vector<SharedRows> ways;
    SharedRows inPlace;
    for (std::size_t plane = 0; plane < std::min(to.size(), from.size()); ++plane)
        if (mayLieInPlace(to[plane], from[plane]))
            for (std::size_t line = 0; line < std::min(to[plane].rows, from[plane].rows); ++line)
                inPlace.push_back({to[plane].first + line, from[plane].first + line});
    if (!inPlace.empty())
        ways.push_back(inPlace);

    SharedRows lastLine; // of an odd height: upper and lower are the same
    for (const auto &planes : {to, from})
        for (const Plane &plane : planes)
            if (plane.rows == 2)
                lastLine.push_back({plane.first + 1, plane.first});
    if (!lastLine.empty())
        ways.push_back(lastLine);
    if (!lastLine.empty() && !inPlace.empty()) {
        lastLine.push_back({to[0].first, from[0].first});
        ways.push_back(lastLine);
    }
    return ways;
}

Shape conversion(const Layout &dst, const Layout &src, Step step)
{
    const std::size_t lines = dst.chroma == Chroma::patch || src.chroma == Chroma::patch ? 2 : 1;
    const std::vector<Plane> to = planesOf(dst, 0, lines);
    const std::vector<Plane> from = planesOf(src, to.back().first + to.back().rows, lines);
    const bool wholePairs = dst.wholePairs || src.wholePairs;
    Shape shape{{}, sharedRows(to, from)};
    for (const Plane &plane : to)
        shape.arguments.insert(shape.arguments.end(), plane.rows,
                               destination([=](std::int64_t n) { return plane.bytes(wholePairs ? n / 2 * 2 : n); }));
    // A source that is not packed 4:2:2 has its odd last pixel, whether or not it is used.
    for (const Plane &plane : from)
        shape.arguments.insert(shape.arguments.end(), plane.rows,
                               paddedWords([=](std::int64_t n) { return plane.bytes(n); }, 0, src.largest));
    shape.arguments.push_back(count());
    for (const Argument &parameter : parametersOf(step, dst, src))
        shape.arguments.push_back(parameter);
    if (!src.alphaBits && (dst.alphaBits == 8 || dst.alphaBits == 16))
        shape.arguments.push_back(alphaOf(dst));
    return shape;
}

// --- The slots ----------------------------------------------------------------------------------------------------

namespace shapes {

#define CONVERSION(name, to, from, step) \
    [[maybe_unused]] Shape name() { return conversion(layoutOf<to>, layoutOf<from>, Step::step); }
#include "oracles/color/catalogue.def"

// 4:2:2 rows hold whole pairs. Extents are those of the source's pairs or of the pixels in them.
Extent pairsOf(std::int64_t bytes)
{
    return [bytes](std::int64_t n) { return n / 2 * bytes; };
}

// An odd last pixel becomes a pair.
Shape packYuva()
{
    return {{destination([](std::int64_t n) { return (n + 1) / 2 * 4; }), source(4), count()}};
}

[[maybe_unused]] Shape PackYuvaToYuyv() { return packYuva(); }
[[maybe_unused]] Shape PackYuvaToUyvy() { return packYuva(); }

Shape packPlanar(Extent packed)
{
    return {{destination(std::move(packed)), source(pairsOf(4)), source(pairsOf(2)), source(pairsOf(2)), count()}};
}

// A final pair takes bytes 0, 2, 4 and 6 of the place where it starts.
std::int64_t spreadFinalPair(std::int64_t n) { return n / 4 * 8 + (n % 4 >= 2 ? 7 : 0); }

[[maybe_unused]] Shape PackPlanar16ToYuyv8() { return packPlanar(spreadFinalPair); }
[[maybe_unused]] Shape PackPlanar16ToUyvy8() { return packPlanar(pairsOf(4)); }

Shape alphaPlane() { return {{destination(4), source(4), source(1), count()}, {{{0, 1}}}}; }

[[maybe_unused]] Shape CscInsertAlpha32() { return alphaPlane(); }
[[maybe_unused]] Shape CscMultiplyAlphaPlane32() { return alphaPlane(); }

[[maybe_unused]] Shape CscSwapEndian32() { return {{destination(4), source(4), count()}, {{{0, 1}}}}; }

Extent dpx4()
{
    return [](std::int64_t n) { return DPX4A::bytes(0, n); };
}

[[maybe_unused]] Shape CscDpx4AToF32x4() { return {{destination(16), source(dpx4()), count(), reversed()}}; }
[[maybe_unused]] Shape CscDpx4BToF32x4() { return {{destination(16), source(dpx4()), count(), reversed()}}; }
[[maybe_unused]] Shape CscF32x4ToDpx4A() { return {{destination(dpx4()), source(16), count(), reversed()}}; }
[[maybe_unused]] Shape CscF32x4ToDpx4B() { return {{destination(dpx4()), source(16), count(), reversed()}}; }

Shape fromYuv2020() { return {{destination(pairsOf(8)), source(pairsOf(4)), alphaOf16Bits(), count()}}; }

[[maybe_unused]] Shape CscYuyvToBgra2020() { return fromYuv2020(); }
[[maybe_unused]] Shape CscUyvyToBgra2020() { return fromYuv2020(); }
[[maybe_unused]] Shape CscYuyvToBgra2020B() { return fromYuv2020(); }
[[maybe_unused]] Shape CscUyvyToBgra2020B() { return fromYuv2020(); }

} // namespace shapes

// Random words are hardly ever hues, so planes of hues get a case with those alone.
bool takesHues(const KernelCase &kernelCase)
{
    const Parameter hue = parameterOf<const std::int16_t *>();
    return kernelCase.parameters.size() > 1 && kernelCase.parameters[1] == hue;
}

} // namespace

std::vector<KernelCase> colorSpaceCases()
{
    std::vector<KernelCase> cases;
    const auto add = [&cases](KernelCase kernelCase, const Shape &shape) {
        kernelCase.arguments = shape.arguments;
        kernelCase.shared = shape.shared;
        cases.push_back(kernelCase);
        if (takesHues(kernelCase)) {
            kernelCase.arguments[1].largest = 361;
            cases.push_back(kernelCase.named("hues"));
        }
    };
#define SLOT(number, name, tiers, result, arguments) add(kernelCase<&VcbColorSpaceProcs::name>({}), shapes::name());
#define SHARED(number, name, kernel, tiers, result, arguments)
#define PLAIN(number, name, result, arguments)
#define RESERVED(first, count)
#include "vela/slots/color_space_procs.def"
#undef SLOT
#undef SHARED
#undef PLAIN
#undef RESERVED
    return cases;
}

} // namespace vela::test
