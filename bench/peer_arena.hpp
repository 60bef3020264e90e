// What contests with other libraries share: rows, contestants, and the arena where these work on the same buffers, in
// random turns.
#pragma once

#include "compiled_peers.hpp"
#include "interleaved.hpp"
#include "support/kernel_tables.hpp"

#include <volk/volk.h>

extern "C" {
#include <libavutil/cpu.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <list>
#include <memory>
#include <random>
#include <regex>
#include <stdexcept>

namespace vela::test {

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

inline constexpr int anyLevel =
    VCB_CPU_AVX2 + 1; // AVX-512, fused multiplication, or whatever a compiler made of plain C
inline constexpr const char *wideTier = "wide";

// The level that runs code of an instruction set, by the name that a peer gives it.
inline int levelOf(const std::string &instructions)
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

inline constexpr const char *volkName = "VOLK";
inline constexpr const char *swresampleName = "swresample";
inline constexpr const char *eigenName = "Eigen"; // in the loop, as its users have it
inline constexpr const char *calledEigenName =
    "Eigen, called"; // through a pointer for each vector or matrix, as a kernel
inline constexpr const char *plainName = "plain C++";
inline constexpr const char *limitName = "chain alone"; // no peer: what has to wait for one another, and nothing else

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

// Shared by all libraries of a contest. As long as the longest needs: pairs of elements for every unit of the count,
// and what filters read beside them.
template <class To, class From> struct Rows {
    explicit Rows(std::int64_t count)
        : to(2 * static_cast<std::size_t>(count) + 16), to2(to.size()), a(to.size()), b(to.size())
    {
        std::mt19937_64 random(1);
        a.fill(random);
        b.fill(random);
        fillResults();
    }
    void fillResults()
    {
        std::mt19937_64 random(2);
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
    unsigned item; // elements that a time is given for
    std::vector<Contestant> own;
    std::function<void()> fillResults;
    std::function<void()> keepResults;
    std::function<double()> largestDifference; // of the results from those that were kept
    std::vector<Contestant> peers = {};
    std::vector<Contestant> limits = {};
};

class Arena {
public:
    explicit Arena(const Options &options) : options_(options) {}

    // A contest of the kernel `member`, which `call` calls with rows for its arguments. Results of the others may
    // differ by the tolerance; a negative one stands for results of another kind. A call counts elements; `item` of
    // them make a matrix, or whatever it is.
    template <auto member, class To, class From, class Call>
    std::shared_ptr<Rows<To, From>> contest(double tolerance, const char *note, Call call, unsigned item = 1)
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
        const auto fill = [rows] { rows->fillResults(); };
        const auto keep = [results, kept] { *kept = results(); };
        const auto difference = [results, kept] {
            double largest = 0;
            const std::vector<To> now = results();
            for (std::size_t i = 0; i < now.size(); ++i)
                largest = std::max(largest, std::abs(static_cast<double>(now[i]) - static_cast<double>((*kept)[i])));
            return largest;
        };
        contests_.push_back({name, note, tolerance, item, std::move(own), fill, keep, difference});
        return rows;
    }

    // What the compiler makes of a peer's source for each instruction set. `workOf` makes the work of a build.
    template <class WorkOf> void compiled(const char *library, const char *function, WorkOf workOf)
    {
        for (const CompiledPeers *peers : compiledPeers())
            contests_.back().peers.push_back({library, function, peers->instructions, workOf(*peers), false, {}});
    }

    void limit(const char *chain, Work work)
    {
        contests_.back().limits.push_back({limitName, chain, "any", std::move(work), false, {}});
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
        const KernelTable &table = kernelTableOf(typeid(Table));
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
        return found;
    }

    bool compare(Contest &contest) const
    {
        const auto count = static_cast<unsigned>(options_.count);
        contest.fillResults();
        contest.own.front().work(count);
        contest.keepResults();
        bool agree = true;
        for (const std::vector<Contestant> *side : {&contest.own, &contest.peers}) {
            for (const Contestant &contestant : *side) {
                contest.fillResults();
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
        for (std::vector<Contestant> *side : {&contest.own, &contest.peers, &contest.limits}) {
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
                const double units = static_cast<double>(options_.count) / contest.item;
                const auto add = [&](const Contestant &peer, const char *rank) {
                    const double ratio = timeOf(peer, medians) / timeOf(own, medians);
                    row(contest.kernel, own.instructions, figure("%.3f", timeOf(own, medians) / units),
                        peer.library + " " + peer.function, peer.instructions + rank,
                        figure("%.3f", timeOf(peer, medians) / units), figure("%.2f", ratio), contest.note);
                    return ratio;
                };
                for (const Contestant &limit : contest.limits)
                    add(limit, "");
                for (const char *library : {volkName, swresampleName, eigenName, calledEigenName, plainName}) {
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
        std::puts(
            "\n"
            "x peer: how many times as fast as the peer. Equal: the peer's fastest implementation of the tier's\n"
            "instruction set or below. Best: its fastest of all. VOLK's time is without that of choosing an\n"
            "implementation by name, measured at a count of 0; libswresample's is that of a whole swr_convert.\n"
            "Eigen and plain C++ are compiled with the tier's flags, or with those of AVX2 and FMA. Chain alone:\n"
            "the kernel's longest chain of operations that wait for one another; no kernel can be above 1.\n"
            "a  the peer rounds to nearest, the kernel truncates\n"
            "b  the peer multiplies a row with itself\n"
            "c  the peer finds the place of the largest value, the kernel the largest magnitude\n"
            "d  the peer divides by a square root, the kernel multiplies with an estimate of 12 bits");
        if (equals)
            std::printf("\n%.2f times the equal peer on the geometric mean of %d rows\n", std::exp(logs / equals),
                        equals);
        for (const std::string &line : behind)
            std::printf("behind: %s\n", line.c_str());
    }

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
    std::list<Contest> contests_; // benchmarks refer to them
};

// VOLK(name, arguments): the implementations of volk_<name>, called with the arguments and a count.
#define VOLK(name, ...)                                                                         \
    arena.volk(volk_##name##_get_func_desc(), [=](unsigned count, const char *implementation) { \
        volk_##name##_manual(__VA_ARGS__, count, implementation);                               \
    })

inline constexpr double exact = 0;
inline constexpr double floatSum = 1e-3; // of some thousand floats in another order
inline constexpr double notTheSame = -1;

inline constexpr auto twoSources = [](auto kernel, auto &rows, unsigned count) {
    kernel(rows.to.data(), rows.a.data(), rows.b.data(), count);
};
inline constexpr auto reduction = [](auto kernel, auto &rows, unsigned count) {
    *rows.to.data() = kernel(rows.a.data(), count);
};

void addMaths(Arena &arena); // peer_maths.cpp

} // namespace vela::test
