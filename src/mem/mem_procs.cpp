#include "frame/registration.hpp"
#include "mem/tiers.hpp"

extern "C" void VCB_CALL VCB_RegMemProc(VcbMemProcTables *tables) noexcept
{
    using vela::frame::registerSubTable;
    using vela::frame::Tier;
    static constexpr Tier<VcbMemOrderOps> orderOps[] = {
        {VCB_CPU_AVX2, &vela::memOrderOpsAvx2},
        {VCB_CPU_SSE2, &vela::memOrderOpsSse2},
    };
    static constexpr Tier<VcbMemInPlaceOrderOps> inPlaceOrderOps[] = {
        {VCB_CPU_SSE2, &vela::memInPlaceOrderOpsSse2},
    };
    static constexpr Tier<VcbMemFillOps> fillOps[] = {
        {VCB_CPU_AVX2, &vela::memFillOpsAvx2},
        {VCB_CPU_SSE2, &vela::memFillOpsSse2},
    };
    static constexpr Tier<VcbMemArithOps> arithOps[] = {
        {VCB_CPU_AVX2, &vela::memArithOpsAvx2},
        {VCB_CPU_SSE2, &vela::memArithOpsSse2},
    };
    static constexpr Tier<VcbSampleFormatOps> sampleFormatOps[] = {
        {VCB_CPU_SSE2, &vela::sampleFormatOpsSse2},
    };
    static constexpr Tier<VcbMemCompareOps> compareOps[] = {
        {VCB_CPU_SSE2, &vela::memCompareOpsSse2},
    };
    static constexpr Tier<VcbMemMiscOps> miscOps[] = {
        {VCB_CPU_AVX2, &vela::memMiscOpsAvx2},
        {VCB_CPU_SSSE3, &vela::memMiscOpsSsse3},
        {VCB_CPU_SSE2, &vela::memMiscOpsSse2},
    };
    vela::frame::cpuLevel();
    if (!tables)
        return;
    registerSubTable(tables->orderOps, orderOps);
    registerSubTable(tables->inPlaceOrderOps, inPlaceOrderOps);
    registerSubTable(tables->fillOps, fillOps);
    registerSubTable(tables->arithOps, arithOps);
    registerSubTable(tables->sampleFormatOps, sampleFormatOps);
    registerSubTable(tables->compareOps, compareOps);
    registerSubTable(tables->miscOps, miscOps);
}
