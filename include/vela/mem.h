/* Memory and audio samples: copies, fills, sample formats, arithmetic, reductions, counts. */
#ifndef VELA_MEM_H
#define VELA_MEM_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbMemOrderOps
#define VELA_SUBTABLE_LIST "vela/slots/mem_order_ops.def"
#define VELA_SUBTABLE_SLOTS 14
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbMemInPlaceOrderOps
#define VELA_SUBTABLE_LIST "vela/slots/mem_in_place_order_ops.def"
#define VELA_SUBTABLE_SLOTS 4
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbMemFillOps
#define VELA_SUBTABLE_LIST "vela/slots/mem_fill_ops.def"
#define VELA_SUBTABLE_SLOTS 13
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbMemArithOps
#define VELA_SUBTABLE_LIST "vela/slots/mem_arith_ops.def"
#define VELA_SUBTABLE_SLOTS 65
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbSampleFormatOps
#define VELA_SUBTABLE_LIST "vela/slots/sample_format_ops.def"
#define VELA_SUBTABLE_SLOTS 29
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbMemCompareOps
#define VELA_SUBTABLE_LIST "vela/slots/mem_compare_ops.def"
#define VELA_SUBTABLE_SLOTS 6
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbMemMiscOps
#define VELA_SUBTABLE_LIST "vela/slots/mem_misc_ops.def"
#define VELA_SUBTABLE_SLOTS 62
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegMemProc. Null sub-tables are skipped. */
typedef struct VcbMemProcTables {
    VcbMemOrderOps *orderOps;               /* out-of-place copy, element reversal, byte swap */
    VcbMemInPlaceOrderOps *inPlaceOrderOps; /* in-place reversal, buffer exchange */
    VcbMemFillOps *fillOps;                 /* fill a buffer with a repeated value */
    VcbMemArithOps *arithOps;               /* element-wise arithmetic, blends, reductions, counts */
    VcbSampleFormatOps *sampleFormatOps;    /* conversions between 8/16/24/32-bit integer, float and double samples */
    VcbMemCompareOps *compareOps;           /* buffer comparison, table look-up */
    VcbMemMiscOps *miscOps;                 /* narrowing, strided copies, saturating integer and mixed float kernels */
} VcbMemProcTables;

VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, orderOps) == 0 * sizeof(void *), "table set position of orderOps");
VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, inPlaceOrderOps) == 1 * sizeof(void *),
                  "table set position of inPlaceOrderOps");
VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, fillOps) == 2 * sizeof(void *), "table set position of fillOps");
VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, arithOps) == 3 * sizeof(void *), "table set position of arithOps");
VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, sampleFormatOps) == 4 * sizeof(void *),
                  "table set position of sampleFormatOps");
VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, compareOps) == 5 * sizeof(void *), "table set position of compareOps");
VCB_STATIC_ASSERT(offsetof(VcbMemProcTables, miscOps) == 6 * sizeof(void *), "table set position of miscOps");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegMemProc(VcbMemProcTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
