// A directory that goes away with its owner.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace vela::test {

class TempDirectory {
public:
    // All these paths have the same length.
    TempDirectory()
    {
        std::random_device random;
        std::uniform_int_distribution<unsigned> tenDigits(1'000'000'000, 4'000'000'000);
        for (int attempt = 0; attempt < 100; ++attempt) {
            path_ = std::filesystem::temp_directory_path() / ("vela-test-" + std::to_string(tenDigits(random)));
            if (std::filesystem::create_directory(path_))
                return;
        }
        throw std::runtime_error("no temporary directory");
    }
    ~TempDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDirectory(const TempDirectory &) = delete;
    TempDirectory &operator=(const TempDirectory &) = delete;

    const std::filesystem::path &path() const { return path_; }

private:
    std::filesystem::path path_;
};

inline std::string readFile(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::filesystem::path &path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

} // namespace vela::test
