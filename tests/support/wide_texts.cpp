#include "simd/avx2.h"

#include "simd/loops.h"

#include "colorspace/kernels/append_alpha.h"
#include "colorspace/kernels/packed_yuv.h"
#include "video/kernels/sharpen_bytes.h"
#include "video/kernels/smooth.h"

#include "support/wide_texts.hpp"

extern constinit const VcbColorSpaceProcs vela::test::colorSpaceProcsWide = {
    .ExpandYuyvToYuva = ExpandYuyvToYuva,
    .PackYuvaToYuyv = PackYuvaToYuyv,
    .ExpandUyvyToYuva = ExpandUyvyToYuva,
    .PackYuvaToUyvy = PackYuvaToUyvy,
    .AppendAlpha24To32 = AppendAlpha24To32,
    .PackPlanar16ToYuyv8 = PackPlanar16ToYuyv8,
    .PackPlanar16ToUyvy8 = PackPlanar16ToUyvy8,
};

extern constinit const VcbVideoProcs vela::test::videoProcsWide = {
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
