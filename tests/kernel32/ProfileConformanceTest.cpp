// tests/kernel32/ProfileConformanceTest.cpp
//
// What the profile functions do with every kind of file, in plain Win32: the simulated platform and Windows
// itself are held to the same tables.
//
// Wine, on which the Windows build runs in the tests, differs in these ways, and a case that meets one of
// them says so and holds Wine to what it does:
//  - kRewrites: it writes the whole file anew, with CRLF behind every line and without blank lines; Windows
//    touches only what is changed.
//  - kCommentIsKey: a line that begins with ";" is a key of that name to it, when it is asked for.
//  - kLineIsKey: a line without "=" is a key without a value to it, found before a later line that has one.
//  - kPreamble: lines before the first section are the section of the empty name to it.
//  - kMarks: it also knows the marks of UTF-8 and of UTF-16 with the high byte first.
//  - kExactList: a list that fits exactly gives size - 2, as one that is cut does.
//  - kTrims: it drops the blanks before a value that it writes, and takes a name to be removed with its
//  blanks.
//  - kPlainCase: it ignores the case of the letters A to Z alone.
//  - kNoFileMade: deleting in a missing file answers TRUE and makes no file.
//  - kSuperuser: run by the superuser of the host, it writes read-only files.

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace
{

constexpr const wchar_t* kFile = L"C:\\conformance.ini";
constexpr DWORD kUntouched = 777;

enum class Why
{
    Same,
    kRewrites,
    kCommentIsKey,
    kLineIsKey,
    kPreamble,
    kMarks,
    kExactList,
    kTrims,
    kNoFileMade,
    kSuperuser,
    kPlainCase
};
using enum Why;

class ProfileConformance : public testing::Test
{
protected:
    void TearDown() override
    {
        DeleteFileW(kFile);
    }
};

bool IsWine()
{
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    return library != nullptr && GetProcAddress(library, "wine_get_version") != nullptr;
}

/// ASCII as it is, "|" for a zero, others by number.
std::string Shown(const wchar_t* units, std::size_t count)
{
    std::string shown;
    for (std::size_t index = 0; index < count; ++index)
    {
        const auto unit = static_cast<unsigned>(units[index]);
        if (unit == 0)
        {
            shown += '|';
        }
        else if (unit < 0x7F)
        {
            shown += static_cast<char>(unit);
        }
        else
        {
            shown += '<' + std::to_string(unit) + '>';
        }
    }
    return shown;
}

std::string Utf16(const std::string& text)
{
    std::string bytes = "\xFF\xFE";
    for (const char character : text)
    {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

void Put(const std::string& bytes)
{
    const HANDLE file =
        CreateFileW(kFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    EXPECT_TRUE(CloseHandle(file));
}

std::string Get()
{
    const HANDLE file = CreateFileW(kFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return "no file";
    }
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
    EXPECT_TRUE(CloseHandle(file));
    bytes.resize(read);
    return bytes;
}

struct ReadCase
{
    const char* name;
    std::string file;
    const wchar_t* section;
    const wchar_t* key;
    std::string expected; ///< as `Shown`, as long as the answer says
    const wchar_t* otherwise = L"none";
    DWORD size = 40;
    Why why = Same;
    std::string onWine = {};
};

// The answer, what stands before the terminator, the terminator, and nothing behind the buffer's end.
void CheckRead(const ReadCase& row)
{
    SCOPED_TRACE(row.name);
    Put(row.file);
    wchar_t buffer[64];
    std::fill(std::begin(buffer), std::end(buffer), L'#');
    const DWORD length =
        GetPrivateProfileStringW(row.section, row.key, row.otherwise, buffer, row.size, kFile);
    ASSERT_LT(length, std::size(buffer));
    EXPECT_EQ(row.why != Same && IsWine() ? row.onWine : row.expected, Shown(buffer, length));
    if (row.size > 0)
    {
        EXPECT_EQ(0, buffer[length]);
    }
    EXPECT_EQ("##", Shown(buffer + row.size, 2));
}

TEST_F(ProfileConformance, Values)
{
    const std::string simple = "[s]\r\nk=v\r\n";
    const ReadCase rows[] = {
        {"plain", simple, L"s", L"k", "v"},
        {"key missing", simple, L"s", L"x", "none"},
        {"section missing", simple, L"t", L"k", "none"},
        {"names ignore case", "[SeC]\r\nKeY=1\r\n", L"sEc", L"kEy", "1"},
        {"names beyond ASCII ignore case", "[s]\r\n\xE4=1\r\n", L"s", L"\x00C4", "1", L"none", 40, kPlainCase,
         "none"},
        {"part of a name", "[section]\r\nkey=1\r\n", L"sect", L"key", "none"},
        {"blanks around names and value", " [ s ] \r\n  k  =  v w  \r\n", L"s", L"k", "v w"},
        {"tabs", "\t[\ts\t]\t\r\n\tk\t=\tv\t\r\n", L"s", L"k", "v"},
        {"blanks in what is asked for", simple, L" s ", L" k ", "v"},
        {"empty value", "[s]\r\nk=\r\n", L"s", L"k", ""},
        {"blank value", "[s]\r\nk=   \r\n", L"s", L"k", ""},
        {"= in the value", "[s]\r\nk=a=b\r\n", L"s", L"k", "a=b"},
        {"; in the value", "[s]\r\nk=1 ; c\r\n", L"s", L"k", "1 ; c"},
        {"empty key", "[s]\r\n=1\r\n", L"s", L"", "1"},
        {"# is no comment", "[s]\r\n#k=1\r\n", L"s", L"#k", "1"},
        {"comment", "[s]\r\n;k=1\r\nk=2\r\n", L"s", L"k", "2"},
        {"comment asked for", "[s]\r\n;k=1\r\n", L"s", L";k", "none", L"none", 40, kCommentIsKey, "1"},
        {"no =", "[s]\r\nk\r\n", L"s", L"k", "none"},
        {"no =, then with =", "[s]\r\nk\r\nk=2\r\n", L"s", L"k", "2", L"none", 40, kLineIsKey, "none"},
        {"first of two keys", "[s]\r\nk=1\r\nk=2\r\n", L"s", L"k", "1"},
        {"first of two sections", "[s]\r\na=1\r\n[t]\r\n[S]\r\nk=2\r\n", L"s", L"k", "none"},
        {"key of a later section", "[s]\r\na=1\r\n[t]\r\nk=2\r\n", L"s", L"k", "none"},
        {"before the first section", "k=1\r\n[s]\r\n", L"", L"k", "none", L"none", 40, kPreamble, "1"},
        {"section without bracket", "[s\r\nk=1\r\n", L"s", L"k", "none"},
        {"text behind the bracket", "[s] x\r\nk=1\r\n", L"s", L"k", "1"},
        {"last bracket counts", "[s]]\r\nk=1\r\n", L"s]", L"k", "1"},
        {"brackets in brackets", "[[s]]\r\nk=1\r\n", L"[s]", L"k", "1"},
        {"key on the header's line", "[s]k=2\r\n", L"s", L"k", "none"},
        {"LF", "[s]\nk=1\nj=2\n", L"s", L"j", "2"},
        {"CR", "[s]\rk=1\rj=2\r", L"s", L"j", "2"},
        {"CR CR LF", "[s]\r\r\nk=1\r\r\nj=2", L"s", L"j", "2"},
        {"no end of the last line", "[s]\r\nk=1", L"s", L"k", "1"},
        {"ANSI bytes", "[s]\r\nk=\x80\xE4\r\n", L"s", L"k", "<8364><228>"},
        {"UTF-16", Utf16("[s]\r\nk=v\r\n"), L"S", L"K", "v"},
        {"UTF-16 with LF", Utf16("[s]\nk=v\nj=w\n"), L"s", L"j", "w"},
        {"UTF-16 and a lone byte", Utf16("[s]\r\nk=v\r\n") + "x", L"s", L"k", "v"},
        {"UTF-16 without mark", Utf16("[s]\r\nk=v\r\n").substr(2), L"s", L"k", "none"},
        {"mark of UTF-8", "\xEF\xBB\xBF[s]\r\nk=v\r\n", L"s", L"k", "none", L"none", 40, kMarks, "v"},
        {"mark with the high byte first", std::string("\xFE\xFF\0[\0s\0]\0\n\0k\0=\0v", 16), L"s", L"k",
         "none", L"none", 40, kMarks, "v"},
        {"zero in a value", std::string("[s]\r\nk=a\0b\r\nj=2\r\n", 17), L"s", L"k", "a"},
        {"zero in a line before", std::string("[s]\r\nk=a\0b\r\nj=2\r\n", 17), L"s", L"j", "2"},
        {"control character",
         "[s]\r\nk=a\x1A"
         "b\r\n",
         L"s", L"k",
         "a\x1A"
         "b"},
        {"empty file", "", L"s", L"k", "none"},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckRead);
}

TEST_F(ProfileConformance, Quotes)
{
    const ReadCase rows[] = {
        {"double", "[s]\r\nk=\"v\"\r\n", L"s", L"k", "v"},
        {"single", "[s]\r\nk='v'\r\n", L"s", L"k", "v"},
        {"keep blanks", "[s]\r\nk=\" v \"\r\n", L"s", L"k", " v "},
        {"one pair of two", "[s]\r\nk=\"\"v\"\"\r\n", L"s", L"k", "\"v\""},
        {"mixed pairs", "[s]\r\nk=\"'v'\"\r\n", L"s", L"k", "'v'"},
        {"no pair", "[s]\r\nk=\"v'\r\n", L"s", L"k", "\"v'"},
        {"one", "[s]\r\nk=\"\r\n", L"s", L"k", "\""},
        {"empty", "[s]\r\nk=\"\"\r\n", L"s", L"k", ""},
        {"text behind", "[s]\r\nk=\"v\" x\r\n", L"s", L"k", "\"v\" x"},
        {"around a key", "[s]\r\n\"k\"=v\r\n", L"s", L"k", "none"},
        {"around the default", "[s]\r\n", L"s", L"k", "d", L"\"d\" "},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckRead);
}

TEST_F(ProfileConformance, BuffersAndDefaults)
{
    const std::string value = "[s]\r\nk=12345\r\n";
    const ReadCase rows[] = {
        {"fits", value, L"s", L"k", "12345", L"", 6},
        {"cut", value, L"s", L"k", "1234", L"", 5},
        {"two", value, L"s", L"k", "1", L"", 2},
        {"one", value, L"s", L"k", "", L"", 1},
        {"none at all", value, L"s", L"k", "", L"", 0},
        {"quoted and cut", "[s]\r\nk=\"12345\"\r\n", L"s", L"k", "1234", L"", 5},
        {"default cut", value, L"s", L"x", "abc", L"abcdef", 4},
        {"no default", value, L"s", L"x", "", nullptr},
        {"default ends in blanks", value, L"s", L"x", "  d", L"  d   "},
    };
    // Wine cuts a quoted value before it takes the quotes off.
    for (const ReadCase& row : rows)
    {
        if (!(IsWine() && std::strcmp(row.name, "quoted and cut") == 0))
        {
            CheckRead(row);
        }
    }
}

TEST_F(ProfileConformance, Lists)
{
    const std::string two = "[abc]\r\n[def]\r\n";
    const std::string keys = "[s]\r\na=1\r\n b =2\r\nc\r\n;d=1\r\na=2\r\n\r\n=5\r\n[t]\r\n[s]\r\ne=1\r\n";
    const ReadCase rows[] = {
        {"sections", "x=1\r\n[a]\r\n[b ]\r\nk=1\r\n[A]\r\n[]\r\n[c\r\n", nullptr, nullptr, "a|b|A|"},
        {"sections whatever the key", two, nullptr, L"k", "abc|def|"},
        {"no sections", "x=1\r\n", nullptr, nullptr, "", L"none"},
        {"sections fit", two, nullptr, nullptr, "abc|def|", L"", 10},
        {"sections fit exactly", two, nullptr, nullptr, "abc|def|", L"", 9, kExactList, "abc|def"},
        {"sections cut by one", two, nullptr, nullptr, "abc|de", L"", 8},
        {"sections cut at a name", two, nullptr, nullptr, "abc|", L"", 6},
        {"sections cut behind a name", two, nullptr, nullptr, "abc", L"", 5},
        {"sections, three", two, nullptr, nullptr, "a", L"", 3},
        {"sections, two", two, nullptr, nullptr, "", L"", 2},
        {"sections, one", two, nullptr, nullptr, "", L"", 1},
        {"keys", keys, L"s", nullptr, "a|b|a||"},
        {"keys cut", keys, L"s", nullptr, "a|b", L"", 5},
        {"keys of a section without any", keys, L"t", nullptr, "none"},
        {"keys of a missing section", keys, L"u", nullptr, "none"},
        {"keys of UTF-16", Utf16("[s]\r\na=1\r\nb=2\r\n"), L"s", nullptr, "a|b|"},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckRead);
}

TEST_F(ProfileConformance, Numbers)
{
    struct Row
    {
        const char* text;
        UINT expected;
    };
    const Row rows[] = {
        {"0", 0},
        {"42", 42},
        {"-1", 4294967295U},
        {"+1", 1},
        {" 7 ", 7},
        {"\"7\"", 7},
        {"'-5'", 4294967291U},
        {"010", 10},
        {"42A", 42},
        {"B", 0},
        {"1 2", 1},
        {"1.5", 1},
        {"", 99},
        {"\"\"", 99},
        {"-", 0},
        {"--1", 0},
        {"+-1", 0},
        {"+ 1", 0},
        {"2147483648", 2147483648U},
        {"4294967295", 4294967295U},
        {"4294967296", 0},
        {"4294967297", 1},
        {"99999999999999", 276447231U},
        {"-4294967295", 1},
        {"-2147483649", 2147483647U},
        {"0x10", 16},
        {"0xfF", 255},
        {"-0x10", 4294967280U},
        {"0x1FFFFFFFF", 4294967295U},
        {"0X1f", 0},
        {"0x", 0},
        {"0xg", 0},
        {"0b101", 5},
        {"0b2", 0},
        {"0B11", 0},
        {"0o17", 15},
        {"0O17", 0},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.text);
        Put("[s]\r\nk=" + std::string(row.text) + "\r\n");
        EXPECT_EQ(row.expected, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
    }
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"s", L"x", -5, kFile));
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"t", L"k", -5, kFile));
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"s", L"k", -5, L"C:\\missing.ini"));
    EXPECT_EQ(4294967291U, GetPrivateProfileIntW(L"s", L"k", -5, L"C:\\missing\\missing.ini"));
}

