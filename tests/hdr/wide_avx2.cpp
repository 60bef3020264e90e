#include "simd/avx2.h"

#include "simd/loops.h"

#include "colorspace/kernels/hdr_pixels.h"

#include "hdr/wide.hpp"

namespace {

void powers(float *dst, const float *x, double exponent, int32_t count)
{
    map<f32s>(
        dst, count, [=](f32s v) { return power(v, splatF64(exponent)); }, x);
}

} // namespace

extern constinit const vela::test::WideHdr vela::test::hdrWide = {convertHdrPixels, powers};
