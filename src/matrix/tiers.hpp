// The tier tables of the matrix family.
#pragma once

#include <vela/matrix.h>

namespace vela {
extern const VcbMatrixProcs matrixProcsSse2;
extern const VcbMatrixProcs matrixProcsAvx2;
extern const VcbVectorProcs vectorProcsSse2;
} // namespace vela
