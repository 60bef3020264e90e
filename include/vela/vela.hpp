// Typed access for hosts in C++20. A host constructs a family, which registers, and calls its members:
//
//     vela::VideoProcs procs;
//     procs.video.SharpenU8(dst, row, blurred, bytes);
//
// A host that loads the library at run time passes the export it looked up: vela::VideoProcs procs(regVideo).
// A processor without SSE2, and slots of a later version, leave null pointers: test a slot before its first call.
#ifndef VELA_VELA_HPP
#define VELA_VELA_HPP

#include <vela/vela.h>

#include <cstddef>
#include <cstring>
#include <span>

namespace vela {

struct MemProcs {
    VcbMemOrderOps orderOps{};
    VcbMemInPlaceOrderOps inPlaceOrderOps{};
    VcbMemFillOps fillOps{};
    VcbMemArithOps arithOps{};
    VcbSampleFormatOps sampleFormatOps{};
    VcbMemCompareOps compareOps{};
    VcbMemMiscOps miscOps{};

    explicit MemProcs(decltype(&VCB_RegMemProc) registerTables = &VCB_RegMemProc)
    {
        VcbMemProcTables tables{&orderOps,        &inPlaceOrderOps, &fillOps, &arithOps,
                                &sampleFormatOps, &compareOps,      &miscOps};
        registerTables(&tables);
    }
};

struct ColorSpaceProcs {
    VcbColorSpaceProcs colorSpace{};

    explicit ColorSpaceProcs(decltype(&VCB_RegColorSpace) registerTables = &VCB_RegColorSpace)
    {
        VcbColorSpaceTables tables{.unused0 = {}, .colorSpace = &colorSpace};
        registerTables(&tables);
    }
};

struct VideoProcs {
    VcbVideoProcs video{};

    explicit VideoProcs(decltype(&VCB_RegVideoProc) registerTables = &VCB_RegVideoProc)
    {
        VcbVideoProcTables tables{.unused0 = {}, .video = &video};
        registerTables(&tables);
    }
};

struct VideoEffects {
    VcbVideoEffects videoEffects{};

    explicit VideoEffects(decltype(&VCB_RegVideoEffectProc) registerTables = &VCB_RegVideoEffectProc)
    {
        VcbVideoEffectTables tables{.unused0 = {}, .videoEffects = &videoEffects};
        registerTables(&tables);
    }
};

struct ImageMath {
    VcbImageMath imageMath{};

    explicit ImageMath(decltype(&VCB_RegImageMath) registerTables = &VCB_RegImageMath)
    {
        VcbImageMathTables tables{.unused0 = {}, .imageMath = &imageMath};
        registerTables(&tables);
    }
};

struct AudioProcs {
    VcbAudioProcs audio{};

    explicit AudioProcs(decltype(&VCB_RegAudioProc) registerTables = &VCB_RegAudioProc)
    {
        VcbAudioProcTables tables{.unused0 = {}, .audio = &audio};
        registerTables(&tables);
    }
};

struct AudioEffects {
    VcbAudioEffects audioEffects{};

    explicit AudioEffects(decltype(&VCB_RegAudioEffectProc) registerTables = &VCB_RegAudioEffectProc)
    {
        VcbAudioEffectTables tables{.unused0 = {}, .audioEffects = &audioEffects};
        registerTables(&tables);
    }
};

struct SignalProcs {
    VcbSignalProcs signal{};

    explicit SignalProcs(decltype(&VCB_RegSignalProc) registerTables = &VCB_RegSignalProc)
    {
        VcbSignalProcTables tables{.unused0 = {}, .signal = &signal};
        registerTables(&tables);
    }
};

struct MatrixProcs {
    VcbMatrixProcs matrix{};
    VcbVectorProcs vector{};

    explicit MatrixProcs(decltype(&VCB_RegMatrixProc) registerTables = &VCB_RegMatrixProc)
    {
        VcbMatrixProcTables tables{.unused0 = {}, .matrix = &matrix, .vector = &vector};
        registerTables(&tables);
    }
};

struct Math3D {
    Vcb3DMathArrays arrays{};
    Vcb3DMathIdentity identity{};
    Vcb3DMathCross cross{};

    explicit Math3D(decltype(&VCB_Reg3DMath) registerTables = &VCB_Reg3DMath)
    {
        Vcb3DMathTables tables{&arrays, &identity, &cross};
        registerTables(&tables);
    }
};

// The slot list of a sub-table type as data: number, name, tiers, signature, kernel. Reserved slots are not listed.
template <class SubTable> std::span<const VcbSlotInfo> slotInfo();

#define FAMILY(id, tables, registerExport, description)
#define SUBTABLE(id, member, type, description)                          \
    template <> inline std::span<const VcbSlotInfo> slotInfo<type>()     \
    {                                                                    \
        return std::span(type##_info).first(std::size(type##_info) - 1); \
    }
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY

// A sub-table as the array that it is. Copies, since reading a struct as an array is not defined in C++.
template <class SubTable> VcbKernel slotPointer(const SubTable &table, std::size_t slot)
{
    VcbKernel kernel = nullptr;
    std::memcpy(&kernel, reinterpret_cast<const unsigned char *>(&table) + slot * sizeof(VcbKernel), sizeof(kernel));
    return kernel;
}

} // namespace vela

#endif
