// Kernels at the places of some work on sound, each call timed.
#pragma once

#include "slots.hpp"

#include <chrono>
#include <deque>

namespace host {

// A slot that is to be called.
struct Place {
    const char *table;
    std::span<const VcbSlotInfo> list;
    int number;
    VcbKernel kernel;
};

template <class SubTable> Place placeIn(const char *name, const SubTable &table, int number)
{
    return {name, vela::slotInfo<SubTable>(), number, vela::slotPointer(table, static_cast<std::size_t>(number))};
}

// A kernel at one place of the work, and how long it took.
struct Step {
    std::string name;
    SlotInUse slot;
    std::vector<double> secondsPerSample; // of every call

    double megasamplesPerSecond() const; // of the median call
};

class Steps {
public:
    explicit Steps(const Library &library) : level(library.processorLevel()) {}

    // Calls work(), in which the kernel does so many samples. Throws Failure where the kernel is missing.
    template <class Work> void run(const char *name, const Place &place, std::size_t samples, Work work)
    {
        using Clock = std::chrono::steady_clock;
        Step &step = at(name, place);
        const Clock::time_point start = Clock::now();
        work();
        const std::chrono::duration<double> time = Clock::now() - start;
        step.secondsPerSample.push_back(time.count() / static_cast<double>(samples));
    }

    // In the order of their first use.
    const std::deque<Step> &all() const { return inOrder; }

private:
    Step &at(const char *name, const Place &place);

    int32_t level;
    std::deque<Step> inOrder;
};

} // namespace host
