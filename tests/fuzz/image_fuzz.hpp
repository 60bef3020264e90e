// A host that opens image files of unknown origin: it asks for the size first, refuses large pictures, allocates
// exactly the rows that the contract speaks of, and reads. The address sanitizer watches the allocation.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace fuzz {

// A file in memory that can be opened by path.
class MemoryFile {
public:
    MemoryFile() : descriptor(memfd_create("fuzz", MFD_CLOEXEC))
    {
        const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
        widePath.assign(name.begin(), name.end());
    }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { close(descriptor); }

    const wchar_t *path() const { return widePath.c_str(); }
    int64_t size() const { return lseek(descriptor, 0, SEEK_END); }

    void set(const uint8_t *bytes, std::size_t count) const
    {
        if (ftruncate(descriptor, 0) != 0 || pwrite(descriptor, bytes, count, 0) != static_cast<ssize_t>(count))
            std::abort();
    }

private:
    int descriptor;
    std::wstring widePath;
};

// height rows of |stride| zero bytes; none for a height below 1.
class Picture {
public:
    Picture(int64_t rowStride, int64_t rowCount)
        : stride(rowStride), height(std::max<int64_t>(rowCount, 0)),
          memory(std::make_unique<uint8_t[]>(static_cast<std::size_t>(height * rowSize())))
    {
    }

    int64_t rowSize() const { return stride < 0 ? -stride : stride; }
    uint8_t *row(int64_t index) const
    {
        return memory.get() + (stride < 0 ? (height - 1 - index) * rowSize() : index * rowSize());
    }
    uint8_t *pixels() const { return height > 0 ? row(0) : memory.get(); }

    bool mirrors(const Picture &other) const
    {
        for (int64_t r = 0; r < height && stride != 0; ++r)
            if (!std::equal(row(r), row(r) + rowSize(), other.row(height - 1 - r)))
                return false;
        return true;
    }

private:
    int64_t stride;
    int64_t height;
    std::unique_ptr<uint8_t[]> memory;
};

inline constexpr int64_t largestPicture = int64_t{1} << 16;

inline bool affordable(int64_t stride, int64_t height)
{
    return height <= 0 || (stride < 0 ? -stride : stride) <= largestPicture / height;
}

// Calls read(pixels, stride, flip) with strides that are too short, right and too long for rows of rowBytes, and
// wants the flipped picture upside down.
template <class Read> void readLikeAHost(Read read, int64_t height, int64_t rowBytes)
{
    for (const int64_t size : {int64_t{0}, int64_t{1}, int64_t{13}, rowBytes - 1, rowBytes, rowBytes + 3})
        for (const int64_t stride : {size, -size}) {
            if (size < 0 || !affordable(stride, height))
                continue;
            const Picture upright(stride, height);
            const Picture flipped(stride, height);
            read(upright.pixels(), stride, uint8_t{0});
            read(flipped.pixels(), stride, uint8_t{1});
            if (!flipped.mirrors(upright))
                std::abort();
        }
}

} // namespace fuzz
