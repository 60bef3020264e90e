#include "audio/tiers.hpp"
#include "frame/registration.hpp"

extern "C" void VCB_CALL VCB_RegAudioEffectProc(VcbAudioEffectTables *tables) noexcept
{
    using vela::frame::Tier;
    static constexpr Tier<VcbAudioEffects> audioEffects[] = {
        {VCB_CPU_SSE2, &vela::audioEffectsSse2},
    };
    vela::frame::cpuLevel();
    if (tables)
        vela::frame::registerSubTable(tables->audioEffects, audioEffects);
}
