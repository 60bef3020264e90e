// Deletes old log files in the background.
#pragma once

#include <string>

namespace vela::frame {

// Starts deleting every ".txt" file of the directory whose name sorts at or before lastOld, except the one in use.
// Works on copies of its arguments. Returns at once; a failure is not reported.
void startCleanup(const std::wstring &directory, const std::wstring &lastOld, const std::wstring &inUse);

// Before the library goes away: no code of the clean-up runs afterwards, or the clean-up itself keeps the library
// loaded.
void stopCleanup() noexcept;

} // namespace vela::frame
