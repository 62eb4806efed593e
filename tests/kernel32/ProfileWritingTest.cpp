// kernel32/ProfileWritingTest.cpp
//
// What the profile functions make of every kind of file when they write, in plain Win32: the simulated
// platform and Windows itself are held to the same tables.

#include "kernel32/OwnedHandle.h"
#include "kernel32/ProfileConformance.h"
#include "support/LastError.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace
{

using namespace profile_conformance;
using namespace std::string_literals;

struct WriteCase
{
    const char* name;
    std::string before;
    const wchar_t* section;
    const wchar_t* key;
    const wchar_t* value;
    std::string expected;
    const char* onWine = nullptr;
};

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

void CheckWrite(const WriteCase& row)
{
    SCOPED_TRACE(row.name);
    Put(row.before);
    EXPECT_TRUE(WritePrivateProfileStringW(row.section, row.key, row.value, kFile));
    EXPECT_EQ(Ansi(Expected(row)), Get());
}

TEST_F(ProfileConformance, Replacing)
{
    const std::string two = "[s]/k=1/j=2/";
    const std::string all = "pre//; hi/[s]/;c//k=1/word//[t]/";
    const std::string changed = "pre//; hi/[s]/;c//k=v/word//[t]/";
    const std::string wide = Utf16("[s]/k=") + "\x00\x4E"s + Utf16("/").substr(2);
    const WriteCase rows[] = {
        {"value", two, L"s", L"k", L"new", "[s]/k=new/j=2/"},
        {"longer than the file", "[s]/k=1/", L"S", L"K", L"longer than the file",
         "[s]/k=longer than the file/"},
        {"by an empty one", two, L"s", L"k", L"", "[s]/k=/j=2/"},
        {"quotes are written", two, L"s", L"k", L"\"q\"", "[s]/k=\"q\"/j=2/"},
        {"blanks are written", two, L"s", L"k", L" v ", "[s]/k= v /j=2/", "[s]/k=v /j=2/"},
        {"spelling stays", "[ S ]/  K  =  1  /", L"s", L"k", L"new", "[ S ]/  K  =new/", "[S]/K=new/"},
        {"first of two keys", "[s]/k=1/k=2/", L"s", L"k", L"v", "[s]/k=v/k=2/"},
        {"first of two sections", "[s]/k=1/[s]/k=2/", L"s", L"k", L"v", "[s]/k=v/[s]/k=2/"},
        {"LF stays", "[s]\nk=1\nj=2\n", L"s", L"k", L"new", "[s]\nk=new\nj=2\n", "[s]/k=new/j=2/"},
        {"CR stays", "[s]\rk=1\rj=2\r", L"s", L"k", L"new", "[s]\rk=new\rj=2\r", "[s]/k=new/j=2/"},
        {"last line without end", "[s]/k=1", L"s", L"k", L"new", "[s]/k=new", "[s]/k=new/"},
        {"everything else stays", all, L"s", L"k", L"v", changed, "pre/; hi/[s]/;c/k=v/word/[t]/"},
        {"what ANSI lacks", two, L"s", L"k", L"\x00E4\x20AC\x4E00", "[s]/k=\xE4\x80?/j=2/"},
        {"UTF-16 stays", Utf16("[s]/k=1/"), L"s", L"k", L"\x4E00", wide},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckWrite);
}

TEST_F(ProfileConformance, Adding)
{
    const std::string one = "[s]/k=1/";
    const WriteCase rows[] = {
        {"key", one, L"s", L"j", L"v", "[s]/k=1/j=v/"},
        {"key to a section in the middle", "[s]/k=1/[t]/", L"s", L"j", L"v", "[s]/k=1/j=v/[t]/"},
        {"key to an empty section", "[s]/[t]/", L"s", L"j", L"v", "[s]/j=v/[t]/"},
        {"key before blank lines", "[s]/k=1///[t]/", L"s", L"j", L"v", "[s]/k=1/j=v///[t]/",
         "[s]/k=1/j=v/[t]/"},
        {"key to the first of two sections", "[s]/k=1/[t]/[s]/", L"s", L"j", L"v", "[s]/k=1/j=v/[t]/[s]/"},
        {"key behind a line without end", "[s]/k=1", L"s", L"j", L"v", "[s]/k=1/j=v/"},
        {"key among LF", "[s]\nk=1\n[t]\n", L"s", L"j", L"v", "[s]\nk=1\nj=v/[t]\n", "[s]/k=1/j=v/[t]/"},
        {"empty value", one, L"s", L"j", L"", "[s]/k=1/j=/"},
        {"blanks before a key", one, L"s", L"  j", L"v", "[s]/k=1/j=v/"},
        {"section", one, L"t", L"j", L"v", "[s]/k=1/[t]/j=v/"},
        {"section to an empty file", "", L"t", L"j", L"v", "[t]/j=v/"},
        {"section behind blank lines", "[s]//", L"t", L"j", L"v", "[s]//[t]/j=v/", "[s]/[t]/j=v/"},
        {"blanks before a section", one, L"  t", L"j", L"v", "[s]/k=1/[t]/j=v/"},
        {"to UTF-16", Utf16("[s]/k=1/"), L"t", L"j", L"v", Utf16("[s]/k=1/[t]/j=v/")},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckWrite);
}

TEST_F(ProfileConformance, Removing)
{
    const std::string two = "[s]/k=1/j=2/";
    const WriteCase rows[] = {
        {"key", two, L"s", L"k", nullptr, "[s]/j=2/"},
        {"key with blanks around", two, L" s ", L" k ", nullptr, "[s]/j=2/", "[s]/k=1/j=2/"},
        {"last key, header stays", "[s]/k=1/[t]/", L"s", L"k", nullptr, "[s]/[t]/"},
        {"missing key", two, L"s", L"x", nullptr, two},
        {"key of a missing section", two, L"x", L"k", nullptr, two},
        {"section", "[s]/k=1/;c/[t]/x=1/", L"S", nullptr, nullptr, "[t]/x=1/"},
        {"section with blank lines", "[t]//[s]/k=1//[u]/", L"s", nullptr, nullptr, "[t]//[u]/", "[t]/[u]/"},
        {"first of two keys", "[s]/k=1/k=2/", L"s", L"k", nullptr, "[s]/k=2/"},
        {"first of two sections", "[s]/k=1/[t]/[s]/j=2/", L"s", nullptr, nullptr, "[t]/[s]/j=2/"},
        {"missing section", two, L"x", nullptr, nullptr, two},
        {"key of UTF-16", Utf16("[s]/k=1/j=2/"), L"s", L"k", nullptr, Utf16("[s]/j=2/")},
    };
    std::for_each(std::begin(rows), std::end(rows), CheckWrite);
}

TEST_F(ProfileConformance, RefusedWritesTellWhy)
{
    using Text = const wchar_t*;
    Put("[s]/k=1/");
    const std::tuple<const char*, Text, Text, long> rows[] = {
        {"no section", nullptr, kFile, ERROR_FILE_NOT_FOUND},
        {"empty file name", L"s", L"", ERROR_ACCESS_DENIED},
        {"missing folder", L"s", L"C:\\missing\\a.ini", ERROR_PATH_NOT_FOUND},
        {"a folder", L"s", L"C:\\WINDOWS", ERROR_ACCESS_DENIED},
        {"a name that can't be", L"s", L"C:\\a?b.ini", ERROR_INVALID_NAME},
    };
    for (const auto& [name, section, file, error] : rows)
    {
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(error, ErrorOf(WritePrivateProfileStringW(section, L"k", L"v", file))) << name;
    }
    EXPECT_EQ(Ansi("[s]/k=1/"), Get());
}

TEST_F(ProfileConformance, AMissingFileIsMade)
{
    DeleteFileW(kFile);
    EXPECT_TRUE(WritePrivateProfileStringW(L"s", L"k", L"\x00E4", kFile));
    EXPECT_EQ(Ansi("[s]/k=\xE4/"), Get());
    for (const wchar_t* key : {L"k", static_cast<const wchar_t*>(nullptr)})
    {
        ASSERT_TRUE(DeleteFileW(kFile) || IsWine());
        EXPECT_TRUE(WritePrivateProfileStringW(L"", key, nullptr, kFile));
        EXPECT_EQ(IsWine() ? "no file" : "", Get());
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

TEST_F(ProfileConformance, HeldFiles)
{
    const std::tuple<const char*, DWORD, DWORD, UINT, bool> rows[] = {
        {"reader that shares nothing", GENERIC_READ, 0, 99, false},
        {"reader that shares reading", GENERIC_READ, FILE_SHARE_READ, 1, false},
        {"reader that shares both", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, 1, true},
        {"writer that shares nothing", GENERIC_WRITE, 0, 99, false},
    };
    for (const auto& [name, access, share, read, written] : rows)
    {
        SCOPED_TRACE(name);
        Put("[s]/k=1/");
        OwnedHandle file(
            CreateFileW(kFile, access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_EQ(read, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(written ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION,
                  ErrorOf(WritePrivateProfileStringW(L"s", L"k", L"2", kFile)));
        file.reset();
        EXPECT_EQ(written ? 2U : 1U, GetPrivateProfileIntW(L"s", L"k", 99, kFile));
    }
}

} // namespace
