#include "colorspace/format_maps.hpp"

#include "colorspace/hdr/conversion.hpp"
#include "colorspace/tiers.hpp"

namespace vela::colorspace {

constinit FormatMap<RowToFloats> formatMap1;
constinit FormatMap<RowFromFloats> formatMap2;

namespace {

template <class Kernel> struct CodedSlot {
    std::int32_t code;
    Kernel *VcbColorSpaceProcs::*slot;
};

// Codes of one layout differ in what the host knows of its pixels besides: the meaning of alpha, primaries.
constexpr CodedSlot<RowToFloats> map1Slots[] = {
    {3, &VcbColorSpaceProcs::CscBgr24ToF32x4},     {6, &VcbColorSpaceProcs::CscRgbaToF32x4},
    {7, &VcbColorSpaceProcs::CscA2b10ToF32x4},     {8, &VcbColorSpaceProcs::CscBgraToF32x4},
    {9, &VcbColorSpaceProcs::CscBgraToF32x4},      {1014, &VcbColorSpaceProcs::CscRgb48ToF32x4},
    {1015, &VcbColorSpaceProcs::CscA2r10ToF32x4},  {1024, &VcbColorSpaceProcs::CscRgba64ToF32x4},
    {1025, &VcbColorSpaceProcs::CscRgba64ToF32x4}, {1047, &VcbColorSpaceProcs::CscRgba64ToF32x4},
    {1050, &VcbColorSpaceProcs::CscRgba64ToF32x4}, {1053, &VcbColorSpaceProcs::CscRgb48ToF32x4},
    {1054, &VcbColorSpaceProcs::CscA2r10ToF32x4},
};

constexpr CodedSlot<RowFromFloats> map2Slots[] = {
    {3, &VcbColorSpaceProcs::CscF32x4ToBgr24},     {4, &VcbColorSpaceProcs::CscF32x4ToRgb24},
    {6, &VcbColorSpaceProcs::CscF32x4ToRgba},      {7, &VcbColorSpaceProcs::CscF32x4ToA2b10},
    {8, &VcbColorSpaceProcs::CscF32x4ToBgra},      {9, &VcbColorSpaceProcs::CscF32x4ToBgra},
    {1014, &VcbColorSpaceProcs::CscF32x4ToRgb48},  {1024, &VcbColorSpaceProcs::CscF32x4ToRgba64},
    {1025, &VcbColorSpaceProcs::CscF32x4ToRgba64}, {1047, &VcbColorSpaceProcs::CscF32x4ToRgba64},
    {1050, &VcbColorSpaceProcs::CscF32x4ToRgba64},
};

template <class Kernel, std::size_t N> void fill(FormatMap<Kernel> &map, const CodedSlot<Kernel> (&slots)[N]) noexcept
{
    static_assert(N <= FormatMap<Kernel>::keptForAssignments);
    for (const CodedSlot<Kernel> &coded : slots)
        map.assign(coded.code, colorSpaceProcsSse2.*coded.slot);
}

void VCB_CALL convertByCodeMap1(std::int32_t code, float *dst, const void *src, std::int32_t width)
{
    if (RowToFloats *const convert = formatMap1[code])
        convert(dst, src, width);
}

void VCB_CALL convertByCodeMap2(std::int32_t code, void *dst, const float *src, std::int32_t width)
{
    if (RowFromFloats *const convert = formatMap2[code])
        convert(dst, src, width);
}

} // namespace

void fillFormatMaps() noexcept
{
    fill(formatMap1, map1Slots);
    fill(formatMap2, map2Slots);
    hdr::fillMaps();
}

constinit const VcbColorSpaceProcs plainProcs = {
    .CscConvertByCodeMap1 = convertByCodeMap1,
    .CscConvertByCodeMap2 = convertByCodeMap2,
    .CscSetupHdrConversion = hdr::setUp,
    .CscConvertHdrPixels = hdr::convertPixels,
};

} // namespace vela::colorspace
