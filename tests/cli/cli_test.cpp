// The command-line host as its users meet it: the built program, its output, its files and its exit status.
#include "pictures.hpp"
#include "run_vela.hpp"

#include <vela/vela.hpp>

#include <regex>

namespace {

namespace fs = std::filesystem;
using namespace vela::test;

std::uint8_t smoothedPixel(const Image &image, int x, int y, int channel)
{
    constexpr int weights[] = {1, 2, 1};
    int sum = 8;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            sum += weights[dy + 1] * weights[dx + 1] * image.at(x + dx, y + dy, channel);
    return static_cast<std::uint8_t>(sum / 16);
}

Image withAlpha(const Image &image)
{
    return makeImage(image.width, image.height, 4,
                     [&](int x, int y, int c) { return c < image.channels ? image.at(x, y, c) : 255; });
}

Image smoothed(const Image &image)
{
    return makeImage(image.width, image.height, image.channels,
                     [&](int x, int y, int c) { return smoothedPixel(image, x, y, c); });
}

Image sharpened(const Image &image, const Image &blurred)
{
    return makeImage(image.width, image.height, image.channels, [&](int x, int y, int c) {
        const int a = image.at(x, y, c);
        const int correction = 5 * (a - blurred.at(x, y, c)) + 8;
        return std::clamp(a + (correction >> 4), 0, 255); // >> rounds down, as it does in the kernel
    });
}

class Cli : public RunVela {
protected:
    // Runs enhance on an image and returns what it printed.
    Outcome enhance(const Image &image, const std::string &options = "") const
    {
        return run("enhance --runs 1 " + options + ' ' + writeFile("in.bmp", bmpOf(image)) + ' ' + outputDirectory());
    }

    std::string outputDirectory() const { return '"' + (directory / "out").string() + '"'; }

