// vela convert and vela formats as their users meet them. What files should hold is written down here, from the
// definitions of the layouts and of the matrices.
#include "pictures.hpp"
#include "run_vela.hpp"

#include <bit>
#include <cmath>
#include <regex>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using namespace vela::test;

constexpr int width = 7; // odd, for kernels that take pairs of pixels and lines
constexpr int height = 5;
const std::string size = " --size 7x5 ";

Bytes bytesOf(const std::string &text) { return Bytes(text.begin(), text.end()); }

Bytes operator+(Bytes a, const Bytes &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes times(int count, const Bytes &unit)
{
    Bytes all;
    for (int i = 0; i < count; ++i)
        all = std::move(all) + unit;
    return all;
}

struct Conversion {
    std::string from;
    std::string to;
    std::string kernel;
    std::string slot;
};

class Convert : public RunVela {
protected:
    std::string quoted(const std::string &name) const { return '"' + (directory / name).string() + '"'; }
    Bytes read(const std::string &name) const { return bytesOf(contentsOf(directory / name)); }

    // Converts frames of 7x5 between two layouts and returns the result.
    Bytes convert(const Bytes &frames, const std::string &from, const std::string &to,
                  const std::string &options = "") const
    {
        const Outcome outcome = run("convert " + writeFile("frames.in", frames) + ' ' + quoted("frames.out") +
                                    " --from " + from + " --to " + to + size + options);
        EXPECT_EQ(outcome.status, 0) << from << " to " << to << ": " << outcome.errors;
        lastOutput = outcome.output;
        return read("frames.out");
    }

    std::vector<Conversion> listedConversions() const
    {
        std::istringstream lines(run("formats").output);
        std::vector<Conversion> all;
        std::smatch match;
        const std::regex row(R"( *(\w+) +(\w+) +(\w+) +(colorspace \d+) +\w+)");
        for (std::string line; std::getline(lines, line);)
            if (std::regex_match(line, match, row))
                all.push_back({match[1], match[2], match[3], match[4]});
        return all;
    }

    mutable std::string lastOutput;
};

// --- One colour in every layout ------------------------------------------------------------------------------

Bytes little(std::size_t bytes, std::uint64_t value)
{
    Bytes result;
    for (std::size_t i = 0; i < bytes; ++i)
        result.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    return result;
}

Bytes words(std::initializer_list<unsigned> values)
{
    Bytes result;
    for (const unsigned value : values)
        result = std::move(result) + little(2, value);
    return result;
}

Bytes floats(std::initializer_list<float> values)
{
    Bytes result;
    for (const float value : values)
        result = std::move(result) + little(4, std::bit_cast<std::uint32_t>(value));
    return result;
}

Bytes bigEndian(std::uint32_t word)
{
    Bytes bytes = little(4, word);
    std::ranges::reverse(bytes);
    return bytes;
}

std::uint32_t tens(unsigned low, unsigned middle, unsigned high, unsigned top = 0)
{
    return low | middle << 10 | high << 20 | top << 30;
}

// Three components to a word, the last one alone.
Bytes dpx4Row(int lowestBit)
{
    constexpr unsigned components[] = {1023, 514, 0, 1023};
    Bytes row;
    for (int i = 0; i < 4 * width; i += 3) {
        const auto at = [&](int k) { return i + k < 4 * width ? components[(i + k) % 4] : 0; };
        row = std::move(row) + bigEndian(tens(at(2), at(1), at(0)) << lowestBit);
    }
    return row;
}

// Eight pixels, the last one repeated; four more to fill the group with black; and zeros up to 128 bytes.
Bytes v210Row(unsigned y, unsigned u, unsigned v)
{
    Bytes row;
    for (const std::uint32_t word : {tens(u, y, v), tens(y, u, y), tens(v, y, u), tens(y, v, y), tens(u, y, v),
                                     tens(y, 512, 64), tens(512, 64, 512), tens(64, 512, 64)})
        row = std::move(row) + little(4, word);
    row.resize(128);
    return row;
}

struct Sample {
    std::string layout;
    Bytes frame;
    std::size_t wordBytes = 1;
    std::int64_t tolerance = 0; // of a word
};

// R 255, G 128, B 0, opaque; YUV by BT.601 in limited range: 146.01, 52.96, 192.92 at 8 bits.
std::vector<Sample> orangeFrames()
{
    constexpr int full = width * height;
    constexpr int half = 4 * height;
    constexpr int quarter = 4 * 3;
    constexpr unsigned y8 = 146, u8 = 53, v8 = 193;
    constexpr unsigned y10 = 584, u10 = 212, v10 = 772;
    constexpr unsigned y16 = 37378, u16 = 13557, v16 = 49388;
    constexpr std::int64_t near = 4; // what the integer matrix is allowed at 16 bits
    const float g = 128 * (1 / 255.0f);
    const auto bytes = [](int count, std::initializer_list<unsigned> unit) {
        return times(count, Bytes(unit.begin(), unit.end()));
    };
    const auto word16 = [](int count, std::initializer_list<unsigned> unit) { return times(count, words(unit)); };
    const auto word32 = [](std::uint32_t word) { return times(full, little(4, word)); };
    const auto float32 = [](std::initializer_list<float> unit) { return times(full, floats(unit)); };
    return {
        {"RGBA32", bytes(full, {255, 128, 0, 255})},
        {"ARGB32", bytes(full, {255, 255, 128, 0})},
        {"ABGR32", bytes(full, {255, 0, 128, 255})},
        {"BGR24", bytes(full, {0, 128, 255})},
        {"RGB24", bytes(full, {255, 128, 0})},
        {"GBR8", bytes(full, {128}) + bytes(full, {0}) + bytes(full, {255})},
        {"RGB565", word16(full, {31 << 11 | 32 << 5})},
        {"BGR565", word16(full, {32 << 5 | 31})},
        {"ARGB1555", word16(full, {1 << 15 | 31 << 10 | 16 << 5})},
        {"ARGB4444", word16(full, {0xFF80})},
        {"A2R10G10B10", word32(tens(0, 514, 1023, 3))},
        {"A2B10G10R10", word32(tens(1023, 514, 0, 3))},
        {"DPX3A", times(full, bigEndian(tens(0, 514, 1023) << 2))},
        {"DPX3B", times(full, bigEndian(tens(0, 514, 1023)))},
        {"DPX4A", times(height, dpx4Row(2))},
        {"DPX4B", times(height, dpx4Row(0))},
        {"RGB48", word16(full, {65535, 32896, 0})},
        {"RGBA64", word16(full, {65535, 32896, 0, 65535})},
        {"GBR16", word16(full, {32896}) + word16(full, {0}) + word16(full, {65535})},
        {"F32x4", float32({1, g, 0, 1})},
        {"GBRF32", float32({g}) + float32({0}) + float32({1})},
        {"GREY8", bytes(full, {151})},
        {"GREY16", word16(full, {38905})},
        {"GREYF32", float32({0.299f + 0.587f * g}), 4, 2},
        {"A8", bytes(full, {255})},
        {"YUYV", bytes(half, {y8, u8, y8, v8})},
        {"UYVY", bytes(half, {u8, y8, v8, y8})},
        {"YVYU", bytes(half, {y8, v8, y8, u8})},
        {"YUVA32", bytes(full, {y8, u8, v8, 255})},
        {"VUYA32", bytes(full, {v8, u8, y8, 255})},
        {"I420", bytes(full, {y8}) + bytes(quarter, {u8}) + bytes(quarter, {v8})},
        {"I422", bytes(full, {y8}) + bytes(half, {u8}) + bytes(half, {v8})},
        {"I444", bytes(full, {y8}) + bytes(full, {u8}) + bytes(full, {v8})},
        {"NV12", bytes(full, {y8}) + bytes(quarter, {u8, v8})},
        {"NV21", bytes(full, {y8}) + bytes(quarter, {v8, u8})},
        {"NV16", bytes(full, {y8}) + bytes(half, {u8, v8})},
        {"NV24", bytes(full, {y8}) + bytes(full, {u8, v8})},
        {"P016", word16(full, {y16}) + word16(quarter, {u16, v16}), 2, near},
        {"P216", word16(full, {y16}) + word16(half, {u16, v16}), 2, near},
        {"Y216", word16(half, {y16, u16, y16, v16}), 2, near},
        {"Y410", word32(tens(u10, y10, v10, 3))},
        {"Y416", word16(full, {u16, y16, v16, 65535}), 2, near},
        {"V210", times(height, v210Row(y10, u10, v10))},
        {"I010", word16(full, {y10}) + word16(quarter, {u10}) + word16(quarter, {v10})},
        {"I210", word16(full, {y10}) + word16(half, {u10}) + word16(half, {v10})},
        {"I410", word16(full, {y10}) + word16(full, {u10}) + word16(full, {v10})},
        {"I016", word16(full, {y16}) + word16(quarter, {u16}) + word16(quarter, {v16}), 2, near},
        {"I216", word16(full, {y16}) + word16(half, {u16}) + word16(half, {v16}), 2, near},
        {"I416", word16(full, {y16}) + word16(full, {u16}) + word16(full, {v16}), 2, near},
        {"HSV", word16(full, {30}) + bytes(2 * full, {255})},
        {"HSL", word16(full, {30}) + bytes(full, {255}) + bytes(full, {128})},
    };
}

// The largest difference of two files of little-endian words.
std::int64_t farthest(const Bytes &a, const Bytes &b, std::size_t wordBytes)
{
    std::int64_t largest = a.size() == b.size() ? 0 : -1;
    for (std::size_t i = 0; largest >= 0 && i < a.size(); i += wordBytes) {
        std::int64_t difference = 0;
        for (std::size_t k = 0; k < wordBytes; ++k)
            difference += (std::int64_t{a[i + k]} - b[i + k]) * (std::int64_t{1} << (8 * k));
        largest = std::max(largest, std::abs(difference));
    }
    return largest;
}

TEST_F(Convert, PutsAColourWhereEveryLayoutHasIt)
{
    const Bytes orange = times(width * height, {0, 128, 255, 255});
    const std::string listed = run("formats").output;
    const std::vector<Sample> samples = orangeFrames();
    EXPECT_EQ(std::ranges::count(listed.substr(0, listed.find("\n\n")), '\n'), 1 + std::ssize(samples))
        << "the title, and BGRA32 besides those here";
    for (const Sample &sample : samples) {
        EXPECT_TRUE(contains(listed, "\n  " + sample.layout + ' ')) << sample.layout;
        const Bytes made = convert(orange, "BGRA32", sample.layout, "--matrix bt601");
        const std::int64_t difference = farthest(made, sample.frame, sample.wordBytes);
        EXPECT_TRUE(difference >= 0 && difference <= sample.tolerance)
            << sample.layout << ": " << made.size() << " bytes of " << sample.frame.size() << ", off by " << difference;
    }
}

TEST_F(Convert, MatrixAndRangesAreThoseOfTheStandards)
{
    constexpr struct {
        const char *name;
        double kr;
        double kb;
    } matrices[] = {
        {"bt601", 0.299, 0.114}, {"bt709", 0.2126, 0.0722}, {"bt2020", 0.2627, 0.0593}, {"smpte240m", 0.212, 0.087}};
    const Bytes pixel = {40, 90, 200}; // B G R
    for (const auto &matrix : matrices) {
        for (const std::string range : {"limited:full", "full:full", "full:limited", "limited:limited"}) {
            const bool fullYuv = range.starts_with("full");
            const bool fullRgb = range.ends_with("full");
            const auto unit = [&](int code) { return fullRgb ? code / 255.0 : (code - 16) / 219.0; };
            const double y =
                matrix.kr * unit(pixel[2]) + (1 - matrix.kr - matrix.kb) * unit(pixel[1]) + matrix.kb * unit(pixel[0]);
            const double u = (unit(pixel[0]) - y) / (2 * (1 - matrix.kb));
            const double v = (unit(pixel[2]) - y) / (2 * (1 - matrix.kr));
            const double luma = fullYuv ? 255 * y : 16 + 219 * y;
            const double span = fullYuv ? 255 : 224;
            const std::string options = std::string("--matrix ") + matrix.name + " --range " + range;
            const Bytes made = convert(times(width * height, pixel), "BGR24", "NV12", options);
            ASSERT_EQ(made.size(), 59u);
            EXPECT_NEAR(made.front(), luma, 0.6) << options;
            EXPECT_NEAR(made[57], 128 + span * u, 0.6) << options;
            EXPECT_NEAR(made[58], 128 + span * v, 0.6) << options;
            EXPECT_LE(farthest(convert(made, "NV12", "BGR24", options), times(width * height, pixel), 1), 2) << options;
        }
    }
}

// --- Every conversion ----------------------------------------------------------------------------------------

// Colours that change so gently that no layout loses much of them, and that lie far apart in every pixel.
Bytes gentleColours()
{
    return makeImage(width, height, 4,
                     [](int x, int y, int c) {
                         const int values[] = {30 + 3 * y, 120 - 2 * x + y, 220 - 3 * x, 255};
                         return values[c];
                     })
        .pixels;
}

// A program takes long to start under Wine; there a part of the conversions stands for all.
#if defined(_WIN32)
constexpr std::size_t conversionStep = 12;
#else
constexpr std::size_t conversionStep = 1;
#endif
constexpr std::size_t shards = 4;

class ConvertEvery : public Convert, public testing::WithParamInterface<std::size_t> {};

TEST_P(ConvertEvery, ConversionKeepsThePictureOnAnyNumberOfThreads)
{
    const std::vector<Conversion> all = listedConversions();
    ASSERT_GT(all.size(), 350u);
    const Bytes picture = gentleColours();
    const std::string range = "--range full:full "; // luma passes for grey
    const auto isGrey = [](const std::string &layout) { return layout.starts_with("GREY"); };

    for (std::size_t i = GetParam() * conversionStep; i < all.size(); i += shards * conversionStep) {
        const auto &[from, to, kernel, slot] = all[i];
        const Bytes source = from == "BGRA32" ? picture : convert(picture, "BGRA32", from, range);
        const Bytes made = convert(source, from, to, range);
        EXPECT_TRUE(contains(lastOutput, ' ' + kernel + ' ') && contains(lastOutput, ' ' + slot + ' ')) << lastOutput;
        EXPECT_FALSE(contains(lastOutput, "composed")) << lastOutput;
        EXPECT_EQ(convert(source, from, to, range + "--threads 3"), made) << from << " to " << to;
        if (to == "A8")
            continue;
        const std::string seenAs = isGrey(from) || isGrey(to) ? "GREY8" : "BGRA32";
        const Bytes wanted = seenAs == "BGRA32" ? picture : convert(picture, "BGRA32", seenAs, range);
        const Bytes seen = to == seenAs ? made : convert(made, to, seenAs, range);
        const std::int64_t lost = farthest(seen, wanted, 1);
        EXPECT_TRUE(lost >= 0 && lost <= 17) << from << " to " << to << " changes bytes by up to " << lost;
    }
}

INSTANTIATE_TEST_SUITE_P(Convert, ConvertEvery, testing::Range(std::size_t{0}, shards));

TEST_F(Convert, RoundTripsThatLoseNothingAreExact)
{
    struct Case {
        std::string from;
        std::size_t bytes;
        std::vector<std::string> through;
    };
    const Case cases[] = {
        {"BGRA32", 140, {"RGBA32", "ARGB32", "ABGR32", "RGBA64", "F32x4", "DPX4B"}},
        {"RGB24", 105, {"BGR24", "BGRA32", "GBR8", "GBR16", "GBRF32", "DPX3A", "A2B10G10R10", "RGB48"}},
        {"NV12",
         59,
         {"NV21", "I420", "YUYV", "YVYU", "I422", "NV24", "YUVA32", "P016", "I010", "I216", "Y216", "Y416"}},
        {"UYVY", 80, {"YVYU", "NV16", "I444", "I210", "P216", "VUYA32"}},
        {"I410", 210, {"I416", "Y410", "Y416"}},
    };
    for (const Case &wanted : cases) {
        Bytes frame = noise(static_cast<int>(wanted.bytes), 1, 1).pixels;
        if (wanted.from == "I410") // ten bits of sixteen
            for (std::size_t i = 1; i < frame.size(); i += 2)
                frame[i] &= 3;
        if (wanted.from == "UYVY") // what a layout without pairs cannot keep: the pixel that fills the last pair
            for (std::size_t row = 0; row < frame.size(); row += 16)
                frame[row + 15] = frame[row + 13];
        for (const std::string &through : wanted.through)
            EXPECT_EQ(convert(convert(frame, wanted.from, through), through, wanted.from), frame)
                << wanted.from << " through " << through;
    }
}

// The kernel behind this conversion packs four pixels at a time and spreads a last pair over other bytes.
TEST_F(Convert, PacksAWidthThatIsNoMultipleOfFour)
{
    const Bytes planes = words({0x1000, 0x1100, 0x1200, 0x1300, 0x1400, 0x15FF}) + words({0x2000, 0x2100, 0x2200}) +
                         words({0x3000, 0x3100, 0x3200});
    ASSERT_EQ(
        run("convert " + writeFile("in", planes) + ' ' + quoted("out") + " --from I216 --to YUYV --size 6x1").status,
        0);
    EXPECT_EQ(read("out"), (Bytes{0x10, 0x20, 0x11, 0x30, 0x12, 0x21, 0x13, 0x31, 0x14, 0x22, 0x15, 0x32}));
}

TEST_F(Convert, ComposesWhatHasNoSlotAndSaysSo)
{
    const Bytes frame = noise(59, 1, 1).pixels;
    const Bytes direct = convert(convert(frame, "NV21", "NV12"), "NV12", "RGB24");
    EXPECT_FALSE(contains(lastOutput, "composed"));
    EXPECT_EQ(convert(frame, "nv21", "Rgb24"), direct);
    EXPECT_TRUE(contains(lastOutput, "composed of 2: NV21 > NV12 > RGB24\n")) << lastOutput;
    EXPECT_TRUE(contains(lastOutput, "CscNv12ToNv21") && contains(lastOutput, "CscNv12ToRgb24")) << lastOutput;

    // Depth, chroma and alpha of the poorer side survive on the way.
    struct Case {
        std::string from;
        std::string to;
        std::string way;
    };
    const Case cases[] = {
        {"I016", "BGRA32", "I016 > P016 > BGRA32"},           {"I420", "RGBA64", "I420 > F32x4 > RGBA64"},
        {"ARGB1555", "RGBA64", "ARGB1555 > BGRA32 > RGBA64"}, {"NV24", "VUYA32", "NV24 > I444 > VUYA32"},
        {"YUVA32", "Y416", "YUVA32 > F32x4 > Y416"},          {"UYVY", "GREY8", "UYVY > BGRA32 > GREY8"},
    };
    for (const Case &wanted : cases) {
        convert(convert(gentleColours(), "BGRA32", wanted.from), wanted.from, wanted.to);
        EXPECT_TRUE(contains(lastOutput, ": " + wanted.way + '\n')) << wanted.way << '\n' << lastOutput;
    }
}

TEST_F(Convert, AlphaComesFromTheOption)
{
    const Bytes grey = times(width * height, {77});
    EXPECT_EQ(convert(grey, "GREY8", "RGBA32", "--alpha 100"), times(width * height, {77, 77, 77, 100}));
    EXPECT_EQ(convert(grey, "GREY8", "RGBA32"), times(width * height, {77, 77, 77, 255}));
    const Bytes colour = times(width * height, words({1, 2, 3}));
    EXPECT_EQ(convert(colour, "RGB48", "RGBA64", "--alpha 100"), times(width * height, words({1, 2, 3, 100 * 257})));
    EXPECT_EQ(convert(times(width * height, {9, 8, 7, 6}), "BGRA32", "A8"), times(width * height, {6}));
}

// --- Sharpening ----------------------------------------------------------------------------------------------

// Where luma lies: its first sample, and from one to the next; all in samples.
struct LumaPlace {
    const char *layout;
    std::size_t sampleBytes;
    std::size_t first;
    std::size_t step;
    std::size_t rowSamples;
    std::size_t frameBytes;
};

// Noise of such a frame; of pairs, the last one repeats the last pixel.
Bytes frameFor(const LumaPlace &place)
{
    Bytes frame = noise(static_cast<int>(place.frameBytes), 1, 1).pixels;
    for (std::size_t y = 0; place.step == 2 && y < height; ++y)
        for (std::size_t i = 0; i < place.sampleBytes; ++i) {
            const std::size_t last = (y * place.rowSamples + place.first + 2 * (width - 1)) * place.sampleBytes + i;
            frame[last + 2 * place.sampleBytes] = frame[last];
        }
    return frame;
}

Bytes sharpened(const Bytes &frame, const LumaPlace &place, int part)
{
    const auto offset = [&](int x, int y) {
        return (static_cast<std::size_t>(y) * place.rowSamples + place.first +
                static_cast<std::size_t>(x) * place.step) *
               place.sampleBytes;
    };
    const auto luma = [&](int x, int y) {
        const std::size_t at = offset(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1));
        return place.sampleBytes == 1 ? frame[at] : frame[at] + 256 * frame[at + 1];
    };
    Bytes result = frame;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width + (place.step == 2); ++x) {
            const int at = std::min(x, width - 1); // what fills the last pair repeats the last pixel
            const int others = luma(at, y - 1) + luma(at, y + 1) + luma(at - 1, y) + luma(at + 1, y);
            const double more = std::floor((4 * luma(at, y) - others) / static_cast<double>(part));
            const int sum = std::clamp(luma(at, y) + static_cast<int>(more), 0, place.sampleBytes == 1 ? 255 : 65535);
            for (std::size_t i = 0; i < place.sampleBytes; ++i)
                result[offset(x, y) + i] = static_cast<std::uint8_t>(sum >> (8 * i));
        }
    }
    return result;
}

