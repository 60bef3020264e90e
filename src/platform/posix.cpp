#include "platform/ini.hpp"
#include "platform/path_bytes.hpp"
#include "platform/platform.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <cwchar>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vela::platform {
namespace {

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor()
    {
        if (isOpen())
            ::close(descriptor_);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    int get() const { return descriptor_; }

private:
    int descriptor_;
};

bool writeAll(int descriptor, const void *bytes, std::size_t count) noexcept
{
    const auto *from = static_cast<const char *>(bytes);
    while (count > 0) {
        const ssize_t written = ::write(descriptor, from, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        from += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

// --- Files -----------------------------------------------------------------------------------------------

std::FILE *openFile(const wchar_t *path, const char *mode) noexcept
try {
    if (!path)
        return nullptr;
    const std::optional<std::string> bytes = bytePath(path);
    return bytes ? std::fopen(bytes->c_str(), (std::string(mode) + 'e').c_str()) : nullptr;
} catch (...) {
    return nullptr;
}

bool seekTo(std::FILE *file, std::int64_t offset) noexcept { return fseeko(file, offset, SEEK_SET) == 0; }

bool skip(std::FILE *file, std::int64_t bytes) noexcept { return fseeko(file, bytes, SEEK_CUR) == 0; }

bool AppendFile::create(const wchar_t *path) noexcept
try {
    const std::optional<std::string> bytes = bytePath(path);
    if (bytes)
        handle_ = ::open(bytes->c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NOCTTY, 0666);
    return isOpen();
} catch (...) {
    return false;
}

std::uint64_t AppendFile::size() const noexcept
{
    struct stat status;
    return ::fstat(static_cast<int>(handle_), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

void AppendFile::append(const void *bytes, std::size_t count) noexcept
{
    writeAll(static_cast<int>(handle_), bytes, count);
}

void AppendFile::close() noexcept
{
    if (isOpen())
        ::close(static_cast<int>(handle_));
    handle_ = closed;
}

bool directoryExists(const std::wstring &path)
{
    const std::optional<std::string> bytes = bytePath(path);
    struct stat status;
    return bytes && ::stat(bytes->c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool createDirectory(const std::wstring &path)
{
    const std::optional<std::string> bytes = bytePath(path);
    return bytes && ::mkdir(bytes->c_str(), 0777) == 0;
}

struct DirectoryWalk::State {
    DIR *directory;
    const dirent *entry;
    wchar_t name[sizeof(dirent::d_name)];
};

DirectoryWalk::DirectoryWalk(const std::wstring &directory) : state_(new State{})
{
    // Opened here and not by next(), which must not allocate through anything that may throw.
    const std::optional<std::string> bytes = bytePath(directory);
    state_->directory = bytes ? ::opendir(bytes->c_str()) : nullptr;
}

DirectoryWalk::~DirectoryWalk()
{
    if (state_->directory)
        ::closedir(state_->directory);
}

const wchar_t *DirectoryWalk::next() noexcept
{
    state_->entry = state_->directory ? ::readdir(state_->directory) : nullptr;
    if (!state_->entry)
        return nullptr;
    widenPath(state_->entry->d_name, state_->name);
    return state_->name;
}

void DirectoryWalk::removeCurrent() noexcept
{
    if (state_->entry)
        ::unlinkat(::dirfd(state_->directory), state_->entry->d_name, 0);
}

// --- Configuration ---------------------------------------------------------------------------------------

namespace {

constexpr off_t largestConfig = 1 << 20; // a larger file is none of ours

struct ConfigFile {
    enum { missing, readable, unreadable } state = unreadable;
    std::string text;
    struct stat status = {};
};

// Reads a file of the given size; false if it holds more by now.
bool readAll(int descriptor, std::size_t size, std::string &text)
{
    text.resize(size + 1);
    std::size_t length = 0;
    while (length < text.size()) {
        const ssize_t count = ::read(descriptor, text.data() + length, text.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return length <= size;
}

ConfigFile readConfig(const std::string &path)
{
    ConfigFile file;
    // Without O_NONBLOCK a pipe of that name would hang the load.
    const Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor.isOpen())
        file.state = errno == ENOENT ? ConfigFile::missing : ConfigFile::unreadable;
    else if (::fstat(descriptor.get(), &file.status) == 0 && S_ISREG(file.status.st_mode) &&
             file.status.st_size <= largestConfig &&
             readAll(descriptor.get(), static_cast<std::size_t>(file.status.st_size), file.text))
        file.state = ConfigFile::readable;
    return file;
}

// Where the file really lies, so that a symbolic link is kept.
std::string resolved(const std::string &path)
{
    char *real = ::realpath(path.c_str(), nullptr);
    if (!real)
        return path;
    std::string result = real;
    std::free(real);
    return result;
}

// Puts the text in the place of the file, at once: another process sees the old file or the new one.
void replaceConfig(const std::string &path, const ConfigFile &old, const std::string &text)
{
    const std::string temporary = path + '.' + std::to_string(::getpid()) + ".tmp";
    bool complete = false;
    {
        const Descriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (!file.isOpen())
            return;
        complete = writeAll(file.get(), text.data(), text.size());
        if (complete && old.state == ConfigFile::readable) {
            // Owner first, since changing it may drop bits. Only a privileged process can give a file away; for
            // any other the file has the right owner already, or becomes its own.
            [[maybe_unused]] const int kept = ::fchown(file.get(), old.status.st_uid, old.status.st_gid);
            complete = ::fchmod(file.get(), old.status.st_mode & 07777) == 0;
        }
    }
    if (!complete || ::rename(temporary.c_str(), path.c_str()) != 0)
        ::unlink(temporary.c_str());
}

} // namespace

std::int32_t readConfigInt(const std::wstring &path, const char *section, const char *key, std::int32_t missing)
{
    const std::optional<std::string> bytes = bytePath(path);
    if (!bytes)
        return missing;
    const ConfigFile file = readConfig(*bytes);
    return file.state == ConfigFile::readable ? iniReadInt(file.text, section, key, missing) : missing;
}

void writeConfigString(const std::wstring &path, const char *section, const char *key, const char *value)
{
    const std::optional<std::string> bytes = bytePath(path);
    if (!bytes)
        return;
    const std::string target = resolved(*bytes);
    const ConfigFile old = readConfig(target);
    const bool writeProtected = old.state == ConfigFile::readable && ::access(target.c_str(), W_OK) != 0;
    if (old.state != ConfigFile::unreadable && !writeProtected)
        replaceConfig(target, old, iniWithKey(old.text, section, key, value));
}

// --- Module, process, threads ----------------------------------------------------------------------------

std::wstring modulePath()
{
    static const char anchor = 0;
    Dl_info module;
    if (!::dladdr(&anchor, &module) || !module.dli_fname)
        return {};
    const std::string_view name = module.dli_fname;
    if (name.starts_with('/'))
        return widePath(name);
    // The loader keeps a relative path as it was given, but the host may change its directory later.
    char current[PATH_MAX];
    if (!::getcwd(current, sizeof(current)))
        return widePath(name);
    return widePath(std::string(current).append("/").append(name));
}

std::int64_t processId() noexcept { return ::getpid(); }

void Mutex::lock() noexcept { ::pthread_mutex_lock(&lock_); }
bool Mutex::try_lock() noexcept { return ::pthread_mutex_trylock(&lock_) == 0; }
void Mutex::unlock() noexcept { ::pthread_mutex_unlock(&lock_); }

namespace {

struct Background {
    void (*work)(void *) noexcept = nullptr;
    void *argument = nullptr;
    pthread_t thread = {};
    bool started = false;
};
constinit Background background;

void *runBackground(void *)
{
    background.work(background.argument);
    return nullptr;
}

} // namespace

bool startBackground(void (*work)(void *) noexcept, void *argument) noexcept
{
    background.work = work;
    background.argument = argument;
    // The thread inherits the mask: signals are the host's affair, and its handlers run on its own threads.
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    background.started = ::pthread_create(&background.thread, nullptr, runBackground, nullptr) == 0;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return background.started;
}

void joinBackground() noexcept
{
    if (background.started)
        ::pthread_join(background.thread, nullptr);
    background.started = false;
}

// --- Time and text ---------------------------------------------------------------------------------------

std::int64_t secondsNow() noexcept { return std::time(nullptr); }

std::optional<LocalTime> localTime(std::int64_t seconds) noexcept
{
    const std::time_t time = seconds;
    std::tm local;
    if (!::localtime_r(&time, &local))
        return std::nullopt;
    return LocalTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

void formatText(wchar_t *text, std::size_t size, const wchar_t *format, std::va_list arguments) noexcept
{
    // vswprintf fails when the output does not fit, or when a conversion fails, and then leaves behind what it had
    // written so far, without an end.
    std::fill_n(text, size, L'\0');
    std::vswprintf(text, size, format, arguments);
    text[size - 1] = L'\0';
}

} // namespace vela::platform
