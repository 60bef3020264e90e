/*
 * 4x4 matrices and 4-vectors in single precision.
 *
 * Conventions of the family, besides those of vela/base.h. They hold for every slot unless its line says otherwise.
 *   Alignment  matrices and vectors lie at multiples of 16 bytes.
 *   Overlap    an output may be the very object that its line names, and else overlaps no input; inputs may overlap.
 *   Floats     every operation that is written rounds once, to nearest even, in the order of the formula. Tiers give
 *              the same bits, but for sign and payload of a NaN.
 *   Threshold  2^-23, the machine epsilon of float, 1.1920929e-7f: where a difference or divisor counts as zero. The
 *              comparison is one of floats.
 *   Results    kernels that write return their output.
 */
#ifndef VELA_MATRIX_H
#define VELA_MATRIX_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#define VELA_ALIGNED_16 alignas(16)
#else
#define VELA_ALIGNED_16 _Alignas(16)
#endif

/* Four rows of four, row after row. */
typedef struct VcbMat4 {
    VELA_ALIGNED_16 float m[4][4];
} VcbMat4;

typedef struct VcbVec4 {
    VELA_ALIGNED_16 float v[4];
} VcbVec4;

#undef VELA_ALIGNED_16

VCB_STATIC_ASSERT(sizeof(VcbMat4) == 64 && sizeof(VcbVec4) == 16, "arrays of floats");

#define VELA_SUBTABLE VcbMatrixProcs
#define VELA_SUBTABLE_LIST "vela/slots/matrix_procs.def"
#define VELA_SUBTABLE_SLOTS 10
#include <vela/detail/subtable.h>

#define VELA_SUBTABLE VcbVectorProcs
#define VELA_SUBTABLE_LIST "vela/slots/vector_procs.def"
#define VELA_SUBTABLE_SLOTS 7
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegMatrixProc. Null sub-tables are skipped. */
typedef struct VcbMatrixProcTables {
    void *unused0;          /* not read */
    VcbMatrixProcs *matrix; /* 4x4 matrix kernels */
    VcbVectorProcs *vector; /* 4-vector kernels */
} VcbMatrixProcTables;

VCB_STATIC_ASSERT(offsetof(VcbMatrixProcTables, matrix) == 1 * sizeof(void *), "table set position of matrix");
VCB_STATIC_ASSERT(offsetof(VcbMatrixProcTables, vector) == 2 * sizeof(void *), "table set position of vector");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegMatrixProc(VcbMatrixProcTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
