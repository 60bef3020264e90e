// The format-code maps, and the slots that convert by format code.
#pragma once

#include <vela/colorspace.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vela::colorspace {

// Format codes and the kernels that they select. An empty entry is a code that was asked for and has no kernel yet; a
// later assignment gives it one.
//
// Any number of threads may look codes up, whether or not the map knows them, while others enter codes: an entry is
// claimed by one exchange of its code, is never removed and never moves, so a thread sees it whole or not yet. The
// entries are of a fixed number. A host that passes data as codes costs neither memory nor an allocation in the middle
// of a frame: once there is no room, an unknown code gets no entry, which to its caller is the same. The last entries
// are kept for assignments.
template <class Kernel> class FormatMap {
public:
    static constexpr std::size_t entries = 64;
    static constexpr std::size_t keptForAssignments = 32;

    // The kernel of a code; null if it has none.
    Kernel *operator[](std::int32_t code) noexcept
    {
        Entry *const entry = find(code, entries - keptForAssignments);
        return entry ? entry->kernel.load(std::memory_order_acquire) : nullptr;
    }

    // Gives a code its kernel, whether or not it is known. False if there is no room left.
    bool assign(std::int32_t code, Kernel *kernel) noexcept
    {
        Entry *const entry = find(code, entries);
        if (entry)
            entry->kernel.store(kernel, std::memory_order_release);
        return entry != nullptr;
    }

    std::size_t size() const noexcept
    {
        std::size_t used = 0;
        while (used < entries && entries_[used].code.load(std::memory_order_acquire) != unused)
            ++used;
        return used;
    }

private:
    static constexpr std::int64_t unused = INT64_MIN; // no code, since those have 32 bits

    struct Entry {
        std::atomic<std::int64_t> code{unused};
        std::atomic<Kernel *> kernel{nullptr};
    };

    // The entry of a code, made if it is missing and would be one of the first `room`; null otherwise.
    Entry *find(std::int32_t code, std::size_t room) noexcept
    {
        for (std::size_t i = 0; i < entries; ++i) {
            std::int64_t found = entries_[i].code.load(std::memory_order_acquire);
            if (found == unused) {
                if (i >= room)
                    return nullptr;
                // Of several threads that find this entry unused one wins; the others see the code that it entered.
                if (entries_[i].code.compare_exchange_strong(found, code, std::memory_order_acq_rel))
                    return &entries_[i];
            }
            if (found == code)
                return &entries_[i];
        }
        return nullptr;
    }

    std::array<Entry, entries> entries_{};
};

using RowToFloats = void VCB_CALL(float *dst, const void *src, std::int32_t width);
using RowFromFloats = void VCB_CALL(void *dst, const float *src, std::int32_t width);

extern FormatMap<RowToFloats> formatMap1;
extern FormatMap<RowFromFloats> formatMap2;

// Enters the codes that the library knows, with kernels of the base tier. Again, it changes nothing.
void fillFormatMaps() noexcept;

// The slots that are plain code.
extern const VcbColorSpaceProcs plainProcs;

} // namespace vela::colorspace
