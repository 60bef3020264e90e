// vela audio: sound files mixed with gains, normalized, and written in a sample format of choice.
#include "commands.hpp"
#include "failure.hpp"
#include "paths.hpp"
#include "rows.hpp"
#include "samples.hpp"
#include "table.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>

namespace host {
namespace {

// 64 KiB of floats: what a step leaves is still in the second-level cache when the next one takes it.
constexpr std::size_t samplesOfBlock = 16384;
constexpr double largestGain = 120; // dB, either way
// A float sample beyond this (120 dBFS) is not sound. Mixes and their squares then stay far below the end of floats.
constexpr float largestSample = 1e6f;

struct AudioOptions {
    std::vector<std::string> files; // the inputs and the output
    std::string format;
    std::vector<double> gains;
    std::optional<double> normalize;
};

// An input and what becomes of it.
struct Track {
    WavReader file;
    double gain; // dB
    std::vector<Level> levels;
};

std::string shape(const WavReader &file)
{
    return std::to_string(file.channels()) + (file.channels() == 1 ? " channel at " : " channels at ") +
           std::to_string(file.rate()) + " Hz";
}

void checkAlike(const WavReader &first, const WavReader &other)
{
    if (other.channels() != first.channels() || other.rate() != first.rate())
        throw Failure("cannot mix " + quoted(first.path()) + ", " + shape(first) + ", with " + quoted(other.path()) +
                      ", " + shape(other));
}

double gainOf(const AudioOptions &options, std::size_t input)
{
    if (options.gains.empty())
        return 0;
    return options.gains[options.gains.size() == 1 ? 0 : input];
}

std::vector<Track> openTracks(const AudioOptions &options)
{
    const std::size_t count = options.files.size() - 1;
    if (options.gains.size() > 1 && options.gains.size() != count)
        throw UsageError("--gain has " + std::to_string(options.gains.size()) + " values, but there " +
                         (count == 1 ? "is 1 input" : "are " + std::to_string(count) + " inputs"));
    std::vector<Track> tracks;
    for (std::size_t i = 0; i < count; ++i) {
        WavReader file(pathFromUtf8(options.files[i]));
        checkIsNotInput(pathFromUtf8(options.files.back()), file.path());
        if (!tracks.empty())
            checkAlike(tracks.front().file, file);
        tracks.push_back({std::move(file), gainOf(options, i), {}});
    }
    return tracks;
}

const SampleFormat &outputFormat(const AudioOptions &options, const WavReader &first)
{
    const auto chosen = std::ranges::find(sampleFormats, options.format, &SampleFormat::name);
    return chosen == sampleFormats.end() ? first.format() : *chosen;
}

void checkSamples(const Track &track)
{
    for (const Level &level : track.levels)
        if (std::isnan(level.sumOfSquares) || level.peak > largestSample)
            throw Failure("cannot read " + quoted(track.file.path()) +
                          ": it has samples that are no numbers, or beyond 120 dBFS");
}

class Mixer {
public:
    Mixer(const AudioOptions &options, const Library &library)
        : tracks(openTracks(options)), format(outputFormat(options, tracks.front().file)),
          channels(tracks.front().file.channels()), rate(tracks.front().file.rate()),
          blockFrames(std::max(samplesOfBlock / static_cast<std::size_t>(channels), std::size_t{1})),
          kernels(library, channels, blockFrames), bus(channels, blockFrames), input(channels, blockFrames),
          bytes(blockFrames * static_cast<std::size_t>(channels) * sizeof(double)),
          output(static_cast<std::size_t>(channels))
    {
        for (const Track &track : tracks)
            frames = std::max(frames, track.file.frames());
    }

    void write(const std::filesystem::path &path, std::optional<double> normalizedPeak)
    {
        WavWriter file(path, format, channels, rate, frames);
        const double gain = normalizedPeak ? gainTo(*normalizedPeak) : 1;
        forEachBlock("writing", [&](std::size_t count) {
            if (normalizedPeak)
                kernels.scale(bus, gain, count);
            if (format.wholeNumbers)
                samplesLimited += kernels.limit(bus, count);
            kernels.toFile(bytes.data(), bus, format, count);
            file.write(bytes.data(), static_cast<std::int64_t>(count));
            // The levels of the output are those of the file, with what its format has rounded.
            kernels.fromFile(input, bytes.data(), format, count);
            kernels.measure(output, input, count);
        });
        file.finish();
    }

    void print(const std::filesystem::path &path, bool normalized) const
    {
        printSounds(path, normalized);
        std::cout << '\n';
        printSteps();
        std::cout << '\n';
        if (samplesLimited > 0)
            std::cout << samplesLimited << (samplesLimited == 1 ? " sample" : " samples")
                      << " beyond full scale limited to it\n";
        std::cout << "wrote " << utf8(path) << '\n';
    }

private:
    // The gain that brings the peak of the mix to a level; the mix is made once to find it.
    double gainTo(double peakInDecibels)
    {
        std::vector<Level> levels(output.size());
        forEachBlock("measuring", [&](std::size_t count) { kernels.measure(levels, bus, count); });
        const float peak = std::ranges::max(levels, {}, &Level::peak).peak;
        if (peak == 0)
            throw Failure("silence cannot be normalized");
        const double gain = amplitude(peakInDecibels) / peak;
        normalizingGain = decibels(gain);
        return gain;
    }

