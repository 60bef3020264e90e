// Copies, moves and fills of every tier against the C library's memcpy, memmove and memset: same buffers, random turns,
// medians. A ratio above 1 means that the kernel is faster.

#include "mem/tiers.hpp"

#include <vela/frame.h>

#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

namespace vela {
namespace {

struct Options {
    std::string filter = ".";
    std::vector<std::size_t> sizes = {
        1,      2,      3,      7,       15,      16,      31,      33,       64,       100,      128,      200,
        255,    256,    300,    512,     1000,    1024,    2048,    4096,     8192,     16384,    32768,    65536,
        131072, 262144, 524288, 1048576, 2097152, 4194304, 8388608, 12582912, 16777216, 25165824, 33554432, 67108864};
    int repetitions = 9;
    double seconds = 0.001;
};

// Two rows that begin so many bytes behind the start of a page.
struct Skew {
    std::ptrdiff_t to, from;
};
constexpr Skew apart[] = {{0, 0}, {0, 2048}, {1, 5}, {5, 1}, {13, 0}};
// Within one row.
constexpr Skew downwards[] = {{0, 48}, {5, 54}, {13, 1013}};
constexpr Skew upwards[] = {{48, 0}, {54, 5}, {1013, 13}};

struct Contender {
    std::string name;
    std::function<void(benchmark::State &, std::uint8_t *, const std::uint8_t *, std::size_t)> run;
};

// The pointer is volatile, or the compiler would write code of its own in place of a call to the C library.
template <class Function> Contender copies(std::string name, Function *function)
{
    return {std::move(name),
            [function](benchmark::State &state, std::uint8_t *to, const std::uint8_t *from, std::size_t size) {
                Function *volatile const hidden = function;
                Function *const call = hidden;
                for (auto _ : state) {
                    call(to, from, size);
                    benchmark::ClobberMemory();
                }
            }};
}

// Sizes from 1 to the one given, in random order: what mispredicted branches cost.
template <class Function> Contender mixedCopies(std::string name, Function *function)
{
    return {std::move(name),
            [function](benchmark::State &state, std::uint8_t *to, const std::uint8_t *from, std::size_t largest) {
                Function *volatile const hidden = function;
                Function *const call = hidden;
                std::mt19937 random(1);
                std::vector<std::size_t> sizes(4096);
                std::generate(sizes.begin(), sizes.end(), [&] { return 1 + random() % largest; });
                std::size_t next = 0;
                for (auto _ : state) {
                    call(to, from, sizes[next++ % sizes.size()]);
                    benchmark::ClobberMemory();
                }
            }};
}

template <class Function> Contender fills(std::string name, Function *function)
{
    return {std::move(name),
            [function](benchmark::State &state, std::uint8_t *to, const std::uint8_t *, std::size_t size) {
                Function *volatile const hidden = function;
                Function *const call = hidden;
                for (auto _ : state) {
                    call(to, 0x5C, size);
                    benchmark::ClobberMemory();
                }
            }};
}

struct Series {
    std::string name;
    std::vector<Skew> skews;
    bool oneRow;
    std::vector<std::size_t> sizes;
    std::vector<Contender> contenders; // the C library's first
};

std::vector<Series> allSeries(const Options &options)
{
    const std::vector<Skew> two(std::begin(apart), std::end(apart));
    std::vector<Series> all = {
        {"copy", two, false, options.sizes, {copies("memcpy", std::memcpy), copies("sse2", memOrderOpsSse2.MemCopy)}},
        {"copy-mixed",
         two,
         false,
         {16, 64, 256, 1024},
         {mixedCopies("memcpy", std::memcpy), mixedCopies("sse2", memOrderOpsSse2.MemCopy)}},
        {"move-down",
         {std::begin(downwards), std::end(downwards)},
         true,
         options.sizes,
         {copies("memmove", std::memmove), copies("sse2", memOrderOpsSse2.MemCopy)}},
        {"move-up",
         {std::begin(upwards), std::end(upwards)},
         true,
         options.sizes,
         {copies("memmove", std::memmove), copies("sse2", memOrderOpsSse2.MemCopy)}},
        {"fill",
         {{0, 0}, {1, 0}, {5, 0}, {13, 0}},
         true,
         options.sizes,
         {fills("memset", std::memset), fills("sse2", memFillOpsSse2.MemFill8)}},
    };
    if (VCB_GetCPUInsHigh() >= VCB_CPU_AVX2) {
        for (Series &series : all) {
            series.contenders.push_back(series.name == "fill"         ? fills("avx2", memFillOpsAvx2.MemFill8)
                                        : series.name == "copy-mixed" ? mixedCopies("avx2", memOrderOpsAvx2.MemCopy)
                                                                      : copies("avx2", memOrderOpsAvx2.MemCopy));
        }
    }
    const std::regex filter(options.filter);
    std::erase_if(all, [&](const Series &series) { return !std::regex_search(series.name, filter); });
    return all;
}

// Nanoseconds of processor time a call, by the benchmark's name.
class Medians : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            if (run.aggregate_name == "median")
                times_[run.run_name.function_name] = run.GetAdjustedCPUTime();
    }
    double operator[](const std::string &name) const { return times_.at(name); }

private:
    std::map<std::string, double> times_;
};

