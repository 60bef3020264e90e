// Sound in WAV files, through libsndfile. Samples keep the form that they have in the file: converting them is the
// work of the library's kernels.
#pragma once

#include "files.hpp"

#include <sndfile.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

namespace host {

// The samples that WAV files hold, lowest byte first. Whole numbers are signed and full-scale, except those of 8 bits,
// which are unsigned with 128 for silence.
enum class SampleType { u8, s16, s24, s32, f32, f64 };

struct SampleFormat {
    SampleType type;
    const char *name;
    int subtype; // libsndfile's number
    std::size_t bytes;
    bool wholeNumbers; // which end at full scale
};

inline constexpr std::array sampleFormats = {
    SampleFormat{SampleType::u8, "u8", SF_FORMAT_PCM_U8, 1, true},
    SampleFormat{SampleType::s16, "s16", SF_FORMAT_PCM_16, 2, true},
    SampleFormat{SampleType::s24, "s24", SF_FORMAT_PCM_24, 3, true},
    SampleFormat{SampleType::s32, "s32", SF_FORMAT_PCM_32, 4, true},
    SampleFormat{SampleType::f32, "f32", SF_FORMAT_FLOAT, 4, false},
    SampleFormat{SampleType::f64, "f64", SF_FORMAT_DOUBLE, 8, false},
};

// A file of libsndfile, closed on the way out.
struct CloseSound {
    void operator()(SNDFILE *file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

class WavReader {
public:
    // Throws Failure unless the file holds sound in one of the sample formats.
    explicit WavReader(std::filesystem::path file);

    const std::filesystem::path &path() const { return name; }
    const SampleFormat &format() const { return *sampleFormat; }
    int channels() const { return info.channels; }
    int rate() const { return info.samplerate; }
    std::int64_t frames() const { return info.frames; }

    void rewind();

    // Reads the next frames, samples of all channels in turn: as many as are left, if those are fewer. Returns their
    // number. Throws Failure.
    std::int64_t read(std::byte *to, std::int64_t wantedFrames);

private:
    std::filesystem::path name;
    SF_INFO info{};
    SoundFile file;
    const SampleFormat *sampleFormat;
    std::int64_t position = 0;
};

class WavWriter {
public:
    // Throws Failure.
    WavWriter(std::filesystem::path file, const SampleFormat &format, int channels, int rate, std::int64_t frames);

    // Writes samples of all channels in turn. Throws Failure.
    void write(const std::byte *from, std::int64_t frames);

    // Throws Failure.
    void finish();

private:
    UnfinishedFile unfinished;
    std::size_t frameBytes;
    SoundFile file; // closed before the unfinished file goes
};

} // namespace host
