#include "frame/image_file.hpp"

#include "platform/platform.hpp"

#include <algorithm>
#include <cstddef>

namespace vela::frame {
namespace {

constexpr std::size_t fileBufferSize = 1 << 16; // some rows at a time
constexpr uint64_t shortGap = 4096;

// The padding behind a row is read rather than skipped: a seek would throw the file's buffer away.
bool passGap(std::FILE *file, uint64_t bytes)
{
    if (bytes > shortGap)
        return platform::skip(file, static_cast<int64_t>(bytes));
    unsigned char ignored[shortGap];
    return std::fread(ignored, 1, static_cast<std::size_t>(bytes), file) == bytes;
}

} // namespace

ImageFile openImageFile(const wchar_t *path, const char *mode) noexcept
{
    ImageFile file(path ? platform::openFile(path, mode) : nullptr);
    if (file)
        std::setvbuf(file.get(), nullptr, _IOFBF, fileBufferSize);
    return file;
}

CallerRows::CallerRows(const void *pixels, int64_t stride, uint32_t count, bool flip)
    : first(reinterpret_cast<uintptr_t>(pixels)), step(stride), rowCount(count)
{
    if (!flip || count == 0)
        return;
    first += (count - 1) * distance();
    step = static_cast<int64_t>(0 - distance());
}

uint64_t CallerRows::reach(uint32_t index) const
{
    const uint64_t longest = UINT64_MAX / 2;
    if (step == 0)
        return longest;
    const uint64_t rowsUpToEnd = step > 0 ? uint64_t{rowCount} - index : uint64_t{index} + 1;
    return rowSize() > longest / rowsUpToEnd ? longest : rowSize() * rowsUpToEnd;
}

unsigned char *CallerRows::row(uint32_t index) const
{
    return reinterpret_cast<unsigned char *>(first + index * distance());
}

void readRows(std::FILE *file, const CallerRows &rows, uint64_t rowBytes, uint64_t gap) noexcept
{
    if (gap == 0 && rows.adjoin(rowBytes)) {
        std::fread(rows.row(0), static_cast<std::size_t>(rowBytes), rows.count(), file);
        return;
    }
    const std::size_t wanted = static_cast<std::size_t>(std::min(rowBytes, rows.rowSize()));
    if (wanted == 0)
        return;
    for (uint32_t i = 0; i < rows.count(); ++i)
        if (std::fread(rows.row(i), 1, wanted, file) != wanted || !passGap(file, rowBytes - wanted + gap))
            return;
}

} // namespace vela::frame
