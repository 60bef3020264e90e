// Recursive filters and four-fold upsampling with the kernels of the audio family, over blocks that continue each
// other.
#pragma once

#include "filter_design.hpp"
#include "samples.hpp"

#include <algorithm>
#include <optional>

namespace host {

// Samples that come straight from a file, samples of all channels in turn, and their gain as a factor.
struct FileSamples {
    SampleType type;
    double gain;
};

// Whether filters take these samples as they stand in a file: whole numbers of 16 to 32 bits, of which none is rounded
// before it is filtered.
constexpr bool filtersTake(SampleType type)
{
    return type == SampleType::s16 || type == SampleType::s24 || type == SampleType::s32;
}

// A block, and ahead of it the end of the one before: there kernels look for their history. At first that is silence.
template <class Value> class Continued {
public:
    Continued(std::size_t valuesAhead, std::size_t valuesOfBlock) : ahead(valuesAhead), values(ahead + valuesOfBlock) {}

    Value *block() { return values.data() + ahead; }
    void silence() { std::fill(values.begin(), values.end(), Value{}); }
    // A block of so many values is done.
    void advance(std::size_t count)
    {
        std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(count), ahead, values.begin());
    }

private:
    std::size_t ahead;
    std::vector<Value> values;
};

// Second-order sections one after the other, at least one, for every channel.
class Cascade {
public:
    // Takes planes, or the samples of a file.
    Cascade(const Library &library, Steps &stepsOfAll, std::vector<Section> sectionsInOrder, int channels,
            std::size_t framesOfBlock, std::optional<FileSamples> file);

    void restart();                                                  // with silence ahead of the next block
    void filter(Planes &to, const Planes &from, std::size_t frames); // which may be one
    void filter(Planes &to, const std::byte *from, std::size_t frames);

private:
    using Rows = std::vector<Continued<double>>; // of a channel: the input, and what each section makes of it

    void firstOfFile(double *to, int channel, std::size_t frames);
    void further(Rows &rows, std::size_t firstSection, float *to, std::size_t frames);

    vela::AudioProcs audio;
    vela::MemProcs memory;
    Steps &steps;
    std::vector<Section> sections;
    std::optional<FileSamples> fileSamples;
    Continued<std::byte> fileBytes;
    std::size_t frameBytes;
    std::vector<Rows> channelRows;
};

// Makes four frames of one. Each waits for the six that follow it.
class Upsampler {
public:
    static constexpr int factor = 4;
    static constexpr std::size_t framesThatWait = 6;

    // Takes planes, or the samples of a file.
    Upsampler(const Library &library, Steps &stepsOfAll, int channels, std::size_t framesOfBlock,
              std::optional<FileSamples> file);

    void restart(float peak); // with silence ahead of the next block; planes will have this peak

    // Writes the frames that are complete with this block and returns their number.
    std::size_t upsample(Planes &to, const Planes &from, std::size_t frames);
    std::size_t upsample(Planes &to, const std::byte *from, std::size_t frames);
    // Writes those that were waiting, before silence.
    std::size_t finish(Planes &to);

private:
    std::size_t advance(Planes &to, std::size_t frames);
    void upsampleChannel(int channel, std::size_t first, std::size_t frames);

    vela::AudioProcs audio;
    vela::MemProcs memory;
    Steps &steps;
    std::optional<FileSamples> fileSamples;
    std::size_t blockFrames;
    Continued<std::byte> fileBytes;
    std::size_t frameBytes;
    std::vector<Continued<int32_t>> channelSamples;
    double scale = 1; // from planes to samples
    Phases phases{};  // for these samples
    std::size_t waiting = 0;
    std::vector<float> scaled;
    std::vector<double> result;
};

} // namespace host
