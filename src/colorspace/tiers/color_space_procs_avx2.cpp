#include "simd/avx2.h"

#include "simd/loops.h"

#include "colorspace/kernels/append_alpha.h"

#include "colorspace/tiers.hpp"

extern constinit const VcbColorSpaceProcs vela::colorSpaceProcsAvx2 = {
    .AppendAlpha24To32 = AppendAlpha24To32,
};
