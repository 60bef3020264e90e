// Times every slot at every tier against its oracle, compiled with -O3 for the same instruction set. Both work on the
// same buffers, in random turns; figures are medians.

#include "interleaved.hpp"
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
#include <xmmintrin.h>

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
    Duel(const KernelTable &table, const TierKernels &tier, const KernelCase &kernelCase, VcbKernel oracle,
         const Options &options)
        : label_(table.label), caseName_(test::caseName(table, kernelCase)), slot_(kernelCase.slot), tier_(tier.name),
          case_(kernelCase), kernel_(kernelAt(tier.table, kernelCase.slot)), oracle_(oracle),
          count_(!takesCount(kernelCase) ? 1
                 : options.count         ? options.count
                                         : countFor(kernelCase, options.rowBytes))
    {
        std::mt19937_64 random(1);
        for (std::size_t i = 0; i < case_.arguments.size(); ++i) {
            const Argument &argument = case_.arguments[i];
            switch (argument.kind) {
            case Argument::Kind::count:
                arguments_.push_back(toBits(count_));
                break;
            case Argument::Kind::number:
                arguments_.push_back(argument.values.back());
                break;
            case Argument::Kind::sourceRows:
                arguments_.push_back(toBits(makeRows(i, random)));
                break;
            default:
                arguments_.push_back(toBits(makeRow(i, itemsOf(argument), random)));
            }
        }
    }

    std::string name(const char *side) const { return label_ + "/" + caseName_ + "/" + tier_ + "/" + side; }
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

    const std::string &label() const { return label_; }
    const std::string &caseName() const { return caseName_; }
    std::size_t slot() const { return slot_; }
    const std::string &tier() const { return tier_; }
    std::int64_t count() const { return count_; }
    std::int64_t bytes() const { return bytes_; } // of rows that the count lengthens, read and written by a call

private:
    static bool takesCount(const KernelCase &kernelCase)
    {
        return std::any_of(kernelCase.arguments.begin(), kernelCase.arguments.end(),
                           [](const Argument &argument) { return argument.kind == Argument::Kind::count; });
    }

    // The count that makes the largest row about as long as asked. Look-up tables have their own length.
    std::int64_t countFor(const KernelCase &kernelCase, std::int64_t rowBytes) const
    {
        constexpr std::int64_t probe = 9600;
        std::int64_t largest = 1;
        for (const Argument &argument : kernelCase.arguments)
            if (isRow(argument))
                largest = std::max(largest, growth(argument, probe));
        return std::max<std::int64_t>(rowBytes * probe / largest, 1);
    }

    static bool isRow(const Argument &argument) { return argument.bytes || argument.span; }

    // The bytes that a row gains when the count doubles.
    std::int64_t growth(const Argument &argument, std::int64_t count) const
    {
        const std::int64_t items = argument.kind == Argument::Kind::sourceRows ? 1 : itemsOf(argument);
        const Span shorter = spanOf(argument, count, items);
        const Span longer = spanOf(argument, 2 * count, items);
        return longer.before + longer.bytes - shorter.before - shorter.bytes;
    }

    std::int64_t itemsOf(const Argument &argument) const
    {
        if (!argument.items)
            return 1;
        const std::size_t items = *argument.items;
        return integerOf(case_.arguments[items].values.back(), case_.parameters[items]);
    }

    const std::uint8_t *const *makeRows(std::size_t i, std::mt19937_64 &random)
    {
        auto &pointers = pointers_.emplace_back();
        for (std::int64_t row = 0; row < itemsOf(case_.arguments[i]); ++row)
            pointers.push_back(makeRow(i, 1, random));
        return pointers.data();
    }

    std::uint8_t *makeRow(std::size_t i, std::int64_t items, std::mt19937_64 &random)
    {
        constexpr std::size_t alignment = 64;
        if (case_.timedOnEqualRows)
            random.seed(1);
        const Argument &argument = case_.arguments[i];
        const Span span = spanOf(argument, count_, items);
        const std::int64_t whole = span.before + span.bytes + span.after;
        if (growth(argument, count_) > 0)
            bytes_ += span.bytes;
        auto &row = rows_.emplace_back(static_cast<std::size_t>(whole) + 256);
        const auto address = reinterpret_cast<std::uintptr_t>(row.data() + span.before);
        std::uint8_t *start = row.data() + span.before + (alignment - address % alignment) % alignment;
        switch (case_.parameters[i].element) {
        case Element::integer:
            for (std::uint8_t *byte = start - span.before; byte != row.data() + row.size(); ++byte)
                *byte = static_cast<std::uint8_t>(random());
            break;
        case Element::float32:
            fillWithAudio<float>(start - span.before, whole, random);
            break;
        case Element::float64:
            fillWithAudio<double>(start - span.before, whole, random);
            break;
        }
        if (argument.largest) // top bytes small enough for any limit that a case sets
            for (std::size_t at = 1; at < row.size(); at += 2)
                row[at] &= 3;
        if (!argument.contents.empty())
            std::copy(argument.contents.back().begin(), argument.contents.back().end(), start);
        return start;
    }

    template <class T> static void fillWithAudio(std::uint8_t *row, std::int64_t bytes, std::mt19937_64 &random)
    {
        std::uniform_real_distribution<T> samples(-1, 1);
        constexpr auto size = static_cast<std::int64_t>(sizeof(T));
        for (std::int64_t at = 0; at + size <= bytes; at += size) {
            const T sample = samples(random);
            std::memcpy(row + at, &sample, sizeof(T));
        }
    }

    std::string label_;
    std::string caseName_;
    std::size_t slot_;
    std::string tier_;
    const KernelCase &case_;
    VcbKernel kernel_;
    VcbKernel oracle_;
    std::int64_t count_;
    std::int64_t bytes_ = 0;
    std::vector<Bits> arguments_;
    std::vector<std::vector<std::uint8_t>> rows_;
    std::vector<std::vector<const std::uint8_t *>> pointers_;
};

