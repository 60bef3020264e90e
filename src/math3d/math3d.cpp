#include "frame/cpu.hpp"

#include <vela/math3d.h>

// No tier has kernels for this family yet: slots stay as the host set them.
extern "C" void VCB_CALL VCB_Reg3DMath(Vcb3DMathTables * /*tables*/) noexcept { vela::frame::cpuLevel(); }
