// Slots 400 and 401 as a host has them, and the state behind them.
#pragma once

#include "colorspace/hdr/conversion.hpp"
#include "oracles/color/hdr.h"

#include <vela/frame.h>
#include <vela/vela.hpp>

namespace vela::test::hdr {

inline bool processorRunsKernels() { return VCB_GetCPUInsHigh() >= VCB_CPU_SSE2; }

inline const VcbColorSpaceProcs &procs()
{
    static const VcbColorSpaceProcs all = ColorSpaceProcs().colorSpace;
    return all;
}

inline void setUp(const Setting &setting)
{
    procs().CscSetupHdrConversion(setting.srcCode, setting.dstCode, &setting.params);
}

inline const colorspace::hdr::State &state() { return colorspace::hdr::state(); }

constexpr float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace vela::test::hdr
