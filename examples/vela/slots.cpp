#include "slots.hpp"

#include <algorithm>
#include <cstdio>

namespace host {
namespace {

// Every family's table set and sub-tables, named by id and member.
struct AllTables {
#define FAMILY(id, tables, registerExport, description) tables id{};
#define SUBTABLE(id, member, type, description) type id##_##member{};
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY
};

void registerInto(AllTables &all, const Library &library)
{
#define FAMILY(id, tables, registerExport, description)
#define SUBTABLE(id, member, type, description) all.id.member = &all.id##_##member;
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY

#define FAMILY(id, tables, registerExport, description) LIBRARY_EXPORT(library, registerExport)(&all.id);
#define SUBTABLE(id, member, type, description)
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY
}

template <class SubTable> FilledSubTable describe(const char *member, const char *description, const SubTable &table)
{
    FilledSubTable filled{member, description, {}, vela::slotInfo<SubTable>()};
    for (std::size_t slot = 0; slot < sizeof(SubTable) / sizeof(VcbKernel); ++slot)
        filled.kernels.push_back(vela::slotPointer(table, slot));
    return filled;
}

} // namespace

const char *levelName(int32_t level)
{
    static constexpr const char *names[] = {"none", "SSE2", "SSE3", "SSSE3", "SSE4.1", "SSE4.2", "AVX", "AVX2"};
    return level >= 0 && level < static_cast<int32_t>(std::size(names)) ? names[level] : "unknown";
}

const TierDescription *tierThatRuns(const VcbSlotInfo &slot, int32_t level)
{
    const auto reached = [&](const TierDescription &tier) { return (slot.tiers & tier.tier) && level >= tier.needs; };
    const auto best = std::find_if(tiers.rbegin(), tiers.rend(), reached);
    return best == tiers.rend() ? nullptr : &*best;
}

std::vector<FilledFamily> registerAllFamilies(const Library &library)
{
    AllTables all;
    registerInto(all, library);

    std::vector<FilledFamily> families;
#define FAMILY(id, tables, registerExport, description) families.push_back({#id, description, {}});
#define SUBTABLE(id, member, type, description) \
    families.back().subTables.push_back(describe(#member, description, all.id##_##member));
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY
    return families;
}

std::vector<std::string> familyIds()
{
    return {
#define FAMILY(id, tables, registerExport, description) #id,
#define SUBTABLE(id, member, type, description)
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY
    };
}

std::string slotName(const std::string &familyId, const VcbSlotInfo &slot)
{
    if (familyId != "colorspace")
        return slot.name;
    char number[16];
    std::snprintf(number, sizeof(number), "CscKernel%03d", static_cast<int>(slot.number));
    return std::string(number) + "  " + slot.name;
}

SlotInUse requireSlot(const char *familyId, std::span<const VcbSlotInfo> list, int number, VcbKernel kernel,
                      int32_t level)
{
    const auto info = std::ranges::find(list, number, &VcbSlotInfo::number);
    const std::string place = std::string(familyId) + " slot " + std::to_string(number);
    if (info == list.end())
        throw Failure("this version of the library has no " + place);
    const TierDescription *tier = tierThatRuns(*info, level);
    if (!kernel || !tier)
        throw Failure("no kernel for " + place + " (" + info->name + ") on this processor, level " +
                      std::to_string(level) + " (" + levelName(level) + ")");
    return {familyId, &*info, tier};
}

Table tableOfSteps(const std::string &unitOfSpeed)
{
    return Table({{"step"}, {"kernel"}, {"slot"}, {"tier"}, {unitOfSpeed, Table::Align::right}});
}

void addStep(Table &table, const std::string &name, const SlotInUse &slot, const std::string &speed)
{
    table.addRow(
        {name, slot.info->name, slot.family + ' ' + std::to_string(slot.info->number), slot.tier->name, speed});
}

} // namespace host
