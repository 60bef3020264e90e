// Memory between two inaccessible pages.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vela::test {

class GuardedBuffer {
public:
    explicit GuardedBuffer(std::size_t atLeast);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer &) = delete;
    GuardedBuffer &operator=(const GuardedBuffer &) = delete;

    // The first byte behind the lower guard, and the upper guard's first byte.
    std::uint8_t *begin() const { return begin_; }
    std::uint8_t *end() const { return begin_ + size_; }
    std::size_t size() const { return size_; }

private:
    std::uint8_t *begin_;
    std::size_t size_;
};

// Runs work; false if it touched inaccessible memory or ran an instruction that the processor lacks. Objects that
// work owned are then lost, so it should own none. One thread at a time.
bool runsWithoutFault(void (*work)(void *), void *context);

template <class Work> bool runsWithoutFault(Work &&work)
{
    return runsWithoutFault([](void *context) { (*static_cast<Work *>(context))(); }, &work);
}

} // namespace vela::test
