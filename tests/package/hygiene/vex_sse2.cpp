// Compiled with -mavx although it is the base tier.
#include "table.hpp"

namespace {
float kernel(float x) { return 2 * x; }
} // namespace

namespace vela {
extern const Table vexSse2;
constinit const Table vexSse2 = {kernel};
} // namespace vela
