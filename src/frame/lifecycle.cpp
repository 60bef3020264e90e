#include "frame/lifecycle.hpp"

#include "frame/cleanup.hpp"
#include "frame/config.hpp"
#include "frame/log.hpp"
#include "frame/text.hpp"

namespace vela::frame {
namespace {

constexpr std::int64_t logLifetimeSeconds = 7 * 24 * 60 * 60;

constinit std::int64_t attachedProcess = 0;

void startLog(const std::wstring &directory)
{
    // With logging off, an existing directory is still cleaned up, but none is created.
    const bool exists = platform::directoryExists(directory);
    if (g_TesselConf.OutputLog == 0 && !exists)
        return;
    if (!exists && !platform::createDirectory(directory))
        return;

    const std::int64_t now = platform::secondsNow();
    const auto time = platform::localTime(now);
    if (!time)
        return;
    const std::wstring name = logFileName(*time);
    processLog.start(directory + platform::pathSeparator + name);
    if (const auto lastOld = platform::localTime(now - logLifetimeSeconds))
        startCleanup(directory, logFileName(*lastOld), name);
}

} // namespace

std::wstring directoryOf(std::wstring_view path)
{
    if (path.empty())
        return {};
    const std::size_t separator = path.rfind(platform::pathSeparator);
    if (separator == std::wstring_view::npos || separator == 0)
        return L".";
    return std::wstring(path.substr(0, separator));
}

std::wstring logFileName(const platform::LocalTime &time)
{
    FixedText<64> name;
    name.append(L"TesselSDK-").appendDigits(time.year, 4).appendDigits(time.month, 2).appendDigits(time.day, 2);
    name.append(L"-").appendDigits(time.hour, 2).appendDigits(time.minute, 2).appendDigits(time.second, 2);
    return std::wstring(name.append(L".txt").view());
}

void attach() noexcept
try {
    if (processLog.isStarted())
        return;
    attachedProcess = platform::processId();
    const std::wstring beside = directoryOf(platform::modulePath()) + platform::pathSeparator;
    g_TesselConf = loadConfig(beside + L"VelaTesselSDKConf.ini");
    startLog(beside + L"TesselLog");
} catch (...) {
    processLog.stop(false);
}

void detach(bool processEnds) noexcept
{
    // A forked child has inherited the log, which is its parent's to close, but not the clean-up thread.
    if (platform::processId() != attachedProcess)
        return;
    stopCleanup();
    processLog.stop(processEnds);
}

} // namespace vela::frame
