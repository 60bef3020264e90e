// The HDR kernel's text at 256 bits, and powers at both widths.
#pragma once

#include "colorspace/hdr/plan.hpp"

namespace vela::test {

using PowerOf = void(float *dst, const float *x, double exponent, int32_t count);

struct WideHdr {
    ConvertHdrPixels *convert;
    PowerOf *power;
};
extern const WideHdr hdrWide;

} // namespace vela::test
