// Slot 401 against its oracle. Without powers it agrees to the bit, under the kernel check; with them, what is encoded
// must be light within the powers' error. The oracle takes the tables as they are: other tests judge those.

#include "hdr/setup.hpp"
#include "hdr/wide.hpp"
#include "support/fills.hpp"
#include "support/kernel_check.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace vela::test::hdr {
namespace {

Setting current;

void prepare(const Setting &setting)
{
    current = setting;
    setUp(setting);
}

void VCB_CALL convertByOracle(const float *src, float *dst, const float *matrix, std::int32_t count)
{
    for (std::int64_t i = 0; i < count; ++i)
        encodePixel(dst + 4 * i, lightOfPixel<float>(src + 4 * i, matrix, current, state().input), current.dstCode,
                    state().output);
}

// The kernel itself, a pixel at a time.
void VCB_CALL convertOneByOne(const float *src, float *dst, const float *matrix, std::int32_t count)
{
    for (std::int64_t i = 0; i < count; ++i)
        procs().CscConvertHdrPixels(src + 4 * i, dst + 4 * i, matrix, 1);
}

void VCB_CALL convertWide(const float *src, float *dst, const float *matrix, std::int32_t count)
{
    hdrWide.convert(state().plan, src, dst, matrix, count);
}

// BT.2020 to BT.709, and what no host sends.
constexpr float toBt709[16] = {1.6605F,  -0.5876F, -0.0728F, 0, -0.1246F, 1.1329F, -0.0083F, 0,
                               -0.0182F, -0.1006F, 1.1187F,  0, 0,        0,       0,        1};
const float wild[16] = {1e30F,
                        -1e30F,
                        0,
                        1e-40F,
                        -3,
                        700,
                        std::numeric_limits<float>::infinity(),
                        0,
                        0.5F,
                        std::numeric_limits<float>::quiet_NaN(),
                        1,
                        -0.0F,
                        1,
                        2,
                        3,
                        -4};

KernelCase pixelCase()
{
    Argument matrix = fixedSource(sizeof(identity));
    KernelCase pixels =
        kernelCase<&VcbColorSpaceProcs::CscConvertHdrPixels>({source(16), destination(16), std::move(matrix), count()});
    return pixels.mayShare({{1, 0}});
}

void check(const char *what, VcbKernel kernel, VcbKernel oracle)
{
    CheckPlan plan;
    plan.everyCountUpTo = 37;
    plan.quick = std::getenv("VELA_CHECK_QUICK") != nullptr;
    const KernelCase pixels = pixelCase();
    ASSERT_EQ(contradiction(pixels).value_or(""), "");
    const CheckResult result = checkKernel(pixels, kernel, oracle, plan);
    ASSERT_GT(result.runs, 0u);
    EXPECT_FALSE(result.finding) << what << ", codes " << current.srcCode << " to " << current.dstCode << ", tone map "
                                 << current.params.toneMapMode << ": " << faultName(result.finding->fault) << "\n  "
                                 << result.finding->text;
}

template <class Kernel> VcbKernel anyKernel(Kernel *kernel) { return reinterpret_cast<VcbKernel>(kernel); }

Setting settingOf(std::int32_t srcCode, std::int32_t dstCode, std::int32_t toneMapMode, std::int32_t adjustMode = 0,
                  float srcPeak = 1000, float dstPeak = 300)
{
    Setting setting{srcCode, dstCode, VELA_HDR_CONVERSION_DEFAULTS};
    setting.params.toneMapMode = toneMapMode;
    setting.params.adjustMode = adjustMode;
    setting.params.srcPeakLuminance = srcPeak;
    setting.params.dstPeakLuminance = dstPeak;
    return setting;
}

// Pixels from black to beyond white: greys, colours, random ones.
std::vector<float> someColours()
{
    std::vector<float> pixels;
    const auto add = [&](float r, float g, float b, float a) { pixels.insert(pixels.end(), {r, g, b, a}); };
    for (int i = 0; i <= 2000; ++i) {
        const float x = static_cast<float>(i) / 1990.0F;
        add(x, x, x, 1);
        add(x, 0, x * 0.5F, 0.5F);
        add(0, x * 0.9F, 1 - x, x);
    }
    Random random(5);
    const auto unit = [&] { return static_cast<float>(random.below(1 << 20)) / (1 << 20); };
    for (int i = 0; i < 4000; ++i)
        add(unit(), unit(), unit(), unit());
    return pixels;
}

class HdrPixels : public testing::Test {
protected:
    void SetUp() override
    {
        if (!processorRunsKernels())
            GTEST_SKIP() << "no kernels on this processor";
    }
};

// --- Every count, place, alignment; in place; any values ----------------------------------------------------

TEST_F(HdrPixels, WithoutPowersAgreeToTheBit)
{
    for (const Setting &setting : {settingOf(16, 1, 0), settingOf(110, 200, 0), settingOf(200, 4, 1),
                                   settingOf(230, 210, 1), settingOf(4, 16, 7), settingOf(112, 8, -1)}) {
        prepare(setting);
        ASSERT_FALSE(setting.hasPowers());
        check("oracle", anyKernel(procs().CscConvertHdrPixels), anyKernel(convertByOracle));
        // Matrices of the check are as wild as its pixels; these leave light where tables have entries.
        const std::vector<float> pixels = someColours();
        for (const float(*matrix)[16] : {&identity, &toBt709}) {
            std::vector<float> found(pixels.size());
            std::vector<float> expected(pixels.size());
            procs().CscConvertHdrPixels(pixels.data(), found.data(), *matrix, static_cast<int>(pixels.size() / 4));
            convertByOracle(pixels.data(), expected.data(), *matrix, static_cast<int>(pixels.size() / 4));
            EXPECT_EQ(found, expected);
        }
        if (VCB_GetCPUInsHigh() >= VCB_CPU_AVX2)
            check("256 bits", anyKernel(convertWide), anyKernel(convertByOracle));
    }
}

TEST_F(HdrPixels, ArePixelsOfTheirOwn)
{
    for (const Setting &setting : {settingOf(16, 1, 2), settingOf(18, 18, 3, 1), settingOf(18, 4, 2, 1, 1000, 100)}) {
        prepare(setting);
        check("one by one", anyKernel(procs().CscConvertHdrPixels), anyKernel(convertOneByOne));
        if (VCB_GetCPUInsHigh() >= VCB_CPU_AVX2)
            check("256 bits", anyKernel(convertWide), anyKernel(convertOneByOne));
    }
}

// --- Light within the powers' error -------------------------------------------------------------------------

// Sums of products of positive numbers keep the relative error of their terms; light of other signs gets the error of
// the pixel's largest component.
void expectWithin(double relative, const float (&matrix)[16])
{
    const std::vector<float> pixels = someColours();
    std::vector<float> found(pixels.size());
    procs().CscConvertHdrPixels(pixels.data(), found.data(), matrix, static_cast<std::int32_t>(pixels.size() / 4));
    const int steps = 4096;
    const int top = steps * scaleOf(current.dstCode) - 1;
    const auto encoded = [&](double light) {
        const double at = std::min(std::max(light * steps, 0.0), static_cast<double>(top));
        return limited(state().output[static_cast<int>(at)], 1.0F);
    };
    double moved = 0; // that a conversion does something shows in its results
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const Pixel<double> light = lightOfPixel<double>(&pixels[i], matrix, current, state().input);
        const double size = std::max({std::abs(light[0]), std::abs(light[1]), std::abs(light[2]), std::abs(light[3])});
        for (std::size_t c = 0; c < 4; ++c) {
            const double margin = relative * size;
            const double low = c == 3 ? limited(light[c] - margin, 1.0) : encoded(light[c] - margin);
            const double high = c == 3 ? limited(light[c] + margin, 1.0) : encoded(light[c] + margin);
            ASSERT_GE(static_cast<double>(found[i + c]), low - 1e-12)
                << "pixel " << i / 4 << " component " << c << ": light " << light[c];
            ASSERT_LE(static_cast<double>(found[i + c]), high + 1e-12)
                << "pixel " << i / 4 << " component " << c << ": light " << light[c];
            moved += std::abs(static_cast<double>(found[i + c]) - static_cast<double>(pixels[i + c]));
        }
    }
    EXPECT_GT(moved, 1.0);
}

