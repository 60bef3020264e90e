// Blocks of sound and the kernels of the memory family that work on them, each call timed.
#pragma once

#include "steps.hpp"
#include "wav.hpp"

namespace host {

// A block of sound as floats, full scale 1: one plane for every channel, all of them in one piece of memory.
class Planes {
public:
    Planes(int channels, std::size_t frames)
        : channelCount(channels), frameCount(frames), samples(static_cast<std::size_t>(channels) * frames)
    {
    }

    int channels() const { return channelCount; }
    std::size_t frames() const { return frameCount; } // for which there is room
    float *plane(int channel) { return samples.data() + static_cast<std::size_t>(channel) * frameCount; }
    const float *plane(int channel) const { return samples.data() + static_cast<std::size_t>(channel) * frameCount; }

private:
    int channelCount;
    std::size_t frameCount;
    std::vector<float> samples;
};

// How loud a channel is: 1 is full scale.
struct Level {
    float peak = 0;
    double sumOfSquares = 0; // NaN if any sample is
    std::int64_t samples = 0;

    double rootMeanSquare() const;
};

double decibels(double amplitude);
double amplitude(double decibels);

// The steps from a file to a mix and back. Every function works on the given number of frames, which its planes and
// bytes must hold. Throws Failure where a kernel is missing.
class SampleKernels {
public:
    SampleKernels(const Library &library, Steps &steps, int channels, std::size_t framesOfBlock);

    void fromFile(Planes &to, const std::byte *from, const SampleFormat &format, std::size_t frames);
    // Whole numbers must lie within full scale: see limit.
    void toFile(std::byte *to, const Planes &from, const SampleFormat &format, std::size_t frames);

    void clear(Planes &planes, std::size_t frames);
    void mixInto(Planes &bus, const Planes &from, float gain, std::size_t frames);
    void scale(Planes &planes, double gain, std::size_t frames);

    // Adds the frames to the levels of the channels.
    void measure(std::vector<Level> &levels, const Planes &planes, std::size_t frames);

    // Brings samples beyond full scale back to it and returns their number. Full scale itself becomes the largest
    // float below 1: the kernels that write 24 and 32 bits wrap at 1.
    std::int64_t limit(Planes &planes, std::size_t frames);

private:
    Place arithmetic(int number) const;
    Place conversion(int number) const;
    Place fill(int number) const;
    Place misc(int number) const;
    Place order(int number) const;

    float peakOf(const float *plane, std::size_t frames);
    void bytesToFloats(float *to, const std::byte *from, SampleType type, std::size_t samples);
    void floatsToBytes(std::byte *to, const float *from, SampleType type, std::size_t samples);
    void split(Planes &to, const float *from, std::size_t frames);
    void join(float *to, const Planes &from, std::size_t frames);

    vela::MemProcs procs;
    Steps &steps;
    std::vector<float> interleaved; // between the form of the file and planes
    std::vector<std::byte> bytes;   // 8-bit samples with their sign turned over
};

} // namespace host
