// tests/advapi32/RegistryConformanceTest.cpp
//
// What the registry functions do, in plain Win32 below one key of the running user: the simulated platform
// and Windows itself are held to the same tables.
//
// Wine, on which the Windows build runs in the tests, differs where a row says what it does there:
//  - it opens a key for no access at all, and takes names of 256 characters;
//  - it calls a key new that is created by the empty path;
//  - it orders names by their small letters, so that "_" comes before them;
//  - it wants no right for RegQueryInfoKeyW.

#include "RegistryScript.h"
#include "kernel32/OwnedHandle.h"
#include "support/Wine.h"

#include <cstring>
#include <iterator>
#include <tuple>
#include <utility>

using namespace registry_script;

namespace
{

constexpr DWORD kLastError = 4711;

class RegistryConformance : public testing::Test
{
protected:
    void SetUp() override
    {
        RemoveTree(HKEY_CURRENT_USER, kScratch);
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, kScratch, 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, &m_key, nullptr));
    }

    void TearDown() override
    {
        RegCloseKey(m_key);
        RemoveTree(HKEY_CURRENT_USER, kScratch);
    }

    /// Empties the key, for the next row of a table.
    void Refresh()
    {
        TearDown();
        SetUp();
    }

    HKEY m_key = nullptr;
};

struct Case
{
    const char* name;
    std::string script;
    const char* expected;
    const char* onWine = nullptr;
};

const std::string kLongestName(255, 'n');

