// tests/kernel32/ProfileConformanceTest.cpp
//
// How the profile functions handle every kind of file, in plain Win32: the simulated platform and Windows
// itself are held to the same tables.
//
// Wine, on which the Windows build runs in the tests, differs in these ways; a row that meets one of them has
// a last column with what Wine does, and holds it to that:
//  - It writes the whole file anew, with CRLF behind every line and without blank lines; Windows touches only
//    what is changed.
//  - It drops the blanks before a value that it writes.
//  - Deleting in a missing file returns TRUE and makes no file.

#include "kernel32/OwnedHandle.h"
#include "support/LastError.h"
#include "support/WholeFiles.h"
#include "support/WideText.h"
#include "support/Wine.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

using namespace std::string_literals;

constexpr const wchar_t* kFile = L"C:\\conformance.ini";

class ProfileConformance : public testing::Test
{
protected:
    void TearDown() override
    {
        DeleteFileW(kFile);
    }
};

// The text of a row, in which "/" stands for CRLF, as it stands in an ANSI file.
std::string Ansi(const std::string& text)
{
    std::string bytes;
    for (const char character : text)
    {
        bytes += character == '/' ? "\r\n" : std::string(1, character);
    }
    return bytes;
}

// The same in a UTF-16 file, with its mark.
std::string Utf16(const std::string& text)
{
    std::string bytes = "\xFF\xFE";
    for (const char character : Ansi(text))
    {
        bytes += {character, '\0'};
    }
    return bytes;
}

void Put(const std::string& text)
{
    ASSERT_TRUE(WriteBytes(kFile, Ansi(text)));
}

std::string Get()
{
    return ReadBytes(kFile).value_or("no file");
}

// What is read. Checks the terminator, and that nothing is written behind the buffer's end.
std::string Read(const wchar_t* section, const wchar_t* key, const wchar_t* otherwise = L"none",
                 DWORD size = 40)
{
    wchar_t buffer[64];
    std::fill(std::begin(buffer), std::end(buffer), L'#');
    const DWORD length = GetPrivateProfileStringW(section, key, otherwise, buffer, size, kFile);
    EXPECT_TRUE(size == 0 || buffer[length] == 0);
    EXPECT_EQ(L'#', buffer[size]);
    return size == 0 ? "" : Utf8(buffer);
}

TEST_F(ProfileConformance, Values)
{
    const std::string simple = "[s]/k=v/";
    const std::tuple<const char*, std::string, const wchar_t*, const wchar_t*, const char*> rows[] = {
        {"plain", simple, L"s", L"k", "v"},
        {"key missing", simple, L"s", L"x", "none"},
        {"section missing", simple, L"t", L"k", "none"},
        {"names ignore case", "[SeC]/KeY=1/", L"sEc", L"kEy", "1"},
        {"blanks around names and value", " [ s ] /  k  =  v w  /", L"s", L"k", "v w"},
        {"comment", "[s]/;k=1/k=2/", L"s", L"k", "2"},
        {"first of two keys", "[s]/k=1/k=2/", L"s", L"k", "1"},
        {"first of two sections", "[s]/a=1/[t]/[S]/k=2/", L"s", L"k", "none"},
        {"LF", "[s]\nk=1\nj=2\n", L"s", L"j", "2"},
        {"UTF-16", Utf16("[s]/k=v/"), L"S", L"K", "v"},
        {"empty file", "", L"s", L"k", "none"},
    };
    for (const auto& [name, file, section, key, expected] : rows)
    {
        Put(file);
        EXPECT_EQ(expected, Read(section, key)) << name;
    }
    const std::pair<const char*, std::vector<const char*>> texts[] = {
        {"", {"", "   ", "\"\""}},      {"v", {"\"v\"", "'v'"}},
        {" v ", {"\" v \""}},           {"\"v\"", {"\"\"v\"\""}},
        {"\u20AC\u00E4", {"\x80\xE4"}}, {"unchanged", {"a=b", "1 ; c", "a\x1Az", "\"v'", "\"", "\"v\" x"}},
    };
    for (const auto& [expected, values] : texts)
    {
        for (const std::string value : values)
        {
            Put("[s]/k=" + value + "/");
            EXPECT_EQ(expected == "unchanged"s ? value : expected, Read(L"s", L"k"));
        }
    }
}

