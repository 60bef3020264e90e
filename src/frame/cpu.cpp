#include "frame/cpu.hpp"

#include <atomic>
#include <cpuid.h>

namespace vela::frame {
namespace {

namespace leaf1Ecx {
constexpr uint32_t sse3 = 1u << 0;
constexpr uint32_t ssse3 = 1u << 9;
constexpr uint32_t fma = 1u << 12;
constexpr uint32_t sse41 = 1u << 19;
constexpr uint32_t sse42 = 1u << 20;
constexpr uint32_t popcnt = 1u << 23;
constexpr uint32_t osxsave = 1u << 27;
constexpr uint32_t avx = 1u << 28;
} // namespace leaf1Ecx

namespace leaf1Edx {
constexpr uint32_t cmov = 1u << 15;
constexpr uint32_t sse2 = 1u << 26;
} // namespace leaf1Edx

constexpr uint32_t leaf7EbxAvx2 = 1u << 5;
constexpr uint32_t xcr0SseAndAvxState = 6; // the operating system saves XMM and YMM registers

constexpr bool has(uint32_t flags, uint32_t wanted) { return (flags & wanted) == wanted; }

bool avxUsable(const CpuRegisters &cpu)
{
    return has(cpu.leaf1Ecx, leaf1Ecx::osxsave | leaf1Ecx::avx) && has(cpu.xcr0, xcr0SseAndAvxState);
}

// XGETBV faults unless OSXSAVE is set. Written as assembly since the intrinsic needs a target flag.
uint32_t readXcr0()
{
    uint32_t low = 0;
    uint32_t high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

std::atomic<int32_t> detectedLevel{VCB_CPU_UNDETECTED};

} // namespace

CpuRegisters readCpuRegisters() noexcept
{
    CpuRegisters cpu;
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx))
        return cpu;
    cpu.hasCpuid = true;
    cpu.leaf1Ecx = ecx;
    cpu.leaf1Edx = edx;
    if (has(ecx, leaf1Ecx::osxsave))
        cpu.xcr0 = readXcr0();
    if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) // fails below leaf 7
        cpu.leaf7Ebx = ebx;
    return cpu;
}

VcbCpuLevel levelOf(const CpuRegisters &cpu) noexcept
{
    if (!cpu.hasCpuid)
        return VCB_CPU_NONE;
    if (avxUsable(cpu))
        return has(cpu.leaf7Ebx, leaf7EbxAvx2) ? VCB_CPU_AVX2 : VCB_CPU_AVX;
    if (has(cpu.leaf1Ecx, leaf1Ecx::sse42))
        return VCB_CPU_SSE42;
    if (has(cpu.leaf1Ecx, leaf1Ecx::sse41))
        return VCB_CPU_SSE41;
    if (has(cpu.leaf1Ecx, leaf1Ecx::ssse3))
        return VCB_CPU_SSSE3;
    if (has(cpu.leaf1Ecx, leaf1Ecx::sse3))
        return VCB_CPU_SSE3;
    if (has(cpu.leaf1Edx, leaf1Edx::sse2))
        return VCB_CPU_SSE2;
    return VCB_CPU_NONE;
}

bool supportsFma(const CpuRegisters &cpu) noexcept { return avxUsable(cpu) && has(cpu.leaf1Ecx, leaf1Ecx::fma); }

VcbCpuLevel cpuLevel() noexcept
{
    int32_t level = detectedLevel.load(std::memory_order_acquire);
    if (level == VCB_CPU_UNDETECTED) {
        // Two threads may both get here; they store the same values.
        const CpuRegisters cpu = readCpuRegisters();
        level = levelOf(cpu);
        if (cpu.hasCpuid) {
            g_CPUID.popcnt = has(cpu.leaf1Ecx, leaf1Ecx::popcnt);
            g_CPUID.cmov = has(cpu.leaf1Edx, leaf1Edx::cmov);
        }
        detectedLevel.store(level, std::memory_order_release);
    }
    return static_cast<VcbCpuLevel>(level);
}

} // namespace vela::frame

extern "C" {

int32_t VCB_CALL VCB_GetCPUInsHigh() noexcept { return vela::frame::cpuLevel(); }

int32_t VCB_CALL VCB_GetCPUInsLower(int32_t level) noexcept
{
    if (level == VCB_CPU_NONE)
        return VCB_CPU_NONE;
    return level >= 1 && level <= VCB_CPU_UNDETECTED ? level - 1 : VCB_CPU_AVX2;
}

uint8_t VCB_CALL VCB_SupportFMA() noexcept { return vela::frame::supportsFma(vela::frame::readCpuRegisters()); }
}