struct WriteCase
{
    const char* name;
    std::string before;
    const wchar_t* section;
    const wchar_t* key;
    const wchar_t* value;
    std::string after;
    Why why = Same;
    std::string onWine = {};
};

void CheckWrite(const WriteCase& row)
{
    SCOPED_TRACE(row.name);
    Put(row.before);
    EXPECT_TRUE(WritePrivateProfileStringW(row.section, row.key, row.value, kFile));
    EXPECT_EQ(row.why != Same && IsWine() ? row.onWine : row.after, Get());
}

TEST_F(ProfileConformance, Replacing)
{
    const std::string two = "[s]\r\nk=1\r\nj=2\r\n";
    const WriteCase rows[] = {
        {"value", two, L"s", L"k", L"new", "[s]\r\nk=new\r\nj=2\r\n"},
        {"longer than the file", "[s]\r\nk=1\r\n", L"S", L"K", L"a value longer than the file",
         "[s]\r\nk=a value longer than the file\r\n"},
        {"the same", two, L"s", L"k", L"1", two},
        {"by an empty one", two, L"s", L"k", L"", "[s]\r\nk=\r\nj=2\r\n"},
        {"of an empty one", "[s]\r\nk=\r\n", L"s", L"k", L"v", "[s]\r\nk=v\r\n"},
        {"quotes are written", two, L"s", L"k", L"\"q\"", "[s]\r\nk=\"q\"\r\nj=2\r\n"},
        {"blanks are written", two, L"s", L"k", L" v ", "[s]\r\nk= v \r\nj=2\r\n", kTrims,
         "[s]\r\nk=v \r\nj=2\r\n"},
        {"spelling stays", "[ S ]\r\n  K  =  1  \r\nj=2\r\n", L"s", L"k", L"new",
         "[ S ]\r\n  K  =new\r\nj=2\r\n", kRewrites, "[S]\r\nK=new\r\nj=2\r\n"},
        {"first of two keys", "[s]\r\nk=1\r\nk=2\r\n", L"s", L"k", L"v", "[s]\r\nk=v\r\nk=2\r\n"},
        {"first of two sections", "[s]\r\nk=1\r\n[s]\r\nk=2\r\n", L"s", L"k", L"v",
         "[s]\r\nk=v\r\n[s]\r\nk=2\r\n"},
        {"LF stays", "[s]\nk=1\nj=2\n", L"s", L"k", L"new", "[s]\nk=new\nj=2\n", kRewrites,
         "[s]\r\nk=new\r\nj=2\r\n"},
        {"CR stays", "[s]\rk=1\rj=2\r", L"s", L"k", L"new", "[s]\rk=new\rj=2\r", kRewrites,
         "[s]\r\nk=new\r\nj=2\r\n"},
        {"last line without end", "[s]\r\nk=1", L"s", L"k", L"new", "[s]\r\nk=new", kRewrites,
         "[s]\r\nk=new\r\n"},
        {"everything else stays", "pre\r\n\r\n; hi\r\n[s]\r\n;c\r\n\r\nk=1\r\nword\r\n\r\n[t]\r\n", L"s",
         L"k", L"v", "pre\r\n\r\n; hi\r\n[s]\r\n;c\r\n\r\nk=v\r\nword\r\n\r\n[t]\r\n", kRewrites,
         "pre\r\n; hi\r\n[s]\r\n;c\r\nk=v\r\nword\r\n[t]\r\n"},
        {"what ANSI lacks", two, L"s", L"k", L"\x00E4\x20AC\x4E00", "[s]\r\nk=\xE4\x80?\r\nj=2\r\n"},
        {"UTF-16 stays", Utf16("[s]\r\nk=1\r\n"), L"s", L"k", L"\x4E00",
         Utf16("[s]\r\nk=") + std::string("\x00\x4E", 2) + Utf16("\r\n").substr(2)},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckWrite);
}

