// The oracles of the colour conversions against pixels worked out by hand and against exact arithmetic, so that kernel
// and oracle cannot err together.

#include "oracles/color/singular.h"
#include "support/domains.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <vector>

namespace {

#define CONVERSION(name, destination, source, step) \
    [[maybe_unused]] constexpr Conversion<destination, source, step> name{};
#include "oracles/color/catalogue.def"

} // namespace

namespace vela::test {
namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;
using Longs = std::vector<uint32_t>;
using Floats = std::vector<float>;

// Of a whole domain every code, or every so-many'th.
int stride(int quick) { return samplesDomains() ? quick : 1; }

struct Matrix {
    VcbCscMatrix matrix;
    VcbCscRange yuv, rgb;
};

std::vector<Matrix> matrices()
{
    std::vector<Matrix> all;
    for (const VcbCscMatrix matrix : {VCB_CSC_BT601, VCB_CSC_BT709, VCB_CSC_BT2020_NCL, VCB_CSC_SMPTE240M})
        for (const VcbCscRange yuv : {VCB_CSC_LIMITED, VCB_CSC_FULL})
            for (const VcbCscRange rgb : {VCB_CSC_LIMITED, VCB_CSC_FULL})
                all.push_back({matrix, yuv, rgb});
    return all;
}

CscYuvToRgb toRgb(const Matrix &m, int yuvDepth, int rgbDepth)
{
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(m.matrix, &kr, &kb);
    CscYuvToRgb block;
    CscBuildYuvToRgb(&block, kr, kb, m.yuv, yuvDepth, m.rgb, rgbDepth);
    return block;
}

CscRgbToYuv toYuv(const Matrix &m, int rgbDepth, int yuvDepth)
{
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(m.matrix, &kr, &kb);
    CscRgbToYuv block;
    CscBuildRgbToYuv(&block, kr, kb, m.rgb, rgbDepth, m.yuv, yuvDepth);
    return block;
}

constexpr Matrix bt601{VCB_CSC_BT601, VCB_CSC_LIMITED, VCB_CSC_FULL};

// --- Where samples lie --------------------------------------------------------------------------------------------

TEST(ColorLayouts, OrdersOfBytes)
{
    const Bytes bgra = {1, 2, 3, 4};
    Bytes out(4);
    CscReverse32.run<void>(out.data(), bgra.data(), 1);
    EXPECT_EQ(out, (Bytes{4, 3, 2, 1}));
    CscSwapRb32.run<void>(out.data(), bgra.data(), 1);
    EXPECT_EQ(out, (Bytes{3, 2, 1, 4}));
    CscAlphaFirstToLast32.run<void>(out.data(), bgra.data(), 1);
    EXPECT_EQ(out, (Bytes{2, 3, 4, 1}));
    CscAlphaLastToFirst32.run<void>(out.data(), bgra.data(), 1);
    EXPECT_EQ(out, (Bytes{4, 1, 2, 3}));
    CscPrependAlphaSwap24To32.run<void>(out.data(), bgra.data(), 1, uint8_t{9});
    EXPECT_EQ(out, (Bytes{9, 3, 2, 1}));
    CscAppendAlphaSwap24To32.run<void>(out.data(), bgra.data(), 1U, uint8_t{9});
    EXPECT_EQ(out, (Bytes{3, 2, 1, 9}));
    Bytes three(3);
    CscDropFirstSwap32To24.run<void>(three.data(), bgra.data(), 1);
    EXPECT_EQ(three, (Bytes{4, 3, 2}));
    uint8_t g = 0;
    uint8_t b = 0;
    uint8_t r = 0;
    CscBgraToGbr8.run<void>(&g, &b, &r, bgra.data(), 1);
    EXPECT_EQ((Bytes{g, b, r}), (Bytes{2, 1, 3}));
}

TEST(ColorLayouts, OrdersOfYuv)
{
    const Bytes bytes = {1, 2, 3, 4, 5}; // as far as a row of one pair goes
    Bytes y(3, 0xEE);
    uint8_t u = 0;
    uint8_t v = 0;
    const auto planes = [&] { return Bytes{y[0], y[1], u, v}; };
    CscYuyvToI422.run<void>(y.data(), &u, &v, bytes.data(), 3);
    EXPECT_EQ(planes(), (Bytes{1, 3, 2, 4}));
    CscUyvyToI422.run<void>(y.data(), &u, &v, bytes.data(), 3);
    EXPECT_EQ(planes(), (Bytes{2, 4, 1, 3}));
    EXPECT_EQ(y[2], 0xEE); // the odd last pixel
    Bytes yvyu(4);
    CscSwapChromaYuyv.run<void>(yvyu.data(), bytes.data(), 2);
    EXPECT_EQ(yvyu, (Bytes{1, 4, 3, 2}));
    Bytes pair(2);
    CscUyvyToNv16.run<void>(y.data(), pair.data(), bytes.data(), 2);
    EXPECT_EQ(pair, (Bytes{1, 3}));
    Bytes lower(2);
    CscNv21ToI420.run<void>(y.data(), lower.data(), &u, &v, bytes.data(), bytes.data() + 2, bytes.data() + 1, 2);
    EXPECT_EQ(planes(), (Bytes{1, 2, 3, 2}));
    EXPECT_EQ(lower, (Bytes{3, 4}));
    CscYuvaToI444.run<void>(y.data(), &u, &v, bytes.data(), 1);
    EXPECT_EQ((Bytes{y[0], u, v}), (Bytes{1, 2, 3}));
    CscVuyaToI444.run<void>(y.data(), &u, &v, bytes.data(), 1);
    EXPECT_EQ((Bytes{y[0], u, v}), (Bytes{3, 2, 1}));
    const Words deep = {1, 2, 3, 4};
    Words samples(3);
    CscY416ToI416.run<void>(&samples[0], &samples[1], &samples[2], deep.data(), 1);
    EXPECT_EQ(samples, (Words{2, 1, 3}));
}

// Word, and the pixel B G R A that it is, in both directions. Layouts without alpha read 9.
TEST(ColorLayouts, WordsOfRgb)
{
    Bytes bgra(4);
    uint16_t word = 0x803F; // 10000 000001 11111
    CscRgb565ToBgra.run<void>(bgra.data(), &word, 1, uint8_t{9});
    EXPECT_EQ(bgra, (Bytes{255, 4, 132, 9}));
    CscBgraToRgb565.run<void>(&word, bgra.data(), 1);
    EXPECT_EQ(word, 0x803F);
    CscBgr565ToBgra.run<void>(bgra.data(), &word, 1, uint8_t{9});
    EXPECT_EQ(bgra, (Bytes{132, 4, 255, 9}));
    word = 0xC03F; // 1 10000 00001 11111
    CscArgb1555ToBgra.run<void>(bgra.data(), &word, 1);
    EXPECT_EQ(bgra, (Bytes{255, 8, 132, 255}));
    bgra[3] = 127;
    CscBgraToArgb1555.run<void>(&word, bgra.data(), 1);
    EXPECT_EQ(word, 0x403F);
    word = 0xA5F1;
    CscArgb4444ToBgra.run<void>(bgra.data(), &word, 1);
    EXPECT_EQ(bgra, (Bytes{17, 255, 85, 170}));
    CscBgraToArgb4444.run<void>(&word, bgra.data(), 1);
    EXPECT_EQ(word, 0xA5F1);

    uint32_t ten = 0xBFF80001; // 10 1111111111 1000000000 0000000001
    CscA2r10ToBgra.run<void>(bgra.data(), &ten, 1);
    EXPECT_EQ(bgra, (Bytes{0, 128, 255, 170}));
    CscA2b10ToBgra.run<void>(bgra.data(), &ten, 1);
    EXPECT_EQ(bgra, (Bytes{255, 128, 0, 170}));
    CscBgraToA2b10.run<void>(&ten, bgra.data(), 1);
    EXPECT_EQ(ten, 0xBFF80800U); // 128 widens to 514
}

TEST(ColorLayouts, WordsOfDpx)
{
    const uint32_t ten = 0xBFF80001;
    Bytes bytes(4);
    uint32_t word = 0;
    const auto inMemory = [&] {
        std::memcpy(bytes.data(), &word, 4);
        return bytes;
    };
    CscA2r10ToDpx3A.run<void>(&word, &ten, 1);
    EXPECT_EQ(inMemory(), (Bytes{0xFF, 0xE0, 0x00, 0x04})); // 1111111111 1000000000 0000000001 00
    word |= 0x03000000;                                     // bits 1 and 0 of the last byte are nobody's
    uint32_t back = 0;
    CscDpx3AToA2r10.run<void>(&back, &word, 1);
    EXPECT_EQ(back, ten | 0xC0000000);
    const Floats pixel = {1, 0.5F, 1 / 1023.0F, 0};
    CscF32x4ToDpx3B.run<void>(&word, pixel.data(), 1);
    EXPECT_EQ(inMemory(), (Bytes{0x3F, 0xF8, 0x00, 0x01})); // 511.5 rounds up
    CscSwapEndian32(&word, &ten, 1);
    EXPECT_EQ(inMemory(), (Bytes{0xBF, 0xF8, 0x00, 0x01}));

    Floats two(8); // components 1 to 8
    for (std::size_t i = 0; i < 8; ++i)
        two[i] = static_cast<float>(i + 1) / 1023.0F;
    Bytes stream(12);
    auto *words = reinterpret_cast<uint32_t *>(stream.data());
    CscF32x4ToDpx4A(words, two.data(), 2, 0);
    EXPECT_EQ(stream, (Bytes{0, 0x40, 0x20, 0x0C, 1, 0, 0x50, 0x18, 1, 0xC0, 0x80, 0}));
    Floats read(8);
    CscDpx4AToF32x4(read.data(), words, 2, 0);
    EXPECT_FLOAT_EQ(read[4], two[4]);
    CscDpx4AToF32x4(read.data(), words, 2, 1);
    EXPECT_FLOAT_EQ(read[0], two[3]);
    EXPECT_FLOAT_EQ(read[6], two[5]);
    CscF32x4ToDpx4B(words, two.data(), 2, -5); // 4 3 2, 1 8 7, 6 5 -
    EXPECT_EQ(stream, (Bytes{0, 0x40, 0x0C, 0x02, 0, 0x10, 0x20, 0x07, 0, 0x60, 0x14, 0}));
}

TEST(ColorLayouts, WordsOfYuv)
{
    const uint32_t word = 0xBFF80001; // A 2, V 1023, Y 512, U 1
    Words y(6);
    Words u(3);
    Words v(3);
    CscY410ToI410.run<void>(y.data(), u.data(), v.data(), &word, 1);
    EXPECT_EQ((Words{y[0], u[0], v[0]}), (Words{512, 1, 1023}));
    Words deep(4);
    CscY410ToY416.run<void>(deep.data(), &word, 1);
    EXPECT_EQ(deep, (Words{1 << 6, 512 << 6, 1023 << 6, 0xAAAA}));

    // Fields 1 to 12, spare bits set.
    const Longs group = {0xC0300801, 0xC0601404, 0xC0902007, 0xC0C02C0A};
    CscV210ToI210.run<void>(y.data(), u.data(), v.data(), group.data(), 6);
    EXPECT_EQ(y, (Words{2, 4, 6, 8, 10, 12}));
    EXPECT_EQ(u, (Words{1, 5, 9}));
    EXPECT_EQ(v, (Words{3, 7, 11}));

    // One pair, its luma out of range; the missing pixels are black.
    const Words pairY = {1, 1023, 77};
    const Words pairU = {0x155, 0};
    const Words pairV = {0x2AA, 0};
    Longs out(5, 0xEEEEEEEE);
    CscI210ToV210.run<void>(out.data(), pairY.data(), pairU.data(), pairV.data(), 3);
    EXPECT_EQ(out, (Longs{0x2AA01155, 0x040803FB, 0x20010200, 0x04080040, 0xEEEEEEEE}));
}

// --- Chroma -------------------------------------------------------------------------------------------------------

TEST(ColorChroma, BetweenTheSubsamplings)
{
    const Bytes y0 = {1, 2, 3, 4, 5};
    const Bytes y1 = {6, 7, 8, 9, 10};
    const Bytes u = {10, 13, 20};
    const Bytes v = {0, 255, 1};
    Bytes out[6];
    for (Bytes &plane : out)
        plane.resize(5);
    CscI420ToI444.run<void>(out[0].data(), out[1].data(), out[2].data(), out[3].data(), out[4].data(), out[5].data(),
                            y0.data(), y1.data(), u.data(), v.data(), 5);
    EXPECT_EQ(out[0], y0);
    EXPECT_EQ(out[1], y1);
    EXPECT_EQ(out[2], (Bytes{10, 12, 13, 17, 20}));
    EXPECT_EQ(out[3], out[2]);
    EXPECT_EQ(out[4], (Bytes{0, 128, 255, 128, 1}));

    // Down: the even pixels, their mean over the lines rounded up.
    const Bytes upper = {1, 99, 3, 99, 5};
    const Bytes lower = {2, 99, 255, 99, 5};
    Bytes half(3);
    Bytes other(3);
    CscI444ToI420.run<void>(out[0].data(), out[1].data(), half.data(), other.data(), y0.data(), y1.data(), upper.data(),
                            lower.data(), lower.data(), lower.data(), 5);
    EXPECT_EQ(half, (Bytes{2, 129, 5}));
    EXPECT_EQ(other, (Bytes{2, 255, 5}));
    CscI444ToI422.run<void>(out[0].data(), half.data(), other.data(), y0.data(), upper.data(), lower.data(), 5);
    EXPECT_EQ(half, (Bytes{1, 3, 5}));
    EXPECT_EQ(other, (Bytes{2, 255, 5}));
}

TEST(ColorChroma, OfRgbIsThatOfTheEvenPixels)
{
    const CscRgbToYuv block = toYuv(bt601, 8, 8);
    const Bytes red = {0, 0, 255, 0};
    const Bytes blue = {255, 0, 0, 0};
    Bytes upper = red;
    upper.insert(upper.end(), blue.begin(), blue.end());
    Bytes lower = blue;
    lower.insert(lower.end(), red.begin(), red.end());
    Bytes yuyv(4);
    CscBgraToYuyv.run<void>(yuyv.data(), upper.data(), 2, &block);
    EXPECT_EQ(yuyv, (Bytes{81, 90, 41, 240}));
    Bytes luma[2] = {Bytes(2), Bytes(2)};
    Bytes chroma(2);
    CscBgraToNv12.run<void>(luma[0].data(), luma[1].data(), chroma.data(), upper.data(), lower.data(), 2, &block);
    EXPECT_EQ(luma[0], (Bytes{81, 41}));
    EXPECT_EQ(luma[1], (Bytes{41, 81}));
    EXPECT_EQ(chroma, (Bytes{165, 175})); // of (128, 0, 128)
}

// --- Depths -------------------------------------------------------------------------------------------------------

// The depths that occur together.
TEST(ColorDepths, NarrowingInvertsWidening)
{
    for (const auto &[narrow, wide] :
         {std::pair{1, 8}, {2, 8}, {4, 8}, {5, 8}, {6, 8}, {8, 10}, {8, 16}, {2, 16}, {10, 16}}) {
        const double ratio = static_cast<double>(largestOf(wide)) / largestOf(narrow);
        for (int v = 0; v <= largestOf(narrow); ++v) {
            const int32_t widened = fullDepth(v, narrow, wide);
            ASSERT_EQ(fullDepth(widened, wide, narrow), v) << narrow << " to " << wide;
            ASSERT_LT(std::abs(widened - v * ratio), 1) << v << ", " << narrow << " to " << wide;
        }
        for (int v = 0; narrow > 1 && v <= largestOf(wide); ++v)
            ASSERT_LT(std::abs(fullDepth(v, wide, narrow) - v / ratio), 0.69) << v << ", " << wide << " to " << narrow;
    }
}

TEST(ColorDepths, FloatsAreRoundedAndLimited)
{
    const float nan = std::nanf("");
    const struct {
        float x;
        int32_t byte, word;
    } cases[] = {
        {0, 0, 0},           {0.5F, 128, 32768},    {1, 255, 65535},      {-0.1F, 0, 0},
        {1.01F, 255, 65535}, {nan, 0, 0},           {1e30F, 0, 65535},    {-1e30F, 0, 0},
        {100, 255, 65535},   {HUGE_VALF, 0, 65535}, {0.499F, 127, 32702}, {1e6F, 255, 65535},
        {1e7F, 0, 65535},    {8.4e6F, 255, 65535},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(codeOf(c.x, 8), c.byte) << c.x;
        EXPECT_EQ(codeOf(c.x, 16), c.word) << c.x;
    }
    for (const int bits : {2, 8, 10, 16})
        for (int v = 0; v <= largestOf(bits); ++v)
            ASSERT_EQ(codeOf(unitOf(v, bits), bits), v) << bits;
    // Ties go down while the sum can still tell them from the next code, then to the even sum.
    EXPECT_EQ(nearestCode(std::nextafter(0.5F, 0.0F), 255), 0);
    EXPECT_EQ(nearestCode(0.5F, 255), 0);
    EXPECT_EQ(nearestCode(1.5F, 255), 1);
    EXPECT_EQ(nearestCode(2.5F, 255), 3);
    EXPECT_EQ(limitedToUnit(nan), 0);
    EXPECT_EQ(limitedToUnit(-1), 0);
    EXPECT_EQ(limitedToUnit(HUGE_VALF), 1);
}

// --- Matrices -----------------------------------------------------------------------------------------------------

// The definition, in units of 0 to 1 and -0.5 to 0.5.
struct Exact {
    double kr, kb, kg;
    CscCodes yuv, rgb;

