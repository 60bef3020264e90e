// The coefficient blocks against the matrices themselves, in doubles.

#include <gtest/gtest.h>
#include <vela/color_coefficients.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using Triple = std::array<double, 3>;
using Matrix = std::array<Triple, 3>;

constexpr VcbCscMatrix matrices[] = {VCB_CSC_BT601, VCB_CSC_BT709, VCB_CSC_BT2020_NCL, VCB_CSC_SMPTE240M};
constexpr VcbCscRange ranges[] = {VCB_CSC_LIMITED, VCB_CSC_FULL};

struct Formats {
    VcbCscMatrix matrix;
    VcbCscRange yuvRange;
    int yuvDepth;
    VcbCscRange rgbRange;
    int rgbDepth;

    bool isInteger() const
    {
        return yuvDepth != 32 && rgbDepth != 32 && std::min(yuvDepth, rgbDepth) < 16; // a side of 8 or 10 bits
    }
    std::string text() const
    {
        return "matrix " + std::to_string(matrix) + ", YUV " + std::to_string(yuvDepth) + (yuvRange ? " full" : "") +
               ", RGB " + std::to_string(rgbDepth) + (rgbRange ? " full" : "");
    }
};

std::vector<Formats> allFormats()
{
    std::vector<Formats> all;
    for (const VcbCscMatrix matrix : matrices)
        for (const VcbCscRange yuvRange : ranges)
            for (const int yuvDepth : {8, 10, 16, 32})
                for (const VcbCscRange rgbRange : ranges)
                    for (const int rgbDepth : {8, 10, 16, 32})
                        all.push_back({matrix, yuvRange, yuvDepth, rgbRange, rgbDepth});
    return all;
}

// The published weights of R and B.
Triple weights(VcbCscMatrix matrix)
{
    switch (matrix) {
    case VCB_CSC_BT601:
        return {0.299, 0.587, 0.114};
    case VCB_CSC_BT709:
        return {0.2126, 0.7152, 0.0722};
    case VCB_CSC_BT2020_NCL:
        return {0.2627, 0.6780, 0.0593};
    case VCB_CSC_SMPTE240M:
        return {0.212, 0.701, 0.087};
    }
    return {};
}

double scaleOf(int depth) { return depth == 32 ? 1.0 / 255.0 : std::ldexp(1.0, depth - 8); } // of an 8-bit code
double top(int depth) { return depth == 32 ? 1.0 : std::ldexp(1.0, depth) - 1; }
double black(VcbCscRange range, int depth) { return range == VCB_CSC_FULL ? 0 : 16 * scaleOf(depth); }
double lumaSpan(VcbCscRange range, int depth) { return range == VCB_CSC_FULL ? top(depth) : 219 * scaleOf(depth); }
double chromaSpan(VcbCscRange range, int depth) { return range == VCB_CSC_FULL ? top(depth) : 224 * scaleOf(depth); }
double centre(int depth) { return depth == 32 ? 0 : 128 * scaleOf(depth); }

// Codes to codes, by way of luma and colour of 0..1 and differences of -0.5..0.5.
Triple exactRgb(const Formats &f, const Triple &yuv)
{
    const auto [kr, kg, kb] = weights(f.matrix);
    const double y = (yuv[0] - black(f.yuvRange, f.yuvDepth)) / lumaSpan(f.yuvRange, f.yuvDepth);
    const double u = (yuv[1] - centre(f.yuvDepth)) / chromaSpan(f.yuvRange, f.yuvDepth);
    const double v = (yuv[2] - centre(f.yuvDepth)) / chromaSpan(f.yuvRange, f.yuvDepth);
    const double r = y + 2 * (1 - kr) * v;
    const double b = y + 2 * (1 - kb) * u;
    const double g = (y - kr * r - kb * b) / kg;
    const double span = lumaSpan(f.rgbRange, f.rgbDepth);
    const double offset = black(f.rgbRange, f.rgbDepth);
    return {r * span + offset, g * span + offset, b * span + offset};
}

