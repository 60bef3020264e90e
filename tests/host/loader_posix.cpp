#include "host.hpp"

#include <dlfcn.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

int run(const std::filesystem::path &program, const std::string &first, const std::filesystem::path &second,
        const std::string &third)
{
    std::string arguments[] = {program, first, second, third};
    char *list[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), arguments[3].data(), nullptr};
    pid_t child = 0;
    int status = 0;
    if (::posix_spawn(&child, program.c_str(), nullptr, nullptr, list, environ) != 0 ||
        ::waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace vela::test::loader
