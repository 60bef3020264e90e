/* Signal: luma sharpening of packed 4:2:2, magnitudes, sliding dot products. */
#ifndef VELA_SIGNAL_H
#define VELA_SIGNAL_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbSignalProcs
#define VELA_SUBTABLE_LIST "vela/slots/signal_procs.def"
#define VELA_SUBTABLE_SLOTS 10
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegSignalProc. Null sub-tables are skipped. */
typedef struct VcbSignalProcTables {
    void *unused0;          /* not read */
    VcbSignalProcs *signal; /* signal kernels */
} VcbSignalProcTables;

VCB_STATIC_ASSERT(offsetof(VcbSignalProcTables, signal) == 1 * sizeof(void *), "table set position of signal");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegSignalProc(VcbSignalProcTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
