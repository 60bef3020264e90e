// Which kernel a slot holds, told from the slot lists and the processor.
#pragma once

#include "failure.hpp"
#include "library.hpp"
#include "table.hpp"

#include <array>
#include <string>
#include <vector>

namespace host {

struct TierDescription {
    VcbTiers tier;
    VcbCpuLevel needs;
    const char *name;
};

// Every tier, best last.
inline constexpr std::array tiers = {
    TierDescription{VCB_TIERS_PLAIN, VCB_CPU_SSE2, "plain"},  TierDescription{VCB_TIERS_SSE2, VCB_CPU_SSE2, "SSE2"},
    TierDescription{VCB_TIERS_SSSE3, VCB_CPU_SSSE3, "SSSE3"}, TierDescription{VCB_TIERS_AVX, VCB_CPU_AVX, "AVX"},
    TierDescription{VCB_TIERS_AVX2, VCB_CPU_AVX2, "AVX2"},
};

const char *levelName(int32_t level);

// The tier whose kernel the library puts into this slot at this level; null if the level reaches none.
const TierDescription *tierThatRuns(const VcbSlotInfo &slot, int32_t level);

// One sub-table as the library filled it.
struct FilledSubTable {
    std::string member;
    std::string description;
    std::vector<VcbKernel> kernels; // one for every position, null where there is none
    std::span<const VcbSlotInfo> list;
};

struct FilledFamily {
    std::string id;
    std::string description;
    std::vector<FilledSubTable> subTables;
};

// All families, registered into zeroed tables.
std::vector<FilledFamily> registerAllFamilies(const Library &library);

// The ids of all families, as `vela info --slots` takes them.
std::vector<std::string> familyIds();

// The name under which users know a slot: colour-space slots have a numbered name besides the telling one.
std::string slotName(const std::string &familyId, const VcbSlotInfo &slot);

// A slot that a host is about to call, for messages and reports.
struct SlotInUse {
    std::string family;
    const VcbSlotInfo *info;
    const TierDescription *tier;
};

// Finds a slot in its list and makes sure that it holds a kernel. Throws Failure.
SlotInUse requireSlot(const char *familyId, std::span<const VcbSlotInfo> list, int number, VcbKernel kernel,
                      int32_t level);

template <class SubTable> SlotInUse requireSlot(const char *familyId, const SubTable &table, int number, int32_t level)
{
    return requireSlot(familyId, vela::slotInfo<SubTable>(), number,
                       vela::slotPointer(table, static_cast<std::size_t>(number)), level);
}

// What a subcommand did: a row for every kernel, with a speed in this unit.
Table tableOfSteps(const std::string &unitOfSpeed);
void addStep(Table &table, const std::string &name, const SlotInUse &slot, const std::string &speed);

} // namespace host
