#include "simd/sse2.h"

#include "simd/loops.h"

#include "signal/kernels/magnitude.h"
#include "signal/kernels/sharpen_luma.h"
#include "signal/kernels/sliding_dot.h"

#include "signal/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/signal_procs.def"
extern constinit const VcbSignalProcs vela::signalProcsSse2 = {
#include "frame/every_slot.h"
};
