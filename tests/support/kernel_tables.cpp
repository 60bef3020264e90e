#include "support/kernel_tables.hpp"

#include "audio/tiers.hpp"
#include "colorspace/tiers.hpp"
#include "math3d/tiers.hpp"
#include "matrix/tiers.hpp"
#include "mem/tiers.hpp"
#include "oracles/oracles.hpp"
#include "signal/tiers.hpp"
#include "support/wide_texts.hpp"
#include "video/tiers.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <stdexcept>

namespace vela::test {
namespace {

struct SubTable {
    std::string family;
    std::string member;
    std::type_index type;
};

const std::vector<SubTable> &subTables()
{
    static const std::vector<SubTable> all = {
#define FAMILY(id, tables, export, description)
#define SUBTABLE(id, member, type, description) {#id, #member, typeid(type)},
#include <vela/slots/families.def>
#undef FAMILY
#undef SUBTABLE
    };
    return all;
}

// "video", "memArithOps"
std::string labelOf(std::type_index type)
{
    const std::vector<SubTable> &all = subTables();
    const auto own = std::find_if(all.begin(), all.end(), [type](const SubTable &t) { return t.type == type; });
    const auto siblings =
        std::count_if(all.begin(), all.end(), [own](const SubTable &t) { return t.family == own->family; });
    if (siblings == 1)
        return own->family;
    std::string member = own->member;
    member[0] = static_cast<char>(member[0] - 'a' + 'A');
    return own->family + member;
}

template <class Table> KernelTable kernelTable(const Table &oracle, std::vector<TierKernels> tiers)
{
    const std::type_index type = typeid(Table);
    std::vector<KernelCase> cases;
    std::ranges::copy_if(allCases(), std::back_inserter(cases),
                         [type](const KernelCase &kernelCase) { return kernelCase.table == type; });
    return {type,    labelOf(type),    slotInfo<Table>(), sizeof(Table) / sizeof(VcbKernel),
            &oracle, std::move(tiers), std::move(cases)};
}

TierKernels sse2(const void *table) { return {"sse2", VCB_CPU_SSE2, VCB_TIERS_SSE2, table}; }
TierKernels ssse3(const void *table) { return {"ssse3", VCB_CPU_SSSE3, VCB_TIERS_SSSE3, table}; }
TierKernels avx(const void *table, const void *oracle) { return {"avx", VCB_CPU_AVX, VCB_TIERS_AVX, table, oracle}; }
TierKernels avx2(const void *table, const void *oracle = nullptr)
{
    return {"avx2", VCB_CPU_AVX2, VCB_TIERS_AVX2, table, oracle};
}

// Every kernel text compiled for AVX2, whether or not the library ships it there: proves the wide vocabulary.
TierKernels wideTexts(const void *table, const void *oracle = nullptr)
{
    return {"wide", VCB_CPU_AVX2, 0, table, oracle};
}

} // namespace

const std::vector<KernelCase> &allCases()
{
    static const std::vector<KernelCase> cases = [] {
        std::vector<KernelCase> all;
        for (const auto &topic : {audioCases(), colorSpaceCases(), math3dCases(), matrixCases(), memMoveCases(),
                                  memByteCases(), memFloatCases(), memFormatCases(), signalCases(), videoCases()})
            all.insert(all.end(), topic.begin(), topic.end());
        return all;
    }();
    return cases;
}

const std::vector<KernelTable> &kernelTables()
{
    static const std::vector<KernelTable> tables = {
        kernelTable(oracle::audioProcs, {sse2(&audioProcsSse2), avx(&audioProcsAvx, &oracle::audioProcsOfAvx),
                                         wideTexts(&audioProcsWide, &oracle::audioProcsOfAvx)}),
        kernelTable(oracle::audioEffects, {sse2(&audioEffectsSse2), wideTexts(&audioEffectsWide)}),
        kernelTable(oracle::colorSpaceProcs,
                    {sse2(&colorSpaceProcsSse2), avx2(&colorSpaceProcsAvx2), wideTexts(&colorSpaceProcsWide)}),
        kernelTable(oracle::memOrderOps, {sse2(&memOrderOpsSse2), avx2(&memOrderOpsAvx2), wideTexts(&memOrderOpsWide)}),
        kernelTable(oracle::memInPlaceOrderOps, {sse2(&memInPlaceOrderOpsSse2), wideTexts(&memInPlaceOrderOpsWide)}),
        kernelTable(oracle::memFillOps, {sse2(&memFillOpsSse2), avx2(&memFillOpsAvx2), wideTexts(&memFillOpsWide)}),
        kernelTable(oracle::memArithOps, {sse2(&memArithOpsSse2), avx2(&memArithOpsAvx2), wideTexts(&memArithOpsWide)}),
        kernelTable(oracle::sampleFormatOps, {sse2(&sampleFormatOpsSse2), wideTexts(&sampleFormatOpsWide)}),
        kernelTable(oracle::memCompareOps, {sse2(&memCompareOpsSse2), wideTexts(&memCompareOpsWide)}),
        kernelTable(oracle::memMiscOps, {sse2(&memMiscOpsSse2), ssse3(&memMiscOpsSsse3),
                                         avx2(&memMiscOpsAvx2, &oracle::memMiscOpsOfAvx2), wideTexts(&memMiscOpsWide)}),
        kernelTable(oracle::signalProcs, {sse2(&signalProcsSse2), wideTexts(&signalProcsWide)}),
        kernelTable(oracle::videoProcs, {sse2(&videoProcsSse2), avx2(&videoProcsAvx2), wideTexts(&videoProcsWide)}),
        kernelTable(oracle::matrixProcs, {sse2(&matrixProcsSse2), avx2(&matrixProcsAvx2), wideTexts(&matrixProcsWide)}),
        kernelTable(oracle::vectorProcs, {sse2(&vectorProcsSse2), wideTexts(&vectorProcsWide)}),
        kernelTable(oracle::math3dArrays, {sse2(&math3dArraysSse2), wideTexts(&math3dArraysWide)}),
        kernelTable(oracle::math3dIdentity, {sse2(&math3dIdentitySse2), wideTexts(&math3dIdentityWide)}),
        kernelTable(oracle::math3dCross, {sse2(&math3dCrossSse2), wideTexts(&math3dCrossWide)}),
    };
    return tables;
}

const KernelTable &kernelTableOf(std::type_index type)
{
    const auto found = std::ranges::find(kernelTables(), type, &KernelTable::type);
    if (found == kernelTables().end())
        throw std::out_of_range(std::string(type.name()) + " has no kernels");
    return *found;
}

VcbKernel kernelAt(const void *table, std::size_t slot)
{
    VcbKernel kernel = nullptr;
    std::memcpy(&kernel, static_cast<const char *>(table) + slot * sizeof(VcbKernel), sizeof(kernel));
    return kernel;
}

VcbKernel oracleAt(const void *base, const void *ofTier, std::size_t slot)
{
    const VcbKernel own = ofTier ? kernelAt(ofTier, slot) : nullptr;
    return own ? own : kernelAt(base, slot);
}

const VcbSlotInfo &slotInfoOf(const KernelTable &table, std::size_t slot)
{
    const auto found = std::find_if(table.slots.begin(), table.slots.end(), [slot](const VcbSlotInfo &info) {
        return info.number == static_cast<std::int32_t>(slot);
    });
    if (found == table.slots.end())
        throw std::out_of_range(table.label + " slot " + std::to_string(slot) + " is not in its list");
    return *found;
}

std::string caseName(const KernelTable &table, const KernelCase &kernelCase)
{
    const std::string slot = slotInfoOf(table, kernelCase.slot).name;
    return kernelCase.variant.empty() ? slot : slot + "-" + kernelCase.variant;
}

} // namespace vela::test
