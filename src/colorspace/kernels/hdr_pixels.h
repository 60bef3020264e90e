// Pixels from one picture's dynamic range to another's, by tables. A register has one component of as many pixels as
// it has lanes, so whatever is lane by lane treats every pixel alike.
#pragma once

#include "simd/powers.h"

#include "colorspace/hdr/plan.hpp"

namespace {

// Floats R G B A of `lanes` pixels, or light.
using HdrPixels = Fours<f32s>;

inline f32s limitToUnit(f32s x) { return smaller(larger(x, zero<f32s>()), splatF32(1)); }
inline f32s notBelowZero(f32s x) { return larger(x, zero<f32s>()); }

inline f32s luma2020(const HdrPixels &p)
{
    return (splatF32(0.2627f) * p.a + splatF32(0.678f) * p.b) + splatF32(0.0593f) * p.c;
}

// A run of pixels goes through every step before the next one does. The work on one pixel is a long chain; of short
// steps, those of neighbouring pixels overlap (Zen 4: half the time of the tables, a third of the roll-off's).
constexpr ptrdiff_t hdrRun = 64;
using HdrPlane = float[hdrRun];
using HdrIndices = uint32_t[hdrRun];

// Lanes of the last register that are behind the run hold pixels of code 0, then whatever becomes of these.
template <class Step> inline void overPixels(HdrPlane (&planes)[4], ptrdiff_t run, Step step)
{
    for (ptrdiff_t i = 0; i < run; i += f32s::lanes) {
        HdrPixels p = {load<f32s>(planes[0] + i), load<f32s>(planes[1] + i), load<f32s>(planes[2] + i),
                       load<f32s>(planes[3] + i)};
        step(p);
        store(planes[0] + i, p.a);
        store(planes[1] + i, p.b);
        store(planes[2] + i, p.c);
        store(planes[3] + i, p.d);
    }
}

// --- Tone maps ----------------------------------------------------------------------------------------------

// The straight lines of the knee; 0.0005 for a NaN.
inline f32s knee(f32s x)
{
    const auto line = [x](float from, float width, float rise, float start) {
        return (x - splatF32(from)) / splatF32(width) * splatF32(rise) + splatF32(start);
    };
    f32s y = splatF32(0.0005f);
    y = select(greater(x, splatF32(0.0005f)), line(0.0005f, 3.2995f, 0.8495f, 0.0005f), y);
    y = select(greater(x, splatF32(3.3f)), line(3.3f, 2.5f, 0.12f, 0.85f), y);
    y = select(greater(x, splatF32(5.8f)), line(5.8f, 4.2f, 0.03f, 0.97f), y);
    return select(greater(x, splatF32(10)), splatF32(1), y);
}

// SMPTE ST 2084. c1 = 1 - (c2 - c3), so the fraction that is raised to m2 is 1 + (c2 - c3)(p - 1) / (1 + c3 p): what it
// differs from 1 by keeps its digits, of which a power of 78.84 would make errors.
constexpr double pqM1 = 0.1593017578125;
constexpr double pqM2 = 78.84375;
constexpr float pqC3 = 18.6875f;
constexpr float pqDifference = 0.1640625f; // c2 - c3, 1 - c1

// What the power m1 of light, relative to 10000 cd/m2, becomes as a code; and back.
inline f32s pqCodeOfPower(f32s p)
{
    const f32s f = splatF32(pqDifference) * (p - splatF32(1)) / (splatF32(1) + splatF32(pqC3) * p);
    return exp2Of(log2OfOnePlus(f) * splatF64(pqM2));
}
inline f32s powerOfPqCode(f32s code)
{
    const Logarithms logarithm = log2Of(code) * splatF64(1 / pqM2);
    const f32s f = exp2LessOne(toFloat(logarithm.low, logarithm.high));
    const f32s difference = splatF32(pqDifference);
    return notBelowZero(f + difference) / (difference - splatF32(pqC3) * f);
}

// Registers that are wholly below the knee are left out: in most pictures, most.
inline void rollOff(const vela::HdrPlan &plan, HdrPlane (&light)[4], ptrdiff_t run)
{
    const f32s peak = splatF32(plan.sourcePeak);
    const f32s knee = splatF32(plan.knee);
    float *bright[3 * hdrRun / f32s::lanes];
    int number = 0;
    for (int c = 0; c < 3; ++c)
        for (ptrdiff_t i = 0; i < run; i += f32s::lanes) {
            const f32s x = smaller(notBelowZero(load<f32s>(light[c] + i)), peak);
            store(light[c] + i, x);
            bright[number] = light[c] + i;
            number += topBits(as<u8s>(atLeast(knee, x))) != allTopBits;
        }

    f32s work[3 * hdrRun / f32s::lanes];
    for (int k = 0; k < number; ++k)
        work[k] = power(load<f32s>(bright[k]) * splatF32(0.01f), splatF64(pqM1));

    const f32s start = splatF32(plan.kneeStart);
    for (int k = 0; k < number; ++k) {
        const f32s e = smaller(pqCodeOfPower(work[k]) * splatF32(plan.perSourceCode), splatF32(1));
        const f32s t = (e - start) * splatF32(plan.perKneeSpan);
        const f32s t2 = t * t;
        const f32s t3 = t2 * t;
        const f32s rise = splatF32(3) * t2 - splatF32(2) * t3;
        const f32s rolled = ((splatF32(1) - rise) * start + (t3 - splatF32(2) * t2 + t) * splatF32(plan.kneeSpan)) +
                            rise * splatF32(plan.targetTop);
        work[k] = notBelowZero(rolled * splatF32(plan.sourceCode));
    }
    for (int k = 0; k < number; ++k)
        work[k] = powerOfPqCode(work[k]);
    for (int k = 0; k < number; ++k) {
        const f32s x = load<f32s>(bright[k]);
        const f32s rolled = power(work[k], splatF64(1 / pqM1)) * splatF32(100);
        store(bright[k], select(atLeast(knee, x), x, rolled));
    }
}

constexpr float hlgGain = 50.69702f;

// R, G, B times factor * (Y / hlgGain)^exponent; 0 without luminance.
inline void scaleByLuminance(HdrPixels &p, double exponent, float factor)
{
    const f32s y = luma2020(p);
    const f32s scale = power(y / splatF32(hlgGain), splatF64(exponent)) * splatF32(factor);
    const f32s lit = greater(y, zero<f32s>());
    p.a = p.a * scale & lit;
    p.b = p.b * scale & lit;
    p.c = p.c * scale & lit;
}

inline void toCandelas(HdrPixels &p)
{
    p.a = notBelowZero(p.a * splatF32(100));
    p.b = notBelowZero(p.b * splatF32(100));
    p.c = notBelowZero(p.c * splatF32(100));
}

constexpr double hlgExponent = 0.20000005f;

inline void renderHlg(HdrPixels &p)
{
    p.a = notBelowZero(p.a);
    p.b = notBelowZero(p.b);
    p.c = notBelowZero(p.c);
    const f32s scale = power(luma2020(p), splatF64(hlgExponent));
    p.a = p.a * scale * splatF32(hlgGain) / splatF32(100);
    p.b = p.b * scale * splatF32(hlgGain) / splatF32(100);
    p.c = p.c * scale * splatF32(hlgGain) / splatF32(100);
}

// Steps 2 and 3 of the slot's row.
inline void mapLight(const vela::HdrPlan &plan, HdrPlane (&light)[4], ptrdiff_t run)
{
    if (plan.sourceIsHlg)
        overPixels(light, run, [](HdrPixels &p) { renderHlg(p); });
    if (plan.toneMapMode == 1)
        overPixels(light, run, [](HdrPixels &p) { p = {knee(p.a), knee(p.b), knee(p.c), knee(p.d)}; });
    if (plan.toneMapMode == 2)
        rollOff(plan, light, run);
    if (plan.toneMapMode == 3)
        overPixels(light, run, [&](HdrPixels &p) {
            toCandelas(p);
            scaleByLuminance(p, plan.sceneExponent, plan.sceneFactor);
        });
}

// --- Matrix and adjustment ----------------------------------------------------------------------------------

inline void adjust(HdrPixels &p, const vela::HdrPlan &plan)
{
    const f32s gain = splatF32(plan.adjustGain);
    const f32s ten = splatF32(10);
    p = {p.a * gain / ten, p.b * gain / ten, p.c * gain / ten, p.d * gain / ten};
    const f32s y = (splatF32(plan.adjustWeights[0]) * p.a + splatF32(plan.adjustWeights[1]) * p.b) +
                   splatF32(plan.adjustWeights[2]) * p.c;
    const f32s lift = (power(y, splatF64(plan.adjustExponent)) - y) & greater(y, zero<f32s>());
    p = {(p.a + lift) * ten, (p.b + lift) * ten, (p.c + lift) * ten, (p.d + lift) * ten};
}

// Every entry in all lanes.
struct HdrMatrix {
    f32s entries[16];