Triple exactYuv(const Formats &f, const Triple &rgb)
{
    const auto [kr, kg, kb] = weights(f.matrix);
    Triple c;
    for (std::size_t i = 0; i < 3; ++i)
        c[i] = (rgb[i] - black(f.rgbRange, f.rgbDepth)) / lumaSpan(f.rgbRange, f.rgbDepth);
    const double y = kr * c[0] + kg * c[1] + kb * c[2];
    const double span = chromaSpan(f.yuvRange, f.yuvDepth);
    return {y * lumaSpan(f.yuvRange, f.yuvDepth) + black(f.yuvRange, f.yuvDepth),
            (c[2] - y) / (2 * (1 - kb)) * span + centre(f.yuvDepth),
            (c[0] - y) / (2 * (1 - kr)) * span + centre(f.yuvDepth)};
}

// The integer form, in 64 bits, with a check that 32 are enough.
template <class Block> Triple byIntegers(const Block &block, const Triple &codes, int depth)
{
    Triple result;
    for (std::size_t i = 0; i < 3; ++i) {
        std::int64_t sum = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            const std::int64_t sample = static_cast<std::int64_t>(codes[j]) >> (depth == 16 ? 2 : 0);
            const std::int64_t difference = sample - block.qOff[j];
            EXPECT_EQ(difference, static_cast<std::int16_t>(difference));
            sum += block.q[i][j] * difference;
            EXPECT_EQ(sum, static_cast<std::int32_t>(sum));
        }
        sum += block.qBias[i];
        EXPECT_EQ(sum, static_cast<std::int32_t>(sum));
        result[i] = static_cast<double>(sum >> block.qShift);
    }
    return result;
}

template <class Block> Triple byFloats(const Block &block, const Triple &codes)
{
    Triple result;
    for (std::size_t i = 0; i < 3; ++i) {
        const float d0 = static_cast<float>(codes[0]) - block.fOff[0];
        const float d1 = static_cast<float>(codes[1]) - block.fOff[1];
        const float d2 = static_cast<float>(codes[2]) - block.fOff[2];
        result[i] = ((block.f[i][0] * d0 + block.f[i][1] * d1) + block.f[i][2] * d2) + block.fBias[i];
    }
    return result;
}

// A grid over all codes of a depth, with both ends.
std::vector<Triple> grid(int depth)
{
    constexpr int steps = 13;
    std::vector<double> axis;
    for (int i = 0; i <= steps; ++i)
        axis.push_back(depth == 32 ? static_cast<double>(i) / steps : std::floor(top(depth) * i / steps));
    std::vector<Triple> all;
    for (const double a : axis)
        for (const double b : axis)
            for (const double c : axis)
                all.push_back({a, b, c});
    return all;
}

double distance(const Triple &a, const Triple &b)
{
    double most = 0;
    for (std::size_t i = 0; i < 3; ++i)
        most = std::max(most, std::abs(a[i] - b[i]));
    return most;
}

// Codes of depth 16 that are multiples of four lose nothing when they are shortened to 14 bits.
Triple shortened(Triple codes, int depth)
{
    if (depth == 16)
        for (double &code : codes)
            code -= std::fmod(code, 4);
    return codes;
}

CscYuvToRgb toRgb(const Formats &f)
{
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(f.matrix, &kr, &kb);
    CscYuvToRgb block;
    CscBuildYuvToRgb(&block, kr, kb, f.yuvRange, f.yuvDepth, f.rgbRange, f.rgbDepth);
    return block;
}

CscRgbToYuv toYuv(const Formats &f)
{
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(f.matrix, &kr, &kb);
    CscRgbToYuv block;
    CscBuildRgbToYuv(&block, kr, kb, f.rgbRange, f.rgbDepth, f.yuvRange, f.yuvDepth);
    return block;
}

