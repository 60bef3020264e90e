/* Video rows: smoothing, sharpening, resampling, deinterlacing, blending. */
#ifndef VELA_VIDEO_H
#define VELA_VIDEO_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbVideoProcs
#define VELA_SUBTABLE_LIST "vela/slots/video_procs.def"
#define VELA_SUBTABLE_SLOTS 369
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegVideoProc. Null sub-tables are skipped. */
typedef struct VcbVideoProcTables {
    void *unused0[2];     /* not read */
    VcbVideoProcs *video; /* video row kernels */
} VcbVideoProcTables;

VCB_STATIC_ASSERT(offsetof(VcbVideoProcTables, video) == 2 * sizeof(void *), "table set position of video");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegVideoProc(VcbVideoProcTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
