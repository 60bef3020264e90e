#include "oracles/oracles.hpp"

#include "oracles/audio/effects.h"
#include "oracles/audio/procs.h"

extern constinit const VcbAudioProcs vela::test::ORACLE::audioProcs = {
    .AudioBiquadS16 = AudioBiquadS16,
    .AudioBiquadS24 = AudioBiquadS24,
    .AudioBiquadS32 = AudioBiquadS32,
    .AudioBiquadF64 = AudioBiquadF64,
    .AudioBiquadS16Strided = AudioBiquadS16Strided,
    .AudioBiquadS24Strided = AudioBiquadS24Strided,
    .AudioBiquadS32Strided = AudioBiquadS32Strided,
    .AudioUpsample4S16 = upsampleS16<EvensAndOdds>,
    .AudioUpsample4S24 = upsampleS24<EvensAndOdds>,
    .AudioUpsample4S32 = upsampleS32<EvensAndOdds>,
    .AudioUpsample4S16Strided = upsampleS16Strided<EvensAndOdds>,
    .AudioUpsample4S24Strided = upsampleS24Strided<EvensAndOdds>,
    .AudioUpsample4S32Strided = upsampleS32Strided<EvensAndOdds>,
    .AudioMixS16 = AudioMixS16,
    .AudioMixS32 = AudioMixS32,
};

extern constinit const VcbAudioProcs vela::test::ORACLE::audioProcsOfAvx = {
    .AudioUpsample4S16 = upsampleS16<FourLanes>,
    .AudioUpsample4S24 = upsampleS24<FourLanes>,
    .AudioUpsample4S32 = upsampleS32<FourLanes>,
    .AudioUpsample4S16Strided = upsampleS16Strided<FourLanes>,
    .AudioUpsample4S24Strided = upsampleS24Strided<FourLanes>,
    .AudioUpsample4S32Strided = upsampleS32Strided<FourLanes>,
};

#define VELA_SUBTABLE_LIST "vela/slots/audio_effects.def"
extern constinit const VcbAudioEffects vela::test::ORACLE::audioEffects = {
#include "frame/every_slot.h"
};