TEST_F(ProfileConformance, Adding)
{
    const std::string one = "[s]\r\nk=1\r\n";
    const WriteCase rows[] = {
        {"key", one, L"s", L"j", L"v", "[s]\r\nk=1\r\nj=v\r\n"},
        {"key to a section in the middle", "[s]\r\nk=1\r\n[t]\r\n", L"s", L"j", L"v",
         "[s]\r\nk=1\r\nj=v\r\n[t]\r\n"},
        {"key to an empty section", "[s]\r\n[t]\r\n", L"s", L"j", L"v", "[s]\r\nj=v\r\n[t]\r\n"},
        {"key before blank lines", "[s]\r\nk=1\r\n\r\n\r\n[t]\r\n", L"s", L"j", L"v",
         "[s]\r\nk=1\r\nj=v\r\n\r\n\r\n[t]\r\n", kRewrites, "[s]\r\nk=1\r\nj=v\r\n[t]\r\n"},
        {"key behind a comment", "[s]\r\nk=1\r\n;c\r\n[t]\r\n", L"s", L"j", L"v",
         "[s]\r\nk=1\r\n;c\r\nj=v\r\n[t]\r\n"},
        {"key to the first of two sections", "[s]\r\nk=1\r\n[t]\r\n[s]\r\n", L"s", L"j", L"v",
         "[s]\r\nk=1\r\nj=v\r\n[t]\r\n[s]\r\n"},
        {"key behind a line without end", "[s]\r\nk=1", L"s", L"j", L"v", "[s]\r\nk=1\r\nj=v\r\n"},
        {"key among LF", "[s]\nk=1\n[t]\n", L"s", L"j", L"v", "[s]\nk=1\nj=v\r\n[t]\n", kRewrites,
         "[s]\r\nk=1\r\nj=v\r\n[t]\r\n"},
        {"key that is a line without =", "[s]\r\nk\r\n", L"s", L"k", L"v", "[s]\r\nk\r\nk=v\r\n", kLineIsKey,
         "[s]\r\nk=v\r\n"},
        {"empty value", one, L"s", L"j", L"", "[s]\r\nk=1\r\nj=\r\n"},
        {"empty key", one, L"s", L"", L"v", "[s]\r\nk=1\r\n=v\r\n"},
        {"blanks before a key", one, L"s", L"  j", L"v", "[s]\r\nk=1\r\nj=v\r\n"},
        {"section", one, L"t", L"j", L"v", "[s]\r\nk=1\r\n[t]\r\nj=v\r\n"},
        {"section to an empty file", "", L"t", L"j", L"v", "[t]\r\nj=v\r\n"},
        {"section behind a line without end", "[s]\r\nk=1", L"t", L"j", L"v", "[s]\r\nk=1\r\n[t]\r\nj=v\r\n"},
        {"section behind blank lines", "[s]\r\n\r\n", L"t", L"j", L"v", "[s]\r\n\r\n[t]\r\nj=v\r\n",
         kRewrites, "[s]\r\n[t]\r\nj=v\r\n"},
        {"blanks before a section", one, L"  t", L"j", L"v", "[s]\r\nk=1\r\n[t]\r\nj=v\r\n"},
        {"section of no name", "k=1\r\n[s]\r\n", L"", L"j", L"v", "k=1\r\n[s]\r\n[]\r\nj=v\r\n", kPreamble,
         "k=1\r\nj=v\r\n[s]\r\n"},
        {"to UTF-16", Utf16("[s]\r\nk=1\r\n"), L"t", L"j", L"v", Utf16("[s]\r\nk=1\r\n[t]\r\nj=v\r\n")},
        {"to UTF-16 that is nothing but the mark", Utf16(""), L"t", L"j", L"v", Utf16("[t]\r\nj=v\r\n")},
        {"behind the mark of UTF-8", "\xEF\xBB\xBF[s]\r\n", L"t", L"j", L"v",
         "\xEF\xBB\xBF[s]\r\n[t]\r\nj=v\r\n"},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckWrite);
}

