// Runs a kernel against its oracle on guarded memory and says what is wrong with it.
#pragma once

#include "support/kernel_case.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace vela::test {

enum class Fault { crash, wrongResult, wroteOutside, changedSource, wrongReturn, leftRegisters };

struct Finding {
    Fault fault;
    std::string text; // count, placement, fill, seed, first difference
};

struct CheckPlan {
    std::uint64_t seed = 1;
    std::int64_t everyCountUpTo = 140; // all counts to here: several blocks of the widest tier
    bool quick = false;                // a share of the placements and fills of each count, for emulators
    bool upperHalves = true;           // look at them too
};

struct CheckResult {
    std::uint64_t runs = 0;
    std::optional<Finding> finding; // the first
};

// Checks one kernel. The oracle runs on aligned copies of the same data. A kernel passes when results, untouched
// bytes inside the rows, bytes around them and the sources all agree, for every count, on both sides of inaccessible
// pages, at any alignment, and in place where the case allows it. Agreement is to the bit, but for results that are
// both NaN. Where the processor tells, a kernel must also leave the upper halves of the vector registers clear: SSE
// code that runs after it would be several times slower. Throws if the case contradicts its signature.
[[nodiscard]] CheckResult checkKernel(const KernelCase &kernelCase, VcbKernel kernel, VcbKernel oracle,
                                      const CheckPlan &plan);

const char *faultName(Fault fault);

// Whether this processor tells what the upper halves hold, and this build clears them.
bool tracksUpperHalves();
// What a kernel does that forgets to.
void fillUpperHalf();

} // namespace vela::test
