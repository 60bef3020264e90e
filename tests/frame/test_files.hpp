// Temporary files, and buffers that notice every byte touched beyond their ends.
#pragma once

#include "support/guarded_buffer.hpp"
#include "temp_directory.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace test {

// A path that does not exist yet, or a file of the given bytes; removed in the end.
class TempFile {
public:
    TempFile() = default;
    explicit TempFile(const std::string &bytes) { write(bytes); }

    std::wstring wide() const { return path().wstring(); }
    bool exists() const { return std::filesystem::exists(path()); }
    void write(const std::string &bytes) const { vela::test::writeFile(path(), bytes); }
    std::string read() const { return vela::test::readFile(path()); }

private:
    std::filesystem::path path() const { return directory.path() / "file"; }

    vela::test::TempDirectory directory;
};

enum class Fence { Before, After };

// Bytes between two pages without access. They touch the page on the fenced side; on the other side canaries fill
// the room that is left.
class FencedBytes {
public:
    FencedBytes(std::size_t size, Fence fence)
        : memory(size + 1), count(size), first(fence == Fence::Before ? memory.begin() : memory.end() - size)
    {
        std::fill(memory.begin(), memory.end(), canary);
    }

    unsigned char *begin() const { return first; }
    std::size_t size() const { return count; }
    std::string bytes() const { return {first, first + count}; }

    bool canariesIntact() const
    {
        const auto isCanary = [](unsigned char byte) { return byte == canary; };
        return std::all_of(memory.begin(), first, isCanary) && std::all_of(first + count, memory.end(), isCanary);
    }

private:
    static constexpr unsigned char canary = 0xC5;

    vela::test::GuardedBuffer memory;
    std::size_t count;
    unsigned char *first;
};

} // namespace test
