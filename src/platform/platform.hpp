// The operating system, as the frame sees it. posix.cpp and windows.cpp implement it; no other file of the
// library asks which system it is on (but for spelling the exported data in assembly).
//
// Paths are wide strings. On Linux they stand for byte strings: UTF-8, with every byte that is not part of valid
// UTF-8 mapped to the lone surrogate U+DC00 + byte and back, so that any file name survives the round trip.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#if !defined(_WIN32)
#include <pthread.h>
#endif

namespace vela::platform {

inline constexpr wchar_t pathSeparator =
#if defined(_WIN32)
    L'\\';
#else
    L'/';
#endif

// --- Files -----------------------------------------------------------------------------------------------

// Opens a file by wide path; mode as fopen's. Null on failure.
std::FILE *openFile(const wchar_t *path, const char *mode) noexcept;

// Absolute seek and relative seek with 64-bit offsets; false on failure.
bool seekTo(std::FILE *file, std::int64_t offset) noexcept;
bool skip(std::FILE *file, std::int64_t bytes) noexcept;

// A file that only grows, without a buffer of its own: every append is one write at the end of the file.
// Not closed by its destructor, so that it can live in static storage until the process ends.
class AppendFile {
public:
    // Creates the file, empty; an existing one is emptied. False on failure.
    bool create(const wchar_t *path) noexcept;
    bool isOpen() const noexcept { return handle_ != closed; }
    std::uint64_t size() const noexcept; // 0 if it cannot be told
    void append(const void *bytes, std::size_t count) noexcept;
    void close() noexcept;

private:
    static constexpr std::intptr_t closed = -1;
    std::intptr_t handle_ = closed;
};

bool directoryExists(const std::wstring &path);
bool createDirectory(const std::wstring &path); // one level

// The names in a directory, one after the other. The constructor may throw; the rest needs no loader lock.
class DirectoryWalk {
public:
    explicit DirectoryWalk(const std::wstring &directory);
    ~DirectoryWalk();
    DirectoryWalk(const DirectoryWalk &) = delete;
    DirectoryWalk &operator=(const DirectoryWalk &) = delete;

    const wchar_t *next() noexcept; // null at the end; valid until the next call
    void removeCurrent() noexcept;  // deletes the file that next() named; a directory stays

private:
    struct State;
    std::unique_ptr<State> state_;
};

// --- Configuration ---------------------------------------------------------------------------------------

// The integer under [section] key of an ini file; `missing` if there is none or the file cannot be read.
std::int32_t readConfigInt(const std::wstring &path, const char *section, const char *key, std::int32_t missing);

// Writes key=value under [section], creating the file if need be and keeping whatever else it holds. A failure is
// not reported.
void writeConfigString(const std::wstring &path, const char *section, const char *key, const char *value);

// --- Module, process, threads ----------------------------------------------------------------------------

// The path of this library (or of the program that this code is linked into); empty if it cannot be told.
std::wstring modulePath();

// Differs between a process and its forked child.
std::int64_t processId() noexcept;

// A lock that needs no initialisation and no destruction, for use with std::lock_guard.
class Mutex {
public:
    void lock() noexcept;
    bool try_lock() noexcept;
    void unlock() noexcept;

private:
#if defined(_WIN32)
    void *lock_ = nullptr; // an SRWLOCK
#else
    pthread_mutex_t lock_ = PTHREAD_MUTEX_INITIALIZER;
#endif
};

// Starts the library's one background thread; false on failure. The work must neither throw nor load libraries,
// since the loader may be waiting for its end.
bool startBackground(void (*work)(void *) noexcept, void *argument) noexcept;

// To be called before the code goes away. On Linux waits for the end of the thread. On Windows returns at once:
// there the thread keeps the library loaded until it has left it.
void joinBackground() noexcept;

// --- Time and text ---------------------------------------------------------------------------------------

struct LocalTime {
    int year, month, day, hour, minute, second; // month and day from 1
};

std::int64_t secondsNow() noexcept; // since 1970-01-01, UTC
std::optional<LocalTime> localTime(std::int64_t seconds) noexcept;

// The system's wide printf into a buffer of `size` characters, always terminated. What does not fit is cut; what
// was produced before a conversion failed is kept.
void formatText(wchar_t *text, std::size_t size, const wchar_t *format, std::va_list arguments) noexcept;

} // namespace vela::platform
