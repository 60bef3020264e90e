#include "frame/registration.hpp"

#include <cstring>

namespace vela::frame {

void fillEmptySlots(void *host, const void *tier, std::size_t slots) noexcept
{
    auto *to = static_cast<unsigned char *>(host);
    const auto *from = static_cast<const unsigned char *>(tier);
    for (std::size_t i = 0; i < slots; ++i, to += sizeof(VcbKernel), from += sizeof(VcbKernel)) {
        VcbKernel kernel = nullptr;
        std::memcpy(&kernel, to, sizeof(kernel));
        if (!kernel)
            std::memcpy(to, from, sizeof(kernel));
    }
}

} // namespace vela::frame
