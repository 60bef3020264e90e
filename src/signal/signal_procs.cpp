#include "frame/registration.hpp"
#include "signal/tiers.hpp"

extern "C" void VCB_CALL VCB_RegSignalProc(VcbSignalProcTables *tables) noexcept
{
    using vela::frame::Tier;
    static constexpr Tier<VcbSignalProcs> signal[] = {
        {VCB_CPU_SSE2, &vela::signalProcsSse2},
    };
    vela::frame::cpuLevel();
    if (tables)
        vela::frame::registerSubTable(tables->signal, signal);
}
