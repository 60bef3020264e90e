#include "support/kernel_tables.hpp"

namespace vela::test {

std::vector<KernelCase> memFormatCases() { return {}; }

} // namespace vela::test
