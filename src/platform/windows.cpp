#include "platform/platform.hpp"

#include <algorithm>
#include <cwchar>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace vela::platform {
namespace {

std::wstring widened(const char *ascii) { return std::wstring(ascii, ascii + std::char_traits<char>::length(ascii)); }

HANDLE asHandle(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

// The module that this code is part of; counted says whether it gets one more reference.
enum class Reference { uncounted, counted };

HMODULE thisModule(Reference reference) noexcept
{
    static const char anchor = 0;
    DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS;
    if (reference == Reference::uncounted)
        flags |= GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    return GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&anchor), &module) ? module : nullptr;
}

} // namespace

// --- Files -----------------------------------------------------------------------------------------------

std::FILE *openFile(const wchar_t *path, const char *mode) noexcept
try {
    return path ? _wfopen(path, (widened(mode) + L'N').c_str()) : nullptr; // N: child processes do not inherit it
} catch (...) {
    return nullptr;
}

bool seekTo(std::FILE *file, std::int64_t offset) noexcept { return _fseeki64(file, offset, SEEK_SET) == 0; }

bool skip(std::FILE *file, std::int64_t bytes) noexcept { return _fseeki64(file, bytes, SEEK_CUR) == 0; }

static_assert(sizeof(std::intptr_t) == sizeof(HANDLE));

bool AppendFile::create(const wchar_t *path) noexcept
{
    handle_ = reinterpret_cast<std::intptr_t>(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                                          CREATE_ALWAYS,
                                                          FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    return isOpen(); // a failure gives INVALID_HANDLE_VALUE, which is -1
}

std::uint64_t AppendFile::size() const noexcept
{
    LARGE_INTEGER size;
    return GetFileSizeEx(asHandle(handle_), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

void AppendFile::append(const void *bytes, std::size_t count) noexcept
{
    DWORD written = 0;
    SetFilePointerEx(asHandle(handle_), LARGE_INTEGER{}, nullptr, FILE_END);
    WriteFile(asHandle(handle_), bytes, static_cast<DWORD>(count), &written, nullptr);
}

void AppendFile::close() noexcept
{
    if (isOpen())
        CloseHandle(asHandle(handle_));
    handle_ = closed;
}

bool directoryExists(const std::wstring &path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool createDirectory(const std::wstring &path) { return CreateDirectoryW(path.c_str(), nullptr); }

struct DirectoryWalk::State {
    std::wstring path; // of the directory, with a separator at its end, and then of the file to be deleted
    std::size_t directoryLength = 0;
    HANDLE search = INVALID_HANDLE_VALUE;
    WIN32_FIND_DATAW entry = {};
    bool started = false;
};

DirectoryWalk::DirectoryWalk(const std::wstring &directory) : state_(new State)
{
    state_->path = directory + pathSeparator;
    state_->directoryLength = state_->path.size();
    state_->path.reserve(state_->directoryLength + MAX_PATH); // later nothing may throw
}

DirectoryWalk::~DirectoryWalk()
{
    if (state_->search != INVALID_HANDLE_VALUE)
        FindClose(state_->search);
}

const wchar_t *DirectoryWalk::next() noexcept
{
    bool found = false;
    if (!state_->started) {
        state_->started = true;
        state_->path.resize(state_->directoryLength);
        state_->path += L'*';
        state_->search = FindFirstFileW(state_->path.c_str(), &state_->entry);
        found = state_->search != INVALID_HANDLE_VALUE;
    } else if (state_->search != INVALID_HANDLE_VALUE) {
        found = FindNextFileW(state_->search, &state_->entry);
    }
    return found ? state_->entry.cFileName : nullptr;
}

void DirectoryWalk::removeCurrent() noexcept
{
    state_->path.resize(state_->directoryLength);
    state_->path += state_->entry.cFileName;
    DeleteFileW(state_->path.c_str());
}

// --- Configuration ---------------------------------------------------------------------------------------

std::int32_t readConfigInt(const std::wstring &path, const char *section, const char *key, std::int32_t missing)
{
    return static_cast<std::int32_t>(
        GetPrivateProfileIntW(widened(section).c_str(), widened(key).c_str(), missing, path.c_str()));
}

void writeConfigString(const std::wstring &path, const char *section, const char *key, const char *value)
{
    WritePrivateProfileStringW(widened(section).c_str(), widened(key).c_str(), widened(value).c_str(), path.c_str());
}

// --- Module, process, threads ----------------------------------------------------------------------------

std::wstring modulePath()
{
    constexpr DWORD capacity = 4095;
    std::wstring path(capacity, L'\0');
    path.resize(GetModuleFileNameW(thisModule(Reference::uncounted), path.data(), capacity));
    return path;
}

std::int64_t processId() noexcept { return GetCurrentProcessId(); }

static_assert(sizeof(void *) == sizeof(SRWLOCK));

void Mutex::lock() noexcept { AcquireSRWLockExclusive(reinterpret_cast<SRWLOCK *>(&lock_)); }
bool Mutex::try_lock() noexcept { return TryAcquireSRWLockExclusive(reinterpret_cast<SRWLOCK *>(&lock_)); }
void Mutex::unlock() noexcept { ReleaseSRWLockExclusive(reinterpret_cast<SRWLOCK *>(&lock_)); }

namespace {

struct Background {
    void (*work)(void *) noexcept = nullptr;
    void *argument = nullptr;
    HMODULE module = nullptr; // the thread's own reference
};
constinit Background background;

DWORD WINAPI runBackground(void *)
{
    background.work(background.argument);
    FreeLibraryAndExitThread(background.module, 0);
}

} // namespace

bool startBackground(void (*work)(void *) noexcept, void *argument) noexcept
{
    background.work = work;
    background.argument = argument;
    background.module = thisModule(Reference::counted);
    if (!background.module)
        return false;
    const HANDLE thread = CreateThread(nullptr, 0, runBackground, nullptr, 0, nullptr);
    if (!thread) {
        FreeLibrary(background.module);
        return false;
    }
    CloseHandle(thread);
    return true;
}

void joinBackground() noexcept {}

// --- Time and text ---------------------------------------------------------------------------------------

// Straight from the system: the C library's clock takes locks, and a thread that the end of the process has cut off
// may still hold them when the log is closed.
namespace {

constexpr std::int64_t ticksPerSecond = 10'000'000; // FILETIME counts 100 ns
constexpr std::int64_t secondsFrom1601To1970 = 11644473600;

} // namespace

std::int64_t secondsNow() noexcept
{
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    const std::int64_t ticks = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    return ticks / ticksPerSecond - secondsFrom1601To1970;
}

std::optional<LocalTime> localTime(std::int64_t seconds) noexcept
{
    const std::int64_t ticks = (seconds + secondsFrom1601To1970) * ticksPerSecond;
    const FILETIME time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME utc;
    SYSTEMTIME local;
    if (!FileTimeToSystemTime(&time, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
        return std::nullopt;
    return LocalTime{local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

void formatText(wchar_t *text, std::size_t size, const wchar_t *format, std::va_list arguments) noexcept
{
    // Output that does not fit fills the buffer and leaves it without an end.
    std::fill_n(text, size, L'\0');
    _vsnwprintf(text, size - 1, format, arguments);
    text[size - 1] = L'\0';
}

} // namespace vela::platform
