// Colour conversions beside libyuv's: rows of 1920 pixels (line pairs where a side is 4:2:0) and whole 1080p frames, on
// the same buffers, in random turns; figures are medians. libyuv runs as it chooses for the processor, and limited to
// AVX2. Before anything is timed the results are compared; how far they may differ on photographs is for
// tests/peers. A slot whose kernel has a peer is here with it, so the list says which AVX2 kernels libyuv knows.

#include "colorspace/tiers.hpp"
#include "interleaved.hpp"

#include <CLI/CLI.hpp>
#include <libyuv.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <regex>

namespace vela::test {
namespace {

constexpr int width = 1920;
constexpr int frameLines = 1080;

// Bytes of a row for every two pixels, in the first plane and in those of chroma.
struct Pitches {
    int first;
    int chroma = 0;
};

struct Frame {
    std::array<std::vector<std::uint8_t>, 3> planes;
    std::array<int, 3> pitch{};

    void setPitches(Pitches p)
    {
        pitch = {p.first * width / 2, p.chroma * width / 2, p.chroma * width / 2};
        for (std::vector<std::uint8_t> &plane : planes)
            plane.assign(std::size_t{4} * width * frameLines, 0);
    }
    std::uint8_t *row(std::size_t plane, int line) { return planes[plane].data() + pitch[plane] * line; }
    std::uint16_t *words(std::size_t plane, int line) { return reinterpret_cast<std::uint16_t *>(row(plane, line)); }
};

CscYuvToRgb toRgb(int yuvDepth)
{
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(VCB_CSC_BT601, &kr, &kb);
    CscYuvToRgb block;
    CscBuildYuvToRgb(&block, kr, kb, VCB_CSC_LIMITED, yuvDepth, VCB_CSC_FULL, 8);
    return block;
}

CscRgbToYuv toYuv()
{
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(VCB_CSC_BT601, &kr, &kb);
    CscRgbToYuv block;
    CscBuildRgbToYuv(&block, kr, kb, VCB_CSC_FULL, 8, VCB_CSC_LIMITED, 8);
    return block;
}

// --- Contests ------------------------------------------------------------------------------------------------

// What sources hold. One colour where the two sides place chroma differently.
enum class Content { noise, premultiplied, oneColour };

using Procs = VcbColorSpaceProcs;

struct Contest {
    const char *kernel;
    const char *peer;
    Content content;
    int tolerance; // of a byte
    int lines;     // that a call of the kernel converts
    Pitches from;
    Pitches to;
    std::function<void(const Procs &, Frame &to, Frame &from, int line)> own;
    std::function<void(Frame &to, Frame &from, int lines)> libyuv;
};

constexpr std::uint8_t opaque = 255;
const CscYuvToRgb bt601ToRgb = toRgb(8);
const CscYuvToRgb bt601ToRgbFrom16 = toRgb(16);
const CscRgbToYuv bt601ToYuv = toYuv();

// One row to one row, with arguments behind the width.
template <auto member, auto peer, class... Arguments>
Contest packed(const char *kernel, const char *name, Content content, int tolerance, Pitches from, Pitches to,
               Arguments... arguments)
{
    return {
        kernel,
        name,
        content,
        tolerance,
        1,
        from,
        to,
        [=](const Procs &procs, Frame &t, Frame &f, int line) {
            (procs.*member)(t.row(0, line), f.row(0, line), width, arguments...);
        },
        [](Frame &t, Frame &f, int lines) { peer(f.row(0, 0), f.pitch[0], t.row(0, 0), t.pitch[0], width, lines); }};
}

// 4:2:0 from BGRA32 or to it.
Contest halved(const char *kernel, const char *name, Pitches from, Pitches to, decltype(Contest::own) own,
               decltype(Contest::libyuv) libyuv)
{
    return {kernel, name, Content::oneColour, 2, 2, from, to, std::move(own), std::move(libyuv)};
}

std::vector<Contest> contests()
{
    constexpr Pitches in32 = {8};
    constexpr Pitches in24 = {6};
    constexpr Pitches in16 = {4};
    constexpr Pitches nv12 = {2, 2};
    constexpr Pitches i420 = {2, 1};
    constexpr Pitches p016 = {4, 4};
    constexpr Content noise = Content::noise;
    constexpr Content oneColour = Content::oneColour;
    // The kernels interpolate chroma horizontally. libyuv does only in variants that interpolate vertically, too.
    const auto i420ToBgra = [](const Procs &procs, Frame &t, Frame &f, int y) {
        procs.CscI420ToBgra(t.row(0, y), t.row(0, y + 1), f.row(0, y), f.row(0, y + 1), f.row(1, y / 2),
                            f.row(2, y / 2), width, &bt601ToRgb, opaque);
    };
    const auto p016ToBgra = [](const Procs &procs, Frame &t, Frame &f, int y) {
        procs.CscP016ToBgra(t.row(0, y), t.row(0, y + 1), f.words(0, y), f.words(0, y + 1), f.words(1, y / 2), width,
                            &bt601ToRgbFrom16, opaque);
    };
    return {
        packed<&Procs::AppendAlpha24To32, libyuv::RGB24ToARGB>("AppendAlpha24To32", "RGB24ToARGB", noise, 0, in24, in32,
                                                               opaque),
        packed<&Procs::CscAppendAlphaSwap24To32, libyuv::RAWToARGB>("CscAppendAlphaSwap24To32", "RAWToARGB", noise, 0,
                                                                    in24, in32, opaque),
        packed<&Procs::CscSwapRb32, libyuv::ARGBToABGR>("CscSwapRb32", "ARGBToABGR", noise, 0, in32, in32),
        packed<&Procs::CscDropAlpha32To24, libyuv::ARGBToRGB24>("CscDropAlpha32To24", "ARGBToRGB24", noise, 0, in32,
                                                                in24),
        packed<&Procs::CscYuyvToBgra, libyuv::YUY2ToARGB>("CscYuyvToBgra", "YUY2ToARGB", oneColour, 2, in16, in32,
                                                          &bt601ToRgb, opaque),
        packed<&Procs::CscUyvyToBgra, libyuv::UYVYToARGB>("CscUyvyToBgra", "UYVYToARGB", oneColour, 2, in16, in32,
                                                          &bt601ToRgb, opaque),
        halved(
            "CscNv12ToBgra", "NV12ToARGB", nv12, in32,
            [](const Procs &procs, Frame &t, Frame &f, int y) {
                procs.CscNv12ToBgra(t.row(0, y), t.row(0, y + 1), f.row(0, y), f.row(0, y + 1), f.row(1, y / 2), width,
                                    &bt601ToRgb, opaque);
            },
            [](Frame &t, Frame &f, int lines) {
                libyuv::NV12ToARGB(f.row(0, 0), f.pitch[0], f.row(1, 0), f.pitch[1], t.row(0, 0), t.pitch[0], width,
                                   lines);
            }),
        halved(
            "CscBgraToNv12", "ARGBToNV12", in32, nv12,
            [](const Procs &procs, Frame &t, Frame &f, int y) {
                procs.CscBgraToNv12(t.row(0, y), t.row(0, y + 1), t.row(1, y / 2), f.row(0, y), f.row(0, y + 1), width,
                                    &bt601ToYuv);
            },
            [](Frame &t, Frame &f, int lines) {
                libyuv::ARGBToNV12(f.row(0, 0), f.pitch[0], t.row(0, 0), t.pitch[0], t.row(1, 0), t.pitch[1], width,
                                   lines);
            }),
        halved("CscI420ToBgra", "I420ToARGB", i420, in32, i420ToBgra,
               [](Frame &t, Frame &f, int lines) {
                   libyuv::I420ToARGB(f.row(0, 0), f.pitch[0], f.row(1, 0), f.pitch[1], f.row(2, 0), f.pitch[2],
                                      t.row(0, 0), t.pitch[0], width, lines);
               }),
        halved("CscI420ToBgra", "the same, bilinear", i420, in32, i420ToBgra,
               [](Frame &t, Frame &f, int lines) {
                   libyuv::I420ToARGBMatrixFilter(f.row(0, 0), f.pitch[0], f.row(1, 0), f.pitch[1], f.row(2, 0),
                                                  f.pitch[2], t.row(0, 0), t.pitch[0], &libyuv::kYuvI601Constants,
                                                  width, lines, libyuv::kFilterBilinear);
               }),
        halved(
            "CscBgraToI420", "ARGBToI420", in32, i420,
            [](const Procs &procs, Frame &t, Frame &f, int y) {
                procs.CscBgraToI420(t.row(0, y), t.row(0, y + 1), t.row(1, y / 2), t.row(2, y / 2), f.row(0, y),
                                    f.row(0, y + 1), width, &bt601ToYuv);
            },
            [](Frame &t, Frame &f, int lines) {
                libyuv::ARGBToI420(f.row(0, 0), f.pitch[0], t.row(0, 0), t.pitch[0], t.row(1, 0), t.pitch[1],
                                   t.row(2, 0), t.pitch[2], width, lines);
            }),
        halved("CscP016ToBgra", "P010ToARGBMatrix", p016, in32, p016ToBgra,
               [](Frame &t, Frame &f, int lines) {
                   libyuv::P010ToARGBMatrix(f.words(0, 0), f.pitch[0] / 2, f.words(1, 0), f.pitch[1] / 2, t.row(0, 0),
                                            t.pitch[0], &libyuv::kYuvI601Constants, width, lines);
               }),
        halved("CscP016ToBgra", "the same, bilinear", p016, in32, p016ToBgra,
               [](Frame &t, Frame &f, int lines) {
                   libyuv::P010ToARGBMatrixFilter(f.words(0, 0), f.pitch[0] / 2, f.words(1, 0), f.pitch[1] / 2,
                                                  t.row(0, 0), t.pitch[0], &libyuv::kYuvI601Constants, width, lines,
                                                  libyuv::kFilterBilinear);
               }),
        {"CscNv12ToI420", "NV12ToI420", noise, 0, 2, nv12, i420,
         [](const Procs &procs, Frame &t, Frame &f, int y) {
             procs.CscNv12ToI420(t.row(0, y), t.row(0, y + 1), t.row(1, y / 2), t.row(2, y / 2), f.row(0, y),
                                 f.row(0, y + 1), f.row(1, y / 2), width);
         },
         [](Frame &t, Frame &f, int lines) {
             libyuv::NV12ToI420(f.row(0, 0), f.pitch[0], f.row(1, 0), f.pitch[1], t.row(0, 0), t.pitch[0], t.row(1, 0),
                                t.pitch[1], t.row(2, 0), t.pitch[2], width, lines);
         }},
        {"CscP016ToNv12", "Convert16To8Plane twice", noise, 0, 2, p016, nv12,
         [](const Procs &procs, Frame &t, Frame &f, int y) {
             procs.CscP016ToNv12(t.row(0, y), t.row(0, y + 1), t.row(1, y / 2), f.words(0, y), f.words(0, y + 1),
                                 f.words(1, y / 2), width);
         },
         [](Frame &t, Frame &f, int lines) {
             constexpr int upperByte = 256; // of 65536
             libyuv::Convert16To8Plane(f.words(0, 0), f.pitch[0] / 2, t.row(0, 0), t.pitch[0], upperByte, width, lines);
             libyuv::Convert16To8Plane(f.words(1, 0), f.pitch[1] / 2, t.row(1, 0), t.pitch[1], upperByte, width,
                                       lines / 2);
         }},
        packed<&Procs::CscPremultiplyAlpha32, libyuv::ARGBAttenuate>("CscPremultiplyAlpha32", "ARGBAttenuate", noise, 1,
                                                                     in32, in32),
        packed<&Procs::CscUnpremultiplyAlpha32, libyuv::ARGBUnattenuate>("CscUnpremultiplyAlpha32", "ARGBUnattenuate",
                                                                         Content::premultiplied, 2, in32, in32),
    };
}

void fill(Frame &frame, Content content)
{
    std::mt19937_64 random(1);
    for (std::size_t plane = 0; plane < frame.planes.size(); ++plane) {
        std::vector<std::uint8_t> &bytes = frame.planes[plane];
        for (std::size_t i = 0; i < bytes.size(); i += 4) {
            // Luma, or BGRA32, or YUYV; and chroma.
            std::array<std::uint8_t, 4> four = {140, 120, 140, 120};
            if (plane > 0)
                four.fill(plane == 1 ? 110 : 150);
            if (content != Content::oneColour)
                std::generate(four.begin(), four.end(), [&random] { return static_cast<std::uint8_t>(random()); });
            if (content == Content::premultiplied)
                std::sort(four.begin(), four.end());
            std::copy(four.begin(), four.end(), bytes.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

// --- The run -------------------------------------------------------------------------------------------------

struct Side {
    const char *name;
    const Procs *procs; // or libyuv
    int instructions;
};
constexpr int upToAvx2 = libyuv::kCpuHasAVX512BW - 1;
const Side sides[] = {{"avx2", &colorSpaceProcsAvx2, -1},
                      {"sse2", &colorSpaceProcsSse2, -1},
                      {"libyuv avx2", nullptr, upToAvx2},
                      {"libyuv", nullptr, -1}};

void convert(const Contest &contest, const Side &side, Frame &to, Frame &from, int lines)
{
    if (!side.procs)
        contest.libyuv(to, from, lines);
    else
        for (int line = 0; line < lines; line += contest.lines)
            contest.own(*side.procs, to, from, line);
}

// The results of the whole frame, at every side, beside those of the first.
bool agree(const Contest &contest, Frame &to, Frame &from)
{
    Frame first;
    for (const Side &side : sides) {
        libyuv::MaskCpuFlags(side.instructions);
        to.setPitches(contest.to);
        convert(contest, side, to, from, frameLines);
        if (&side == sides)
            first = to;
        int largest = 0;
        for (std::size_t plane = 0; plane < to.planes.size(); ++plane)
            for (std::size_t i = 0; i < to.planes[plane].size(); ++i)
                largest = std::max(largest, std::abs(to.planes[plane][i] - first.planes[plane][i]));
        if (largest > (side.procs ? 0 : contest.tolerance)) {
            std::fprintf(stderr, "colour_peer_bench: %s and %s (%s) differ by %d\n", contest.kernel, contest.peer,
                         side.name, largest);
            return false;
        }
    }
    return true;
}

std::string nameOf(const Contest &contest, const Side &side, int lines)
{
    return std::string(contest.kernel) + "/" + side.name + "/" + std::to_string(lines);
}

int run(const std::vector<Contest> &chosen, double seconds)
{
    const auto to = std::make_shared<Frame>();
    const auto from = std::make_shared<Frame>();
    Medians medians;
    std::printf("%-31s %-24s %10s %10s %10s %10s\n", "kernel", "peer", "ns", "x sse2", "x at avx2", "x best");
    for (const Contest &contest : chosen) {
        from->setPitches(contest.from);
        fill(*from, contest.content);
        if (!agree(contest, *to, *from))
            return EXIT_FAILURE;
        benchmark::ClearRegisteredBenchmarks();
        for (const int lines : {contest.lines, frameLines}) {
            for (const Side &side : sides) {
                benchmark::RegisterBenchmark(nameOf(contest, side, lines).c_str(), [&, lines](benchmark::State &state) {
                    libyuv::MaskCpuFlags(side.instructions);
                    for (auto _ : state) {
                        convert(contest, side, *to, *from, lines);
                        benchmark::ClobberMemory();
                    }
                })->MinTime(seconds);
            }
        }
        benchmark::RunSpecifiedBenchmarks(&medians);
        for (const int lines : {contest.lines, frameLines}) {
            std::array<double, std::size(sides)> times{};
            for (std::size_t i = 0; i < times.size(); ++i)
                times[i] = medians[nameOf(contest, sides[i], lines)].median;
            std::printf("%-31s %-24s %10.0f %10.2f %10.2f %10.2f\n",
                        (std::string(contest.kernel) + (lines == frameLines ? ", frame" : "")).c_str(), contest.peer,
                        times[0], times[1] / times[0], times[2] / times[0], times[3] / times[0]);
            std::fflush(stdout);
        }
    }
    std::puts("\nx: how many times as fast as its own SSE2 kernel, as libyuv limited to AVX2, as libyuv at its best.");
    return EXIT_SUCCESS;
}

} // namespace
} // namespace vela::test

int main(int argumentCount, char **arguments)
{
    std::string filter = ".";
    int repetitions = 9;
    double seconds = 0.02;
    CLI::App app("Times colour conversions beside those of libyuv on the same buffers.");
    app.add_option("--filter", filter, "regular expression on the kernel's name");
    app.add_option("--repetitions", repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", seconds, "least time of a run")->capture_default_str();
    CLI11_PARSE(app, argumentCount, arguments);

    std::vector<vela::test::Contest> chosen = vela::test::contests();
    const std::regex wanted(filter, std::regex::icase);
    std::erase_if(chosen, [&](const auto &contest) { return !std::regex_search(contest.kernel, wanted); });
    vela::test::initializeInterleaved(arguments[0], repetitions);
    return vela::test::run(chosen, seconds);
}
