// The tier tables of the audio families.
#pragma once

#include <vela/audio.h>

namespace vela {
extern const VcbAudioProcs audioProcsSse2;
extern const VcbAudioEffects audioEffectsSse2;

extern const VcbAudioProcs audioProcsAvx;
} // namespace vela
