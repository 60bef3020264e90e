/*
 * Coefficient blocks of the kernels that change between YUV and RGB, and their builders.
 *
 * A host builds one block for a matrix, the two ranges and the two depths, and shares it between calls and threads:
 *
 *     double kr, kb;
 *     CscYuvToRgb toRgb;
 *     CscMatrixWeights(VCB_CSC_BT709, &kr, &kb);
 *     CscBuildYuvToRgb(&toRgb, kr, kb, VCB_CSC_LIMITED, 8, VCB_CSC_FULL, 8);
 *
 * Depths are those of the kernel's layouts, as its slot's line names them: YUV 8, 10 or 16, RGB 8, 10, 16 or 32, where
 * 32 means float. Samples of depth 16 fill their words from the top, whatever number of bits they carry. Only
 * conversions to float grey take a YUV depth of 32.
 *
 * A block holds an integer and a float form of one matrix. A kernel reads qShift and the arrays of one of them: the
 * integer form if one side has depth 8 or 10 and none is float, the float form otherwise. The integer form is zero
 * when a side is float. Blocks need no alignment.
 *
 * Ranges. Limited: at depth n, black is 16 << (n - 8), luma and RGB span 219 << (n - 8), chroma spans 224 << (n - 8).
 * Full: black is 0, everything spans (1 << n) - 1. Chroma is centred on 128 << (n - 8) in both. Floats: the same
 * divided by 255, chroma centred on 0. Sources of the weights and ranges: ITU-R BT.601, BT.709 and BT.2020 (its
 * non-constant luminance form), SMPTE 240M.
 *
 * Accuracy of the integer form with these matrices: results of 8 and 10 bits lie within 0.7 codes (to RGB) and 0.6
 * codes (to YUV) of the real matrix, results of 16 bits within 7 and 4.1. The chroma of a grey is exactly the centre.
 *
 * Any other matrix may be filled in by hand. For the integer form every q must lie within -32768..32767, and for
 * every sample that occurs the sum of the three products and the bias within 32 bits.
 */
#ifndef VELA_COLOR_COEFFICIENTS_H
#define VELA_COLOR_COEFFICIENTS_H

#include <vela/base.h>

#include <string.h>

