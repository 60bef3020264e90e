// The oracles: every slot's formula as a plain loop, in tables of the host's own types. The tests use one build of
// them; the bench one per instruction set, so that a kernel competes with what the compiler makes of the formula.
#pragma once

#include <vela/colorspace.h>
#include <vela/mem.h>
#include <vela/video.h>

#define DECLARE_ORACLES(name)                              \
    namespace vela::test::name {                           \
    extern const VcbColorSpaceProcs colorSpaceProcs;       \
    extern const VcbMemOrderOps memOrderOps;               \
    extern const VcbMemInPlaceOrderOps memInPlaceOrderOps; \
    extern const VcbMemFillOps memFillOps;                 \
    extern const VcbMemArithOps memArithOps;               \
    extern const VcbSampleFormatOps sampleFormatOps;       \
    extern const VcbMemCompareOps memCompareOps;           \
    extern const VcbMemMiscOps memMiscOps;                 \
    extern const VcbVideoProcs videoProcs;                 \
    }

DECLARE_ORACLES(oracle)
DECLARE_ORACLES(oracleSSE2)
DECLARE_ORACLES(oracleAVX2)

#undef DECLARE_ORACLES

// The build that a source file belongs to.
#if !defined(ORACLE)
#define ORACLE oracle
#endif
