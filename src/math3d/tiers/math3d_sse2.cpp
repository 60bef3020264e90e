#include "simd/sse2.h"

#include "simd/loops.h"

#include "math3d/kernels/arrays.h"
#include "math3d/kernels/identity.h"
#include "math3d/kernels/sums.h"
#include "math3d/kernels/vectors.h"

#include "math3d/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/math3d_arrays.def"
extern constinit const Vcb3DMathArrays vela::math3dArraysSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_identity.def"
extern constinit const Vcb3DMathIdentity vela::math3dIdentitySse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/math3d_cross.def"
extern constinit const Vcb3DMathCross vela::math3dCrossSse2 = {
#include "frame/every_slot.h"
};
