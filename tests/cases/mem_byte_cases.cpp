#include "support/kernel_tables.hpp"

namespace vela::test {

std::vector<KernelCase> memByteCases() { return {}; }

} // namespace vela::test
