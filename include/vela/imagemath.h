/* Image math: Poisson row solvers, least-squares accumulation. */
#ifndef VELA_IMAGEMATH_H
#define VELA_IMAGEMATH_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbImageMath
#define VELA_SUBTABLE_LIST "vela/slots/image_math.def"
#define VELA_SUBTABLE_SLOTS 23
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegImageMath. Null sub-tables are skipped. */
typedef struct VcbImageMathTables {
    void *unused0[3];        /* not read */
    VcbImageMath *imageMath; /* solver rows and accumulations */
} VcbImageMathTables;

VCB_STATIC_ASSERT(offsetof(VcbImageMathTables, imageMath) == 3 * sizeof(void *), "table set position of imageMath");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegImageMath(VcbImageMathTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
