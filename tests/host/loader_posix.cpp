#include "host.hpp"

#include <dlfcn.h>

namespace vela::test::loader {

void *load(const std::filesystem::path &library) { return ::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL); }

void *symbol(void *module, const char *name) { return ::dlsym(module, name); }

void unload(void *module) { ::dlclose(module); }

bool isLoaded(const std::filesystem::path &library)
{
    void *module = ::dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (module)
        ::dlclose(module);
    return module != nullptr;
}

} // namespace vela::test::loader
