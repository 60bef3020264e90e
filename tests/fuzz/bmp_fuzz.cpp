#include "image_fuzz.hpp"

#include <vela/frame.h>

namespace {

// Writes pictures of the shape that the file claims, and wants files of the right length.
void writeLikeAHost(int32_t bits, int32_t width, int32_t height, int64_t rowBytes)
{
    static const fuzz::MemoryFile written;
    const int64_t headers = bits == 8 ? 1078 : 54;
    if (rowBytes < 0 || height < 0 || !fuzz::affordable(rowBytes + 3, height))
        return;
    for (const int64_t size : {int64_t{1}, rowBytes, rowBytes + 1, (rowBytes + 3) / 4 * 4})
        for (const int64_t stride : {size, -size})
            for (const uint8_t flip : {uint8_t{0}, uint8_t{1}}) {
                const fuzz::Picture picture(stride, height);
                if (VCB_WriteBMP(written.path(), picture.pixels(), stride, bits, width, static_cast<uint32_t>(height),
                                 flip) != 1)
                    std::abort();
                const int64_t rows = written.size() - headers;
                if (rows < rowBytes * height || rows > (rowBytes + 3) * height)
                    std::abort();
            }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const fuzz::MemoryFile file;
    file.set(data, size);
    int32_t bits = 0;
    int32_t width = 0;
    int32_t height = 0;
    if (!VCB_ReadBMP(file.path(), nullptr, 0, &bits, &width, &height, 0))
        return 0;
    const int64_t rowBytes = int64_t{bits / 8} * width;
    fuzz::readLikeAHost([](void *pixels, int64_t stride,
                           uint8_t flip) { VCB_ReadBMP(file.path(), pixels, stride, nullptr, nullptr, nullptr, flip); },
                        height, rowBytes);
    if (width >= 0)
        writeLikeAHost(bits, width, height, rowBytes);
    return 0;
}
