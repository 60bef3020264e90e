#include "frame/cpu.hpp"

#include <vela/signal.h>

// No tier has kernels for this family yet: slots stay as the host set them.
extern "C" void VCB_CALL VCB_RegSignalProc(VcbSignalProcTables * /*tables*/) noexcept { vela::frame::cpuLevel(); }
