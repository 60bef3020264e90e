#include "simd/sse2.h"

#include "simd/loops.h"

#include "colorspace/kernels/bt2020.h"
#include "colorspace/kernels/conversions.h"
#include "colorspace/kernels/hsv_planes.h"
#include "colorspace/kernels/no_op.h"

#include "colorspace/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/color_space_procs.def"
extern constinit const VcbColorSpaceProcs vela::colorSpaceProcsSse2 = {
#include "frame/every_slot.h"
};
