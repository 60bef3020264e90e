#include "simd/sse2.h"

#include "simd/loops.h"

#include "colorspace/kernels/append_alpha.h"
#include "colorspace/kernels/packed_yuv.h"

#include "colorspace/tiers.hpp"

extern constinit const VcbColorSpaceProcs vela::colorSpaceProcsSse2 = {
    .ExpandYuyvToYuva = ExpandYuyvToYuva,
    .PackYuvaToYuyv = PackYuvaToYuyv,
    .ExpandUyvyToYuva = ExpandUyvyToYuva,
    .PackYuvaToUyvy = PackYuvaToUyvy,
    .AppendAlpha24To32 = AppendAlpha24To32,
    .PackPlanar16ToYuyv8 = PackPlanar16ToYuyv8,
    .PackPlanar16ToUyvy8 = PackPlanar16ToUyvy8,
};
