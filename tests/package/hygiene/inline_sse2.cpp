// An inline function: the program keeps one copy of it, from whichever tier.
#include "table.hpp"

template <class T> __attribute__((noinline)) T twice(T x) { return x + x; }

namespace {
float kernel(float x) { return twice(x); }
} // namespace

namespace vela {
extern const Table inlineSse2;
constinit const Table inlineSse2 = {kernel};
} // namespace vela
