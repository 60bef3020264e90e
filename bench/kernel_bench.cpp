// Times every slot at every tier against its oracle, compiled with -O3 for the same instruction set. Both work on the
// same buffers, in random turns; figures are medians.

#include "oracles/oracles.hpp"
#include "support/kernel_tables.hpp"

#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <regex>
#include <string>

namespace vela::test {
namespace {

struct Options {
    std::string filter = ".";
    std::int64_t count = 0;
    std::int64_t rowBytes = 7680; // 1920 pixels of 4 bytes
    int repetitions = 9;
    double seconds = 0.02;
    bool markdown = false;
};

// A kernel and its oracle on the same rows.
class Duel {
public:
    Duel(const KernelTable &table, const TierKernels &tier, const KernelCase &kernelCase, const void *oracle,
         const Options &options)
        : family_(table.family), info_(slotInfoOf(table, kernelCase.slot)), tier_(tier.name), case_(kernelCase),
          kernel_(kernelAt(tier.table, kernelCase.slot)), oracle_(kernelAt(oracle, kernelCase.slot)),
          count_(options.count ? options.count : countFor(kernelCase, options.rowBytes))
    {
        std::mt19937_64 random(1);
        for (const Argument &argument : case_.arguments) {
            switch (argument.kind) {
            case Argument::Kind::count:
                arguments_.push_back(toBits(count_));
                break;
            case Argument::Kind::number:
                arguments_.push_back(argument.values.back());
                break;
            default:
                arguments_.push_back(toBits(makeRow(argument, random)));
            }
        }
    }

    std::string name(const char *side) const { return family_ + "/" + info_.name + "/" + tier_ + "/" + side; }
    void enlist(const Options &options)
    {
        for (const auto &[side, function] : {std::pair{"kernel", kernel_}, {"oracle", oracle_}}) {
            benchmark::RegisterBenchmark(name(side).c_str(), [this, function = function](benchmark::State &state) {
                for (auto _ : state) {
                    benchmark::DoNotOptimize(case_.invoke(function, arguments_.data()));
                    benchmark::ClobberMemory();
                }
            })->MinTime(options.seconds);
        }
    }

    const std::string &family() const { return family_; }
    const VcbSlotInfo &info() const { return info_; }
    const std::string &tier() const { return tier_; }
    std::int64_t count() const { return count_; }
    std::int64_t bytes() const { return bytes_; } // read and written by a call

private:
    // The count that makes the largest row about as long as asked.
    static std::int64_t countFor(const KernelCase &kernelCase, std::int64_t rowBytes)
    {
        constexpr std::int64_t probe = 9600;
        std::int64_t largest = 1;
        for (const Argument &argument : kernelCase.arguments)
            if (argument.bytes)
                largest = std::max(largest, argument.bytes(probe));
        return std::max<std::int64_t>(rowBytes * probe / largest, 1);
    }

    std::uint8_t *makeRow(const Argument &argument, std::mt19937_64 &random)
    {
        const std::int64_t bytes = argument.bytes(count_);
        bytes_ += bytes;
        auto &row = rows_.emplace_back(static_cast<std::size_t>(argument.before + bytes + argument.after) + 256);
        for (std::uint8_t &byte : row)
            byte = static_cast<std::uint8_t>(random());
        if (argument.largest) // top bytes small enough for any limit that a case sets
            for (std::size_t i = 1; i < row.size(); i += 2)
                row[i] &= 3;
        const auto address = reinterpret_cast<std::uintptr_t>(row.data() + argument.before);
        return row.data() + argument.before + (64 - address % 64) % 64;
    }

    std::string family_;
    const VcbSlotInfo &info_;
    std::string tier_;
    const KernelCase &case_;
    VcbKernel kernel_;
    VcbKernel oracle_;
    std::int64_t count_;
    std::int64_t bytes_ = 0;
    std::vector<Bits> arguments_;
    std::vector<std::vector<std::uint8_t>> rows_;
};

// Keeps the median of every benchmark, in nanoseconds of processor time a call, and its spread.
class Medians : public benchmark::BenchmarkReporter {
public:
    struct Time {
        double median = 0;
        double variation = 0;
    };

    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            const std::string name = run.run_name.function_name;
            if (run.aggregate_name == "median")
                times_[name].median = run.GetAdjustedCPUTime();
            else if (run.aggregate_name == "cv")
                times_[name].variation = run.GetAdjustedCPUTime() / 1e9; // a share, given in the unit of time
        }
    }
    const Time &operator[](const std::string &name) const { return times_.at(name); }

private:
    std::map<std::string, Time> times_;
};

class Table {
public:
    explicit Table(bool markdown) : markdown_(markdown)
    {
        row("family", "slot", "name", "tier", "count", "ns/unit", "GB/s", "x oracle");
        if (markdown_)
            std::puts("|---|---:|---|---|---:|---:|---:|---:|");
    }

