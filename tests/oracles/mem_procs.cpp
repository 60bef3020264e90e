#include "oracles/oracles.hpp"

#include "oracles/mem/bytes.h"
#include "oracles/mem/floats.h"
#include "oracles/mem/formats.h"
#include "oracles/mem/moves.h"

#define VELA_SUBTABLE_LIST "vela/slots/mem_order_ops.def"
extern constinit const VcbMemOrderOps vela::test::ORACLE::memOrderOps = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_in_place_order_ops.def"
extern constinit const VcbMemInPlaceOrderOps vela::test::ORACLE::memInPlaceOrderOps = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_fill_ops.def"
extern constinit const VcbMemFillOps vela::test::ORACLE::memFillOps = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_arith_ops.def"
extern constinit const VcbMemArithOps vela::test::ORACLE::memArithOps = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/sample_format_ops.def"
extern constinit const VcbSampleFormatOps vela::test::ORACLE::sampleFormatOps = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_compare_ops.def"
extern constinit const VcbMemCompareOps vela::test::ORACLE::memCompareOps = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/mem_misc_ops.def"
extern constinit const VcbMemMiscOps vela::test::ORACLE::memMiscOps = {
#include "frame/every_slot.h"
};

extern constinit const VcbMemMiscOps vela::test::ORACLE::memMiscOpsOfAvx2 = {
    .MemMaxAbsS16 = MemMaxAbsS16OfAvx2,
};