std::string nameOf(const Series &series, std::size_t size, std::size_t skew, const Contender &contender)
{
    return series.name + "/" + std::to_string(size) + "/" + std::to_string(skew) + "/" + contender.name;
}

// For every size the rate of the C library, and of every kernel the mean and the least ratio over all skews.
void print(const Series &series, const Medians &medians)
{
    const Contender &library = series.contenders.front();
    std::printf("\n%s\n%10s %9s ns %5s GB/s", series.name.c_str(), "bytes", library.name.c_str(), "");
    for (std::size_t c = 1; c < series.contenders.size(); ++c)
        std::printf("  %9s least", series.contenders[c].name.c_str());
    std::puts("");
    for (const std::size_t size : series.sizes) {
        const double base = medians[nameOf(series, size, 0, library)];
        std::printf("%10zu %12.1f %10.1f", size, base, static_cast<double>(size) / base);
        for (std::size_t c = 1; c < series.contenders.size(); ++c) {
            double logs = 0;
            double least = HUGE_VAL;
            for (std::size_t skew = 0; skew < series.skews.size(); ++skew) {
                const double ratio = medians[nameOf(series, size, skew, library)] /
                                     medians[nameOf(series, size, skew, series.contenders[c])];
                logs += std::log(ratio);
                least = std::min(least, ratio);
            }
            std::printf("  %9.2f %5.2f", std::exp(logs / static_cast<double>(series.skews.size())), least);
        }
        std::puts("");
    }
}

int bench(const Options &options)
{
    constexpr std::size_t page = 4096;
    const std::size_t largest = *std::max_element(options.sizes.begin(), options.sizes.end());
    const auto row = [largest] {
        const std::size_t size = (std::max<std::size_t>(largest, 1024) / page + 2) * page;
        auto *const bytes = static_cast<std::uint8_t *>(std::aligned_alloc(page, size));
        if (bytes)
            std::memset(bytes, 1, size);
        return bytes;
    };
    std::uint8_t *const to = row();
    std::uint8_t *const from = row();
    if (!to || !from) {
        std::fputs("memory_bench: not enough memory\n", stderr);
        return EXIT_FAILURE;
    }
    const std::vector<Series> all = allSeries(options);
    for (const Series &series : all) {
        for (const std::size_t size : series.sizes) {
            for (std::size_t i = 0; i < series.skews.size(); ++i) {
                const Skew skew = series.skews[i];
                std::uint8_t *const target = to + skew.to;
                const std::uint8_t *const source = (series.oneRow ? to : from) + skew.from;
                for (const Contender &contender : series.contenders)
                    benchmark::RegisterBenchmark(nameOf(series, size, i, contender).c_str(),
                                                 [&contender, target, source, size](benchmark::State &state) {
                                                     contender.run(state, target, source, size);
                                                 })
                        ->MinTime(size >= 262144 ? 10 * options.seconds : options.seconds);
            }
        }
    }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    for (const Series &series : all)
        print(series, medians);
    std::free(to);
    std::free(from);
    return all.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace
} // namespace vela

int main(int argumentCount, char **arguments)
{
    vela::Options options;
    CLI::App app("Times copies and fills against the C library's.");
    app.add_option("--filter", options.filter,
                   "regular expression on the series: copy, copy-mixed, move-down, fill...");
    app.add_option("--sizes", options.sizes, "bytes");
    app.add_option("--repetitions", options.repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", options.seconds, "least time of a run; ten times that from 256 KiB on")
        ->capture_default_str();
    CLI11_PARSE(app, argumentCount, arguments);

    std::string repetitions = "--benchmark_repetitions=" + std::to_string(options.repetitions);
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    std::vector<char *> flags = {arguments[0], repetitions.data(), interleaving.data(), aggregates.data(), nullptr};
    int flagCount = static_cast<int>(flags.size()) - 1;
    benchmark::Initialize(&flagCount, flags.data());
    return vela::bench(options);
}