    // Mixes all inputs from their start to the end of the longest, and calls use(frames) with every block on the bus.
    template <class Use> void forEachBlock(const char *what, Use use)
    {
        for (Track &track : tracks) {
            track.file.rewind();
            track.levels.assign(static_cast<std::size_t>(channels), {});
        }
        int percentShown = -1;
        for (std::int64_t done = 0; done < frames;) {
            const std::int64_t count = std::min(static_cast<std::int64_t>(blockFrames), frames - done);
            kernels.clear(bus, static_cast<std::size_t>(count));
            for (Track &track : tracks)
                mixIn(track, count);
            use(static_cast<std::size_t>(count));
            done += count;
            if (const int percent = static_cast<int>(100 * done / frames); percent != percentShown)
                progress.show(std::string(what) + ": " + std::to_string(percentShown = percent) + " %");
        }
        progress.show("");
    }

    void mixIn(Track &track, std::int64_t framesWanted)
    {
        const auto count = static_cast<std::size_t>(track.file.read(bytes.data(), framesWanted));
        if (count == 0)
            return;
        kernels.fromFile(input, bytes.data(), track.file.format(), count);
        kernels.measure(track.levels, input, count);
        checkSamples(track);
        kernels.mixInto(bus, input, static_cast<float>(amplitude(track.gain)), count);
    }

    void printSounds(const std::filesystem::path &path, bool normalized) const
    {
        using enum Table::Align;
        Table table({{"file"},
                     {"format"},
                     {"channels", right},
                     {"Hz", right},
                     {"seconds", right},
                     {"gain dB", right},
                     {"channel", right},
                     {"peak dBFS", right},
                     {"RMS dBFS", right}});
        for (const Track &track : tracks)
            addSound(table, track.file.path(), track.file.format(), track.file.frames(), formatted("%+.2f", track.gain),
                     track.levels);
        addSound(table, path, format, frames, normalized ? formatted("%+.2f", normalizingGain) : "", output);
        table.print(std::cout);
    }

    // A row for every channel.
    void addSound(Table &table, const std::filesystem::path &path, const SampleFormat &itsFormat,
                  std::int64_t itsFrames, const std::string &gain, const std::vector<Level> &levels) const
    {
        std::vector<std::string> cells{utf8(path),
                                       itsFormat.name,
                                       std::to_string(channels),
                                       std::to_string(rate),
                                       formatted("%.3f", static_cast<double>(itsFrames) / rate),
                                       gain};
        for (std::size_t channel = 0; channel < levels.size(); ++channel) {
            cells.push_back(std::to_string(channel + 1));
            cells.push_back(formatted("%.2f", decibels(levels[channel].peak)));
            cells.push_back(formatted("%.2f", decibels(levels[channel].rootMeanSquare())));
            table.addRow(cells);
            cells.assign(6, "");
        }
    }

    void printSteps() const
    {
        Table table = tableOfSteps("Msample/s");
        for (const Step &step : kernels.steps())
            addStep(table, step.name, step.slot, formatted("%.0f", step.megasamplesPerSecond()));
        table.print(std::cout);
    }

    std::vector<Track> tracks;
    const SampleFormat &format;
    int channels;
    int rate;
    std::size_t blockFrames;
    std::int64_t frames = 0;
    SampleKernels kernels;
    Planes bus;
    Planes input;
    std::vector<std::byte> bytes;
    std::vector<Level> output;
    std::int64_t samplesLimited = 0;
    double normalizingGain = 0;
    Progress progress;
};

void runAudio(const AudioOptions &options, Session &session)
{
    const std::filesystem::path output = pathFromUtf8(options.files.back());
    Mixer mixer(options, session.library());
    mixer.write(output, options.normalize);
    mixer.print(output, options.normalize.has_value());
}

std::vector<std::string> formatNames()
{
    std::vector<std::string> names(sampleFormats.size());
    std::ranges::transform(sampleFormats, names.begin(), &SampleFormat::name);
    return names;
}

// CLI11 gives several files one name.
struct UsageWithFiles : CLI::Formatter {
    std::string make_usage(const CLI::App *, std::string) const override
    {
        return "Usage: vela audio [OPTIONS] IN.wav... OUT.wav\n";
    }
};

constexpr const char *footer =
    R"(Inputs are WAV files of uncompressed samples, all of the same rate and number of channels. They are mixed in 32-bit
floats; the mix is as long as the longest. Whole numbers are limited to full scale and cut off towards zero. Until it
is complete, OUT.wav has the name OUT.wav.part.

Levels are those of the files, after the rounding of their formats; 0 dBFS is a sample, or an RMS, of 1. Speeds are
those of the median block.

Examples:
  vela audio voice.wav louder.wav --gain 6
  vela audio voice.wav music.wav mix.wav --gain 0,-12 --normalize -1 --format s24)";

} // namespace

void addAudioCommand(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<AudioOptions>();
    CLI::App &command = *app.add_subcommand("audio", "Mix sound files with gains, and convert their samples");
    command.formatter(std::make_shared<UsageWithFiles>());
    command.add_option("FILES", options->files, "The sounds to mix, and at the end the file for the result")
        ->type_name("")
        ->required()
        ->expected(2, CLI::detail::expected_max_vector_size);
    command.add_option("--format", options->format, "Samples of the result (default: those of the first input)")
        ->type_name("u8|s16|s24|s32|f32|f64")
        ->check(CLI::IsMember(formatNames()).description(""));
    command.add_option("--gain", options->gains, "Gain in decibels, of all inputs, or one for each: --gain -3,-6")
        ->type_name("DB")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Range(-largestGain, largestGain).description(""));
    command.add_option("--normalize", options->normalize, "Bring the peak of the mix to this level in dBFS")
        ->type_name("DB")
        ->check(CLI::Range(-largestGain, largestGain).description(""));
    command.footer(footer);
    command.callback([options, &session] { runAudio(*options, session); });
}

} // namespace host