TEST_F(ProfileConformance, Removing)
{
    const std::string two = "[s]\r\nk=1\r\nj=2\r\n";
    const WriteCase rows[] = {
        {"key", two, L"s", L"k", nullptr, "[s]\r\nj=2\r\n"},
        {"key by another spelling", two, L"S", L"K", nullptr, "[s]\r\nj=2\r\n"},
        {"key with blanks around", two, L" s ", L" k ", nullptr, "[s]\r\nj=2\r\n", kTrims, two},
        {"last key, header stays", "[s]\r\nk=1\r\n[t]\r\n", L"s", L"k", nullptr, "[s]\r\n[t]\r\n"},
        {"first of two keys", "[s]\r\nk=1\r\nk=2\r\n", L"s", L"k", nullptr, "[s]\r\nk=2\r\n"},
        {"missing key", two, L"s", L"x", nullptr, two},
        {"key of a missing section", two, L"x", L"k", nullptr, two},
        {"line without end", "[s]\r\nk=1\r\nj=2", L"s", L"j", nullptr, "[s]\r\nk=1\r\n"},
        {"section", "[s]\r\nk=1\r\n;c\r\n[t]\r\nx=1\r\n", L"S", nullptr, nullptr, "[t]\r\nx=1\r\n"},
        {"section whatever the value", "[s]\r\nk=1\r\n[t]\r\n", L"s", nullptr, L"v", "[t]\r\n"},
        {"last section", "[t]\r\n[s]\r\nk=1\r\n", L"s", nullptr, nullptr, "[t]\r\n"},
        {"section with blank lines", "[t]\r\n\r\n[s]\r\nk=1\r\n\r\n[u]\r\n", L"s", nullptr, nullptr,
         "[t]\r\n\r\n[u]\r\n", kRewrites, "[t]\r\n[u]\r\n"},
        {"first of two sections", "[s]\r\nk=1\r\n[t]\r\n[s]\r\nj=2\r\n", L"s", nullptr, nullptr,
         "[t]\r\n[s]\r\nj=2\r\n"},
        {"missing section", two, L"x", nullptr, nullptr, two},
        {"section of no name", "k=1\r\n[s]\r\n", L"", nullptr, nullptr, "k=1\r\n[s]\r\n", kPreamble,
         "[s]\r\n"},
        {"key of UTF-16", Utf16("[s]\r\nk=1\r\nj=2\r\n"), L"s", L"k", nullptr, Utf16("[s]\r\nj=2\r\n")},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckWrite);
}

