#include "support/kernel_tables.hpp"

#include "colorspace/tiers.hpp"
#include "oracles/oracles.hpp"
#include "support/wide_texts.hpp"
#include "video/tiers.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace vela::test {
namespace {

template <class Table>
KernelTable kernelTable(std::string family, const Table &oracle, std::vector<TierKernels> tiers,
                        std::vector<KernelCase> cases)
{
    return {std::move(family), slotInfo<Table>(), sizeof(Table) / sizeof(VcbKernel),
            &oracle,           std::move(tiers),  std::move(cases)};
}

TierKernels sse2(const void *table) { return {"sse2", VCB_CPU_SSE2, VCB_TIERS_SSE2, table}; }
TierKernels avx2(const void *table) { return {"avx2", VCB_CPU_AVX2, VCB_TIERS_AVX2, table}; }

// Every kernel text compiled for AVX2, whether or not the library ships it there: proves the wide vocabulary.
TierKernels wideTexts(const void *table) { return {"wide", VCB_CPU_AVX2, 0, table}; }

} // namespace

std::vector<KernelTable> kernelTables()
{
    return {
        kernelTable("colorspace", oracle::colorSpaceProcs,
                    {sse2(&colorSpaceProcsSse2), avx2(&colorSpaceProcsAvx2), wideTexts(&colorSpaceProcsWide)},
                    colorSpaceCases()),
        kernelTable("video", oracle::videoProcs,
                    {sse2(&videoProcsSse2), avx2(&videoProcsAvx2), wideTexts(&videoProcsWide)}, videoCases()),
    };
}

VcbKernel kernelAt(const void *table, std::size_t slot)
{
    VcbKernel kernel = nullptr;
    std::memcpy(&kernel, static_cast<const char *>(table) + slot * sizeof(VcbKernel), sizeof(kernel));
    return kernel;
}

const VcbSlotInfo &slotInfoOf(const KernelTable &table, std::size_t slot)
{
    const auto found = std::find_if(table.slots.begin(), table.slots.end(), [slot](const VcbSlotInfo &info) {
        return info.number == static_cast<std::int32_t>(slot);
    });
    if (found == table.slots.end())
        throw std::out_of_range(table.family + " slot " + std::to_string(slot) + " is not in its list");
    return *found;
}

} // namespace vela::test
