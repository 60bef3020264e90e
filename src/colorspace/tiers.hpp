// The tier tables of the colour-space family.
#pragma once

#include <vela/colorspace.h>

namespace vela {
extern const VcbColorSpaceProcs colorSpaceProcsSse2;
extern const VcbColorSpaceProcs colorSpaceProcsAvx2;
} // namespace vela
