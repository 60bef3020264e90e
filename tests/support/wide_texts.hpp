// All kernel texts on the AVX2 vocabulary.
#pragma once

#include <vela/colorspace.h>
#include <vela/mem.h>
#include <vela/video.h>

namespace vela::test {
extern const VcbColorSpaceProcs colorSpaceProcsWide;
extern const VcbMemOrderOps memOrderOpsWide;
extern const VcbMemInPlaceOrderOps memInPlaceOrderOpsWide;
extern const VcbMemFillOps memFillOpsWide;
extern const VcbMemArithOps memArithOpsWide;
extern const VcbSampleFormatOps sampleFormatOpsWide;
extern const VcbMemCompareOps memCompareOpsWide;
extern const VcbMemMiscOps memMiscOpsWide;
extern const VcbVideoProcs videoProcsWide;
} // namespace vela::test
