// vela tonemap and vela curves as their users meet them. What pictures should hold is written down here in double
// precision, from the definitions of the curves and with matrices as their publishers print them.
#include "pictures.hpp"
#include "run_vela.hpp"

#include <array>
#include <cmath>
#include <map>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using namespace vela::test;

using Codes = std::array<unsigned, 3>; // R, G, B of 10 bits
using Rgb = std::array<double, 3>;

// --- Pictures ------------------------------------------------------------------------------------------------

enum class Words { methodA, methodB };
enum class Order { bigEndian, littleEndian };

// A DPX file of one element: 10-bit R, G, B in words of 32 bits.
Bytes dpxOf(int width, const std::vector<Codes> &pixels, Words words = Words::methodA, Order order = Order::bigEndian)
{
    Bytes file(2048);
    const auto put = [&](std::size_t offset, std::size_t bytes, std::uint32_t value) {
        for (std::size_t i = 0; i < bytes; ++i)
            file[offset + (order == Order::bigEndian ? bytes - 1 - i : i)] =
                static_cast<std::uint8_t>(value >> (8 * i));
    };
    put(0, 4, 0x53445058); // SDPX
    put(4, 4, 2112);
    put(772, 4, static_cast<std::uint32_t>(width));
    put(776, 4, static_cast<std::uint32_t>(pixels.size()) / static_cast<std::uint32_t>(width));
    file[800] = 50; // R, G, B
    file[803] = 10;
    put(804, 2, words == Words::methodA ? 1 : 2);
    file.resize(2112);
    for (const Codes &pixel : pixels) {
        file.resize(file.size() + 4);
        put(file.size() - 4, 4, (pixel[0] << 20 | pixel[1] << 10 | pixel[2]) << (words == Words::methodA ? 2 : 0));
    }
    return file;
}

// Greys from black to 10000 cd/m2, and colours, some of them outside BT.709.
constexpr int width = 7;
std::vector<Codes> someCodes()
{
    std::vector<Codes> codes;
    for (unsigned grey = 0; grey <= 1023; grey += 31)
        codes.push_back({grey, grey, grey});
    for (unsigned i = 0; i < 8; ++i)
        codes.push_back({i & 1 ? 600u : 100u, i & 2 ? 520u : 180u, i & 4 ? 770u : 0u});
    return codes;
}

class Tonemap : public RunVela {
protected:
    std::string quoted(const std::string &name) const { return '"' + (directory / name).string() + '"'; }

    // The bytes of the BMP that a picture becomes.
    Bytes tonemap(const Bytes &picture, const std::string &options) const
    {
        const Outcome outcome =
            run("tonemap --runs 1 " + writeFile("in", picture) + ' ' + quoted("out.bmp") + ' ' + options);
        EXPECT_EQ(outcome.status, 0) << options << ": " << outcome.errors;
        lastOutput = outcome.output;
        const std::string text = contentsOf(directory / "out.bmp");
        return Bytes(text.begin(), text.end());
    }

    // B, G, R of a picture's pixels, top row first.
    Bytes pixelsOf(const std::vector<Codes> &codes, const std::string &options) const
    {
        const Bytes file = tonemap(dpxOf(width, codes), options);
        const std::size_t rows = codes.size() / width;
        constexpr std::size_t fileRow = (3 * width + 3) / 4 * 4;
        EXPECT_EQ(file.size(), headerBytes + rows * fileRow);
        Bytes pixels;
        for (std::size_t row = rows; row-- > 0;)
            for (std::size_t i = 0; i < 3 * width; ++i)
                pixels.push_back(file.at(headerBytes + row * fileRow + i));
        return pixels;
    }

    mutable std::string lastOutput;
};

// --- Definitions ---------------------------------------------------------------------------------------------

double pqToLight(double code) // SMPTE ST 2084; 1.0 is 10000 cd/m2
{
    const double p = std::pow(code, 32 / 2523.0);
    return std::pow(std::max(p - 107 / 128.0, 0.0) / (2413 / 128.0 - 2392 / 128.0 * p), 8192 / 1305.0);
}

double lightToPq(double light)
{
    const double p = std::pow(light, 1305 / 8192.0);
    return std::pow((107 / 128.0 + 2413 / 128.0 * p) / (1 + 2392 / 128.0 * p), 2523 / 32.0);
}

