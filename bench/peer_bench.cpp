// Kernels beside those of other libraries that do the same: VOLK (signal processing), libswresample (audio formats),
// Eigen (matrices and arrays) and plain filters. All of them work on the same buffers, in random turns; figures are
// medians. Before anything is timed the results are compared. Here are the contests of the memory family.

#include "peer_arena.hpp"

#include <CLI/CLI.hpp>

namespace vela::test {
namespace {

using Formats = VcbSampleFormatOps;
using Arith = VcbMemArithOps;
using Misc = VcbMemMiscOps;

constexpr double oneStep = 1;     // of an integer: rounding to nearest and truncation
constexpr double manySteps = 256; // of a 32-bit integer: its float has 24 bits

const auto oneSource = [](auto kernel, auto &rows, unsigned count) { kernel(rows.to.data(), rows.a.data(), count); };

void addFormats(Arena &arena)
{
    {
        auto rows = arena.contest<&Formats::ConvertS8ToS16, std::int16_t, std::int8_t>(exact, "", oneSource);
        VOLK(8i_convert_16i, rows->to.data(), rows->a.data());
    }
    {
        auto rows = arena.contest<&Formats::ConvertS8ToF32, float, std::int8_t>(exact, "", oneSource);
        VOLK(8i_s32f_convert_32f, rows->to.data(), rows->a.data(), 128);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS16ToF32, float, std::int16_t>(exact, "", oneSource);
        VOLK(16i_s32f_convert_32f, rows->to.data(), rows->a.data(), 32768);
        arena.swresample(rows, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_S16);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS32ToF32Scaled, float, std::int32_t>(exact, "", oneSource);
        VOLK(32i_s32f_convert_32f, rows->to.data(), rows->a.data(), 2147483648.0f);
        arena.swresample(rows, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_S32);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS16ToS32, std::int32_t, std::int16_t>(exact, "", oneSource);
        arena.swresample(rows, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_S16);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS32ToF64, double, std::int32_t>(exact, "", oneSource);
        arena.swresample(rows, AV_SAMPLE_FMT_DBL, AV_SAMPLE_FMT_S32);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToS8, std::int8_t, float>(oneStep, "a", oneSource);
        VOLK(32f_s32f_convert_8i, rows->to.data(), rows->a.data(), 128);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToS16, std::int16_t, float>(oneStep, "a", oneSource);
        VOLK(32f_s32f_convert_16i, rows->to.data(), rows->a.data(), 32768);
        arena.swresample(rows, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_FLT);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToS32, std::int32_t, float>(manySteps, "a", oneSource);
        VOLK(32f_s32f_convert_32i, rows->to.data(), rows->a.data(), 2147483648.0f);
        arena.swresample(rows, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_FLT);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToF64, double, float>(exact, "", oneSource);
        VOLK(32f_convert_64f, rows->to.data(), rows->a.data());
        arena.swresample(rows, AV_SAMPLE_FMT_DBL, AV_SAMPLE_FMT_FLT);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF64ToF32, float, double>(exact, "", oneSource);
        VOLK(64f_convert_32f, rows->to.data(), rows->a.data());
        arena.swresample(rows, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_DBL);
    }
}

void addArithmetic(Arena &arena)
{
    {
        auto rows = arena.contest<&Arith::MemAddF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_add_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemSubF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_subtract_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemMulF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_multiply_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemDivF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_divide_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemAddF64, double, double>(exact, "", twoSources);
        VOLK(64f_x2_add_64f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemScaleF32, float, float>(
            exact, "", [](auto kernel, auto &r, unsigned count) { kernel(r.to.data(), r.a.data(), 0.7f, count); });
        VOLK(32f_s32f_multiply_32f, rows->to.data(), rows->a.data(), 0.7f);
    }
    {
        auto rows = arena.contest<&Arith::MemSumF32, float, float>(floatSum, "", reduction);
        VOLK(32f_accumulator_s32f, rows->to.data(), rows->a.data());
    }
    {
        auto rows = arena.contest<&Arith::MemSumSquaresF32, float, float>(
            floatSum, "b", [](auto kernel, auto &r, unsigned count) {
                *r.to.data() = kernel(r.a.data(), static_cast<std::int32_t>(count));
            });
        VOLK(32f_x2_dot_prod_32f, rows->to.data(), rows->a.data(), rows->a.data());
    }
    {
        auto rows = arena.contest<&Arith::MemReduceF32, float, float>(notTheSame, "c", reduction);
        VOLK(32f_index_max_32u, reinterpret_cast<std::uint32_t *>(rows->to.data()), rows->a.data());
    }
}

void addOrder(Arena &arena)
{
    {
        auto rows = arena.contest<&Misc::MemPackOp25, std::uint32_t, std::uint32_t>(exact, "", twoSources);
        VOLK(32f_x2_interleave_32fc, reinterpret_cast<lv_32fc_t *>(rows->to.data()),
             reinterpret_cast<const float *>(rows->a.data()), reinterpret_cast<const float *>(rows->b.data()));
    }
    {
        auto rows = arena.contest<&Misc::MemDeinterleave32, std::uint32_t, std::uint32_t>(
            exact, "",
            [](auto kernel, auto &r, unsigned count) { kernel(r.to.data(), r.to2.data(), r.a.data(), count); });
        VOLK(32fc_deinterleave_32f_x2, reinterpret_cast<float *>(rows->to.data()),
             reinterpret_cast<float *>(rows->to2.data()), reinterpret_cast<const lv_32fc_t *>(rows->a.data()));
    }
}

} // namespace
} // namespace vela::test

int main(int argumentCount, char **arguments)
{
    vela::test::Options options;
    CLI::App app("Times kernels beside those of VOLK, libswresample, Eigen and plain C++ on the same buffers.");
    app.add_option("--filter", options.filter, "regular expression on the kernel's name");
    app.add_option("--count", options.count, "units of a row")->capture_default_str()->check(CLI::PositiveNumber);
    app.add_option("--repetitions", options.repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", options.seconds, "least time of a run")->capture_default_str();
    app.add_flag("--wide", options.wide, "also the kernel texts compiled for AVX2 that the library does not ship");
    app.add_flag("--all", options.all, "every implementation of a peer");
    app.add_flag("--markdown", options.markdown, "print a Markdown table");
    CLI11_PARSE(app, argumentCount, arguments);

    vela::test::initializeInterleaved(arguments[0], options.repetitions);
    vela::test::Arena arena(options);
    vela::test::addFormats(arena);
    vela::test::addArithmetic(arena);
    vela::test::addOrder(arena);
    vela::test::addMaths(arena);
    return arena.run();
}
