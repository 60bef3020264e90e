/* Video effects: keyed extraction, recursive smoothing, keying, masked copies, texture rows. */
#ifndef VELA_VIDEOFX_H
#define VELA_VIDEOFX_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbVideoEffects
#define VELA_SUBTABLE_LIST "vela/slots/video_effects.def"
#define VELA_SUBTABLE_SLOTS 36
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegVideoEffectProc. Null sub-tables are skipped. */
typedef struct VcbVideoEffectTables {
    void *unused0[3];              /* not read */
    VcbVideoEffects *videoEffects; /* video-effect row kernels */
} VcbVideoEffectTables;

VCB_STATIC_ASSERT(offsetof(VcbVideoEffectTables, videoEffects) == 3 * sizeof(void *),
                  "table set position of videoEffects");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegVideoEffectProc(VcbVideoEffectTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