TEST_F(Convert, SharpensLumaAndLeavesChromaAlone)
{
    const LumaPlace places[] = {
        {"YUYV", 1, 0, 2, 16, 80}, {"YVYU", 1, 0, 2, 16, 80}, {"UYVY", 1, 1, 2, 16, 80}, {"Y216", 2, 0, 2, 16, 160},
        {"I422", 1, 0, 1, 7, 75},  {"NV16", 1, 0, 1, 7, 75},  {"P216", 2, 0, 1, 7, 150}, {"I216", 2, 0, 1, 7, 150},
        {"NV12", 1, 0, 1, 7, 59},  {"I444", 1, 0, 1, 7, 105}, {"GREY8", 1, 0, 1, 7, 35}, {"GREY16", 2, 0, 1, 7, 70},
    };
    constexpr std::pair<const char *, int> amounts[] = {{"1", 1}, {"0.5", 2}, {"0.125", 8}, {"0.0625", 16}};
    std::size_t next = 0;
    for (const LumaPlace &place : places) {
        const auto &[amount, part] = amounts[next++ % std::size(amounts)];
        const std::string options = std::string("--sharpen-luma ") + amount;
        const Bytes frame = frameFor(place);
        const Bytes twoFrames = frame + Bytes(frame.rbegin(), frame.rend());
        const Bytes wanted = sharpened(frame, place, part);
        const Bytes made = convert(twoFrames, place.layout, place.layout, options);
        ASSERT_EQ(made.size(), 2 * frame.size());
        EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), made.begin())) << place.layout << ' ' << options;
        EXPECT_TRUE(std::regex_search(lastOutput, std::regex("sharpen luma +SharpenLuma\\w+ +signal [1-6] +SSE2")))
            << lastOutput;
        EXPECT_EQ(convert(twoFrames, place.layout, place.layout, options + " --threads 3 --runs 2"), made);
    }
}

