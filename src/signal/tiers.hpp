// The tier tables of the signal family.
#pragma once

#include <vela/signal.h>

namespace vela {
extern const VcbSignalProcs signalProcsSse2;
} // namespace vela
