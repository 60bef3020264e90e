#include "filter_kernels.hpp"

#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr std::size_t biquadAhead = 2;
// The interpolator reads five samples ahead of the one that it works on and six behind it.
constexpr std::size_t upsampleAhead = 5 + Upsampler::framesThatWait;

// Below this (-600 dBFS) the end of a sound is silence. A recursive filter fades for ever, and processors are many
// times slower where doubles end.
constexpr double faintest = 1e-30;

std::size_t bytesOf(const std::optional<FileSamples> &file, int channels)
{
    if (!file)
        return 0;
    return std::ranges::find(sampleFormats, file->type, &SampleFormat::type)->bytes *
           static_cast<std::size_t>(channels);
}

template <class Sample> const Sample *as(const std::byte *bytes) { return reinterpret_cast<const Sample *>(bytes); }

Place audioSlot(const vela::AudioProcs &procs, int number) { return placeIn("audio", procs.audio, number); }

Place conversionSlot(const vela::MemProcs &procs, int number)
{
    return placeIn("mem.sampleFormatOps", procs.sampleFormatOps, number);
}

} // namespace

// --- Recursive filters ---------------------------------------------------------------------------------------

Cascade::Cascade(const Library &library, Steps &stepsOfAll, std::vector<Section> sectionsInOrder, int channels,
                 std::size_t framesOfBlock, std::optional<FileSamples> file)
    : audio(LIBRARY_EXPORT(library, VCB_RegAudioProc)), memory(LIBRARY_EXPORT(library, VCB_RegMemProc)),
      steps(stepsOfAll), sections(std::move(sectionsInOrder)), fileSamples(file),
      fileBytes(biquadAhead * bytesOf(file, channels), framesOfBlock * bytesOf(file, channels)),
      frameBytes(bytesOf(file, channels)),
      channelRows(static_cast<std::size_t>(channels),
                  Rows(sections.size() + 1, Continued<double>(biquadAhead, framesOfBlock)))
{
    if (file) // the first three coefficients are those of the input
        std::for_each_n(sections.front().begin(), 3, [&](double &coefficient) { coefficient *= file->gain; });
}

void Cascade::restart()
{
    fileBytes.silence();
    for (Rows &rows : channelRows)
        for (Continued<double> &row : rows)
            row.silence();
}

void Cascade::filter(Planes &to, const Planes &from, std::size_t frames)
{
    for (int channel = 0; channel < to.channels(); ++channel) {
        Rows &rows = channelRows[static_cast<std::size_t>(channel)];
        steps.run("to double", conversionSlot(memory, VcbSampleFormatOps_ConvertF32ToF64), frames,
                  [&] { memory.sampleFormatOps.ConvertF32ToF64(rows.front().block(), from.plane(channel), frames); });
        further(rows, 0, to.plane(channel), frames);
    }
}

void Cascade::filter(Planes &to, const std::byte *from, std::size_t frames)
{
    std::copy_n(from, frames * frameBytes, fileBytes.block());
    for (int channel = 0; channel < to.channels(); ++channel) {
        Rows &rows = channelRows[static_cast<std::size_t>(channel)];
        firstOfFile(rows[1].block(), channel, frames);
        further(rows, 1, to.plane(channel), frames);
    }
    fileBytes.advance(frames * frameBytes);
}

// A channel of the file is a row with a stride. It starts with its history.
void Cascade::firstOfFile(double *to, int channel, std::size_t frames)
{
    const std::byte *const from = fileBytes.block() - biquadAhead * frameBytes +
                                  static_cast<std::size_t>(channel) * frameBytes / channelRows.size();
    const double *const section = sections.front().data();
    const auto stride = static_cast<int32_t>(frameBytes);
    const auto count = static_cast<int32_t>(frames);
    const auto filter = [&](int slot, auto work) { steps.run("filter", audioSlot(audio, slot), frames, work); };
    if (fileSamples->type == SampleType::s16)
        filter(VcbAudioProcs_AudioBiquadS16Strided,
               [&] { audio.audio.AudioBiquadS16Strided(to, as<int16_t>(from), stride, section, count); });
    else if (fileSamples->type == SampleType::s24)
        filter(VcbAudioProcs_AudioBiquadS24Strided,
               [&] { audio.audio.AudioBiquadS24Strided(to, as<uint8_t>(from), stride, section, count); });
    else
        filter(VcbAudioProcs_AudioBiquadS32Strided,
               [&] { audio.audio.AudioBiquadS32Strided(to, as<int32_t>(from), stride, section, count); });
}

// Each row is what the next section takes, with its history at the start.
void Cascade::further(Rows &rows, std::size_t firstSection, float *to, std::size_t frames)
{
    for (std::size_t i = firstSection; i < sections.size(); ++i)
        steps.run("filter", audioSlot(audio, VcbAudioProcs_AudioBiquadF64), frames, [&] {
            audio.audio.AudioBiquadF64(rows[i + 1].block(), rows[i].block() - biquadAhead, sections[i].data(),
                                       static_cast<int32_t>(frames));
        });
    steps.run("filtered to float", conversionSlot(memory, VcbSampleFormatOps_ConvertF64ToF32), frames,
              [&] { memory.sampleFormatOps.ConvertF64ToF32(to, rows.back().block(), frames); });
    for (Continued<double> &row : rows) {
        row.advance(frames);
        for (double *history = row.block() - biquadAhead; history != row.block(); ++history)
            if (std::abs(*history) < faintest)
                *history = 0;
    }
}

