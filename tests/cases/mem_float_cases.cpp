#include "support/kernel_tables.hpp"

namespace vela::test {

std::vector<KernelCase> memFloatCases() { return {}; }

} // namespace vela::test
