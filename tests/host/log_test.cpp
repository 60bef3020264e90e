#include "host.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <ctime>
#include <map>
#include <sstream>
#include <thread>

namespace {

using vela::test::Installation;
using vela::test::Library;
using vela::test::masked;
using vela::test::messageLine;
using vela::test::startLine;
using vela::test::stopLine;

constexpr std::uintmax_t restartSize = 0x100000;

std::u16string asciiOf(const std::string &text) { return {text.begin(), text.end()}; }

class Log : public testing::Test {
protected:
    Log() { installation.switchLogOn(); }

    // What the log holds, masked, after the lines that `write` writes with a freshly loaded library.
    template <class Write> std::u16string logOf(Write write)
    {
        std::filesystem::remove_all(installation.logDirectory()); // a load in the next second has a log of its own
        write(installation.load().writeLog());
        return masked(installation.log());
    }

    // The text of the one line that a message makes.
    template <class... Arguments> std::u16string lineOf(const wchar_t *format, Arguments... arguments)
    {
        const std::u16string text =
            logOf([&](auto &writeLog) { writeLog(VCB_LOG_MESSAGE, L"a", L"b", format, arguments...); });
        const std::u16string before = startLine + u"## <now>    <Message>    a    b    ";
        const std::u16string after = u" ##\r\n" + stopLine;
        EXPECT_TRUE(text.starts_with(before) && text.ends_with(after)) << testing::PrintToString(text);
        return text.size() < before.size() + after.size()
                   ? text
                   : text.substr(before.size(), text.size() - before.size() - after.size());
    }

