#include "frame/registration.hpp"
#include "math3d/tiers.hpp"

extern "C" void VCB_CALL VCB_Reg3DMath(Vcb3DMathTables *tables) noexcept
{
    using vela::frame::registerSubTable;
    using vela::frame::Tier;
    static constexpr Tier<Vcb3DMathArrays> arrays[] = {
        {VCB_CPU_SSE2, &vela::math3dArraysSse2},
    };
    static constexpr Tier<Vcb3DMathIdentity> identity[] = {
        {VCB_CPU_SSE2, &vela::math3dIdentitySse2},
    };
    static constexpr Tier<Vcb3DMathCross> cross[] = {
        {VCB_CPU_SSE2, &vela::math3dCrossSse2},
    };
    vela::frame::cpuLevel();
    if (!tables)
        return;
    registerSubTable(tables->arrays, arrays);
    registerSubTable(tables->identity, identity);
    registerSubTable(tables->cross, cross);
}
