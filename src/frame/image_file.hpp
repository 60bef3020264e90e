// What the image files share: fields of either byte order, the caller's rows, and moving rows in from a file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

namespace vela::frame {

struct CloseFile {
    void operator()(std::FILE *file) const noexcept { std::fclose(file); }
};
using ImageFile = std::unique_ptr<std::FILE, CloseFile>;

// Null if the path is null or cannot be opened.
ImageFile openImageFile(const wchar_t *path, const char *mode) noexcept;

inline uint16_t littleEndian16(const unsigned char *bytes) { return static_cast<uint16_t>(bytes[0] | bytes[1] << 8); }

inline uint32_t littleEndian32(const unsigned char *bytes)
{
    return littleEndian16(bytes) | static_cast<uint32_t>(littleEndian16(bytes + 2)) << 16;
}

// The caller's rows in the order in which a file has them: from the last one up if flipped. Addresses are computed
// modulo 2^64, so that no stride or row count overflows.
class CallerRows {
public:
    CallerRows(const void *pixels, int64_t stride, uint32_t count, bool flip);

    uint32_t count() const { return rowCount; }
    // The bytes of a row that are its own.
    uint64_t rowSize() const { return step < 0 ? 0 - distance() : distance(); }
    // Whether file rows of this length lie in memory one behind the other, in the file's order.
    bool adjoin(uint64_t rowBytes) const { return step > 0 && distance() == rowBytes; }
    // The bytes from the begin of a row to the end of the buffer, or more than any row needs.
    uint64_t reach(uint32_t index) const;
    unsigned char *row(uint32_t index) const;

private:
    uint64_t distance() const { return static_cast<uint64_t>(step); }

    uintptr_t first;
    int64_t step;
    uint32_t rowCount;
};

// Reads rows of rowBytes bytes, each followed by gap bytes that are skipped. A row of the caller receives no more
// than its size. Ends where the file ends.
void readRows(std::FILE *file, const CallerRows &rows, uint64_t rowBytes, uint64_t gap) noexcept;

} // namespace vela::frame
