// tests/scheme/ClearTest.cpp
//
// Clearing: what it removes from accounts that are logged on or not, and what its failures leave behind. The
// rest is pinned by the transcripts.

#include "scheme/SchemeTest.h"

#include "control/RegistryEditor.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;

namespace
{

constexpr const char* kMachine = "HKEY_LOCAL_MACHINE";
constexpr const char* kProduct = "Software\\Kelvo\\ORVA";

class Clearing : public SchemeTest
{
protected:
    void SetUp() override
    {
        SchemeTest::SetUp();
        ASSERT_TRUE(seeding::MakeKey(HKEY_LOCAL_MACHINE, kProduct));
        for (const char* user : {"alice", "bob", "carol"})
        {
            ASSERT_TRUE(seeding::WriteBytes(Display(user), "x"));
            ASSERT_TRUE(seeding::WriteBytes(FolderOf(user) + "\\PowerSchemes.ini", "x"));
        }
    }

    /// How many of the three users' six files are there.
    int Files() const
    {
        int count = 0;
        for (const char* user : {"alice", "bob", "carol"})
        {
            count += seeding::Exists(Display(user)) + seeding::Exists(FolderOf(user) + "\\PowerSchemes.ini");
        }
        return count;
    }

    static bool HasKey(const std::string& root)
    {
        return RegistryEditor::HasKey(root + '\\' + kProduct);
    }
};

TEST_F(Clearing, RemovesTheKeysOfAccountsThatAreNotLoggedOn)
{
    ASSERT_TRUE(Notebook::AddStranger("dave"));
    ASSERT_TRUE(Notebook::LogOn("carol"));
    for (const char* user : {"alice", "carol"})
    {
        ASSERT_TRUE(seeding::MakeKey(HKEY_USERS, SidOf(user) + "\\" + kProduct));
    }
    ASSERT_TRUE(Notebook::LogOff("carol"));
    // The second run finds nothing to do.
    for (int run = 0; run < 2; ++run)
    {
        EXPECT_EQ(1, engine.ClearORV(0));
        EXPECT_FALSE(HasKey(kMachine));
        EXPECT_EQ(0, Files());
    }
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Number", "1"));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(1, engine.ClearORV(1)); }),
                Contains("ClearCurrentUserSettings: DeletePwrScheme(-1)"))
        << "an entry that isn't there";
    // The hive of a user who is logged on can't be loaded.
    EXPECT_TRUE(HasKey("HKEY_USERS\\" + SidOf("alice")));
    ASSERT_TRUE(Notebook::LogOn("carol"));
    EXPECT_FALSE(HasKey("HKEY_USERS\\" + SidOf("carol")));
    EXPECT_EQ(1, engine.ClearCurrentUserSettings());
    // One account alone.
    ASSERT_TRUE(seeding::MakeKey(HKEY_USERS, SidOf("carol") + "\\" + kProduct));
    ASSERT_TRUE(Notebook::LogOff("carol"));
    EXPECT_EQ(0, engine.ClearUserRegSettings(L"C:\\none.dat", L"S-1-0")) << "nothing to load";
    const std::string hive = Accounts::Find("carol")->profile + "\\NTUSER.DAT";
    EXPECT_EQ(1, engine.ClearUserRegSettings(Wide(hive).data(), Wide(SidOf("carol")).data()));
    ASSERT_TRUE(Notebook::LogOn("carol"));
    EXPECT_FALSE(HasKey("HKEY_USERS\\" + SidOf("carol")));
}

// Each failure leaves what the step would have removed, and what follows still happens.
TEST_F(Clearing, WhatFailuresLeaveBehind)
{
    // No folder: files and machine key stay.
    ASSERT_TRUE(seeding::SetKey(Users(), "UserList", "Number", "0"));
    Faults::Inject("SHGetFolderPathW", 4, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(0, engine.ClearPwrSchemes());
    EXPECT_TRUE(HasKey(kMachine));
    EXPECT_TRUE(seeding::Exists(Users()));

    // No user scheme file.
    ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", "UserScheme", ""));
    EXPECT_EQ("ClearPwrSchemes: initialize the user scheme cfg file failed",
              LinesOf([&] { EXPECT_EQ(-1, engine.ClearPwrSchemes()); }).back());
    EXPECT_EQ(-1, engine.ClearCurrentUserSettings());
    EXPECT_EQ(6, Files());
}

TEST_F(Clearing, AnAccountThatCantBeReadIsSkipped)
{
    ASSERT_TRUE(seeding::RemoveValue(
        HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\" + SidOf("alice"),
        "ProfileImagePath"));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.ClearCfgSettings()); }),
                Contains("ClearCfgSettings: query user Path at " + SidOf("alice") + " failed at 2"));
    EXPECT_EQ(2, Files());
}

TEST_F(Clearing, BothPrivilegesMustBeThere)
{
    EXPECT_EQ(1, engine.EnableRestoreBackupPrivilege());
    for (const auto& [function, nth] :
         {std::pair{"OpenProcessToken", 1U}, std::pair{"LookupPrivilegeValueW", 1U},
          std::pair{"LookupPrivilegeValueW", 2U}, std::pair{"AdjustTokenPrivileges", 1U},
          std::pair{"AdjustTokenPrivileges", 2U}})
    {
        Faults::Inject(function, nth, ERROR_ACCESS_DENIED);
        EXPECT_EQ(0, engine.EnableRestoreBackupPrivilege()) << function << ' ' << nth;
    }
}

} // namespace
