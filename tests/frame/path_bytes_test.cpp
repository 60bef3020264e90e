#include "platform/path_bytes.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using vela::platform::bytePath;
using vela::platform::widePath;

struct Name {
    std::string bytes;
    std::wstring wide;
};

const Name names[] = {
    {"", L""},
    {"/plain/name.txt", L"/plain/name.txt"},
    {"caf\xC3\xA9", L"caf\u00E9"},
    {"\xE2\x82\xAC", L"\u20AC"},
    {"\xF0\x9F\x8E\xAC", L"\U0001F3AC"},
    {"\xF4\x8F\xBF\xBF", L"\U0010FFFF"},
    {"\xEF\xBF\xBF", L"\uFFFF"},
    {"caf\xE9", L"caf\xDCE9"},                                   // Latin-1
    {"\x80\xFF", L"\xDC80\xDCFF"},                               // never valid
    {"\xC3", L"\xDCC3"},                                         // cut short
    {"\xE2\x82", L"\xDCE2\xDC82"},                               // cut short
    {"\xE2\x82z", L"\xDCE2\xDC82z"},                             // broken off
    {"\xC0\xAF", L"\xDCC0\xDCAF"},                               // '/' in too many bytes
    {"\xE0\x80\xAF", L"\xDCE0\xDC80\xDCAF"},                     // the same in three
    {"\xF0\x80\x80\xAF", L"\xDCF0\xDC80\xDC80\xDCAF"},           // and in four
    {"\xED\xB2\x80", L"\xDCED\xDCB2\xDC80"},                     // an encoded surrogate: must not read as byte 0x80
    {"\xF4\x90\x80\x80", L"\xDCF4\xDC90\xDC80\xDC80"},           // beyond U+10FFFF
    {"\xF8\x88\x80\x80\x80", L"\xDCF8\xDC88\xDC80\xDC80\xDC80"}, // five bytes
};

TEST(PathBytes, EveryNameSurvivesTheRoundTrip)
{
    for (const Name &name : names) {
        EXPECT_EQ(widePath(name.bytes), name.wide) << testing::PrintToString(name.bytes);
        EXPECT_EQ(bytePath(name.wide), name.bytes) << testing::PrintToString(name.bytes);
    }
    // All two-byte names, and so every way that a sequence can break off after its first byte.
    for (int first = 1; first < 256; ++first)
        for (int second = 1; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(bytePath(widePath(bytes)), bytes) << first << ' ' << second;
        }
}

TEST(PathBytes, CharactersThatNoNameHolds)
{
    for (const wchar_t character :
         {L'\xD800', L'\xDC00', L'\xDC7F', L'\xDD00', L'\xDFFF', wchar_t{0x110000}, wchar_t{-1}})
        EXPECT_EQ(bytePath(std::wstring(1, character)), std::nullopt) << static_cast<long>(character);
}

} // namespace
