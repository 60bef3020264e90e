#include "host.hpp"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <process.h>

namespace vela::test::loader {

void *load(const std::filesystem::path &library) { return LoadLibraryW(library.c_str()); }

void *symbol(void *module, const char *name)
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void unload(void *module) { FreeLibrary(static_cast<HMODULE>(module)); }

bool isLoaded(const std::filesystem::path &library) { return GetModuleHandleW(library.c_str()) != nullptr; }

int run(const std::filesystem::path &program, const std::string &first, const std::filesystem::path &second,
        const std::string &third)
{
    const std::filesystem::path arguments[] = {first, third};
    const std::wstring quoted[] = {L'"' + program.wstring() + L'"', L'"' + second.wstring() + L'"'};
    return static_cast<int>(_wspawnl(_P_WAIT, program.c_str(), quoted[0].c_str(), arguments[0].c_str(),
                                     quoted[1].c_str(), arguments[1].c_str(), nullptr));
}

} // namespace vela::test::loader