TEST_F(HdrPixels, WithPowersAreWithinTheirError)
{
    const struct {
        Setting setting;
        double relative;
    } all[] = {
        {settingOf(18, 4, 0), 5e-7},                 // rendering
        {settingOf(4, 18, 0), 5e-7},                 // its inverse
        {settingOf(18, 18, 0), 5e-7},                //
        {settingOf(16, 13, 3), 5e-7},                // scene light
        {settingOf(16, 13, 3, 0, 1000, 1000), 5e-7}, //
        {settingOf(16, 13, 3, 0, 1000, 0), 5e-7},    // as 2 cd/m2
        {settingOf(18, 1, 3, 1, 1000, 100), 2e-6},   //
        {settingOf(228, 4, 0, 1), 5e-7},             // adjustment
        {settingOf(16, 16, 2, 0, 1000, 300), 4e-6},  // roll-off
        {settingOf(16, 4, 2, 0, 1000, 100), 4e-6},   //
        {settingOf(120, 4, 2, 0, 4000, 203), 4e-6},  //
        {settingOf(16, 16, 2, 0, 10000, 1), 4e-6},   // a knee below black
        {settingOf(16, 16, 2, 0, 100, 1000), 5e-7},  // a target brighter than the source
        {settingOf(16, 16, 2, 0, 400, 400), 5e-7},   //
        {settingOf(16, 16, 2, 0, -5, 100), 5e-7},    // no source
    };
    for (const auto &[setting, relative] : all) {
        SCOPED_TRACE(testing::Message() << "codes " << setting.srcCode << " to " << setting.dstCode << ", tone map "
                                        << setting.params.toneMapMode << ", peaks " << setting.params.srcPeakLuminance
                                        << " to " << setting.params.dstPeakLuminance);
        prepare(setting);
        expectWithin(relative, identity);
        expectWithin(relative * 4, toBt709);
    }
}

