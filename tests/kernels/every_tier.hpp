// Worked examples, for the oracle and for the kernels of every tier that this processor has.
#pragma once

#include "support/kernel_tables.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace vela::test {

// Calls check with the oracle's table, then with the tiers'; slots that a tier has not are the oracle's.
template <class Table, class Check> void onEveryTier(Check check)
{
    for (const KernelTable &table : kernelTables()) {
        if (table.type != typeid(Table))
            continue;
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
}

} // namespace vela::test
