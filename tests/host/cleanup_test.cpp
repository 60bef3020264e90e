#include "host.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <functional>
#include <thread>

namespace {

using namespace std::chrono_literals;
using vela::test::Installation;
using vela::test::Library;
using vela::test::writeFile;

constexpr std::time_t logLifetime = 7 * 24 * 60 * 60;

std::string logName(std::time_t time)
{
    char name[64];
    std::strftime(name, sizeof(name), "TesselSDK-%Y%m%d-%H%M%S.txt", std::localtime(&time));
    return name;
}

bool comesTrue(const std::function<bool()> &condition)
{
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(2ms);
    return condition();
}

std::size_t entries(const std::filesystem::path &directory)
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

void checkPruning(const Installation &installation, const std::vector<std::string> &old,
                  const std::vector<std::string> &kept)
{
    for (const auto *names : {&old, &kept})
        for (const std::string &name : *names)
            writeFile(installation.logDirectory() / name, "x");
    std::filesystem::create_directory(installation.logDirectory() / "TesselSDK-20000101-000001.txt");
    const Library library = installation.load();
    library.writeLog()(VCB_LOG_MESSAGE, nullptr, nullptr, L"in use");
    for (const std::string &name : old)
        EXPECT_TRUE(comesTrue([&] { return !std::filesystem::exists(installation.logDirectory() / name); })) << name;
}

TEST(Cleanup, DeletesTextFilesByNameAlone)
{
    const Installation installation;
    installation.switchLogOn();
    std::filesystem::create_directory(installation.logDirectory());
    const std::time_t before = std::time(nullptr);
    const std::vector<std::string> old = {logName(before - logLifetime), // the last second that counts
                                          logName(before - logLifetime - 1),
                                          "TesselSDK-20000101-000000.txt",
                                          "TesselSDK-20000101-000000.TXT.txt",
                                          "TesselSDK-.txt",
                                          "TesselSDK-20000102-000000.TXT",
                                          "Another.txt",
                                          "0.txt",
                                          ".txt"};
    const std::vector<std::string> kept = {logName(before - logLifetime + 60),
                                           logName(before - 1),
                                           "TesselSDK-99991231-235959.txt",
                                           "TesselSDL.txt",
                                           "later.txt",
                                           "TesselSDK-20000101-000000.log",
                                           "0txt",
                                           "0.txt.bak"};
    checkPruning(installation, old, kept);
    for (const std::string &name : kept)
        EXPECT_TRUE(std::filesystem::exists(installation.logDirectory() / name)) << name;
    EXPECT_TRUE(std::filesystem::is_directory(installation.logDirectory() / "TesselSDK-20000101-000001.txt"));
    EXPECT_EQ(entries(installation.logDirectory()), kept.size() + 2) << "the log in use stays, too";
}

TEST(Cleanup, RunsWithTheLogOffIfTheDirectoryExists)
{
    const Installation installation;
    std::filesystem::create_directory(installation.logDirectory());
    checkPruning(installation, {"TesselSDK-20000101-000000.txt"}, {"keep.txt"});
    EXPECT_EQ(entries(installation.logDirectory()), 2u) << "no log is written";
}

TEST(Cleanup, UnloadingWhilePruning)
{
    const Installation installation;
    installation.switchLogOn();
    installation.addOldLogs(10000);

    for (int round = 0; round < 20; ++round) {
        Library library = installation.load();
        if (round % 2)
            library.writeLog()(VCB_LOG_MESSAGE, nullptr, nullptr, L"round");
        library.unload();
    }

    const Library library = installation.load();
    EXPECT_TRUE(comesTrue([&] { return installation.oldLogs() == 0; }));
}

TEST(Cleanup, TheClosingLineIsWrittenThoughPruningWasCutOff)
{
    const Installation installation;
    installation.switchLogOn();
    installation.addOldLogs(3000);
    installation.load().writeLog()(VCB_LOG_MESSAGE, nullptr, nullptr, L"short life");
    EXPECT_EQ(vela::test::masked(installation.log()),
              vela::test::startLine + vela::test::messageLine(u"<Message>    Unknown    Unknown    short life") +
                  vela::test::stopLine);
}

} // namespace
