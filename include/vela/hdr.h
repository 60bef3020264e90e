/* The vocabulary of the HDR conversion, colour-space slots 400 and 401. docs/hdr.md explains it. */
#ifndef VELA_HDR_H
#define VELA_HDR_H

#include <vela/base.h>

#if defined(__cplusplus)
extern "C" {
#endif

/* Transfer curves, by the host's codes. */
typedef enum VcbHdrCurve {
    VCB_HDR_BT709 = 1, /* also 14 */
    VCB_HDR_POWER_2_2 = 4,
    VCB_HDR_POWER_2_8 = 5,
    VCB_HDR_BT601 = 6, /* the curve of BT.709 */
    VCB_HDR_POWER_2_4 = 13,
    VCB_HDR_BT2020_12BIT = 15,
    VCB_HDR_PQ = 16,      /* SMPTE ST 2084 */
    VCB_HDR_HLG = 18,     /* ARIB STD-B67, with the rendering for a display of 1000 cd/m2 */
    VCB_HDR_S_LOG2 = 100, /* Sony */
    VCB_HDR_S_LOG3 = 101,
    VCB_HDR_S_LOG3_HIGH = 102, /* its light stretched above 2.5 */
    VCB_HDR_CANON_LOG = 110,
    VCB_HDR_CANON_LOG2 = 111,
    VCB_HDR_CANON_LOG3 = 112,
    VCB_HDR_LOG3G10 = 120,   /* RED */
    VCB_HDR_V_LOG = 200,     /* Panasonic */
    VCB_HDR_LOG_210 = 210,   /* a camera's logarithm in three segments */
    VCB_HDR_HLG_SCENE = 228, /* the curve of HLG alone, scene light 0..12 */
    VCB_HDR_POWER_2_6 = 230
} VcbHdrCurve;

/* Tone maps. */
typedef enum VcbHdrToneMap {
    VCB_HDR_TONE_NONE,
    VCB_HDR_TONE_KNEE,       /* four straight lines, for 0..10 */
    VCB_HDR_TONE_BT2390,     /* the roll-off of ITU-R BT.2390 between two peaks */
    VCB_HDR_TONE_SCENE_LIGHT /* the rendering of hybrid log-gamma for another display */
} VcbHdrToneMap;

typedef struct HdrConversionParams {
    int32_t toneMapMode; /* VcbHdrToneMap */
    int32_t adjustMode;  /* 1: the luminance adjustment behind the matrix */
    float lumaWeightR2;  /* kept, not read */
    float lumaWeightG2;
    float lumaWeightB2;
    float srcPeakLuminance; /* cd/m2 */
    float dstPeakLuminance;
    float lumaWeightR; /* of the adjustment */
    float lumaWeightG;
    float lumaWeightB;
    float adjustGain;
    float adjustDivisor; /* finite, not 0 */
} HdrConversionParams;

VCB_STATIC_ASSERT(sizeof(HdrConversionParams) == 48 && offsetof(HdrConversionParams, srcPeakLuminance) == 20 &&
                      offsetof(HdrConversionParams, lumaWeightR) == 28 &&
                      offsetof(HdrConversionParams, adjustDivisor) == 44,
                  "layout of HdrConversionParams");

/* Initialises a block: no tone map, no adjustment. */
#define VELA_HDR_CONVERSION_DEFAULTS                                                             \
    {                                                                                            \
        0, 0, 0.2126F, 0.7152F, 0.0722F, 1000.0F, 300.0F, 0.2126F, 0.7152F, 0.0722F, 3.5F, 1.03F \
    }

#if defined(__cplusplus)
}
#endif

#endif
