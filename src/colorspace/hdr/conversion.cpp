#include "colorspace/hdr/conversion.hpp"

#include "colorspace/hdr/curves.hpp"
#include "colorspace/tiers.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace vela::colorspace::hdr {

constinit FormatMap<Builder> formatMap3;
constinit FormatMap<Builder> formatMap4;

namespace {

constexpr int stepsPerLight = 4096;

template <std::size_t index> void VCB_CALL buildInput()
{
    const Curve &curve = curves[index];
    const int entries = 256 * curve.scale;
    float *const table = state().input;
    for (int i = 0; i < entries; ++i)
        table[i] = static_cast<float>(curve.lightOf(static_cast<double>(i) / (entries - 1)));
}

// Code values leave the conversion between 0 and 1, whatever light they encode.
float limited(double codeValue) { return static_cast<float>(std::clamp(codeValue, 0.0, 1.0)); }

template <std::size_t index> void VCB_CALL buildOutput()
{
    const Curve &curve = curves[index];
    const int entries = stepsPerLight * curve.scale;
    float *const table = state().output;
    for (int i = 0; i < entries; ++i)
        table[i] = limited(curve.codeValueOf(static_cast<double>(i) / stepsPerLight));
}

struct Builders {
    Builder *input;
    Builder *output;
};

template <std::size_t... index> constexpr std::array<Builders, curveCount> buildersOf(std::index_sequence<index...>)
{
    return {{{buildInput<index>, buildOutput<index>}...}};
}
constexpr std::array<Builders, curveCount> builders = buildersOf(std::make_index_sequence<curveCount>());

void assign(std::int32_t code, Builder *input, Builder *output) noexcept
{
    formatMap3.assign(code, input);
    formatMap4.assign(code, output);
}

int scaleOf(std::int32_t code)
{
    const auto *const curve =
        std::find_if(std::begin(curves), std::end(curves), [code](const Curve &c) { return c.code == code; });
    return curve == std::end(curves) ? 16 : curve->scale;
}

// The display of 1000 cd/m2 that code 18 is rendered for: 1000 / 12^1.2.
constexpr double hlgGain = 50.69702;
constexpr double hlgGamma = 1.2;

// A NaN becomes the least.
double within(double least, double x, double most) { return std::min(std::max(least, x), most); }

void planRollOff(HdrPlan &plan, const HdrConversionParams &params)
{
    const double peak = within(0, params.srcPeakLuminance, 1e6);
    const double source = pqCodeValue(peak / 10000);
    const double target = pqCodeValue(within(0, params.dstPeakLuminance, 1e6) / 10000);
    const double targetTop = target / source;
    const double start = 1.5 * targetTop - 0.5;
    plan.sourcePeak = static_cast<float>(peak / 100);
    plan.perSourceCode = static_cast<float>(1 / source);
    plan.sourceCode = static_cast<float>(source);
    plan.kneeStart = static_cast<float>(start);
    plan.targetTop = static_cast<float>(targetTop);
    if (start >= 1) { // the target shows all that the source has
        plan.knee = plan.sourcePeak;
        plan.kneeSpan = 0;
        plan.perKneeSpan = 0;
    } else {
        plan.knee = start < 0 ? -1.0F : static_cast<float>(100 * pqLight(start * source));
        plan.kneeSpan = static_cast<float>(1 - start);
        plan.perKneeSpan = static_cast<float>(1 / (1 - start));
    }
}

// F' = F (Ys^(1 - 1.2) / gain) (P / 12^gamma) Ys^(gamma - 1), relative to P, with Ys = (Y / gain)^(1 / 1.2).
void planSceneLight(HdrPlan &plan, const HdrConversionParams &params)
{
    const double peak = within(2, params.dstPeakLuminance, 10000);
    const double gamma = hlgGamma + 0.42 * std::log10(peak / 1000);
    plan.sceneExponent = (gamma - hlgGamma) / hlgGamma;
    plan.sceneFactor = static_cast<float>(1 / (hlgGain * std::pow(12, gamma)));
}

void makePlan(State &s)
{
    HdrPlan &plan = s.plan;
    const HdrConversionParams &params = s.params;
    plan.input = s.input;
    plan.output = s.output;
    plan.inputTop = static_cast<float>(256 * s.srcScale - 1);
    plan.outputTop = static_cast<float>(stepsPerLight * s.dstScale - 1);
    plan.toneMapMode = params.toneMapMode < 0 || params.toneMapMode > 3 ? 0 : params.toneMapMode;
    plan.sourceIsHlg = s.srcCode == VCB_HDR_HLG;
    plan.targetIsHlg = s.dstCode == VCB_HDR_HLG;
    plan.adjusts = params.adjustMode == 1;
    plan.plain = !plan.toneMapMode && !plan.sourceIsHlg && !plan.targetIsHlg && !plan.adjusts;
    planRollOff(plan, params);
    planSceneLight(plan, params);
    plan.adjustGain = params.adjustGain;
    plan.adjustWeights[0] = params.lumaWeightR;
    plan.adjustWeights[1] = params.lumaWeightG;
    plan.adjustWeights[2] = params.lumaWeightB;
    plan.adjustExponent = 1.0 / static_cast<double>(params.adjustDivisor);
}

// A code without an entry of its own leaves its side alone.
bool build(FormatMap<Builder> &map, std::int32_t code)
{
    Builder *const builder = map[code];
    if (builder)
        builder();
    return builder != nullptr;
}

} // namespace

State::State() noexcept
{
    for (int i = 0; i < 256 * srcScale; ++i)
        input[i] = static_cast<float>(i) / 4095.0F;
    for (int i = 0; i < stepsPerLight * dstScale; ++i)
        output[i] = limited(static_cast<double>(i) / stepsPerLight);
    makePlan(*this);
}

State &state() noexcept
{
    static State theState;
    return theState;
}

void fillMaps() noexcept
{
    static_assert(curveCount + 6 <= FormatMap<Builder>::keptForAssignments);
    for (std::size_t i = 0; i < curveCount; ++i)
        assign(curves[i].code, builders[i].input, builders[i].output);
    static_assert(VCB_HDR_BT709 == 1);
    assign(14, builders[0].input, builders[0].output); // the curve of BT.709 under another name
    for (const std::int32_t code : {8, 9, 10, 201, 211})
        assign(code, colorSpaceProcsSse2.CscNoOp053, colorSpaceProcsSse2.CscNoOp053);
}

void VCB_CALL setUp(std::int32_t srcCode, std::int32_t dstCode, const HdrConversionParams *params)
{
    State &s = state();
    if (build(formatMap3, srcCode))
        s.srcCode = srcCode;
    if (build(formatMap4, dstCode))
        s.dstCode = dstCode;
    s.srcScale = scaleOf(s.srcCode);
    s.dstScale = scaleOf(s.dstCode);
    s.params = *params;
    makePlan(s);
}

void VCB_CALL convertPixels(const float *src, float *dst, const float *matrix, std::int32_t count)
{
    hdrKernelsSse2.convert(state().plan, src, dst, matrix, count);
}

} // namespace vela::colorspace::hdr