TEST_F(Convert, SharpensOnceOnTheWay)
{
    const LumaPlace uyvy{"UYVY", 1, 1, 2, 16, 80};
    const LumaPlace yuyv{"YUYV", 1, 0, 2, 16, 80};
    const Bytes frame = frameFor(uyvy);
    const std::string options = "--sharpen-luma 0.25";
    EXPECT_EQ(convert(frame, "UYVY", "BGR24", options), convert(sharpened(frame, uyvy, 4), "UYVY", "BGR24"));
    EXPECT_EQ(convert(frame, "UYVY", "NV12", options), convert(sharpened(frame, uyvy, 4), "UYVY", "NV12"));
    const Bytes picture = noise(width * height * 3, 1, 1).pixels;
    EXPECT_EQ(convert(picture, "BGR24", "YUYV", options), sharpened(convert(picture, "BGR24", "YUYV"), yuyv, 4));
}

// --- Files ---------------------------------------------------------------------------------------------------

TEST_F(Convert, ReadsAndWritesPictures)
{
    const Image picture = noise(width, height, 3);
    const std::string in = writeFile("in.bmp", bmpOf(picture));
    ASSERT_EQ(run("convert " + in + ' ' + quoted("raw") + " --to gbr8").status, 0);
    Bytes planes;
    for (const int channel : {1, 0, 2})
        planes = std::move(planes) +
                 makeImage(width, height, 1, [&](int x, int y, int) { return picture.at(x, y, channel); }).pixels;
    EXPECT_EQ(read("raw"), planes);
    ASSERT_EQ(run("convert " + quoted("raw") + ' ' + quoted("back.bmp") + " --from GBR8 --to bgra32" + size).status, 0);
    const auto withAlpha = [&](int alpha) {
        return makeImage(width, height, 4, [&](int x, int y, int c) { return c == 3 ? alpha : picture.at(x, y, c); });
    };
    EXPECT_EQ(read("back.bmp"), bmpOf(withAlpha(255)));
    ASSERT_EQ(run("convert " + in + ' ' + quoted("deep.bmp") + " --to BGRA32 --alpha 9").status, 0);
    EXPECT_EQ(read("deep.bmp"), bmpOf(withAlpha(9)));
    ASSERT_EQ(run("convert " + quoted("deep.bmp") + ' ' + quoted("alpha") + " --to A8").status, 0);
    EXPECT_EQ(read("alpha"), Bytes(width * height, 9));
}

