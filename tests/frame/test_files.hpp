// Temporary files, and buffers that notice every byte touched beyond their ends.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <random>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace test {

// A path that does not exist yet, or a file of the given bytes; removed in the end.
class TempFile {
public:
    TempFile() : path(freshPath()) {}
    explicit TempFile(const std::string &bytes) : TempFile() { write(bytes); }
    TempFile(const TempFile &) = delete;
    TempFile &operator=(const TempFile &) = delete;
    ~TempFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    std::wstring wide() const { return path.wstring(); }
    bool exists() const { return std::filesystem::exists(path); }

    void write(const std::string &bytes) const
    {
        std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    std::string read() const
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    static std::filesystem::path freshPath()
    {
        static std::mt19937_64 numbers{(uint64_t{std::random_device{}()} << 32) + std::random_device{}()};
        return std::filesystem::temp_directory_path() / ("vela-test-" + std::to_string(numbers()));
    }

    std::filesystem::path path;
};

enum class Fence { Before, After };

// Bytes between two pages without access. They touch the page on the fenced side; on the other side canaries fill
// the room that is left.
class FencedBytes {
public:
    FencedBytes(std::size_t size, Fence fence)
        : count(size), room((size / page + 1) * page), base(reserve(room + 2 * page)),
          first(base + page + (fence == Fence::Before ? 0 : room - size))
    {
        std::fill(base + page, base + page + room, canary);
    }
    FencedBytes(const FencedBytes &) = delete;
    FencedBytes &operator=(const FencedBytes &) = delete;
    ~FencedBytes() { release(); }

    unsigned char *begin() const { return first; }
    std::size_t size() const { return count; }
    std::string bytes() const { return {first, first + count}; }

    bool canariesIntact() const
    {
        const auto isCanary = [](unsigned char byte) { return byte == canary; };
        return std::all_of(base + page, first, isCanary) && std::all_of(first + count, base + page + room, isCanary);
    }

private:
    static constexpr std::size_t page = 4096;
    static constexpr unsigned char canary = 0xC5;

#if defined(_WIN32)
    unsigned char *reserve(std::size_t bytes) const
    {
        auto *memory = static_cast<unsigned char *>(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS));
        if (!memory || !VirtualAlloc(memory + page, room, MEM_COMMIT, PAGE_READWRITE))
            throw std::bad_alloc();
        return memory;
    }
    void release() const { VirtualFree(base, 0, MEM_RELEASE); }
#else
    unsigned char *reserve(std::size_t bytes) const
    {
        void *memory = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(static_cast<unsigned char *>(memory) + page, room, PROT_READ | PROT_WRITE))
            throw std::bad_alloc();
        return static_cast<unsigned char *>(memory);
    }
    void release() const { munmap(base, room + 2 * page); }
#endif

    std::size_t count;
    std::size_t room;
    unsigned char *base;
    unsigned char *first;
};

} // namespace test
