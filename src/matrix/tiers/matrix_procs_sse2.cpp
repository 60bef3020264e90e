#include "simd/sse2.h"

#include "matrix/kernels/matrices.h"
#include "matrix/kernels/products.h"
#include "matrix/kernels/vectors.h"

#include "matrix/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/matrix_procs.def"
extern constinit const VcbMatrixProcs vela::matrixProcsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/vector_procs.def"
extern constinit const VcbVectorProcs vela::vectorProcsSse2 = {
#include "frame/every_slot.h"
};
