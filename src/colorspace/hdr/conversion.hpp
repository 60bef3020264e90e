// The HDR conversion: its state, which belongs to the process, and the slots that set it up and use it.
#pragma once

#include "colorspace/format_maps.hpp"
#include "colorspace/hdr/plan.hpp"

#include <cstdint>

namespace vela::colorspace::hdr {

// The most entries that a curve has.
inline constexpr int inputEntries = 256 * 64;
inline constexpr int outputEntries = 4096 * 64;

// What slot 400 sets and slot 401 reads. No thread may read while another one sets.
struct State {
    State() noexcept;

    std::int32_t srcCode = 2;
    std::int32_t dstCode = 2;
    int srcScale = 16;
    int dstScale = 16;
    HdrConversionParams params = VELA_HDR_CONVERSION_DEFAULTS;
    HdrPlan plan{};
    alignas(64) float input[inputEntries]; // of light; the entries behind those of the scale are left as they were
    alignas(64) float output[outputEntries];
};

// Made when it is first asked for: a host without HDR pays neither time nor memory.
State &state() noexcept;

// Fills a table of the state; or, as the kernel that does nothing, leaves it.
using Builder = void VCB_CALL();

// Codes and the builders of their input (map 3) and output table (map 4).
extern FormatMap<Builder> formatMap3;
extern FormatMap<Builder> formatMap4;
void fillMaps() noexcept;

void VCB_CALL setUp(std::int32_t srcCode, std::int32_t dstCode, const HdrConversionParams *params);
void VCB_CALL convertPixels(const float *src, float *dst, const float *matrix, std::int32_t count);

} // namespace vela::colorspace::hdr