class Table {
public:
    explicit Table(bool markdown) : markdown_(markdown)
    {
        row("table", "slot", "name", "tier", "count", "ns/unit", "GB/s", "x oracle");
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
        row(duel.label(), std::to_string(duel.slot()), duel.caseName(), duel.tier(), figures[0], figures[1], figures[2],
            figures[3]);
        logs_[duel.label()].push_back(std::log(ratio));
        if (worstRatio_ == 0 || ratio < worstRatio_) {
            worstRatio_ = ratio;
            worst_ = duel.label() + " " + duel.caseName() + " on " + duel.tier();
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
            markdown_ ? "| %s | %s | %s | %s | %s | %s | %s | %s |\n" : "%-18s %4s  %-26s %-6s %7s %9s %8s %9s\n";
        std::printf(format, family.c_str(), slot.c_str(), name.c_str(), tier.c_str(), count.c_str(), time.c_str(),
                    rate.c_str(), ratio.c_str());
    }

    bool markdown_;
    std::map<std::string, std::vector<double>> logs_;
    std::string worst_;
    double worstRatio_ = 0;
    double variation_ = 0;
};

// The oracles as the compiler makes them for an instruction set.
struct OracleBuild {
    VcbCpuLevel needs;
    std::map<std::type_index, const void *> tables;
    std::map<std::type_index, const void *> ofTier; // as TierKernels::oracle
};

#define TABLE_OF_BUILD(type, name) {typeid(type), &name},
#define ORACLE_BUILD(build, level)                                                             \
    OracleBuild build##Tables()                                                                \
    {                                                                                          \
        using namespace build;                                                                 \
        return {level, {ORACLE_TABLES(TABLE_OF_BUILD)}, {TIER_ORACLE_TABLES(TABLE_OF_BUILD)}}; \
    }
ORACLE_BUILD(oracleSSE2, VCB_CPU_SSE2)
ORACLE_BUILD(oracleSSSE3, VCB_CPU_SSSE3)
ORACLE_BUILD(oracleAVX, VCB_CPU_AVX)
ORACLE_BUILD(oracleAVX2, VCB_CPU_AVX2)

VcbKernel oracleFor(const KernelTable &table, const TierKernels &tier, std::size_t slot)
{
    static const OracleBuild builds[] = {oracleAVX2Tables(), oracleAVXTables(), oracleSSSE3Tables(),
                                         oracleSSE2Tables()}; // best first
    const OracleBuild &build = *std::find_if(std::begin(builds), std::end(builds) - 1,
                                             [&](const OracleBuild &b) { return tier.needs >= b.needs; });
    return oracleAt(build.tables.at(table.type), tier.oracle ? build.ofTier.at(table.type) : nullptr, slot);
}

int bench(const Options &options)
{
    const std::regex filter(options.filter, std::regex::icase);
    std::vector<std::unique_ptr<Duel>> duels;
    for (const KernelTable &table : kernelTables()) {
        for (const KernelCase &kernelCase : table.cases) {
            for (const TierKernels &tier : table.tiers) {
                if (!tier.tier || VCB_GetCPUInsHigh() < tier.needs || !kernelAt(tier.table, kernelCase.slot))
                    continue;
                auto duel =
                    std::make_unique<Duel>(table, tier, kernelCase, oracleFor(table, tier, kernelCase.slot), options);
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

    // A kernel that multiplies its destination again and again would be timed on denormals in the end.
    constexpr unsigned flushToZero = 0x8040;
    _mm_setcsr(_mm_getcsr() | flushToZero);
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
    app.add_option("--filter", options.filter, "regular expression on table/name/tier");
    app.add_option("--row-bytes", options.rowBytes, "length of the largest row")->capture_default_str();
    app.add_option("--count", options.count, "count or width to pass instead");
    app.add_option("--repetitions", options.repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", options.seconds, "least time of a run")->capture_default_str();
    app.add_flag("--markdown", options.markdown, "print a Markdown table");
    CLI11_PARSE(app, argumentCount, arguments);

    vela::test::initializeInterleaved(arguments[0], options.repetitions);
    return vela::test::bench(options);
}
