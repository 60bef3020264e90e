// vela enhance: a picture smoothed, sharpened, and sent through packed 4:2:2 and back.
#include "commands.hpp"
#include "failure.hpp"
#include "options.hpp"
#include "paths.hpp"
#include "picture.hpp"
#include "rows.hpp"
#include "slots.hpp"
#include "table.hpp"

#include <CLI/CLI.hpp>

#include <array>
#include <iostream>
#include <memory>

namespace host {
namespace {

constexpr std::uint8_t opaque = 255;

struct EnhanceOptions {
    std::string input;
    std::string outputDirectory;
    int passes = 1;
    int strength = 1;
    int runs = 9;
    int threads = 1;
};

// The two families that this subcommand calls, registered into tables of its own.
struct Kernels {
    vela::ColorSpaceProcs colorSpace;
    vela::VideoProcs video;
    int32_t level;

    explicit Kernels(const Library &library)
        : colorSpace(LIBRARY_EXPORT(library, VCB_RegColorSpace)), video(LIBRARY_EXPORT(library, VCB_RegVideoProc)),
          level(library.processorLevel())
    {
    }

    SlotInUse colorSlot(int number) const { return requireSlot("colorspace", colorSpace.colorSpace, number, level); }
    SlotInUse videoSlot(int number) const { return requireSlot("video", video.video, number, level); }
};

// --- The steps, over the rows of whole pictures --------------------------------------------------------------

void widenRows(const Kernels &kernels, Picture &to, const Picture &from, int first, int end)
{
    for (int y = first; y < end; ++y)
        kernels.colorSpace.colorSpace.AppendAlpha24To32(to.row(y), from.row(y), static_cast<uint32_t>(from.width()),
                                                        opaque);
}

// The 3x3 binomial blur. The horizontal pass reads one pixel of sums on either side of the line: beyond the picture
// the edge pixel repeats, as the edge rows do above and below.
void smoothRows(const Kernels &kernels, Picture &to, const Picture &from, int first, int end)
{
    const int width = from.width();
    const int lastRow = from.height() - 1;
    std::vector<uint16_t> line((static_cast<std::size_t>(width) + 2) * 4);
    uint16_t *const sums = line.data() + 4;
    uint16_t *const pastSums = sums + static_cast<std::size_t>(width) * 4;
    for (int y = first; y < end; ++y) {
        const uint8_t *above = from.row(std::max(y - 1, 0));
        const uint8_t *below = from.row(std::min(y + 1, lastRow));
        kernels.video.video.SmoothRows121U8(sums, above, from.row(y), below, width);
        std::copy_n(sums, 4, sums - 4);
        std::copy_n(pastSums - 4, 4, pastSums);
        kernels.video.video.SmoothCols121U16ToU8(to.row(y), sums, width);
    }
}

// Pushes each pixel away from its smoothed copy. The result may replace the row that it is made from.
void sharpenRows(const Kernels &kernels, Picture &to, const Picture &from, const Picture &smoothed, int first, int end)
{
    for (int y = first; y < end; ++y)
        kernels.video.video.SharpenU8(to.row(y), from.row(y), smoothed.row(y), 4 * from.width());
}

// One packed 4:2:2 layout: its two kernels.
struct PackedLayout {
    const char *name;
    int packSlot;
    int expandSlot;
    decltype(VcbColorSpaceProcs::PackYuvaToYuyv) pack;
    decltype(VcbColorSpaceProcs::ExpandYuyvToYuva) expand;
};

std::array<PackedLayout, 2> packedLayouts(const Kernels &kernels)
{
    const VcbColorSpaceProcs &table = kernels.colorSpace.colorSpace;
    return {{{"yuyv", VcbColorSpaceProcs_PackYuvaToYuyv, VcbColorSpaceProcs_ExpandYuyvToYuva, table.PackYuvaToYuyv,
              table.ExpandYuyvToYuva},
             {"uyvy", VcbColorSpaceProcs_PackYuvaToUyvy, VcbColorSpaceProcs_ExpandUyvyToYuva, table.PackYuvaToUyvy,
              table.ExpandUyvyToYuva}}};
}

void packRows(const PackedLayout &layout, Picture &to, const Picture &from, int first, int end)
{
    for (int y = first; y < end; ++y)
        layout.pack(to.row(y), from.row(y), static_cast<uint32_t>(from.width()));
}

// An odd width was packed with its last pixel doubled, so whole pairs are there to expand.
void expandRows(const PackedLayout &layout, Picture &to, const Picture &from, int first, int end)
{
    const uint32_t wholePairs = (static_cast<uint32_t>(from.width()) + 1) & ~1u;
    for (int y = first; y < end; ++y)
        layout.expand(to.row(y), from.row(y), wholePairs, opaque);
}

void toYuvaRows(const Kernels &kernels, const CscRgbToYuv &matrix, Picture &to, const Picture &from, int first, int end)
{
    for (int y = first; y < end; ++y)
        kernels.colorSpace.colorSpace.CscBgraToYuva(to.row(y), from.row(y), from.width(), &matrix);
}

void toBgraRows(const Kernels &kernels, const CscYuvToRgb &matrix, Picture &to, const Picture &from, int first, int end)
{
    for (int y = first; y < end; ++y)
        kernels.colorSpace.colorSpace.CscYuvaToBgra(to.row(y), from.row(y), from.width(), &matrix);
}

// --- Running and reporting them ------------------------------------------------------------------------------

// Runs steps several times over a whole picture and collects what the user sees of them.
class Report {
public:
    Report(const EnhanceOptions &wanted, const Picture &input)
        : options(wanted), height(input.height()), megapixels(1e-6 * input.width() * input.height())
    {
    }

