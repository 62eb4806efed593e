// kernel32/ProfileReadingTest.cpp
//
// What the profile functions read from every kind of file, in plain Win32: the simulated platform and Windows
// itself are held to the same tables.

#include "kernel32/ProfileConformance.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace
{

using namespace profile_conformance;
using namespace std::string_literals;

/// ASCII as it is, "|" for a zero, others by number.
std::string Shown(const wchar_t* units, std::size_t count)
{
    std::string shown;
    for (std::size_t index = 0; index < count; ++index)
    {
        const auto unit = static_cast<unsigned>(units[index]);
        const std::string other = '<' + std::to_string(unit) + '>';
        shown += unit == 0 ? "|" : unit < 0x7F ? std::string(1, static_cast<char>(unit)) : other;
    }
    return shown;
}

/// What is read, as `Shown`. Checks the terminator, and that nothing is written behind the buffer's end.
std::string Read(const wchar_t* section, const wchar_t* key, const wchar_t* otherwise = L"none",
                 DWORD size = 40)
{
    wchar_t buffer[64];
    std::fill(std::begin(buffer), std::end(buffer), L'#');
    const DWORD length = GetPrivateProfileStringW(section, key, otherwise, buffer, size, kFile);
    EXPECT_TRUE(size == 0 || buffer[length] == 0);
    EXPECT_EQ("##", Shown(buffer + size, 2));
    return Shown(buffer, length);
}

struct ReadCase
{
    const char* name;
    std::string file;
    const wchar_t* section;
    const wchar_t* key;
    std::string expected;
    const char* onWine = nullptr;
};

void CheckRead(const ReadCase& row)
{
    Put(row.file);
    EXPECT_EQ(Expected(row), Read(row.section, row.key)) << row.name;
}

TEST_F(ProfileConformance, Values)
{
    const std::string simple = "[s]/k=v/";
    const ReadCase rows[] = {
        {"plain", simple, L"s", L"k", "v"},
        {"key missing", simple, L"s", L"x", "none"},
        {"section missing", simple, L"t", L"k", "none"},
        {"names ignore case", "[SeC]/KeY=1/", L"sEc", L"kEy", "1"},
        {"names beyond ASCII ignore case", "[s]/\xE4=1/", L"s", L"\x00C4", "1", "none"},
        {"blanks around names and value", " [ s ] /  k  =  v w  /", L"s", L"k", "v w"},
        {"blanks in what is asked for", simple, L" s ", L" k ", "v"},
        {"comment", "[s]/;k=1/k=2/", L"s", L"k", "2"},
        {"comment asked for", "[s]/;k=1/", L"s", L";k", "none", "1"},
        {"no =", "[s]/k/", L"s", L"k", "none"},
        {"no =, then with =", "[s]/k/k=2/", L"s", L"k", "2", "none"},
        {"first of two keys", "[s]/k=1/k=2/", L"s", L"k", "1"},
        {"first of two sections", "[s]/a=1/[t]/[S]/k=2/", L"s", L"k", "none"},
        {"before the first section", "k=1/[s]/", L"", L"k", "none", "1"},
        {"LF", "[s]\nk=1\nj=2\n", L"s", L"j", "2"},
        {"CR", "[s]\rk=1\rj=2\r", L"s", L"j", "2"},
        {"UTF-16", Utf16("[s]/k=v/"), L"S", L"K", "v"},
        {"UTF-16 without mark", Utf16("[s]/k=v/").substr(2), L"s", L"k", "none"},
        {"mark of UTF-8", "\xEF\xBB\xBF[s]/k=v/", L"s", L"k", "none", "v"},
        {"mark with the high byte first", "\xFE\xFF\0[\0s\0]\0\n\0k\0=\0v"s, L"s", L"k", "none", "v"},
        {"zero in a value", "[s]/k=a\0b/j=2/"s, L"s", L"k", "a"},
        {"empty file", "", L"s", L"k", "none"},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckRead);
}

TEST_F(ProfileConformance, TextsOfValues)
{
    const std::pair<const char*, std::vector<const char*>> rows[] = {
        {"", {"", "   ", "\"\""}},
        {"v", {"\"v\"", "'v'"}},
        {" v ", {"\" v \""}},
        {"\"v\"", {"\"\"v\"\""}},
        {"'v'", {"\"'v'\""}},
        {"<8364><228>", {"\x80\xE4"}},
        {"unchanged", {"a=b", "1 ; c", "a\x1Az", "\"v'", "\"", "\"v\" x"}},
    };
    for (const auto& [expected, texts] : rows)
    {
        for (const std::string text : texts)
        {
            Put("[s]/k=" + text + "/");
            EXPECT_EQ(expected == "unchanged"s ? text : expected, Read(L"s", L"k"));
        }
    }
}

TEST_F(ProfileConformance, BuffersAndDefaults)
{
    const std::pair<DWORD, const char*> rows[] = {{6, "12345"}, {5, "1234"}, {2, "1"}, {1, ""}, {0, ""}};
    for (const char* const file : {"[s]/k=12345/", "[s]/k=\"12345\"/"})
    {
        Put(file);
        for (const auto& [size, expected] : rows)
        {
            // Wine cuts a quoted value before it takes the quotes off.
            EXPECT_TRUE(expected == Read(L"s", L"k", L"", size) || (IsWine() && file[6] == '"'))
                << file << size;
        }
    }
    EXPECT_EQ("abc", Read(L"s", L"x", L"abcdef", 4));
    EXPECT_EQ("", Read(L"s", L"x", nullptr));
    EXPECT_EQ("  d", Read(L"s", L"x", L"  d   "));
    EXPECT_EQ("d", Read(L"s", L"x", L"\"d\" "));
}

TEST_F(ProfileConformance, Numbers)
{
    const std::pair<UINT, std::vector<const char*>> rows[] = {
        {0, {"0", "B", "-", "--1", "+-1", "+ 1", "4294967296", "0X1f", "0x", "0xg", "0b2", "0B11", "0O17"}},
        {1, {"+1", "1 2", "1.5", "4294967297", "-4294967295"}},
        {5, {"0b101"}},
        {7, {" 7 ", "\"7\""}},
        {10, {"010"}},
        {15, {"0o17"}},
        {16, {"0x10"}},
        {42, {"42", "42A"}},
        {99, {"", "\"\""}},
        {255, {"0xfF"}},
        {276447231, {"99999999999999"}},
        {2147483647, {"-2147483649"}},
        {2147483648, {"2147483648"}},
        {4294967280, {"-0x10"}},
        {4294967291, {"'-5'"}},
        {4294967295, {"4294967295", "-1", "0x1FFFFFFFF"}},
    };
    for (const auto& [expected, texts] : rows)
    {
        for (const char* const text : texts)
        {
            Put("[s]/k=" + std::string(text) + "/");
            EXPECT_EQ(expected, GetPrivateProfileIntW(L"s", L"k", 99, kFile)) << text;
        }
    }
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"s", L"x", -5, kFile));
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"t", L"k", -5, kFile));
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"s", L"k", -5, L"C:\\missing\\missing.ini"));
}

TEST_F(ProfileConformance, MissingFilesGiveTheDefaultAndTellWhy)
{
    const std::pair<const wchar_t*, DWORD> rows[] = {{L"C:\\missing.ini", ERROR_FILE_NOT_FOUND},
                                                     {L"C:\\missing\\missing.ini", ERROR_PATH_NOT_FOUND}};
    for (const auto& [file, error] : rows)
    {
        wchar_t buffer[8];
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(4U, GetPrivateProfileStringW(L"s", L"k", L"none", buffer, 8, file));
        EXPECT_EQ(error, GetLastError());
        EXPECT_EQ("none|", Shown(buffer, 5));
    }
}

TEST_F(ProfileConformance, SpellingsOfAPath)
{
    Put("[s]/k=7/");
    for (const wchar_t* spelling :
         {L"c:\\CONFORMANCE.INI", L"C:/conformance.ini", L"C:\\\\conformance.ini", L"C:\\.\\conformance.ini",
          L"C:\\WINDOWS\\..\\conformance.ini", L"C:\\..\\conformance.ini", L"C:\\conformance.ini. "})
    {
        EXPECT_EQ(7U, GetPrivateProfileIntW(L"s", L"k", 0, spelling)) << Shown(spelling, 20);
    }
}

} // namespace
