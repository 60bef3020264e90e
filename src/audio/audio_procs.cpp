#include "frame/cpu.hpp"

#include <vela/audio.h>

// No tier has kernels for this family yet: slots stay as the host set them.
extern "C" void VCB_CALL VCB_RegAudioProc(VcbAudioProcTables * /*tables*/) noexcept { vela::frame::cpuLevel(); }
