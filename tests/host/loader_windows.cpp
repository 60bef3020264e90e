#include "host.hpp"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace vela::test::loader {

void *load(const std::filesystem::path &library) { return LoadLibraryW(library.c_str()); }

void *symbol(void *module, const char *name)
{
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void unload(void *module) { FreeLibrary(static_cast<HMODULE>(module)); }

bool isLoaded(const std::filesystem::path &library) { return GetModuleHandleW(library.c_str()) != nullptr; }

} // namespace vela::test::loader