    explicit HdrMatrix(const float *from)
    {
        for (int i = 0; i < 16; ++i)
            entries[i] = splatF32(loadPiece<float>((const uint8_t *)from + i * sizeof(float)));
    }
    HdrPixels times(const HdrPixels &p) const { return {row(0, p), row(1, p), row(2, p), row(3, p)}; }

private:
    f32s row(int i, const HdrPixels &p) const
    {
        const f32s *of = entries + 4 * i;
        return ((of[0] * p.a + of[1] * p.b) + of[2] * p.c) + of[3] * p.d;
    }
};

// --- Tables -------------------------------------------------------------------------------------------------

// Through the input table.
inline void decodeHdr(const vela::HdrPlan &plan, HdrPlane (&light)[4], const uint8_t *src, ptrdiff_t count)
{
    const float *const table = plan.input;
    const f32s top = splatF32(plan.inputTop);
    uint32_t indices[4 * hdrRun];
    map<f32s>(
        indices, 4 * count, [top](f32s x) { return truncate(smaller(larger(x * top, zero<f32s>()), top)); },
        (const float *)src);
    for (ptrdiff_t i = 4 * count; i % (4 * f32s::lanes); ++i) // what fills the last register
        indices[i] = 0;
    for (ptrdiff_t i = 0; i < count; i += f32s::lanes) {
        store(light[0] + i, lookUp<4>(table, indices + 4 * i));
        store(light[1] + i, lookUp<4>(table, indices + 4 * i + 1));
        store(light[2] + i, lookUp<4>(table, indices + 4 * i + 2));
    }
    for (ptrdiff_t i = 0; i < count; ++i)
        light[3][i] = loadPiece<float>(src + 16 * i + 12);
    for (ptrdiff_t i = count; i % f32s::lanes; ++i)
        light[3][i] = 0;
}

// Through the output table, whose entries are limited already.
inline void encodeHdr(const vela::HdrPlan &plan, uint8_t *dst, const HdrIndices (&indices)[3], const HdrPlane &alpha,
                      ptrdiff_t count)
{
    const float *const table = plan.output;
    for (ptrdiff_t i = 0; i < count; ++i)
        storeFour(dst + 16 * i, table[indices[0][i]], table[indices[1][i]], table[indices[2][i]], alpha[i]);
}

// `plain`: nothing but tables and matrix.
template <bool plain>
void convertHdrRun(const vela::HdrPlan &plan, const float *src, float *dst, const float *matrix, ptrdiff_t count)
{
    const HdrMatrix entries(matrix);
    const f32s steps = splatF32(4096);
    const f32s outputTop = splatF32(plan.outputTop);
    const auto index = [=](f32s x) { return truncate(smaller(larger(x * steps, zero<f32s>()), outputTop)); };
    HdrPlane light[4];
    HdrIndices indices[3];
    for (ptrdiff_t first = 0; first < count; first += hdrRun) {
        const ptrdiff_t run = count - first < hdrRun ? count - first : hdrRun;
        // The next run: a sixth faster on pictures beyond the second cache (Zen 4).
        const ptrdiff_t following = count - first - run < hdrRun ? count - first - run : hdrRun;
        for (ptrdiff_t pixel = 0; pixel < following; pixel += 4) {
            _mm_prefetch((const char *)(src + 4 * (first + run + pixel)), _MM_HINT_T0);
            _mm_prefetch((const char *)(dst + 4 * (first + run + pixel)), _MM_HINT_T0);
        }
        decodeHdr(plan, light, (const uint8_t *)src + 16 * first, run);
        if constexpr (!plain)
            mapLight(plan, light, run);
        for (ptrdiff_t i = 0; i < run; i += f32s::lanes) {
            HdrPixels p = entries.times({load<f32s>(light[0] + i), load<f32s>(light[1] + i), load<f32s>(light[2] + i),
                                         load<f32s>(light[3] + i)});
            if constexpr (!plain) {
                if (plan.adjusts)
                    adjust(p, plan);
                if (plan.targetIsHlg) {
                    toCandelas(p);
                    scaleByLuminance(p, -hlgExponent / (1 + hlgExponent), 1 / hlgGain);
                }
            }
            store(indices[0] + i, index(p.a));
            store(indices[1] + i, index(p.b));
            store(indices[2] + i, index(p.c));
            store(light[3] + i, limitToUnit(p.d));
        }
        encodeHdr(plan, (uint8_t *)dst + 16 * first, indices, light[3], run);
    }
}

void convertHdrPixels(const vela::HdrPlan &plan, const float *src, float *dst, const float *matrix, int32_t count)
{
    if (count > 0)
        (plan.plain ? convertHdrRun<true> : convertHdrRun<false>)(plan, src, dst, matrix, count);
}

} // namespace
