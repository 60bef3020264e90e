// Configuration through the operating system's own calls on Windows and ours elsewhere: one table, so that both
// give the same answers.
#include "../temp_directory.hpp"
#include "frame/config.hpp"
#include "platform/platform.hpp"

#include <gtest/gtest.h>

namespace {

using vela::test::readFile;
using vela::test::TempDirectory;
using vela::test::writeFile;
using namespace std::string_literals;

constexpr int32_t missing = -77;

struct Ini {
    const char *what;
    std::string text;
    int32_t value; // of OutputLog in [Log]
};

std::string withValue(const std::string &value) { return "[Log]\r\nOutputLog=" + value + "\r\n"; }

const Ini files[] = {
    {"plain", withValue("1"), 1},
    {"empty file", "", missing},
    {"no such key", "[Log]\r\nOther=1\r\n", missing},
    {"key of another section", "[Other]\r\nOutputLog=1\r\n", missing},
    {"key before any section", "OutputLog=1\r\n[Log]\r\n", missing},
    {"empty value", withValue(""), missing},
    {"blank value", withValue("   "), missing},
    {"no equals sign", "[Log]\r\nOutputLog\r\n", missing},
    {"blanks everywhere", " [Log] \r\n\t OutputLog \t=  12 \r\n", 12},
    {"other case", "[LOG]\r\noutputlog=5\r\n", 5},
    {"line feeds only", "[Log]\nOutputLog=6\n", 6},
    {"no line end", "[Log]\nOutputLog=7", 7},
    {"comment line", "[Log]\r\n;OutputLog=1\r\nOutputLog=2\r\n", 2},
    {"comment behind the value", withValue("3 ; three"), 3},
    {"first duplicate wins", "[Log]\r\nOutputLog=1\r\nOutputLog=2\r\n", 1},
    {"second section of that name", "[Log]\r\nA=1\r\n[B]\r\n[Log]\r\nOutputLog=2\r\n", missing},
    {"longer key name", "[Log]\r\nOutputLogs=1\r\nOutputLog=2\r\n", 2},
    {"plus", withValue("+8"), 8},
    {"minus", withValue("-8"), -8},
    {"two signs", withValue("--8"), 0},
    {"trailing garbage", withValue("12abc"), 12},
    {"fraction", withValue("1.9"), 1},
    {"no number", withValue("yes"), 0},
    {"leading zeros", withValue("0010"), 10},
    {"hexadecimal", withValue("0x1F"), 31},
    {"octal", withValue("0o17"), 15},
    {"binary", withValue("0b101"), 5},
    {"double quotes", withValue("\"9\""), 9},
    {"single quotes", withValue("'9'"), 9},
    {"unbalanced quote", withValue("\"9"), 0},
    {"largest", withValue("2147483647"), 2147483647},
    {"wraps to negative", withValue("4294967295"), -1},
    {"wraps", withValue("4294967299"), 3},
    {"very long value", withValue(std::string(40, '0') + "5"), 0},
    {"UTF-8 mark", "\xEF\xBB\xBF" + withValue("4"), 4},
    {"UTF-16 mark",
     "\xFF\xFE[\0L\0o\0g\0]\0\r\0\n\0O\0u\0t\0p\0u\0t\0L\0o\0g\0=\0"
     "7\0\r\0\n\0"s,
     7},
};

TEST(Config, ReadsIntegers)
{
    for (const Ini &ini : files) {
        // A file of its own each: the Windows calls may remember a file's contents for a while.
        const TempDirectory directory;
        const auto path = directory.path() / "test.ini";
        writeFile(path, ini.text);
        EXPECT_EQ(vela::platform::readConfigInt(path.wstring(), "Log", "OutputLog", missing), ini.value) << ini.what;
    }
}

TEST(Config, NoFileIsAMissingKey)
{
    const TempDirectory directory;
    EXPECT_EQ(vela::platform::readConfigInt((directory.path() / "none.ini").wstring(), "Log", "OutputLog", missing),
              missing);
    EXPECT_EQ(vela::platform::readConfigInt(directory.path().wstring(), "Log", "OutputLog", missing), missing);
}

struct Edit {
    const char *what;
    const char *before;
    const char *after; // OutputLog=1 written to [Log]
};

const Edit edits[] = {
    {"new file", nullptr, "[Log]\r\nOutputLog=1\r\n"},
    {"replaced in place", "[A]\r\nx=1\r\n[Log]\r\nOutputLog=0\r\nz=3\r\n",
     "[A]\r\nx=1\r\n[Log]\r\nOutputLog=1\r\nz=3\r\n"},
    {"comments stay", "; about\r\n[Log]\r\n; off\r\nOutputLog=0\r\n", "; about\r\n[Log]\r\n; off\r\nOutputLog=1\r\n"},
    {"added to its section", "[Log]\r\na=1\r\n[B]\r\nb=2\r\n", "[Log]\r\na=1\r\nOutputLog=1\r\n[B]\r\nb=2\r\n"},
};

TEST(Config, WritingKeepsTheRest)
{
    for (const Edit &edit : edits) {
        const TempDirectory directory;
        const auto path = directory.path() / "test.ini";
        if (edit.before)
            writeFile(path, edit.before);
        vela::platform::writeConfigString(path.wstring(), "Log", "OutputLog", "1");
        EXPECT_EQ(readFile(path), edit.after) << edit.what;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1) << "stray files";
    }
}

TEST(Config, WritingIntoNowhereIsHarmless)
{
    const TempDirectory directory;
    vela::platform::writeConfigString((directory.path() / "no" / "such.ini").wstring(), "Log", "OutputLog", "1");
    vela::platform::writeConfigString(directory.path().wstring(), "Log", "OutputLog", "1");
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

} // namespace