// --- Values that can be said in words -----------------------------------------------------------------------

// What becomes of light, decoded by PQ and encoded by a table fine enough to read it back.
double lightAfter(double light, int component = 0)
{
    const auto code = static_cast<float>(codeOf(16, light));
    float pixel[4] = {code, code, code, 1};
    procs().CscConvertHdrPixels(pixel, pixel, identity, 1);
    return lightOf(current.dstCode, static_cast<double>(pixel[component]));
}

TEST_F(HdrPixels, KneeHasItsPoints)
{
    // In alpha light goes in and out as it is.
    prepare(settingOf(4, 4, 1));
    const float points[][2] = {{0, 0.0005F},
                               {0.0005F, 0.0005F},
                               {3.3F, 0.85F},
                               {5.8F, 0.97F},
                               {10, 1},
                               {20, 1},
                               {-1, 0.0005F},
                               {1, 0.25783F},
                               {std::numeric_limits<float>::quiet_NaN(), 0.0005F}};
    for (const auto &[from, to] : points) {
        float pixel[4] = {0, 0, 0, from};
        procs().CscConvertHdrPixels(pixel, pixel, identity, 1);
        EXPECT_NEAR(pixel[3], to, 1e-4F * to) << from;
    }
}

TEST_F(HdrPixels, RollOffMapsPeakToPeakAndKeepsWhatIsDark)
{
    prepare(settingOf(16, 16, 2, 0, 1000, 300));
    EXPECT_NEAR(lightAfter(10), 3, 0.01) << "the source's peak becomes the target's";
    EXPECT_NEAR(lightAfter(40), 3, 0.01) << "and so does what is above it";
    EXPECT_NEAR(lightAfter(0.5), 0.5, 0.01);
    double last = -1;
    for (double light = 0; light <= 20; light += 0.01) {
        const double after = lightAfter(light);
        ASSERT_GE(after, last) << light;
        ASSERT_LE(after, light + 0.01) << light;
        last = after;
    }
    prepare(settingOf(16, 16, 2, 0, 300, 300));
    for (const double light : {0.01, 1.0, 2.99})
        EXPECT_NEAR(lightAfter(light), light, 0.004 * light + 0.0005) << "equal peaks";
    EXPECT_NEAR(lightAfter(9), 3, 0.01);
}

