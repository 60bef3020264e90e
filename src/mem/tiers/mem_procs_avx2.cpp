#include "simd/avx2.h"

#include "simd/loops.h"

#include "mem/kernels.h"

#include "mem/tiers.hpp"

extern constinit const VcbMemOrderOps vela::memOrderOpsAvx2 = {
    .MemCopy = MemCopy,
};

extern constinit const VcbMemFillOps vela::memFillOpsAvx2 = {
    .MemFill8 = MemFill8,
};

extern constinit const VcbMemArithOps vela::memArithOpsAvx2 = {
    .MemBlend8 = MemBlend8,
    .MemMaxAbsF64 = MemMaxAbsF64,
    .MemSumF32 = MemSumF32,
};

extern constinit const VcbMemMiscOps vela::memMiscOpsAvx2 = {
    .MemPack24 = MemPack24,
    .MemScaleU16 = MemScaleU16,
    .MemDeinterleave32 = MemDeinterleave32,
    .MemMaxAbsS16 = MemMaxMagnitudeS16,
    .MemMaxAbsS32 = MemMaxAbsS32,
    .MemDeviationSumsF32 = MemDeviationSumsF32,
    .MemSumS16F32 = MemSumS16F32,
};
