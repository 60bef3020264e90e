#include "frame/cpu.hpp"

#include <gtest/gtest.h>

namespace {

using vela::frame::CpuRegisters;

constexpr uint32_t sse3 = 0x1;
constexpr uint32_t ssse3 = 0x200;
constexpr uint32_t fma = 0x1000;
constexpr uint32_t sse41 = 0x80000;
constexpr uint32_t sse42 = 0x100000;
constexpr uint32_t osxsave = 0x8000000;
constexpr uint32_t avx = 0x10000000;
constexpr uint32_t allSse = sse3 | ssse3 | sse41 | sse42;
constexpr uint32_t sse2InEdx = 0x4000000;
constexpr uint32_t avx2InEbx = 0x20;
constexpr uint32_t xmm = 2;
constexpr uint32_t ymm = 4;

struct Processor {
    const char *what;
    CpuRegisters registers; // hasCpuid, leaf 1 ECX, leaf 1 EDX, leaf 7 EBX, XCR0
    int level;
    bool supportsFma;
};

const Processor processors[] = {
    {"no CPUID, whatever else is set", {false, ~fma, ~0u, ~0u, ~0u}, 0, false},
    {"nothing", {true, 0, 0, 0, 0}, 0, false},
    {"all but SSE2", {true, 0, ~sse2InEdx, ~0u, ~0u}, 0, false},
    {"SSE2", {true, 0, sse2InEdx, 0, 0}, 1, false},
    {"SSE3", {true, sse3, sse2InEdx, 0, 0}, 2, false},
    {"SSSE3", {true, sse3 | ssse3, sse2InEdx, 0, 0}, 3, false},
    {"SSE4.1", {true, sse3 | ssse3 | sse41, sse2InEdx, 0, 0}, 4, false},
    {"SSE4.2", {true, allSse, sse2InEdx, 0, 0}, 5, false},
    {"the best SSE level alone decides", {true, sse42, 0, 0, 0}, 5, false},
    {"AVX", {true, allSse | osxsave | avx, sse2InEdx, 0, xmm | ymm}, 6, false},
    {"AVX without OSXSAVE", {true, allSse | avx, sse2InEdx, 0, xmm | ymm}, 5, false},
    {"OSXSAVE without AVX", {true, allSse | osxsave, sse2InEdx, avx2InEbx, xmm | ymm}, 5, false},
    {"AVX, system saves XMM only", {true, allSse | osxsave | avx, sse2InEdx, 0, xmm}, 5, false},
    {"AVX, system saves YMM only", {true, allSse | osxsave | avx, sse2InEdx, 0, ymm}, 5, false},
    {"AVX2", {true, allSse | osxsave | avx, sse2InEdx, avx2InEbx, xmm | ymm}, 7, false},
    {"AVX2 and FMA", {true, allSse | osxsave | avx | fma, sse2InEdx, avx2InEbx, 0xE7}, 7, true},
    {"AVX2 without OSXSAVE", {true, allSse | avx | fma, sse2InEdx, avx2InEbx, xmm | ymm}, 5, false},
    {"AVX2, system saves nothing", {true, allSse | osxsave | avx | fma, sse2InEdx, avx2InEbx, 1}, 5, false},
    {"AVX2 on a processor with SSSE3 only", {true, ssse3 | sse3, sse2InEdx, avx2InEbx, xmm | ymm}, 3, false},
    {"FMA without AVX2", {true, allSse | osxsave | avx | fma, sse2InEdx, 0, xmm | ymm}, 6, true},
    {"FMA without AVX", {true, allSse | osxsave | fma, sse2InEdx, 0, xmm | ymm}, 5, false},
};

TEST(Cpu, LevelAndFmaFollowFromTheRegisters)
{
    for (const Processor &processor : processors) {
        EXPECT_EQ(vela::frame::levelOf(processor.registers), processor.level) << processor.what;
        EXPECT_EQ(vela::frame::supportsFma(processor.registers), processor.supportsFma) << processor.what;
    }
}

TEST(Cpu, NextLowerLevel)
{
    constexpr struct {
        int32_t level;
        int32_t lower;
    } cases[] = {{0, 0}, {1, 0}, {2, 1}, {3, 2},  {4, 3},    {5, 4},         {6, 5},
                 {7, 6}, {8, 7}, {9, 7}, {-1, 7}, {1000, 7}, {INT32_MIN, 7}, {INT32_MAX, 7}};
    for (const auto &[level, lower] : cases)
        EXPECT_EQ(VCB_GetCPUInsLower(level), lower) << level;
}

TEST(Cpu, DetectionFillsTheFeatureBytes)
{
    const int32_t level = VCB_GetCPUInsHigh();
    EXPECT_GE(level, VCB_CPU_SSE2); // every x86-64 processor
    EXPECT_LE(level, VCB_CPU_AVX2);
    EXPECT_EQ(VCB_GetCPUInsHigh(), level);
    EXPECT_EQ(g_CPUID.cmov, 1); // so does this
    EXPECT_EQ(g_CPUID.popcnt, __builtin_cpu_supports("popcnt") ? 1 : 0);
}

} // namespace
