// vela audio as its users meet it. Files come from libsndfile and are read back through it; what they should hold is
// worked out in plain double arithmetic.
#include "sounds.hpp"

#include <limits>
#include <regex>

namespace {

namespace fs = std::filesystem;
using namespace vela::test;

// Whether a file of this format may hold `got` for a value that floats brought close to `wanted`.
bool isHeldAs(double got, double wanted, const Format &format)
{
    constexpr double relative = 4e-7; // a few roundings of floats
    const double error = relative * std::max(1.0, std::abs(wanted));
    if (format.bits == 0)
        return std::abs(got - wanted) <= error;
    const double step = std::ldexp(1.0, 1 - format.bits);
    if (wanted > 1 - step)
        return got > 1 - step - error && got < 1;
    const double inRange = std::clamp(wanted, -1.0, 1.0);
    const double lost = (std::abs(inRange) - std::abs(got)); // cut off towards zero: less than a step
    return lost > -error - 1e-15 && lost < step + error && (got == 0 || (got > 0) == (wanted > 0));
}

void expectHeld(const FileContents &file, const Sound &wanted, const Format &format)
{
    ASSERT_EQ(file.format, SF_FORMAT_WAV | format.subtype);
    ASSERT_EQ(file.sound.channels, wanted.channels);
    ASSERT_EQ(file.sound.rate, wanted.rate);
    ASSERT_EQ(file.sound.samples.size(), wanted.samples.size());
    for (std::size_t i = 0; i < wanted.samples.size(); ++i)
        ASSERT_TRUE(isHeldAs(file.sound.samples[i], wanted.samples[i], format))
            << "sample " << i << ": " << file.sound.samples[i] << " for " << wanted.samples[i];
}

std::string listOf(const std::vector<double> &values)
{
    std::string list;
    for (const double value : values)
        list += (list.empty() ? "" : ",") + std::to_string(value);
    return list;
}

TEST_F(Audio, ConvertsEveryFormatIntoEveryOther)
{
    for (const int channels : {1, 2, 3}) {
        for (const Format &from : formats) {
            // Floats hold 24 bits, so these inputs do too.
            Sound input = noise(1001, channels, from.bits > 24 ? s24 : from, 1);
            input.samples[0] = -1;
            input.samples[1] = from.bits == 0 ? 1 : heldBy(from.bits > 24 ? s24 : from, 1);
            const std::string in = write("in.wav", input, from);
            for (const Format &to : formats) {
                const Outcome outcome = audio("--format " + std::string(to.name) + ' ' + in + ' ' + quoted("out.wav"));
                ASSERT_EQ(outcome.status, 0) << outcome.errors;
                Sound wanted = input;
                for (double &sample : wanted.samples)
                    sample = to.bits > 24 ? std::min(sample, std::nextafterf(1, 0) * 1.0) : heldBy(to, sample);
                const FileContents file = result();
                EXPECT_EQ(file.format, SF_FORMAT_WAV | to.subtype);
                EXPECT_EQ(file.sound.channels, channels);
                EXPECT_TRUE(file.sound.samples == wanted.samples)
                    << from.name << " to " << to.name << ", " << channels << " channels";
                EXPECT_FALSE(file.hasPeakChunk) << "nobody told libsndfile the peak";
                EXPECT_FALSE(contains(outcome.output, "limited")) << "full scale itself is not beyond it";
            }
        }
    }
}

TEST_F(Audio, KeepsTheFormatOfTheFirstInput)
{
    const Sound sound = noise(100, 1, u8, 1);
    ASSERT_EQ(audio(write("a.wav", sound, s24) + ' ' + write("b.wav", sound, u8) + ' ' + quoted("out.wav")).status, 0);
    EXPECT_EQ(result().format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
}

TEST_F(Audio, MixesWithGains)
{
    struct Input {
        Format format;
        std::size_t frames;
    };
    struct Case {
        int channels;
        std::vector<Input> inputs;
        std::vector<double> gains; // none, one for all, or one for each
        Format output;
    };
    // More than one block, with a rest; sounds that end in the middle of a block, and at the end of one.
    const Case cases[] = {
        {1, {{s16, 1}}, {-3}, s16},
        {1, {{s16, 40001}}, {-6.5}, f32},
        {1, {{f64, 40001}, {f32, 20000}}, {0, -12}, f64},
        {1, {{f32, 16384}, {f32, 32768}, {s24, 33000}}, {-10, -10.5, 3}, s24},
        {2, {{s16, 20001}, {s24, 8192}}, {-7, -6}, s16},
        {2, {{u8, 9999}, {s32, 10000}}, {}, u8},
        {2, {{u8, 9999}, {s32, 10000}}, {-1}, s32},
        {6, {{s24, 7777}, {f32, 7}}, {-20, 2}, s24},
        {300, {{s16, 99}, {f32, 120}}, {-20, -30}, f64},
    };
    for (const Case &wanted : cases) {
        std::vector<Sound> inputs;
        std::string names;
        for (const Input &input : wanted.inputs) {
            const auto number = static_cast<unsigned>(inputs.size());
            inputs.push_back(noise(input.frames, wanted.channels, input.format, number));
            names += write("in" + std::to_string(number) + ".wav", inputs.back(), input.format) + ' ';
        }
        std::vector<double> gains = wanted.gains;
        if (gains.size() < inputs.size())
            gains.assign(inputs.size(), gains.empty() ? 0 : gains.front());
        const Outcome outcome =
            audio("--format " + std::string(wanted.output.name) + ' ' +
                  (wanted.gains.empty() ? "" : "--gain " + listOf(wanted.gains)) + ' ' + names + quoted("out.wav"));
        ASSERT_EQ(outcome.status, 0) << outcome.errors;
        SCOPED_TRACE(names);
        expectHeld(result(), mixOf(inputs, gains), wanted.output);
    }
}

TEST_F(Audio, LimitsToFullScaleAndCounts)
{
    const float largest = std::nextafterf(1, 0);
    const Sound input{2, 48000, {1, -1, 1.25, -1.5, 0.5, -0.5, largest, -largest, 1e5, -1e5, 0, -0.0}};
    const std::vector<double> limited{largest, -1, largest, -1, 0.5, -0.5, largest, -largest, largest, -1, 0, 0};
    const std::string in = write("in.wav", input, f32);
    for (const Format &format : {u8, s16, s24, s32}) {
        const Outcome outcome = audio(in + ' ' + quoted("out.wav") + " --format " + format.name);
        ASSERT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_TRUE(contains(outcome.output, "\n4 samples beyond full scale")) << outcome.output;
        expectHeld(result(), {2, 48000, limited}, format);
    }
    const Outcome floats = audio(in + ' ' + quoted("out.wav"));
    EXPECT_FALSE(contains(floats.output, "limited")) << floats.output;
    EXPECT_EQ(result().sound.samples, input.samples);
}

TEST_F(Audio, NormalizesTheMix)
{
    const std::vector<Sound> inputs{noise(30000, 2, s16, 1, 0.01), noise(17000, 2, s16, 2, 0.02)};
    const std::string names =
        write("a.wav", inputs[0], s16) + ' ' + write("b.wav", inputs[1], s16) + ' ' + quoted("out.wav") + ' ';
    for (const double level : {-1.0, 0.0, -40.0}) {
        for (const Format &format : {s16, f32}) {
            Sound wanted = mixOf(inputs, {3, -5});
            const double gain = fromDecibels(level) / peakOf(wanted);
            for (double &sample : wanted.samples)
                sample *= gain;
            const Outcome outcome =
                audio(names + "--gain 3,-5 --normalize " + std::to_string(level) + " --format " + format.name);
            ASSERT_EQ(outcome.status, 0) << outcome.errors;
            expectHeld(result(), wanted, format);
            EXPECT_FALSE(contains(outcome.output, "limited")) << outcome.output;
            char shown[32];
            std::snprintf(shown, sizeof(shown), " %+.2f ", 20 * std::log10(gain));
            EXPECT_TRUE(contains(outcome.output, shown)) << shown << outcome.output;
        }
    }
}

// A row of the table of sounds: the last three columns are channel, peak and RMS.
struct ShownLevel {
    int channel;
    double peak;
    double rms;
};

std::vector<ShownLevel> shownLevels(const std::string &output)
{
    std::vector<ShownLevel> levels;
    std::istringstream lines(output.substr(output.find('\n') + 1));
    const std::regex row(" (\\d+) +(-?[0-9.inf]+) +(-?[0-9.inf]+)$");
    std::smatch match;
    for (std::string line; std::getline(lines, line) && !line.empty();)
        if (std::regex_search(line, match, row))
            levels.push_back({std::stoi(match[1]), std::stod(match[2]), std::stod(match[3])});
    return levels;
}

void expectLevels(const std::vector<ShownLevel> &shown, const Sound &sound)
{
    const auto channels = static_cast<std::size_t>(sound.channels);
    ASSERT_EQ(shown.size(), channels);
    const auto isShownAs = [](double number, double amplitude) {
        const double decibels = 20 * std::log10(amplitude);
        return std::isinf(decibels) ? number == decibels : std::abs(number - decibels) < 0.00501;
    };
    for (std::size_t c = 0; c < channels; ++c) {
        double peak = 0;
        double squares = 0;
        for (std::size_t i = c; i < sound.samples.size(); i += channels) {
            peak = std::max(peak, std::abs(sound.samples[i]));
            squares += sound.samples[i] * sound.samples[i];
        }
        const double rms = std::sqrt(squares / static_cast<double>(sound.frames()));
        EXPECT_EQ(shown[c].channel, static_cast<int>(c) + 1);
        EXPECT_TRUE(isShownAs(shown[c].peak, peak)) << shown[c].peak << " for " << peak;
        EXPECT_TRUE(isShownAs(shown[c].rms, rms)) << shown[c].rms << " for " << rms;
    }
}

TEST_F(Audio, ShowsTheLevelsOfItsFiles)
{
    for (const int channels : {1, 2, 5}) {
        Sound quiet = noise(33333, channels, s24, 3, 0.01);
        for (std::size_t i = 1; channels > 1 && i < quiet.samples.size(); i += static_cast<std::size_t>(channels))
            quiet.samples[i] = 0; // a channel of silence
        for (const Format &format : {u8, s16, f32}) {
            const Outcome outcome =
                audio(write("in.wav", quiet, s24) + ' ' + quoted("out.wav") + " --gain 9 --format " + format.name);
            ASSERT_EQ(outcome.status, 0) << outcome.errors;
            const std::vector<ShownLevel> shown = shownLevels(outcome.output);
            ASSERT_EQ(shown.size(), 2 * static_cast<std::size_t>(channels)) << outcome.output;
            expectLevels({shown.begin(), shown.begin() + channels}, quiet);
            expectLevels({shown.begin() + channels, shown.end()}, result().sound); // after the rounding of its format
        }
    }
}

TEST_F(Audio, ShowsFormatsAndKernels)
{
    Sound sound = noise(22050, 2, s16, 1);
    sound.rate = 44100;
    const Outcome outcome =
        audio(write("in.wav", sound, s16) + ' ' + quoted("out.wav") + " --normalize -1 --format s24");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    for (const char *row :
         {"in.wav +s16 +2 +44100 +0\\.500 +\\+0\\.00 +1 ", "out.wav +s24 +2 +44100 +0\\.500 +\\+?-?[0-9.]+ +1 "})
        EXPECT_TRUE(std::regex_search(outcome.output, std::regex(row))) << row << '\n' << outcome.output;
    for (const char *kernel : {"clear +MemFill32 +mem.fillOps 2", "to float +ConvertS16ToF32 +mem.sampleFormatOps 11",
                               "split +MemDeinterleave32 +mem.miscOps 26", "peak +MemReduceF32 +mem.arithOps 40",
                               "RMS +MemSumSquaresF32 +mem.arithOps 38", "gain and mix +MemGainAddF32 +mem.miscOps 30",
                               "normalize +MemScaleF32ToF32 +mem.miscOps 51", "join +MemPackOp25 +mem.miscOps 25",
                               "from float +ConvertF32ToS24 +mem.sampleFormatOps 20"})
        EXPECT_TRUE(std::regex_search(outcome.output, std::regex(kernel + std::string(" +[A-Z0-9]+ +[1-9][0-9]*\n"))))
            << kernel << '\n'
            << outcome.output;
}

TEST_F(Audio, ReadsTheRelativesOfWav)
{
    const Sound sound = noise(1000, 2, s16, 1);
    for (const int container : {SF_FORMAT_WAVEX, SF_FORMAT_RF64}) {
        writeSound(path("in.wav"), sound, container | SF_FORMAT_PCM_16);
        ASSERT_EQ(audio(quoted("in.wav") + ' ' + quoted("out.wav")).status, 0);
        EXPECT_EQ(result().sound.samples, sound.samples);
    }
}

TEST_F(Audio, LeavesOutWhatFollowsTheSamples)
{
    const Sound sound = noise(999, 1, u8, 1);
    sf_set_string(writeSound(path("in.wav"), sound, SF_FORMAT_WAV | SF_FORMAT_PCM_U8).get(), SF_STR_COMMENT,
                  "a chunk behind the samples");
    ASSERT_TRUE(contains(contentsOf(path("in.wav")), "a chunk behind"));
    ASSERT_EQ(audio(quoted("in.wav") + ' ' + quoted("out.wav")).status, 0);
    EXPECT_EQ(result().sound.samples, sound.samples);
    EXPECT_FALSE(contains(contentsOf(path("out.wav")), "a chunk behind"));
}

TEST_F(Audio, ProblemsAreOneLineAndLeaveTheOutputAlone)
{
    const Sound sound = noise(50000, 2, s16, 1);
    const Sound mono = noise(10, 1, s16, 1);
    Sound slow = sound;
    slow.rate = 44100;
    Sound broken = sound;
    broken.samples.back() = std::numeric_limits<double>::quiet_NaN();
    Sound endless = sound;
    endless.samples.back() = std::numeric_limits<double>::infinity();

    const std::string good = write("good.wav", sound, s16);
    const std::string out = ' ' + quoted("out.wav");
    const auto other = [&](const std::string &name, int format) {
        writeSound(path(name), sound, format);
        return quoted(name);
    };
    fs::create_directory(path("directory.wav"));
    fs::create_symlink(path("good.wav"), path("link.wav"));
    writeFile("taken.wav.part", {1});

    struct Case {
        std::string arguments;
        int status;
        std::string says;
    };
    const Case cases[] = {
        {"", 2, "FILES"},
        {good, 2, "FILES"},
        {good + out + " --format s12", 2, "s12"},
        {good + out + " --gain loud", 2, "--gain"},
        {good + out + " --gain 121", 2, "--gain"},
        {good + out + " --gain 1,2", 2, "2 values, but there is 1 input"},
        {good + ' ' + good + ' ' + good + out + " --gain 1,2", 2, "2 values, but there are 3 inputs"},
        {good + out + " --normalize -121", 2, "--normalize"},
        {"missing.wav" + out, 1, "cannot read 'missing.wav': no such file"},
        {quoted("directory.wav") + out, 1, "not a file"},
        {writeFile("text.wav", Bytes(100, 'x')) + out, 1, "not a WAV file"},
        {writeFile("empty.wav", {}) + out, 1, "not a WAV file"},
        {write("silent.wav", {1, 48000, {}}, s16) + out, 1, "no samples"},
        {other("sound.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16) + out, 1, "not a WAV file but AIFF"},
        {other("big.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG) + out, 1, "highest byte first"},
        {other("ulaw.wav", SF_FORMAT_WAV | SF_FORMAT_ULAW) + out, 1, "compressed: U-Law"},
        {write("broken.wav", broken, f32) + out, 1, "no numbers"},
        {write("endless.wav", endless, f64) + out, 1, "beyond 120 dBFS"},
        {good + ' ' + write("mono.wav", mono, s16) + out, 1, "2 channels at 48000 Hz, with "},
        {good + ' ' + write("slow.wav", slow, s16) + out, 1, "2 channels at 44100 Hz"},
        {write("zeros.wav", {1, 48000, std::vector<double>(100)}, s16) + out + " --normalize -1", 1, "silence"},
        {good + ' ' + good, 1, "replace the input"},
        {good + ' ' + quoted("link.wav"), 1, "replace the input"},
        {quoted("mono.wav") + ' ' + good + ' ' + good, 1, "replace the input"},
        {good + ' ' + quoted("directory.wav"), 1, "something else of that name"},
        {good + ' ' + quoted("missing/out.wav"), 1, "cannot write "},
        {good + ' ' + quoted("taken.wav"), 1, "is in the way"},
    };
    for (const Case &wanted : cases) {
        writeFile("out.wav", {1, 2, 3});
        const Outcome outcome = audio(wanted.arguments);
        EXPECT_EQ(outcome.status, wanted.status) << wanted.arguments;
        EXPECT_TRUE(contains(outcome.errors, wanted.says)) << wanted.arguments << ": " << outcome.errors;
        EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
        EXPECT_EQ(outcome.output, "") << wanted.arguments;
        EXPECT_EQ(contentsOf(path("out.wav")), "\1\2\3") << wanted.arguments;
        EXPECT_FALSE(fs::exists(path("out.wav.part"))) << wanted.arguments;
    }
    EXPECT_EQ(readSound(path("good.wav")).sound.samples, sound.samples);
    EXPECT_EQ(contentsOf(path("taken.wav.part")), "\1");
}

TEST_F(Audio, FullDisksLeaveTheOldFile)
{
    const std::string in = write("in.wav", noise(100000, 1, s16, 1), s16);
    writeFile("out.wav", {1, 2, 3});
    // A limit for the size of files stands for the end of the disk.
    const Outcome outcome = run("audio " + in + ' ' + quoted("out.wav"), "trap '' XFSZ; ulimit -f 64; ");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.errors, "is the disk full?")) << outcome.errors;
    EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
    EXPECT_EQ(contentsOf(path("out.wav")), "\1\2\3");
    EXPECT_FALSE(fs::exists(path("out.wav.part")));
}

TEST_F(Audio, RefusesWhatIsTooLongForWav)
{
    // A header that promises 3 GiB of bytes, and a file without the blocks to hold them.
    const std::string in = write("in.wav", {1, 48000, std::vector<double>(16)}, u8);
    constexpr std::uint32_t dataBytes = 3u << 30;
    std::fstream file(path("in.wav"), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(40);
    for (int i = 0; i < 4; ++i)
        file.put(static_cast<char>(dataBytes >> (8 * i)));
    file.close();
    fs::resize_file(path("in.wav"), 44 + std::uintmax_t{dataBytes});

    // The limit for the size of files keeps a program that does not refuse from filling the disk.
    const Outcome outcome =
        run("audio " + in + ' ' + quoted("out.wav") + " --format s16", "trap '' XFSZ; ulimit -f 64; ");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.errors, "4 GiB")) << outcome.errors;
    EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
    EXPECT_FALSE(fs::exists(path("out.wav.part")));
}

TEST_F(Audio, ReplacesAnOldFile)
{
    const Sound sound = noise(100, 1, s16, 1);
    writeFile("out.wav", Bytes(100000, 7));
    ASSERT_EQ(audio(write("in.wav", sound, s16) + ' ' + quoted("out.wav")).status, 0);
    EXPECT_EQ(result().sound.samples, sound.samples);
    EXPECT_FALSE(fs::exists(path("out.wav.part")));
}

} // namespace
