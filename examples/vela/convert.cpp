// vela convert: raw video frames and pictures from one layout to another, sharpened on the way. vela formats: what
// there is to choose from.
#include "commands.hpp"
#include "conversions.hpp"
#include "failure.hpp"
#include "frames.hpp"
#include "options.hpp"
#include "paths.hpp"
#include "rows.hpp"
#include "slots.hpp"

#include <charconv>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>

namespace host {
namespace {

struct ConvertOptions {
    std::string input;
    std::string output;
    std::string from;
    std::string to;
    std::string size;
    std::string matrix = "bt709";
    std::string range = "limited:full";
    int runs = 1;
    int threads = 1;
    std::optional<int> alpha;
    std::optional<double> sharpenLuma;
};

constexpr int opaque = 255;

// --- What the command line means -----------------------------------------------------------------------------

struct Colours {
    VcbCscMatrix matrix;
    VcbCscRange yuvRange;
    VcbCscRange rgbRange;
};

struct Named {
    const char *name;
    int value;
};
constexpr Named matrices[] = {{"bt601", VCB_CSC_BT601},
                              {"bt709", VCB_CSC_BT709},
                              {"bt2020", VCB_CSC_BT2020_NCL},
                              {"smpte240m", VCB_CSC_SMPTE240M}};
constexpr const char *ranges[] = {"limited:full", "full:full", "limited:limited", "full:limited"};

template <class Names, class NameOf> std::vector<std::string> namesOf(const Names &names, NameOf nameOf)
{
    std::vector<std::string> result;
    for (const auto &entry : names)
        result.emplace_back(nameOf(entry));
    return result;
}

Colours coloursOf(const ConvertOptions &options)
{
    const auto matrix = std::ranges::find(matrices, options.matrix, &Named::name);
    const std::string yuv = options.range.substr(0, options.range.find(':'));
    const std::string rgb = options.range.substr(yuv.size() + 1);
    const auto range = [](const std::string &name) { return name == "full" ? VCB_CSC_FULL : VCB_CSC_LIMITED; };
    return {static_cast<VcbCscMatrix>(matrix->value), range(yuv), range(rgb)};
}

const Layout &layoutOf(const std::string &name)
{
    const Layout *layout = findLayout(name);
    if (!layout)
        throw UsageError("no layout '" + name + "'; 'vela formats' lists them");
    return *layout;
}

bool isBmpName(const std::string &name)
{
    const std::string extension = utf8(pathFromUtf8(name).extension());
    return extension == ".bmp" || extension == ".BMP";
}

void readSize(const std::string &text, int &width, int &height)
{
    const char *const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    const bool twoNumbers = first.ec == std::errc() && first.ptr != end && (*first.ptr == 'x' || *first.ptr == 'X');
    const auto second = twoNumbers ? std::from_chars(first.ptr + 1, end, height) : first;
    if (!twoNumbers || second.ec != std::errc() || second.ptr != end || std::min(width, height) < 1 ||
        std::max(width, height) > largestSide)
        throw UsageError("--size: '" + text + "' is no size; WIDTHxHEIGHT, each 1 to " + std::to_string(largestSide));
}

Input openInput(const ConvertOptions &options, const Library &library)
{
    const std::filesystem::path path = pathFromUtf8(options.input);
    if (isBmpName(options.input)) {
        if (!options.from.empty() || !options.size.empty())
            throw UsageError("--from and --size are for raw frames; a BMP picture says what it is");
        return openPicture(library, path);
    }
    if (options.from.empty() || options.size.empty())
        throw UsageError("raw frames need --from and --size");
    int width = 0;
    int height = 0;
    readSize(options.size, width, height);
    return openRawFrames(path, layoutOf(options.from), width, height);
}

const Layout &outputLayout(const ConvertOptions &options, const Input &input)
{
    if (!isBmpName(options.output)) {
        if (options.to.empty())
            throw UsageError("raw frames need --to");
        return layoutOf(options.to);
    }
    const Layout &layout = layoutOf(!options.to.empty() ? options.to : input.layout->alphaBits ? "BGRA32" : "BGR24");
    if (&layout != findLayout("BGRA32") && &layout != findLayout("BGR24"))
        throw UsageError(std::string("a BMP picture is BGR24 or BGRA32, not ") + layout.name);
    if (input.frames > 1)
        throw Failure(quoted(pathFromUtf8(options.input)) + " holds " + std::to_string(input.frames) +
                      " frames, and a BMP picture one");
    return layout;
}

// --- Steps ---------------------------------------------------------------------------------------------------

// One conversion of the way: its kernel and what goes with it.
struct Step {
    const Conversion *conversion;
    SlotInUse slot;
    VcbKernel kernel;
    CscYuvToRgb toRgb;
    CscRgbToYuv toYuv;
    std::vector<double> seconds; // of every run over every frame
};

Step makeStep(const Conversion &conversion, const VcbColorSpaceProcs &table, int32_t level, const Colours &colours)
{
    Step step{&conversion,
              requireSlot("colorspace", table, conversion.slot, level),
              vela::slotPointer(table, static_cast<std::size_t>(conversion.slot)),
              {},
              {},
              {}};
    double kr = 0;
    double kb = 0;
    CscMatrixWeights(colours.matrix, &kr, &kb);
    const Layout &from = *conversion.from;
    const Layout &to = *conversion.to;
    if (conversion.takesYuvToRgb)
        CscBuildYuvToRgb(&step.toRgb, kr, kb, colours.yuvRange, from.depth, colours.rgbRange, to.depth);
    if (conversion.takesRgbToYuv) // grey is the Y of the full range
        CscBuildRgbToYuv(&step.toYuv, kr, kb, colours.rgbRange, from.depth,
                         to.model == Model::grey ? VCB_CSC_FULL : colours.yuvRange, to.depth);
    return step;
}

std::vector<Step> findSteps(const Layout &from, const Layout &to, const Library &library, const Colours &colours)
{
    if (&from == &to)
        return {};
    const std::vector<const Conversion *> way = findWay(from, to, colours.yuvRange == VCB_CSC_FULL);
    if (way.empty())
        throw UsageError(std::string("no conversions lead from ") + from.name + " to " + to.name);
    const vela::ColorSpaceProcs procs(LIBRARY_EXPORT(library, VCB_RegColorSpace));
    std::vector<Step> steps;
    steps.reserve(way.size());
    for (const Conversion *conversion : way)
        steps.push_back(makeStep(*conversion, procs.colorSpace, library.processorLevel(), colours));
    return steps;
}

// The rows of a line, or of a line pair, as kernels take them: by planes, the upper line first.
template <class Pointers, class AnyFrame> void pointTo(Pointers &pointers, AnyFrame &frame, int line, CallShape shape)
{
    const int lower = std::min(line + 1, frame.height() - 1); // the last line of an odd height makes a pair with itself
    std::size_t next = 0;
    for (int p = 0; p < frame.layout().planeCount(); ++p) {
        const int lines = frame.layout().planes[std::size_t(p)].lines;
        pointers[next++] = frame.row(p, line / lines);
        if (shape == CallShape::linePair && lines == 1)
            pointers[next++] = frame.row(p, lower);
    }
}

void convertPlanes(const Step &step, Frame &to, const Frame &from, int first, int end, CallArguments &arguments)
{
    for (int p = 0; p < from.layout().planeCount(); ++p) {
        const Plane &plane = from.layout().planes[std::size_t(p)];
        arguments.width = (from.width() + plane.pixels - 1) / plane.pixels; // samples
        for (int y = first / plane.lines; y < plane.rows(end); ++y) {
            arguments.targets[0] = to.row(p, y);
            arguments.sources[0] = from.row(p, y);
            step.conversion->call(step.kernel, arguments);
        }
    }
}

// Converts the lines [first, end), of which the first is even. Kernels that want more pixels than there are find the
// last one repeated, and there is room for what they make of it.
void convertLines(const Step &step, Frame &to, Frame &from, int first, int end, int alpha)
{
    const Conversion &conversion = *step.conversion;
    CallArguments arguments{{}, {}, from.width(), &step.toRgb, &step.toYuv, alpha};
    if (conversion.shape == CallShape::planeRow)
        return convertPlanes(step, to, from, first, end, arguments);

    if (const int missing = from.width() % conversion.widthStep) {
        arguments.width += conversion.widthStep - missing;
        from.extend(first, end, arguments.width);
    }
    for (int y = first; y < end; y += conversion.shape == CallShape::linePair ? 2 : 1) {
        pointTo(arguments.targets, to, y, conversion.shape);
        pointTo(arguments.sources, std::as_const(from), y, conversion.shape);
        conversion.call(step.kernel, arguments);
    }
}

// --- Sharpening ----------------------------------------------------------------------------------------------

// A kernel for rows of luma, and where luma is in them: in samples, those between it and the next one too.
struct LumaRows {
    int slot;
    int sampleBytes;
    int samplesPerPixel;
    int firstLuma;
};

// Empty if no kernel takes rows of this layout. Those for words limit at 65535, which is no limit for ten bits.
std::optional<LumaRows> lumaRowsOf(const Layout &layout)
{
    const std::string_view name = layout.name;
    if (name == "YUYV" || name == "YVYU")
        return LumaRows{VcbSignalProcs_SharpenLuma422YFirst8, 1, 2, 0};
    if (name == "UYVY")
        return LumaRows{VcbSignalProcs_SharpenLuma422CFirst8, 1, 2, 1};
    if (name == "Y216")
        return LumaRows{VcbSignalProcs_SharpenLuma422YFirst16, 2, 2, 0};
    const bool isPlane = (layout.model == Model::yuv && layout.planeCount() > 1) || layout.model == Model::grey;
    if (isPlane && layout.depth == 8)
        return LumaRows{VcbSignalProcs_SharpenLumaVariant3, 1, 1, 0};
    if (isPlane && layout.depth == 16)
        return LumaRows{VcbSignalProcs_SharpenLumaVariant6, 2, 1, 0};
    return {};
}

struct Sharpening {
    std::size_t frame; // on the way: 0 is the input
    LumaRows rows;
    SlotInUse slot;
    VcbSignalProcs table;
    uint32_t shift; // the amount is 2^-shift
    std::vector<double> seconds;
};

uint32_t shiftFor(double amount)
{
    for (uint32_t shift = 0; shift <= 4; ++shift)
        if (amount == 1.0 / (1 << shift))
            return shift;
    throw UsageError("--sharpen-luma takes 1, 0.5, 0.25, 0.125 or 0.0625");
}

// Sharpens the first frame on the way that has rows of luma.
Sharpening findSharpening(double amount, const Layout &input, const std::vector<Step> &steps, const Library &library)
{
    std::vector<const Layout *> frames{&input};
    for (const Step &step : steps)
        frames.push_back(step.conversion->to);
    const auto frame =
        std::ranges::find_if(frames, [](const Layout *layout) { return lumaRowsOf(*layout).has_value(); });
    if (frame == frames.end())
        throw UsageError("--sharpen-luma: neither " + std::string(input.name) + " nor what becomes of it has rows of " +
                         "8- or 16-bit luma, as packed 4:2:2 (YUYV, UYVY, YVYU, Y216) and planes have");
    const LumaRows rows = *lumaRowsOf(**frame);
    const vela::SignalProcs procs(LIBRARY_EXPORT(library, VCB_RegSignalProc));
    return {static_cast<std::size_t>(frame - frames.begin()),
            rows,
            requireSlot("signal", procs.signal, rows.slot, library.processorLevel()),
            procs.signal,
            shiftFor(amount),
            {}};
}

template <class Sample, class Kernel>
void sharpenRow(Kernel kernel, std::byte *to, const Frame &from, int y, uint32_t shift)
{
    const auto row = [&](int line) {
        return reinterpret_cast<const Sample *>(from.row(0, std::clamp(line, 0, from.height() - 1)));
    };
    kernel(reinterpret_cast<Sample *>(to), row(y - 1), row(y), row(y + 1), shift, from.width());
}

// Luma of the lines [first, end); chroma is in `to` already.
void sharpenLines(const Sharpening &sharpening, Frame &to, const Frame &from, int first, int end)
{
    const VcbSignalProcs &table = sharpening.table;
    const LumaRows &rows = sharpening.rows;
    const auto luma = [&](std::byte *row, int pixel) {
        return row + (pixel * rows.samplesPerPixel + rows.firstLuma) * rows.sampleBytes;
    };
    for (int y = first; y < end; ++y) {
        std::byte *const row = to.row(0, y);
        switch (rows.slot) {
        case VcbSignalProcs_SharpenLuma422YFirst8:
            sharpenRow<uint8_t>(table.SharpenLuma422YFirst8, row, from, y, sharpening.shift);
            break;
        case VcbSignalProcs_SharpenLuma422CFirst8:
            sharpenRow<uint8_t>(table.SharpenLuma422CFirst8, row, from, y, sharpening.shift);
            break;
        case VcbSignalProcs_SharpenLumaVariant3:
            sharpenRow<uint8_t>(table.SharpenLumaVariant3, row, from, y, sharpening.shift);
            break;
        case VcbSignalProcs_SharpenLuma422YFirst16:
            sharpenRow<uint16_t>(table.SharpenLuma422YFirst16, row, from, y, sharpening.shift);
            break;
        default:
            sharpenRow<uint16_t>(table.SharpenLumaVariant6, row, from, y, sharpening.shift);
            break;
        }
        // At an odd width the last pair repeats the last pixel.
        if (rows.samplesPerPixel == 2 && from.width() % 2 == 1)
            std::memcpy(luma(row, from.width()), luma(row, from.width() - 1), std::size_t(rows.sampleBytes));
    }
}

// --- The job -------------------------------------------------------------------------------------------------

std::string arrows(const std::vector<Step> &steps)
{
    std::string text = steps.front().conversion->from->name;
    for (const Step &step : steps)
        text += std::string(" > ") + step.conversion->to->name;
    return text;
}

void checkAlpha(const Layout &to, const std::vector<Step> &steps)
{
    if (to.alphaBits == 0)
        throw UsageError(std::string("--alpha: ") + to.name + " has no alpha");
    if (std::ranges::none_of(steps, [](const Step &step) { return step.conversion->takesAlpha; }))
        throw UsageError("--alpha: no kernel of " + (steps.empty() ? to.name : arrows(steps)) + " takes one");
}

void printTask(const ConvertOptions &options, const Input &input, const std::vector<Step> &steps)
{
    const Layout &target = steps.empty() ? *input.layout : *steps.back().conversion->to;
    std::cout << options.input << ": " << counted(input.frames, "frame") << " of " << input.width << " x "
              << input.height << ", " << input.layout->name << " to " << target.name << " on "
              << counted(options.threads, "thread") << '\n';
    if (std::ranges::any_of(
            steps, [](const Step &step) { return step.conversion->takesYuvToRgb || step.conversion->takesRgbToYuv; }))
        std::cout << "matrix " << options.matrix << ", range " << options.range << " (YUV:RGB)\n";
    if (steps.size() > 1)
        std::cout << "no slot converts directly; composed of " << steps.size() << ": " << arrows(steps) << '\n';
    std::cout << '\n';
}

void printSpeeds(const std::vector<Step> &steps, const std::optional<Sharpening> &sharpening, const Input &input)
{
    const double megapixels = 1e-6 * input.width * input.height;
    Table table = tableOfSteps("Mpixel/s");
    for (std::size_t frame = 0; frame <= steps.size(); ++frame) {
        const auto add = [&](const std::string &name, const SlotInUse &slot, const std::vector<double> &seconds) {
            addStep(table, name, slot, formatted("%.0f", megapixels / medianOf(seconds)));
        };
        if (sharpening && sharpening->frame == frame)
            add("sharpen luma", sharpening->slot, sharpening->seconds);
        if (frame < steps.size())
            add(arrows({steps[frame]}), steps[frame].slot, steps[frame].seconds);
    }
    table.print(std::cout);
}

void convertFrames(const ConvertOptions &options, const Input &input, Output &output, std::vector<Step> &steps,
                   std::optional<Sharpening> &sharpening)
{
    const int alpha = options.alpha.value_or(opaque);
    std::vector<Frame> frames{{*input.layout, input.width, input.height}};
    for (const Step &step : steps)
        frames.emplace_back(*step.conversion->to, input.width, input.height);
    const auto convert = [&](std::size_t step) {
        overRows((input.height + 1) / 2, options.threads, [&](int first, int end) { // pairs of lines
            convertLines(steps[step], frames[step + 1], frames[step], 2 * first, std::min(2 * end, input.height),
                         alpha);
        });
    };
    const auto repeat = [&](std::vector<double> &seconds, const auto &work) {
        for (int run = 0; run < options.runs; ++run)
            seconds.push_back(secondsOf(work));
    };
    const auto sharpen = [&](Frame &frame) {
        const Frame original = frame;
        repeat(sharpening->seconds, [&] {
            overRows(input.height, options.threads,
                     [&](int first, int end) { sharpenLines(*sharpening, frame, original, first, end); });
        });
    };
    Progress progress;
    for (std::int64_t frame = 0; frame < input.frames; ++frame) {
        progress.show("frame " + std::to_string(frame + 1) + " of " + std::to_string(input.frames));
        input.read(frames.front());
        for (std::size_t step = 0; step <= steps.size(); ++step) {
            if (sharpening && sharpening->frame == step)
                sharpen(frames[step]);
            if (step < steps.size())
                repeat(steps[step].seconds, [&] { convert(step); });
        }
        output.write(frames.back());
    }
}

void runConvert(ConvertOptions options, Session &session)
{
    const Library &library = session.library();
    options.threads = threadsToUse(options.threads, library);
    const std::filesystem::path path = pathFromUtf8(options.output);
    const Input input = openInput(options, library);
    const Layout &target = outputLayout(options, input);
    std::vector<Step> steps = findSteps(*input.layout, target, library, coloursOf(options));
    if (steps.empty() && !options.sharpenLuma)
        throw UsageError(std::string("the input is ") + target.name + " already");
    if (options.alpha)
        checkAlpha(target, steps);
    std::optional<Sharpening> sharpening;
    if (options.sharpenLuma)
        sharpening = findSharpening(*options.sharpenLuma, *input.layout, steps, library);
    checkIsNotInput(path, pathFromUtf8(options.input));

    Output output(path, isBmpName(options.output), library);
    convertFrames(options, input, output, steps, sharpening);
    output.finish();
    printTask(options, input, steps);
    printSpeeds(steps, sharpening, input);
    std::cout << "\nwrote " << options.output << '\n';
    if (input.bytesLeft != 0)
        throw Failure(quoted(pathFromUtf8(options.input)) + " ends within a frame: after " +
                      counted(input.frames, "whole frame") + ", " +
                      counted(static_cast<long long>(input.bytesLeft), "byte") + " of " +
                      std::to_string(input.layout->frameBytes(input.width, input.height)) + " were left out");
}

// --- vela formats --------------------------------------------------------------------------------------------

const char *modelName(Model model)
{
    constexpr const char *names[] = {"RGB", "grey", "alpha", "YUV", "HSV", "HSL"};
    return names[static_cast<int>(model)];
}

std::string chromaName(const Layout &layout)
{
    constexpr const char *names[] = {"4:4:4", "4:2:2", "4:2:0"};
    return layout.model == Model::yuv ? names[static_cast<int>(layout.chroma)] : "";
}

// "1 + 2/2x2": a byte for every pixel, and two for every two pixels of two lines.
std::string planesText(const Layout &layout)
{
    std::string text;
    for (int p = 0; p < layout.planeCount(); ++p) {
        const Plane &plane = layout.planes[std::size_t(p)];
        text += (p == 0 ? "" : " + ") + std::to_string(plane.bytes);
        if (plane.pixels > 1)
            text += '/' + std::to_string(plane.pixels) + 'x' + std::to_string(plane.lines);
    }
    return text;
}

void printLayouts()
{
    using enum Table::Align;
    Table table({{"layout"}, {"model"}, {"bits", right}, {"alpha", right}, {"chroma"}, {"bytes"}, {"ffmpeg"}});
    for (const Layout &layout : layouts)
        table.addRow({layout.name, modelName(layout.model), std::to_string(layout.depth),
                      layout.alphaBits ? std::to_string(layout.alphaBits) : "", chromaName(layout), planesText(layout),
                      layout.ffmpeg});
    table.print(std::cout);
}

void printConversions(const Library &library, const Layout *ofLayout)
{
    const vela::ColorSpaceProcs procs(LIBRARY_EXPORT(library, VCB_RegColorSpace));
    const int32_t level = library.processorLevel();
    Table table({{"from"}, {"to"}, {"kernel"}, {"slot"}, {"tier"}});
    for (const Conversion &conversion : allConversions()) {
        if (ofLayout && conversion.from != ofLayout && conversion.to != ofLayout)
            continue;
        const SlotInUse slot = requireSlot("colorspace", procs.colorSpace, conversion.slot, level);
        table.addRow({conversion.from->name, conversion.to->name, slot.info->name,
                      slot.family + ' ' + std::to_string(conversion.slot), slot.tier->name});
    }
    table.print(std::cout);
}

void runFormats(const std::string &layoutName, Session &session)
{
    const Layout *layout = layoutName.empty() ? nullptr : &layoutOf(layoutName);
    if (!layout) {
        printLayouts();
        std::cout << '\n';
    }
    printConversions(session.library(), layout);
}

constexpr const char *convertFooter =
    R"(IN and OUT are BMP pictures if their names end in .bmp, else files of raw frames without anything around them. A
picture says itself what it is; raw frames need --from and --size, or --to. 'vela formats' lists the layouts.

Raw frames hold their planes one after the other, rows without padding, as ffmpeg -f rawvideo has them. Rows of V210 are
padded to 128 bytes, rows of DPX4A and DPX4B to whole words; rows of YUYV and its relatives hold whole pairs. At an odd
width the last pixel is repeated for those.

Where no slot converts directly, the conversion is composed of the few that lose the least, and the output says of
which. Matrix and ranges count between YUV and RGB, and for grey, which is full range. Until it is complete, OUT has the
name OUT.part. Speeds are those of the median run.

--sharpen-luma adds this much of 4 * Y less its four neighbours to each Y: 1, 0.5, 0.25, 0.125 or 0.0625. It works on
the first frame on the way, IN and OUT among them, whose luma lies in rows of 8 or 16 bits: 4:2:2 as YUYV, UYVY, YVYU,
Y216 or in planes, and other layouts in planes. With it, IN and OUT may have the same layout.

Examples:
  vela convert photo.bmp photo.nv12 --to NV12 --matrix bt601
  vela convert video.nv12 video.v210 --from NV12 --to V210 --size 1920x1080 --threads 2
  vela convert frame.v210 frame.bmp --from V210 --size 1920x1080
  vela convert photo.bmp sharp.uyvy --to UYVY --sharpen-luma 0.25)";

constexpr const char *formatsFooter =
    R"(bits: of a sample, the fewest; 32 is float. bytes: of each plane, for a pixel or for so many pixels x lines. ffmpeg:
the pixel formats of the same bytes; those with an x, rgb555le and rgb444le leave the alpha unused. 'vela convert' uses
the conversions between YUV and grey, which pass luma on as it is, only if YUV has the full range.)";

} // namespace

