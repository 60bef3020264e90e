// Processor detection: which kernels may run here.
#pragma once

#include <vela/frame.h>

namespace vela::frame {

// What CPUID and XGETBV say, as far as it matters here.
struct CpuRegisters {
    bool hasCpuid = false;
    uint32_t leaf1Ecx = 0;
    uint32_t leaf1Edx = 0;
    uint32_t leaf7Ebx = 0; // 0 if the processor has no leaf 7
    uint32_t xcr0 = 0;     // 0 unless leaf 1 shows OSXSAVE
};

CpuRegisters readCpuRegisters() noexcept;

VcbCpuLevel levelOf(const CpuRegisters &cpu) noexcept;
bool supportsFma(const CpuRegisters &cpu) noexcept;

// The level of this processor; the first call detects it and fills g_CPUID.
VcbCpuLevel cpuLevel() noexcept;

} // namespace vela::frame
