// The HDR conversion beside its oracle, which evaluates powers through the C library, and beside zimg, which does the
// same conversion of planes: PQ and BT.2020 to BT.709, with its transfer curves as they are and approximated. All work
// on the same picture, in random turns; figures are medians of one thread's time.

#include "hdr/setup.hpp"
#include "interleaved.hpp"

#include <CLI/CLI.hpp>
#if defined(VELA_HAS_ZIMG)
#include <zimg.h>
#endif

#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace vela::test::hdr {
namespace {

struct Options {
    unsigned width = 1920;
    unsigned height = 64;
    int repetitions = 9;
    double seconds = 0.05;
};

// Primaries of BT.2020 to those of BT.709, light as it is.
constexpr float toBt709[16] = {1.660491F,  -0.587641F, -0.072850F, 0, -0.124550F, 1.132900F, -0.008349F, 0,
                               -0.018151F, -0.100579F, 1.118730F,  0, 0,          0,         0,          1};

// A picture of floats R G B A, codes of PQ: smooth with some grain, up to 1000 cd/m2 and mostly far less.
struct Picture {
    explicit Picture(const Options &options)
        : width(options.width), height(options.height), pixels(std::size_t{4} * width * height)
    {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> grain(-0.01F, 0.01F);
        for (unsigned y = 0; y < height; ++y)
            for (unsigned x = 0; x < width; ++x)
                for (unsigned c = 0; c < 4; ++c) {
                    const double u = 0.5 + 0.5 * std::sin(0.011 * x + 0.9 * c) * std::cos(0.007 * y + 0.0031 * x);
                    pixels[4 * (std::size_t{y} * width + x) + c] =
                        static_cast<float>(0.15 + 0.6 * u * u) + grain(random);
                }
    }

    const unsigned width;
    const unsigned height;
    std::vector<float> pixels;
};

// --- Contestants --------------------------------------------------------------------------------------------

struct Contestant {
    std::string name;
    std::function<void()> work;
    std::int32_t mode = -1; // that slot 400 has to have set up
};

#if defined(VELA_HAS_ZIMG)
struct AlignedDelete {
    void operator()(float *memory) const { ::operator delete[](memory, std::align_val_t(64)); }
};
using AlignedFloats = std::unique_ptr<float[], AlignedDelete>;
AlignedFloats alignedFloats(std::size_t number)
{
    return AlignedFloats(static_cast<float *>(::operator new[](number * sizeof(float), std::align_val_t(64))));
}

// Planes R, G, B of a picture through a graph of zimg's.
class Zimg {
public:
    Zimg(const Picture &picture, zimg_cpu_type_e cpu, bool approximate)
        : picture_(picture), stride_((picture.width + 15) / 16 * 16)
    {
        const std::size_t plane = std::size_t{stride_} * picture.height;
        from_ = alignedFloats(3 * plane);
        to_ = alignedFloats(3 * plane);
        for (unsigned y = 0; y < picture.height; ++y)
            for (unsigned x = 0; x < picture.width; ++x)
                for (unsigned c = 0; c < 3; ++c)
                    from_[c * plane + y * stride_ + x] = picture.pixels[4 * (std::size_t{y} * picture.width + x) + c];

        zimg_image_format source;
        zimg_image_format_default(&source, ZIMG_API_VERSION);
        source.width = picture.width;
        source.height = picture.height;
        source.pixel_type = ZIMG_PIXEL_FLOAT;
        source.color_family = ZIMG_COLOR_RGB;
        source.matrix_coefficients = ZIMG_MATRIX_RGB;
        source.pixel_range = ZIMG_RANGE_FULL;
        source.depth = 32;
        zimg_image_format target = source;
        source.transfer_characteristics = ZIMG_TRANSFER_ST2084;
        source.color_primaries = ZIMG_PRIMARIES_BT2020;
        target.transfer_characteristics = ZIMG_TRANSFER_BT709;
        target.color_primaries = ZIMG_PRIMARIES_BT709;
        zimg_graph_builder_params params;
        zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
        params.cpu_type = cpu;
        params.allow_approximate_gamma = approximate;
        graph_.reset(zimg_filter_graph_build(&source, &target, &params));
        if (!graph_) {
            char text[256];
            zimg_get_last_error(text, sizeof(text));
            throw std::runtime_error(std::string("zimg: ") + text);
        }
        std::size_t bytes = 0;
        zimg_filter_graph_get_tmp_size(graph_.get(), &bytes);
        work_ = alignedFloats(bytes / sizeof(float) + 1);
    }

    void operator()() const
    {
        zimg_image_buffer_const source{};
        zimg_image_buffer target{};
        source.version = ZIMG_API_VERSION;
        target.version = ZIMG_API_VERSION;
        const std::size_t plane = std::size_t{stride_} * picture_.height;
        const auto strideBytes = static_cast<std::ptrdiff_t>(stride_ * sizeof(float));
        for (unsigned c = 0; c < 3; ++c) {
            source.plane[c] = {from_.get() + c * plane, strideBytes, ZIMG_BUFFER_MAX};
            target.plane[c] = {to_.get() + c * plane, strideBytes, ZIMG_BUFFER_MAX};
        }
        if (zimg_filter_graph_process(graph_.get(), &source, &target, work_.get(), nullptr, nullptr, nullptr, nullptr))
            throw std::runtime_error("zimg failed");
    }

