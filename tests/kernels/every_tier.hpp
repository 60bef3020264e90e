// Tests of the kernels of every tier that this processor has.
#pragma once

#include "support/kernel_tables.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace vela::test {

// Calls check with the oracle's table, then with the tiers'; slots that a tier has not are the oracle's.
template <class Table, class Check> void onEveryTier(Check check)
{
    const KernelTable &table = kernelTableOf(typeid(Table));
    const auto &oracle = *static_cast<const Table *>(table.oracle);
    check(oracle);
    for (const TierKernels &tier : table.tiers) {
        if (VCB_GetCPUInsHigh() < tier.needs)
            continue;
        SCOPED_TRACE(tier.name);
        Table kernels = oracle;
        for (std::size_t slot = 0; slot < table.size; ++slot)
            if (const VcbKernel kernel = kernelAt(tier.table, slot))
                std::memcpy(reinterpret_cast<char *>(&kernels) + slot * sizeof(kernel), &kernel, sizeof(kernel));
        check(kernels);
    }
}

// Calls run(name of the tier, its table) with every tier that provides a kernel.
template <class Table, class Kernel, class Run> void onTiersWith(Kernel Table::*kernel, Run run)
{
    int tiers = 0;
    for (const TierKernels &tier : kernelTableOf(typeid(Table)).tiers) {
        const Table &kernels = *static_cast<const Table *>(tier.table);
        if (VCB_GetCPUInsHigh() < tier.needs || !(kernels.*kernel))
            continue;
        run(tier.name, kernels);
        ++tiers;
    }
    EXPECT_GT(tiers, 0);
}

} // namespace vela::test