// The registry functions answer their error and leave the last error alone, so each row looks at it too.
TEST_F(RegistryConformance, Scripts)
{
    const Case rows[] = {
        // Names of values
        {"default by null", "-set null x; get null; get ''", "x x"},
        {"default by the empty name", "-set '' x; get null", "x"},
        {"no default", "get null", "2"},
        {"no value", "get absent", "2"},
        {"case doesn't matter", "-set NaMe x; get nAmE", "x"},
        {"the first spelling stays", "-set NaMe x; -set name y; value 0 9 9; get NAME", "NaMe:4:1:4 y"},
        {"value and key of one name", "-set same x; make same; get same", "new x"},
        {"a long name of a value",
         "set " + kLongestName.substr(0, 200) + " x; get " + kLongestName.substr(0, 200), "0 x"},
        // Paths
        {"child", "-make Child; open Child", "0"},
        {"case of a path", "-make Child\\Grand; open cHILD\\gRAND", "0"},
        {"backslash at the end", "-make Child; open Child\\", "0"},
        {"two at the end", "-make Child; open Child\\\\", "0"},
        {"doubled inside", "-make Child\\Grand; open Child\\\\Grand", "0"},
        {"backslash in front", "-make Child; open \\Child", "161"},
        {"slash is a character", "-make a/b; open a/b; open a\\b", "0 2"},
        {"missing", "open Missing", "2"},
        {"missing in between", "open Missing\\Child", "2"},
        {"below a value", "-set v x; open v; open v\\w", "2 2"},
        {"null opens anew", "open null", "0"},
        {"empty opens anew", "open ''", "0"},
        {"dots are names", "open .; open ..\\PmConformance; make ..; open ..", "2 2 new 0"},
        {"percent sign and equal sign", "make %3D; make =; keys", "new new %3D = 259"},
        {"longest name", "make " + kLongestName + "; open " + kLongestName, "new 0"},
        {"too long a name", "make n" + kLongestName, "87", "new"},
        {"simply", "-make Child; opensimply child", "0writable"},
        {"simply by null", "opensimply null; opensimply ''", "0same 0same"},
        {"simply missing", "opensimply Missing", "2"},
        // Creating
        {"new and old", "make a; make A", "new old"},
        {"with all on the way", "make a\\b\\c; make a\\b; open a", "new old 0"},
        {"created with a backslash at the end", "make a\\; open a", "new 0"},
        {"created by the empty path", "make ''", "old", "new"},
        {"spelled as created", "-make AbC; -make aBc; key 0 9", "AbC:3"},
        // Access
        {"access to nothing", "-make Child; open Child none", "5", "0"},
        {"all that may be had", "-make Child; hold Child maximum; @set v x; @make n", "0 0 new"},
        // Enumerating
        {"no keys", "keys", "259"},
        {"in the order of names", "-make b; -make 10; -make A; -make 2; -make a_; -make aB; -make C; keys",
         "10 2 A aB a_ b C 259", "10 2 A a_ aB b C 259"},
        {"values are no keys", "-set v x; -make k; keys", "k 259"},
        {"just room for a key's name", "-make abc; key 0 4; keysimply 0 4", "abc:3 abc"},
        {"no room for it", "-make abc; key 0 3; keysimply 0 3", "234 234"},
        {"behind the last key", "-make abc; key 1 9; keysimply 1 9", "259 259"},
        {"name, type and size of a value", "-set val xy; value 0 4 6", "val:3:1:6"},
        {"no room for a value's name", "-set val xy; value 0 3 6", "234"},
        {"no room for its data", "-set val xy; value 0 4 5", "234:size"},
        {"behind the last value", "-set val xy; value 1 9 9", "259"},
        {"sums", "-make abc; -make abcde; -set val xy; -set v xyz; sums", "2:5:2:3:8"},
        {"sums of nothing", "sums", "0:0:0:0:0"},
        // Deleting
        {"a key", "-make Child; delete cHILD; open Child", "0 2"},
        {"with its values",
         "-make Child; -hold Child all; -@set v x; -close; delete Child\\; -make Child; "
         "hold Child read; @get v",
         "0 0 2"},
        {"a key with subkeys", "-make Child\\Grand; delete Child; open Child\\Grand", "5 0"},
        {"by a path", "-make Child\\Grand; delete Child\\Grand; open Child", "0 0"},
        {"a missing key", "delete Child; delete Child\\Grand", "2 2"},
        {"no name", "delete null", "87"},
        {"itself by the empty path", "-make Child; -hold Child all; @delete ''; open Child", "0 2"},
        {"what is open",
         "-make Child; -hold Child all; delete Child; @set v x; @make Grand; @get v; @keys; "
         "@drop v; @value 0 9 9; @open Grand; @delete Grand",
         "0 1018 1018 1018 1018 1018 1018 1018 1018"},
        {"what is open, and a new one",
         "-make Child; -hold Child all; -delete Child; -make Child; @set v x; @get v", "1018 1018"},
        {"a value", "-set Val x; drop vAL; drop Val", "0 2"},
        {"the default value", "-set null x; drop null; drop ''", "0 2"},
        // Handles
        {"closed twice", "-hold null read; close; close", "0 6"},
        {"used when closed",
         "-hold null all; -close; @set v x; @get v; @open v; @make v; @keys; @delete v; @drop v",
         "6 6 6 6 6 6 6"},
    };
    for (const Case& row : rows)
    {
        SCOPED_TRACE(row.name);
        Refresh();
        SetLastError(kLastError);
        const std::string outcome = Play(m_key, row.script);
        const DWORD error = GetLastError();
        EXPECT_EQ(row.onWine != nullptr && IsWine() ? row.onWine : row.expected, outcome);
        EXPECT_EQ(kLastError, error);
    }
}

// What a handle may do depends on the access that was asked for at opening, but the making and deleting of
// subkeys doesn't.
TEST_F(RegistryConformance, AccessRights)
{
    // get, value, set, drop, keys, make, delete, sums
    const std::pair<std::string, std::string> rows[] = {
        {"all", "x v:1:1:4 0 0 Grand 259 new 0 1:3:0:0:0"},
        {"read", "x v:1:1:4 5 5 Grand 259 new 0 1:3:1:1:4"},
        {"write", "5 5 0 0 5 new 0 5"},
        {"query", "x v:1:1:4 5 5 5 new 0 1:3:1:1:4"},
        {"set", "5 5 0 0 5 new 0 5"},
        {"enumerate", "5 5 5 5 Grand 259 new 0 5"},
        {"create", "5 5 5 5 5 new 0 5"},
        {"generic-read", "x v:1:1:4 5 5 Grand 259 new 0 1:3:1:1:4"},
        {"generic-write", "5 5 0 0 5 new 0 5"},
        {"generic-all", "x v:1:1:4 0 0 Grand 259 new 0 1:3:0:0:0"},
    };
    for (const auto& [access, told] : rows)
    {
        Refresh();
        const std::string given = Play(
            m_key, "-make Child\\Grand; -hold Child all; -@set v x; -close; -hold Child " + access +
                       "; @get v; @value 0 9 9; @set v y; @drop v; @keys; @make New; @delete Grand; @sums");
        const auto comparable = [](const std::string& all)
        { return all.substr(0, IsWine() ? all.rfind(' ') : all.size()); };
        EXPECT_EQ(comparable(told), comparable(given)) << access;
    }
}

