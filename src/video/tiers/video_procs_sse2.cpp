#include "simd/sse2.h"

#include "simd/loops.h"

#include "video/kernels/sharpen_bytes.h"
#include "video/kernels/smooth.h"

#include "video/tiers.hpp"

extern constinit const VcbVideoProcs vela::videoProcsSse2 = {
    .SmoothRows121U8 = SmoothRows121U8,
    .SmoothCols121U16ToU8 = SmoothCols121U16ToU8,
    .SmoothCols121U16ToU8_A = SmoothCols121U16ToU8_A,
    .SmoothCols121U16ToU8_B = SmoothCols121U16ToU8_B,
    .SmoothRows121Rgb32 = SmoothRows121Rgb32,
    .SmoothHoriz121Rgb32 = SmoothHoriz121Rgb32,
    .SmoothCols121U16ToU8Q_A = SmoothCols121U16ToU8Q_A,
    .SmoothCols121U16ToU8Q_B = SmoothCols121U16ToU8Q_B,
    .SharpenU8 = SharpenU8,
};
