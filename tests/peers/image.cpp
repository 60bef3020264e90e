#include "image.hpp"

extern "C" {
#include <libavutil/log.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <list>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

namespace vela::test {
namespace {

// Whole groups of V210 and of the row alignments that decoders ask for; larger than any block of a kernel.
constexpr int side = 384;

int scaled(int size, int shift) { return (size + (1 << shift) - 1) >> shift; }

bool isChroma(const AVPixFmtDescriptor *layout, int component)
{
    return !(layout->flags & AV_PIX_FMT_FLAG_RGB) && (component == 1 || component == 2);
}

// A binary PPM, comments and all.
std::vector<std::uint8_t> readPpm(const std::string &path, int &width, int &height)
{
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    file >> magic;
    std::array<int, 3> numbers{};
    for (int &number : numbers) {
        while ((file >> std::ws).peek() == '#')
            file.ignore(1000, '\n');
        file >> number;
    }
    file.get();
    width = numbers[0];
    height = numbers[1];
    std::vector<std::uint8_t> rgb(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    file.read(reinterpret_cast<char *>(rgb.data()), static_cast<std::streamsize>(rgb.size()));
    if (magic != "P6" || numbers[2] != 255 || !file)
        throw std::runtime_error("no photograph: " + path + " (scripts/setup test)");
    return rgb;
}

} // namespace

Image::Image(const AVPixFmtDescriptor *described, int columns, int lines)
    : layout(described), width(columns), height(lines)
{
    for (int i = 0; i < layout->nb_components; ++i) {
        const auto plane = static_cast<std::size_t>(layout->comp[i].plane);
        planeCount = std::max(planeCount, layout->comp[i].plane + 1);
        pitch[plane] = std::max(pitch[plane], widthOf(i) * layout->comp[i].step);
        planes[plane].resize(static_cast<std::size_t>(pitch[plane]) * static_cast<std::size_t>(heightOf(i)));
    }
}

int Image::widthOf(int i) const { return isChroma(layout, i) ? scaled(width, layout->log2_chroma_w) : width; }
int Image::heightOf(int i) const { return isChroma(layout, i) ? scaled(height, layout->log2_chroma_h) : height; }

void *Image::row(int plane, int line) const
{
    const auto i = static_cast<std::size_t>(plane);
    return const_cast<std::uint8_t *>(planes[i].data()) + static_cast<std::ptrdiff_t>(line) * pitch[i];
}

Codes Image::line(int component, int y) const
{
    Codes codes(static_cast<std::size_t>(widthOf(component)));
    const std::uint8_t *data[4] = {planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data()};
    av_read_image_line2(codes.data(), data, pitch.data(), layout, 0, y, component, widthOf(component), 0,
                        sizeof(codes[0]));
    return codes;
}

const AVPixFmtDescriptor *floatPixels()
{
    static const AVPixFmtDescriptor layout = [] {
        AVPixFmtDescriptor d{};
        d.name = "rgbaf32le";
        d.nb_components = 4;
        d.flags = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_FLOAT;
        for (int i = 0; i < 4; ++i)
            d.comp[i] = {.plane = 0, .step = 16, .offset = 4 * i, .shift = 0, .depth = 32};
        return d;
    }();
    return &layout;
}

Image noise(const AVPixFmtDescriptor *layout)
{
    Image image(layout, side, side);
    std::mt19937 random(1);
    for (std::vector<std::uint8_t> &plane : image.planes) {
        if (layout->flags & AV_PIX_FMT_FLAG_FLOAT) {
            for (std::size_t i = 0; i < plane.size(); i += sizeof(float)) {
                const float x = std::uniform_real_distribution<float>(0, 1)(random);
                std::memcpy(&plane[i], &x, sizeof(x));
            }
        } else {
            std::generate(plane.begin(), plane.end(), [&random] { return static_cast<std::uint8_t>(random()); });
        }
        // Ten bits of a word are its lower ones in planes, and kernels may rely on the others being 0.
        if (layout->comp[0].depth == 10 && layout->comp[0].step == 2 && layout->comp[0].shift == 0)
            for (std::size_t i = 1; i < plane.size(); i += 2)
                plane[i] &= 3;
    }
    return image;
}

Image photograph(Detail detail)
{
    struct Picture {
        int width = 0;
        int height = 0;
        std::vector<std::uint8_t> rgb = readPpm(VELA_PHOTOGRAPH, width, height);
    };
    static const Picture picture;
    const int size = detail == Detail::doubled ? 2 : 1;
    Image image(AV_PIX_FMT_BGRA, side, side);
    for (int y = 0; y < side; ++y) {
        auto *to = static_cast<std::uint8_t *>(image.row(0, y));
        for (int x = 0; x < side; ++x, to += 4) {
            const std::uint8_t *from =
                &picture.rgb[static_cast<std::size_t>(3 * (y / size * picture.width + x / size))];
            std::reverse_copy(from, from + 3, to);
            to[3] = static_cast<std::uint8_t>(x + y);
        }
    }
    return image;
}

void convertBySwscale(Image &to, const Image &from, VcbCscMatrix matrix)
{
    av_log_set_level(AV_LOG_ERROR); // it warns of flags that a conversion has no use for
    const AVPixelFormat source = av_pix_fmt_desc_get_id(from.layout);
    const AVPixelFormat target = av_pix_fmt_desc_get_id(to.layout);
    constexpr int flags = SWS_POINT | SWS_ACCURATE_RND | SWS_BITEXACT | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;
    const std::unique_ptr<SwsContext, decltype(&sws_freeContext)> context(
        sws_getContext(from.width, from.height, source, to.width, to.height, target, flags, nullptr, nullptr, nullptr),
        &sws_freeContext);
    ASSERT_TRUE(context) << from.layout->name << " to " << to.layout->name;
    const int *weights = sws_getCoefficients(matrix == VCB_CSC_BT709 ? SWS_CS_ITU709 : SWS_CS_ITU601);
    const auto isFull = [](const Image &image) { return (image.layout->flags & AV_PIX_FMT_FLAG_RGB) ? 1 : 0; };
    sws_setColorspaceDetails(context.get(), weights, isFull(from), weights, isFull(to), 0, 1 << 16, 1 << 16);
    std::array<const std::uint8_t *, 4> source4{};
    std::array<std::uint8_t *, 4> target4{};
    for (int plane = 0; plane < 4; ++plane) {
        source4[static_cast<std::size_t>(plane)] = static_cast<const std::uint8_t *>(from.row(plane, 0));
        target4[static_cast<std::size_t>(plane)] = static_cast<std::uint8_t *>(to.row(plane, 0));
    }
    ASSERT_EQ(
        sws_scale(context.get(), source4.data(), from.pitch.data(), 0, from.height, target4.data(), to.pitch.data()),
        to.height);
}

Image photographAs(AVPixelFormat format, Detail detail)
{
    const Image from = photograph(detail);
    Image to(format, from.width, from.height);
    convertBySwscale(to, from, VCB_CSC_BT601);
    return to;
}

// --- Kernels ---------------------------------------------------------------------------------------------------

const Procs &procs()
{
    static const ColorSpaceProcs family;
    return family.colorSpace;
}

const CscYuvToRgb *toRgb(VcbCscMatrix matrix, VcbCscRange yuvRange, int yuvDepth, int rgbDepth)
{
    static std::list<CscYuvToRgb> blocks;
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(matrix, &kr, &kb);
    CscBuildYuvToRgb(&blocks.emplace_back(), kr, kb, yuvRange, yuvDepth, VCB_CSC_FULL, rgbDepth);
    return &blocks.back();
}

const CscRgbToYuv *toYuv(VcbCscMatrix matrix, VcbCscRange yuvRange, int rgbDepth, int yuvDepth)
{
    static std::list<CscRgbToYuv> blocks;
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(matrix, &kr, &kb);
    CscBuildRgbToYuv(&blocks.emplace_back(), kr, kb, VCB_CSC_FULL, rgbDepth, yuvRange, yuvDepth);
    return &blocks.back();
}

std::vector<void *> rowsAt(const Image &image, int line, int lines)
{
    std::vector<void *> rows;
    for (int plane = 0; plane < image.planeCount; ++plane) {
        if (image.halvesLines(plane)) {
            rows.push_back(image.row(plane, line / 2));
            continue;
        }
        for (int i = 0; i < lines; ++i)
            rows.push_back(image.row(plane, line + i));
    }
    return rows;
}

// --- Comparison ------------------------------------------------------------------------------------------------

Difference difference(const Image &a, const Image &b, int component, Columns columns)
{
    Difference result;
    double sum = 0;
    int count = 0;
    for (int y = 0; y < a.heightOf(component); ++y) {
        const Codes ours = a.line(component, y);
        const Codes theirs = b.line(component, y);
        for (std::size_t x = 0; x < ours.size(); x += columns == Columns::even ? 2 : 1) {
            const double d = std::abs(static_cast<double>(ours[x]) - static_cast<double>(theirs[x]));
            result.largest = std::max(result.largest, d);
            sum += d;
            ++count;
        }
    }
    result.mean = sum / count;
    return result;
}

void expectNear(const Image &ours, const Image &theirs, Tolerance tolerance)
{
    for (int i = 0; i < std::min(ours.layout->nb_components, theirs.layout->nb_components); ++i) {
        const Difference d = difference(ours, theirs, i, tolerance.columns);
        EXPECT_LE(d.largest, tolerance.largest) << "component " << i << ", mean " << d.mean;
        EXPECT_LE(d.mean, tolerance.mean) << "component " << i << ", largest " << d.largest;
    }
}

} // namespace vela::test
