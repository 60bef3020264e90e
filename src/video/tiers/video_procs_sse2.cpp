#include "simd/sse2.h"

#include "simd/loops.h"

#include "video/kernels/sharpen_bytes.h"
#include "video/kernels/smooth.h"

#include "video/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/video_procs.def"
extern constinit const VcbVideoProcs vela::videoProcsSse2 = {
#include "frame/every_slot.h"
};
