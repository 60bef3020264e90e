#include "oracles/oracles.hpp"

#include "oracles/color/singular.h"

namespace {

#define CONVERSION(name, destination, source, step) \
    [[maybe_unused]] constexpr Conversion<destination, source, step> name{};
#include "oracles/color/catalogue.def"

} // namespace

#define VELA_SUBTABLE_LIST "vela/slots/color_space_procs.def"
extern constinit const VcbColorSpaceProcs vela::test::ORACLE::colorSpaceProcs = {
#include "frame/every_slot.h"
};