double bt709(double light)
{
    const double x = std::clamp(light, 0.0, 1.0);
    return x < 0.018 ? 4.5 * x : 1.099 * std::pow(x, 0.45) - 0.099;
}

// Report ITU-R BT.2390, the roll-off between two peaks in cd/m2, black at 0; light 1.0 is 100 cd/m2.
double bt2390(double light, double srcPeak, double dstPeak)
{
    const double scale = lightToPq(srcPeak / 10000);
    const double largest = lightToPq(dstPeak / 10000) / scale;
    const double knee = 1.5 * largest - 0.5;
    double e = std::min(lightToPq(light / 100) / scale, 1.0);
    if (e >= knee) {
        const double t = (e - knee) / (1 - knee);
        e = (2 * t * t * t - 3 * t * t + 1) * knee + (t * t * t - 2 * t * t + t) * (1 - knee) +
            (-2 * t * t * t + 3 * t * t) * largest;
    }
    return 100 * pqToLight(e * scale);
}

using Matrix = std::array<Rgb, 3>;
constexpr Matrix unity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Matrix fromBt2020{
    {{1.660491, -0.587641, -0.072850}, {-0.124550, 1.132900, -0.008349}, {-0.018151, -0.100579, 1.118730}}};

// --- Values --------------------------------------------------------------------------------------------------

struct Conversion {
    const char *name;
    const char *options;
    Matrix matrix;
    double (*decode)(double code);
    double (*map)(double light);
    double (*encode)(double light);
};

double pq(double code) { return 100 * pqToLight(code); }
double same(double x) { return x; }
double power24(double code) { return std::pow(code, 2.4); }
double power22(double light) { return std::pow(std::clamp(light, 0.0, 1.0), 1 / 2.2); }

const Conversion conversions[] = {
    {"Cut off", "--mode none", fromBt2020, pq, same, bt709},
    {"Defaults", "", fromBt2020, pq, [](double x) { return bt2390(x, 1000, 100); }, bt709},
    {"Peaks of both", "--from pq --to bt709 --primaries bt2020:bt709 --mode bt2390 --peak 4000:200 --threads 3",
     fromBt2020, pq, [](double x) { return bt2390(x, 4000, 200) / 2; },
     bt709}, // 1.0 of BT.709 is the display's 200 cd/m2
    {"Display of 400 cd/m2", "--mode none --peak 1000:400 --primaries bt2020:bt2020", unity, pq,
     [](double x) { return x / 4; }, bt709},
    {"To PQ", "--from power2.4 --to pq --mode none --primaries bt709:bt709", unity, power24, [](double x) { return x; },
     [](double x) { return lightToPq(x / 100); }},
    // The matrices of the gamuts to BT.709 as published: P3, Sony's and Panasonic's.
    {"P3",
     "--from power2.4 --to power2.2 --mode none --primaries p3:bt709",
     {{{1.224940, -0.224940, 0}, {-0.042057, 1.042057, 0}, {-0.019638, -0.078636, 1.098274}}},
     power24,
     same,
     power22},
    {"S-Gamut3",
     "--from power2.4 --to power2.2 --mode none --primaries s-gamut3:bt709",
     {{{1.877915, -0.794169, -0.083746}, {-0.176807, 1.351000, -0.174193}, {-0.026201, -0.148422, 1.174623}}},
     power24,
     same,
     power22},
    {"S-Gamut3.Cine",
     "--from power2.4 --to power2.2 --mode none --primaries s-gamut3.cine:bt709",
     {{{1.626947, -0.540139, -0.086809}, {-0.178516, 1.417941, -0.239425}, {-0.044436, -0.195920, 1.240356}}},
     power24,
     same,
     power22},
    {"V-Gamut",
     "--from power2.4 --to power2.2 --mode none --primaries v-gamut:bt709",
     {{{1.806576, -0.695697, -0.110879}, {-0.170090, 1.305955, -0.135865}, {-0.025206, -0.154468, 1.179674}}},
     power24,
     same,
     power22},
};