// Type and size come out as stored, the size also when the room is too small; nothing is written behind it.
TEST_F(RegistryConformance, ValuesComeOutAsTheyWentIn)
{
    const std::string text("a\0b\0\0\0", 6);
    const std::string open("a\0b\0", 4);
    const std::string end("\0\0", 2);
    const std::tuple<const char*, DWORD, std::string, DWORD, LONG, std::string> rows[] = {
        {"number", REG_DWORD, std::string("\x2A\0\0\0", 4), 4, 0, std::string("\x2A\0\0\0", 4)},
        {"number with much room", REG_DWORD, "\x01\x02\x03\x04", 40, 0, "\x01\x02\x03\x04"},
        {"number without room", REG_DWORD, "\x01\x02\x03\x04", 3, ERROR_MORE_DATA, ""},
        {"number of three bytes", REG_DWORD, "\x01\x02\x03", 8, 0, "\x01\x02\x03"},
        {"number of eight bytes", REG_QWORD, "12345678", 8, 0, "12345678"},
        {"no bytes", REG_BINARY, "", 8, 0, ""},
        {"no bytes and no room", REG_BINARY, "", 0, 0, ""},
        {"bytes", REG_BINARY, std::string("\0\xFF\n\r\0", 5), 5, 0, std::string("\0\xFF\n\r\0", 5)},
        {"bytes without room", REG_BINARY, "12345", 4, ERROR_MORE_DATA, ""},
        {"bytes and room for none", REG_BINARY, "12345", 0, ERROR_MORE_DATA, ""},
        {"text", REG_SZ, text, 6, 0, text},
        {"text without room for its end", REG_SZ, text, 4, ERROR_MORE_DATA, ""},
        {"empty text", REG_SZ, end, 8, 0, end},
        {"text of no bytes", REG_SZ, "", 8, 0, ""},
        {"text without end gets one", REG_SZ, open, 6, 0, open + end},
        {"unless there is no room", REG_SZ, open, 5, 0, open},
        {"which is no error", REG_SZ, open, 4, 0, open},
        {"two ends", REG_SZ, text + end, 8, 0, text + end},
        {"zero inside", REG_SZ, "a" + end + text, 40, 0, "a" + end + text},
        {"odd number of bytes", REG_SZ, "abc", 3, 0, "abc"},
        {"lone surrogate", REG_SZ, std::string("\x00\xD8\0\0", 4), 4, 0, std::string("\x00\xD8\0\0", 4)},
        {"line end", REG_SZ, std::string("a\0\n\0\0\0", 6), 6, 0, std::string("a\0\n\0\0\0", 6)},
        {"text with a variable", REG_EXPAND_SZ, text, 6, 0, text},
        {"list of texts", REG_MULTI_SZ, text + text + end, 40, 0, text + text + end},
        {"no type", REG_NONE, "xyz", 8, 0, "xyz"},
        {"a type of one's own", 0x12345, "xyz", 8, 0, "xyz"},
    };
    for (const auto& [name, givenType, stored, room, status, read] : rows)
    {
        SCOPED_TRACE(name);
        const auto size = static_cast<DWORD>(stored.size());
        const std::string behind = stored + "####"; // Windows adds an end that lies behind the given bytes
        ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(m_key, L"v", 0, givenType,
                                                reinterpret_cast<const BYTE*>(behind.data()), size));
        char data[48];
        std::memset(data, '#', sizeof data);
        DWORD type = 0;
        DWORD found = room;
        EXPECT_EQ(status,
                  RegQueryValueExW(m_key, L"v", nullptr, &type, reinterpret_cast<BYTE*>(data), &found));
        EXPECT_EQ(givenType, type);
        EXPECT_EQ(size, found);
        EXPECT_EQ(read, std::string(data, read.size()));
        EXPECT_EQ(std::string(sizeof data - room, '#'), std::string(data + room, sizeof data - room));
        EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"v", nullptr, nullptr, nullptr, &found));
        EXPECT_EQ(size, found);
    }
}