// --- Upsampling ----------------------------------------------------------------------------------------------

Upsampler::Upsampler(const Library &library, Steps &stepsOfAll, int channels, std::size_t framesOfBlock,
                     std::optional<FileSamples> file)
    : audio(LIBRARY_EXPORT(library, VCB_RegAudioProc)), memory(LIBRARY_EXPORT(library, VCB_RegMemProc)),
      steps(stepsOfAll), fileSamples(file), blockFrames(std::max(framesOfBlock, framesThatWait)),
      fileBytes(upsampleAhead * bytesOf(file, channels), blockFrames * bytesOf(file, channels)),
      frameBytes(bytesOf(file, channels)),
      channelSamples(static_cast<std::size_t>(channels), Continued<int32_t>(upsampleAhead, blockFrames)),
      scaled(blockFrames), result(blockFrames * factor)
{
}

// The kernels take whole numbers. A power of two brings planes up to full scale, and the phases take it back: floats
// down to 2^-7 of the peak lose no bit.
void Upsampler::restart(float peak)
{
    fileBytes.silence();
    for (Continued<int32_t> &samples : channelSamples)
        samples.silence();
    waiting = 0;

    int exponent = 0;
    std::frexp(peak, &exponent); // the peak lies below 2^exponent
    scale = std::ldexp(1.0, -exponent);
    phases = upsamplingPhases();
    for (double &tap : phases)
        tap *= fileSamples ? fileSamples->gain : 1 / scale;
}

std::size_t Upsampler::upsample(Planes &to, const Planes &from, std::size_t frames)
{
    for (int channel = 0; channel < from.channels(); ++channel) {
        steps.run("to full scale", placeIn("mem.miscOps", memory.miscOps, VcbMemMiscOps_MemScaleF32ToF32), frames,
                  [&] { memory.miscOps.MemScaleF32ToF32(scaled.data(), from.plane(channel), scale, frames); });
        int32_t *const samples = channelSamples[static_cast<std::size_t>(channel)].block();
        steps.run("to 32 bits", conversionSlot(memory, VcbSampleFormatOps_ConvertF32ToS32), frames,
                  [&] { memory.sampleFormatOps.ConvertF32ToS32(samples, scaled.data(), frames); });
    }
    return advance(to, frames);
}

std::size_t Upsampler::upsample(Planes &to, const std::byte *from, std::size_t frames)
{
    std::copy_n(from, frames * frameBytes, fileBytes.block());
    return advance(to, frames);
}

std::size_t Upsampler::finish(Planes &to)
{
    std::fill_n(fileBytes.block(), framesThatWait * frameBytes, std::byte{});
    for (Continued<int32_t> &samples : channelSamples)
        std::fill_n(samples.block(), framesThatWait, 0);
    return advance(to, framesThatWait);
}

// The work is framesThatWait behind the block: before the first frame there is nothing to be done.
std::size_t Upsampler::advance(Planes &to, std::size_t frames)
{
    const std::size_t first = std::min(framesThatWait - waiting, frames);
    const std::size_t count = frames - first;
    waiting += first;
    for (int channel = 0; count > 0 && channel < to.channels(); ++channel) {
        upsampleChannel(channel, first, count);
        steps.run("upsampled to float", conversionSlot(memory, VcbSampleFormatOps_ConvertF64ToF32), count * factor,
                  [&] { memory.sampleFormatOps.ConvertF64ToF32(to.plane(channel), result.data(), count * factor); });
    }
    fileBytes.advance(frames * frameBytes);
    for (Continued<int32_t> &samples : channelSamples)
        samples.advance(frames);
    return count * factor;
}

// A channel of a file is a row with a stride.
void Upsampler::upsampleChannel(int channel, std::size_t first, std::size_t frames)
{
    const VcbAudioProcs &procs = audio.audio;
    double *const to = result.data();
    const double *const taps = phases.data();
    const auto count = static_cast<int32_t>(frames);
    const auto upsample = [&](int slot, auto work) {
        steps.run("upsample", audioSlot(audio, slot), frames * factor, work);
    };
    if (!fileSamples) {
        const int32_t *const from = channelSamples[static_cast<std::size_t>(channel)].block() - framesThatWait + first;
        upsample(VcbAudioProcs_AudioUpsample4S32, [&] { procs.AudioUpsample4S32(to, from, taps, count); });
        return;
    }
    const std::byte *const from = fileBytes.block() - (framesThatWait - first) * frameBytes +
                                  static_cast<std::size_t>(channel) * frameBytes / channelSamples.size();
    const auto stride = static_cast<int32_t>(frameBytes);
    if (fileSamples->type == SampleType::s16)
        upsample(VcbAudioProcs_AudioUpsample4S16Strided,
                 [&] { procs.AudioUpsample4S16Strided(to, as<int16_t>(from), stride, taps, count); });
    else if (fileSamples->type == SampleType::s24)
        upsample(VcbAudioProcs_AudioUpsample4S24Strided,
                 [&] { procs.AudioUpsample4S24Strided(to, as<uint8_t>(from), stride, taps, count); });
    else
        upsample(VcbAudioProcs_AudioUpsample4S32Strided,
                 [&] { procs.AudioUpsample4S32Strided(to, as<int32_t>(from), stride, taps, count); });
}

} // namespace host