    float result(std::size_t pixel, unsigned component) const
    {
        const std::size_t y = pixel / picture_.width;
        return to_[component * stride_ * picture_.height + y * stride_ + pixel % picture_.width];
    }

private:
    struct FreeGraph {
        void operator()(zimg_filter_graph *graph) const { zimg_filter_graph_free(graph); }
    };

    const Picture &picture_;
    unsigned stride_;
    AlignedFloats from_;
    AlignedFloats to_;
    AlignedFloats work_;
    std::unique_ptr<zimg_filter_graph, FreeGraph> graph_;
};

// Of light, where the steps of our tables are even: those of PQ are 0.4 % of the light, those of the power 1/4096.
void compare(const Zimg &zimg, const std::vector<float> &own)
{
    double largest = 0;
    for (std::size_t i = 0; i < own.size() / 4; ++i)
        for (unsigned c = 0; c < 3; ++c) {
            const double theirs = limited(static_cast<double>(zimg.result(i, c)), 1.0);
            largest =
                std::max(largest, std::abs(lightOf(13, static_cast<double>(own[4 * i + c])) - lightOf(13, theirs)));
        }
    std::printf("Largest difference of light to zimg: %.4f\n", largest);
    if (largest > 0.02)
        throw std::runtime_error("the results differ by " + std::to_string(largest));
}
#endif

Setting settingOf(std::int32_t mode)
{
    // For displays zimg takes BT.709 to be the power 2.4 of BT.1886.
    Setting setting{16, 13, VELA_HDR_CONVERSION_DEFAULTS};
    setting.params.toneMapMode = mode;
    setting.params.dstPeakLuminance = 100;
    return setting;
}

int run(char *program, const Options &options)
{
    const Picture picture(options);
    const auto pixels = static_cast<std::int32_t>(picture.pixels.size() / 4);
    std::vector<float> result(picture.pixels.size());
    std::vector<Contestant> contestants;
    for (const std::int32_t mode : {0, 1, 2, 3}) {
        const std::string name = "mode " + std::to_string(mode);
        contestants.push_back(
            {name + ", kernel",
             [&] { procs().CscConvertHdrPixels(picture.pixels.data(), result.data(), toBt709, pixels); }, mode});
        contestants.push_back(
            {name + ", oracle",
             [&, setting = settingOf(mode)] {
                 for (std::size_t i = 0; i < picture.pixels.size(); i += 4)
                     encodePixel(&result[i], lightOfPixel<float>(&picture.pixels[i], toBt709, setting, state().input),
                                 setting.dstCode, state().output);
             },
             mode});
    }
#if defined(VELA_HAS_ZIMG)
    const std::pair<const char *, zimg_cpu_type_e> levels[] = {
        {"SSE2", ZIMG_CPU_X86_SSE2}, {"AVX2", ZIMG_CPU_X86_AVX2}, {"best", ZIMG_CPU_AUTO_64B}};
    std::vector<std::unique_ptr<Zimg>> graphs;
    for (const auto &[name, cpu] : levels)
        for (const bool approximate : {false, true}) {
            graphs.push_back(std::make_unique<Zimg>(picture, cpu, approximate));
            contestants.push_back({std::string("zimg ") + name + (approximate ? ", approximated" : ", exact"),
                                   [graph = graphs.back().get()] { (*graph)(); }});
        }
    setUp(settingOf(0));
    contestants[0].work();
    (*graphs.front())();
    compare(*graphs.front(), result);
#endif

    initializeInterleaved(program, options.repetitions);
    for (const Contestant &contestant : contestants)
        benchmark::RegisterBenchmark(contestant.name.c_str(), [&contestant](benchmark::State &turns) {
            if (contestant.mode >= 0)
                setUp(settingOf(contestant.mode));
            for (auto _ : turns)
                contestant.work();
        })->MinTime(options.seconds);
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    const double kernel = medians[contestants[0].name].median;
    std::printf("%-24s %9s %8s %16s\n", "", "ns/pixel", "spread", "mode 0's kernel");
    for (const Contestant &contestant : contestants) {
        const Medians::Time &time = medians[contestant.name];
        std::printf("%-24s %9.2f %7.0f%% %15.2fx\n", contestant.name.c_str(), time.median / pixels,
                    100 * time.variation, time.median / kernel);
    }
    return 0;
}

} // namespace
} // namespace vela::test::hdr

int main(int argumentCount, char **arguments)
{
    vela::test::hdr::Options options;
    CLI::App app("Times the HDR conversion beside its oracle and zimg.");
    app.add_option("--width", options.width, "pixels")->capture_default_str()->check(CLI::Range(1, 16384));
    app.add_option("--height", options.height, "lines")->capture_default_str()->check(CLI::Range(1, 4096));
    app.add_option("--repetitions", options.repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", options.seconds, "least time of a run")->capture_default_str();
    CLI11_PARSE(app, argumentCount, arguments);
    if (!vela::test::hdr::processorRunsKernels()) {
        std::fputs("hdr_bench: no kernels on this processor\n", stderr);
        return 1;
    }
    return vela::test::hdr::run(arguments[0], options);
}
