// The oracles: every slot's formula as a plain loop, in tables of the host's own types. The tests use one build of
// them; the bench one per instruction set, so that a kernel competes with what the compiler makes of the formula.
#pragma once

#include <vela/audio.h>
#include <vela/colorspace.h>
#include <vela/math3d.h>
#include <vela/matrix.h>
#include <vela/mem.h>
#include <vela/signal.h>
#include <vela/video.h>

// Every sub-table that has oracles, and its name in each build.
#define ORACLE_TABLES(TABLE)                         \
    TABLE(VcbAudioProcs, audioProcs)                 \
    TABLE(VcbAudioEffects, audioEffects)             \
    TABLE(VcbColorSpaceProcs, colorSpaceProcs)       \
    TABLE(VcbMemOrderOps, memOrderOps)               \
    TABLE(VcbMemInPlaceOrderOps, memInPlaceOrderOps) \
    TABLE(VcbMemFillOps, memFillOps)                 \
    TABLE(VcbMemArithOps, memArithOps)               \
    TABLE(VcbSampleFormatOps, sampleFormatOps)       \
    TABLE(VcbMemCompareOps, memCompareOps)           \
    TABLE(VcbMemMiscOps, memMiscOps)                 \
    TABLE(VcbSignalProcs, signalProcs)               \
    TABLE(VcbVideoProcs, videoProcs)                 \
    TABLE(VcbMatrixProcs, matrixProcs)               \
    TABLE(VcbVectorProcs, vectorProcs)               \
    TABLE(Vcb3DMathArrays, math3dArrays)             \
    TABLE(Vcb3DMathIdentity, math3dIdentity)         \
    TABLE(Vcb3DMathCross, math3dCross)

// Those whose result at a further tier is another than the base tier's, with these slots alone.
#define TIER_ORACLE_TABLES(TABLE)         \
    TABLE(VcbAudioProcs, audioProcsOfAvx) \
    TABLE(VcbMemMiscOps, memMiscOpsOfAvx2)

#define DECLARE_TABLE(type, name) extern const type name;
#define DECLARE_ORACLES(build)        \
    namespace vela::test::build {     \
    ORACLE_TABLES(DECLARE_TABLE)      \
    TIER_ORACLE_TABLES(DECLARE_TABLE) \
    }

DECLARE_ORACLES(oracle)
DECLARE_ORACLES(oracleSSE2)
DECLARE_ORACLES(oracleSSSE3)
DECLARE_ORACLES(oracleAVX)
DECLARE_ORACLES(oracleAVX2)

#undef DECLARE_ORACLES
#undef DECLARE_TABLE

// The build that a source file belongs to.
#if !defined(ORACLE)
#define ORACLE oracle
#endif
