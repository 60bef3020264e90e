// As a tier source should be.
#include "table.hpp"

namespace {
float kernel(float x) { return 2 * x; }
} // namespace

namespace vela {
extern const Table goodSse2;
constinit const Table goodSse2 = {kernel};
} // namespace vela
