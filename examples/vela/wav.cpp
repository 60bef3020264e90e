#include "wav.hpp"

#include "files.hpp"

#include <algorithm>
#include <string>

namespace host {
namespace {

constexpr std::int64_t largestWav = 0xFFFFFFFF - 4096; // its sizes have 32 bits, and there is a header

// libsndfile's name of a container or of a kind of samples.
std::string formatName(int format)
{
    SF_FORMAT_INFO info{};
    info.format = format;
    sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof(info));
    return info.name ? info.name : "unknown";
}

bool isWav(int format)
{
    const int container = format & SF_FORMAT_TYPEMASK;
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX || container == SF_FORMAT_RF64;
}

SoundFile openForReading(const std::filesystem::path &path, SF_INFO &info)
{
    checkIsFile(path);
    SoundFile file(sf_open(path.c_str(), SFM_READ, &info));
    if (!file)
        throw unreadable(path, sf_error(nullptr) == SF_ERR_SYSTEM ? sf_strerror(nullptr) : "not a WAV file");
    return file;
}

const SampleFormat *formatOf(const std::filesystem::path &path, SNDFILE *file, const SF_INFO &info)
{
    if (!isWav(info.format))
        throw unreadable(path, "not a WAV file but " + formatName(info.format & SF_FORMAT_TYPEMASK));
    if (sf_command(file, SFC_RAW_DATA_NEEDS_ENDSWAP, nullptr, 0))
        throw unreadable(path, "its samples have their highest byte first");
    const auto format = std::ranges::find(sampleFormats, info.format & SF_FORMAT_SUBMASK, &SampleFormat::subtype);
    if (format == sampleFormats.end())
        throw unreadable(path, "its samples are compressed: " + formatName(info.format & SF_FORMAT_SUBMASK));
    return &*format;
}

} // namespace

WavReader::WavReader(std::filesystem::path path)
    : name(std::move(path)), file(openForReading(name, info)), sampleFormat(formatOf(name, file.get(), info))
{
    if (info.frames <= 0)
        throw unreadable(name, "it holds no samples");
}

void WavReader::rewind()
{
    if (sf_seek(file.get(), 0, SEEK_SET) != 0)
        throw unreadable(name, sf_strerror(file.get()));
    position = 0;
}

std::int64_t WavReader::read(std::byte *to, std::int64_t wantedFrames)
{
    const std::int64_t count = std::min(wantedFrames, info.frames - position);
    const std::int64_t bytes = count * info.channels * static_cast<std::int64_t>(sampleFormat->bytes);
    if (count > 0 && sf_read_raw(file.get(), to, bytes) != bytes)
        throw unreadable(name, "the file ends before its last sample");
    position += count;
    return count;
}

WavWriter::WavWriter(std::filesystem::path path, const SampleFormat &format, int channels, int rate,
                     std::int64_t frames)
    : unfinished(std::move(path)), frameBytes(format.bytes * static_cast<std::size_t>(channels))
{
    if (frames > largestWav / static_cast<std::int64_t>(frameBytes))
        throw unwritable(unfinished.path(), "it would be longer than the 4 GiB of a WAV file");

    SF_INFO info{};
    info.channels = channels;
    info.samplerate = rate;
    info.format = SF_FORMAT_WAV | format.subtype;
    file.reset(sf_open(unfinished.pathUntilFinished().c_str(), SFM_WRITE, &info));
    if (!file)
        throw unwritable(unfinished.path(), sf_strerror(nullptr));
    sf_command(file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr,
               SF_FALSE); // it would hold zeros: libsndfile sees no samples
}

void WavWriter::write(const std::byte *from, std::int64_t frames)
{
    const std::int64_t bytes = frames * static_cast<std::int64_t>(frameBytes);
    if (sf_write_raw(file.get(), from, bytes) != bytes)
        throw unwritable(unfinished.path(), "the file is incomplete; is the disk full?");
}

void WavWriter::finish()
{
    if (sf_close(file.release()) != SF_ERR_NO_ERROR)
        throw unwritable(unfinished.path(), std::make_error_code(std::errc::io_error).message());
    unfinished.finish();
}

} // namespace host
