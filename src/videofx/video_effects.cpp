#include "frame/cpu.hpp"

#include <vela/videofx.h>

// No tier has kernels for this family yet: slots stay as the host set them.
extern "C" void VCB_CALL VCB_RegVideoEffectProc(VcbVideoEffectTables * /*tables*/) noexcept { vela::frame::cpuLevel(); }
