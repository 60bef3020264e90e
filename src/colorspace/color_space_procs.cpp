#include "colorspace/format_maps.hpp"
#include "colorspace/tiers.hpp"
#include "frame/registration.hpp"

extern "C" void VCB_CALL VCB_RegColorSpace(VcbColorSpaceTables *tables) noexcept
{
    using vela::frame::Tier;
    static constexpr Tier<VcbColorSpaceProcs> colorSpace[] = {
        {VCB_CPU_AVX2, &vela::colorSpaceProcsAvx2},
        {VCB_CPU_SSE2, &vela::colorSpaceProcsSse2},
        {VCB_CPU_SSE2, &vela::colorspace::plainProcs},
    };
    // The maps belong to the process, not to a host's table: they are filled for a host that brings none, too.
    if (vela::frame::cpuLevel() >= VCB_CPU_SSE2)
        vela::colorspace::fillFormatMaps();
    if (tables)
        vela::frame::registerSubTable(tables->colorSpace, colorSpace);
}
