// Every answer in these tables was also given by the profile calls of the operating system; on Windows they are
// asked again.
#include "platform/ini.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#if defined(_WIN32)
#include "test_files.hpp"

#include <windows.h>
#endif

namespace {

using namespace std::string_literals;
using vela::platform::iniReadInt;
using vela::platform::iniWithKey;

constexpr std::int32_t missing = -77;

std::string utf16(std::string_view ascii, bool bigEndian = false)
{
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (char c : ascii) {
        if (bigEndian)
            bytes += '\0';
        bytes += c;
        if (!bigEndian)
            bytes += '\0';
    }
    return bytes;
}

#if defined(_WIN32)
std::wstring wide(const std::string &ascii) { return {ascii.begin(), ascii.end()}; }

std::int32_t systemReadInt(const std::string &file, const std::string &section, const std::string &key)
{
    const test::TempFile path(file);
    return static_cast<std::int32_t>(
        GetPrivateProfileIntW(wide(section).c_str(), wide(key).c_str(), missing, path.wide().c_str()));
}
#endif

void expectRead(std::int32_t expected, const std::string &file, const std::string &section = "s",
                const std::string &key = "k")
{
    SCOPED_TRACE(testing::PrintToString(file) + " [" + section + "]" + key);
    EXPECT_EQ(iniReadInt(file, section, key, missing), expected);
#if defined(_WIN32)
    EXPECT_EQ(systemReadInt(file, section, key), expected) << "the system's answer";
#endif
}

TEST(IniRead, Values)
{
    const struct {
        std::string value;
        std::int32_t expected;
    } cases[] = {
        // signs, blanks, bases
        {"5", 5},
        {"-5", -5},
        {"+5", 5},
        {"--5", 0},
        {"+-5", 0},
        {"- 5", 0},
        {"-", 0},
        {"+", 0},
        {"   7  ", 7},
        {"\t7", 7},
        {"\v7", 7},
        {"\f7", 7},
        {"\x01"
         "5",
         5},
        {"\x1A"
         "5",
         5},
        {"\x1F"
         "5",
         5},
        {"\x7F"
         "5",
         0},
        {"\xA0"
         "5",
         0},
        {"0x10", 16},
        {"0X10", 0},
        {"-0x10", -16},
        {"0xAbF", 2751},
        {"0x", 0},
        {"0xg", 0},
        {"0x-5", 0},
        {"0x 5", 0},
        {"00x10", 0},
        {"0o17", 15},
        {"0O17", 0},
        {"0o8", 0},
        {"0b101", 5},
        {"0B101", 0},
        {"0b2", 0},
        {"010", 10},
        {"08", 8},
        // what follows the digits
        {"5abc", 5},
        {"5 6", 5},
        {"1.5", 1},
        {"1e3", 1},
        {"5;c", 5},
        {"5 ; c", 5},
        {"5=6", 5},
        {"5\"", 5},
        {"5\x01", 5},
        {"abc", 0},
        {";5", 0},
        {"=5", 0},
        // size
        {"2147483648", INT32_MIN},
        {"-2147483649", INT32_MAX},
        {"4294967295", -1},
        {"4294967296", 0},
        {"4294967301", 5},
        {"99999999999999999999", 1661992959},
        {"0x123456789", 0x23456789},
        // nothing there
        {"", missing},
        {"  ", missing},
        {"\"\"", missing},
        {"''", missing},
        {"\" \"", 0},
        // quotes
        {"\"5\"", 5},
        {"'5'", 5},
        {"\" 5 \"", 5},
        {"\"\t5\"", 5},
        {"\" 0x10\"", 16},
        {"\"5\" ", 5},
        {"\"5\"\x1A", 5},
        {"\"5\"\x01", 0},
        {"\"5\" x", 0},
        {"\"5", 0},
        {"'5\"", 0},
        {"'5\"'", 5},
        {"\"\"5\"\"", 0},
        {"'\"5\"'", 0},
        {"\"", 0},
        {"\"\"\"", 0},
        // 29 characters are looked at, blanks outside the quotes not counted
        {"00000000000000000000000000012", 12},
        {"000000000000000000000000000123", 12},
        {"0000000000000000000000000000123", 1},
        {"0000000000000000000000000000012", 0},
        {"                                  5", 5},
        {"\"                                  5\"", 0},
        {"\"000000000000000000000000000123\"", 12},
        // a NUL ends a value
        {"5\0006"s, 5},
        {"\0005"s, missing},
        {" \0005"s, missing},
        {"\"5\"\0"s, 5},
        {"\"5\0\""s, 0},
    };
    for (const auto &c : cases) {
        expectRead(c.expected, "[s]\r\nk=" + c.value + "\r\n");
        expectRead(c.expected, "[s]\nk=" + c.value);
    }
}

TEST(IniRead, Structure)
{
    const struct {
        std::int32_t expected;
        std::string file;
        std::string section = "s";
        std::string key = "k";
    } cases[] = {
        // line ends
        {5, "[s]\nk=5\n"},
        {5, "[s]\rk=5\r"},
        {5, "[s]\r\r\nk=5\r\r\n"},
        {5, "[s]\n\nk=5"},
        {missing, "[s]\nk\r=5\n"},
        {missing, "[s]\nk=\r5\n"},
        {missing, ""},
        {missing, "\n"},
        // letter case and blanks
        {5, "[S]\nK=5\n"},
        {5, "[s]\nk=5\n", "S", "K"},
        {5, "[s]\n\t K\x1A = 5\n"},
        {5, "\x1A [ s\t]\nk=5"},
        {5, "[s]\nk=5", " s ", "\tk "},
        {5, "[s t]\nk k=5", "s t", "k k"},
        {missing, "[s]\n\x01k=5\n"},
        {missing, "[s]\nk\x1F=5\n"},
        {missing, "[\x01s]\nk=5\n"},
        {missing, "\x01[s]\nk=5\n"},
        {missing, "[s]\n\xA0k=5\n"},
        // section lines
        {missing, "k=5\r\n"},
        {missing, "[s\nk=5"},
        {missing, "[s\nk=5\n[t]\nk=6"},
        {5, "[s]\n[t\nk=5"},
        {4, "[s]\n[k=4\n", "s", "[k"},
        {5, "[s]x\nk=5"},
        {5, "[s] ; c\nk=5"},
        {missing, "[s]k=5\n"},
        {missing, "[s]]\nk=5"},
        {5, "[s]]\nk=5", "s]"},
        {missing, "[[s]\nk=5"},
        {5, "[[s]\nk=5", "[s"},
        {5, "[a]b]\nk=5", "a]b"},
        {5, "[s=1]\nk=5", "s=1"},
        {5, "[s]\nx]\nk=5"},
        {missing, "[s]\n[]\nk=5\n"},
        // the section without a name
        {5, "k=5\n", ""},
        {missing, "[]\nk=5\n", ""},
        {missing, "j=1\n[]\nk=5\n", ""},
        // the first of a name
        {5, "[s]\nk=5\nk=6"},
        {5, "[s]\nk=5\n[s]\nk=6"},
        {missing, "[s]\nj=5\n[s]\nk=6"},
        {missing, "[s]\nk\nk=6"},
        {missing, "[s]\nk=\nk=6"},
        // comments and other lines
        {missing, "[s]\n;k=5\n"},
        {6, "[s]\n ;k=5\nk=6\n"},
        {missing, ";[s]\nk=5"},
        {5, "[s]\n#k=5\n", "s", "#k"},
        {missing, "[s]\nk:5\n"},
        {missing, "[s]\nk 5\n"},
        {missing, "[s]\n\"k\"=5"},
        {5, "[s]\n=\nk=5"},
        {7, "[s]\n=7\nk=5", "s", ""},
        // NULs
        {5, "[s]\nk\0x=5\n"s},
        {5, "[s]\nk\0 =5\n"s},
        {missing, "[s]\nk \0=5\n"s},
        {missing, "[s]\n\0k=5\n"s},
        {6, "[s]\n\0\nk=6\n"s},
        {5, "[s\0x]\nk=5\n"s},
        {missing, "[s]\0[t]\nk=5\n"s},
        {missing, "\0[s]\nk=5\n"s},
        // long lines
        {5, "[s]\n" + std::string(100000, 'x') + "=1\nk=" + std::string(100000, ' ') + "5\n"},
        {5, "[" + std::string(100000, 'x') + "\n[s]\nk=5\n"},
        // byte-order marks
        {5, "\xEF\xBB\xBF[s]\nk=5\n"},
        {6, "\xEF\xBB\xBF k=5\n[s]\nk=6"},
        {missing, "\xEF\xBB\xBF\xEF\xBB\xBF[s]\nk=5\n"},
        {missing, "\xEF\xBB\xBF"},
        {5, utf16("[s]\r\nk=5\r\n")},
        {5, utf16("[s]\nk=5")},
        {5, utf16("[s]\r\nk=5\r\n") + "x"},
        {5, utf16("[s]\r\nk=5\r\n", true)},
        {0, utf16("[s]\r\nk=") + "\x03\x20" + "5\0"s}, // an em space is no blank
        {missing, "\xFF\xFE"},
        {missing, "\xFF"},
    };
    for (const auto &c : cases)
        expectRead(c.expected, c.file, c.section, c.key);
}

TEST(IniWrite, KeepsTheRest)
{
    const struct {
        std::string file;
        std::string expected; // with [s] k=5
    } cases[] = {
        // new files and sections
        {"", "[s]\r\nk=5\r\n"},
        {"\r\n", "\r\n[s]\r\nk=5\r\n"},
        {"[t]\nx=2", "[t]\nx=2\n[s]\nk=5\n"},
        {"[t]\nx=2\n\n", "[t]\nx=2\n\n[s]\nk=5\n"},
        {"[t]\n[s\nj=1\n", "[t]\n[s\nj=1\n[s]\nk=5\n"},
        {"[s]]\rj=1\r", "[s]]\rj=1\r[s]\rk=5\r"},
        {"junk", "junk\r\n[s]\r\nk=5\r\n"},
        {"[t]\n; about s\n", "[t]\n; about s\n[s]\nk=5\n"},
        // a new key
        {"[s]", "[s]\r\nk=5\r\n"},
        {"[s]\nj=1", "[s]\nj=1\nk=5\n"},
        {"[s]\r\nj=1\nl=2\n", "[s]\r\nj=1\nl=2\nk=5\r\n"},
        {"[s]\nj=1\n\n\n[t]\nk=2\n", "[s]\nj=1\nk=5\n\n\n[t]\nk=2\n"},
        {"[s]\n\n[t]\n\n", "[s]\nk=5\n\n[t]\n\n"},
        {"[s]\n; c\nj=1\n;k=2\n \t\n; e\n \t\n[t]", "[s]\n; c\nj=1\n;k=2\n \t\n; e\nk=5\n \t\n[t]"},
        {"; head\r\n [ S ] ; tail\r\n j = \"1\" ; x\r\n", "; head\r\n [ S ] ; tail\r\n j = \"1\" ; x\r\nk=5\r\n"},
        {"[s]\nj=1\n[s]\nk=2\n", "[s]\nj=1\nk=5\n[s]\nk=2\n"},
        {"k=1\n[s]\n[t]\nk=1\n", "k=1\n[s]\nk=5\n[t]\nk=1\n"},
        {"[s]\nj=\xC4\0\xC3\xA4\n"s, "[s]\nj=\xC4\0\xC3\xA4\nk=5\n"s},
        // a new value
        {"[s]\nk=9\n", "[s]\nk=5\n"},
        {"[s]\n K = 9 ; c\t\n", "[s]\n K = 5\t\n"},
        {"[s]\nk=\"9\"", "[s]\nk=5"},
        {"[s]\nk=\nj=1\n", "[s]\nk=5\nj=1\n"},
        {"[s]\nk\nj=1\n", "[s]\nk=5\nj=1\n"},
        {"[s]\nk=1\nk=2\n[s]\nk=3\n", "[s]\nk=5\nk=2\n[s]\nk=3\n"},
        // byte-order marks
        {"\xEF\xBB\xBF", "\xEF\xBB\xBF[s]\r\nk=5\r\n"},
        {"\xEF\xBB\xBF[s]\nk=1\n", "\xEF\xBB\xBF[s]\nk=5\n"},
        {"\xFF\xFE", utf16("[s]\r\nk=5\r\n")},
        {utf16("[s]\nj=1\n[t]\n"), utf16("[s]\nj=1\nk=5\n[t]\n")},
        {utf16("[t]\nj=1") + "x", utf16("[t]\nj=1\n[s]\nk=5\n")},
        {utf16("[s]\nk=") + "\xC4\xD6\n\0"s, utf16("[s]\nk=5\n")},
        {utf16("[s]\nk=1\n", true), utf16("[s]\nk=5\n", true)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.file));
        const std::string written = iniWithKey(c.file, "s", "k", "5");
        EXPECT_EQ(written, c.expected);
        expectRead(5, written);
    }
}

