// Pixels from one picture's dynamic range to another's, by tables. A register has one component of as many pixels as
// it has lanes, so whatever is lane by lane treats every pixel alike.
#pragma once

#include "simd/powers.h"

#include "colorspace/hdr/plan.hpp"

namespace {

// Floats R G B A of `lanes` pixels, or light.
using HdrPixels = Fours<f32s>;

inline f32s lookUpLimited(const float *table, f32s x, f32s top)
{
    return lookUp(table, truncate(smaller(larger(x, zero<f32s>()), top)));
}
inline f32s limitToUnit(f32s x) { return smaller(larger(x, zero<f32s>()), splatF32(1)); }
inline f32s notBelowZero(f32s x) { return larger(x, zero<f32s>()); }

inline f32s luma2020(const HdrPixels &p)
{
    return (splatF32(0.2627f) * p.a + splatF32(0.678f) * p.b) + splatF32(0.0593f) * p.c;
}

// --- Tone maps -----------------------------------------------------------------------------------------------

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

// SMPTE ST 2084 with what is far from 1 in double precision. c1 = 1 - (c2 - c3), so the fraction that is raised to m2
// is 1 + (c3 - c2)(1 - p) / (1 + c3 p), and the difference to 1 keeps all its digits.
constexpr double pqM1 = 0.1593017578125;
constexpr double pqM2 = 78.84375;
constexpr float pqC3 = 18.6875f;
constexpr float pqDifference = 0.1640625f; // c2 - c3, 1 - c1

// Light relative to 10000 cd/m2, from 0.
inline f32s pqCode(f32s light)
{
    const f32s p = power(light, splatF64(pqM1));
    const f32s f = splatF32(pqDifference) * (p - splatF32(1)) / (splatF32(1) + splatF32(pqC3) * p);
    return exp2Of(log2OfOnePlus(f) * splatF64(pqM2));
}
inline f32s pqLight(f32s code)
{
    const Logarithms logarithm = log2Of(code) * splatF64(1 / pqM2);
    const f32s f = exp2LessOne(toFloat(logarithm.low, logarithm.high));
    const f32s difference = splatF32(pqDifference);
    const f32s p = notBelowZero(f + difference) / (difference - splatF32(pqC3) * f);
    return power(p, splatF64(1 / pqM1));
}

struct RollOff {
    const vela::HdrPlan &plan;

    f32s operator()(f32s light) const
    {
        const f32s x = smaller(notBelowZero(light), splatF32(plan.sourcePeak));
        const f32s unchanged = atLeast(splatF32(plan.knee), x);
        if (topBits(as<u8s>(unchanged)) == allTopBits)
            return x;
        const f32s e = smaller(pqCode(x * splatF32(0.01f)) * splatF32(plan.perSourceCode), splatF32(1));
        const f32s start = splatF32(plan.kneeStart);
        const f32s t = (e - start) * splatF32(plan.perKneeSpan);
        const f32s t2 = t * t;
        const f32s t3 = t2 * t;
        const f32s rise = splatF32(3) * t2 - splatF32(2) * t3;
        const f32s rolled = ((splatF32(1) - rise) * start + (t3 - splatF32(2) * t2 + t) * splatF32(plan.kneeSpan)) +
                            rise * splatF32(plan.targetTop);
        const f32s code = notBelowZero(rolled * splatF32(plan.sourceCode));
        return select(unchanged, x, pqLight(code) * splatF32(100));
    }
};

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

inline void mapTones(HdrPixels &p, const vela::HdrPlan &plan)
{
    if (plan.toneMapMode == 1) {
        p = {knee(p.a), knee(p.b), knee(p.c), knee(p.d)};
    } else if (plan.toneMapMode == 2) {
        const RollOff rollOff{plan};
        p = {rollOff(p.a), rollOff(p.b), rollOff(p.c), p.d};
    } else if (plan.toneMapMode == 3) {
        toCandelas(p);
        scaleByLuminance(p, plan.sceneExponent, plan.sceneFactor);
    }
}

// --- The other steps -----------------------------------------------------------------------------------------

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
            entries[i] = splatF32(from[i]);
    }
    f32s row(int i, const HdrPixels &p) const
    {
        const f32s *of = entries + 4 * i;
        return ((of[0] * p.a + of[1] * p.b) + of[2] * p.c) + of[3] * p.d;
    }
};

// `plain`: nothing but tables and matrix.
template <bool plain>
[[gnu::always_inline]] inline void convertHdrBlock(const vela::HdrPlan &plan, const HdrMatrix &matrix, uint8_t *dst,
                                                   const uint8_t *src)
{
    constexpr int size = sizeof(f32s);
    HdrPixels p = splitFours(Fours<f32s>{load<f32s>(src), load<f32s>(src + size), load<f32s>(src + 2 * size),
                                         load<f32s>(src + 3 * size)});
    const f32s inputTop = splatF32(plan.inputTop);
    p.a = lookUpLimited(plan.input, p.a * inputTop, inputTop);
    p.b = lookUpLimited(plan.input, p.b * inputTop, inputTop);
    p.c = lookUpLimited(plan.input, p.c * inputTop, inputTop);
    if constexpr (!plain) {
        if (plan.sourceIsHlg)
            renderHlg(p);
        mapTones(p, plan);
    }
    p = {matrix.row(0, p), matrix.row(1, p), matrix.row(2, p), matrix.row(3, p)};
    if constexpr (!plain) {
        if (plan.adjusts)
            adjust(p, plan);
        if (plan.targetIsHlg) {
            toCandelas(p);
            scaleByLuminance(p, -hlgExponent / (1 + hlgExponent), 1 / hlgGain);
        }
    }
    const f32s steps = splatF32(4096);
    const f32s outputTop = splatF32(plan.outputTop);
    const Fours<f32s> pixels = interleaveFours(limitToUnit(lookUpLimited(plan.output, p.a * steps, outputTop)),
                                               limitToUnit(lookUpLimited(plan.output, p.b * steps, outputTop)),
                                               limitToUnit(lookUpLimited(plan.output, p.c * steps, outputTop)),
                                               limitToUnit(p.d));
    store(dst, pixels.a);
    store(dst + size, pixels.b);
    store(dst + 2 * size, pixels.c);
    store(dst + 3 * size, pixels.d);
}

template <bool plain>
void convertHdrRun(const vela::HdrPlan &plan, const float *src, float *dst, const float *matrix, ptrdiff_t count)
{
    constexpr int pixelBytes = 4 * sizeof(float);
    const vela::HdrPlan own = plan; // which no store can reach
    const HdrMatrix entries(matrix);
    forBlocksInPlace<f32s::lanes>(
        count, [&](uint8_t *to, const uint8_t *from) { convertHdrBlock<plain>(own, entries, to, from); },
        Out<pixelBytes>{dst}, In<pixelBytes>{src});
}

void convertHdrPixels(const vela::HdrPlan &plan, const float *src, float *dst, const float *matrix, int32_t count)
{
    if (count > 0)
        (plan.plain ? convertHdrRun<true> : convertHdrRun<false>)(plan, src, dst, matrix, count);
}

} // namespace
