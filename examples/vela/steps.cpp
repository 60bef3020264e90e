#include "steps.hpp"

#include "rows.hpp"

#include <algorithm>

namespace host {

double Step::megasamplesPerSecond() const { return 1e-6 / medianOf(secondsPerSample); }

// The slot is looked up, and its kernel required, when the step is first made.
Step &Steps::at(const char *name, const Place &place)
{
    const auto step = std::ranges::find_if(inOrder, [&](const Step &known) {
        return known.name == name && known.slot.family == place.table && known.slot.info->number == place.number;
    });
    if (step != inOrder.end())
        return *step;
    return inOrder.emplace_back(
        Step{name, requireSlot(place.table, place.list, place.number, place.kernel, level), {}});
}

} // namespace host
