// A function that leaves the file beside the table.
#include "table.hpp"

float helper(float x);
float helper(float x) { return x + 1; }

namespace {
float kernel(float x) { return helper(x); }
} // namespace

namespace vela {
extern const Table globalSse2;
constinit const Table globalSse2 = {kernel};
} // namespace vela
