// tests/advapi32/HivesTest.cpp
//
// Which hive is whose, and the rules for loading and unloading them.

#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "base/WholeFile.h"
#include "control/RegistryEditor.h"
#include "machine/Machine.h"

#include <windows.h>

#include <tuple>

using namespace simulated;

namespace
{

class HivesTest : public NotebookTest
{
protected:
    static void Enable(const wchar_t* privilege)
    {
        HANDLE token = nullptr;
        TOKEN_PRIVILEGES wanted{1, {{{}, SE_PRIVILEGE_ENABLED}}};
        ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token));
        ASSERT_TRUE(LookupPrivilegeValueW(nullptr, privilege, &wanted.Privileges[0].Luid));
        EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr));
        EXPECT_TRUE(CloseHandle(token));
    }
    static void EnableBoth()
    {
        Enable(SE_RESTORE_NAME);
        Enable(SE_BACKUP_NAME);
    }

    static std::string SidOf(const char* name)
    {
        return Accounts::Find(name)->sid;
    }
    static LONG Load(const std::string& subKey, const std::string& file)
    {
        return RegLoadKeyW(HKEY_USERS, Wide(subKey).data(), Wide(file).data());
    }
    static LONG Unload(const std::string& subKey)
    {
        return RegUnLoadKeyW(HKEY_USERS, Wide(subKey).data());
    }
    static std::string FileOf(const char* name)
    {
        return Accounts::Find(name)->profile + "\\NTUSER.DAT";
    }
};

TEST_F(HivesTest, TheCurrentUserIsTheRunningAccount)
{
    for (const char* const name : {"SYSTEM", "alice", "bob"})
    {
        Machine::RunAs(name);
        EXPECT_TRUE(RegistryEditor::WriteText("HKCU\\Software\\Mine", "Who", name));
    }
    for (const char* const name : {"SYSTEM", "alice", "bob"})
    {
        EXPECT_EQ(name, RegistryEditor::ReadText("HKU\\" + SidOf(name) + "\\Software\\Mine", "Who")) << name;
    }
    // An account without a loaded hive gets the default one, which is the service account's.
    Machine::RunAs(Notebook::kAbsentUser);
    EXPECT_EQ("SYSTEM", RegistryEditor::ReadText("HKCU\\Software\\Mine", "Who"));
    EXPECT_EQ("SYSTEM", RegistryEditor::ReadText("HKU\\.default\\Software\\Mine", "Who"));
}

TEST_F(HivesTest, LoadingAndUnloadingNeedBothPrivileges)
{
    const std::string sid = SidOf("carol");
    EXPECT_EQ(ERROR_PRIVILEGE_NOT_HELD, Load(sid, FileOf("carol")));
    Enable(SE_RESTORE_NAME);
    EXPECT_EQ(ERROR_PRIVILEGE_NOT_HELD, Load(sid, FileOf("carol")));
    Enable(SE_BACKUP_NAME);
    EXPECT_EQ(ERROR_SUCCESS, Load(sid, FileOf("carol")));
    Machine::RunAs("alice"); // another token
    EXPECT_EQ(ERROR_PRIVILEGE_NOT_HELD, Unload(sid));
}

TEST_F(HivesTest, WhatCannotBeLoaded)
{
    EnableBoth();
    ASSERT_TRUE(WriteWhole(Machine::PathOf("drives/C/junk.dat"), "regf, or not"));
    const std::tuple<const char*, std::string, std::string, LONG> rows[] = {
        {"a logged-on user's", SidOf("alice"), FileOf("alice"), ERROR_SHARING_VIOLATION},
        {"a logged-on user's elsewhere", "elsewhere", FileOf("alice"), ERROR_SHARING_VIOLATION},
        {"in another's place", SidOf("alice"), FileOf("carol"), ERROR_ACCESS_DENIED},
        {"no file", "elsewhere", "C:\\none.dat", ERROR_FILE_NOT_FOUND},
        {"no folder", "elsewhere", "C:\\none\\none.dat", ERROR_PATH_NOT_FOUND},
        {"no hive", "elsewhere", "C:\\junk.dat", ERROR_BADDB},
    };
    for (const auto& [what, subKey, file, expected] : rows)
    {
        EXPECT_EQ(expected, Load(subKey, file)) << what;
    }
}

TEST_F(HivesTest, AHiveWithAnOpenKeyStays)
{
    EnableBoth();
    const std::string sid = SidOf("carol");
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, Unload(sid));
    ASSERT_EQ(ERROR_SUCCESS, Load(sid, FileOf("carol")));
    HKEY below = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_USERS, Wide(sid + "\\Software").data(), 0, KEY_READ, &below));
    EXPECT_EQ(ERROR_ACCESS_DENIED, Unload(sid));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(below));
    EXPECT_EQ(ERROR_SUCCESS, Unload(sid));
}

} // namespace
