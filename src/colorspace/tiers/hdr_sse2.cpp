#include "simd/sse2.h"

#include "simd/loops.h"

#include "colorspace/kernels/hdr_pixels.h"

extern constinit const vela::HdrKernels vela::hdrKernelsSse2 = {convertHdrPixels};
