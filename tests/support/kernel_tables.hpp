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
    const void *oracle = nullptr; // of the slots whose result at this tier is another than the base tier's
};

struct KernelTable {
    std::type_index type; // the sub-table's
    std::string label;    // the family's short name, and the sub-table's where a family has several
    std::span<const VcbSlotInfo> slots;
    std::size_t size; // slots, the reserved ones included
    const void *oracle;
    std::vector<TierKernels> tiers; // best last
    std::vector<KernelCase> cases;
};

// By topic; one vector may hold cases of several sub-tables.
std::vector<KernelCase> audioCases();
std::vector<KernelCase> colorSpaceCases();
std::vector<KernelCase> memMoveCases();
std::vector<KernelCase> memByteCases();
std::vector<KernelCase> memFloatCases();
std::vector<KernelCase> memFormatCases();
std::vector<KernelCase> signalCases();
std::vector<KernelCase> videoCases();
std::vector<KernelCase> matrixCases();
std::vector<KernelCase> math3dCases();
const std::vector<KernelCase> &allCases();

// All sub-tables that have kernels. Made once: there are some thousand cases.
const std::vector<KernelTable> &kernelTables();
const KernelTable &kernelTableOf(std::type_index type); // throws std::out_of_range if it has none

VcbKernel kernelAt(const void *table, std::size_t slot);
VcbKernel oracleAt(const void *base, const void *ofTier, std::size_t slot);
const VcbSlotInfo &slotInfoOf(const KernelTable &table, std::size_t slot);

// The slot's name, and what tells the case from others of the slot.
std::string caseName(const KernelTable &table, const KernelCase &kernelCase);

} // namespace vela::test