// Both tables are looked up by truncation: light is that of a code of up to 1/4095 less, and what is encoded is up to
// 1/4096 of light less. The sign of a weight says which of these two makes the result smaller.
void expectWithin(const Conversion &conversion, const Rgb &before, std::uint8_t found, std::size_t component)
{
    const Rgb &weights = conversion.matrix[component];
    const auto encoded = [&](bool smallest) {
        double light = smallest ? -1.0 / 4096 : 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double less = (weights[i] > 0) == smallest ? 1.0 / 4095 : 0.0;
            light += weights[i] * conversion.map(conversion.decode(std::max(before[i] - less, 0.0)));
        }
        return 255 * conversion.encode(std::max(light, 0.0));
    };
    constexpr double rounding = 0.51;
    EXPECT_GE(found, encoded(true) - rounding)
        << conversion.name << ", code " << 1023 * before[component] << " of component " << component;
    EXPECT_LE(found, encoded(false) + rounding)
        << conversion.name << ", code " << 1023 * before[component] << " of component " << component;
}

TEST_F(Tonemap, ValuesAreTheFormulas)
{
    const std::vector<Codes> codes = someCodes();
    ASSERT_EQ(codes.size() % width, 0u);
    for (const Conversion &conversion : conversions) {
        const Bytes pixels = pixelsOf(codes, conversion.options);
        ASSERT_EQ(pixels.size(), 3 * codes.size());
        for (std::size_t i = 0; i < codes.size(); ++i)
            for (std::size_t c = 0; c < 3; ++c)
                expectWithin(conversion, {codes[i][0] / 1023.0, codes[i][1] / 1023.0, codes[i][2] / 1023.0},
                             pixels[3 * i + 2 - c], c);
    }
}

// White is white in all gamuts, the one with another white point too.
TEST_F(Tonemap, GamutsKeepGreys)
{
    const std::vector<Codes> greys(width, {700, 700, 700});
    const Bytes expected(greys.size() * 3, pixelsOf(greys, "--mode none --from power2.2 --primaries bt709:bt709")[0]);
    for (const char *gamut : {"bt2020", "bt601-525", "bt601-625", "p3", "p3-dci", "s-gamut3", "s-gamut3.cine",
                              "cinema-gamut", "redwidegamut", "v-gamut"})
        EXPECT_EQ(pixelsOf(greys, std::string("--mode none --from power2.2 --primaries bt709:") + gamut), expected)
            << gamut;
}

// Every tone map ends in the display's peak, whatever the target measures light in.
TEST_F(Tonemap, PeaksMeetTheTarget)
{
    const unsigned peak = 769; // 1000 cd/m2
    const std::vector<Codes> whites(width, {peak, peak, peak});
    const auto white = [&](const std::string &options) {
        return static_cast<int>(pixelsOf(whites, "--primaries bt2020:bt2020 --peak 1000:300 " + options)[0]);
    };
    const int absolute = static_cast<int>(255 * lightToPq(0.03) + 0.5);
    for (const char *mode : {"knee", "bt2390", "scene-light"}) {
        EXPECT_NEAR(white(std::string("--mode ") + mode), 255, 1) << mode;
        EXPECT_NEAR(white(std::string("--to pq --mode ") + mode), absolute, 1) << mode;
    }
}

// --- Files ---------------------------------------------------------------------------------------------------

TEST_F(Tonemap, EveryKindOfFileGivesTheSamePicture)
{
    // Thirds of the whole have codes of 8 and of 10 bits.
    std::vector<Codes> codes;
    for (unsigned i = 0; i < 63; ++i)
        codes.push_back({i % 4 * 341, i / 4 % 4 * 341, i / 16 * 341});
    const auto image = [&](int channels) {
        return makeImage(width, 9, channels, [&](int x, int y, int c) {
            return c == 3
                       ? x * 30
                       : static_cast<int>(codes[static_cast<std::size_t>(y * width + x)][2 - static_cast<unsigned>(c)] /
                                          341 * 85);
        });
    };
    const std::string options = "--from bt709 --to pq --primaries bt709:bt2020 --mode none";
    const Bytes expected = tonemap(dpxOf(width, codes), options);
    EXPECT_TRUE(contains(lastOutput, "7 x 9, DPX of 10 bits")) << lastOutput;
    EXPECT_TRUE(contains(lastOutput, "CscDpx3AToF32x4")) << lastOutput;
    EXPECT_TRUE(contains(lastOutput, "CscConvertHdrPixels  colorspace 401")) << lastOutput;
    EXPECT_EQ(tonemap(dpxOf(width, codes, Words::methodB), options), expected);
    EXPECT_TRUE(contains(lastOutput, "CscDpx3BToF32x4")) << lastOutput;
    EXPECT_EQ(tonemap(dpxOf(width, codes, Words::methodA, Order::littleEndian), options), expected);
    EXPECT_TRUE(contains(lastOutput, "CscSwapEndian32")) << lastOutput;

    const Bytes bmp = tonemap(bmpOf(image(3)), options);
    EXPECT_EQ(tonemap(bmpOf(image(4)), options), bmp);
    ASSERT_EQ(bmp.size(), expected.size());
    for (std::size_t i = 0; i < bmp.size(); ++i)
        ASSERT_NEAR(bmp[i], expected[i], 1) << i; // a third as a float may fall on either side of a table's step
}