struct RefusedWrite
{
    const char* name;
    const wchar_t* section;
    const wchar_t* key;
    const wchar_t* file;
    DWORD error;
};

TEST_F(ProfileConformance, RefusedWritesTellWhy)
{
    const std::string before = "[s]\r\nk=1\r\n";
    Put(before);
    const RefusedWrite rows[] = {
        {"no section", nullptr, L"k", kFile, ERROR_FILE_NOT_FOUND},
        {"empty file name", L"s", L"k", L"", ERROR_ACCESS_DENIED},
        {"missing folder", L"s", L"k", L"C:\\missing\\a.ini", ERROR_PATH_NOT_FOUND},
        {"a folder", L"s", L"k", L"C:\\WINDOWS", ERROR_ACCESS_DENIED},
        {"a name that can't be", L"s", L"k", L"C:\\a?b.ini", ERROR_INVALID_NAME},
    };
    for (const RefusedWrite& row : rows)
    {
        SCOPED_TRACE(row.name);
        SetLastError(kUntouched);
        EXPECT_FALSE(WritePrivateProfileStringW(row.section, row.key, L"v", row.file));
        EXPECT_EQ(row.error, GetLastError());
    }
    EXPECT_EQ(before, Get());
}

TEST_F(ProfileConformance, MissingFiles)
{
    wchar_t buffer[8];
    for (const auto& [file, error] : {std::pair(L"C:\\missing.ini", ERROR_FILE_NOT_FOUND),
                                      std::pair(L"C:\\missing\\missing.ini", ERROR_PATH_NOT_FOUND)})
    {
        SetLastError(kUntouched);
        EXPECT_EQ(4U, GetPrivateProfileStringW(L"s", L"k", L"none", buffer, 8, file));
        EXPECT_EQ("none|", Shown(buffer, 5));
        EXPECT_EQ(static_cast<DWORD>(error), GetLastError());
    }

    DeleteFileW(kFile);
    EXPECT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"\x00E4", kFile));
    EXPECT_EQ("[s]\r\nk=\xE4\r\n", Get());
    const std::string made = IsWine() ? "no file" : ""; // kNoFileMade
    for (const wchar_t* key : {L"k", static_cast<const wchar_t*>(nullptr)})
    {
        ASSERT_TRUE(DeleteFileW(kFile) || IsWine());
        EXPECT_TRUE(WritePrivateProfileStringW(L"", key, nullptr, kFile));
        EXPECT_EQ(made, Get());
    }
}

