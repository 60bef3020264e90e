// vela audio: sound files mixed with gains, filtered, upsampled, normalized, and written in a sample format of choice.
#include "commands.hpp"
#include "failure.hpp"
#include "filter_kernels.hpp"
#include "paths.hpp"
#include "rows.hpp"
#include "samples.hpp"
#include "table.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>

namespace host {
namespace {

// 64 KiB of floats: what a step leaves is still in the second-level cache when the next one takes it.
constexpr std::size_t samplesOfBlock = 16384;
constexpr double largestGain = 120; // dB, either way
// A float sample beyond this (120 dBFS) is not sound. Mixes and their squares then stay far below the end of floats.
constexpr float largestSample = 1e6f;
constexpr float largestFiltered = 1e12f; // 240 dBFS: the same for what filters make of it

struct AudioOptions {
    std::vector<std::string> files; // the inputs and the output
    std::string format;
    std::vector<double> gains;
    std::vector<std::string> biquads;
    bool upsample4 = false;
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

std::vector<Section> sectionsFor(const AudioOptions &options, int rate)
{
    std::vector<Section> sections;
    for (const std::string &text : options.biquads) {
        const Filter filter = parseFilter(text);
        if (filter.frequency >= rate / 2.0)
            throw UsageError("--biquad: '" + text + "' is not below half the rate of " + std::to_string(rate) + " Hz");
        sections.push_back(sectionOf(filter, rate));
    }
    return sections;
}

int upsampledRate(int rate)
{
    if (rate > std::numeric_limits<int>::max() / Upsampler::factor)
        throw Failure("a WAV file cannot say four times " + std::to_string(rate) + " Hz");
    return rate * Upsampler::factor;
}

// The only input of the first filter, if that can take it as it is in its file: nothing needs to be mixed then.
std::optional<FileSamples> fileToFilter(const std::vector<Track> &tracks)
{
    const Track &track = tracks.front();
    if (tracks.size() > 1 || !filtersTake(track.file.format().type))
        return {};
    return FileSamples{track.file.format().type, amplitude(track.gain)};
}

std::size_t framesOfBlock(int channels, bool upsampled)
{
    const std::size_t frames =
        samplesOfBlock / static_cast<std::size_t>(channels) / (upsampled ? Upsampler::factor : 1);
    return std::max(frames, Upsampler::framesThatWait);
}

class Mixer {
public:
    Mixer(const AudioOptions &options, const Library &library)
        : tracks(openTracks(options)), format(outputFormat(options, tracks.front().file)),
          channels(tracks.front().file.channels()), rate(tracks.front().file.rate()),
          factor(options.upsample4 ? Upsampler::factor : 1), blockFrames(framesOfBlock(channels, options.upsample4)),
          outputBlockFrames(blockFrames * static_cast<std::size_t>(factor)), steps(library),
          kernels(library, steps, channels, outputBlockFrames), bus(channels, blockFrames),
          input(channels, outputBlockFrames), upsampled(channels, options.upsample4 ? outputBlockFrames : 0),
          bytes(outputBlockFrames * static_cast<std::size_t>(channels) * sizeof(double)),
          output(static_cast<std::size_t>(channels))
    {
        for (const Track &track : tracks)
            frames = std::max(frames, track.file.frames());
        const std::vector<Section> sections = sectionsFor(options, rate);
        const std::optional<FileSamples> file = fileToFilter(tracks);
        if (!sections.empty())
            cascade.emplace(library, steps, sections, channels, blockFrames, file);
        if (options.upsample4)
            upsampler.emplace(library, steps, channels, blockFrames, cascade ? std::nullopt : file);
        mixes = !file || (!cascade && !upsampler);
    }