TEST(IniWrite, Arguments)
{
    EXPECT_EQ(iniWithKey("[s]\nk=5\n", " S ", " K ", "6"), "[s]\nk=6\n");
    EXPECT_EQ(iniWithKey("[s]\nk=5\n", " t ", " j ", "-1"), "[s]\nk=5\n[t]\nj=-1\n");
    EXPECT_EQ(iniWithKey("[s]\nk=5\n", "", "k", "6"), "k=6\n[s]\nk=5\n");
    EXPECT_EQ(iniWithKey("[s]\nk=5\n", "s", "k", ""), "[s]\nk=\n");
}

// The configuration file that a first load leaves behind.
TEST(IniWrite, FirstRun)
{
    std::string file = iniWithKey("", "Log", "OutputLog", "0");
    for (const auto &[key, value] : std::vector<std::pair<std::string, std::string>>{
             {"NumberOfThreads", "4"}, {"Resampling", "0"}, {"ColorSpaceMultiThread", "1"}})
        file = iniWithKey(file, "MultithreadedOptimization", key, value);
    EXPECT_EQ(file, "[Log]\r\nOutputLog=0\r\n[MultithreadedOptimization]\r\nNumberOfThreads=4\r\nResampling=0\r\n"
                    "ColorSpaceMultiThread=1\r\n");
}

} // namespace
