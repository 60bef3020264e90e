/*
 * Array dot products, norms, statistics, 3-vectors.
 *
 * Conventions of the family, besides those of vela/base.h. They hold for every slot unless its line says otherwise.
 *   Counts     in elements. A count of 0, or a negative one where the type is signed, writes nothing and returns 0.
 *   Alignment  none, for 3-vectors and matrices too.
 *   Overlap    an output may be the very row or object that its line names, and else overlaps no input; inputs may
 *              overlap.
 *   Floats     every operation that is written rounds once, to nearest even, in the order of the formula; so does the
 *              conversion of a count, and sqrt(). Bits do not depend on the width of registers, but for sign and
 *              payload of a NaN.
 *   Threshold  2^-23, the machine epsilon of float, 1.1920929e-7f: exact in float and in double.
 *   Estimates  are the processor's own (rcpps, rsqrtps), about 12 bits, without a step of refinement. They are the same
 *              bits on one processor; another maker's may differ.
 */
#ifndef VELA_MATH3D_H
#define VELA_MATH3D_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

/* Three consecutive floats. */
typedef struct VcbVec3 {
    float x, y, z;
} VcbVec3;

VCB_STATIC_ASSERT(sizeof(VcbVec3) == 12, "three consecutive floats");

#define VELA_SUBTABLE Vcb3DMathArrays
#define VELA_SUBTABLE_LIST "vela/slots/math3d_arrays.def"
#define VELA_SUBTABLE_SLOTS 30
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE Vcb3DMathIdentity
#define VELA_SUBTABLE_LIST "vela/slots/math3d_identity.def"
#define VELA_SUBTABLE_SLOTS 5
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE Vcb3DMathCross
#define VELA_SUBTABLE_LIST "vela/slots/math3d_cross.def"
#define VELA_SUBTABLE_SLOTS 1
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_Reg3DMath. Null sub-tables are skipped. */
typedef struct Vcb3DMathTables {
    Vcb3DMathArrays *arrays;     /* array reductions, statistics, 3-vector operations */
    Vcb3DMathIdentity *identity; /* 4x4 identity */
    Vcb3DMathCross *cross;       /* 3-vector cross product */
} Vcb3DMathTables;

VCB_STATIC_ASSERT(offsetof(Vcb3DMathTables, arrays) == 0 * sizeof(void *), "table set position of arrays");
VCB_STATIC_ASSERT(offsetof(Vcb3DMathTables, identity) == 1 * sizeof(void *), "table set position of identity");
VCB_STATIC_ASSERT(offsetof(Vcb3DMathTables, cross) == 2 * sizeof(void *), "table set position of cross");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_Reg3DMath(Vcb3DMathTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
