// What the tests of the image files share: a host's picture in fenced memory, and what a file's rows should make
// of it.
#pragma once

#include "test_files.hpp"

#include <cstdint>
#include <random>
#include <string>

namespace test {

inline void put16(std::string &bytes, std::size_t at, uint32_t value, bool bigEndian = false)
{
    bytes[at] = static_cast<char>(bigEndian ? value >> 8 : value);
    bytes[at + 1] = static_cast<char>(bigEndian ? value : value >> 8);
}

inline void put32(std::string &bytes, std::size_t at, uint32_t value, bool bigEndian = false)
{
    put16(bytes, at, bigEndian ? value >> 16 : value, bigEndian);
    put16(bytes, at + 2, bigEndian ? value : value >> 16, bigEndian);
}

// Any bytes; among so many are line ends and the end-of-file character of text files.
inline std::string noise(std::size_t size)
{
    std::minstd_rand numbers(42);
    std::string bytes = "\r\n\x1A\n\r";
    while (bytes.size() < size)
        bytes += static_cast<char>(numbers() >> 8);
    bytes.resize(size);
    return bytes;
}

// height rows of |stride| bytes, and nothing else.
class Picture {
public:
    Picture(int64_t rowStride, int64_t rowCount, Fence fence)
        : stride(rowStride), height(rowCount), memory(static_cast<std::size_t>(rowSize() * rowCount), fence)
    {
        fill(noise(memory.size()));
    }

    int64_t rowSize() const { return stride < 0 ? -stride : stride; }
    // Where row 0 begins.
    unsigned char *pixels() const { return memory.begin() + offset(0); }
    // Where a row begins, from the lowest address.
    int64_t offset(int64_t row) const { return stride < 0 ? (height - 1 - row) * rowSize() : row * rowSize(); }
    // The buffer's row that the i-th row of a file belongs to.
    int64_t fileRow(int64_t i, bool flip) const { return flip ? height - 1 - i : i; }

    void fill(const std::string &bytes) { std::copy(bytes.begin(), bytes.end(), memory.begin()); }
    std::string bytes() const { return memory.bytes(); }
    bool canariesIntact() const { return memory.canariesIntact(); }

    // The buffer's bytes after the rows in `data`, rowBytes long and gap apart, have been read into it.
    std::string afterReading(const std::string &data, int64_t rowBytes, int64_t gap, bool flip) const
    {
        std::string expected = bytes();
        for (int64_t i = 0; i < height; ++i)
            for (int64_t c = 0; c < std::min(rowBytes, rowSize()); ++c) {
                const auto from = static_cast<std::size_t>(i * (rowBytes + gap) + c);
                if (from < data.size())
                    expected[static_cast<std::size_t>(offset(fileRow(i, flip)) + c)] = data[from];
            }
        return expected;
    }

private:
    int64_t stride;
    int64_t height;
    FencedBytes memory;
};

inline constexpr Fence fences[] = {Fence::Before, Fence::After};

// pixels such that row `row` of the buffer begins at `address`; the other rows need not exist as long as nobody
// touches them.
inline void *pixelsWithRowAt(void *address, int64_t stride, int64_t row)
{
    return reinterpret_cast<void *>(reinterpret_cast<uintptr_t>(address) -
                                    static_cast<uintptr_t>(stride) * static_cast<uintptr_t>(row));
}

} // namespace test
