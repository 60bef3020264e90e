// What stops a subcommand: one line for the user and an exit status.
#pragma once

#include <stdexcept>

namespace host {

enum ExitStatus { exitSuccess = 0, exitFailure = 1, exitUsage = 2 };

// The work could not be done: a file, the library or the processor is in the way.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line asks for something that does not exist.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace host