    void write(const std::filesystem::path &path, std::optional<double> normalizedPeak)
    {
        WavWriter file(path, format, channels, outputRate(), frames * factor);
        if (upsampler && (cascade || mixes))
            upsamplerPeak = peakOf([&](auto use) { forEachFiltered("measuring", use); });
        const double gain = normalizedPeak ? gainTo(*normalizedPeak) : 1;
        forEachBlock("writing", [&](Planes &sound, std::size_t count) {
            if (normalizedPeak)
                kernels.scale(sound, gain, count);
            if (format.wholeNumbers)
                samplesLimited += kernels.limit(sound, count);
            kernels.toFile(bytes.data(), sound, format, count);
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
    int outputRate() const { return upsampler ? upsampledRate(rate) : rate; }

    // The gain that brings the peak of the sound to a level; the sound is made once to find it.
    double gainTo(double peakInDecibels)
    {
        const float peak = peakOf([&](auto use) { forEachBlock("measuring", use); });
        if (peak == 0)
            throw Failure("silence cannot be normalized");
        const double gain = amplitude(peakInDecibels) / peak;
        normalizingGain = decibels(gain);
        return gain;
    }

    // Of the blocks with which forEach(use) calls use.
    template <class ForEach> float peakOf(ForEach forEach)
    {
        std::vector<Level> levels(output.size());
        forEach([&](Planes &sound, std::size_t count) { kernels.measure(levels, sound, count); });
        return std::ranges::max(levels, {}, &Level::peak).peak;
    }

    // Makes the sound, from the start of all inputs to the end of the longest, and calls use(sound, frames) with every
    // block of it.
    template <class Use> void forEachBlock(const char *what, Use use)
    {
        if (!upsampler)
            return forEachFiltered(what, use);
        const auto useUpsampled = [&](std::size_t count) {
            if (count > 0)
                use(upsampled, count);
        };
        upsampler->restart(upsamplerPeak);
        forEachFiltered(what, [&](Planes &sound, std::size_t count) {
            useUpsampled(cascade || mixes ? upsampler->upsample(upsampled, sound, count)
                                          : upsampler->upsample(upsampled, bytes.data(), count));
        });
        useUpsampled(upsampler->finish(upsampled));
    }

    // The same before it is upsampled.
    template <class Use> void forEachFiltered(const char *what, Use use)
    {
        for (Track &track : tracks) {
            track.file.rewind();
            track.levels.assign(static_cast<std::size_t>(channels), {});
        }
        if (cascade)
            cascade->restart();
        int percentShown = -1;
        for (std::int64_t done = 0; done < frames;) {
            const std::int64_t count = std::min(static_cast<std::int64_t>(blockFrames), frames - done);
            mix(count);
            if (cascade)
                filter(static_cast<std::size_t>(count));
            use(bus, static_cast<std::size_t>(count));
            done += count;
            if (const int percent = static_cast<int>(100 * done / frames); percent != percentShown)
                progress.show(std::string(what) + ": " + std::to_string(percentShown = percent) + " %");
        }
        progress.show("");
    }

    // Mixes a block of all inputs on the bus; or, if a filter takes the only one, leaves it as it is in its file.
    void mix(std::int64_t count)
    {
        if (mixes)
            kernels.clear(bus, static_cast<std::size_t>(count));
        for (Track &track : tracks) {
            const std::size_t read = readTrack(track, count);
            if (mixes && read > 0)
                kernels.mixInto(bus, input, static_cast<float>(amplitude(track.gain)), read);
        }
    }

    std::size_t readTrack(Track &track, std::int64_t framesWanted)
    {
        const auto count = static_cast<std::size_t>(track.file.read(bytes.data(), framesWanted));
        if (count == 0)
            return 0;
        kernels.fromFile(input, bytes.data(), track.file.format(), count);
        kernels.measure(track.levels, input, count);
        checkSamples(track);
        return count;
    }

    void filter(std::size_t count)
    {
        if (mixes)
            cascade->filter(bus, bus, count);
        else
            cascade->filter(bus, bytes.data(), count);
        std::vector<Level> levels(output.size());
        kernels.measure(levels, bus, count);
        for (const Level &level : levels)
            if (std::isnan(level.sumOfSquares) || level.peak > largestFiltered)
                throw Failure("the filters bring the sound beyond 240 dBFS");
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
            addSound(table, track.file.path(), track.file.format(), rate, track.file.frames(),
                     formatted("%+.2f", track.gain), track.levels);
        addSound(table, path, format, outputRate(), frames * factor,
                 normalized ? formatted("%+.2f", normalizingGain) : "", output);
        table.print(std::cout);
    }

    // A row for every channel.
    void addSound(Table &table, const std::filesystem::path &path, const SampleFormat &itsFormat, int itsRate,
                  std::int64_t itsFrames, const std::string &gain, const std::vector<Level> &levels) const
    {
        std::vector<std::string> cells{utf8(path),
                                       itsFormat.name,
                                       std::to_string(channels),
                                       std::to_string(itsRate),
                                       formatted("%.3f", static_cast<double>(itsFrames) / itsRate),
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
        for (const Step &step : steps.all())
            addStep(table, step.name, step.slot, formatted("%.0f", step.megasamplesPerSecond()));
        table.print(std::cout);
    }

    std::vector<Track> tracks;
    const SampleFormat &format;
    int channels;
    int rate; // of the inputs, as the frames are
    int factor;
    std::size_t blockFrames;
    std::size_t outputBlockFrames;
    std::int64_t frames = 0;
    Steps steps;
    SampleKernels kernels;
    std::optional<Cascade> cascade;
    std::optional<Upsampler> upsampler;
    bool mixes = true;
    float upsamplerPeak = 1; // of the planes that are upsampled
    Planes bus;
    Planes input;
    Planes upsampled;
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
    R"(Inputs are WAV files of uncompressed samples, all of the same rate and number of channels. The order of the work:
gains, mix, filters, upsampling, normalizing, limit, OUT.wav. The mix is made in 32-bit floats and is as long as the
longest input. Whole numbers are limited to full scale and cut off towards zero. Until it is complete, OUT.wav has the
name OUT.wav.part.

--biquad takes lowpass, highpass, bandpass, notch, peak, lowshelf or highshelf, a frequency in hertz, a Q (0.7071 if
there is none), and for the last three a gain in decibels; several are applied one after the other. They are the
second-order filters of R. Bristow-Johnson's Audio EQ Cookbook (https://www.w3.org/TR/audio-eq-cookbook/), run in
double. --upsample4 keeps frequencies up to 0.34 of the old rate within 0.01 dB and puts images 60 dB down; it delays
nothing. Filters and upsampling take a single input of 16 to 32 bits as it is in the file.

Levels are those of the files, after the rounding of their formats; 0 dBFS is a sample, or an RMS, of 1. Speeds are
those of the median block, for samples that a kernel writes.

Examples:
  vela audio voice.wav louder.wav --gain 6
  vela audio voice.wav music.wav mix.wav --gain 0,-12 --normalize -1 --format s24
  vela audio hum.wav clean.wav --biquad notch:50:10 --biquad highshelf:8000:0.7:-6 --upsample4)";

} // namespace

void addAudioCommand(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<AudioOptions>();
    CLI::App &command =
        *app.add_subcommand("audio", "Mix sound files with gains, filter and upsample them, and convert their samples");
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
    command.add_option("--biquad", options->biquads, "Filter the mix; may be given several times")
        ->type_name("KIND:FREQUENCY[:Q[:GAIN]]")
        ->allow_extra_args(false);
    command.add_flag("--upsample4", options->upsample4, "Four times the sample rate");
    command.add_option("--normalize", options->normalize, "Bring the peak of the result to this level in dBFS")
        ->type_name("DB")
        ->check(CLI::Range(-largestGain, largestGain).description(""));
    command.footer(footer);
    command.callback([options, &session] { runAudio(*options, session); });
}

} // namespace host