TEST_F(HdrPixels, SceneLightIsRelativeToTheTargetsPeak)
{
    for (const float peak : {100.0F, 600.0F, 1000.0F, 2000.0F}) {
        prepare(settingOf(16, 16, 3, 0, 1000, peak));
        EXPECT_NEAR(lightAfter(10), 1, 0.003) << peak;
        EXPECT_NEAR(lightAfter(0), 0, 0.0003) << peak;
    }
    prepare(settingOf(16, 16, 3, 0, 1000, 1000));
    EXPECT_NEAR(lightAfter(2), 0.2, 0.001) << "the display that it came from: nothing but the scale";
}

TEST_F(HdrPixels, HybridLogGammaReturnsWhatItTook)
{
    prepare(settingOf(18, 18, 0));
    for (float code = 0.25F; code < 1; code += 0.03F) {
        float pixel[4] = {code, code * 0.9F, code * 0.8F, 1};
        const float before[4] = {pixel[0], pixel[1], pixel[2], pixel[3]};
        procs().CscConvertHdrPixels(pixel, pixel, identity, 1);
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(pixel[c], before[c], 0.0008F) << code << " component " << c;
    }
}

TEST_F(HdrPixels, PowerReturnsWhatItTook)
{
    prepare(settingOf(4, 4, 0));
    for (float code = 0.05F; code < 1; code += 0.01F) {
        float pixel[4] = {code, code, code, 1};
        procs().CscConvertHdrPixels(pixel, pixel, identity, 1);
        // A step of light is 1/4096, a step of codes 1/4095: as far below the code as both together.
        const double light = std::pow(static_cast<double>(code), 2.2);
        const double step = std::pow(light, 0.4545454) - std::pow(std::max(light - 1.0 / 4096, 0.0), 0.4545454);
        EXPECT_LE(pixel[0], code + 1e-6F);
        EXPECT_GE(static_cast<double>(pixel[0]), static_cast<double>(code) - step - 1.0 / 4095 - 1e-6);
    }
}

TEST_F(HdrPixels, AnythingEndsUpWithin0And1)
{
    Random random(11);
    std::vector<float> pixels(4 * 512);
    const Parameter floats = parameterOf<float *>();
    for (const std::int32_t mode : {0, 1, 2, 3}) {
        for (const std::int32_t code : {4, 16, 18, 100, 110, 210}) {
            Setting setting = settingOf(code, code, mode, 1, mode == 2 ? std::numeric_limits<float>::infinity() : 1,
                                        std::numeric_limits<float>::quiet_NaN());
            setting.params.adjustGain = 1e20F;
            prepare(setting);
            for (const float(*matrix)[16] : {&identity, &toBt709, &wild}) {
                for (const Fill fill : fills) {
                    fillRow(reinterpret_cast<std::uint8_t *>(pixels.data()), pixels.size() * sizeof(float), floats,
                            fill, random);
                    procs().CscConvertHdrPixels(pixels.data(), pixels.data(), *matrix, 512);
                    for (const float x : pixels)
                        ASSERT_TRUE(x >= 0 && x <= 1) << x << " by code " << code << ", tone map " << mode;
                }
            }
        }
    }
}

} // namespace
} // namespace vela::test::hdr
