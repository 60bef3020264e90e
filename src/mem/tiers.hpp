// The tier tables of the memory family.
#pragma once

#include <vela/mem.h>

namespace vela {
extern const VcbMemOrderOps memOrderOpsSse2;
extern const VcbMemInPlaceOrderOps memInPlaceOrderOpsSse2;
extern const VcbMemFillOps memFillOpsSse2;
extern const VcbMemArithOps memArithOpsSse2;
extern const VcbSampleFormatOps sampleFormatOpsSse2;
extern const VcbMemCompareOps memCompareOpsSse2;
extern const VcbMemMiscOps memMiscOpsSse2;

extern const VcbMemMiscOps memMiscOpsSsse3;

extern const VcbMemOrderOps memOrderOpsAvx2;
extern const VcbMemFillOps memFillOpsAvx2;
extern const VcbMemArithOps memArithOpsAvx2;
extern const VcbMemMiscOps memMiscOpsAvx2;
} // namespace vela
