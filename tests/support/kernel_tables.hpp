// Everything there is to check or time, by sub-table: slots, tiers, oracle, cases.
#pragma once

#include "support/kernel_case.hpp"

#include <vela/frame.h>
#include <vela/vela.hpp>

#include <span>
#include <string>
#include <vector>

namespace vela::test {

struct TierKernels {
    std::string name;
    VcbCpuLevel needs;
    std::int32_t tier; // VcbTiers, or 0 for tables that exist only in the tests
    const void *table;
};

struct KernelTable {
    std::string family;
    std::span<const VcbSlotInfo> slots;
    std::size_t size; // slots, the reserved ones included
    const void *oracle;
    std::vector<TierKernels> tiers; // best last
    std::vector<KernelCase> cases;
};

std::vector<KernelCase> videoCases();
std::vector<KernelCase> colorSpaceCases();

// All sub-tables that have kernels.
std::vector<KernelTable> kernelTables();

VcbKernel kernelAt(const void *table, std::size_t slot);
const VcbSlotInfo &slotInfoOf(const KernelTable &table, std::size_t slot);

} // namespace vela::test
