#include "frame/registration.hpp"
#include "video/tiers.hpp"

extern "C" void VCB_CALL VCB_RegVideoProc(VcbVideoProcTables *tables) noexcept
{
    using vela::frame::Tier;
    static constexpr Tier<VcbVideoProcs> video[] = {
        {VCB_CPU_AVX2, &vela::videoProcsAvx2},
        {VCB_CPU_SSE2, &vela::videoProcsSse2},
    };
    vela::frame::cpuLevel();
    if (tables)
        vela::frame::registerSubTable(tables->video, video);
}
