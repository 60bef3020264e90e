// What only a POSIX system has: byte names, permissions, links, forked children.
#include "host.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using vela::test::Installation;
using vela::test::Library;
using vela::test::masked;
using vela::test::messageLine;
using vela::test::readFile;
using vela::test::startLine;
using vela::test::stopLine;
using vela::test::writeFile;

constexpr int childHung = -1;

// The exit code of a forked child that runs the work, or childHung.
template <class Work> int runInChild(Work work)
{
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(99);
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int status = 0;
    while (::waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            return childHung;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

TEST(Posix, DirectoryNamesThatAreNotUtf8)
{
    const Installation installation("latin-\xE9 cut-\xE2\x82 raw-\xFF");
    installation.switchLogOn();
    installation.load().writeLog()(0, nullptr, nullptr, L"here");
    EXPECT_EQ(installation.logs().size(), 1u);
    EXPECT_NE(readFile(installation.ini()).find("ColorSpaceMultiThread=1"), std::string::npos);
}

TEST(Posix, ARelativePathIsKeptAbsolute)
{
    const Installation installation;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(installation.directory());
    installation.switchLogOn();
    {
        const Library library("./" + installation.library().filename().string());
        std::filesystem::current_path(before);
        library.writeLog()(0, nullptr, nullptr, L"here");
    }
    EXPECT_EQ(installation.logs().size(), 1u);
}

TEST(Posix, AReadOnlyInstallationLoads)
{
    const Installation installation;
    std::filesystem::permissions(installation.directory(), std::filesystem::perms(0555));
    std::filesystem::permissions(installation.directory().parent_path(), std::filesystem::perms(0755));
    const int code = runInChild([&] {
        if (::getuid() == 0 && ::setuid(65534) != 0) // root may write anywhere
            ::_exit(1);
        const Library library = installation.load();
        const VcbTesselConf expected = {0, 4, 0, 0, 0};
        library.writeLog()(0, nullptr, nullptr, L"nowhere");
        ::_exit(std::memcmp(&library.conf(), &expected, sizeof(expected)) == 0 ? 0 : 2);
    });
    EXPECT_EQ(code, 0);
    std::filesystem::permissions(installation.directory(), std::filesystem::perms(0755));
    EXPECT_FALSE(std::filesystem::exists(installation.ini()));
}

TEST(Posix, AddingKeysKeepsPermissionsAndLinks)
{
    const Installation installation;
    const auto target = installation.directory() / "real.ini";
    writeFile(target, "[Log]\nOutputLog=0\n");
    ::chmod(target.c_str(), 0640);
    std::filesystem::create_symlink("real.ini", installation.ini());
    installation.load();
    EXPECT_TRUE(std::filesystem::is_symlink(installation.ini()));
    EXPECT_NE(readFile(target).find("NumberOfThreads=4"), std::string::npos);
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms(0640));
    for (const auto &entry : std::filesystem::directory_iterator(installation.directory()))
        EXPECT_NE(entry.path().extension(), ".tmp");
}

TEST(Posix, FilesThatAreNoConfigurationAreLeftAlone)
{
    const Installation huge;
    writeFile(huge.ini(), "[Log]\nOutputLog=1\n" + std::string(1 << 20, ';'));
    const auto size = std::filesystem::file_size(huge.ini());
    EXPECT_EQ(huge.load().conf().OutputLog, 0);
    EXPECT_EQ(std::filesystem::file_size(huge.ini()), size);

    const Installation pipe;
    ASSERT_EQ(::mkfifo(pipe.ini().c_str(), 0666), 0);
    EXPECT_EQ(pipe.load().conf().NumberOfThreads, 4); // and does not wait for a writer
    EXPECT_TRUE(std::filesystem::is_fifo(pipe.ini()));
}

TEST(Posix, AForkedChildEndsWithoutTouchingTheParentsLog)
{
    const Installation installation;
    installation.switchLogOn();
    installation.addOldLogs(1000);
    {
        const Library library = installation.load(); // and pruning begins
        library.writeLog()(0, nullptr, nullptr, L"parent");
        EXPECT_EQ(runInChild([&] {
                      library.writeLog()(0, nullptr, nullptr, L"child");
                      std::exit(7);
                  }),
                  7);
        library.writeLog()(0, nullptr, nullptr, L"parent again");
    }
    EXPECT_EQ(masked(installation.log()), startLine + messageLine(u"<Message>    Unknown    Unknown    parent") +
                                              messageLine(u"<Message>    Unknown    Unknown    child") +
                                              messageLine(u"<Message>    Unknown    Unknown    parent again") +
                                              stopLine);
}

TEST(Posix, LinesGoToTheEndOfTheFileWhoeverElseWrites)
{
    const Installation installation;
    installation.switchLogOn();
    {
        const Library library = installation.load();
        library.writeLog()(0, L"", L"", L"one");
        std::ofstream(installation.logs()[0], std::ios::binary | std::ios::app).write("!\0", 2);
        library.writeLog()(0, L"", L"", L"two");
    }
    EXPECT_EQ(masked(installation.log()), startLine + messageLine(u"<Message>            one") + u"!" +
                                              messageLine(u"<Message>            two") + stopLine);
}

TEST(Posix, ProgramsThatTheHostStartsDoNotInheritTheLog)
{
    const Installation installation;
    installation.switchLogOn();
    const Library library = installation.load();
    library.writeLog()(0, nullptr, nullptr, L"open");
    int found = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closedMeanwhile; // such as the iterator's own
        if (std::filesystem::read_symlink(entry.path(), closedMeanwhile) != installation.logs()[0])
            continue;
        ++found;
        EXPECT_TRUE(::fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(found, 1);
}

TEST(Posix, UnloadingDoesNotWaitForPruning)
{
    const Installation installation;
    installation.addOldLogs(4000);
    installation.load();
    EXPECT_GT(installation.oldLogs(), 0u);
}

TEST(Posix, BackgroundThreadTakesNoSignals)
{
    // A signal that every thread of the host blocks stays pending for the process, whoever else runs.
    const Installation installation;
    installation.addOldLogs(1000);
    EXPECT_EQ(runInChild([&] {
                  const Library library = installation.load(); // the thread starts with the signal unblocked here
                  sigset_t set;
                  sigemptyset(&set);
                  sigaddset(&set, SIGUSR1); // kills by default
                  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
                  ::kill(::getpid(), SIGUSR1);
                  std::this_thread::sleep_for(std::chrono::milliseconds(50)); // or does the process end here?
                  ::_exit(5);
              }),
              5);
}

TEST(Posix, CharactersThatAreNone)
{
    const Installation installation;
    installation.switchLogOn();
    const wchar_t wrong[] = {L'a', wchar_t{0x110000}, wchar_t{INT_MAX}, wchar_t{-1}, wchar_t{INT_MIN}, L'b', 0};
    {
        const Library library = installation.load();
        library.writeLog()(0, wrong, L"", L"%ls", wrong);
        library.writeLog()(0, L"", L"", L"before %s after", "\xFF\xC3"); // no multibyte text in any locale of ours
    }
    const std::u16string shown = u"a\xFFFD\xFFFD\xFFFD\xFFFD"
                                 u"b";
    EXPECT_EQ(masked(installation.log()), startLine + messageLine(u"<Message>    " + shown + u"        " + shown) +
                                              messageLine(u"<Message>            before ") + stopLine);
}

} // namespace
