// Options that several subcommands have.
#pragma once

#include "library.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>

namespace host {

inline void addNumber(CLI::App &command, const std::string &name, int &value, int smallest, int largest,
                      const std::string &description)
{
    command.add_option(name, value, description)
        ->type_name("N")
        ->check(CLI::Range(smallest, largest).description(""))
        ->capture_default_str();
}

inline void addThreads(CLI::App &command, int &threads)
{
    addNumber(command, "--threads", threads, 0, 256, "Threads, 1 to 256; 0: as the library's configuration says");
}

inline int threadsToUse(int wanted, const Library &library)
{
    if (wanted != 0)
        return wanted;
    return std::max(1, static_cast<int>(LIBRARY_EXPORT(library, g_TesselConf)->NumberOfThreads));
}

// "1 thread", "2 threads".
inline std::string counted(long long count, const std::string &thing)
{
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

} // namespace host
