/* Audio: recursive filters, interpolators, saturating mixers, effect building blocks. */
#ifndef VELA_AUDIO_H
#define VELA_AUDIO_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

#define VELA_SUBTABLE VcbAudioProcs
#define VELA_SUBTABLE_LIST "vela/slots/audio_procs.def"
#define VELA_SUBTABLE_SLOTS 15
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegAudioProc. Null sub-tables are skipped. */
typedef struct VcbAudioProcTables {
    void *unused0;        /* not read */
    VcbAudioProcs *audio; /* filters, interpolators, mixers */
} VcbAudioProcTables;

VCB_STATIC_ASSERT(offsetof(VcbAudioProcTables, audio) == 1 * sizeof(void *), "table set position of audio");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegAudioProc(VcbAudioProcTables *tables) VCB_NOEXCEPT;

#define VELA_SUBTABLE VcbAudioEffects
#define VELA_SUBTABLE_LIST "vela/slots/audio_effects.def"
#define VELA_SUBTABLE_SLOTS 5
#include <vela/detail/subtable.h>

/* Kernel table set of VCB_RegAudioEffectProc. Null sub-tables are skipped. */
typedef struct VcbAudioEffectTables {
    void *unused0;                 /* not read */
    VcbAudioEffects *audioEffects; /* scalar effect building blocks */
} VcbAudioEffectTables;

VCB_STATIC_ASSERT(offsetof(VcbAudioEffectTables, audioEffects) == 1 * sizeof(void *),
                  "table set position of audioEffects");

/* Fills the empty slots of a kernel table set. A null set is ignored. */
VCB_API void VCB_CALL VCB_RegAudioEffectProc(VcbAudioEffectTables *tables) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
