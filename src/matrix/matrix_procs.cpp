#include "frame/registration.hpp"
#include "matrix/tiers.hpp"

extern "C" void VCB_CALL VCB_RegMatrixProc(VcbMatrixProcTables *tables) noexcept
{
    using vela::frame::registerSubTable;
    using vela::frame::Tier;
    static constexpr Tier<VcbMatrixProcs> matrix[] = {
        {VCB_CPU_AVX2, &vela::matrixProcsAvx2},
        {VCB_CPU_SSE2, &vela::matrixProcsSse2},
    };
    static constexpr Tier<VcbVectorProcs> vector[] = {
        {VCB_CPU_SSE2, &vela::vectorProcsSse2},
    };
    vela::frame::cpuLevel();
    if (!tables)
        return;
    registerSubTable(tables->matrix, matrix);
    registerSubTable(tables->vector, vector);
}
