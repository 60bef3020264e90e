/* Conversions between pixel layouts, subsamplings, bit depths and colour models, and HDR. */
#ifndef VELA_COLORSPACE_H
#define VELA_COLORSPACE_H

#include <vela/base.h>
#include <vela/color_coefficients.h>
#include <vela/hdr.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbColorSpaceProcs
#define VELA_SUBTABLE_LIST "vela/slots/color_space_procs.def"
#define VELA_SUBTABLE_SLOTS 402
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegColorSpace. Null sub-tables are skipped. */
typedef struct VcbColorSpaceTables {
    void *unused0[8];               /* not read */
    VcbColorSpaceProcs *colorSpace; /* row conversions; slot N is also called CscKernel plus N in three digits */
} VcbColorSpaceTables;

VCB_STATIC_ASSERT(offsetof(VcbColorSpaceTables, colorSpace) == 8 * sizeof(void *), "table set position of colorSpace");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegColorSpace(VcbColorSpaceTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
