// What the benches share: runs in random turns, of which the medians count.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace vela::test {

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
            if (run.aggregate_name == "median" || run.run_type == Run::RT_Iteration) // a single one has no aggregates
                times_[name].median = run.GetAdjustedCPUTime();
            else if (run.aggregate_name == "cv")
                times_[name].variation = run.GetAdjustedCPUTime() / 1e9; // a share, given in the unit of time
        }
    }
    const Time &operator[](const std::string &name) const { return times_.at(name); }

private:
    std::map<std::string, Time> times_;
};

// Google Benchmark takes its settings as a command line.
inline void initializeInterleaved(char *program, int repetitionCount)
{
    std::string repetitions = "--benchmark_repetitions=" + std::to_string(repetitionCount);
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    std::vector<char *> flags = {program, repetitions.data(), interleaving.data(), aggregates.data(), nullptr};
    int flagCount = static_cast<int>(flags.size()) - 1;
    benchmark::Initialize(&flagCount, flags.data());
}

} // namespace vela::test
