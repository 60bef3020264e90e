// What the HDR kernel works from: plain data, prepared by slot 400.
#pragma once

#include <vela/base.h>
#include <vela/hdr.h>

namespace vela {

// Light is in units of 100 cd/m2.
struct HdrPlan {
    const float *input;  // light by code value
    const float *output; // code value by light, 0..1
    float inputTop;      // the last index
    float outputTop;
    int32_t toneMapMode;
    bool plain; // nothing but the tables and the matrix
    bool sourceIsHlg;
    bool targetIsHlg;
    bool adjusts;

    // Tone map 2: the source's peak, the light up to which nothing changes, and the roll-off of PQ codes. E is a code
    // by the source peak's.
    float sourcePeak;
    float knee;
    float perSourceCode; // E of a code
    float sourceCode;    // the code of an E
    float kneeStart;
    float kneeSpan;
    float perKneeSpan;
    float targetTop;

    // Tone map 3: F * (Y / 50.69702)^sceneExponent * sceneFactor.
    double sceneExponent;
    float sceneFactor;

    float adjustGain;
    float adjustWeights[3];
    double adjustExponent;
};

using ConvertHdrPixels = void(const HdrPlan &plan, const float *src, float *dst, const float *matrix, int32_t count);

// Kernels that are no slots, by tier.
struct HdrKernels {
    ConvertHdrPixels *convert;
};
extern const HdrKernels hdrKernelsSse2;

} // namespace vela
