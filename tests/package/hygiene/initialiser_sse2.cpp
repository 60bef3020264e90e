// A constant that is computed at load.
#include "table.hpp"

namespace {
const volatile int setting = 3;
const int factor = setting;

float kernel(float x) { return static_cast<float>(factor) * x; }
} // namespace

namespace vela {
extern const Table initialiserSse2;
constinit const Table initialiserSse2 = {kernel};
} // namespace vela
