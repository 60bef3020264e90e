// The library as a host meets it: loaded at run time, from a directory of its own for every test.
#pragma once

#include "../temp_directory.hpp"

#include <vela/vela.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vela::test {

// The operating system's loader, see loader_posix.cpp and loader_windows.cpp.
namespace loader {
void *load(const std::filesystem::path &library); // null on failure
void *symbol(void *module, const char *name);     // null if there is none
void unload(void *module);
bool isLoaded(const std::filesystem::path &library);

// The exit code of the program, run with three arguments; negative if it cannot be run or does not end by itself.
int run(const std::filesystem::path &program, const std::string &first, const std::filesystem::path &second,
        const std::string &third);
} // namespace loader

// A loaded library. Unloading waits until it is really gone.
class Library {
public:
    explicit Library(const std::filesystem::path &path);
    Library(Library &&other) noexcept : path_(std::move(other.path_)), module_(std::exchange(other.module_, nullptr)) {}
    ~Library();

    void unload();

    // An export, in the type that the headers give it: library.get<decltype(VCB_WriteLog)>("VCB_WriteLog").
    template <class Symbol> Symbol &get(const char *name) const { return *reinterpret_cast<Symbol *>(find(name)); }

    const VcbTesselConf &conf() const { return get<VcbTesselConf>("g_TesselConf"); }
    decltype(VCB_WriteLog) &writeLog() const { return get<decltype(VCB_WriteLog)>("VCB_WriteLog"); }

private:
    void *find(const char *name) const; // throws if there is none

    std::filesystem::path path_;
    void *module_;
};

// A copy of the library in a directory that goes away.
class Installation {
public:
    Installation() : Installation(std::filesystem::path()) {}
    explicit Installation(const std::filesystem::path &subdirectory);

    Library load() const { return Library(library()); }

    const std::filesystem::path &directory() const { return directory_; }
    std::filesystem::path library() const;
    std::filesystem::path ini() const { return directory_ / "VelaTesselSDKConf.ini"; }
    std::filesystem::path logDirectory() const { return directory_ / "TesselLog"; }

    void switchLogOn() const { writeFile(ini(), "[Log]\r\nOutputLog=1\r\n"); }
    // Log files of long ago, named "TesselSDK-19...".
    void addOldLogs(int count) const;
    std::size_t oldLogs() const;

    std::vector<std::filesystem::path> logs() const; // without the old ones
    std::u16string log() const; // the one log, without its byte-order mark; empty if there is not exactly one

private:
    TempDirectory temporary_;
    std::filesystem::path directory_;
};

// The text with every "MM/DD/YY HH:MM:SS" replaced by "<now>".
std::u16string masked(std::u16string text);

extern const std::u16string startLine; // masked
extern const std::u16string stopLine;  // masked
std::u16string messageLine(const std::u16string &text);

} // namespace vela::test
