// A call into another file, whose code is compiled for who knows what.
#include "table.hpp"

float elsewhere(float x);

namespace {
float kernel(float x) { return elsewhere(x); }
} // namespace

namespace vela {
extern const Table referenceSse2;
constinit const Table referenceSse2 = {kernel};
} // namespace vela