    // Each run calls work(first, end) over all rows, passes times with one barrier after each pass.
    template <class Work> void step(const std::string &name, const std::vector<SlotInUse> &slots, int passes, Work work)
    {
        const auto announce = [&](int run) {
            progress.show(name + ": run " + std::to_string(run + 1) + " of " + std::to_string(options.runs));
        };
        const double seconds = medianSeconds(options.runs, announce, [&] {
            for (int pass = 0; pass < passes; ++pass)
                overRows(height, options.threads, [&](int first, int end) { work(pass, first, end); });
        });
        addRows(name, slots, megapixels * passes / seconds);
    }

    void note(const std::string &text) { notes.push_back(text); }
    void wrote(const std::filesystem::path &path) { files.push_back(utf8(path)); }

    void print()
    {
        progress.show("");
        table.print(std::cout);
        std::cout << '\n';
        for (const std::string &text : notes)
            std::cout << text << '\n';
        for (const std::string &file : files)
            std::cout << "wrote " << file << '\n';
    }

private:
    // A step of two kernels has two rows and one speed.
    void addRows(std::string name, const std::vector<SlotInUse> &slots, double megapixelsPerSecond)
    {
        std::string speed = formatted("%.0f", megapixelsPerSecond);
        for (const SlotInUse &slot : slots) {
            addStep(table, name, slot, speed);
            name.clear();
            speed = "(both)";
        }
    }

    const EnhanceOptions &options;
    int height;
    double megapixels;
    Progress progress;
    Table table = tableOfSteps("Mpixel/s");
    std::vector<std::string> notes;
    std::vector<std::string> files;
};

std::string decibels(double meanSquaredError)
{
    return meanSquaredError == 0 ? "exact" : formatted("%.2f dB", peakSignalToNoise(meanSquaredError));
}

std::string roundTripQuality(const Picture &before, const Picture &after)
{
    const double y = meanSquaredError(before, after, 0);
    const double u = meanSquaredError(before, after, 1);
    const double v = meanSquaredError(before, after, 2);
    return "PSNR " + decibels((y + u + v) / 3) + " (Y " + decibels(y) + ", U " + decibels(u) + ", V " + decibels(v) +
           ")";
}

// The job: its pictures, in the order in which they come to be.
class Enhancement {
public:
    Enhancement(const EnhanceOptions &wanted, const Library &loaded, const Picture &input)
        : options(wanted), library(loaded), kernels(loaded), report(wanted, input)
    {
        // As in JPEG files.
        double kr = 0;
        double kb = 0;
        CscMatrixWeights(VCB_CSC_BT601, &kr, &kb);
        CscBuildRgbToYuv(&rgbToYuv, kr, kb, VCB_CSC_FULL, 8, VCB_CSC_FULL, 8);
        CscBuildYuvToRgb(&yuvToRgb, kr, kb, VCB_CSC_FULL, 8, VCB_CSC_FULL, 8);
    }

    void run(const Picture &input)
    {
        const Picture original = widen(input);
        const Picture smoothed = smooth(original);
        save("smoothed", smoothed);
        save("sharpened", sharpen(original, smoothed));
        const Picture yuva = toYuva(original);
        for (const PackedLayout &layout : packedLayouts(kernels))
            save(layout.name, toBgra(layout.name, roundTrip(layout, yuva)));
        report.print();
    }

private:
    Picture widen(const Picture &input)
    {
        if (input.bytesPerPixel() == 4)
            return input;
        Picture wide(input.width(), input.height(), 4);
        report.step("widen", {kernels.colorSlot(VcbColorSpaceProcs_AppendAlpha24To32)}, 1,
                    [&](int, int first, int end) { widenRows(kernels, wide, input, first, end); });
        return wide;
    }

    Picture smooth(const Picture &original)
    {
        // Passes go to and fro between two pictures.
        Picture targets[] = {original, original};
        report.step(
            "smooth",
            {kernels.videoSlot(VcbVideoProcs_SmoothRows121U8), kernels.videoSlot(VcbVideoProcs_SmoothCols121U16ToU8)},
            options.passes, [&](int pass, int first, int end) {
                const Picture &from = pass == 0 ? original : targets[(pass + 1) % 2];
                smoothRows(kernels, targets[pass % 2], from, first, end);
            });
        return std::move(targets[(options.passes + 1) % 2]);
    }

