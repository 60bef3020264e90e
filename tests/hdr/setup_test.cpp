// What slot 400 takes from its arguments and what it leaves: codes, tables, scales, the block.

#include "hdr/setup.hpp"

#include "colorspace/tiers.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

namespace vela::test::hdr {
namespace {

using colorspace::hdr::Builder;
using colorspace::hdr::formatMap3;
using colorspace::hdr::formatMap4;

// Converted ahead of every test: no set-up has been.
const std::array<float, 12> beforeSetUp = [] {
    std::array<float, 12> pixels = {0, 0.25F, 0.5F, 0.75F, 1, 2, -1, 1.5F, 0.1F, 0.9F, 0.33F, -0.5F};
    if (processorRunsKernels())
        procs().CscConvertHdrPixels(pixels.data(), pixels.data(), identity, 3);
    return pixels;
}();

class HdrSetUp : public testing::Test {
protected:
    void SetUp() override
    {
        if (!processorRunsKernels())
            GTEST_SKIP() << "no kernels on this processor";
    }
};

// What a set-up leaves of the tables.
struct Tables {
    std::vector<float> input{state().input, state().input + colorspace::hdr::inputEntries};
    std::vector<float> output{state().output, state().output + colorspace::hdr::outputEntries};
    bool operator==(const Tables &) const = default;
};

TEST_F(HdrSetUp, BeforeItTheConversionIsTheIdentity)
{
    // Two steps of the tables down at most.
    const float expected[] = {0, 0.25F, 0.5F, 0.75F, 1, 1, 0, 1, 0.1F, 0.9F, 0.33F, 0};
    for (std::size_t i = 0; i < beforeSetUp.size(); ++i) {
        EXPECT_LE(beforeSetUp[i], expected[i]) << i;
        EXPECT_GE(beforeSetUp[i], expected[i] - 0.0005F) << i;
    }
}

TEST_F(HdrSetUp, MapsHoldABuilderForEveryCurve)
{
    const auto noOp = reinterpret_cast<Builder *>(colorSpaceProcsSse2.CscNoOp053);
    std::set<Builder *> builders;
    for (auto *const map : {&formatMap3, &formatMap4}) {
        for (const std::int32_t code : curveCodes) {
            EXPECT_TRUE((*map)[code]) << code;
            builders.insert((*map)[code]);
        }
        EXPECT_EQ((*map)[14], (*map)[1]);
        for (const std::int32_t code : codesWithoutCurve)
            EXPECT_EQ((*map)[code], noOp) << code;
    }
    EXPECT_EQ(builders.size(), 2 * (std::size(curveCodes) - 1)) << "1 and 14 share theirs";
    EXPECT_FALSE(builders.contains(noOp));
}

TEST_F(HdrSetUp, UnknownCodesGetAnEmptyEntryAndChangeNothingOnTheirSide)
{
    setUp({16, 4, VELA_HDR_CONVERSION_DEFAULTS});
    const Tables before;
    for (const std::int32_t code : {INT32_MIN, -1, 0, 2, 3, 7, 17, 103, INT32_MAX}) {
        const bool known = formatMap3[code] || formatMap4[code];
        EXPECT_FALSE(known) << code;
        setUp({code, code, VELA_HDR_CONVERSION_DEFAULTS});
        EXPECT_EQ(state().srcCode, 16);
        EXPECT_EQ(state().dstCode, 4);
    }
    EXPECT_TRUE(Tables() == before);

    // The other side takes its code all the same.
    setUp({3, 110, VELA_HDR_CONVERSION_DEFAULTS});
    EXPECT_EQ(state().srcCode, 16);
    EXPECT_EQ(state().dstCode, 110);
    EXPECT_EQ(Tables().input, before.input);
    EXPECT_NE(Tables().output, before.output);
    EXPECT_EQ(state().srcScale, 16);
    EXPECT_EQ(state().dstScale, 64);
    setUp({200, 3, VELA_HDR_CONVERSION_DEFAULTS});
    EXPECT_EQ(state().srcCode, 200);
    EXPECT_EQ(state().dstCode, 110);
    EXPECT_EQ(state().srcScale, 64);
    EXPECT_EQ(state().dstScale, 64);
}

TEST_F(HdrSetUp, CodesThatDoNothingAreTakenAndLeaveTheTables)
{
    setUp({111, 112, VELA_HDR_CONVERSION_DEFAULTS});
    const Tables before;
    for (const std::int32_t code : codesWithoutCurve) {
        setUp({code, code, VELA_HDR_CONVERSION_DEFAULTS});
        EXPECT_EQ(state().srcCode, code);
        EXPECT_EQ(state().dstCode, code);
        EXPECT_EQ(state().srcScale, 16);
        EXPECT_EQ(state().dstScale, 16);
        EXPECT_TRUE(Tables() == before) << code;
    }
}

// Every scale, as slot 401 shows it: of an input of 0.5, and of light beyond the table's end.
TEST_F(HdrSetUp, CodesHaveTheirScales)
{
    for (const std::int32_t code : curveCodes) {
        setUp({code, code, VELA_HDR_CONVERSION_DEFAULTS});
        EXPECT_EQ(state().srcScale, scaleOf(code)) << code;
        EXPECT_EQ(state().plan.inputTop, static_cast<float>(256 * scaleOf(code) - 1)) << code;
        EXPECT_EQ(state().plan.outputTop, static_cast<float>(4096 * scaleOf(code) - 1)) << code;
    }
}

TEST_F(HdrSetUp, CopiesTheWholeBlock)
{
    HdrConversionParams params;
    static_assert(sizeof(params) == 12 * sizeof(float));
    std::array<std::uint32_t, 12> words;
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = 0x3F800000 + static_cast<std::uint32_t>(i);
    std::memcpy(&params, words.data(), sizeof(params));
    setUp({2, 2, params});
    EXPECT_EQ(std::memcmp(&state().params, words.data(), sizeof(params)), 0);
}

TEST_F(HdrSetUp, RegisteringAgainChangesNothing)
{
    setUp({16, 18, VELA_HDR_CONVERSION_DEFAULTS});
    const Tables before;
    const std::size_t sizes[] = {formatMap3.size(), formatMap4.size()};
    VCB_RegColorSpace(nullptr);
    EXPECT_TRUE(Tables() == before);
    EXPECT_EQ(state().srcCode, 16);
    EXPECT_EQ(formatMap3.size(), sizes[0]);
    EXPECT_EQ(formatMap4.size(), sizes[1]);
}

// A set-up, then conversions on several threads, again and again.
TEST_F(HdrSetUp, ConversionsMayMeet)
{
    std::vector<float> pixels(4 * 999);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<float>(i % 1001) / 1000.0F;
    for (const std::int32_t code : {16, 18, 110, 1}) {
        Setting setting{code, 4, VELA_HDR_CONVERSION_DEFAULTS};
        setting.params.toneMapMode = code == 1 ? 0 : 2;
        setUp(setting);
        std::vector<float> expected(pixels.size());
        procs().CscConvertHdrPixels(pixels.data(), expected.data(), identity, 999);
        std::vector<std::vector<float>> found(4, std::vector<float>(pixels.size()));
        std::vector<std::thread> threads;
        for (std::vector<float> &own : found)
            threads.emplace_back([&] {
                for (int round = 0; round < 20; ++round)
                    procs().CscConvertHdrPixels(pixels.data(), own.data(), identity, 999);
            });
        for (std::thread &thread : threads)
            thread.join();
        for (const std::vector<float> &own : found)
            EXPECT_EQ(own, expected) << code;
    }
}

} // namespace
} // namespace vela::test::hdr