    Exact(const Matrix &m, int yuvDepth, int rgbDepth)
        : yuv(CscRangeCodes(m.yuv, yuvDepth)), rgb(CscRangeCodes(m.rgb, rgbDepth))
    {
        CscMatrixWeights(m.matrix, &kr, &kb);
        kg = 1 - kr - kb;
    }

    void toRgb(const Pixel<int32_t> &p, double (&out)[3]) const
    {
        const double y = (p.c[0] - yuv.black) / yuv.span;
        const double r = y + 2 * (1 - kr) * (p.c[2] - yuv.chromaCentre) / yuv.chromaSpan;
        const double b = y + 2 * (1 - kb) * (p.c[1] - yuv.chromaCentre) / yuv.chromaSpan;
        const double g = (y - kr * r - kb * b) / kg;
        const double all[3] = {r, g, b};
        for (int i = 0; i < 3; ++i)
            out[i] = rgb.black + all[i] * rgb.span;
    }

    template <class S> void toYuv(const Pixel<S> &p, double (&out)[3]) const
    {
        const double r = (p.c[0] - rgb.black) / rgb.span;
        const double g = (p.c[1] - rgb.black) / rgb.span;
        const double b = (p.c[2] - rgb.black) / rgb.span;
        const double y = kr * r + kg * g + kb * b;
        out[0] = yuv.black + y * yuv.span;
        out[1] = yuv.chromaCentre + (b - y) / (2 * (1 - kb)) * yuv.chromaSpan;
        out[2] = yuv.chromaCentre + (r - y) / (2 * (1 - kr)) * yuv.chromaSpan;
    }
};

// The largest distances of the components from the exact ones, over every so-many'th code of each source component and
// the last one.
template <class Step, class Reference>
std::array<double, 3> largestErrors(const Step &step, const Reference &reference, int sourceBits, int bits, int every)
{
    std::array<double, 3> worst{};
    const int top = largestOf(sourceBits);
    const double limit = largestOf(bits);
    const auto next = [=](int v) { return v < top && v + every > top ? top : v + every; };
    for (int c0 = 0; c0 <= top; c0 = next(c0))
        for (int c1 = 0; c1 <= top; c1 = next(c1))
            for (int c2 = 0; c2 <= top; c2 = next(c2)) {
                const Pixel<int32_t> source{{c0, c1, c2}, 0};
                const Pixel<int32_t> result = step(source);
                double exact[3];
                reference(source, exact);
                for (std::size_t i = 0; i < 3; ++i)
                    worst[i] = std::max(worst[i], std::abs(result.c[i] - std::clamp(exact[i], 0.0, limit)));
            }
    return worst;
}

template <class... Arguments> double largestError(const Arguments &...arguments)
{
    const std::array<double, 3> errors = largestErrors(arguments...);
    return *std::max_element(errors.begin(), errors.end());
}

template <template <class, class> class Rule, class Rgb, class YuvLayout> double errorToRgb(const Matrix &m, int every)
{
    constexpr int from = YuvLayout::bits[0];
    constexpr int to = Rgb::bits[0];
    const CscYuvToRgb block = toRgb(m, from, to);
    const Exact exact(m, from, to);
    return largestError(
        Rule<Rgb, YuvLayout>(&block), [&](const auto &p, auto &out) { exact.toRgb(p, out); }, from, to, every);
}

template <template <class, class> class Rule, class YuvLayout, class Rgb> double errorToYuv(const Matrix &m, int every)
{
    constexpr int from = Rgb::bits[0];
    constexpr int to = YuvLayout::bits[0];
    const CscRgbToYuv block = toYuv(m, from, to);
    const Exact exact(m, to, from);
    return largestError(
        Rule<YuvLayout, Rgb>(&block), [&](const auto &p, auto &out) { exact.toYuv(p, out); }, from, to, every);
}

TEST(ColorMatrices, IntegersAreNearTheRealMatrix)
{
    const int thin = stride(4);
    for (const Matrix &m : matrices()) {
        SCOPED_TRACE(testing::Message() << "matrix " << m.matrix << ", ranges " << m.yuv << ", " << m.rgb);
        EXPECT_LE((errorToRgb<IntegerMatrix, BGRA32, I444>(m, 5 * thin)), 0.7);
        EXPECT_LE((errorToRgb<IntegerMatrix, BGRA32, I410>(m, 21 * thin)), 0.7);
        EXPECT_LE((errorToRgb<IntegerMatrix, BGRA32, Y416>(m, 1021 * thin)), 0.7);
        EXPECT_LE((errorToRgb<IntegerMatrix, A2B10G10R10, Y416>(m, 1021 * thin)), 0.7);
        EXPECT_LE((errorToYuv<IntegerMatrix, I444, BGRA32>(m, 5 * thin)), 0.6);
        EXPECT_LE((errorToYuv<IntegerMatrix, I410, BGRA32>(m, 5 * thin)), 0.6);
        EXPECT_LE((errorToYuv<IntegerMatrix, I416, BGRA32>(m, 5 * thin)), 4.1);
        EXPECT_LE((errorToYuv<IntegerMatrix, I416, A2B10G10R10>(m, 21 * thin)), 4.1);
    }
}

// All 2^24 pixels of the matrix that is used most.
TEST(ColorMatrices, IntegersAreNearTheRealMatrixForEveryPixel)
{
    constexpr Matrix bt709{VCB_CSC_BT709, VCB_CSC_LIMITED, VCB_CSC_FULL};
    EXPECT_LE((errorToRgb<IntegerMatrix, BGRA32, I444>(bt709, stride(7))), 0.7);
    EXPECT_LE((errorToYuv<IntegerMatrix, I444, BGRA32>(bt709, stride(7))), 0.6);
}

TEST(ColorMatrices, FloatsRoundToTheNearestCode)
{
    const int thin = stride(4);
    for (const Matrix &m : matrices()) {
        SCOPED_TRACE(testing::Message() << "matrix " << m.matrix << ", ranges " << m.yuv << ", " << m.rgb);
        EXPECT_LE((errorToRgb<FloatMatrix, RGBA64, I416>(m, 1021 * thin)), 0.52);
        EXPECT_LE((errorToYuv<FloatMatrix, I416, RGBA64>(m, 1021 * thin)), 0.52);
    }
}

// Float RGB: white, a red, and what is out of range.
TEST(ColorMatrices, FloatPixels)
{
    const CscRgbToYuv block = toYuv(bt601, 32, 8);
    const Floats pixels = {1, 1, 1, 0.5F, 1, 0, 0, 2, -9, 1e30F, 0, 0};
    Bytes yuva(12);
    CscF32x4ToYuva.run<void>(yuva.data(), pixels.data(), 3, &block);
    EXPECT_EQ(yuva, (Bytes{235, 128, 128, 128, 81, 90, 240, 255, 0, 0, 0, 0}));
    const CscYuvToRgb back = toRgb(bt601, 8, 32);
    Floats rgba(8);
    const Bytes white = {235, 128, 128, 51, 255, 128, 128, 0};
    CscYuvaToF32x4.run<void>(rgba.data(), white.data(), 2, &back);
    EXPECT_NEAR(rgba[0], 1, 1e-6);
    EXPECT_EQ(rgba[3], 51 * static_cast<float>(1.0 / 255));
    EXPECT_EQ(rgba[4], 1); // limited
    const CscRgbToYuv grey = toYuv({VCB_CSC_BT709, VCB_CSC_FULL, VCB_CSC_FULL}, 32, 32);
    const Floats bright = {2, 2, 2, 0};
    float y = 0;
    CscF32x4ToGreyF32.run<void>(&y, bright.data(), 1, &grey);
    EXPECT_FLOAT_EQ(y, 2);
}

TEST(ColorMatrices, GreyHasNoChroma)
{
    for (const Matrix &m : matrices()) {
        const CscRgbToYuv block = toYuv(m, 8, 8);
        const IntegerMatrix<I444, BGRA32> step(&block);
        for (int v = 0; v < 256; ++v) {
            const Pixel<int32_t> yuv = step({{v, v, v}, 0});
            ASSERT_EQ(yuv.c[1], 128);
            ASSERT_EQ(yuv.c[2], 128);
        }
    }
}

// --- Alpha and range ----------------------------------------------------------------------------------------------

TEST(ColorAlpha, ProductsAndQuotientsAreTheNearest)
{
    for (int a = 0; a < 256; ++a) {
        for (int c = 0; c < 256; ++c) {
            ASSERT_EQ(scaled(c, a, 8), std::floor(c * a / 255.0 + 0.5));
            const double quotient = a ? std::floor(c * 255.0 / a + 0.5) : 0;
            ASSERT_EQ((Unpremultiply<BGRA32, BGRA32>::step(c, a)), std::min(quotient, 255.0));
        }
    }
    const int every = stride(10) * 13;
    for (int a = 0; a < 65536; a += every)
        for (int c = 65535; c >= 0; c -= 17 * every) {
            ASSERT_EQ(scaled(c, a, 16), std::floor(static_cast<double>(c) * a / 65535.0 + 0.5));
            const double quotient = a ? std::floor(c * 65535.0 / a + 0.5) : 0;
            ASSERT_EQ((Unpremultiply<RGBA64, RGBA64>::step(c, a)), std::min(quotient, 65535.0));
        }
}

TEST(ColorAlpha, Flattening)
{
    const Bytes pixels = {10, 20, 30, 0, 10, 20, 30, 255, 100, 200, 0, 51};
    Bytes out(12);
    CscFlattenAlpha32.run<void>(out.data(), pixels.data(), 3, 0x00FF8000U); // bytes 0, 128, 255
    EXPECT_EQ(out, (Bytes{0, 128, 255, 255, 10, 20, 30, 255, 20, 142, 204, 255}));
    CscFlattenPremultiplied32.run<void>(out.data(), pixels.data(), 3, 0x00FF8000U);
    EXPECT_EQ(out, (Bytes{10, 148, 255, 255, 10, 20, 30, 255, 100, 255, 204, 255}));
    const Bytes plane = {255, 51, 0};
    CscMultiplyAlphaPlane32(out.data(), pixels.data(), plane.data(), 3);
    EXPECT_EQ(out, (Bytes{10, 20, 30, 0, 10, 20, 30, 51, 100, 200, 0, 0}));
    CscInsertAlpha32(out.data(), pixels.data(), plane.data(), 3);
    EXPECT_EQ(out, (Bytes{10, 20, 30, 255, 10, 20, 30, 51, 100, 200, 0, 0}));
}

TEST(ColorRange, IsLinearToTheNearestCode)
{
    const auto check = [](const auto &step, int bits, double from, double to, double factor) {
        for (int v = 0; v <= largestOf(bits); ++v) {
            const double exact = std::clamp((v - from) * factor + to, 0.0, static_cast<double>(largestOf(bits)));
            ASSERT_LE(std::abs(step(v) - exact), 0.51) << v << " of " << bits << " bits";
        }
    };
    check(lumaBytesToFull, 8, 16, 0, 255 / 219.0);
    check(lumaBytesToLimited, 8, 0, 16, 219 / 255.0);
    check(chromaBytesToFull, 8, 128, 128, 255 / 224.0);
    check(chromaBytesToLimited, 8, 128, 128, 224 / 255.0);
    check(lumaWordsToFull, 16, 4096, 0, 65535 / 56064.0);
    check(lumaWordsToLimited, 16, 0, 4096, 56064 / 65535.0);
    check(chromaWordsToFull, 16, 32768, 32768, 65535 / 57344.0);
    check(chromaWordsToLimited, 16, 32768, 32768, 57344 / 65535.0);
    const Bytes uyvy = {128, 235, 16, 16};
    Bytes out(4);
    CscUyvyToFullRange.run<void>(out.data(), uyvy.data(), 2);
    EXPECT_EQ(out, (Bytes{128, 255, 0, 0}));
}

// --- Hues ---------------------------------------------------------------------------------------------------------

// In degrees; undefined for grey.
double exactHue(int r, int g, int b)
{
    const int largest = std::max({r, g, b});
    const double range = largest - std::min({r, g, b});
    const double h = largest == r ? (g - b) / range : largest == g ? (b - r) / range + 2 : (r - g) / range + 4;
    return 60 * (h < 0 ? h + 6 : h);
}

// Every pixel: value exact; hue and saturation within what 12 bits of reciprocal leave. Where two components are the
// largest, merging 59.99... with 60.00... sets the bits below, up to 4 degrees more.
TEST(ColorHues, ToHsv)
{
    const ToHsv<HSV, RGB24> step;
    const int every = stride(5);
    for (int r = 0; r < 256; r += every)
        for (int g = 0; g < 256; g += every)
            for (int b = 0; b < 256; b += every) {
                const Pixel<int32_t> hsv = step({{r, g, b}, 0});
                const int largest = std::max({r, g, b});
                const int least = std::min({r, g, b});
                ASSERT_EQ(hsv.c[2], largest);
                const double saturation = largest ? 255.0 * (largest - least) / largest : 0;
                ASSERT_NEAR(hsv.c[1], saturation, 0.6) << r << ' ' << g << ' ' << b;
                if (largest == least) {
                    ASSERT_EQ(hsv.c[0], 0);
                    continue;
                }
                const double exact = exactHue(r, g, b);
                const bool tie = (r == largest) + (g == largest) + (b == largest) == 2;
                ASSERT_GE(hsv.c[0], exact - 0.7) << r << ' ' << g << ' ' << b;
                ASSERT_LE(hsv.c[0], exact + (tie ? 4.1 : 0.7)) << r << ' ' << g << ' ' << b;
            }
    EXPECT_EQ(step({{255, 0, 1}, 0}).c[0], 360);
    EXPECT_EQ(step({{0, 255, 0}, 0}).c[0], 120);
    EXPECT_EQ(step({{0, 0, 255}, 0}).c[0], 240);
}

// Two largest components, 60 degrees from either: both candidates' bits.
TEST(ColorHues, OfTiesAreMerged)
{
    const ToHsv<HSV, RGB24> step;
    const auto merged = [](float a, float b) {
        const uint32_t bits = bitsOf(a) | bitsOf(b);
        float h = 0;
        std::memcpy(&h, &bits, sizeof(h));
        return static_cast<int32_t>(h + 0.49999988F);
    };
    for (int d = 1; d < 256; ++d) {
        const float sixty = static_cast<float>(d) * (estimatedReciprocal(static_cast<float>(d)) * 60.0F);
        EXPECT_EQ(step({{255, 255, 255 - d}, 0}).c[0], merged(sixty, 120 - sixty)) << d;
        EXPECT_EQ(step({{0, d, d}, 0}).c[0], merged(120 + sixty, 240 - sixty)) << d;
        EXPECT_EQ(step({{255, 255 - d, 255}, 0}).c[0], merged(240 + sixty, 360 - sixty)) << d;
    }
}

TEST(ColorHues, ReturnTheEndOfTheHues)
{
    const Bytes bgr = {0, 0, 255, 255, 0, 0};
    int16_t hue[2] = {};
    uint8_t saturation[2] = {};
    uint8_t value[2] = {};
    EXPECT_EQ(CscRgb24ToHsvPlanesB.run<int16_t *>(hue, saturation, value, bgr.data(), 2), hue + 2);
    EXPECT_EQ(hue[0], 0);
    EXPECT_EQ(hue[1], 240);
    EXPECT_EQ(CscRgb24ToHsvPlanesB.run<int16_t *>(hue, saturation, value, bgr.data(), -3), hue);
}

TEST(ColorHues, ToHslAndBack)
{
    const ToHsl<HSL, RGB24> toHsl;
    const FromHsl<RGB24, HSL> fromHsl;
    const FromHsv<RGB24, HSV> fromHsv;
    const auto components = [](const Pixel<int32_t> &p) { return std::vector<int32_t>{p.c[0], p.c[1], p.c[2]}; };
    EXPECT_EQ(components(toHsl({{200, 100, 50}, 0})), (std::vector<int32_t>{20, 153, 125}));
    EXPECT_EQ(components(toHsl({{100, 255, 200}, 0})), (std::vector<int32_t>{159, 255, 178})); // 158.7; 177.5
    EXPECT_EQ(components(toHsl({{7, 7, 7}, 0})), (std::vector<int32_t>{0, 0, 7}));
    EXPECT_EQ(components(fromHsl({{20, 153, 125}, 0})), (std::vector<int32_t>{200, 100, 50}));
    EXPECT_EQ(components(fromHsv({{20, 191, 200}, 0})), (std::vector<int32_t>{200, 100, 50}));
    EXPECT_EQ(components(fromHsv({{-5, 255, 255}, 0})), (std::vector<int32_t>{255, 0, 0}));
    EXPECT_EQ(components(fromHsv({{1000, 255, 255}, 0})), (std::vector<int32_t>{255, 0, 0}));
    EXPECT_EQ(components(fromHsv({{240, 0, 99}, 0})), (std::vector<int32_t>{99, 99, 99}));

    const int every = stride(5) * 3;
    for (int r = 0; r < 256; r += every)
        for (int g = 0; g < 256; g += every)
            for (int b = 0; b < 256; b += every) {
                const Pixel<int32_t> hsl = toHsl({{r, g, b}, 0});
                const int range = std::max({r, g, b}) - std::min({r, g, b});
                if (range > 0) {
                    ASSERT_NEAR(hsl.c[0], exactHue(r, g, b), 0.501);
                }
                const Pixel<int32_t> back = fromHsl(hsl);
                // Half a unit of lightness and of saturation, half a degree of hue.
                const double bound = 2.1 + range / 120.0;
                ASSERT_NEAR(back.c[0], r, bound);
                ASSERT_NEAR(back.c[1], g, bound);
                ASSERT_NEAR(back.c[2], b, bound);
            }
}

// --- BT.2020 ------------------------------------------------------------------------------------------------------

TEST(ColorBt2020, Pixels)
{
    // Blue, blue, black, white.
    const Bytes bgra = {255, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 255, 255, 255, 0, 1, 2, 3, 4};
    Bytes yuyv(8);
    CscBgraToYuyv2020.run<void>(yuyv.data(), bgra.data(), 5);
    EXPECT_EQ(yuyv, (Bytes{15, 255, 15, 119, 0, 128, 255, 128}));
    Bytes uyvy(8);
    CscRgbaToUyvy2020.run<void>(uyvy.data(), bgra.data(), 4); // red
    EXPECT_EQ(uyvy, (Bytes{93, 67, 255, 67, 128, 0, 128, 255}));

    // Chroma between the pairs is their mean, rounded up: 191.5 and 123.5 become 192 and 124.
    Bytes out(16);
    CscYuyvToBgra2020(out.data(), yuyv.data(), 40000, 4);
    EXPECT_EQ((Bytes{out[0], out[1], out[2], out[3]}), (Bytes{216, 3, 0, 255}));
    EXPECT_EQ((Bytes{out[4], out[5], out[6], out[7]}), (Bytes{116, 9, 8, 255}));
    EXPECT_EQ((Bytes{out[12], out[13], out[14]}), (Bytes{255, 255, 255}));
    for (const auto &[alpha, byte] : {std::pair{-40000, 0}, {300, 44}, {-1, 255}, {90, 90}}) {
        CscUyvyToBgra2020B(out.data(), uyvy.data(), alpha, 2);
        EXPECT_EQ(out[7], byte) << alpha;
    }
}

// Every pixel. Chroma is that of a luma which is itself rounded.
TEST(ColorBt2020, IsNearTheRealFormula)
{
    const auto forward = [](const Pixel<int32_t> &rgb, double(&yuv)[3]) {
        const double y = 0.2627 * rgb.c[0] + 0.678 * rgb.c[1] + 0.0593 * rgb.c[2];
        const double blue = rgb.c[2] - y;
        const double red = rgb.c[0] - y;
        yuv[0] = y;
        yuv[1] = blue / (blue < 0 ? 1.9404 : 1.5816) + 128;
        yuv[2] = red / (red < 0 ? 1.7184 : 0.9936) + 128;
    };
    const auto inverse = [](const Pixel<int32_t> &yuv, double(&rgb)[3]) {
        const double blue = (yuv.c[1] - 128) * (yuv.c[1] < 128 ? 1.9404 : 1.5816);
        const double red = (yuv.c[2] - 128) * (yuv.c[2] < 128 ? 1.7184 : 0.9936);
        rgb[0] = yuv.c[0] + red;
        rgb[1] = yuv.c[0] - (0.2627 * red + 0.0593 * blue) / 0.678;
        rgb[2] = yuv.c[0] + blue;
    };
    const std::array<double, 3> toYuv2020 = largestErrors(ToYuv2020<YUYV, BGRA32>(), forward, 8, 8, stride(5));
    EXPECT_LE(toYuv2020[0], 0.52);
    EXPECT_LE(toYuv2020[1], 0.9);
    EXPECT_LE(toYuv2020[2], 1.1);
    const std::array<double, 3> toRgb2020 = largestErrors(FromYuv2020<BGRA32, YUYV>(), inverse, 8, 8, stride(5));
    EXPECT_LE(toRgb2020[0], 0.65);
    EXPECT_LE(toRgb2020[1], 0.8);
    EXPECT_LE(toRgb2020[2], 0.65);
}

} // namespace
} // namespace vela::test
