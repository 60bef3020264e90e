/*
 * Conventions that hold for every kernel and export of VelaCPUBase.
 *
 *  1. Tables.     The host owns sub-tables of function pointers and, per family, a kernel table set that
 *                 points to them. A VCB_Reg... export writes the best kernel for the running processor into
 *                 every slot that is still null, and never changes a slot that is set. Start with zeroed
 *                 tables; put functions of your own into slots that you want to keep.
 *  2. Arguments.  Destinations, then sources, then the count or width, then parameters; in the memory family the
 *                 count comes last, in covariances each source is followed by its mean.
 *  3. Counts.     The type and unit of a count stand in the slot's line. A count of zero writes nothing; so
 *                 does a negative count where the count is signed.
 *  4. Alignment.  Pointers to rows need no alignment, whatever their type. VcbMat4 and VcbVec4 need 16 bytes.
 *  5. Memory.     A kernel reads and writes only what its slot's line names. Rows may not overlap unless
 *                 the line allows it.
 *  6. Threads.    Kernels keep no state: call them from as many threads as you like over disjoint rows.
 *                 Registration must not run while another thread reads the same tables.
 *  7. Floats.     Kernels expect the default environment: rounding to nearest, exceptions masked. They never
 *                 fuse a multiplication with an addition, so every tier gives the same bits.
 *  8. Tiers.      The kernels of one slot compute the same result at every tier unless its line says otherwise.
 *  9. Ownership.  The library keeps no pointer that it is given. No export throws.
 * 10. Strings.    Wide strings use the platform's wchar_t: UTF-16 on Windows, UTF-32 on Linux.
 */
#ifndef VELA_BASE_H
#define VELA_BASE_H

#include <stddef.h>
#include <stdint.h>

#if defined(VELA_BUILDING_LIBRARY)
#if defined(_WIN32)
#define VCB_API /* a module definition file lists the exports */
#else
#define VCB_API __attribute__((visibility("default")))
#endif
#elif defined(_WIN32)
#define VCB_API __declspec(dllimport)
#else
#define VCB_API
#endif

/* Calling convention of every kernel and export. */
#if defined(_WIN32)
#define VCB_CALL __cdecl
#else
#define VCB_CALL
#endif

#if defined(__cplusplus)
#define VCB_STATIC_ASSERT(condition, text) static_assert(condition, text)
#define VCB_NOEXCEPT noexcept
#else
#define VCB_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#define VCB_NOEXCEPT
#endif

#if defined(__cplusplus)
extern "C" {
#endif

/* A slot whose signature does not matter: what an array of slots is made of. */
typedef void(VCB_CALL *VcbKernel)(void);

/* The instruction sets that kernels are written for, and the sets of them that a slot can have. The slot
 * lists name a set by what follows VCB_TIERS_. */
typedef enum VcbTiers {
    VCB_TIERS_SSE2 = 1 << 0,
    VCB_TIERS_SSSE3 = 1 << 1,
    VCB_TIERS_AVX = 1 << 2,
    VCB_TIERS_AVX2 = 1 << 3,
    VCB_TIERS_PLAIN = 1 << 4, /* no kernel: plain code, the same wherever kernels run */
    VCB_TIERS_SSE2_SSSE3 = VCB_TIERS_SSE2 | VCB_TIERS_SSSE3,
    VCB_TIERS_SSE2_AVX = VCB_TIERS_SSE2 | VCB_TIERS_AVX,
    VCB_TIERS_SSE2_AVX2 = VCB_TIERS_SSE2 | VCB_TIERS_AVX2,
    VCB_TIERS_SSE2_SSSE3_AVX2 = VCB_TIERS_SSE2_SSSE3 | VCB_TIERS_AVX2
} VcbTiers;

/* One row of a slot list, as data. */
typedef struct VcbSlotInfo {
    int32_t number;
    int32_t tiers; /* VcbTiers: the instruction sets that have a kernel of their own */
    const char *name;
    const char *signature; /* "void (uint8_t *dst, ...)" */
    const char *kernel;    /* the name, unless other slots hold the same kernel: then one name for all of them */
} VcbSlotInfo;

#if defined(__cplusplus)
}
#endif

#endif