TEST_F(Tonemap, ProblemsAreOneLineAndAStatus)
{
    const Bytes good = dpxOf(width, someCodes());
    const auto changed = [&](std::size_t offset, std::uint8_t value) {
        Bytes file = good;
        file[offset] = value;
        return file;
    };
    const std::string in = writeFile("good.dpx", good);
    const std::string out = ' ' + quoted("out.bmp");
    struct Case {
        std::string arguments;
        int status;
        std::string says;
    };
    const Case cases[] = {
        {in, 2, "OUT.bmp"},
        {in + out + " --from pg", 2, "--from"},
        {in + out + " --to linear", 2, "--to"},
        {in + out + " --mode hable", 2, "--mode"},
        {in + out + " --primaries bt2020", 2, "'bt2020' is not SRC:DST"},
        {in + out + " --primaries bt2020:bt710", 2, "bt601-525"},
        {in + out + " --primaries bt2020:bt709:p3", 2, "--primaries"},
        {in + out + " --peak 1000", 2, "--peak"},
        {in + out + " --peak 1000:0", 2, "1 to 10000 cd/m2"},
        {in + out + " --peak 10001:100", 2, "--peak"},
        {in + out + " --peak nan:100", 2, "--peak"},
        {in + out + " --peak 1000:100cd", 2, "--peak"},
        {in + out + " --runs 0", 2, "--runs"},
        {"missing.dpx" + out, 1, "cannot read 'missing.dpx'"},
        {'"' + directory.string() + '"' + out, 1, "not a file"},
        {in + ' ' + in, 1, "would replace the input"},
        {in + ' ' + quoted("no/such/out.bmp"), 1, "cannot write"},
        {writeFile("text.dpx", Bytes(3000, 'x')) + out, 1, "not a DPX file"},
        {writeFile("text.png", Bytes(3000, 'x')) + out, 1, "not a BMP file"},
        {writeFile("short.dpx", Bytes(good.begin(), good.begin() + 2000)) + out, 1, "within its header"},
        {writeFile("cut.dpx", Bytes(good.begin(), good.end() - 1)) + out, 1, "ends before its last row"},
        {writeFile("huge.dpx", changed(776, 0x7F)) + out, 1, "ends before its last row"},
        {writeFile("alpha.dpx", changed(800, 51)) + out, 1, "R, G, B"},
        {writeFile("deep.dpx", changed(803, 16)) + out, 1, "10 bits"},
        {writeFile("runs.dpx", changed(807, 1)) + out, 1, "run-length"},
        {writeFile("empty.dpx", changed(775, 0)) + out, 1, "empty"},
        {writeFile("grey.bmp", Bytes{'B', 'M'}) + out, 1, "not a BMP file"},
    };
    for (const Case &wanted : cases) {
        const Outcome outcome = run("tonemap " + wanted.arguments);
        EXPECT_EQ(outcome.status, wanted.status) << wanted.arguments;
        EXPECT_TRUE(contains(outcome.errors, wanted.says)) << wanted.arguments << ": " << outcome.errors;
        EXPECT_TRUE(isOneComplaint(outcome.errors)) << outcome.errors;
        EXPECT_EQ(outcome.output, "") << wanted.arguments;
        EXPECT_FALSE(fs::exists(directory / "out.bmp") || fs::exists(directory / "out.bmp.part")) << wanted.arguments;
    }
}

// --- vela curves ---------------------------------------------------------------------------------------------

using Columns = std::map<std::string, std::vector<double>>;

