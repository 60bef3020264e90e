#include "frame/cleanup.hpp"

#include "platform/platform.hpp"

#include <atomic>
#include <memory>
#include <string_view>

namespace vela::frame {
namespace {

struct Job {
    platform::DirectoryWalk files;
    std::wstring lastOld;
    std::wstring inUse;
};

constinit std::atomic<bool> stopRequested = false;

wchar_t asciiLower(wchar_t character) { return character >= L'A' && character <= L'Z' ? character | 0x20 : character; }

bool isTextFile(std::wstring_view name)
{
    constexpr std::wstring_view extension = L".txt";
    if (name.size() < extension.size())
        return false;
    for (std::size_t i = 0; i < extension.size(); ++i)
        if (asciiLower(name[name.size() - extension.size() + i]) != extension[i])
            return false;
    return true;
}

// A file's age is read from its name alone: names of log files sort by time.
void cleanUp(void *argument) noexcept
{
    const std::unique_ptr<Job> job(static_cast<Job *>(argument));
    while (!stopRequested.load(std::memory_order_relaxed)) {
        const wchar_t *name = job->files.next();
        if (!name)
            return;
        if (isTextFile(name) && name <= job->lastOld && name != job->inUse)
            job->files.removeCurrent();
    }
}

} // namespace

void startCleanup(const std::wstring &directory, const std::wstring &lastOld, const std::wstring &inUse)
{
    std::unique_ptr<Job> job(new Job{platform::DirectoryWalk(directory), lastOld, inUse});
    stopRequested.store(false, std::memory_order_relaxed);
    if (platform::startBackground(cleanUp, job.get())) [[maybe_unused]]
        Job *owned = job.release(); // by the thread
}

void stopCleanup() noexcept
{
    stopRequested.store(true, std::memory_order_relaxed);
    platform::joinBackground();
}

} // namespace vela::frame