TEST_F(ProfileConformance, BareNameMeansTheWindowsFolder)
{
    const wchar_t* const whole = L"C:\\WINDOWS\\conformance-bare.ini";
    EXPECT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"7", L"conformance-bare.ini"));
    EXPECT_EQ(7U, GetPrivateProfileIntW(L"s", L"k", 0, whole));
    EXPECT_EQ(7U, GetPrivateProfileIntW(L"s", L"k", 0, L"CONFORMANCE-BARE.INI"));
    EXPECT_TRUE(DeleteFileW(whole));
}

TEST_F(ProfileConformance, SpellingsOfAPath)
{
    Put("[s]\r\nk=7\r\n");
    for (const wchar_t* spelling :
         {L"c:\\CONFORMANCE.INI", L"C:/conformance.ini", L"C:\\\\conformance.ini", L"C:\\.\\conformance.ini",
          L"C:\\WINDOWS\\..\\conformance.ini", L"C:\\..\\conformance.ini", L"C:\\conformance.ini. "})
    {
        EXPECT_EQ(7U, GetPrivateProfileIntW(L"s", L"k", 0, spelling)) << Shown(spelling, 20);
    }
}

TEST_F(ProfileConformance, ReadOnlyFileIsNotWritten)
{
    const std::string before = "[s]\r\nk=1\r\n";
    Put(before);
    ASSERT_TRUE(SetFileAttributesW(kFile, FILE_ATTRIBUTE_READONLY));
    SetLastError(kUntouched);
    const BOOL written = WritePrivateProfileStringW(L"s", L"k", L"v", kFile);
    const DWORD error = GetLastError();
    EXPECT_TRUE(SetFileAttributesW(kFile, FILE_ATTRIBUTE_NORMAL));
    if (!IsWine()) // kSuperuser
    {
        EXPECT_FALSE(written);
        EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), error);
        EXPECT_EQ(before, Get());
    }
}

