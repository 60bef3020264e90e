// Kernels beside those of other libraries that do the same: VOLK (signal processing) and libswresample (audio formats).
// All of them work on the same buffers, in random turns; figures are medians. Before anything is timed the results are
// compared.

#include "interleaved.hpp"
#include "support/kernel_tables.hpp"

#include <CLI/CLI.hpp>
#include <volk/volk.h>

extern "C" {
#include <libavutil/cpu.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <memory>
#include <random>
#include <regex>
#include <stdexcept>

namespace vela::test {
namespace {

struct Options {
    std::string filter = ".";
    std::int64_t count = 1920;
    int repetitions = 9;
    double seconds = 0.02;
    bool wide = false;
    bool all = false;
    bool markdown = false;
};

// --- Instruction sets ----------------------------------------------------------------------------------------

constexpr int anyLevel = VCB_CPU_AVX2 + 1; // AVX-512, fused multiplication, or whatever a compiler made of plain C
constexpr const char *wideTier = "wide";

// The level that runs code of an instruction set, by the name that a peer gives it.
int levelOf(const std::string &instructions)
{
    static const std::pair<const char *, int> levels[] = {
        {"sse", VCB_CPU_SSE2},     {"sse2", VCB_CPU_SSE2},    {"sse3", VCB_CPU_SSE3}, {"ssse3", VCB_CPU_SSSE3},
        {"sse4_1", VCB_CPU_SSE41}, {"sse4_2", VCB_CPU_SSE42}, {"avx", VCB_CPU_AVX},   {"avx2", VCB_CPU_AVX2},
    };
    for (const auto &[name, level] : levels)
        if (instructions == name)
            return level;
    return anyLevel;
}

// --- Contests ------------------------------------------------------------------------------------------------

constexpr const char *volkName = "VOLK";
constexpr const char *swresampleName = "swresample";

using Work = std::function<void(unsigned count)>;

struct Contestant {
    std::string library;
    std::string function; // where a library has several
    std::string instructions;
    Work work;
    // Work at a count of 0, where this is to be taken off: the price of choosing an implementation by name.
    bool pricedByName = false;
    std::string name; // of its benchmark
};

// A row of up to eight bytes an element, at 64 bytes.
template <class T> class Row {
public:
    explicit Row(std::size_t elements) : elements_(elements), room_(elements * sizeof(T) + 64) {}

    T *data()
    {
        const auto address = reinterpret_cast<std::uintptr_t>(room_.data());
        return reinterpret_cast<T *>(room_.data() + (64 - address % 64) % 64);
    }
    std::size_t size() const { return elements_; }
    void fill(std::mt19937_64 &random)
    {
        for (std::size_t i = 0; i < elements_; ++i) {
            if constexpr (std::is_floating_point_v<T>)
                data()[i] = std::uniform_real_distribution<T>(-1, 1)(random);
            else
                data()[i] = static_cast<T>(random());
        }
    }

private:
    std::size_t elements_;
    std::vector<std::uint8_t> room_;
};

// Shared by all libraries of a contest. As long as the longest needs: pairs of elements for every unit of the count.
template <class To, class From> struct Rows {
    explicit Rows(std::int64_t count)
        : to(2 * static_cast<std::size_t>(count)), to2(to.size()), a(to.size()), b(to.size())
    {
        std::mt19937_64 random(1);
        a.fill(random);
        b.fill(random);
        to.fill(random);
        to2.fill(random);
    }

    Row<To> to, to2;
    Row<From> a, b;
};

struct Contest {
    std::string kernel;
    std::string note;
    double tolerance;
    std::vector<Contestant> own;
    std::function<void()> keepResults;
    std::function<double()> largestDifference; // of the results from those that were kept
    std::vector<Contestant> peers = {};
};

class Arena {
public:
    explicit Arena(const Options &options) : options_(options), tables_(kernelTables()) {}

    // A contest of the kernel `member`, which `call` calls with rows for its arguments. Results of the others may
    // differ by the tolerance; a negative one stands for results of another kind.
    template <auto member, class To, class From, class Call>
    std::shared_ptr<Rows<To, From>> contest(double tolerance, const char *note, Call call)
    {
        auto rows = std::make_shared<Rows<To, From>>(options_.count);
        std::string name;
        std::vector<Contestant> own =
            tiersOf(member, name, [rows, call](auto kernel, unsigned count) { call(kernel, *rows, count); });
        auto kept = std::make_shared<std::vector<To>>();
        const auto results = [rows] {
            std::vector<To> all(rows->to.data(), rows->to.data() + rows->to.size());
            all.insert(all.end(), rows->to2.data(), rows->to2.data() + rows->to2.size());
            return all;
        };
        const auto keep = [results, kept] { *kept = results(); };
        const auto difference = [results, kept] {
            double largest = 0;
            const std::vector<To> now = results();
            for (std::size_t i = 0; i < now.size(); ++i)
                largest = std::max(largest, std::abs(static_cast<double>(now[i]) - static_cast<double>((*kept)[i])));
            return largest;
        };
        contests_.push_back({name, note, tolerance, std::move(own), keep, difference});
        return rows;
    }

    // VOLK names its implementations by alignment and instruction set: u_sse2.
    template <class ByName> void volk(const volk_func_desc_t &description, ByName byName)
    {
        for (std::size_t i = 0; i < description.n_impls; ++i) {
            const char *name = description.impl_names[i];
            const std::string instructions = name[0] && name[1] == '_' ? name + 2 : name;
            contests_.back().peers.push_back(
                {volkName, name, instructions, [byName, name](unsigned count) { byName(count, name); }, true, {}});
        }
    }

    // libswresample chooses for the flags of the processor when a converter is made.
    template <class To, class From>
    void swresample(const std::shared_ptr<Rows<To, From>> &rows, AVSampleFormat to, AVSampleFormat from)
    {
        constexpr int sse2 = AV_CPU_FLAG_MMX | AV_CPU_FLAG_MMXEXT | AV_CPU_FLAG_SSE | AV_CPU_FLAG_SSE2;
        constexpr int upToAvx =
            sse2 | AV_CPU_FLAG_SSE3 | AV_CPU_FLAG_SSSE3 | AV_CPU_FLAG_SSE4 | AV_CPU_FLAG_SSE42 | AV_CPU_FLAG_AVX;
        for (const auto &[instructions, flags] : {std::pair{"sse2", sse2}, {"avx", upToAvx}, {"native", -1}}) {
            av_force_cpu_flags(-1);
            if (flags != -1 && (av_get_cpu_flags() & flags) != flags)
                continue;
            av_force_cpu_flags(flags);
            AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
            SwrContext *made = nullptr;
            if (swr_alloc_set_opts2(&made, &mono, to, 48000, &mono, from, 48000, 0, nullptr) < 0 || swr_init(made) < 0)
                throw std::runtime_error("libswresample makes no such converter");
            const std::shared_ptr<SwrContext> context(made, [](SwrContext *c) { swr_free(&c); });
            contests_.back().peers.push_back(
                {swresampleName,
                 "",
                 instructions,
                 [context, rows](unsigned count) {
                     auto *out = reinterpret_cast<std::uint8_t *>(rows->to.data());
                     const auto *in = reinterpret_cast<const std::uint8_t *>(rows->a.data());
                     swr_convert(context.get(), &out, static_cast<int>(count), &in, static_cast<int>(count));
                 },
                 false,
                 {}});
        }
        av_force_cpu_flags(-1);
    }

    int run()
    {
        const std::regex filter(options_.filter, std::regex::icase);
        std::erase_if(contests_, [&](const Contest &c) { return !std::regex_search(c.kernel, filter); });
        if (contests_.empty()) {
            std::fprintf(stderr, "peer_bench: no kernel matches '%s'\n", options_.filter.c_str());
            return EXIT_FAILURE;
        }
        bool agree = true;
        for (Contest &contest : contests_)
            agree = compare(contest) && agree;
        if (!agree)
            return EXIT_FAILURE;
        for (Contest &contest : contests_)
            enlist(contest);
        Medians medians;
        benchmark::RunSpecifiedBenchmarks(&medians);
        report(medians);
        return EXIT_SUCCESS;
    }

private:
    // The kernel at every tier that the library ships and the processor runs.
    template <class Table, class Function, class Call>
    std::vector<Contestant> tiersOf(Function Table::*member, std::string &name, Call call) const
    {
        std::vector<Contestant> found;
        for (const KernelTable &table : tables_) {
            if (table.type != typeid(Table))
                continue;
            for (const TierKernels &tier : table.tiers) {
                const Function kernel = static_cast<const Table *>(tier.table)->*member;
                if (!kernel || VCB_GetCPUInsHigh() < tier.needs || !(tier.tier || options_.wide))
                    continue;
                found.push_back(
                    {"vela", "", tier.name, [kernel, call](unsigned count) { call(kernel, count); }, false, {}});
            }
            const auto *first = reinterpret_cast<const VcbKernel *>(table.tiers.front().table);
            const auto *own =
                reinterpret_cast<const VcbKernel *>(&(static_cast<const Table *>(table.tiers.front().table)->*member));
            name = slotInfoOf(table, static_cast<std::size_t>(own - first)).name;
        }
        return found;
    }

    bool compare(Contest &contest) const
    {
        const auto count = static_cast<unsigned>(options_.count);
        contest.own.front().work(count);
        contest.keepResults();
        bool agree = true;
        for (const std::vector<Contestant> *side : {&contest.own, &contest.peers}) {
            for (const Contestant &contestant : *side) {
                contestant.work(count);
                const double difference = contest.largestDifference();
                if (contest.tolerance >= 0 && !(difference <= contest.tolerance)) {
                    std::fprintf(stderr, "peer_bench: %s and %s (%s) differ by %g\n", contest.kernel.c_str(),
                                 contestant.library.c_str(), contestant.function.c_str(), difference);
                    agree = false;
                }
            }
        }
        return agree;
    }

    void enlist(Contest &contest)
    {
        for (std::vector<Contestant> *side : {&contest.own, &contest.peers}) {
            for (Contestant &contestant : *side) {
                contestant.name =
                    contest.kernel + "/" + contestant.library + contestant.function + "/" + contestant.instructions;
                enlist(contestant.name, contestant.work, static_cast<unsigned>(options_.count));
                if (contestant.pricedByName)
                    enlist(contestant.name + "/0", contestant.work, 0);
            }
        }
    }

    void enlist(const std::string &name, const Work &work, unsigned count) const
    {
        benchmark::RegisterBenchmark(name.c_str(), [&work, count](benchmark::State &state) {
            for (auto _ : state) {
                work(count);
                benchmark::ClobberMemory();
            }
        })->MinTime(options_.seconds);
    }

    static double timeOf(const Contestant &contestant, const Medians &medians)
    {
        const double whole = medians[contestant.name].median;
        return contestant.pricedByName ? whole - medians[contestant.name + "/0"].median : whole;
    }

    // The library's fastest implementation that runs at a level.
    static const Contestant *fastest(const Contest &contest, const std::string &library, int level,
                                     const Medians &medians)
    {
        const Contestant *found = nullptr;
        for (const Contestant &peer : contest.peers)
            if (peer.library == library && levelOf(peer.instructions) <= level &&
                (!found || timeOf(peer, medians) < timeOf(*found, medians)))
                found = &peer;
        return found;
    }

    void report(const Medians &medians) const
    {
        row("kernel", "tier", "ns/unit", "peer", "instructions", "ns/unit", "x peer", "note");
        if (options_.markdown)
            std::puts("|---|---|---:|---|---|---:|---:|---|");
        double logs = 0;
        int equals = 0;
        std::vector<std::string> behind;
        for (const Contest &contest : contests_) {
            for (const Contestant &own : contest.own) {
                const int level = own.instructions == wideTier ? VCB_CPU_AVX2 : levelOf(own.instructions);
                const auto add = [&](const Contestant &peer, const char *rank) {
                    const double ratio = timeOf(peer, medians) / timeOf(own, medians);
                    row(contest.kernel, own.instructions, figure("%.3f", perUnit(timeOf(own, medians))),
                        peer.library + " " + peer.function, peer.instructions + rank,
                        figure("%.3f", perUnit(timeOf(peer, medians))), figure("%.2f", ratio), contest.note);
                    return ratio;
                };
                for (const char *library : {volkName, swresampleName}) {
                    const Contestant *equal = fastest(contest, library, level, medians);
                    const Contestant *best = fastest(contest, library, anyLevel, medians);
                    if (options_.all) {
                        for (const Contestant &peer : contest.peers)
                            if (peer.library == library && &peer != equal && &peer != best)
                                add(peer, "");
                    }
                    if (best && best != equal)
                        add(*best, " (best)");
                    if (!equal)
                        continue;
                    const double ratio = add(*equal, " (equal)");
                    logs += std::log(ratio);
                    ++equals;
                    if (ratio < 0.97)
                        behind.push_back(contest.kernel + " on " + own.instructions + ", " + figure("%.2f", ratio) +
                                         " times " + library);
                }
            }
        }
        std::puts("\n"
                  "x peer: how many times as fast as the peer. Equal: the peer's fastest implementation of the tier's\n"
                  "instruction set or below. Best: its fastest of all. VOLK's time is without that of choosing an\n"
                  "implementation by name, measured at a count of 0; libswresample's is that of a whole swr_convert.\n"
                  "a  the peer rounds to nearest, the kernel truncates\n"
                  "b  the peer multiplies a row with itself\n"
                  "c  the peer finds the place of the largest value, the kernel the largest magnitude");
        if (equals)
            std::printf("\n%.2f times the equal peer on the geometric mean of %d rows\n", std::exp(logs / equals),
                        equals);
        for (const std::string &line : behind)
            std::printf("behind: %s\n", line.c_str());
    }

    double perUnit(double time) const { return time / static_cast<double>(options_.count); }

    static std::string figure(const char *format, double x)
    {
        char text[32];
        std::snprintf(text, sizeof(text), format, x);
        return text;
    }

    void row(const std::string &kernel, const std::string &tier, const std::string &time, const std::string &peer,
             const std::string &instructions, const std::string &peerTime, const std::string &ratio,
             const std::string &note) const
    {
        const char *format = options_.markdown ? "| %s | %s | %s | %s | %s | %s | %s | %s |\n"
                                               : "%-22s %-5s %8s  %-16s %-14s %8s %7s  %s\n";
        std::printf(format, kernel.c_str(), tier.c_str(), time.c_str(), peer.c_str(), instructions.c_str(),
                    peerTime.c_str(), ratio.c_str(), note.c_str());
    }

    const Options &options_;
    std::vector<KernelTable> tables_;
    std::list<Contest> contests_; // benchmarks refer to them
};

// VOLK(name, arguments): the implementations of volk_<name>, called with the arguments and a count.
#define VOLK(name, ...)                                                                         \
    arena.volk(volk_##name##_get_func_desc(), [=](unsigned count, const char *implementation) { \
        volk_##name##_manual(__VA_ARGS__, count, implementation);                               \
    })

using Formats = VcbSampleFormatOps;
using Arith = VcbMemArithOps;
using Misc = VcbMemMiscOps;

constexpr double exact = 0;
constexpr double oneStep = 1;     // of an integer: rounding to nearest and truncation
constexpr double manySteps = 256; // of a 32-bit integer: its float has 24 bits
constexpr double floatSum = 1e-3; // of some thousand floats in another order
constexpr double notTheSame = -1;

const auto oneSource = [](auto kernel, auto &rows, unsigned count) { kernel(rows.to.data(), rows.a.data(), count); };
const auto twoSources = [](auto kernel, auto &rows, unsigned count) {
    kernel(rows.to.data(), rows.a.data(), rows.b.data(), count);
};
const auto reduction = [](auto kernel, auto &rows, unsigned count) { *rows.to.data() = kernel(rows.a.data(), count); };

void addFormats(Arena &arena)
{
    {
        auto rows = arena.contest<&Formats::ConvertS8ToS16, std::int16_t, std::int8_t>(exact, "", oneSource);
        VOLK(8i_convert_16i, rows->to.data(), rows->a.data());
    }
    {
        auto rows = arena.contest<&Formats::ConvertS8ToF32, float, std::int8_t>(exact, "", oneSource);
        VOLK(8i_s32f_convert_32f, rows->to.data(), rows->a.data(), 128);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS16ToF32, float, std::int16_t>(exact, "", oneSource);
        VOLK(16i_s32f_convert_32f, rows->to.data(), rows->a.data(), 32768);
        arena.swresample(rows, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_S16);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS32ToF32Scaled, float, std::int32_t>(exact, "", oneSource);
        VOLK(32i_s32f_convert_32f, rows->to.data(), rows->a.data(), 2147483648.0f);
        arena.swresample(rows, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_S32);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS16ToS32, std::int32_t, std::int16_t>(exact, "", oneSource);
        arena.swresample(rows, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_S16);
    }
    {
        auto rows = arena.contest<&Formats::ConvertS32ToF64, double, std::int32_t>(exact, "", oneSource);
        arena.swresample(rows, AV_SAMPLE_FMT_DBL, AV_SAMPLE_FMT_S32);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToS8, std::int8_t, float>(oneStep, "a", oneSource);
        VOLK(32f_s32f_convert_8i, rows->to.data(), rows->a.data(), 128);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToS16, std::int16_t, float>(oneStep, "a", oneSource);
        VOLK(32f_s32f_convert_16i, rows->to.data(), rows->a.data(), 32768);
        arena.swresample(rows, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_FLT);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToS32, std::int32_t, float>(manySteps, "a", oneSource);
        VOLK(32f_s32f_convert_32i, rows->to.data(), rows->a.data(), 2147483648.0f);
        arena.swresample(rows, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_FLT);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF32ToF64, double, float>(exact, "", oneSource);
        VOLK(32f_convert_64f, rows->to.data(), rows->a.data());
        arena.swresample(rows, AV_SAMPLE_FMT_DBL, AV_SAMPLE_FMT_FLT);
    }
    {
        auto rows = arena.contest<&Formats::ConvertF64ToF32, float, double>(exact, "", oneSource);
        VOLK(64f_convert_32f, rows->to.data(), rows->a.data());
        arena.swresample(rows, AV_SAMPLE_FMT_FLT, AV_SAMPLE_FMT_DBL);
    }
}

void addArithmetic(Arena &arena)
{
    {
        auto rows = arena.contest<&Arith::MemAddF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_add_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemSubF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_subtract_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemMulF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_multiply_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemDivF32, float, float>(exact, "", twoSources);
        VOLK(32f_x2_divide_32f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemAddF64, double, double>(exact, "", twoSources);
        VOLK(64f_x2_add_64f, rows->to.data(), rows->a.data(), rows->b.data());
    }
    {
        auto rows = arena.contest<&Arith::MemScaleF32, float, float>(
            exact, "", [](auto kernel, auto &r, unsigned count) { kernel(r.to.data(), r.a.data(), 0.7f, count); });
        VOLK(32f_s32f_multiply_32f, rows->to.data(), rows->a.data(), 0.7f);
    }
    {
        auto rows = arena.contest<&Arith::MemSumF32, float, float>(floatSum, "", reduction);
        VOLK(32f_accumulator_s32f, rows->to.data(), rows->a.data());
    }
    {
        auto rows = arena.contest<&Arith::MemSumSquaresF32, float, float>(
            floatSum, "b", [](auto kernel, auto &r, unsigned count) {
                *r.to.data() = kernel(r.a.data(), static_cast<std::int32_t>(count));
            });
        VOLK(32f_x2_dot_prod_32f, rows->to.data(), rows->a.data(), rows->a.data());
    }
    {
        auto rows = arena.contest<&Arith::MemReduceF32, float, float>(notTheSame, "c", reduction);
        VOLK(32f_index_max_32u, reinterpret_cast<std::uint32_t *>(rows->to.data()), rows->a.data());
    }
}

void addOrder(Arena &arena)
{
    {
        auto rows = arena.contest<&Misc::MemPackOp25, std::uint32_t, std::uint32_t>(exact, "", twoSources);
        VOLK(32f_x2_interleave_32fc, reinterpret_cast<lv_32fc_t *>(rows->to.data()),
             reinterpret_cast<const float *>(rows->a.data()), reinterpret_cast<const float *>(rows->b.data()));
    }
    {
        auto rows = arena.contest<&Misc::MemDeinterleave32, std::uint32_t, std::uint32_t>(
            exact, "",
            [](auto kernel, auto &r, unsigned count) { kernel(r.to.data(), r.to2.data(), r.a.data(), count); });
        VOLK(32fc_deinterleave_32f_x2, reinterpret_cast<float *>(rows->to.data()),
             reinterpret_cast<float *>(rows->to2.data()), reinterpret_cast<const lv_32fc_t *>(rows->a.data()));
    }
}

} // namespace
} // namespace vela::test

int main(int argumentCount, char **arguments)
{
    vela::test::Options options;
    CLI::App app("Times kernels beside those of VOLK and libswresample on the same buffers.");
    app.add_option("--filter", options.filter, "regular expression on the kernel's name");
    app.add_option("--count", options.count, "units of a row")->capture_default_str()->check(CLI::PositiveNumber);
    app.add_option("--repetitions", options.repetitions, "runs of each, in random turns")->capture_default_str();
    app.add_option("--seconds", options.seconds, "least time of a run")->capture_default_str();
    app.add_flag("--wide", options.wide, "also the kernel texts compiled for AVX2 that the library does not ship");
    app.add_flag("--all", options.all, "every implementation of a peer");
    app.add_flag("--markdown", options.markdown, "print a Markdown table");
    CLI11_PARSE(app, argumentCount, arguments);

    vela::test::initializeInterleaved(arguments[0], options.repetitions);
    vela::test::Arena arena(options);
    vela::test::addFormats(arena);
    vela::test::addArithmetic(arena);
    vela::test::addOrder(arena);
    return arena.run();
}
