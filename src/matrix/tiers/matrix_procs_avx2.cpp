#include "simd/avx2.h"

#include "matrix/kernels/products_by_pairs.h"

#include "matrix/tiers.hpp"

extern constinit const VcbMatrixProcs vela::matrixProcsAvx2 = {
    .MatMultiply = MatMultiply,
    .MatTransformVec = MatTransformVec,
};