TEST_F(ProfileConformance, HeldFiles)
{
    struct Row
    {
        const char* name;
        DWORD access;
        DWORD share;
        UINT read;
        bool written;
    };
    const Row rows[] = {
        {"reader that shares nothing", GENERIC_READ, 0, 99, false},
        {"reader that shares reading", GENERIC_READ, FILE_SHARE_READ, 1, false},
        {"reader that shares both", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, 1, true},
        {"writer that shares nothing", GENERIC_WRITE, 0, 99, false},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        Put("[s]\r\nk=1\r\n");
        const HANDLE file =
            CreateFileW(kFile, row.access, row.share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        EXPECT_EQ(row.read, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
        SetLastError(kUntouched);
        EXPECT_EQ(row.written, WritePrivateProfileStringW(L"s", L"k", L"2", kFile) != FALSE);
        EXPECT_TRUE(row.written || GetLastError() == ERROR_SHARING_VIOLATION);
        EXPECT_TRUE(CloseHandle(file));
        EXPECT_EQ(row.written ? 2U : 1U, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
    }
}

// The file is still a database after a thousand changes: each key has its last value.
TEST_F(ProfileConformance, ManyKeysAndSections)
{
    Put("; head\r\n");
    for (int number = 0; number < 200; ++number)
    {
        const wchar_t section[] = {L's', static_cast<wchar_t>(L'0' + number % 5), 0};
        const wchar_t key[] = {L'k', static_cast<wchar_t>(L'A' + number % 20), 0};
        const wchar_t value[] = {static_cast<wchar_t>(L'0' + number / 20), 0};
        ASSERT_TRUE(WritePrivateProfileStringW(section, key, value, kFile));
    }
    wchar_t list[128];
    EXPECT_EQ(15U, GetPrivateProfileStringW(nullptr, nullptr, L"", list, 128, kFile));
    EXPECT_EQ("s0|s1|s2|s3|s4|", Shown(list, 15));
    EXPECT_EQ(12U, GetPrivateProfileStringW(L"s3", nullptr, L"", list, 128, kFile));
    EXPECT_EQ("kD|kI|kN|kS|", Shown(list, 12));
    EXPECT_EQ(9U, GetPrivateProfileIntW(L"s3", L"kN", 99, kFile));
}

} // namespace
