// tests/kernel32/TextTest.cpp
//
// Code pages, formatting, comparison and search.

#include "support/LastError.h"
#include "support/NotebookTest.h"

#include "notebook/Notebook.h"
#include "notebook/Text.h"

#include <windows.h>

#include <shlwapi.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>

namespace
{

using namespace simulated;

constexpr UINT kLatin = 1252;

using TextTest = NotebookTest;

// "|" for a zero; "~" fills what a conversion leaves alone.
std::string Shown(std::string bytes)
{
    bytes.erase(std::min(bytes.find('~'), bytes.size()));
    std::replace(bytes.begin(), bytes.end(), '\0', '|');
    return bytes;
}

template <class Unit>
struct Conversion
{
    UINT codePage;
    DWORD flags;
    const Unit* source;
    int length, capacity, answer;
    long error;
    const char* target; ///< the bytes, wide text in UTF-8; null where it doesn't matter

    void Check(int answered, std::string written) const
    {
        EXPECT_EQ(answer, answered);
        EXPECT_EQ(error, ErrorOf(answered != 0));
        EXPECT_TRUE(target == nullptr || target == Shown(std::move(written)));
    }
};

TEST_F(TextTest, NarrowToWide)
{
    const Conversion<char> rows[] = {
        {CP_ACP, 0, "ab", -1, 10, 3, 0, "ab|"},
        {CP_ACP, 0, "ab", -1, 0, 3, 0, ""},
        {CP_ACP, 0, "ab", 1, 10, 1, 0, "a"},
        {CP_ACP, 0, "ab\0cd", 6, 10, 6, 0, "ab|cd|"},
        {CP_ACP, 0, "ab", -1, 2, 0, ERROR_INSUFFICIENT_BUFFER, "ab"},
        {CP_ACP, 0, "ab", 0, 10, 0, ERROR_INVALID_PARAMETER, ""},
        {CP_ACP, 0, nullptr, 1, 10, 0, ERROR_INVALID_PARAMETER, ""},
        {CP_ACP, 0, "ab", -1, -1, 0, ERROR_INVALID_PARAMETER, ""},
        {kLatin, 0, "\x80\x81\xE4", 3, 10, 3, 0, "\xE2\x82\xAC\xC2\x81\xC3\xA4"},
        {kLatin, MB_PRECOMPOSED, "\xE4", 1, 10, 1, 0, "\xC3\xA4"},
        {kLatin, 0x10, "a", 1, 10, 0, ERROR_INVALID_FLAGS, ""},
        {CP_UTF8, 0, "\xE2\x82\xAC\xC3\xA4", -1, 10, 3, 0, "\xE2\x82\xAC\xC3\xA4|"},
        {CP_UTF8, 0, "\xF0\x9F\x98\x80z", 5, 10, 3, 0, "\xF0\x9F\x98\x80z"},
        {CP_UTF8, 0, "\xE4\xB8z", 3, 10, 2, 0, "\xEF\xBF\xBDz"},
        {CP_UTF8, 0, "\xE4\xB8", 2, 10, 1, 0, "\xEF\xBF\xBD"},
        {CP_UTF8, 0, "\xC0\x80", 2, 10, 2, 0, "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {CP_UTF8, MB_ERR_INVALID_CHARS, "a\x80", 2, 10, 0, ERROR_NO_UNICODE_TRANSLATION, nullptr},
        {CP_UTF8, MB_ERR_INVALID_CHARS, "\xC3\xA4", 2, 10, 1, 0, "\xC3\xA4"},
        {999, 0, "a", 1, 10, 0, ERROR_INVALID_PARAMETER, ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(&row - rows);
        wchar_t target[12];
        std::fill(std::begin(target), std::end(target), L'~');
        const int answer =
            MultiByteToWideChar(row.codePage, row.flags, row.source, row.length, target, row.capacity);
        row.Check(answer, ToUtf8(target, std::size(target)));
    }
}

TEST_F(TextTest, WideToNarrow)
{
    const Conversion<wchar_t> rows[] = {
        {CP_ACP, 0, L"ab", -1, 10, 3, 0, "ab|"},
        {CP_ACP, 0, L"a\x00E4", -1, 0, 3, 0, ""},
        {CP_ACP, 0, L"a\0b", 3, 10, 3, 0, "a|b"},
        {CP_ACP, 0, L"abcd", 4, 2, 0, ERROR_INSUFFICIENT_BUFFER, "ab"},
        {CP_ACP, 0, L"a", 0, 10, 0, ERROR_INVALID_PARAMETER, ""},
        {kLatin, 0, L"\x20AC\x00E4\x4E00\x0081\x0080", -1, 10, 6, 0, "\x80\xE4?\x81?|"},
        {kLatin, 0, L"\x0100\x0111\x0110\x0160", -1, 10, 5, 0, "Ad\xD0\x8A|"},
        {kLatin, WC_NO_BEST_FIT_CHARS, L"\x0100\x0160", -1, 10, 3, 0, "?\x8A|"},
        {kLatin, 0, L"\xD83D\xDE00", -1, 10, 3, 0, "??|"},
        {kLatin, 1, L"a", -1, 10, 0, ERROR_INVALID_FLAGS, ""},
        {CP_UTF8, 0, L"\x20AC\x00E4", -1, 10, 6, 0, "\xE2\x82\xAC\xC3\xA4|"},
        {CP_UTF8, 0, L"a\x20AC", 2, 3, 0, ERROR_INSUFFICIENT_BUFFER, "a"},
        {CP_UTF8, 0, L"\xD83D\xDE00", -1, 10, 5, 0, "\xF0\x9F\x98\x80|"},
        {CP_UTF8, 0, L"\xD800z", -1, 10, 5, 0, "\xEF\xBF\xBDz|"},
        {CP_UTF8, 0x80, L"\xD800z", -1, 10, 0, ERROR_NO_UNICODE_TRANSLATION, nullptr},
        {CP_UTF8, WC_NO_BEST_FIT_CHARS, L"a", -1, 10, 0, ERROR_INVALID_FLAGS, ""},
        {999, 0, L"a", 1, 10, 0, ERROR_INVALID_PARAMETER, ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(&row - rows);
        char target[12];
        std::fill(std::begin(target), std::end(target), '~');
        const int answer = WideCharToMultiByte(row.codePage, row.flags, row.source, row.length, target,
                                               row.capacity, nullptr, nullptr);
        row.Check(answer, {target, sizeof target});
    }
    char target[8];
    BOOL used = FALSE;
    EXPECT_EQ(3, WideCharToMultiByte(kLatin, 0, L"a\x4E00", -1, target, 8, "#", &used));
    EXPECT_STREQ("a#", target);
    EXPECT_TRUE(used);
    EXPECT_EQ(0, WideCharToMultiByte(CP_UTF8, 0, L"a", -1, target, 8, "#", nullptr));
}

// The one setting decides for the conversions and for what profile files hold.
TEST_F(TextTest, AnsiCodePageOfTheMachine)
{
    EXPECT_EQ(kLatin, GetACP());
    ASSERT_TRUE(Notebook::SetCodePage(CP_UTF8));
    EXPECT_EQ(static_cast<UINT>(CP_UTF8), GetACP());
    char narrow[8];
    EXPECT_EQ(3, WideCharToMultiByte(CP_ACP, 0, L"\x00E4", -1, narrow, 8, nullptr, nullptr));
    ASSERT_TRUE(WritePrivateProfileStringW(L"\x00E4", L"k", L"\x4E00", L"C:\\a.ini"));
    wchar_t value[8];
    EXPECT_EQ(1U, GetPrivateProfileStringW(L"\x00C4", L"K", L"", value, 8, L"C:\\a.ini"));
    EXPECT_EQ(0x4E00, value[0]);
}

template <class... Arguments>
std::string Wide(const wchar_t* format, Arguments... arguments)
{
    wchar_t target[128];
    const int length = _snwprintf(target, std::size(target), format, arguments...);
    return length < 0 ? "cut" : ToUtf8(target, static_cast<std::size_t>(length));
}

std::string Narrow(const char* format, ...)
{
    char target[128];
    va_list arguments;
    va_start(arguments, format);
    const int length = _vsnprintf(target, std::size(target), format, arguments);
    va_end(arguments);
    return length < 0 ? "cut" : std::string(target, static_cast<std::size_t>(length));
}

TEST_F(TextTest, FormattingText)
{
    EXPECT_EQ("w|n|h|l|w", Wide(L"%s|%S|%hs|%ls|%ws", L"w", "n", "h", L"l", L"w"));
    EXPECT_EQ("n|w|h|l", Narrow("%s|%S|%hs|%ls", "n", L"w", "h", L"l"));
    EXPECT_EQ("wnhl", Wide(L"%c%C%hc%lc", L'w', 'n', 'h', L'l'));
    EXPECT_EQ("(null) (null)", Wide(L"%s %S", nullptr, nullptr));
    EXPECT_EQ("[  abc][abc  ][ab][    a][]",
              Wide(L"[%5s][%-5s][%.2s][%5.1s][%.s]", L"abc", L"abc", L"abc", L"abc", L"abc"));
    const wchar_t unterminated[] = {L'a', L'b'};
    EXPECT_EQ("ab", Wide(L"%.*s", 2, static_cast<const wchar_t*>(unterminated)));
    EXPECT_EQ("\xC3\xA4", Wide(L"%s", L"\x00E4"));
    EXPECT_EQ("cut", Narrow("%S", L"\x4E00")) << "no place in narrow text";
}

TEST_F(TextTest, FormattingNumbers)
{
    EXPECT_EQ("-5 -6 7 ab CD 10", Wide(L"%d %i %u %x %X %o", -5, -6, 7U, 0xABU, 0xCDU, 8U));
    EXPECT_EQ("-5 7 ab ffffffff", Wide(L"%ld %lu %lx %x", LONG{-5}, ULONG{7}, ULONG{0xAB}, -1));
    EXPECT_EQ("-5 ab -6 7 -5", Wide(L"%I64d %I64x %lld %llu %I32d", LONGLONG{-5}, LONGLONG{0xAB},
                                    LONGLONG{-6}, ULONGLONG{7}, -5));
    EXPECT_EQ("-5 65535 ffff", Wide(L"%hd %hu %hx", -5, 0x1FFFF, 0x1FFFF));
    EXPECT_EQ("[   42][42   ][00042][+42][ 42][  +42][+0042]",
              Wide(L"[%5d][%-5d][%05d][%+d][% d][%+5d][%+05d]", 42, 42, 42, 42, 42, 42, 42));
    EXPECT_EQ("[005][     005][][0xff][0XFF][010][0]",
              Wide(L"[%.3d][%8.3d][%.0d][%#x][%#X][%#o][%#x]", 5, 5, 0, 255, 255, 8, 0));
    EXPECT_EQ("[   42][42   ][42   ]", Wide(L"[%*d][%-*d][%*d]", 5, 42, 5, 42, -5, 42));
    EXPECT_EQ("-2147483648 -9223372036854775808", Wide(L"%d %I64d", INT_MIN, INT64_MIN));
    EXPECT_EQ("1.500000 2.35 1.234568e+004 0.0001 1E+020 [    1.50]",
              Wide(L"%f %.2f %e %g %G [%8.2f]", 1.5, 2.345, 12345.678, 0.0001, 1e20, 1.5));
    const std::string zeros(2 * sizeof(void*) - 2, '0');
    EXPECT_EQ(zeros + "AB", Wide(L"%p", reinterpret_cast<void*>(0xAB)));
}

TEST_F(TextTest, FormatsThatMakeNoSense)
{
    EXPECT_EQ("q5 y |%|", Wide(L"%q%d %y |%5%|", 5));
    EXPECT_EQ("a", Wide(L"a%"));
    EXPECT_EQ("", Wide(L"%l"));
    int kept = 7;
    EXPECT_EQ("|5", Wide(L"%n|%d", &kept, 5));
    EXPECT_EQ(7, kept);
    EXPECT_EQ("cut", Wide(L"%2000000000d", 1));
    EXPECT_EQ("cut", Wide(L"%.2000000000d", 1));
    EXPECT_EQ("cut", Wide(L"%99999999999999999999d", 1));
}

TEST_F(TextTest, FormattingIntoTooLittleRoom)
{
    // "|" for the terminator, "~" for what is left alone.
    const std::tuple<std::size_t, const wchar_t*, int, const char*> rows[] = {
        {5, L"abcd", 4, "abcd|~~"}, {5, L"abcde", 5, "abcde~~"}, {5, L"abcdef", -1, "abcde~~"},
        {0, L"a", -1, "~~~~~~~"},   {0, L"", 0, "~~~~~~~"},      {1, L"", 0, "|~~~~~~"}};
    for (const auto& [count, text, answer, expected] : rows)
    {
        wchar_t target[7];
        std::fill(std::begin(target), std::end(target), L'~');
        EXPECT_EQ(answer, _snwprintf(target, count, L"%s", text));
        std::string shown = ToUtf8(target, std::size(target));
        std::replace(shown.begin(), shown.end(), '\0', '|');
        EXPECT_EQ(expected, shown);
    }
    EXPECT_EQ(3, _snwprintf(nullptr, 0, L"abc"));
}

TEST_F(TextTest, ComparingAndSearching)
{
    EXPECT_EQ(0, lstrcmpiW(L"a\x00E4\x0416", L"A\x00C4\x0436"));
    EXPECT_LT(lstrcmpiW(L"a", L"B"), 0);
    const std::tuple<const wchar_t*, const wchar_t*, bool> words[] = {
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
    EXPECT_NE(0, lstrcmpW(L"a", L"A"));
    EXPECT_GT(lstrcmpW(L"ab", L"a"), 0);
    EXPECT_LT(lstrcmpW(nullptr, L""), 0);
    EXPECT_EQ(0, lstrlenW(nullptr));

    const wchar_t* const whole = L"Intel Wireless LAN";
    EXPECT_EQ(whole + 6, StrStrIW(whole, L"wireLESS"));
    EXPECT_EQ(whole + 17, StrStrIW(whole, L"n") + 16);
    EXPECT_EQ(nullptr, StrStrIW(whole, L"LANX"));
    EXPECT_EQ(nullptr, StrStrIW(whole, L""));
    EXPECT_EQ(nullptr, StrStrIW(nullptr, L"a"));
}

TEST_F(TextTest, GuidParserWithoutName)
{
    using Parser = BOOL(WINAPI*)(LPCWSTR, GUID*);
    const FARPROC found = GetProcAddress(LoadLibraryW(L"SHLWAPI.dll"), MAKEINTRESOURCEA(270));
    const auto parse = reinterpret_cast<Parser>(reinterpret_cast<void (*)()>(found));
    ASSERT_NE(nullptr, parse);
    GUID guid = {};
    EXPECT_TRUE(parse(L"{381b4222-F694-41f0-9685-ff5bb260df2e}", &guid));
    const GUID expected = {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};
    EXPECT_EQ(0, std::memcmp(&expected, &guid, sizeof guid));
    for (const wchar_t* text :
         {L"", L"381b4222-f694-41f0-9685-ff5bb260df2e", L"{381b4222-f694-41f0-9685-ff5bb260df2e",
          L"{381b4222-f694-41f0-9685-ff5bb260df2e}x", L"{g81b4222-f694-41f0-9685-ff5bb260df2e}"})
    {
        EXPECT_FALSE(parse(text, &guid));
    }
    EXPECT_EQ(0, std::memcmp(&expected, &guid, sizeof guid)) << "left alone";
}

} // namespace
