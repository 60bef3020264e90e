#include "oracles/oracles.hpp"

#include "oracles/signal/procs.h"

#define VELA_SUBTABLE_LIST "vela/slots/signal_procs.def"
extern constinit const VcbSignalProcs vela::test::ORACLE::signalProcs = {
#include "frame/every_slot.h"
};
