#include "colorspace/tiers.hpp"
#include "frame/registration.hpp"

extern "C" void VCB_CALL VCB_RegColorSpace(VcbColorSpaceTables *tables) noexcept
{
    using vela::frame::Tier;
    static constexpr Tier<VcbColorSpaceProcs> colorSpace[] = {
        {VCB_CPU_AVX2, &vela::colorSpaceProcsAvx2},
        {VCB_CPU_SSE2, &vela::colorSpaceProcsSse2},
    };
    vela::frame::cpuLevel();
    if (tables)
        vela::frame::registerSubTable(tables->colorSpace, colorSpace);
}
