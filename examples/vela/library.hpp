// VelaCPUBase, loaded at run time as a media host loads it: nothing of this program is linked to it, so the program
// starts without it, can say what is wrong, and takes whichever copy the user names.
#pragma once

#include "system.hpp"

#include <vela/vela.hpp>

#include <cstring>

namespace host {

class Library {
public:
    // An empty path means the library beside this program or else the one that the system finds. Throws Failure.
    explicit Library(const std::filesystem::path &chosen);

    // An export as a pointer of the type that the headers declare; see LIBRARY_EXPORT. Throws Failure if missing.
    template <class Pointer> Pointer get(const char *name) const
    {
        void *const address = addressOf(name);
        Pointer pointer = nullptr;
        static_assert(sizeof(pointer) == sizeof(address));
        std::memcpy(&pointer, &address, sizeof(pointer));
        return pointer;
    }

    std::filesystem::path path() const;

    // The processor's level, VcbCpuLevel.
    int32_t processorLevel() const;

private:
    void *addressOf(const char *name) const;

    DynamicLibrary module;
};

// The export called name, with the type that it is declared with.
#define LIBRARY_EXPORT(library, name) (library).get<decltype(&name)>(#name)

} // namespace host
