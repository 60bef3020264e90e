#include "frame/cleanup.hpp"

#include "../temp_directory.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <set>
#include <thread>

namespace {

TEST(Cleanup, NeverDeletesTheLogInUse)
{
    const vela::test::TempDirectory directory;
    for (const char *name : {"a.txt", "b.txt", "c.txt", "d.txt"})
        vela::test::writeFile(directory.path() / name, "x");

    vela::frame::startCleanup(directory.path().wstring(), L"c.txt", L"b.txt");
    const auto left = [&] {
        std::set<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(directory.path()))
            names.insert(entry.path().filename().string());
        return names;
    };
    const std::set<std::string> expected = {"b.txt", "d.txt"};
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (left().size() > expected.size() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    vela::frame::stopCleanup();
    EXPECT_EQ(left(), expected);
}

} // namespace