TEST(Coefficients, AreThePublishedOnes)
{
    const CscYuvToRgb sd = toRgb({VCB_CSC_BT601, VCB_CSC_LIMITED, 8, VCB_CSC_FULL, 8});
    const CscYuvToRgb hd = toRgb({VCB_CSC_BT709, VCB_CSC_LIMITED, 8, VCB_CSC_FULL, 8});
    const double sdRows[3][3] = {{1.164383, 0, 1.596027}, {1.164383, -0.391762, -0.812968}, {1.164383, 2.017232, 0}};
    const double hdRows[3][3] = {{1.164383, 0, 1.792741}, {1.164383, -0.213249, -0.532909}, {1.164383, 2.112402, 0}};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(sd.f[i][j], sdRows[i][j], 1e-6);
            EXPECT_NEAR(hd.f[i][j], hdRows[i][j], 1e-6);
            EXPECT_NEAR(sd.q[i][j], sdRows[i][j] * 8192, 0.51);
            EXPECT_NEAR(hd.q[i][j], hdRows[i][j] * 8192, 0.51);
        }
        EXPECT_EQ(sd.q[i][3], 0);
        EXPECT_EQ(sd.f[i][3], 0.0F);
        EXPECT_EQ(sd.qOff[i], i ? 128 : 16);
        EXPECT_EQ(sd.qBias[i], 4096);
    }
    EXPECT_EQ(sd.size, sizeof(CscYuvToRgb));
    EXPECT_EQ(sd.yuvDepth, 8);
    EXPECT_EQ(sd.rgbDepth, 8);
    EXPECT_EQ(sd.qShift, 13);
}

TEST(Coefficients, ToRgbIsCloseToTheMatrix)
{
    for (const Formats &f : allFormats()) {
        SCOPED_TRACE(f.text());
        const CscYuvToRgb block = toRgb(f);
        double integers = 0;
        double floats = 0;
        for (const Triple &point : grid(f.yuvDepth)) {
            const Triple codes = shortened(point, f.isInteger() ? f.yuvDepth : 8);
            const Triple exact = exactRgb(f, codes);
            if (f.isInteger())
                integers = std::max(integers, distance(byIntegers(block, codes, f.yuvDepth), exact));
            floats = std::max(floats, distance(byFloats(block, codes), exact));
        }
        EXPECT_LE(integers, f.rgbDepth == 16 ? 7 : 0.7);
        EXPECT_LE(floats, 2e-6 * top(f.rgbDepth));
        EXPECT_EQ(integers == 0, !f.isInteger());
    }
}

TEST(Coefficients, ToYuvIsCloseToTheMatrix)
{
    for (const Formats &f : allFormats()) {
        SCOPED_TRACE(f.text());
        const CscRgbToYuv block = toYuv(f);
        double integers = 0;
        double floats = 0;
        for (const Triple &point : grid(f.rgbDepth)) {
            const Triple codes = shortened(point, f.isInteger() ? f.rgbDepth : 8);
            const Triple exact = exactYuv(f, codes);
            if (f.isInteger())
                integers = std::max(integers, distance(byIntegers(block, codes, f.rgbDepth), exact));
            floats = std::max(floats, distance(byFloats(block, codes), exact));
        }
        EXPECT_LE(integers, f.yuvDepth == 16 ? 4.1 : 0.6);
        EXPECT_LE(floats, 2e-6 * top(f.yuvDepth));
        EXPECT_EQ(integers == 0, !f.isInteger());
    }
}

TEST(Coefficients, GreysHaveNoChroma)
{
    for (const Formats &f : allFormats()) {
        if (!f.isInteger())
            continue;
        SCOPED_TRACE(f.text());
        const CscRgbToYuv block = toYuv(f);
        const auto last = static_cast<int>(top(f.rgbDepth));
        for (int grey = 0; grey <= last; grey += f.rgbDepth == 16 ? 4 : 1) {
            const double code = grey;
            const Triple yuv = byIntegers(block, {code, code, code}, f.rgbDepth);
            ASSERT_EQ(yuv[1], centre(f.yuvDepth)) << grey;
            ASSERT_EQ(yuv[2], centre(f.yuvDepth)) << grey;
        }
    }
}

TEST(Coefficients, TheUnusedFormIsZero)
{
    for (const Formats &f : allFormats()) {
        if (f.yuvDepth != 32 && f.rgbDepth != 32)
            continue;
        SCOPED_TRACE(f.text());
        const CscYuvToRgb rgb = toRgb(f);
        const CscRgbToYuv yuv = toYuv(f);
        EXPECT_EQ(rgb.qShift, 0);
        EXPECT_EQ(yuv.qShift, 0);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(rgb.qOff[i] | rgb.qBias[i] | rgb.q[i][0] | rgb.q[i][1] | rgb.q[i][2], 0);
            EXPECT_EQ(yuv.qOff[i] | yuv.qBias[i] | yuv.q[i][0] | yuv.q[i][1] | yuv.q[i][2], 0);
        }
    }
}

} // namespace
