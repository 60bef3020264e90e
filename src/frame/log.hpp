// The log: one UTF-16LE text file per run of the process.
#pragma once

#include "platform/platform.hpp"

#include <atomic>
#include <string_view>

namespace vela::frame {

// All operations may be called from any thread. A Log lives in static storage: it needs no construction at load and
// no destruction, so threads that outlive the library's end find it stopped, not gone.
class Log {
public:
    static constexpr std::size_t pathCapacity = 260;       // with the terminator
    static constexpr std::uint64_t restartSize = 0x100000; // bytes; a longer file starts over

    // Gives the log its file, which the first line creates. With a path that is too long it never has a file.
    void start(std::wstring_view path) noexcept;
    bool isStarted() const noexcept { return started_.load(std::memory_order_acquire); }

    // Appends one line, with date and time.
    void write(std::wstring_view text) noexcept;

    // Closes the file with a stop line. othersAreGone: the process is ending and its other threads were cut off,
    // wherever they were; if one of them held the lock, the file stays as it is.
    void stop(bool othersAreGone) noexcept;

private:
    enum class State { unopened, open, failed }; // a failed open is not tried again

    void open() noexcept;
    void close() noexcept;

    platform::Mutex mutex_;
    std::atomic<bool> started_ = false;
    State state_ = State::unopened;
    platform::AppendFile file_;
    wchar_t path_[pathCapacity] = {}; // empty: none
};

// The library's log.
extern Log processLog;

} // namespace vela::frame
