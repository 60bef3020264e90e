#include "audio/tiers.hpp"
#include "frame/registration.hpp"

extern "C" void VCB_CALL VCB_RegAudioProc(VcbAudioProcTables *tables) noexcept
{
    using vela::frame::Tier;
    static constexpr Tier<VcbAudioProcs> audio[] = {
        {VCB_CPU_AVX, &vela::audioProcsAvx},
        {VCB_CPU_SSE2, &vela::audioProcsSse2},
    };
    vela::frame::cpuLevel();
    if (tables)
        vela::frame::registerSubTable(tables->audio, audio);
}
