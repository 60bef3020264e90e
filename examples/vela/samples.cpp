#include "samples.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace host {
namespace {

constexpr float largestBelowFullScale = 0x1.fffffep-1f;

// Files have unsigned bytes with 128 for silence, kernels signed ones: the top bit differs.
std::byte turnedSign(std::byte sample) { return sample ^ std::byte{0x80}; }

// Samples of a file as kernels take them. The bytes come from a vector, so they are aligned for every type.
template <class Sample> const Sample *as(const std::byte *bytes) { return reinterpret_cast<const Sample *>(bytes); }
template <class Sample> Sample *as(std::byte *bytes) { return reinterpret_cast<Sample *>(bytes); }

// Moves of 32-bit elements do not ask what the bits mean.
const uint32_t *bits(const float *samples) { return reinterpret_cast<const uint32_t *>(samples); }
uint32_t *bits(float *samples) { return reinterpret_cast<uint32_t *>(samples); }
const uint8_t *bytesOf(const float *samples) { return reinterpret_cast<const uint8_t *>(samples); }
uint8_t *bytesOf(float *samples) { return reinterpret_cast<uint8_t *>(samples); }

// Limits a sample; counts it if it lay beyond full scale.
float limited(float sample, std::int64_t &beyond)
{
    beyond += sample > 1 || sample < -1;
    return std::clamp(sample, -1.0f, largestBelowFullScale);
}

} // namespace

double Level::rootMeanSquare() const { return std::sqrt(sumOfSquares / static_cast<double>(samples)); }

double decibels(double amplitude) { return 20 * std::log10(amplitude); }

double amplitude(double decibels) { return std::pow(10, decibels / 20); }

SampleKernels::SampleKernels(const Library &library, Steps &stepsOfAll, int channels, std::size_t framesOfBlock)
    : procs(LIBRARY_EXPORT(library, VCB_RegMemProc)), steps(stepsOfAll),
      interleaved(static_cast<std::size_t>(channels) * framesOfBlock), bytes(interleaved.size())
{
}

// --- Slots ---------------------------------------------------------------------------------------------------

Place SampleKernels::arithmetic(int number) const { return placeIn("mem.arithOps", procs.arithOps, number); }

Place SampleKernels::conversion(int number) const
{
    return placeIn("mem.sampleFormatOps", procs.sampleFormatOps, number);
}

Place SampleKernels::fill(int number) const { return placeIn("mem.fillOps", procs.fillOps, number); }

Place SampleKernels::misc(int number) const { return placeIn("mem.miscOps", procs.miscOps, number); }

Place SampleKernels::order(int number) const { return placeIn("mem.orderOps", procs.orderOps, number); }

// --- Between the form of a file and planes -------------------------------------------------------------------

void SampleKernels::bytesToFloats(float *to, const std::byte *from, SampleType type, std::size_t samples)
{
    const VcbSampleFormatOps &ops = procs.sampleFormatOps;
    const auto convert = [&](int slot, auto work) { steps.run("to float", conversion(slot), samples, work); };
    switch (type) {
    case SampleType::u8:
        std::transform(from, from + samples, bytes.begin(), turnedSign);
        convert(VcbSampleFormatOps_ConvertS8ToF32, [&] { ops.ConvertS8ToF32(to, as<int8_t>(bytes.data()), samples); });
        break;
    case SampleType::s16:
        convert(VcbSampleFormatOps_ConvertS16ToF32, [&] { ops.ConvertS16ToF32(to, as<int16_t>(from), samples); });
        break;
    case SampleType::s24:
        convert(VcbSampleFormatOps_ConvertS24ToF32, [&] { ops.ConvertS24ToF32(to, as<uint8_t>(from), samples); });
        break;
    case SampleType::s32:
        convert(VcbSampleFormatOps_ConvertS32ToF32Scaled,
                [&] { ops.ConvertS32ToF32Scaled(to, as<int32_t>(from), samples); });
        break;
    case SampleType::f32:
        steps.run("to float", order(VcbMemOrderOps_MemCopy), samples,
                  [&] { procs.orderOps.MemCopy(to, from, samples * sizeof(float)); });
        break;
    case SampleType::f64:
        convert(VcbSampleFormatOps_ConvertF64ToF32, [&] { ops.ConvertF64ToF32(to, as<double>(from), samples); });
        break;
    }
}

void SampleKernels::floatsToBytes(std::byte *to, const float *from, SampleType type, std::size_t samples)
{
    const VcbSampleFormatOps &ops = procs.sampleFormatOps;
    const auto convert = [&](int slot, auto work) { steps.run("from float", conversion(slot), samples, work); };
    switch (type) {
    case SampleType::u8:
        convert(VcbSampleFormatOps_ConvertF32ToS8, [&] { ops.ConvertF32ToS8(as<int8_t>(to), from, samples); });
        std::transform(to, to + samples, to, turnedSign);
        break;
    case SampleType::s16:
        convert(VcbSampleFormatOps_ConvertF32ToS16, [&] { ops.ConvertF32ToS16(as<int16_t>(to), from, samples); });
        break;
    case SampleType::s24:
        convert(VcbSampleFormatOps_ConvertF32ToS24, [&] { ops.ConvertF32ToS24(as<uint8_t>(to), from, samples); });
        break;
    case SampleType::s32:
        convert(VcbSampleFormatOps_ConvertF32ToS32, [&] { ops.ConvertF32ToS32(as<int32_t>(to), from, samples); });
        break;
    case SampleType::f32:
        steps.run("from float", order(VcbMemOrderOps_MemCopy), samples,
                  [&] { procs.orderOps.MemCopy(to, from, samples * sizeof(float)); });
        break;
    case SampleType::f64:
        convert(VcbSampleFormatOps_ConvertF32ToF64, [&] { ops.ConvertF32ToF64(as<double>(to), from, samples); });
        break;
    }
}