    Picture sharpen(const Picture &original, const Picture &smoothed)
    {
        Picture sharp(original.width(), original.height(), 4);
        report.step("sharpen", {kernels.videoSlot(VcbVideoProcs_SharpenU8)}, options.strength,
                    [&](int pass, int first, int end) {
                        sharpenRows(kernels, sharp, pass == 0 ? original : sharp, smoothed, first, end);
                    });
        return sharp;
    }

    Picture toYuva(const Picture &bgra)
    {
        Picture yuva(bgra.width(), bgra.height(), 4);
        report.step("to YUV", {kernels.colorSlot(VcbColorSpaceProcs_CscBgraToYuva)}, 1,
                    [&](int, int first, int end) { toYuvaRows(kernels, rgbToYuv, yuva, bgra, first, end); });
        return yuva;
    }

    Picture toBgra(const std::string &name, const Picture &yuva)
    {
        Picture bgra(yuva.width(), yuva.height(), 4);
        report.step(name + " to RGB", {kernels.colorSlot(VcbColorSpaceProcs_CscYuvaToBgra)}, 1,
                    [&](int, int first, int end) { toBgraRows(kernels, yuvToRgb, bgra, yuva, first, end); });
        return bgra;
    }

    Picture roundTrip(const PackedLayout &layout, const Picture &yuva)
    {
        const std::string name = layout.name;
        Picture packed(yuva.width(), yuva.height(), 2);
        report.step("pack " + name, {kernels.colorSlot(layout.packSlot)}, 1,
                    [&](int, int first, int end) { packRows(layout, packed, yuva, first, end); });
        Picture expanded(yuva.width(), yuva.height(), 4);
        report.step("expand " + name, {kernels.colorSlot(layout.expandSlot)}, 1,
                    [&](int, int first, int end) { expandRows(layout, expanded, packed, first, end); });
        report.note(name + " round trip: " + roundTripQuality(yuva, expanded));
        return expanded;
    }

    void save(const std::string &suffix, const Picture &picture)
    {
        const std::filesystem::path input = pathFromUtf8(options.input);
        std::filesystem::path name = input.stem();
        name += "-" + suffix + ".bmp";
        const std::filesystem::path path = pathFromUtf8(options.outputDirectory) / name;
        writeBmp(library, path, picture);
        report.wrote(path);
    }

    const EnhanceOptions &options;
    const Library &library;
    const Kernels kernels;
    CscRgbToYuv rgbToYuv;
    CscYuvToRgb yuvToRgb;
    Report report;
};

void makeDirectory(const std::filesystem::path &directory)
{
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (!std::filesystem::is_directory(directory))
        throw Failure("cannot create directory " + quoted(directory) + (error ? ": " + error.message() : ""));
}

void runEnhance(EnhanceOptions options, Session &session)
{
    const Library &library = session.library();
    options.threads = threadsToUse(options.threads, library);
    const Picture input = readBmp(library, pathFromUtf8(options.input));
    makeDirectory(pathFromUtf8(options.outputDirectory));
    std::cout << options.input << ": " << input.width() << " x " << input.height() << ", " << 8 * input.bytesPerPixel()
              << " bits; median of " << options.runs << " runs on " << counted(options.threads, "thread") << "\n\n";
    Enhancement(options, library, input).run(input);
}

constexpr const char *footer =
    R"(Writes OUTDIR/IN-smoothed.bmp, IN-sharpened.bmp, and IN-yuyv.bmp and IN-uyvy.bmp after the round trip through 4:2:2.
The round trip starts from the picture as YUV (BT.601, full range); the PSNR compares it with what comes back.

Examples:
  vela enhance photo.bmp out
  vela enhance photo.bmp out --passes 4 --strength 3 --threads 0)";

} // namespace

void addEnhanceCommand(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<EnhanceOptions>();
    CLI::App &command =
        *app.add_subcommand("enhance", "Smooth and sharpen a picture, and send it through 4:2:2 and back");
    command.add_option("IN.bmp", options->input, "Picture: an uncompressed BMP of 24 or 32 bits per pixel")
        ->type_name("")
        ->required();
    command.add_option("OUTDIR", options->outputDirectory, "Directory for the results; created if missing")
        ->type_name("")
        ->required();
    addNumber(command, "--passes", options->passes, 1, 100,
              "Smoothing passes, 1 to 100: how far the smoothing reaches");
    addNumber(command, "--strength", options->strength, 1, 20, "How often the sharpening is applied, 1 to 20");
    addNumber(command, "--runs", options->runs, 1, 1000, "Timed runs of every step, 1 to 1000");
    addThreads(command, options->threads);
    command.footer(footer);
    command.callback([options, &session] { runEnhance(*options, session); });
}

} // namespace host
