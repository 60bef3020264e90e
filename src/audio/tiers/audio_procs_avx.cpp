#include "simd/avx.h"

#include "audio/kernels/upsample.h"

#include "audio/tiers.hpp"

extern constinit const VcbAudioProcs vela::audioProcsAvx = {
    .AudioUpsample4S16 = AudioUpsample4S16,
    .AudioUpsample4S24 = AudioUpsample4S24,
    .AudioUpsample4S32 = AudioUpsample4S32,
    .AudioUpsample4S16Strided = AudioUpsample4S16Strided,
    .AudioUpsample4S24Strided = AudioUpsample4S24Strided,
    .AudioUpsample4S32Strided = AudioUpsample4S32Strided,
};