    void add(const Duel &duel, const Medians &medians)
    {
        const Medians::Time &kernel = medians[duel.name("kernel")];
        const Medians::Time &oracle = medians[duel.name("oracle")];
        const double ratio = oracle.median / kernel.median;
        char figures[4][32];
        std::snprintf(figures[0], sizeof(figures[0]), "%lld", static_cast<long long>(duel.count()));
        std::snprintf(figures[1], sizeof(figures[1]), "%.3f", kernel.median / static_cast<double>(duel.count()));
        std::snprintf(figures[2], sizeof(figures[2]), "%.1f", static_cast<double>(duel.bytes()) / kernel.median);
        std::snprintf(figures[3], sizeof(figures[3]), "%.2f", ratio);
        row(duel.family(), std::to_string(duel.info().number), duel.info().name, duel.tier(), figures[0], figures[1],
            figures[2], figures[3]);
        logs_[duel.family()].push_back(std::log(ratio));
        if (worstRatio_ == 0 || ratio < worstRatio_) {
            worstRatio_ = ratio;
            worst_ = duel.family() + " " + duel.info().name + " on " + duel.tier();
        }
        variation_ = std::max({variation_, kernel.variation, oracle.variation});
    }

    // Whether every kernel beats its oracle.
    bool finish() const
    {
        std::puts("");
        for (const auto &[family, logs] : logs_) {
            double sum = 0;
            for (double log : logs)
                sum += log;
            std::printf("%s: %.2f times the oracle on the geometric mean of %zu kernels\n", family.c_str(),
                        std::exp(sum / static_cast<double>(logs.size())), logs.size());
        }
        std::printf("slowest: %s, %.2f times its oracle\n", worst_.c_str(), worstRatio_);
        std::printf("largest coefficient of variation: %.1f %%\n", 100 * variation_);
        return worstRatio_ >= 1;
    }

private:
    void row(const std::string &family, const std::string &slot, const std::string &name, const std::string &tier,
             const std::string &count, const std::string &time, const std::string &rate, const std::string &ratio) const
    {
        const char *format =
            markdown_ ? "| %s | %s | %s | %s | %s | %s | %s | %s |\n" : "%-11s %4s  %-26s %-6s %7s %9s %8s %9s\n";
        std::printf(format, family.c_str(), slot.c_str(), name.c_str(), tier.c_str(), count.c_str(), time.c_str(),
                    rate.c_str(), ratio.c_str());
    }

    bool markdown_;
    std::map<std::string, std::vector<double>> logs_;
    std::string worst_;
    double worstRatio_ = 0;
    double variation_ = 0;
};

struct OracleBuild {
    VcbCpuLevel needs;
    std::map<std::string, const void *> tables; // by family
};

// The oracles as the compiler makes them for the tier's instruction set.
const void *oracleFor(const std::string &family, const TierKernels &tier)
{
    static const OracleBuild builds[] = {
        {VCB_CPU_AVX2, {{"colorspace", &oracleAVX2::colorSpaceProcs}, {"video", &oracleAVX2::videoProcs}}},
        {VCB_CPU_SSE2, {{"colorspace", &oracleSSE2::colorSpaceProcs}, {"video", &oracleSSE2::videoProcs}}},
    };
    for (const OracleBuild &build : builds)
        if (tier.needs >= build.needs)
            return build.tables.at(family);
    return nullptr;
}

int bench(const Options &options)
{
    const std::vector<KernelTable> tables = kernelTables();
    const std::regex filter(options.filter, std::regex::icase);
    std::vector<std::unique_ptr<Duel>> duels;
    for (const KernelTable &table : tables) {
        for (const KernelCase &kernelCase : table.cases) {
            for (const TierKernels &tier : table.tiers) {
                if (!tier.tier || VCB_GetCPUInsHigh() < tier.needs || !kernelAt(tier.table, kernelCase.slot))
                    continue;
                auto duel = std::make_unique<Duel>(table, tier, kernelCase, oracleFor(table.family, tier), options);
                if (std::regex_search(duel->name(""), filter))
                    duels.push_back(std::move(duel));
            }
        }
    }
    if (duels.empty()) {
        std::fprintf(stderr, "kernel_bench: no kernel matches '%s'\n", options.filter.c_str());
        return EXIT_FAILURE;
    }
    for (const auto &duel : duels)
        duel->enlist(options);

    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    Table table(options.markdown);
    for (const auto &duel : duels)
        table.add(*duel, medians);
    return table.finish() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace vela::test

int main(int argumentCount, char **arguments)
{
    vela::test::Options options;
    CLI::App app("Times kernels against their oracles. Fails if a kernel is slower than its oracle.");
    app.add_option("--filter", options.filter, "regular expression on family/name/tier");
    app.add_option("--row-bytes", options.rowBytes, "length of the largest row")->capture_default_str();
    app.add_option("--count", options.count, "count or width to pass instead");
    app.add_option("--repetitions", options.repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", options.seconds, "least time of a run")->capture_default_str();
    app.add_flag("--markdown", options.markdown, "print a Markdown table");
    CLI11_PARSE(app, argumentCount, arguments);

    std::string repetitions = "--benchmark_repetitions=" + std::to_string(options.repetitions);
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    std::vector<char *> flags = {arguments[0], repetitions.data(), interleaving.data(), aggregates.data(), nullptr};
    int flagCount = static_cast<int>(flags.size()) - 1;
    benchmark::Initialize(&flagCount, flags.data());
    return vela::test::bench(options);
}
