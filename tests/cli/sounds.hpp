// Sounds as tests make them, their files from libsndfile, and vela audio run on these.
#pragma once

#include "run_vela.hpp"

#include <sndfile.h>

#include <cmath>
#include <random>

namespace vela::test {

inline constexpr double fullScale32 = 2147483648.0;

struct Format {
    const char *name;
    int subtype;
    int bits; // of whole numbers; 0 for floating point
};
inline constexpr Format u8{"u8", SF_FORMAT_PCM_U8, 8};
inline constexpr Format s16{"s16", SF_FORMAT_PCM_16, 16};
inline constexpr Format s24{"s24", SF_FORMAT_PCM_24, 24};
inline constexpr Format s32{"s32", SF_FORMAT_PCM_32, 32};
inline constexpr Format f32{"f32", SF_FORMAT_FLOAT, 0};
inline constexpr Format f64{"f64", SF_FORMAT_DOUBLE, 0};
inline constexpr Format formats[] = {u8, s16, s24, s32, f32, f64};

// Samples of all channels in turn; 1 is full scale.
struct Sound {
    int channels = 1;
    int rate = 48000;
    std::vector<double> samples;

    std::size_t frames() const { return samples.size() / static_cast<std::size_t>(channels); }
};

// The value as a format below 25 bits holds it, cut off towards zero.
inline double heldBy(const Format &format, double value)
{
    if (format.bits == 0)
        return static_cast<float>(value);
    const double scale = std::ldexp(1.0, format.bits - 1);
    return std::clamp(std::trunc(value * scale), -scale, scale - 1) / scale;
}

inline Sound noise(std::size_t frames, int channels, const Format &format, unsigned seed, double amplitude = 1)
{
    std::mt19937 random(seed);
    Sound sound{channels, 48000, {}};
    for (std::size_t i = 0; i < frames * static_cast<std::size_t>(channels); ++i)
        sound.samples.push_back(heldBy(format, amplitude * static_cast<std::int32_t>(random()) / fullScale32));
    return sound;
}

struct CloseSound {
    void operator()(SNDFILE *file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

inline std::vector<int> fullScaleIntegers(const std::vector<double> &samples)
{
    std::vector<int> integers;
    for (const double sample : samples)
        integers.push_back(static_cast<int>(sample * fullScale32));
    return integers;
}

inline SoundFile writeSound(const std::filesystem::path &path, const Sound &sound, int format)
{
    SF_INFO info{};
    info.channels = sound.channels;
    info.samplerate = sound.rate;
    info.format = format;
    SoundFile file(sf_open(path.c_str(), SFM_WRITE, &info));
    if (!file)
        throw std::runtime_error(sf_strerror(nullptr));
    const auto frames = static_cast<sf_count_t>(sound.frames());
    const int subtype = format & SF_FORMAT_SUBMASK;
    const sf_count_t written = subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE
                                   ? sf_writef_double(file.get(), sound.samples.data(), frames)
                                   : sf_writef_int(file.get(), fullScaleIntegers(sound.samples).data(), frames);
    if (written != frames)
        throw std::runtime_error(sf_strerror(file.get()));
    return file;
}

struct FileContents {
    Sound sound;
    int format = 0;
    bool hasPeakChunk = false;
};

inline FileContents readSound(const std::filesystem::path &path)
{
    SF_INFO info{};
    const SoundFile file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file)
        throw std::runtime_error(path.string() + ": " + sf_strerror(nullptr));
    FileContents contents{{info.channels, info.samplerate, {}}, info.format, false};
    contents.sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    double ignored = 0;
    contents.hasPeakChunk = sf_command(file.get(), SFC_GET_SIGNAL_MAX, &ignored, sizeof(ignored)) != 0;
    const int subtype = info.format & SF_FORMAT_SUBMASK;
    if (subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE) {
        EXPECT_EQ(sf_readf_double(file.get(), contents.sound.samples.data(), info.frames), info.frames);
    } else {
        std::vector<int> integers(contents.sound.samples.size());
        EXPECT_EQ(sf_readf_int(file.get(), integers.data(), info.frames), info.frames);
        std::ranges::transform(integers, contents.sound.samples.begin(), [](int i) { return i / fullScale32; });
    }
    return contents;
}

inline double fromDecibels(double decibels) { return std::pow(10, decibels / 20); }

inline Sound mixOf(const std::vector<Sound> &inputs, const std::vector<double> &gains)
{
    Sound mix = inputs.front();
    mix.samples.assign(std::ranges::max(inputs, {}, &Sound::frames).samples.size(), 0);
    for (std::size_t k = 0; k < inputs.size(); ++k)
        for (std::size_t i = 0; i < inputs[k].samples.size(); ++i)
            mix.samples[i] += fromDecibels(gains[k]) * inputs[k].samples[i];
    return mix;
}

inline double peakOf(const Sound &sound)
{
    double peak = 0;
    for (const double sample : sound.samples)
        peak = std::max(peak, std::abs(sample));
    return peak;
}

class Audio : public RunVela {
protected:
    std::filesystem::path path(const std::string &name) const { return directory / name; }
    std::string quoted(const std::string &name) const { return '"' + path(name).string() + '"'; }

    // The file's name, quoted for the command line.
    std::string write(const std::string &name, const Sound &sound, const Format &format) const
    {
        writeSound(path(name), sound, SF_FORMAT_WAV | format.subtype);
        return quoted(name);
    }

    Outcome audio(const std::string &arguments) const { return run("audio " + arguments); }

    FileContents result() const { return readSound(path("out.wav")); }
};

} // namespace vela::test