Columns columnsOf(const std::string &csv)
{
    std::istringstream lines(csv);
    std::vector<std::string> names;
    Columns columns;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        std::size_t i = 0;
        for (std::string cell; std::getline(cells, cell, ','); ++i) {
            if (columns.size() <= i)
                names.push_back(cell), columns[cell];
            else
                columns.at(names.at(i)).push_back(std::stod(cell));
        }
    }
    return columns;
}

struct Point {
    const char *curve;
    std::size_t code; // of 1023
    double light;
    double tolerance; // relative; publishers round code values
};

// A point of every curve; it tells the curve from its relatives.
constexpr Point points[] = {
    {"bt709", 83, 0.018, 0.01},
    {"bt709", 512, 0.25982, 0.001},
    {"bt601", 512, 0.25982, 0.001},
    {"bt2020-12bit", 512, 0.25993, 0.001},
    {"power2.2", 512, 0.21811, 0.001}, // 0.50049^2.2
    {"power2.4", 512, 0.18991, 0.001},
    {"power2.6", 512, 0.16535, 0.001},
    {"power2.8", 512, 0.14397, 0.001},
    {"pq", 520, 1.0, 0.02}, // 100 cd/m2 at 0.508
    {"pq", 1023, 100, 0},
    {"hlg", 1023, 10, 0.001},       // 1000 cd/m2
    {"hlg-scene", 1023, 12, 0.001}, //
    {"s-log2", 330, 0.18, 0.02},    // grey 32.3 %
    {"s-log3", 420, 0.18, 0.001},   //
    {"s-log3", 0, -0.01645, 0.001}, // 95 codes below black, of 64.989 for 0.01125
    {"s-log3", 1023, 38.42, 0.001}, //
    {"s-log3-high", 420, 0.18, 0.001},
    {"s-log3-high", 1023, 56.2, 0.001},
    {"canon-log", 351, 0.2, 0.02}, // grey 34.3 %, and the end of the code values
    {"canon-log", 1023, 8.296, 0.001},
    {"canon-log2", 407, 0.2, 0.02}, // 39.8 %
    {"canon-log2", 1023, 65.82, 0.001},
    {"canon-log3", 351, 0.2, 0.02},
    {"canon-log3", 1023, 16.298, 0.001},
    {"log3g10", 341, 0.18, 0.001}, // grey at a third
    {"log3g10", 1023, 184.32, 0.001},
    {"v-log", 433, 0.18, 0.005},     //
    {"v-log", 1023, 46.086, 0.001},  //
    {"log-210", 391, 0.2, 0.005},    //
    {"log-210", 1023, 44.57, 0.001}, //
};

TEST_F(Tonemap, CurvesGoThroughTheirPublishersPoints)
{
    const Outcome outcome = run("curves --rows 1024");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    const Columns columns = columnsOf(outcome.output);
    EXPECT_EQ(columns.size(), 20u);
    ASSERT_EQ(columns.at("code").size(), 1024u);
    for (const Point &point : points) {
        const double found = columns.at(point.curve).at(point.code);
        EXPECT_NEAR(found, point.light, std::abs(point.light) * (point.tolerance + 1.0 / 2048))
            << point.curve << " at " << point.code;
    }
    std::map<std::vector<double>, std::string> names;
    for (const auto &[name, values] : columns)
        names[values] += name;
    EXPECT_EQ(names.size(), columns.size() - 1) << "only those of BT.601 and BT.709 are the same";
    EXPECT_EQ(names.at(columns.at("bt709")), "bt601bt709");
}

TEST_F(Tonemap, EncodedCurvesUndoDecodedOnes)
{
    const Columns light = columnsOf(run("curves --rows 1024").output);
    const Outcome outcome = run("curves --encode --rows 200");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    const Columns code = columnsOf(outcome.output);
    EXPECT_EQ(code.size(), light.size());
    for (const auto &[name, codes] : code) {
        if (name == "light")
            continue;
        const std::vector<double> &decoded = light.at(name);
        for (std::size_t i = 0; i < codes.size(); ++i) {
            const double x = code.at("light")[i];
            if (x > 15 || codes[i] >= 1) // beyond a table
                break;
            const auto below = static_cast<std::size_t>(codes[i] * 1023);
            EXPECT_LE(decoded[below], x * 1.001) << name << " at " << x;
            EXPECT_GE(decoded.at(std::min<std::size_t>(below + 2, 1023)), x * 0.999) << name << " at " << x;
        }
    }
}

} // namespace
