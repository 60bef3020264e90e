// What vela tonemap and vela curves share: the transfer curves by name, and the matrix of a call.
#pragma once

#include "gamuts.hpp"

#include <vela/hdr.h>

#include <array>

namespace host {

// What light 1.0 is.
enum class Light { hundredCandelas, peak };

struct Curve {
    const char *name;
    VcbHdrCurve code;
    Light light;
};

inline constexpr Curve curves[] = {
    {"bt709", VCB_HDR_BT709, Light::peak},
    {"bt601", VCB_HDR_BT601, Light::peak},
    {"bt2020-12bit", VCB_HDR_BT2020_12BIT, Light::peak},
    {"power2.2", VCB_HDR_POWER_2_2, Light::peak},
    {"power2.4", VCB_HDR_POWER_2_4, Light::peak},
    {"power2.6", VCB_HDR_POWER_2_6, Light::peak},
    {"power2.8", VCB_HDR_POWER_2_8, Light::peak},
    {"pq", VCB_HDR_PQ, Light::hundredCandelas},
    {"hlg", VCB_HDR_HLG, Light::hundredCandelas},
    {"hlg-scene", VCB_HDR_HLG_SCENE, Light::peak},
    {"s-log2", VCB_HDR_S_LOG2, Light::peak},
    {"s-log3", VCB_HDR_S_LOG3, Light::peak},
    {"s-log3-high", VCB_HDR_S_LOG3_HIGH, Light::peak},
    {"canon-log", VCB_HDR_CANON_LOG, Light::peak},
    {"canon-log2", VCB_HDR_CANON_LOG2, Light::peak},
    {"canon-log3", VCB_HDR_CANON_LOG3, Light::peak},
    {"log3g10", VCB_HDR_LOG3G10, Light::peak},
    {"v-log", VCB_HDR_V_LOG, Light::peak},
    {"log-210", VCB_HDR_LOG_210, Light::peak},
};

// Four by four, for R, G, B, A.
inline std::array<float, 16> hdrMatrix(const Matrix3 &gamut, double gain)
{
    std::array<float, 16> matrix{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            matrix[4 * i + j] = static_cast<float>(gamut[i][j] * gain);
    matrix[15] = 1;
    return matrix;
}

} // namespace host
