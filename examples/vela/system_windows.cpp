#include "failure.hpp"
#include "paths.hpp"
#include "system.hpp"

#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <cstring>
#include <memory>

namespace host {
namespace {

std::filesystem::path modulePath(HMODULE module)
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(2 * path.size());
    }
}

} // namespace

std::vector<std::string> programArguments(int, char **)
{
    SetConsoleOutputCP(CP_UTF8);
    // main's own arguments are in the code page of the day and lose what it cannot spell.
    int count = 0;
    const std::unique_ptr<wchar_t *, decltype(&LocalFree)> wide(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; wide && i < count; ++i)
        arguments.push_back(utf8(wide.get()[i]));
    return arguments;
}

std::filesystem::path programDirectory() { return modulePath(nullptr).parent_path(); }

std::filesystem::path libraryFileName() { return L"VelaCPUBase.dll"; }

std::wstring widePath(const std::filesystem::path &path) { return path.native(); }

bool errorStreamIsTerminal() { return _isatty(_fileno(stderr)) != 0; }

DynamicLibrary::DynamicLibrary(const std::filesystem::path &file) : handle(LoadLibraryW(file.c_str()))
{
    if (!handle)
        throw Failure("cannot load the library: " + quoted(file) + " (error " + std::to_string(GetLastError()) + ")");
}

DynamicLibrary::~DynamicLibrary() { FreeLibrary(static_cast<HMODULE>(handle)); }

void *DynamicLibrary::find(const char *name) const
{
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(handle), name);
    void *found = nullptr;
    static_assert(sizeof(found) == sizeof(address));
    std::memcpy(&found, &address, sizeof(found));
    return found;
}

std::filesystem::path DynamicLibrary::pathOf(const void *address)
{
    constexpr DWORD byAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(byAddress, static_cast<const wchar_t *>(address), &module))
        return {};
    return modulePath(module);
}

} // namespace host
