#include "failure.hpp"
#include "paths.hpp"
#include "system.hpp"

#include <vela/version.h>

#include <dlfcn.h>
#include <unistd.h>

namespace host {
namespace {

// Reads one UTF-8 sequence off the front of bytes. A byte that starts none becomes the lone surrogate
// U+DC00 + byte, which the library turns back into that byte, so that every file name can be named.
wchar_t takeCharacter(std::string_view &bytes)
{
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = byteAt(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    constexpr unsigned leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr unsigned smallest[] = {0, 0, 0x80, 0x800, 0x10000};

    bool valid = length != 0 && length <= bytes.size();
    unsigned character = valid ? lead & leadBits[length] : 0;
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = (byteAt(i) & 0xC0) == 0x80;
        character = character << 6 | (byteAt(i) & 0x3F);
    }
    valid =
        valid && character >= smallest[length] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    bytes.remove_prefix(valid ? length : 1);
    return static_cast<wchar_t>(valid ? character : 0xDC00 + lead);
}

} // namespace

std::vector<std::string> programArguments(int argc, char **argv)
{
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

std::filesystem::path programDirectory()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::filesystem::path libraryFileName() { return "libVelaCPUBase.so." + std::to_string(VELA_VERSION_MAJOR); }

std::wstring widePath(const std::filesystem::path &path)
{
    std::wstring wide;
    for (std::string_view rest = path.native(); !rest.empty();)
        wide.push_back(takeCharacter(rest));
    return wide;
}

bool errorStreamIsTerminal() { return isatty(STDERR_FILENO) != 0; }

DynamicLibrary::DynamicLibrary(const std::filesystem::path &file) : handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!handle) {
        const char *reason = dlerror();
        throw Failure("cannot load the library: " + std::string(reason ? reason : utf8(file)));
    }
}

DynamicLibrary::~DynamicLibrary() { dlclose(handle); }

void *DynamicLibrary::find(const char *name) const { return dlsym(handle, name); }

std::filesystem::path DynamicLibrary::pathOf(const void *address)
{
    Dl_info info{};
    return dladdr(address, &info) && info.dli_fname ? info.dli_fname : "";
}

} // namespace host
