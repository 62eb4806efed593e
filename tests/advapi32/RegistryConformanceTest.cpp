// tests/advapi32/RegistryConformanceTest.cpp
//
// What the registry functions do, in plain Win32 below one key of the running user: the simulated platform
// and Windows itself are held to the same tables.
//
// Wine, on which the Windows build runs in the tests, differs where a row says what it does there: it orders
// names by their lower-case letters, so that "_" comes before them.

#include "RegistryScript.h"
#include "support/Wine.h"

#include <gtest/gtest.h>

#include <cstring>
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

// The registry functions return their error and leave the last error alone, so each row checks that, too.
TEST_F(RegistryConformance, Scripts)
{
    const Case rows[] = {
        // Names of values
        {"default by null", "-set null x; get null; get ''", "x x"},
        {"default by the empty name", "-set '' x; get null", "x"},
        {"no default", "get null", "2"},
        {"no value", "get absent", "2"},
        {"case doesn't matter", "-set NaMe x; get nAmE", "x"},
        // Paths
        {"child", "-make Child; open Child", "0"},
        {"case of a path", "-make Child\\Grand; open cHILD\\gRAND", "0"},
        {"backslash at the end", "-make Child; open Child\\", "0"},
        {"backslash in front", "-make Child; open \\Child", "161"},
        {"slash is a character", "-make a/b; open a/b; open a\\b", "0 2"},
        {"missing", "open Missing", "2"},
        {"missing in between", "open Missing\\Child", "2"},
        {"null opens anew", "open null", "0"},
        {"empty opens anew", "open ''", "0"},
        // Creating
        {"new and old", "make a; make A", "new old"},
        {"with all on the way", "make a\\b\\c; make a\\b; open a", "new old 0"},
        // Enumerating
        {"no keys", "keys", "259"},
        {"in the order of names", "-make b; -make 10; -make A; -make 2; -make a_; -make aB; -make C; keys",
         "10 2 A aB a_ b C 259", "10 2 A a_ aB b C 259"},
        {"just room for a key's name", "-make abc; key 0 4", "abc:3 abc"},
        {"no room for it", "-make abc; key 0 3", "234 234"},
        {"behind the last key", "-make abc; key 1 9", "259 259"},
        // Deleting
        {"a key", "-make Child; delete cHILD; open Child", "0 2"},
        {"a key with subkeys", "-make Child\\Grand; delete Child; open Child\\Grand", "5 0"},
        {"a missing key", "delete Child; delete Child\\Grand", "2 2"},
        {"no name", "delete null", "87"},
        {"what is open",
         "-make Child; -hold Child all; delete Child; @set v x; @make Grand; @get v; @keys; "
         "@drop v; @open Grand; @delete Grand",
         "0 1018 1018 1018 1018 1018 1018 1018"},
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

// What a handle may do depends on the access that was asked for at opening, but making and deleting subkeys
// doesn't.
TEST_F(RegistryConformance, AccessRights)
{
    // get, set, drop, keys, make, delete
    const std::pair<std::string, const char*> rows[] = {
        {"all", "x 0 0 Grand 259 new 0"}, {"read", "x 5 5 Grand 259 new 0"},
        {"write", "5 0 0 5 new 0"},       {"query", "x 5 5 5 new 0"},
        {"set", "5 0 0 5 new 0"},         {"enumerate", "5 5 5 Grand 259 new 0"},
        {"create", "5 5 5 5 new 0"},
    };
    for (const auto& [access, expected] : rows)
    {
        Refresh();
        EXPECT_EQ(expected,
                  Play(m_key, "-make Child\\Grand; -hold Child all; -@set v x; -close; -hold Child " +
                                  access + "; @get v; @set v y; @drop v; @keys; @make New; @delete Grand"))
            << access;
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
        {"number without room", REG_DWORD, "\x01\x02\x03\x04", 3, ERROR_MORE_DATA, ""},
        {"no bytes", REG_BINARY, "", 8, 0, ""},
        {"bytes", REG_BINARY, std::string("\0\xFF\n\r\0", 5), 5, 0, std::string("\0\xFF\n\r\0", 5)},
        {"text", REG_SZ, text, 6, 0, text},
        {"text without room for its end", REG_SZ, text, 4, ERROR_MORE_DATA, ""},
        {"empty text", REG_SZ, end, 8, 0, end},
        {"text without end gets one", REG_SZ, open, 6, 0, open + end},
        {"which is no error", REG_SZ, open, 4, 0, open},
        {"zero inside", REG_SZ, "a" + end + text, 40, 0, "a" + end + text},
        {"no type", REG_NONE, "xyz", 8, 0, "xyz"},
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

TEST_F(RegistryConformance, PointersThatMayBeNullAndHandlesThatStay)
{
    Play(m_key, "-set v x; -make Child");
    BYTE data[8] = {};
    DWORD type = 0;
    HKEY opened = nullptr;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"v", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"v", nullptr, &type, nullptr, nullptr));
    EXPECT_EQ(REG_SZ, type);
    EXPECT_EQ(ERROR_INVALID_PARAMETER, RegQueryValueExW(m_key, L"v", nullptr, nullptr, data, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyW(HKEY_USERS, nullptr, &opened));
    EXPECT_EQ(HKEY_USERS, opened);
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(HKEY_USERS));
    EXPECT_EQ(ERROR_INVALID_HANDLE, RegCloseKey(nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(m_key, L"\x00C4\x0416", 0, REG_BINARY, nullptr, 0));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"\x00E4\x0436", nullptr, nullptr, nullptr, nullptr));
}

} // namespace