void SampleKernels::split(Planes &to, const float *from, std::size_t frames)
{
    const int channels = to.channels();
    const std::size_t samples = frames * static_cast<std::size_t>(channels);
    if (channels == 2) {
        steps.run("split", misc(VcbMemMiscOps_MemDeinterleave32), samples,
                  [&] { procs.miscOps.MemDeinterleave32(bits(to.plane(0)), bits(to.plane(1)), bits(from), frames); });
        return;
    }
    // A run is one sample, a row one frame.
    steps.run("split", misc(VcbMemMiscOps_MemCopyStrided), samples, [&] {
        for (int channel = 0; channel < channels; ++channel)
            procs.miscOps.MemCopyStrided(bytesOf(to.plane(channel)), bytesOf(from + channel), sizeof(float),
                                         channels * static_cast<int64_t>(sizeof(float)), sizeof(float), frames);
    });
}

void SampleKernels::join(float *to, const Planes &from, std::size_t frames)
{
    const int channels = from.channels();
    const std::size_t samples = frames * static_cast<std::size_t>(channels);
    if (channels == 2) {
        steps.run("join", misc(VcbMemMiscOps_MemPackOp25), samples,
                  [&] { procs.miscOps.MemPackOp25(bits(to), bits(from.plane(0)), bits(from.plane(1)), frames); });
        return;
    }
    steps.run("join", misc(VcbMemMiscOps_MemCopyStrided), samples, [&] {
        for (int channel = 0; channel < channels; ++channel)
            procs.miscOps.MemCopyStrided(bytesOf(to + channel), bytesOf(from.plane(channel)),
                                         channels * static_cast<int64_t>(sizeof(float)), sizeof(float), sizeof(float),
                                         frames);
    });
}

// One channel is a plane already.
void SampleKernels::fromFile(Planes &to, const std::byte *from, const SampleFormat &format, std::size_t frames)
{
    const std::size_t samples = frames * static_cast<std::size_t>(to.channels());
    float *const floats = to.channels() == 1 ? to.plane(0) : interleaved.data();
    bytesToFloats(floats, from, format.type, samples);
    if (to.channels() > 1)
        split(to, floats, frames);
}

void SampleKernels::toFile(std::byte *to, const Planes &from, const SampleFormat &format, std::size_t frames)
{
    const std::size_t samples = frames * static_cast<std::size_t>(from.channels());
    if (from.channels() > 1)
        join(interleaved.data(), from, frames);
    floatsToBytes(to, from.channels() == 1 ? from.plane(0) : interleaved.data(), format.type, samples);
}

// --- On planes -----------------------------------------------------------------------------------------------

void SampleKernels::clear(Planes &planes, std::size_t frames)
{
    for (int channel = 0; channel < planes.channels(); ++channel)
        steps.run("clear", fill(VcbMemFillOps_MemFill32), frames,
                  [&] { procs.fillOps.MemFill32(bits(planes.plane(channel)), 0, frames); }); // 0.0f has no bit set
}

void SampleKernels::mixInto(Planes &bus, const Planes &from, float gain, std::size_t frames)
{
    for (int channel = 0; channel < bus.channels(); ++channel)
        steps.run("gain and mix", misc(VcbMemMiscOps_MemGainAddF32), frames,
                  [&] { procs.miscOps.MemGainAddF32(bus.plane(channel), from.plane(channel), gain, frames); });
}

void SampleKernels::scale(Planes &planes, double gain, std::size_t frames)
{
    for (int channel = 0; channel < planes.channels(); ++channel)
        steps.run("normalize", misc(VcbMemMiscOps_MemScaleF32ToF32), frames,
                  [&] { procs.miscOps.MemScaleF32ToF32(planes.plane(channel), planes.plane(channel), gain, frames); });
}

float SampleKernels::peakOf(const float *plane, std::size_t frames)
{
    float peak = 0;
    steps.run("peak", arithmetic(VcbMemArithOps_MemReduceF32), frames,
              [&] { peak = procs.arithOps.MemReduceF32(plane, frames); });
    return peak;
}

void SampleKernels::measure(std::vector<Level> &levels, const Planes &planes, std::size_t frames)
{
    for (int channel = 0; channel < planes.channels(); ++channel) {
        Level &all = levels[static_cast<std::size_t>(channel)];
        const float *plane = planes.plane(channel);
        all.peak = std::max(all.peak, peakOf(plane, frames));
        // A block is short enough for sums in float; those of the blocks are added in double.
        steps.run("RMS", arithmetic(VcbMemArithOps_MemSumSquaresF32), frames,
                  [&] { all.sumOfSquares += procs.arithOps.MemSumSquaresF32(plane, static_cast<int32_t>(frames)); });
        all.samples += static_cast<std::int64_t>(frames);
    }
}

std::int64_t SampleKernels::limit(Planes &planes, std::size_t frames)
{
    std::int64_t beyond = 0;
    for (int channel = 0; channel < planes.channels(); ++channel) {
        float *const plane = planes.plane(channel);
        if (peakOf(plane, frames) >= 1)
            std::transform(plane, plane + frames, plane, [&](float sample) { return limited(sample, beyond); });
    }
    return beyond;
}

} // namespace host
