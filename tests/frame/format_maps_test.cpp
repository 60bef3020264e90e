#include "colorspace/format_maps.hpp"

#include "colorspace/tiers.hpp"

#include <gtest/gtest.h>
#include <vela/vela.hpp>

#include <array>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace vela::colorspace {
namespace {

// --- The container, with kernels that only have addresses ---------------------------------------------------

using Kernel = void();
void kernelA() {}
void kernelB() {}
using Map = FormatMap<Kernel>;

TEST(FormatMap, BeginsEmptyAndRemembersWhatItWasAskedFor)
{
    Map map;
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map[5], nullptr);
    EXPECT_EQ(map.size(), 1u);
    EXPECT_EQ(map[5], nullptr);
    EXPECT_EQ(map.size(), 1u) << "known by now";
    EXPECT_TRUE(map.assign(5, kernelA));
    EXPECT_EQ(map.size(), 1u) << "an assignment fills the empty entry";
    EXPECT_EQ(map[5], kernelA);
}

TEST(FormatMap, AssigningAgainReplaces)
{
    Map map;
    EXPECT_TRUE(map.assign(7, kernelA));
    EXPECT_TRUE(map.assign(8, kernelA));
    EXPECT_TRUE(map.assign(7, kernelB));
    EXPECT_EQ(map.size(), 2u);
    EXPECT_EQ(map[7], kernelB);
    EXPECT_EQ(map[8], kernelA);
}

TEST(FormatMap, AnyNumberIsACode)
{
    Map map;
    for (const std::int32_t code : {INT32_MIN, -1, 0, 1, INT32_MAX}) {
        EXPECT_EQ(map[code], nullptr) << code;
        EXPECT_TRUE(map.assign(code, kernelA));
        EXPECT_EQ(map[code], kernelA) << code;
    }
    EXPECT_EQ(map.size(), 5u);
}

TEST(FormatMap, UnknownCodesLeaveRoomForAssignments)
{
    Map map;
    for (std::int32_t code = 1000; code < 3000; ++code)
        EXPECT_EQ(map[code], nullptr);
    EXPECT_EQ(map.size(), Map::entries - Map::keptForAssignments);
    for (std::int32_t code = 0; code < std::int32_t{Map::keptForAssignments}; ++code)
        EXPECT_TRUE(map.assign(code, kernelA)) << code;
    for (std::int32_t code = 0; code < std::int32_t{Map::keptForAssignments}; ++code)
        EXPECT_EQ(map[code], kernelA) << code;
    EXPECT_EQ(map.size(), Map::entries);
    EXPECT_FALSE(map.assign(-1, kernelA)) << "full";
    EXPECT_EQ(map[-1], nullptr);
    EXPECT_EQ(map[2999], nullptr);
    EXPECT_TRUE(map.assign(1000, kernelB)) << "has its entry";
    EXPECT_EQ(map[1000], kernelB);
}

// Every thread asks for the same new codes at the same time, and for known ones in between.
TEST(FormatMap, LookUpsAndInsertionsMayMeet)
{
    constexpr std::int32_t known = 10;
    constexpr std::int32_t unknown = 20; // fewer than there is room for
    for (int round = 0; round < 200; ++round) {
        Map map;
        for (std::int32_t code = 0; code < known; ++code)
            ASSERT_TRUE(map.assign(code, code % 2 ? kernelA : kernelB));
        std::atomic<bool> start{false};
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (std::int32_t t = 0; t < 4; ++t)
            threads.emplace_back([&, t] {
                while (!start.load())
                    std::this_thread::yield();
                for (std::int32_t i = 0; i < 2 * unknown; ++i) {
                    const std::int32_t fresh = 100 + (i + 5 * t) % unknown;
                    const std::int32_t old = (i + t) % known;
                    wrong += map[fresh] != nullptr;
                    wrong += map[old] != (old % 2 ? kernelA : kernelB);
                }
            });
        start = true;
        for (std::thread &thread : threads)
            thread.join();
        ASSERT_EQ(wrong.load(), 0);
        ASSERT_EQ(map.size(), std::size_t{known + unknown}) << "every code once";
    }
}

// --- The maps of the library ---------------------------------------------------------------------------------

using Procs = VcbColorSpaceProcs;

const std::map<std::int32_t, int> slotsOfMap1 = {
    {3, 139},    {6, 138},    {7, 143},    {8, 137},    {9, 137},    {1014, 141}, {1015, 151},
    {1024, 142}, {1025, 142}, {1047, 142}, {1050, 142}, {1053, 141}, {1054, 151},
};
const std::map<std::int32_t, int> slotsOfMap2 = {
    {3, 146},    {4, 147},    {6, 145},    {7, 150},    {8, 144},    {9, 144},
    {1014, 148}, {1024, 149}, {1025, 149}, {1047, 149}, {1050, 149},
};

