// All kernel texts on the AVX2 vocabulary.
#pragma once

#include "oracles/oracles.hpp"

namespace vela::test {
#define DECLARE_WIDE(type, name) extern const type name##Wide;
ORACLE_TABLES(DECLARE_WIDE)
#undef DECLARE_WIDE
} // namespace vela::test
