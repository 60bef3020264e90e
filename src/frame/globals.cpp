// The exported data. g_CPUID must lie directly behind g_TesselConf in memory, which two C++ objects cannot
// promise, so both names are given to one run of zero bytes.
#include <vela/frame.h>

static_assert(sizeof(VcbTesselConf) == 20 && alignof(VcbTesselConf) == 4 && sizeof(VcbCpuId) == 2);

#if defined(_WIN32)
#define DATA_SYMBOL(name, size) ".globl " name "\n" name ": .zero " size "\n"
#define ZEROED_DATA ".bss\n"
#else
#define DATA_SYMBOL(name, size) \
    ".globl " name "\n.type " name ", @object\n.size " name ", " size "\n" name ": .zero " size "\n"
#define ZEROED_DATA ".pushsection .bss\n"
#endif

__asm__(ZEROED_DATA ".balign 16\n" DATA_SYMBOL("g_TesselConf", "20") DATA_SYMBOL("g_CPUID", "2")
#if defined(_WIN32)
            ".text\n"
#else
            ".popsection\n"
#endif
);
