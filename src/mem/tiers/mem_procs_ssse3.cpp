#include "simd/ssse3.h"

#include "simd/loops.h"

#include "mem/kernels.h"

#include "mem/tiers.hpp"

extern constinit const VcbMemMiscOps vela::memMiscOpsSsse3 = {
    .MemPack24 = MemPack24,
    .MemAbsDiffSumS16 = MemAbsDiffSumS16,
};
