// tests/kernel32/TextTest.cpp
//
// Code pages, formatting and comparison.

#include "support/LastError.h"
#include "support/NotebookTest.h"

#include "notebook/Notebook.h"
#include "notebook/Text.h"

#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>
#include <string>
#include <tuple>

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

enum class Way
{
    Both,
    ToWide,
    ToNarrow
};

// Converts `source`, asked for the length, with room for everything, and with none for the terminator.
template <class Target, class Convert>
void CheckConversion(int length, const std::string& expected, std::string (*show)(const Target*),
                     Convert convert)
{
    Target target[16];
    std::fill(std::begin(target), std::end(target), Target{'~'});
    EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, ErrorOf(convert(target, length) != 0));
    EXPECT_EQ(Target{'~'}, target[length]);
    target[length] = 0;
    EXPECT_EQ(expected, show(target)) << "what fits is there";
    EXPECT_EQ(length + 1, convert(nullptr, 0));
    EXPECT_EQ(length + 1, convert(target, 16));
    EXPECT_EQ(expected, show(target));
}

TEST_F(TextTest, Conversions)
{
    const std::tuple<UINT, const char*, const wchar_t*, Way> rows[] = {
        {CP_ACP, "ab", L"ab", Way::Both},
        {CP_ACP, "\x80\x81\xE4", L"\x20AC\x0081\x00E4", Way::Both},
        {CP_ACP, "?Ad\xD0\x8A??", L"\x4E00\x0100\x0111\x0110\x0160\xD83D\xDE00", Way::ToNarrow},
        {CP_UTF8, "\xE2\x82\xAC\xC3\xA4", L"\x20AC\x00E4", Way::Both},
        {CP_UTF8, "\xF0\x9F\x98\x80z", L"\xD83D\xDE00z", Way::Both},
        {CP_UTF8, "\xE4\xB8z", L"\xFFFDz", Way::ToWide},
        {CP_UTF8, "\xC0\x80", L"\xFFFD\xFFFD", Way::ToWide},
        {CP_UTF8, "\xEF\xBF\xBDz", L"\xD800z", Way::ToNarrow},
    };
    for (const auto& [codePage, narrow, wide, way] : rows)
    {
        SCOPED_TRACE(narrow);
        if (way != Way::ToNarrow)
        {
            CheckConversion<wchar_t>(
                lstrlenW(wide), ToUtf8(wide), &ToUtf8,
                [&](wchar_t* target, int capacity)
                { return MultiByteToWideChar(codePage, 0, narrow, -1, target, capacity); });
        }
        if (way != Way::ToWide)
        {
            CheckConversion<char>(
                static_cast<int>(std::strlen(narrow)), narrow,
                [](const char* text) { return std::string(text); },
                [&](char* target, int capacity)
                { return WideCharToMultiByte(codePage, 0, wide, -1, target, capacity, nullptr, nullptr); });
        }
    }
    // A length counts for itself, terminators or not.
    EXPECT_EQ(6, MultiByteToWideChar(CP_ACP, 0, "ab\0cd", 6, nullptr, 0));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ErrorOf(MultiByteToWideChar(CP_ACP, 0, "ab", 0, nullptr, 0) != 0));
    EXPECT_EQ(3, WideCharToMultiByte(CP_ACP, 0, L"a\0b", 3, nullptr, 0, nullptr, nullptr));
}

// The one setting decides for the conversions and for what profile files hold.
TEST_F(TextTest, AnsiCodePageOfTheMachine)
{
    ASSERT_TRUE(Notebook::SetCodePage(CP_UTF8));
    EXPECT_EQ(3, WideCharToMultiByte(CP_ACP, 0, L"\x00E4", -1, nullptr, 0, nullptr, nullptr));
    ASSERT_TRUE(WritePrivateProfileStringW(L"\x00E4", L"k", L"\x4E00", L"C:\\a.ini"));
    wchar_t value[8];
    EXPECT_EQ(1U, GetPrivateProfileStringW(L"\x00C4", L"K", L"", value, 8, L"C:\\a.ini"));
    EXPECT_EQ(0x4E00, value[0]);
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
    EXPECT_EQ("w|n|h|l|(null)|", Format(64, L"%s|%S|%hs|%ls|%s", L"w", "n", "h", L"l", nullptr));
    EXPECT_EQ("wn|", Format(64, L"%c%C", L'w', 'n'));
    EXPECT_EQ("[  abc][abc  ][abcdef]|", Format(64, L"[%5s][%-5s][%3s]", L"abc", L"abc", L"abcdef"));
    EXPECT_EQ("-5 -6 7 ab CD 0|", Format(64, L"%d %i %u %x %X %d", -5, -6, 7U, 0xABU, 0xCDU, 0));
    EXPECT_EQ("-5 7 ab ffffffff|", Format(64, L"%ld %lu %lx %x", LONG{-5}, ULONG{7}, ULONG{0xAB}, -1));
    EXPECT_EQ("-5 65535 -2147483648|", Format(64, L"%hd %hu %d", -5, 0x1FFFF, INT_MIN));
    EXPECT_EQ("[   42][42   ][00042][-0042]|", Format(64, L"[%5d][%-5d][%05d][%05d]", 42, 42, 42, -42));
    EXPECT_EQ("100% q5 a|", Format(64, L"100%% %q%d a%", 5));
    EXPECT_EQ("-1 [   ", Format(4, L"[%2000000000d", 1));
    // The terminator comes where there is room.
    EXPECT_EQ("abcd|", Format(5, L"%s", L"abcd"));
    EXPECT_EQ("abcde", Format(5, L"%s", L"abcde"));
    EXPECT_EQ("-1 abcde", Format(5, L"%s", L"abcdef"));
}

TEST_F(TextTest, Comparing)
{
    const std::tuple<const wchar_t*, const wchar_t*, bool> words[] = {
        {L"a\x00E4\x0416", L"A\x00C4\x0436", true},
        {L"a", L"B", false},
        {L"Stra\u00DFe", L"STRASSE", true},
        {L"Stra\u00DFe", L"Strase", false},
        {L"\u00ADal\u200Dice\u00AD", L"Alice", true},
        {L"J\u00F6rg", L"Jo\u0308RG", true},
        {L"J\u00F6rg", L"Jorg", false},
        {L"\u017Bak", L"z\u0307ak", true},
        {L"\u00FF", L"Y\u0308", true},
        {L"\u00C5", L"A\u0308", false},
    };
    for (const auto& [left, right, equal] : words)
    {
        EXPECT_EQ(equal, lstrcmpiW(left, right) == 0) << ToUtf8(left) << ' ' << ToUtf8(right);
    }
    EXPECT_LT(lstrcmpiW(L"a", L"B"), 0);
}

} // namespace
