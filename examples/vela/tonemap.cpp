// vela tonemap: a picture from one transfer curve, dynamic range and gamut to another.
#include "commands.hpp"
#include "dpx.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "gamuts.hpp"
#include "hdr_curves.hpp"
#include "options.hpp"
#include "paths.hpp"
#include "rows.hpp"
#include "slots.hpp"

#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>

namespace host {
namespace {

// --- Names ---------------------------------------------------------------------------------------------------

struct Mode {
    const char *name;
    VcbHdrToneMap code;
    Light light; // of its result
};

constexpr Mode modes[] = {
    {"none", VCB_HDR_TONE_NONE, Light::hundredCandelas},
    {"knee", VCB_HDR_TONE_KNEE, Light::peak},
    {"bt2390", VCB_HDR_TONE_BT2390, Light::hundredCandelas},
    {"scene-light", VCB_HDR_TONE_SCENE_LIGHT, Light::peak},
};

template <class Entries> std::vector<std::string> namesOf(const Entries &entries)
{
    std::vector<std::string> names;
    for (const auto &entry : entries)
        names.emplace_back(entry.name);
    return names;
}

std::string listed(const std::vector<std::string> &names)
{
    std::string text;
    for (const std::string &name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

// --- What the command line means -----------------------------------------------------------------------------

struct TonemapOptions {
    std::string input;
    std::string output;
    std::string from = "pq";
    std::string to = "bt709";
    std::string primaries = "bt2020:bt709";
    std::string mode = "bt2390";
    std::string peak = "1000:100";
    int runs = 9;
    int threads = 1;
};

struct Task {
    Curve from;
    Curve to;
    Mode mode;
    float srcPeak; // cd/m2
    float dstPeak;
    float gain; // of light, behind the tone map
    std::array<float, 16> matrix;
};

struct Pair {
    std::string first;
    std::string second;
};

std::optional<Pair> pairOf(const std::string &text)
{
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    return Pair{text.substr(0, colon), text.substr(colon + 1)};
}

constexpr double smallestPeak = 1;
constexpr double largestPeak = 10000; // of PQ

std::optional<float> peakOf(const std::string &text)
{
    double value = 0;
    const char *const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end || !(value >= smallestPeak && value <= largestPeak))
        return std::nullopt;
    return static_cast<float>(value);
}

void readPeaks(const std::string &text, float &source, float &target)
{
    const std::optional<Pair> pair = pairOf(text);
    const std::optional<float> first = pair ? peakOf(pair->first) : std::nullopt;
    const std::optional<float> second = pair ? peakOf(pair->second) : std::nullopt;
    if (!first || !second)
        throw UsageError("--peak: '" + text + "' is not SRC:DST, each " + formatted("%.0f", smallestPeak) + " to " +
                         formatted("%.0f", largestPeak) + " cd/m2");
    source = *first;
    target = *second;
}

Matrix3 gamutOf(const std::string &text)
{
    const std::optional<Pair> pair = pairOf(text);
    const Primaries *from = pair ? findPrimaries(pair->first) : nullptr;
    const Primaries *to = pair ? findPrimaries(pair->second) : nullptr;
    if (!from || !to)
        throw UsageError("--primaries: '" + text + "' is not SRC:DST, each one of " + listed(namesOf(allPrimaries())));
    return gamutMatrix(*from, *to);
}

// The option's check has made sure that there is one of that name.
template <class Entries> auto entryOf(const Entries &entries, const std::string &name)
{
    return *std::ranges::find(entries, name, [](const auto &entry) { return std::string(entry.name); });
}

// Brings the tone map's light to the scale of the target's curve.
float gainOf(Light mapped, Light target, float dstPeak)
{
    if (mapped == target)
        return 1;
    return target == Light::peak ? 100 / dstPeak : dstPeak / 100;
}

Task taskOf(const TonemapOptions &options)
{
    Task task{entryOf(curves, options.from), entryOf(curves, options.to), entryOf(modes, options.mode), 0, 0, 1, {}};
    readPeaks(options.peak, task.srcPeak, task.dstPeak);
    task.gain = gainOf(task.mode.light, task.to.light, task.dstPeak);
    task.matrix = hdrMatrix(gamutOf(options.primaries), static_cast<double>(task.gain));
    return task;
}

// --- The job -------------------------------------------------------------------------------------------------

constexpr int floatPixel = 4 * sizeof(float);

float *floatRow(Picture &picture, int y) { return reinterpret_cast<float *>(picture.row(y)); }
const float *floatRow(const Picture &picture, int y) { return reinterpret_cast<const float *>(picture.row(y)); }
uint32_t *wordRow(Picture &picture, int y) { return reinterpret_cast<uint32_t *>(picture.row(y)); }
const uint32_t *wordRow(const Picture &picture, int y) { return reinterpret_cast<const uint32_t *>(picture.row(y)); }

class ToneMapping {
public:
    ToneMapping(const TonemapOptions &wanted, const Library &loaded)
        : options(wanted), library(loaded), procs(LIBRARY_EXPORT(loaded, VCB_RegColorSpace)),
          level(loaded.processorLevel())
    {
    }

    Picture run(const Task &task) { return pack(convert(task, readInput())); }

    void print(const Task &task, const Picture &picture)
    {
        progress.show("");
        std::cout << options.input << ": " << picture.width() << " x " << picture.height() << ", " << kind
                  << "; median of " << options.runs << " runs on " << counted(options.threads, "thread") << '\n'
                  << task.from.name << " to " << task.to.name << ", primaries " << options.primaries << ", tone map "
                  << task.mode.name << ", peaks " << options.peak << " cd/m2";
        if (task.gain != 1)
            std::cout << ", light times " << formatted("%g", static_cast<double>(task.gain));
        std::cout << "\n\n";
        table.print(std::cout);
    }

private:
    // Runs a step several times over a picture. Each run calls kernel(y) for every row.
    template <class Kernel> void step(const std::string &name, int number, const Picture &of, Kernel kernel)
    {
        const SlotInUse slot = requireSlot("colorspace", procs.colorSpace, number, level);
        const auto announce = [&](int run) {
            progress.show(name + ": run " + std::to_string(run + 1) + " of " + std::to_string(options.runs));
        };
        const double seconds = medianSeconds(options.runs, announce, [&] {
            overRows(of.height(), options.threads, [&](int first, int end) {
                for (int y = first; y < end; ++y)
                    kernel(y);
            });
        });
        addStep(table, name, slot, formatted("%.0f", 1e-6 * of.width() * of.height() / seconds));
    }

    // The picture as four floats a pixel, R G B A.
    Picture readInput()
    {
        const std::filesystem::path path = pathFromUtf8(options.input);
        return isDpx(path) ? unpackDpx(readDpx(library, path)) : unpackBmp(readBmp(library, path));
    }

    Picture unpackDpx(const DpxPicture &dpx)
    {
        const VcbColorSpaceProcs &kernels = procs.colorSpace;
        kind = "DPX of 10 bits";
        const bool methodA = dpx.format == VCB_DPX_RGB_A;
        const auto kernel = methodA ? kernels.CscDpx3AToF32x4 : kernels.CscDpx3BToF32x4;
        const Picture &file = dpx.words;
        Picture swapped(dpx.littleEndian ? file.width() : 1, dpx.littleEndian ? file.height() : 1, 4);
        if (dpx.littleEndian) // the layouts have big-endian words
            step("byte order", VcbColorSpaceProcs_CscSwapEndian32, file,
                 [&](int y) { kernels.CscSwapEndian32(wordRow(swapped, y), wordRow(file, y), file.width()); });
        const Picture &words = dpx.littleEndian ? swapped : file;
        Picture pixels(file.width(), file.height(), floatPixel);
        step("unpack", methodA ? VcbColorSpaceProcs_CscDpx3AToF32x4 : VcbColorSpaceProcs_CscDpx3BToF32x4, pixels,
             [&](int y) { kernel(floatRow(pixels, y), wordRow(words, y), pixels.width()); });
        return pixels;
    }

    Picture unpackBmp(const Picture &bmp)
    {
        const VcbColorSpaceProcs &kernels = procs.colorSpace;
        kind = "BMP of " + std::to_string(8 * bmp.bytesPerPixel()) + " bits";
        const bool hasAlpha = bmp.bytesPerPixel() == 4;
        const auto kernel = hasAlpha ? kernels.CscBgraToF32x4 : kernels.CscBgr24ToF32x4;
        Picture pixels(bmp.width(), bmp.height(), floatPixel);
        step("unpack", hasAlpha ? VcbColorSpaceProcs_CscBgraToF32x4 : VcbColorSpaceProcs_CscBgr24ToF32x4, pixels,
             [&](int y) { kernel(floatRow(pixels, y), bmp.row(y), bmp.width()); });
        return pixels;
    }

    Picture convert(const Task &task, const Picture &from)
    {
        const VcbColorSpaceProcs &kernels = procs.colorSpace;
        requireSlot("colorspace", kernels, VcbColorSpaceProcs_CscSetupHdrConversion, level);
        HdrConversionParams params = VELA_HDR_CONVERSION_DEFAULTS;
        params.toneMapMode = task.mode.code;
        params.srcPeakLuminance = task.srcPeak;
        params.dstPeakLuminance = task.dstPeak;
        kernels.CscSetupHdrConversion(task.from.code, task.to.code, &params); // no other thread converts yet
        Picture to(from.width(), from.height(), floatPixel);
        step("convert", VcbColorSpaceProcs_CscConvertHdrPixels, from, [&](int y) {
            kernels.CscConvertHdrPixels(floatRow(from, y), floatRow(to, y), task.matrix.data(), from.width());
        });
        return to;
    }

    Picture pack(const Picture &from)
    {
        Picture to(from.width(), from.height(), 3);
        step("pack", VcbColorSpaceProcs_CscF32x4ToBgr24, from,
             [&](int y) { procs.colorSpace.CscF32x4ToBgr24(to.row(y), floatRow(from, y), from.width()); });
        return to;
    }

    const TonemapOptions &options;
    const Library &library;
    const vela::ColorSpaceProcs procs;
    const int32_t level;
    std::string kind;
    Progress progress;
    Table table = tableOfSteps("Mpixel/s");
};

void runTonemap(TonemapOptions options, Session &session)
{
    const Task task = taskOf(options);
    const Library &library = session.library();
    options.threads = threadsToUse(options.threads, library);
    const std::filesystem::path path = pathFromUtf8(options.output);
    checkIsNotInput(path, pathFromUtf8(options.input));

    UnfinishedFile output(path);
    ToneMapping mapping(options, library);
    const Picture picture = mapping.run(task);
    writeBmp(library, output.pathUntilFinished(), picture);
    output.finish();
    mapping.print(task, picture);
    std::cout << "\nwrote " << options.output << '\n';
}

constexpr const char *tonemapFooter =
    R"(IN is a DPX picture of 10-bit RGB or an uncompressed BMP of 24 or 32 bits; OUT is a BMP of 24 bits, without alpha.

Curves:    bt709 bt601 bt2020-12bit power2.2 power2.4 power2.6 power2.8 pq hlg hlg-scene s-log2 s-log3 s-log3-high
           canon-log canon-log2 canon-log3 log3g10 v-log log-210
Primaries: bt709 bt2020 bt601-525 bt601-625 p3 p3-dci s-gamut3 s-gamut3.cine cinema-gamut redwidegamut v-gamut
Tone maps: none; knee, for light of up to 1000 cd/m2; bt2390, from the one peak to the other; scene-light, from a
           display of 1000 cd/m2 to one of DST cd/m2, as hybrid log-gamma is rendered

pq and hlg mean cd/m2; in all other curves 1.0 is DST cd/m2 for the target, and 100 cd/m2 for the source. The matrix
between primaries is that of SMPTE RP 177; to and from p3-dci, whose white is another, it adapts by Bradford's.

Examples:
  vela tonemap graded.dpx graded.bmp --from pq --to bt709 --primaries bt2020:bt709 --mode bt2390 --peak 1000:100
  vela tonemap graded.dpx clipped.bmp --mode none
  vela tonemap camera.dpx look.bmp --from v-log --to bt709 --primaries v-gamut:bt709 --mode none)";

} // namespace

void addTonemapCommand(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<TonemapOptions>();
    CLI::App &command =
        *app.add_subcommand("tonemap", "Convert a picture between dynamic ranges, transfer curves and gamuts");
    const auto addName = [&](const std::string &name, std::string &value, const std::vector<std::string> &names,
                             const std::string &type, const std::string &description) {
        command.add_option(name, value, description)
            ->type_name(type)
            ->check(CLI::IsMember(names).description(""))
            ->capture_default_str();
    };
    command.add_option("IN", options->input, "Picture: 10-bit DPX or BMP")->type_name("")->required();
    command.add_option("OUT.bmp", options->output, "The file for the result")->type_name("")->required();
    addName("--from", options->from, namesOf(curves), "CURVE", "Transfer curve of IN");
    addName("--to", options->to, namesOf(curves), "CURVE", "Transfer curve of the result");
    command.add_option("--primaries", options->primaries, "Primaries of both")
        ->type_name("SRC:DST")
        ->capture_default_str();
    addName("--mode", options->mode, namesOf(modes), "none|knee|bt2390|scene-light", "Tone map");
    command.add_option("--peak", options->peak, "Brightest light of IN and of the display, in cd/m2")
        ->type_name("SRC:DST")
        ->capture_default_str();
    addNumber(command, "--runs", options->runs, 1, 1000, "Timed runs of every step, 1 to 1000");
    addThreads(command, options->threads);
    command.footer(tonemapFooter);
    command.callback([options, &session] { runTonemap(*options, session); });
}

} // namespace host
