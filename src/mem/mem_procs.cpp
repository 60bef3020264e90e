#include "frame/cpu.hpp"

#include <vela/mem.h>

// No tier has kernels for this family yet: slots stay as the host set them.
extern "C" void VCB_CALL VCB_RegMemProc(VcbMemProcTables * /*tables*/) noexcept { vela::frame::cpuLevel(); }
