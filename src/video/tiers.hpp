// The tier tables of the video family.
#pragma once

#include <vela/video.h>

namespace vela {
extern const VcbVideoProcs videoProcsSse2;
extern const VcbVideoProcs videoProcsAvx2;
} // namespace vela
