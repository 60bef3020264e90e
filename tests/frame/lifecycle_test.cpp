#include "frame/lifecycle.hpp"

#include <gtest/gtest.h>

namespace {

// The path with the system's own separator.
std::wstring native(std::wstring path)
{
    for (wchar_t &character : path)
        if (character == L'/')
            character = vela::platform::pathSeparator;
    return path;
}

TEST(Lifecycle, DirectoryOfTheModule)
{
    constexpr struct {
        const wchar_t *path;
        const wchar_t *directory;
    } cases[] = {{L"", L""},        {L"lib", L"."},  {L"/lib", L"."}, {L"a/lib", L"a"}, {L"/a/b/lib", L"/a/b"},
                 {L"a/b/", L"a/b"}, {L"//lib", L"/"}};
    for (const auto &[path, directory] : cases)
        EXPECT_EQ(vela::frame::directoryOf(native(path)), native(directory)) << testing::PrintToString(path);
}

TEST(Lifecycle, LogFileNamesSortByTime)
{
    EXPECT_EQ(vela::frame::logFileName({2026, 1, 2, 3, 4, 5}), L"TesselSDK-20260102-030405.txt");
    EXPECT_LT(vela::frame::logFileName({2026, 9, 30, 23, 59, 59}), vela::frame::logFileName({2026, 10, 1, 0, 0, 0}));
}

} // namespace
