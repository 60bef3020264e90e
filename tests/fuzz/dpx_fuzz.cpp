#include "image_fuzz.hpp"

#include <vela/frame.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const fuzz::MemoryFile file;
    file.set(data, size);
    int32_t width = 0;
    int32_t height = 0;
    int32_t format = 0;
    if (!VCB_ReadDPX(file.path(), nullptr, 0, &width, &height, &format, 0))
        return 0;
    fuzz::readLikeAHost(
        [](void *pixels, int64_t stride, uint8_t flip) {
            int32_t ignored = 0;
            VCB_ReadDPX(file.path(), pixels, stride, &ignored, &ignored, &ignored, flip);
        },
        height, int64_t{4} * width);
    return 0;
}
