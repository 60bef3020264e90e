#include "simd/sse2.h"

#include "simd/loops.h"

#include "mem/kernels.h"

#include "mem/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/mem_order_ops.def"
extern constinit const VcbMemOrderOps vela::memOrderOpsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_in_place_order_ops.def"
extern constinit const VcbMemInPlaceOrderOps vela::memInPlaceOrderOpsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_fill_ops.def"
extern constinit const VcbMemFillOps vela::memFillOpsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_arith_ops.def"
extern constinit const VcbMemArithOps vela::memArithOpsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/sample_format_ops.def"
extern constinit const VcbSampleFormatOps vela::sampleFormatOpsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_compare_ops.def"
extern constinit const VcbMemCompareOps vela::memCompareOpsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_misc_ops.def"
extern constinit const VcbMemMiscOps vela::memMiscOpsSse2 = {
#include "frame/every_slot.h"
};