void addConvertCommand(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<ConvertOptions>();
    CLI::App &command = *app.add_subcommand("convert", "Convert raw video frames and pictures between pixel layouts");
    command.add_option("IN", options->input, "Raw frames, or a picture")->type_name("")->required();
    command.add_option("OUT", options->output, "The file for the result")->type_name("")->required();
    command.add_option("--from", options->from, "Layout of raw frames in IN")->type_name("LAYOUT");
    command
        .add_option("--to", options->to, "Layout of the result (default for BMP: BGRA32 if there is alpha, or BGR24)")
        ->type_name("LAYOUT");
    command.add_option("--size", options->size, "Width and height of raw frames in IN")->type_name("WxH");
    command.add_option("--matrix", options->matrix, "Which YUV it is")
        ->type_name("bt601|bt709|bt2020|smpte240m")
        ->check(CLI::IsMember(namesOf(matrices, [](const Named &matrix) { return matrix.name; })).description(""))
        ->capture_default_str();
    command.add_option("--range", options->range, "Ranges of YUV and of RGB, limited or full")
        ->type_name("YUV:RGB")
        ->check(CLI::IsMember(namesOf(ranges, [](const char *range) { return range; })).description(""))
        ->capture_default_str();
    command.add_option("--alpha", options->alpha, "Alpha of pixels that had none, 0 to 255 (default: 255)")
        ->type_name("A")
        ->check(CLI::Range(0, opaque).description(""));
    command.add_option("--sharpen-luma", options->sharpenLuma, "Sharpen luma, by 1/16 to 1")->type_name("AMOUNT");
    addNumber(command, "--runs", options->runs, 1, 1000, "Timed runs over every frame, 1 to 1000");
    addThreads(command, options->threads);
    command.footer(convertFooter);
    command.callback([options, &session] { runConvert(*options, session); });
}

void addFormatsCommand(CLI::App &app, Session &session)
{
    const auto layout = std::make_shared<std::string>();
    CLI::App &command = *app.add_subcommand("formats", "List pixel layouts and the direct conversions between them");
    command.add_option("LAYOUT", *layout, "List only the conversions of this layout")->type_name("");
    command.footer(formatsFooter);
    command.callback([layout, &session] { runFormats(*layout, session); });
}

} // namespace host