TEST_F(Convert, WholeFramesAreKeptWhenTheFileEndsWithinOne)
{
    const Bytes frames = noise(59 * 3 + 58, 1, 1).pixels;
    const Bytes first(frames.begin(), frames.begin() + 59);
    const Bytes third(frames.begin() + 2 * 59, frames.begin() + 3 * 59);
    const Bytes wanted = convert(first, "NV12", "RGB24");
    const Bytes wantedLast = convert(third, "NV12", "RGB24");

    const Outcome outcome =
        run("convert " + writeFile("in", frames) + ' ' + quoted("out") + " --from NV12 --to RGB24" + size);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.errors, "after 3 whole frames, 58 bytes of 59 were left out")) << outcome.errors;
    EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
    EXPECT_TRUE(contains(outcome.output, "3 frames of 7 x 5"));
    const Bytes made = read("out");
    ASSERT_EQ(made.size(), 3 * wanted.size());
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), made.begin()));
    EXPECT_TRUE(std::equal(wantedLast.begin(), wantedLast.end(), made.begin() + 2 * std::ssize(wanted)));
}

TEST_F(Convert, ProblemsAreOneLineAndLeaveTheOutputAlone)
{
    const std::string in = writeFile("in", Bytes(118, 9));
    const std::string bmp = writeFile("in.bmp", bmpOf(noise(4, 4, 3)));
    const std::string out = ' ' + quoted("out") + ' ';
    const std::string outBmp = ' ' + quoted("out.bmp") + ' ';
    fs::create_directory(directory / "folder");
    writeFile("taken.part", {1});

    struct Case {
        std::string arguments;
        int status;
        std::string says;
    };
    const Case cases[] = {
        {in, 2, "OUT"},
        {in + out, 2, "--from and --size"},
        {in + out + "--from NV12 --to RGB24", 2, "--from and --size"},
        {in + out + "--from NV12" + size, 2, "--to"},
        {in + out + "--from NV13 --to RGB24" + size, 2, "no layout 'NV13'; 'vela formats'"},
        {in + out + "--from NV12 --to RGB" + size, 2, "no layout 'RGB'"},
        {in + out + "--from NV12 --to nv12" + size, 2, "NV12 already"},
        {in + out + "--from A8 --to NV12" + size, 2, "no conversions lead from A8 to NV12"},
        {in + out + "--from NV12 --to RGB24 --size 7", 2, "--size: '7'"},
        {in + out + "--from NV12 --to RGB24 --size 7x", 2, "--size: '7x'"},
        {in + out + "--from NV12 --to RGB24 --size 7x5x3", 2, "'7x5x3'"},
        {in + out + "--from NV12 --to RGB24 --size 0x5", 2, "'0x5'"},
        {in + out + "--from NV12 --to RGB24 --size 7x-5", 2, "'7x-5'"},
        {in + out + "--from NV12 --to RGB24 --size 7x99999999999999999999", 2, "is no size"},
        {in + out + "--from NV12 --to RGB24 --size 16777217x1", 2, "is no size"},
        {in + out + "--from F32x4 --to RGB24 --size 16777216x16777216", 1, "118 of 4503599627370496 bytes"},
        {in + out + "--from NV12 --to RGB24 --size 70x50", 1, "no whole frame: 118 of 5250 bytes"},
        {in + out + "--from NV12 --to RGB24 --matrix bt601x" + size, 2, "--matrix"},
        {in + out + "--from NV12 --to RGB24 --range tv:pc" + size, 2, "--range"},
        {in + out + "--from NV12 --to RGB24 --threads 257" + size, 2, "--threads"},
        {in + out + "--from NV12 --to RGB24 --runs 0" + size, 2, "--runs"},
        {in + out + "--from NV12 --to BGRA32 --alpha 256" + size, 2, "--alpha"},
        {in + out + "--from NV12 --to RGB24 --alpha 9" + size, 2, "--alpha: RGB24 has no alpha"},
        {in + out + "--from NV12 --to F32x4 --alpha 9" + size, 2, "--alpha: no kernel of NV12 > F32x4"},
        {in + out + "--from NV12 --to RGB24 --sharpen-luma" + size, 2, "--sharpen-luma"},
        {in + out + "--from NV12 --to RGB24 --sharpen-luma much" + size, 2, "--sharpen-luma"},
        {in + out + "--from NV12 --to RGB24 --sharpen-luma 0.3" + size, 2, "0.25, 0.125 or 0.0625"},
        {in + out + "--from NV12 --to RGB24 --sharpen-luma 2" + size, 2, "takes 1, 0.5"},
        {in + out + "--from I210 --to I210 --sharpen-luma 1 --size 2x2", 2, "neither I210 nor what becomes of it"},
        {bmp + out + "--to BGRA32 --sharpen-luma 0.5", 2, "neither BGR24 nor what becomes of it has rows"},
        {in + outBmp + "--from NV12 --to RGB24" + size, 2, "BGR24 or BGRA32, not RGB24"},
        {in + outBmp + "--from NV12" + size, 1, "holds 2 frames"},
        {bmp + out + "--to NV12 --from BGR24", 2, "for raw frames"},
        {bmp + out + "--to NV12" + size, 2, "for raw frames"},
        {bmp + outBmp, 2, "BGR24 already"},
        {writeFile("text.bmp", Bytes(100, 'x')) + out + "--to NV12", 1, "not a BMP file"},
        {quoted("missing") + out + "--from NV12 --to RGB24" + size, 1, "no such file"},
        {quoted("folder") + out + "--from NV12 --to RGB24" + size, 1, "not a file"},
        {writeFile("empty", {}) + out + "--from NV12 --to RGB24" + size, 1, "0 of 59 bytes"},
        {in + ' ' + in + " --from NV12 --to RGB24" + size, 1, "replace the input"},
        {in + ' ' + quoted("folder") + " --from NV12 --to RGB24" + size, 1, "something else of that name"},
        {in + ' ' + quoted("missing/out") + " --from NV12 --to RGB24" + size, 1, "cannot be created"},
        {in + ' ' + quoted("taken") + " --from NV12 --to RGB24" + size, 1, "is in the way"},
    };
    for (const Case &wanted : cases) {
        writeFile("out", {1, 2, 3});
        const Outcome outcome = run("convert " + wanted.arguments);
        EXPECT_EQ(outcome.status, wanted.status) << wanted.arguments;
        EXPECT_TRUE(contains(outcome.errors, wanted.says)) << wanted.arguments << ": " << outcome.errors;
        EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
        EXPECT_EQ(outcome.output, "") << wanted.arguments;
        EXPECT_EQ(contentsOf(directory / "out"), "\1\2\3") << wanted.arguments;
        for (const char *left : {"out.part", "out.bmp", "out.bmp.part", "folder.part"})
            EXPECT_FALSE(fs::exists(directory / left)) << left << ' ' << wanted.arguments;
    }
    EXPECT_EQ(read("in"), Bytes(118, 9));
}

#if !defined(_WIN32)
TEST_F(Convert, FullDisksLeaveTheOldFile)
{
    const std::string in = writeFile("in", Bytes(1 << 20));
    writeFile("out", {1, 2, 3});
    // A limit for the size of files stands for the end of the disk.
    const Outcome outcome = run("convert " + in + ' ' + quoted("out") + " --from NV12 --to BGRA32 --size 64x64",
                                "trap '' XFSZ; ulimit -f 64; ");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(contains(outcome.errors, "is the disk full?")) << outcome.errors;
    EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
    EXPECT_EQ(contentsOf(directory / "out"), "\1\2\3");
    EXPECT_FALSE(fs::exists(directory / "out.part"));
}
#endif

TEST_F(Convert, FormatsListsTheConversionsOfALayout)
{
    const Outcome outcome = run("formats v210");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(std::regex_search(outcome.output, std::regex("BGRA32 +V210 +CscBgraToV210 +colorspace 69 +SSE2")))
        << outcome.output;
    EXPECT_FALSE(contains(outcome.output, "NV12")) << outcome.output;
    EXPECT_EQ(run("formats V211").status, 2);
}

} // namespace
