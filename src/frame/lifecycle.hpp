// What happens when the library is loaded and unloaded. The loader's hooks are in entry_posix.cpp and
// entry_windows.cpp, which are part of the library alone, so that tests can link the frame without being taken
// for it.
#pragma once

#include "platform/platform.hpp"

#include <string>
#include <string_view>

namespace vela::frame {

// Reads the configuration, starts log and clean-up. Whatever fails here, the library remains usable.
void attach() noexcept;

// Ends the clean-up and closes the log. processEnds: the other threads of the process are gone already.
void detach(bool processEnds) noexcept;

// The directory part of a path, without a separator at its end: "." if the path has none or only a leading one,
// empty for an empty path.
std::wstring directoryOf(std::wstring_view path);

// "TesselSDK-YYYYMMDD-HHMMSS.txt": names sort by time.
std::wstring logFileName(const platform::LocalTime &time);

} // namespace vela::frame
