// What happens to the log when a process ends without unloading the library.
#include "host.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

using vela::test::Installation;
using vela::test::masked;
using vela::test::messageLine;
using vela::test::startLine;
using vela::test::stopLine;

constexpr char childOption[] = "--write-until-exit";
constexpr int childCode = 3;
std::filesystem::path program;

// Loads the library, writes a line, and ends the process while `threads` others go on writing.
int writeUntilExit(const std::filesystem::path &library, int threads)
{
    const auto *const loaded = new vela::test::Library(library);
    loaded->writeLog()(VCB_LOG_MESSAGE, L"first", L"", L"");
    for (int i = 0; i < threads; ++i)
        std::thread([loaded] {
            for (;;)
                loaded->writeLog()(VCB_LOG_MESSAGE, L"busy", L"", L"");
        }).detach();
    std::this_thread::sleep_for(std::chrono::milliseconds(threads * 5));
    std::exit(childCode);
}

TEST(ProcessEnd, ClosesTheLog)
{
    const Installation installation;
    installation.switchLogOn();
    EXPECT_EQ(vela::test::loader::run(program, childOption, installation.library(), "0"), childCode);
    EXPECT_EQ(masked(installation.log()), startLine + messageLine(u"<Message>    first        ") + stopLine);
}

// On Windows the other threads are cut off first, and one of them may hold the log's lock; on Linux they go on
// writing while the library closes its log.
TEST(ProcessEnd, DoesNotHangWithThreadsThatWrite)
{
    for (int round = 0; round < 10; ++round) {
        const Installation installation;
        installation.switchLogOn();
        EXPECT_EQ(vela::test::loader::run(program, childOption, installation.library(), "4"), childCode);
        const std::u16string log = masked(installation.log());
        EXPECT_TRUE(log.starts_with(startLine + u"## <now>    <Message>    "));
        EXPECT_EQ(log.find(stopLine), log.rfind(stopLine)) << "closed once at most";
        const std::size_t stop = log.find(stopLine);
        EXPECT_TRUE(stop == std::u16string::npos || stop + stopLine.size() == log.size()) << "lines behind the end";
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 4 && std::string(argv[1]) == childOption)
        return writeUntilExit(std::filesystem::path(argv[2]), std::atoi(argv[3]));
    program = std::filesystem::absolute(argv[0]);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
