#include "simd/avx.h"

#include "audio/kernels/upsample.h"

#include "audio/tiers.hpp"

extern constinit const VcbAudioProcs vela::audioProcsAvx = {
    .AudioUpsample4S16 = upsample4S16<EveryFourthTap>,
    .AudioUpsample4S24 = upsample4S24<EveryFourthTap>,
    .AudioUpsample4S32 = upsample4S32<EveryFourthTap>,
    .AudioUpsample4S16Strided = upsample4S16Strided<EveryFourthTap>,
    .AudioUpsample4S24Strided = upsample4S24Strided<EveryFourthTap>,
    .AudioUpsample4S32Strided = upsample4S32Strided<EveryFourthTap>,
};
