#include "support/kernel_tables.hpp"

namespace vela::test {

std::vector<KernelCase> memMoveCases() { return {}; }

} // namespace vela::test