    Bytes result(const std::string &name) const
    {
        const std::string text = contentsOf(directory / "out" / ("in-" + name + ".bmp"));
        return Bytes(text.begin(), text.end());
    }
};

TEST_F(Cli, InfoShowsEveryFamilyWithItsSlots)
{
    const Outcome outcome = run("info");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(contains(outcome.output, "VelaCPUBase"));
    EXPECT_TRUE(contains(outcome.output, "NumberOfThreads"));

    const auto slotsAndFilled = [&](const std::string &member) {
        std::smatch match;
        if (!std::regex_search(outcome.output, match, std::regex(' ' + member + " +(\\d+) +(\\d+) ")))
            return std::string("no row");
        return match[1].str() + ' ' + match[2].str();
    };
    const auto expected = [](std::size_t slots, std::size_t filled) {
        return std::to_string(slots) + ' ' + std::to_string(filled);
    };
#define FAMILY(id, tables, registerExport, description) EXPECT_TRUE(contains(outcome.output, "  " #id));
#define SUBTABLE(id, member, type, description) \
    EXPECT_EQ(slotsAndFilled(#member), expected(type##_slots, vela::slotInfo<type>().size())) << #member;
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY
}

TEST_F(Cli, InfoListsTheSlotsOfAFamily)
{
    const Outcome colors = run("info --slots colorspace --verbose");
    ASSERT_EQ(colors.status, 0) << colors.errors;
    for (const VcbSlotInfo &slot : vela::slotInfo<VcbColorSpaceProcs>()) {
        EXPECT_TRUE(contains(colors.output, slot.name)) << slot.name;
        EXPECT_TRUE(contains(colors.output, slot.signature)) << slot.name;
    }
    EXPECT_TRUE(contains(colors.output, "CscKernel007  AppendAlpha24To32"));
    EXPECT_FALSE(contains(run("info --slots video").output, "uint8_t")) << "signatures were not asked for";
}

TEST_F(Cli, InfoNamesTheTierThatRuns)
{
    const std::string info = run("info").output;
    const std::string slots = run("info --slots video").output;
    std::smatch level;
    ASSERT_TRUE(std::regex_search(info, level, std::regex("level (\\d+) "))) << info;
    const bool avx2 = std::stoi(level[1]) >= VCB_CPU_AVX2;
    EXPECT_TRUE(contains(slots, "8  " + std::string(avx2 ? "AVX2" : "SSE2") + "  SharpenU8")) << info << slots;
    EXPECT_TRUE(contains(slots, "0  SSE2  SmoothRows121U8")) << "the slot has no other tier\n" << slots;
}

TEST_F(Cli, HelpNamesSubcommandsAndSucceeds)
{
    const Outcome outcome = run("--help");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(contains(outcome.output, "info"));
    EXPECT_TRUE(contains(outcome.output, "enhance"));
    EXPECT_EQ(contains(outcome.output, "audio"), VELA_AUDIO == 1);
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(Cli, ProblemsAreOneLineAndAStatus)
{
    const Image image = noise(4, 4, 3);
    const Bytes good = bmpOf(image);
    const auto changed = [&](std::size_t offset, std::uint8_t value) {
        Bytes file = good;
        file[offset] = value;
        return file;
    };
    const std::string out = ' ' + outputDirectory();
    const std::string goodFile = writeFile("good.bmp", good);

    struct Case {
        std::string arguments;
        int status;
        std::string says;
    };
    const Case cases[] = {
        {"", 2, "subcommand"},
        {"frobnicate", 2, "frobnicate"},
        {"info --slots nothing", 2, "colorspace, video"},
        {"enhance " + goodFile + out + " --passes 0", 2, "--passes"},
        {"enhance " + goodFile, 2, "OUTDIR"},
        {"--library no-such-library info", 1, "no-such-library"},
        {"--library " + goodFile + " info", 1, "cannot load the library"},
        {"enhance missing.bmp" + out, 1, "cannot read 'missing.bmp'"},
        {"enhance " + goodFile + ' ' + goodFile, 1, "cannot create directory"},
        {"enhance " + writeFile("text.bmp", Bytes(100, 'x')) + out, 1, "not a BMP file"},
        {"enhance " + writeFile("short.bmp", Bytes(good.begin(), good.begin() + 20)) + out, 1, "not a BMP file"},
        {"enhance " + writeFile("cut.bmp", Bytes(good.begin(), good.end() - 1)) + out, 1, "ends before its last row"},
        {"enhance " + writeFile("huge.bmp", changed(21, 0x7F)) + out, 1, "ends before its last row"},
        {"enhance " + writeFile("grey.bmp", changed(28, 8)) + out, 1, "8 bits per pixel"},
        {"enhance " + writeFile("packed.bmp", changed(30, 1)) + out, 1, "compressed"},
        {"enhance " + writeFile("version5.bmp", changed(10, 138)) + out, 1, "version 3"},
        {"enhance " + writeFile("topdown.bmp", changed(25, 0xFF)) + out, 1, "top-down"},
        {"enhance " + writeFile("empty.bmp", changed(22, 0)) + out, 1, "empty"},
    };
    for (const Case &wanted : cases) {
        const Outcome outcome = run(wanted.arguments);
        EXPECT_EQ(outcome.status, wanted.status) << wanted.arguments;
        EXPECT_TRUE(contains(outcome.errors, wanted.says)) << wanted.arguments << ": " << outcome.errors;
        EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
        EXPECT_EQ(outcome.output, "") << wanted.arguments;
    }
}

TEST_F(Cli, FlatPicturesStayFlat)
{
    const Image grey = makeImage(33, 7, 3, [](int, int, int) { return 77; });
    const Outcome outcome = enhance(grey);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    for (const char *name : {"smoothed", "sharpened", "yuyv", "uyvy"})
        EXPECT_EQ(result(name), bmpOf(withAlpha(grey))) << name;
    EXPECT_TRUE(contains(outcome.output, "PSNR exact")) << outcome.output;
}

TEST_F(Cli, SmoothsAndSharpensByTheFormulas)
{
    const Image images[] = {noise(1, 1, 3), noise(2, 1, 3), noise(1, 9, 3), noise(17, 5, 3), noise(64, 33, 4)};
    for (const Image &input : images) {
        const Outcome outcome = enhance(input, "--threads 3 --passes 2 --strength 2");
        ASSERT_EQ(outcome.status, 0) << outcome.errors;
        const Image original = withAlpha(input);
        const Image blurred = smoothed(smoothed(original));
        const std::string size = std::to_string(input.width) + " x " + std::to_string(input.height);
        EXPECT_TRUE(contains(outcome.output, size));
        EXPECT_EQ(result("smoothed"), bmpOf(blurred)) << size;
        EXPECT_EQ(result("sharpened"), bmpOf(sharpened(sharpened(original, blurred), blurred))) << size;
    }
}

TEST_F(Cli, RoundTripsKeepLumaAndReportChroma)
{
    const Image photo = noise(31, 16, 3);
    const Outcome outcome = enhance(photo);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(contains(outcome.output, "yuyv round trip: PSNR ")) << outcome.output;
    EXPECT_TRUE(contains(outcome.output, "uyvy round trip: PSNR ")) << outcome.output;
    EXPECT_TRUE(contains(outcome.output, "Y exact, U ")) << outcome.output;
    EXPECT_EQ(result("yuyv"), result("uyvy")) << "the layouts lose the same";
    EXPECT_NE(result("yuyv"), bmpOf(withAlpha(photo))) << "noise cannot survive the loss of half its chroma";

    // A grey ramp has no chroma to lose.
    const Image ramp = makeImage(32, 4, 3, [](int x, int, int) { return 4 * x; });
    EXPECT_TRUE(contains(enhance(ramp).output, "PSNR exact"));
}

#if !defined(_WIN32)
TEST_F(Cli, FileNamesMayBeAnyBytes)
{
    const Image image = noise(3, 3, 3);
    for (const std::string name : {"\xC3\xBC\xE2\x82\xAC\xF0\x9F\x8E\xA8", "not-utf8-\xFF\xC3"}) {
        const Outcome outcome =
            run("enhance --runs 1 " + writeFile(name + ".bmp", bmpOf(image)) + ' ' + outputDirectory());
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        EXPECT_TRUE(fs::exists(directory / "out" / (name + "-smoothed.bmp"))) << name;
    }
}
#endif

} // namespace
