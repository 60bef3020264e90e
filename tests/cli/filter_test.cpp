// vela audio --biquad and --upsample4 as their users meet them, against plain recursions and Fourier sums in double.
#include "sounds.hpp"

#include <complex>
#include <numbers>
#include <regex>

namespace {

using namespace vela::test;
using std::numbers::pi;

constexpr int rate = 48000;

struct Sections {
    std::string option;
    std::array<double, 3> b;
    std::array<double, 3> a;
};

// The Audio EQ Cookbook, written down as it stands there.
Sections section(const std::string &kind, double frequency, double q, double gain = 0)
{
    const double w = 2 * pi * frequency / rate;
    const double c = std::cos(w);
    const double alpha = std::sin(w) / (2 * q);
    const double A = std::pow(10, gain / 40);
    const double s = 2 * std::sqrt(A) * alpha;
    const std::string option = " --biquad " + kind + ':' + std::to_string(frequency) + ':' + std::to_string(q);
    const std::array<double, 3> a{1 + alpha, -2 * c, 1 - alpha};
    if (kind == "lowpass")
        return {option, {(1 - c) / 2, 1 - c, (1 - c) / 2}, a};
    if (kind == "highpass")
        return {option, {(1 + c) / 2, -(1 + c), (1 + c) / 2}, a};
    if (kind == "bandpass")
        return {option, {alpha, 0, -alpha}, a};
    if (kind == "notch")
        return {option, {1, -2 * c, 1}, a};
    const std::string withGain = option + ':' + std::to_string(gain);
    if (kind == "peak")
        return {withGain, {1 + alpha * A, -2 * c, 1 - alpha * A}, {1 + alpha / A, -2 * c, 1 - alpha / A}};
    if (kind == "lowshelf")
        return {withGain,
                {A * ((A + 1) - (A - 1) * c + s), 2 * A * ((A - 1) - (A + 1) * c), A * ((A + 1) - (A - 1) * c - s)},
                {(A + 1) + (A - 1) * c + s, -2 * ((A - 1) + (A + 1) * c), (A + 1) + (A - 1) * c - s}};
    return {withGain,
            {A * ((A + 1) + (A - 1) * c + s), -2 * A * ((A - 1) + (A + 1) * c), A * ((A + 1) + (A - 1) * c - s)},
            {(A + 1) - (A - 1) * c + s, 2 * ((A - 1) - (A + 1) * c), (A + 1) - (A - 1) * c - s}};
}

Sound filtered(const Sound &sound, const Sections &by)
{
    Sound result = sound;
    const auto channels = static_cast<std::size_t>(sound.channels);
    for (std::size_t i = 0; i < sound.samples.size(); ++i) {
        const auto at = [&](const Sound &of, std::size_t back) {
            return i >= back * channels ? of.samples[i - back * channels] : 0;
        };
        double y = 0;
        for (std::size_t k = 0; k < 3; ++k)
            y += by.b[k] * at(sound, k);
        for (std::size_t k = 1; k < 3; ++k)
            y -= by.a[k] * at(result, k);
        result.samples[i] = y / by.a[0];
    }
    return result;
}

Sound sine(double frequency, double amplitude, std::size_t frames)
{
    Sound sound{1, rate, {}};
    for (std::size_t i = 0; i < frames; ++i)
        sound.samples.push_back(amplitude * std::sin(2 * pi * frequency * static_cast<double>(i) / rate));
    return sound;
}

// The amplitude and phase of a frequency that has whole periods in so many samples from here on; a sine has phase 0.
std::complex<double> fourierSum(const Sound &sound, double frequency, std::size_t first, std::size_t count)
{
    std::complex<double> sum = 0;
    for (std::size_t i = first; i < first + count; ++i)
        sum += sound.samples[i] * std::polar(2.0, -2 * pi * frequency * static_cast<double>(i) / sound.rate);
    return sum / static_cast<double>(count) * std::complex<double>(0, 1);
}

double decibels(double amplitude) { return 20 * std::log10(amplitude); }

using Filters = Audio;

TEST_F(Filters, FilterAsThePlainRecursionDoes)
{
    struct Case {
        std::vector<Format> inputs;
        int channels;
        std::vector<Sections> sections;
    };
    // More than one block, with a rest. Single inputs of whole numbers are filtered as they are in the file.
    const Case cases[] = {
        {{s16}, 1, {section("lowpass", 1000, 0.7)}},
        {{s24}, 2, {section("highpass", 3000, 2)}},
        {{s32}, 3, {section("bandpass", 440, 5)}},
        {{f32}, 2, {section("notch", 50, 1)}},
        {{f64}, 1, {section("peak", 8000, 1, 9)}},
        {{u8}, 2, {section("lowshelf", 200, 0.5, -12)}},
        {{s24}, 1, {section("highshelf", 5000, 0.9, 7)}},
        {{s24}, 6, {section("peak", 100, 3, -20), section("lowpass", 20000, 0.6), section("notch", 9000, 4)}},
        {{s16, s24, f32}, 2, {section("highpass", 30, 0.7), section("highshelf", 4000, 1, -6)}},
    };
    for (const Case &wanted : cases) {
        std::vector<Sound> inputs;
        std::string arguments;
        for (const Format &format : wanted.inputs) {
            const auto number = static_cast<unsigned>(inputs.size());
            inputs.push_back(noise(40001, wanted.channels, format.bits > 24 ? s24 : format, number, 0.3));
            arguments += write("in" + std::to_string(number) + ".wav", inputs.back(), format) + ' ';
        }
        Sound mix = mixOf(inputs, std::vector<double>(inputs.size(), -3.5));
        arguments += quoted("out.wav") + " --gain -3.5 --format f64";
        for (const Sections &filter : wanted.sections) {
            mix = filtered(mix, filter);
            arguments += filter.option;
        }
        const Outcome outcome = audio(arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.errors;
        const std::vector<double> got = result().sound.samples;
        ASSERT_EQ(got.size(), mix.samples.size());
        for (std::size_t i = 0; i < got.size(); ++i)
            ASSERT_NEAR(got[i], mix.samples[i], 1e-6) << arguments << ", sample " << i;
    }
}

// An impulse just ahead of a block's end reaches the next block by the history alone.
TEST_F(Filters, ImpulsesCrossTheEndsOfBlocks)
{
    const Sections filter = section("lowpass", 500, 20);
    for (const Format &format : {s16, s24, f32}) {
        for (const std::size_t place : {0u, 16382u, 16383u, 16384u, 20000u}) {
            Sound impulse{1, rate, std::vector<double>(20001)};
            impulse.samples[place] = 0.5;
            const Outcome outcome =
                audio(write("in.wav", impulse, format) + ' ' + quoted("out.wav") + " --format f32" + filter.option);
            ASSERT_EQ(outcome.status, 0) << outcome.errors;
            const std::vector<double> wanted = filtered(impulse, filter).samples;
            const std::vector<double> got = result().sound.samples;
            for (std::size_t i = 0; i < wanted.size(); ++i)
                ASSERT_NEAR(got[i], wanted[i], 1e-8) << format.name << " at " << place << ", sample " << i;
        }
    }
}

// What the names of filters promise, whatever their formulas.
TEST_F(Filters, PassAndStopWhatTheirNamesSay)
{
    struct Case {
        std::string filter;
        double frequency;
        double least; // dB
        double most;
    };
    const Case cases[] = {
        {"lowpass:1000", 1000, -3.02, -3},           {"lowpass:1000", 100, -0.01, 0.01},
        {"lowpass:1000", 10000, -50, -40},           {"highpass:1000", 1000, -3.02, -3},
        {"highpass:1000", 100, -40.1, -39.9},        {"highpass:1000", 10000, -0.01, 0.01},
        {"bandpass:1000:10", 1000, -0.01, 0.01},     {"bandpass:1000:10", 500, -25, -20},
        {"notch:1000:2", 1000, -500, -100},          {"notch:1000:2", 3000, -0.5, -0.1},
        {"peak:1000:2:12", 1000, 11.99, 12.01},      {"peak:1000:2:12", 20, -0.01, 0.01},
        {"lowshelf:1000:0.7:-9", 20, -9.01, -8.99},  {"lowshelf:1000:0.7:-9", 20000, -0.01, 0.01},
        {"highshelf:1000:0.7:6", 20000, 5.99, 6.01}, {"highshelf:1000:0.7:6", 20, -0.01, 0.01},
    };
    for (const Case &wanted : cases) {
        const std::string in = write("in.wav", sine(wanted.frequency, 0.1, 2 * rate), f32);
        ASSERT_EQ(audio(in + ' ' + quoted("out.wav") + " --biquad " + wanted.filter).status, 0);
        const double gain = decibels(std::abs(fourierSum(result().sound, wanted.frequency, rate, rate)) / 0.1);
        EXPECT_GE(gain, wanted.least) << wanted.filter << " at " << wanted.frequency;
        EXPECT_LE(gain, wanted.most) << wanted.filter << " at " << wanted.frequency;
    }
}

TEST_F(Filters, FourSamplesForOneWithoutDelayAndImages)
{
    struct Case {
        std::vector<Format> inputs;
        double gain; // dB
        std::string filter;
    };
    // Whole numbers go straight from the file, other sound as 32 bits: also where it lies far beyond full scale or
    // below.
    const Case cases[] = {{{s24}, 0, ""},  {{s32}, -6, ""},       {{f32}, 0, ""},
                          {{f32}, 70, ""}, {{s16, s24}, -90, ""}, {{s24}, 0, " --biquad peak:1000:1:0"}};
    constexpr std::size_t count = 4 * rate * 16 / 100; // whole periods of all frequencies here
    for (const Case &wanted : cases) {
        for (const double frequency : {100.0, 1000.0, 12000.0, 16300.0}) {
            std::string arguments;
            for (const Format &format : wanted.inputs)
                arguments += write(std::string(format.name) + ".wav", sine(frequency, 0.25, 9999), format) + ' ';
            const Outcome outcome = audio(arguments + quoted("out.wav") + " --upsample4 --format f32 --gain " +
                                          std::to_string(wanted.gain) + wanted.filter);
            ASSERT_EQ(outcome.status, 0) << outcome.errors;
            const Sound sound = result().sound;
            ASSERT_EQ(sound.rate, 4 * rate);
            ASSERT_EQ(sound.samples.size(), 4 * 9999u);
            SCOPED_TRACE(arguments + std::to_string(frequency));

            const auto partAt = [&](double f) {
                return fourierSum(sound, f, 4000, count) /
                       (0.25 * static_cast<double>(wanted.inputs.size()) * fromDecibels(wanted.gain));
            };
            const std::complex<double> passed = partAt(frequency);
            EXPECT_NEAR(decibels(std::abs(passed)), 0, 0.0101);
            EXPECT_NEAR(std::arg(passed), 0, 1e-4); // whatever the frequency: no delay
            for (const double image : {rate - frequency, rate + frequency, 2 * rate - frequency})
                EXPECT_LT(decibels(std::abs(partAt(image))), -60) << "image at " << image;
        }
    }
}

// So every block stands where it belongs, and so do the ends.
TEST_F(Filters, EveryFourthSampleIsOneOfTheInput)
{
    for (const int channels : {1, 2, 1000}) {
        for (const Format &format : {s16, s24, f32}) {
            for (const std::size_t frames : {1u, 5u, 6u, 7u, 4095u, 4096u, 4097u, 9001u}) {
                if (channels > 2 && frames > 7)
                    continue;
                const Sound sound = noise(frames, channels, format, 1);
                ASSERT_EQ(audio(write("in.wav", sound, format) + ' ' + quoted("out.wav") + " --upsample4 --format f32")
                              .status,
                          0);
                const std::vector<double> got = result().sound.samples;
                ASSERT_EQ(got.size(), 4 * sound.samples.size());
                for (std::size_t i = 0; i < sound.samples.size(); ++i) {
                    const std::size_t channel = i % static_cast<std::size_t>(channels);
                    ASSERT_NEAR(got[4 * (i - channel) + channel], sound.samples[i], 1e-7)
                        << format.name << ", " << channels << " channels, " << frames << " frames, sample " << i;
                }
            }
        }
    }
}

TEST_F(Filters, NormalizingAndLimitsComeLast)
{
    // A sine at a quarter of the rate, sampled at 45 degrees: its peaks lie between the samples, 3 dB above them.
    Sound between{1, rate, {}};
    for (int i = 0; i < 8000; ++i)
        between.samples.push_back((i / 2 % 2 ? -1 : 1) * 0.9);
    const std::string files = write("in.wav", between, s16) + ' ' + quoted("out.wav") + " --upsample4";
    const Outcome limited = audio(files);
    ASSERT_EQ(limited.status, 0) << limited.errors;
    EXPECT_TRUE(contains(limited.output, "samples beyond full scale limited")) << limited.output;
    const Outcome normalized = audio(files + " --normalize -2");
    EXPECT_FALSE(contains(normalized.output, "limited")) << normalized.output;
    EXPECT_NEAR(decibels(peakOf(result().sound)), -2, 0.001);

    ASSERT_EQ(audio(quoted("in.wav") + ' ' + quoted("out.wav") + " --normalize -2 --biquad peak:12000:1:20").status, 0);
    EXPECT_NEAR(decibels(peakOf(result().sound)), -2, 0.001);
}

TEST_F(Filters, ShowTheirKernels)
{
    struct Case {
        Format format;
        std::vector<std::string> rows;
    };
    const Case cases[] = {
        {s16, {"filter +AudioBiquadS16Strided +audio 4", "filter +AudioBiquadF64 +audio 3"}},
        {s24, {"filter +AudioBiquadS24Strided +audio 5"}},
        {s32, {"filter +AudioBiquadS32Strided +audio 6"}},
        {f32, {"to double +ConvertF32ToF64 +mem.sampleFormatOps 3", "upsample +AudioUpsample4S32 +audio 9"}},
    };
    const Sound sound = noise(5000, 2, s16, 1);
    const auto expectRow = [](const std::string &output, const std::string &row) {
        EXPECT_TRUE(std::regex_search(output, std::regex(row + " +[A-Z0-9]+ +[1-9][0-9]*\n"))) << row << output;
    };
    for (const Case &wanted : cases) {
        const std::string in = write("in.wav", sound, wanted.format) + ' ' + quoted("out.wav") + " --upsample4";
        const std::string output = audio(in + " --biquad notch:50 --biquad lowpass:9000").output;
        for (const std::string &row : wanted.rows)
            expectRow(output, row);
        EXPECT_TRUE(contains(output, "192000")) << output;
        if (wanted.format.bits != 0)
            expectRow(audio(in).output,
                      std::string("upsample +AudioUpsample4S") + (wanted.format.name + 1) + "Strided +audio 1[0-2]");
    }
}

TEST_F(Filters, ProblemsAreOneLine)
{
    const std::string files = write("in.wav", noise(100, 1, s16, 1), s16) + ' ' + quoted("out.wav");
    Sound fast = noise(100, 1, s16, 1);
    fast.rate = 600000000;
    struct Case {
        std::string arguments;
        int status;
        std::string says;
    };
    const Case cases[] = {
        {" --biquad", 2, "--biquad"},
        {" --biquad low:100", 2, "no filter 'low'; lowpass, highpass"},
        {" --biquad lowpass", 2, "KIND:FREQUENCY"},
        {" --biquad lowpass:1:1:1:1", 2, "KIND:FREQUENCY"},
        {" --biquad lowpass:", 2, "'' is no frequency"},
        {" --biquad lowpass:1k", 2, "'1k' is no frequency"},
        {" --biquad lowpass:nan", 2, "'nan' is no frequency"},
        {" --biquad lowpass:0", 2, "'0' is no frequency"},
        {" --biquad lowpass:24000", 2, "not below half the rate of 48000 Hz"},
        {" --biquad lowpass:100:0", 2, "'0' is no Q"},
        {" --biquad lowpass:100:1001", 2, "'1001' is no Q"},
        {" --biquad lowpass:100:1:3", 2, "lowpass has no GAIN"},
        {" --biquad peak:100:1", 2, "peak needs FREQUENCY, Q and GAIN"},
        {" --biquad peak:100:1:61", 2, "'61' is no gain"},
        {" --biquad lowpass:100 --biquad notch:x", 2, "'x' is no frequency"},
    };
    const auto expectProblem = [&](const std::string &arguments, int status, const std::string &says) {
        writeFile("out.wav", {1, 2, 3});
        const Outcome outcome = audio(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_TRUE(contains(outcome.errors, says)) << arguments << ": " << outcome.errors;
        EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
        EXPECT_EQ(contentsOf(path("out.wav")), "\1\2\3") << arguments;
    };
    for (const Case &wanted : cases)
        expectProblem(files + wanted.arguments, wanted.status, wanted.says);
    expectProblem(write("fast.wav", fast, s16) + ' ' + quoted("out.wav") + " --upsample4", 1, "600000000 Hz");

    std::string loud = write("loud.wav", sine(1000, 1, 5000), f32) + ' ' + quoted("out.wav") + " --gain 110";
    for (int i = 0; i < 3; ++i)
        loud += " --biquad peak:1000:1:60";
    expectProblem(loud, 1, "beyond 240 dBFS");
}

} // namespace
