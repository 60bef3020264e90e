// The operating system, as the host needs it. system_posix.cpp and system_windows.cpp implement it; no other file
// of the host asks which system it is on.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

// The arguments after the program's name, in UTF-8; prepares the console for UTF-8 too.
std::vector<std::string> programArguments(int argc, char **argv);

std::filesystem::path programDirectory();

// The file name of the library: of the one version that this host was written for, where names carry versions.
std::filesystem::path libraryFileName();

// A path as the library's exports take it.
std::wstring widePath(const std::filesystem::path &path);

bool errorStreamIsTerminal();

// A dynamic library, loaded now and unloaded by the destructor.
class DynamicLibrary {
public:
    // A bare file name is looked for where the system looks for libraries. Throws Failure.
    explicit DynamicLibrary(const std::filesystem::path &file);
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary &) = delete;
    DynamicLibrary &operator=(const DynamicLibrary &) = delete;

    // The address of an exported function or object; null if there is none.
    void *find(const char *name) const;

    // Where the library that contains an exported address was loaded from.
    static std::filesystem::path pathOf(const void *address);

private:
    void *handle;
};

} // namespace host