bool processorRunsKernels() { return VCB_GetCPUInsHigh() >= VCB_CPU_SSE2; }

template <class Kernel> Kernel *baseKernel(int slot)
{
    return reinterpret_cast<Kernel *>(slotPointer(colorSpaceProcsSse2, static_cast<std::size_t>(slot)));
}

// Every code of -100 to 2000: what the lists above say, or nothing.
template <class Kernel> void expectMap(FormatMap<Kernel> &map, const std::map<std::int32_t, int> &slots)
{
    for (std::int32_t code = -100; code <= 2000; ++code) {
        const auto listed = slots.find(code);
        EXPECT_EQ(map[code], listed == slots.end() ? nullptr : baseKernel<Kernel>(listed->second)) << code;
    }
}

TEST(FormatMaps, RegistrationWithoutATableFillsThem)
{
    VcbColorSpaceTables tables{};
    VCB_RegColorSpace(&tables);
    expectMap(formatMap1, slotsOfMap1);
    expectMap(formatMap2, slotsOfMap2);
    const std::size_t sizes[] = {formatMap1.size(), formatMap2.size()};
    VCB_RegColorSpace(&tables);
    VCB_RegColorSpace(nullptr);
    EXPECT_EQ(formatMap1.size(), sizes[0]);
    EXPECT_EQ(formatMap2.size(), sizes[1]);
    expectMap(formatMap1, slotsOfMap1);
    expectMap(formatMap2, slotsOfMap2);
}

class FormatSlots : public testing::Test {
protected:
    static constexpr std::int32_t width = 37;

    void SetUp() override
    {
        if (!processorRunsKernels())
            GTEST_SKIP() << "no kernels on this processor";
        std::uint32_t state = 1;
        for (std::uint8_t &byte : bytes)
            byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
        for (std::size_t i = 0; i < floats.size(); ++i)
            floats[i] = static_cast<float>(bytes[i]) / 200.0F - 0.1F;
    }

    const Procs procs = ColorSpaceProcs().colorSpace;
    std::array<std::uint8_t, 8 * width> bytes{}; // the largest coded pixel has 8 bytes
    std::array<float, 4 * width> floats{};
};

TEST_F(FormatSlots, Map1ConvertsAsTheSlotsDo)
{
    for (const auto &[code, slot] : slotsOfMap1) {
        std::array<float, 4 * width + 1> expected;
        std::array<float, 4 * width + 1> found;
        expected.fill(-7);
        found.fill(-7);
        baseKernel<RowToFloats>(slot)(expected.data(), bytes.data(), width);
        procs.CscConvertByCodeMap1(code, found.data(), bytes.data(), width);
        EXPECT_EQ(found, expected) << code;
        EXPECT_NE(found.front(), -7) << code;
    }
}

TEST_F(FormatSlots, Map2ConvertsAsTheSlotsDo)
{
    for (const auto &[code, slot] : slotsOfMap2) {
        std::array<std::uint8_t, 8 * width + 1> expected;
        std::array<std::uint8_t, 8 * width + 1> found;
        std::array<std::uint8_t, 8 * width + 1> untouched;
        expected.fill(0xA5);
        found.fill(0xA5);
        untouched.fill(0xA5);
        baseKernel<RowFromFloats>(slot)(expected.data(), floats.data(), width);
        procs.CscConvertByCodeMap2(code, found.data(), floats.data(), width);
        EXPECT_EQ(found, expected) << code;
        EXPECT_NE(found, untouched) << code;
    }
}

TEST_F(FormatSlots, UnknownCodesTouchNothing)
{
    // Codes of neither map, and those that only the other one has. The rows do not exist.
    for (const std::int32_t code : {INT32_MIN, -1, 0, 1, 2, 4, 5, 10, 1013, 1016, 1037, 1044, 1055, INT32_MAX})
        procs.CscConvertByCodeMap1(code, nullptr, nullptr, width);
    for (const std::int32_t code : {INT32_MIN, -1, 0, 1, 2, 5, 10, 1013, 1015, 1037, 1053, 1054, 1055, INT32_MAX})
        procs.CscConvertByCodeMap2(code, nullptr, nullptr, width);
}

TEST_F(FormatSlots, ConvertWhileOtherThreadsAskForUnknownCodes)
{
    std::array<float, 4 * width> expected{};
    procs.CscConvertByCodeMap1(8, expected.data(), bytes.data(), width);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (std::int32_t t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (std::int32_t i = 0; i < 1000; ++i) {
                std::array<float, 4 * width> row{};
                procs.CscConvertByCodeMap1(5000 + 7 * i + t, nullptr, nullptr, width);
                procs.CscConvertByCodeMap2(5000 + 7 * i + t, nullptr, nullptr, width);
                procs.CscConvertByCodeMap1(t % 2 ? 8 : 9, row.data(), bytes.data(), width);
                wrong += row != expected;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
}

} // namespace
} // namespace vela::colorspace
