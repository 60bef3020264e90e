/*
 * Memory and audio samples: copies, fills, sample formats, arithmetic, reductions, counts.
 *
 * Conventions of the family, besides those of vela/base.h. They hold for every slot unless its line says otherwise.
 *   Arguments  destinations, sources, parameters, and the count last.
 *   Counts     in elements of the arrays. A count of 0, or a negative one where the type is signed, writes nothing
 *              and returns 0.
 *   Overlap    a destination may equal a source whose elements are as large, if its element i depends on no element
 *              of that source but i. Any other overlap is excluded; sources may overlap each other.
 *   Integers   exact; >> is arithmetic; a value that its destination does not hold wraps. A sum of integers is exact
 *              in 64 bits before it is converted or reduced. sat16(t) is t limited to -32768..32767.
 *   Floats     every operation that is written rounds once, to nearest even, in the order of the formula; so does the
 *              conversion of an integer. Tiers give the same bits, but for sign and payload of a NaN.
 *   S24        packed 24-bit samples: three bytes, lowest first, signed; sample i begins at byte 3 * i. Counts are in
 *              samples.
 */
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
