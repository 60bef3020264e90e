#include "simd/avx2.h"

#include "simd/loops.h"

#include "video/kernels/sharpen_words.h"

#include "video/tiers.hpp"

extern constinit const VcbVideoProcs vela::videoProcsAvx2 = {
    .SharpenU8 = SharpenU8,
};