    const Installation installation;
};

TEST_F(Log, LevelsAndLabels)
{
    const std::u16string text = logOf([](auto &writeLog) {
        writeLog(0, L"one", L"two", L"%d apples, %ls", 7, L"red");
        writeLog(1, nullptr, L"two", L"w");
        writeLog(2, L"one", nullptr, L"e");
        writeLog(3, nullptr, nullptr, L"c");
        writeLog(4, L"", L"", L"100%%");
        writeLog(-1, L"%d", L"%s%n", L"");
        writeLog(0, L"null", L"format", nullptr);
    });
    EXPECT_EQ(text, startLine + messageLine(u"<Message>    one    two    7 apples, red") +
                        messageLine(u"<Warning>    Unknown    two    w") +
                        messageLine(u"<Error!!>    one    Unknown    e") +
                        messageLine(u"<!!Crash>    Unknown    Unknown    c") +
                        messageLine(u"<Unknown>            100%") + messageLine(u"<Unknown>    %d    %s%n    ") +
                        messageLine(u"<Message>    null    format    ") + stopLine);
}

TEST_F(Log, NothingIsWrittenWithoutAMessageOrWithTheLogOff)
{
    installation.load();
    EXPECT_TRUE(installation.logs().empty()) << "the file is created by the first message";
    vela::test::writeFile(installation.ini(), "[Log]\r\nOutputLog=0\r\n");
    installation.load().writeLog()(VCB_LOG_CRASH, nullptr, nullptr, L"silenced");
    EXPECT_TRUE(installation.logs().empty());
}

TEST_F(Log, CharactersBeyondAscii)
{
    const std::u16string all = u"\u00E9 \u65E5 \uFFFD \uFFFF \U0001F3AC \U0010FFFF";
    EXPECT_EQ(logOf([](auto &writeLog) {
                  writeLog(0, L"\u00E9 \u65E5 \uFFFD \uFFFF \U0001F3AC \U0010FFFF",
                           L"\u00E9 \u65E5 \uFFFD \uFFFF \U0001F3AC \U0010FFFF", L"%ls\xD800",
                           L"\u00E9 \u65E5 \uFFFD \uFFFF \U0001F3AC \U0010FFFF");
              }),
              startLine + messageLine(u"<Message>    " + all + u"    " + all + u"    " + all + u"\xD800") + stopLine);
}

TEST_F(Log, MessagesAreCutAt512Characters)
{
    const std::string narrow(5000, 'n');
    const std::wstring wide(5000, L'w');
    const std::u16string w512(512, u'w');
    EXPECT_EQ(lineOf(L"%ls", wide.substr(0, 511).c_str()), w512.substr(1));
    EXPECT_EQ(lineOf(L"%ls", wide.substr(0, 512).c_str()), w512);
    EXPECT_EQ(lineOf(L"%ls", wide.substr(0, 513).c_str()), w512);
    EXPECT_EQ(lineOf(L"%ls", wide.c_str()), w512);
    EXPECT_EQ(lineOf(wide.c_str()), w512);
    EXPECT_EQ(lineOf(L"%hs", narrow.c_str()), std::u16string(512, u'n'));
    EXPECT_EQ(lineOf(L"ab%ls", wide.c_str()), u"ab" + w512.substr(2));
    EXPECT_EQ(lineOf(L"%ls%d", wide.substr(0, 510).c_str(), 1234), w512.substr(2) + u"12");
    EXPECT_EQ(lineOf(L"%500d|", 7), std::u16string(499, u' ') + u"7|");
    EXPECT_EQ(lineOf(L"%600d", 7), std::u16string(512, u' '));
    EXPECT_EQ(lineOf(L"%-600d", 7), u"7" + std::u16string(511, u' '));
    EXPECT_EQ(lineOf(L"%0600d", 7), std::u16string(512, u'0'));
    EXPECT_EQ(lineOf(L"%600ls|", L"x"), std::u16string(512, u' '));
    EXPECT_EQ(lineOf(L"%.3ls|%.2f", L"abcdef", 1.5), u"abc|1.50");
}

TEST_F(Log, LinesAreCutAt1023Characters)
{
    const std::wstring label(400, L'l');
    const std::wstring tooLong(3000, L'm');
    const std::u16string label16(400, u'l');
    EXPECT_EQ(logOf([&](auto &writeLog) {
                  writeLog(0, label.c_str(), label.c_str(), L"%ls", tooLong.c_str());
                  writeLog(0, tooLong.c_str(), label.c_str(), L"unseen");
                  writeLog(0, L"x", tooLong.c_str(), L"unseen");
              }),
              startLine +
                  messageLine(u"<Message>    " + label16 + u"    " + label16 + u"    " +
                              std::u16string(1023 - 13 - 404 - 404, u'm')) +
                  messageLine(u"<Message>    " + std::u16string(1023 - 13, u'm')) +
                  messageLine(u"<Message>    x    " + std::u16string(1023 - 18, u'm')) + stopLine);
}

TEST_F(Log, StampsAreLocalTime)
{
    const auto stampOf = [](std::time_t time) {
        char text[32];
        std::strftime(text, sizeof(text), "%m/%d/%y %H:%M:%S", std::localtime(&time));
        return asciiOf(text);
    };
    const std::time_t before = std::time(nullptr);
    installation.load().writeLog()(0, L"", L"", L"");
    const std::u16string log = installation.log();
    std::size_t found = 0;
    for (std::time_t time = before; time <= std::time(nullptr); ++time)
        for (const char16_t *mark : {u"#### Log Start - ", u"\r\n## ", u"#### Log Stop - "})
            found += log.find(mark + stampOf(time)) != std::u16string::npos;
    EXPECT_EQ(found, 3u);

    // The file's name is the time of the load.
    found = 0;
    for (std::time_t time = before; time <= std::time(nullptr); ++time) {
        char name[64];
        std::strftime(name, sizeof(name), "TesselSDK-%Y%m%d-%H%M%S.txt", std::localtime(&time));
        found += installation.logs()[0].filename() == name;
    }
    EXPECT_EQ(found, 1u);
}

TEST_F(Log, StartsOverBeyondOneMebibyte)
{
    constexpr std::size_t frame = 3 + 17 + 4 + 13 + 11 + 11 + 5; // characters of a line besides the message
    Library library = installation.load();
    const auto write = [&](std::size_t length) {
        library.writeLog()(0, nullptr, nullptr, L"%ls", std::wstring(length, L'x').c_str());
    };
    const auto size = [&] { return std::filesystem::file_size(installation.logs()[0]); };

    write(500);
    while (size() + 2 * 2 * (frame + 500) <= restartSize)
        write(500);
    // Two lines more, the second ending exactly at the limit.
    const std::uintmax_t rest = (restartSize - size()) / 2 - 2 * frame;
    write(rest / 2);
    write(rest - rest / 2);
    ASSERT_EQ(size(), restartSize);
    write(1); // at the limit, not beyond it
    ASSERT_EQ(size(), restartSize + 2 * (frame + 1));
    write(2);
    library.unload();
    EXPECT_EQ(masked(installation.log()), startLine + messageLine(u"<Message>    Unknown    Unknown    xx") + stopLine);
}

TEST_F(Log, AFailedOpenIsNotRetried)
{
    Library library = installation.load();
    std::filesystem::remove(installation.logDirectory());
    library.writeLog()(0, nullptr, nullptr, L"lost");
    std::filesystem::create_directory(installation.logDirectory());
    for (int i = 0; i < 3; ++i)
        library.writeLog()(0, nullptr, nullptr, L"lost, too");
    library.unload();
    EXPECT_TRUE(installation.logs().empty());
}

TEST(LogPath, From260CharactersOnThereIsNoLog)
{
    const std::size_t used = vela::test::TempDirectory().path().wstring().size() +
                             std::wstring_view(L"//TesselLog/TesselSDK-20260101-000000.txt").size();
    for (const std::size_t length : {259u, 260u}) {
        const Installation installation{std::string(length - used, 'd')};
        installation.switchLogOn();
        installation.load().writeLog()(0, nullptr, nullptr, L"written");
        EXPECT_TRUE(std::filesystem::exists(installation.logDirectory()));
        EXPECT_EQ(installation.logs().size(), length < 260 ? 1u : 0u) << length;
    }
}

// Each thread's lines must be whole; those in the file must be in the thread's order and, without a restart, complete.
void checkThreads(const Installation &installation, int threads, int lines, bool restarts)
{
    const Library *library = nullptr;
    {
        const Library loaded = installation.load();
        library = &loaded;
        std::vector<std::thread> writers;
        for (int thread = 0; thread < threads; ++thread)
            writers.emplace_back([=] {
                const std::wstring filler(static_cast<std::size_t>(20 + 60 * thread),
                                          static_cast<wchar_t>(L'a' + thread));
                for (int line = 0; line < lines; ++line)
                    library->writeLog()(VCB_LOG_MESSAGE, L"t", L"l", L"%d %d %ls", thread, line, filler.c_str());
            });
        for (std::thread &writer : writers)
            writer.join();
    }

    std::u16string log = masked(installation.log());
    ASSERT_TRUE(log.starts_with(startLine) && log.ends_with(stopLine));
    log = log.substr(startLine.size(), log.size() - startLine.size() - stopLine.size());
    const std::u16string before = u"## <now>    <Message>    t    l    ";
    std::map<int, int> next;
    while (!log.empty()) {
        const std::size_t end = log.find(u"\r\n");
        ASSERT_NE(end, std::u16string::npos);
        const std::u16string line = log.substr(0, end);
        log.erase(0, end + 2);
        ASSERT_TRUE(line.starts_with(before) && line.ends_with(u" ##")) << testing::PrintToString(line);
        std::istringstream fields(std::string(line.begin() + static_cast<std::ptrdiff_t>(before.size()), line.end()));
        int thread = -1;
        int number = -1;
        std::string filler;
        fields >> thread >> number >> filler;
        ASSERT_EQ(filler, std::string(static_cast<std::size_t>(20 + 60 * thread), static_cast<char>('a' + thread)));
        const auto [expected, isFirst] = next.try_emplace(thread, restarts ? number : 0);
        ASSERT_EQ(number, expected->second) << "thread " << thread;
        ++expected->second;
    }
    if (restarts)
        return;
    ASSERT_EQ(next.size(), static_cast<std::size_t>(threads));
    for (const auto &[thread, written] : next)
        EXPECT_EQ(written, lines) << "thread " << thread;
}

TEST_F(Log, LinesOfManyThreadsNeverMix) { checkThreads(installation, 8, 150, false); }

TEST_F(Log, LinesStayWholeWhenTheLogStartsOver) { checkThreads(installation, 8, 1000, true); }

} // namespace