#if defined(__cplusplus)
extern "C" {
#endif

/* YUV matrices, by their luma weights. */
typedef enum VcbCscMatrix { VCB_CSC_BT601, VCB_CSC_BT709, VCB_CSC_BT2020_NCL, VCB_CSC_SMPTE240M } VcbCscMatrix;

typedef enum VcbCscRange { VCB_CSC_LIMITED, VCB_CSC_FULL } VcbCscRange;

/* YUV to RGB. Row i of R, G, B; s are the codes Y, U, V, those of depth 16 taken >> 2 in the integer form:
 *   integer  ((q[i][0] * (s0 - qOff[0]) + q[i][1] * (s1 - qOff[1]) + q[i][2] * (s2 - qOff[2])) + qBias[i]) >> qShift
 *   float    ((f[i][0] * (s0 - fOff[0]) + f[i][1] * (s1 - fOff[1])) + f[i][2] * (s2 - fOff[2])) + fBias[i] */
typedef struct CscYuvToRgb {
    uint32_t size;    /* sizeof(CscYuvToRgb) */
    int32_t yuvDepth; /* as given to the builder */
    int32_t rgbDepth;
    int32_t qShift;   /* 13 + min(yuvDepth, 14) - rgbDepth */
    int16_t q[3][4];  /* rows R, G, B; columns Y, U, V, 0; RGB codes a YUV code, qShift fraction bits */
    int16_t qOff[4];  /* black and chroma centre, subtracted from Y, U, V; 0 */
    int32_t qBias[4]; /* RGB black plus the rounding half, qShift fraction bits; rows R, G, B; 0 */
    float f[3][4];    /* the same matrix; 1.0 is the float RGB unit, or a code */
    float fOff[4];
    float fBias[4];
} CscYuvToRgb;

/* RGB to YUV. Row i of Y, U, V; s are R, G, B; the formulas of CscYuvToRgb. */
typedef struct CscRgbToYuv {
    uint32_t size; /* sizeof(CscRgbToYuv) */
    int32_t yuvDepth;
    int32_t rgbDepth;
    int32_t qShift;   /* 14 + min(rgbDepth, 14) - yuvDepth */
    int16_t q[3][4];  /* rows Y, U, V; columns R, G, B, 0 */
    int16_t qOff[4];  /* RGB black; 0 */
    int32_t qBias[4]; /* YUV black and chroma centre plus the rounding half; rows Y, U, V; 0 */
    float f[3][4];
    float fOff[4];
    float fBias[4];
} CscRgbToYuv;

#define VELA_ASSERT_BLOCK(type)                                                                                       \
    VCB_STATIC_ASSERT(sizeof(type) == 144 && offsetof(type, size) == 0 && offsetof(type, yuvDepth) == 4 &&            \
                          offsetof(type, rgbDepth) == 8 && offsetof(type, qShift) == 12 && offsetof(type, q) == 16 && \
                          offsetof(type, qOff) == 40 && offsetof(type, qBias) == 48 && offsetof(type, f) == 64 &&     \
                          offsetof(type, fOff) == 112 && offsetof(type, fBias) == 128,                                \
                      "layout of " #type)
VELA_ASSERT_BLOCK(CscYuvToRgb);
VELA_ASSERT_BLOCK(CscRgbToYuv);
#undef VELA_ASSERT_BLOCK

/* The luma weights of R and B; that of G is 1 - kr - kb. */
static inline void CscMatrixWeights(VcbCscMatrix matrix, double *kr, double *kb)
{
    static const double weights[4][2] = {{0.299, 0.114}, {0.2126, 0.0722}, {0.2627, 0.0593}, {0.212, 0.087}};
    *kr = weights[matrix][0];
    *kb = weights[matrix][1];
}

/* What a range means in codes of a depth. */
typedef struct CscCodes {
    double black;
    double span; /* of luma, R, G and B */
    double chromaCentre;
    double chromaSpan;
} CscCodes;

static inline CscCodes CscRangeCodes(VcbCscRange range, int32_t depth)
{
    CscCodes codes;
    if (depth == 32) {
        codes.black = range == VCB_CSC_FULL ? 0.0 : 16.0 / 255.0;
        codes.span = range == VCB_CSC_FULL ? 1.0 : 219.0 / 255.0;
        codes.chromaCentre = 0.0;
        codes.chromaSpan = range == VCB_CSC_FULL ? 1.0 : 224.0 / 255.0;
    } else {
        const double step = (double)(1 << (depth - 8));
        const double top = (double)((1 << depth) - 1);
        codes.black = range == VCB_CSC_FULL ? 0.0 : 16.0 * step;
        codes.span = range == VCB_CSC_FULL ? top : 219.0 * step;
        codes.chromaCentre = 128.0 * step;
        codes.chromaSpan = range == VCB_CSC_FULL ? top : 224.0 * step;
    }
    return codes;
}

/* The nearest integer, halves away from zero, limited to 16 bits. |value| below 2^62. */
static inline int16_t CscNearestInt16(double value)
{
    const double nearest = value < 0.0 ? -(double)(int64_t)(0.5 - value) : (double)(int64_t)(value + 0.5);
    return (int16_t)(nearest > 32767.0 ? 32767.0 : nearest < -32768.0 ? -32768.0 : nearest);
}

/* kr and kb as CscMatrixWeights gives them, or a host's own. */
static inline void CscBuildYuvToRgb(CscYuvToRgb *block, double kr, double kb, VcbCscRange yuvRange, int32_t yuvDepth,
                                    VcbCscRange rgbRange, int32_t rgbDepth)
{
    const double kg = 1.0 - kr - kb;
    const double matrix[3][3] = {{1.0, 0.0, 2.0 * (1.0 - kr)},
                                 {1.0, -2.0 * kb * (1.0 - kb) / kg, -2.0 * kr * (1.0 - kr) / kg},
                                 {1.0, 2.0 * (1.0 - kb), 0.0}};
    const CscCodes rgb = CscRangeCodes(rgbRange, rgbDepth);
    CscCodes yuv = CscRangeCodes(yuvRange, yuvDepth);
    const int32_t integerDepth = yuvDepth < 14 ? yuvDepth : 14;
    double one;
    int i, j;

    memset(block, 0, sizeof *block);
    block->size = (uint32_t)sizeof *block;
    block->yuvDepth = yuvDepth;
    block->rgbDepth = rgbDepth;
    for (i = 0; i < 3; i++) {
        for (j = 0; j < 3; j++)
            block->f[i][j] = (float)(matrix[i][j] * rgb.span / (j ? yuv.chromaSpan : yuv.span));
        block->fOff[i] = (float)(i ? yuv.chromaCentre : yuv.black);
        block->fBias[i] = (float)rgb.black;
    }
    if (yuvDepth == 32 || rgbDepth == 32)
        return;

    yuv = CscRangeCodes(yuvRange, integerDepth);
    block->qShift = 13 + integerDepth - rgbDepth;
    one = (double)(1 << block->qShift);
    for (i = 0; i < 3; i++) {
        for (j = 0; j < 3; j++)
            block->q[i][j] = CscNearestInt16(matrix[i][j] * rgb.span / (j ? yuv.chromaSpan : yuv.span) * one);
        block->qOff[i] = (int16_t)(i ? yuv.chromaCentre : yuv.black);
        block->qBias[i] = (int32_t)(rgb.black * one) + (1 << (block->qShift - 1));
    }
}

static inline void CscBuildRgbToYuv(CscRgbToYuv *block, double kr, double kb, VcbCscRange rgbRange, int32_t rgbDepth,
                                    VcbCscRange yuvRange, int32_t yuvDepth)
{
    const double kg = 1.0 - kr - kb;
    const double u = 0.5 / (1.0 - kb);
    const double v = 0.5 / (1.0 - kr);
    const double matrix[3][3] = {{kr, kg, kb}, {-kr * u, -kg * u, 0.5}, {0.5, -kg * v, -kb * v}};
    const CscCodes yuv = CscRangeCodes(yuvRange, yuvDepth);
    CscCodes rgb = CscRangeCodes(rgbRange, rgbDepth);
    const int32_t integerDepth = rgbDepth < 14 ? rgbDepth : 14;
    double one;
    int i, j;

    memset(block, 0, sizeof *block);
    block->size = (uint32_t)sizeof *block;
    block->yuvDepth = yuvDepth;
    block->rgbDepth = rgbDepth;
    for (i = 0; i < 3; i++) {
        for (j = 0; j < 3; j++)
            block->f[i][j] = (float)(matrix[i][j] * (i ? yuv.chromaSpan : yuv.span) / rgb.span);
        block->fOff[i] = (float)rgb.black;
        block->fBias[i] = (float)(i ? yuv.chromaCentre : yuv.black);
    }
    if (yuvDepth == 32 || rgbDepth == 32)
        return;

    rgb = CscRangeCodes(rgbRange, integerDepth);
    block->qShift = 14 + integerDepth - yuvDepth;
    one = (double)(1 << block->qShift);
    for (i = 0; i < 3; i++) {
        const double span = i ? yuv.chromaSpan : yuv.span;
        /* The weight of G closes the row, so that a grey's chroma is exactly the centre. */
        const int32_t row = i ? 0 : CscNearestInt16(span / rgb.span * one);
        block->q[i][0] = CscNearestInt16(matrix[i][0] * span / rgb.span * one);
        block->q[i][2] = CscNearestInt16(matrix[i][2] * span / rgb.span * one);
        block->q[i][1] = (int16_t)(row - block->q[i][0] - block->q[i][2]);
        block->qOff[i] = (int16_t)rgb.black;
        block->qBias[i] = (int32_t)((i ? yuv.chromaCentre : yuv.black) * one) + (1 << (block->qShift - 1));
    }
}

#if defined(__cplusplus)
}
#endif

#endif
