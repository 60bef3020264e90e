/* 4x4 matrices and 4-vectors in single precision. */
#ifndef VELA_MATRIX_H
#define VELA_MATRIX_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

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
