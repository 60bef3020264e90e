#include "library.hpp"

#include "failure.hpp"
#include "paths.hpp"

namespace host {
namespace {

std::filesystem::path fileToLoad(const std::filesystem::path &chosen)
{
    std::error_code error;
    if (!chosen.empty()) {
        if (!std::filesystem::exists(chosen, error))
            throw Failure("no library " + quoted(chosen));
        return std::filesystem::absolute(chosen); // a bare name would start the system's search
    }
    const std::filesystem::path beside = programDirectory() / libraryFileName();
    return std::filesystem::exists(beside, error) ? beside : libraryFileName();
}

} // namespace

Library::Library(const std::filesystem::path &chosen) : module(fileToLoad(chosen)) {}

void *Library::addressOf(const char *name) const
{
    void *const address = module.find(name);
    if (!address)
        throw Failure("the library " + quoted(path()) + " has no export " + name);
    return address;
}

std::filesystem::path Library::path() const { return DynamicLibrary::pathOf(module.find("VCB_GetCPUInsHigh")); }

int32_t Library::processorLevel() const { return LIBRARY_EXPORT(*this, VCB_GetCPUInsHigh)(); }

} // namespace host
