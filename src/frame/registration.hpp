// The rule that every family's export follows: best tier first, and only into slots that are still null.
#pragma once

#include "frame/cpu.hpp"

#include <cstddef>
#include <type_traits>

namespace vela::frame {

// One tier of a sub-table: what the processor must reach, and the kernels, null where the tier has none.
template <class SubTable> struct Tier {
    VcbCpuLevel needs;
    const SubTable *kernels;
};

// Copies the pointers of tier into the null slots of host. Both point to arrays of kernel pointers.
void fillEmptySlots(void *host, const void *tier, std::size_t slots) noexcept;

// Fills a host's sub-table, which may be null: the family then is not wanted.
template <class SubTable, std::size_t N>
void registerSubTable(SubTable *host, const Tier<SubTable> (&bestFirst)[N]) noexcept
{
    static_assert(std::is_standard_layout_v<SubTable> && sizeof(SubTable) % sizeof(VcbKernel) == 0);
    if (!host)
        return;
    for (const Tier<SubTable> &tier : bestFirst)
        if (cpuLevel() >= tier.needs)
            fillEmptySlots(host, tier.kernels, sizeof(SubTable) / sizeof(VcbKernel));
}

} // namespace vela::frame