TEST_F(RegistryConformance, PointersThatMayBeNullAndHandlesThatAreNoKeys)
{
    Play(m_key, "-set v x; -make Child");
    BYTE data[8] = {};
    wchar_t name[8] = {};
    wchar_t keyClass[8] = {L'#'};
    DWORD size = sizeof data;
    DWORD length = 8;
    DWORD type = 0;
    DWORD reserved = 0;
    FILETIME time = {};
    HKEY opened = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"v", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"v", nullptr, &type, nullptr, nullptr));
    EXPECT_EQ(REG_SZ, type);
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExW(m_key, L"v", nullptr, nullptr, data, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExW(m_key, L"absent", nullptr, nullptr, data, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExW(m_key, L"v", &reserved, nullptr, data, &size));
    EXPECT_EQ(ERROR_NOACCESS, RegSetValueExW(m_key, L"v", 0, REG_BINARY, nullptr, 4));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegOpenKeyExW(m_key, L"Child", 0, KEY_READ, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegEnumKeyExW(m_key, 0, name, &length, nullptr, keyClass, &size, &time));
    EXPECT_TRUE(size == 0 && keyClass[0] == 0 && time.dwHighDateTime != 0);
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(m_key, L"v", 0, REG_BINARY, nullptr, 0));
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_USERS, nullptr, 0, KEY_READ, &opened));
    EXPECT_EQ(HKEY_USERS, opened);
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(HKEY_USERS));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(nullptr));
    const OwnedHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    for (const HANDLE noKey : {HANDLE{nullptr}, HANDLE{event.get()}})
    {
        EXPECT_EQ(ERROR_INVALID_HANDLE,
                  RegOpenKeyExW(static_cast<HKEY>(noKey), L"Software", 0, KEY_READ, &opened));
    }
}

TEST_F(RegistryConformance, NamesOfAnyCharacters)
{
    const wchar_t* const names[] = {L"a/b", L"a\\b",   L"..",           L".",     L"=",
                                    L"%3D", L"a=b",    L"*?<>",         L" a ",   L"a\n",
                                    L"%",   L"\x263A", L"\xD83D\xDE00", L"a:b|c", L".~a.new"};
    for (const wchar_t* const name : names)
    {
        const auto size =
            static_cast<DWORD>((static_cast<std::size_t>(lstrlenW(name)) + 1) * sizeof(wchar_t));
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetValueExW(m_key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(name), size));
    }
    DWORD count = 0;
    RegQueryInfoKeyW(m_key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                     nullptr, nullptr);
    ASSERT_EQ(std::size(names), count);
    for (DWORD index = 0; index < count; ++index)
    {
        wchar_t name[16] = {};
        wchar_t text[16] = {L'#'};
        DWORD length = 16;
        DWORD size = sizeof text;
        EXPECT_EQ(ERROR_SUCCESS, RegEnumValueW(m_key, index, name, &length, nullptr, nullptr,
                                               reinterpret_cast<BYTE*>(text), &size));
        EXPECT_EQ(0, lstrcmpW(name, text)) << index;
    }
}

TEST_F(RegistryConformance, CaseBeyondAscii)
{
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(m_key, L"\x00C4\x0416", 0, REG_BINARY, nullptr, 0));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"\x00E4\x0436", nullptr, nullptr, nullptr, nullptr));
}

} // namespace
