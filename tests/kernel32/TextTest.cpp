// tests/kernel32/TextTest.cpp
//
// Code pages and formatting.

#include "support/LastError.h"
#include "support/NotebookTest.h"

#include "base/Text.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

namespace
{

using namespace simulated;

using TextTest = NotebookTest;

// "|" for a zero; "~" fills what a function leaves alone.
std::string Shown(std::string bytes)
{
    bytes.erase(std::min(bytes.find('~'), bytes.size()));
    std::replace(bytes.begin(), bytes.end(), '\0', '|');
    return bytes;
}

TEST_F(TextTest, Conversions)
{
    const struct
    {
        UINT codePage;
        const char* narrow;
        const wchar_t* wide;
    } rows[] = {
        {CP_ACP, "ab", L"ab"},
        {CP_ACP, "\x80\x81\xE4", L"\x20AC\x0081\x00E4"},
        {CP_UTF8, "\xE2\x82\xAC\xC3\xA4", L"\x20AC\x00E4"},
        {CP_UTF8, "\xF0\x9F\x98\x80z", L"\xD83D\xDE00z"},
    };
    for (const auto& row : rows)
    {
        const auto wideSize = lstrlenW(row.wide) + 1;
        const auto narrowSize = static_cast<int>(std::strlen(row.narrow)) + 1;
        wchar_t wideTarget[16];
        char narrowTarget[16];
        const auto toWide = [&](wchar_t* target, int room)
        { return MultiByteToWideChar(row.codePage, 0, row.narrow, -1, target, room); };
        const auto toNarrow = [&](char* target, int room)
        { return WideCharToMultiByte(row.codePage, 0, row.wide, -1, target, room, nullptr, nullptr); };
        EXPECT_EQ(wideSize, toWide(nullptr, 0));
        EXPECT_EQ(narrowSize, toNarrow(nullptr, 0));
        EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, ErrorOf(toWide(wideTarget, wideSize - 1) != 0));
        EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, ErrorOf(toNarrow(narrowTarget, narrowSize - 1) != 0));
        EXPECT_EQ(wideSize, toWide(wideTarget, 16));
        EXPECT_EQ(narrowSize, toNarrow(narrowTarget, 16));
        EXPECT_EQ(ToUtf8(row.wide), ToUtf8(wideTarget));
        EXPECT_STREQ(row.narrow, narrowTarget);
    }
    char narrow[8];
    EXPECT_EQ(4, WideCharToMultiByte(CP_ACP, 0, L"\x4E00\x0100?", -1, narrow, 8, nullptr, nullptr));
    EXPECT_STREQ("?A?", narrow);
    // A length counts for itself, terminators or not.
    EXPECT_EQ(6, MultiByteToWideChar(CP_ACP, 0, "ab\0cd", 6, nullptr, 0));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ErrorOf(MultiByteToWideChar(CP_ACP, 0, "ab", 0, nullptr, 0) != 0));
}

// What is written into `count` units, with "|" for the terminator and nothing for what is left alone;
// -1 before a text that doesn't fit.
std::string Format(std::size_t count, const wchar_t* format, ...)
{
    wchar_t target[64];
    std::fill(std::begin(target), std::end(target), L'~');
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf(target, count, format, arguments);
    va_end(arguments);
    const std::string shown = Shown(ToUtf8(target, std::size(target)));
    EXPECT_TRUE(length < 0 || length == static_cast<int>(shown.size() - (shown.ends_with('|') ? 1 : 0)));
    return (length < 0 ? "-1 " : "") + shown;
}

TEST_F(TextTest, Formatting)
{
    EXPECT_EQ("w|n|(null)|", Format(64, L"%s|%S|%s", L"w", "n", nullptr));
    EXPECT_EQ("-5 7 ab CD|", Format(64, L"%d %u %x %X", -5, 7U, 0xABU, 0xCDU));
    EXPECT_EQ("[   42][00042] 100%|", Format(64, L"[%5d][%05d] 100%%", 42, 42));
    // The terminator comes where there is room.
    EXPECT_EQ("abcd|", Format(5, L"%s", L"abcd"));
    EXPECT_EQ("abcde", Format(5, L"%s", L"abcde"));
    EXPECT_EQ("-1 abcde", Format(5, L"%s", L"abcdef"));
}

} // namespace