TEST_F(ProfileConformance, BuffersAndDefaults)
{
    Put("[s]/k=12345/");
    for (const auto& [size, expected] : {std::pair(6U, "12345"), {5U, "1234"}, {2U, "1"}, {1U, ""}, {0U, ""}})
    {
        EXPECT_EQ(expected, Read(L"s", L"k", L"", size));
    }
    EXPECT_EQ("abc", Read(L"s", L"x", L"abcdef", 4));
    EXPECT_EQ("", Read(L"s", L"x", nullptr));
    EXPECT_EQ("  d", Read(L"s", L"x", L"  d   "));
    for (const auto& [file, error] : {std::pair(L"C:\\missing.ini", ERROR_FILE_NOT_FOUND),
                                      {L"C:\\missing\\missing.ini", ERROR_PATH_NOT_FOUND}})
    {
        wchar_t buffer[8];
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(4U, GetPrivateProfileStringW(L"s", L"k", L"none", buffer, 8, file));
        EXPECT_EQ(error, ErrorOf(false));
        EXPECT_EQ("none", Utf8(buffer));
    }
}

TEST_F(ProfileConformance, Numbers)
{
    const std::pair<UINT, std::vector<const char*>> rows[] = {
        {0, {"0", "B", "-", "--1", "+ 1", "4294967296", "0X1f", "0x"}},
        {1, {"+1", "1 2", "1.5", "4294967297"}},
        {7, {" 7 ", "\"7\""}},
        {10, {"010"}},
        {42, {"42", "42A"}},
        {99, {"", "\"\""}},
        {255, {"0xfF"}},
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
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"s", L"k", -5, L"C:\\missing\\missing.ini"));
}

struct WriteCase
{
    const char* name;
    std::string before;
    const wchar_t* section;
    const wchar_t* key;
    const wchar_t* value; ///< null to remove
    std::string expected;
    const char* onWine = nullptr;
};

