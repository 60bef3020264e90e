#include "simd/avx2.h"

#include "simd/loops.h"

#include "colorspace/kernels/conversions.h"

#include "colorspace/tiers.hpp"

extern constinit const VcbColorSpaceProcs vela::colorSpaceProcsAvx2 = {
    .AppendAlpha24To32 = AppendAlpha24To32,
    .CscAppendAlphaSwap24To32 = CscAppendAlphaSwap24To32,
    .CscSwapRb32 = CscSwapRb32,
    .CscDropAlpha32To24 = CscDropAlpha32To24,
    .CscYuyvToBgra = CscYuyvToBgra,
    .CscUyvyToBgra = CscUyvyToBgra,
    .CscNv12ToBgra = CscNv12ToBgra,
    .CscBgraToNv12 = CscBgraToNv12,
    .CscI420ToBgra = CscI420ToBgra,
    .CscBgraToI420 = CscBgraToI420,
    .CscP016ToBgra = CscP016ToBgra,
    .CscNv12ToI420 = CscNv12ToI420,
    .CscP016ToNv12 = CscP016ToNv12,
    .CscPremultiplyAlpha32 = CscPremultiplyAlpha32,
    .CscUnpremultiplyAlpha32 = CscUnpremultiplyAlpha32,
    .CscF32x4ToBgra = CscF32x4ToBgra,
    .CscV210ToI210 = CscV210ToI210,
    .CscP016ToF32x4 = CscP016ToF32x4,
};
