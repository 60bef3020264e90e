// As a tier source should be; g_CPUID is data that kernels may read.
#include "table.hpp"

#include <vela/frame.h>

namespace {
float kernel(float x) { return g_CPUID.popcnt ? 2 * x : 3 * x; }
} // namespace

namespace vela {
extern const Table goodSse2;
constinit const Table goodSse2 = {kernel};
} // namespace vela