TEST_F(ProfileConformance, WritingAndRemoving)
{
    const std::string one = "[s]/k=1/";
    const std::string two = "[s]/k=1/j=2/";
    const std::string all = "pre//; hi/[s]/;c//k=1/word//[t]/";
    const std::string changed = "pre//; hi/[s]/;c//k=v/word//[t]/";
    const std::string wide = Utf16("[s]/k=") + "\x00\x4E"s + Utf16("/").substr(2);
    const WriteCase rows[] = {
        {"longer than the file", one, L"S", L"K", L"longer than the file", "[s]/k=longer than the file/"},
        {"by an empty one", two, L"s", L"k", L"", "[s]/k=/j=2/"},
        {"quotes are written", two, L"s", L"k", L"\"q\"", "[s]/k=\"q\"/j=2/"},
        {"blanks are written", two, L"s", L"k", L" v ", "[s]/k= v /j=2/", "[s]/k=v /j=2/"},
        {"spelling stays", "[ S ]/  K  =  1  /", L"s", L"k", L"new", "[ S ]/  K  =new/", "[S]/K=new/"},
        {"first of two keys", "[s]/k=1/k=2/", L"s", L"k", L"v", "[s]/k=v/k=2/"},
        {"LF stays", "[s]\nk=1\nj=2\n", L"s", L"k", L"new", "[s]\nk=new\nj=2\n", "[s]/k=new/j=2/"},
        {"last line without end", "[s]/k=1", L"s", L"k", L"new", "[s]/k=new", "[s]/k=new/"},
        {"everything else stays", all, L"s", L"k", L"v", changed, "pre/; hi/[s]/;c/k=v/word/[t]/"},
        {"what ANSI lacks", two, L"s", L"k", L"\x00E4\x20AC\x4E00", "[s]/k=\xE4\x80?/j=2/"},
        {"UTF-16 stays", Utf16(one), L"s", L"k", L"\x4E00", wide},

        {"new key", one, L"s", L"j", L"v", "[s]/k=1/j=v/"},
        {"new key in the middle", "[s]/k=1/[t]/", L"s", L"j", L"v", "[s]/k=1/j=v/[t]/"},
        {"new key behind a line without end", "[s]/k=1", L"s", L"j", L"v", "[s]/k=1/j=v/"},
        {"new section", one, L"t", L"j", L"v", "[s]/k=1/[t]/j=v/"},
        {"new section in UTF-16", Utf16(one), L"t", L"j", L"v", Utf16("[s]/k=1/[t]/j=v/")},

        {"no key", two, L"s", L"k", nullptr, "[s]/j=2/"},
        {"no last key, header stays", "[s]/k=1/[t]/", L"s", L"k", nullptr, "[s]/[t]/"},
        {"no missing key", two, L"s", L"x", nullptr, two},
        {"no section", "[s]/k=1/;c/[t]/x=1/", L"S", nullptr, nullptr, "[t]/x=1/"},
        {"no first of two sections", "[s]/k=1/[t]/[s]/j=2/", L"s", nullptr, nullptr, "[t]/[s]/j=2/"},
    };
    for (const WriteCase& row : rows)
    {
        Put(row.before);
        EXPECT_TRUE(WritePrivateProfileStringW(row.section, row.key, row.value, kFile));
        EXPECT_EQ(Ansi(row.onWine != nullptr && IsWine() ? row.onWine : row.expected), Get()) << row.name;
    }
}

TEST_F(ProfileConformance, FilesThatAreMissingOrCantBeWritten)
{
    for (const wchar_t* key : {L"k", static_cast<const wchar_t*>(nullptr)})
    {
        DeleteFileW(kFile);
        EXPECT_TRUE(WritePrivateProfileStringW(L"", key, nullptr, kFile));
        EXPECT_EQ(IsWine() ? "no file" : "", Get());
    }
    DeleteFileW(kFile);
    EXPECT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"\x00E4", kFile));
    EXPECT_EQ(Ansi("[s]/k=\xE4/"), Get());

    using Text = const wchar_t*;
    const std::tuple<Text, Text, long> rows[] = {
        {nullptr, kFile, ERROR_FILE_NOT_FOUND},
        {L"s", L"", ERROR_ACCESS_DENIED},
        {L"s", L"C:\\missing\\a.ini", ERROR_PATH_NOT_FOUND},
        {L"s", L"C:\\WINDOWS", ERROR_ACCESS_DENIED},
        {L"s", L"C:\\a?b.ini", ERROR_INVALID_NAME},
    };
    for (const auto& [section, file, error] : rows)
    {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(error, ErrorOf(WritePrivateProfileStringW(section, L"k", L"v", file))) << error;
    }
    EXPECT_EQ(Ansi("[s]/k=\xE4/"), Get());
}

TEST_F(ProfileConformance, HeldFiles)
{
    const std::tuple<DWORD, UINT, bool> rows[] = {
        {0, 99, false},
        {FILE_SHARE_READ, 1, false},
        {FILE_SHARE_READ | FILE_SHARE_WRITE, 1, true},
    };
    for (const auto& [share, read, written] : rows)
    {
        SCOPED_TRACE(share);
        Put("[s]/k=1/");
        OwnedHandle file(
            CreateFileW(kFile, GENERIC_READ, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_EQ(read, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(written ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION,
                  ErrorOf(WritePrivateProfileStringW(L"s", L"k", L"2", kFile)));
        file.reset();
        EXPECT_EQ(written ? 2U : 1U, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
    }
}

} // namespace
