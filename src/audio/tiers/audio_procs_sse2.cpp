#include "simd/sse2.h"

#include "simd/loops.h"

#include "audio/kernels/biquad.h"
#include "audio/kernels/effects.h"
#include "audio/kernels/mix.h"
#include "audio/kernels/upsample.h"

#include "audio/tiers.hpp"

#define VELA_SUBTABLE_LIST "vela/slots/audio_procs.def"
extern constinit const VcbAudioProcs vela::audioProcsSse2 = {
#include "frame/every_slot.h"
};

#define VELA_SUBTABLE_LIST "vela/slots/audio_effects.def"
extern constinit const VcbAudioEffects vela::audioEffectsSse2 = {
#include "frame/every_slot.h"
};
