// The tier tables of the 3D-math family.
#pragma once

#include <vela/math3d.h>

namespace vela {
extern const Vcb3DMathArrays math3dArraysSse2;
extern const Vcb3DMathIdentity math3dIdentitySse2;
extern const Vcb3DMathCross math3dCrossSse2;
} // namespace vela
