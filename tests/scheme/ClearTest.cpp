// tests/scheme/ClearTest.cpp
//
// Clearing for one user and for all: what goes, what stays, and that a second run does no harm.

#include "scheme/SchemeTest.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;

namespace
{

constexpr const char* kProduct = "Software\\Kelvo\\ORVA";

class Clearing : public SchemeTest
{
protected:
    using SchemeTest::SchemeTest;

    void SetUp() override
    {
        SchemeTest::SetUp();
        ActFor(bob, "bob");
        bob.Initialize();
        ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kProduct, "AutoRunFlag", 1));
        for (const char* user : {"alice", "bob", "carol"})
        {
            ASSERT_TRUE(seeding::WriteBytes(Display(user), "[Scheme6]\r\nIfShow=1\r\n"));
            ASSERT_TRUE(seeding::WriteBytes(FolderOf(user) + "\\PowerSchemes.ini", "x"));
        }
    }

    bool HasFiles(const std::string& user) const
    {
        const bool display = seeding::Exists(Display(user));
        EXPECT_EQ(display, seeding::Exists(FolderOf(user) + "\\PowerSchemes.ini"));
        return display;
    }

    static bool HasMachineKey()
    {
        return seeding::GetNumber(HKEY_LOCAL_MACHINE, kProduct, "AutoRunFlag").has_value();
    }

    /// Whether the hive of a user who is logged on holds the companion application's key.
    static bool HasUserKey(const std::string& user)
    {
        return seeding::GetNumber(HKEY_USERS, SidOf(user) + "\\" + kProduct, "x").has_value();
    }

    Engine bob;
};

TEST_F(Clearing, OneUsersSchemesSectionAndFilesGo)
{
    ASSERT_EQ(6, engine.AddPwrScheme(L"a", L"", 3, L"alice"));
    ASSERT_EQ(7, bob.AddPwrScheme(L"b", L"", 3, L"bob"));
    ASSERT_EQ(8, engine.AddPwrScheme(L"c", L"", 3, L"alice"));
    ASSERT_EQ(1, engine.AddtoUserScheme(L"protected", L"alice", 4));
    const auto lines = LinesOf([&] { EXPECT_EQ(1, engine.ClearCurrentUserSettings()); });
    std::vector<std::string> deletions;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(deletions),
                 [](const std::string& line) { return line.find("DeletePwrScheme(") != std::string::npos; });
    EXPECT_THAT(deletions, ElementsAre("ClearCurrentUserSettings: DeletePwrScheme(4)",
                                       "ClearCurrentUserSettings: DeletePwrScheme(8)",
                                       "ClearCurrentUserSettings: DeletePwrScheme(6)"));
    EXPECT_THAT(lines, Contains("ClearCurrentUserSettings: Get username=" + SidOf("alice") + ", Number=3"));
    EXPECT_EQ("ClearCurrentUserSettings: DeleteFile " + FolderOf("alice") + "\\\\PowerSchemes.ini",
              lines.back());
    EXPECT_EQ(1, engine.GetActivePwrScheme(0));
    EXPECT_EQ(1, engine.FindPwrScheme(4));
    EXPECT_EQ(0, engine.FindPwrScheme(8));
    EXPECT_EQ(1, engine.FindPwrScheme(7));
    EXPECT_EQ(kAbsent, seeding::GetKey(Users(), SidOf("alice"), "Number"));
    EXPECT_EQ(SidOf("alice"), seeding::GetKey(Users(), "UserList", "User0"));
    EXPECT_FALSE(HasFiles("alice"));
    EXPECT_TRUE(HasFiles("bob"));
    EXPECT_TRUE(HasMachineKey());
    EXPECT_EQ(1, engine.ClearCurrentUserSettings());
    EXPECT_TRUE(CallsOf([&] { EXPECT_EQ(1, engine.ClearORV(2)); }).empty());
}

TEST_F(Clearing, EverybodysTracesGo)
{
    ASSERT_TRUE(Notebook::AddStranger("dave"));
    ASSERT_TRUE(Notebook::LogOn("carol"));
    for (const char* user : {"alice", "carol"})
    {
        ASSERT_TRUE(seeding::SetNumber(HKEY_USERS, SidOf(user) + "\\" + kProduct, "x", 1));
    }
    ASSERT_TRUE(Notebook::LogOff("carol"));
    ASSERT_EQ(6, engine.AddPwrScheme(L"a", L"", 3, L"alice"));
    ASSERT_EQ(7, bob.AddPwrScheme(L"b", L"", 3, L"bob"));
    for (int run = 0; run < 2; ++run)
    {
        const auto lines = LinesOf([&] { EXPECT_EQ(1, engine.ClearORV(0)); });
        EXPECT_EQ("enter ClearORV: ClearAllUserSettings", lines.front());
        EXPECT_EQ("ClearCfgSettings: enumerate key failed at 259", lines.back());
        EXPECT_THAT(lines, Contains("RegLoadKey C:\\Documents and Settings\\carol\\NTUSER.DAT succeed at 0"));
        EXPECT_THAT(lines, Contains("Unload key temp successfully"));
        EXPECT_EQ(0, engine.FindPwrScheme(6) + engine.FindPwrScheme(7));
        EXPECT_FALSE(seeding::Exists(Values()));
        EXPECT_FALSE(seeding::Exists(Users()));
        EXPECT_TRUE(seeding::Exists(Root()));
        EXPECT_FALSE(HasMachineKey());
        for (const char* user : {"alice", "bob", "carol"})
        {
            EXPECT_FALSE(HasFiles(user));
        }
        // The hive of a user who is logged on can't be loaded, so his key stays.
        EXPECT_TRUE(HasUserKey("alice"));
        ASSERT_TRUE(Notebook::LogOn("carol"));
        EXPECT_FALSE(HasUserKey("carol"));
        ASSERT_TRUE(Notebook::LogOff("carol"));
    }
}

// Each failure leaves what the step would have removed, and what follows still happens.
TEST_F(Clearing, WhatFailuresLeaveBehind)
{
    ASSERT_EQ(6, engine.AddPwrScheme(L"a", L"", 3, L"alice"));
    ASSERT_TRUE(SetActivePwrScheme(6, nullptr, nullptr));

    // The active scheme can't be left: the operating system refuses its deletion, the section goes all the
    // same.
    Faults::Inject("SetActivePwrScheme", 1, ERROR_ACCESS_DENIED);
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(1, engine.ClearPwrSchemes()); }),
                testing::AllOf(Contains("SetActivePwrScheme 1 failed at 5"),
                               Contains(testing::StartsWith("delete windows power scheme failed"))));
    EXPECT_EQ(1, engine.FindPwrScheme(6));
    EXPECT_FALSE(seeding::Exists(Users()));

    // No folder: files and machine key stay.
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kProduct, "AutoRunFlag", 1));
    Faults::Inject("SHGetFolderPathW", 4, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(0, engine.ClearPwrSchemes());
    EXPECT_TRUE(Faults::AllHit());
    EXPECT_TRUE(HasMachineKey());
    EXPECT_TRUE(seeding::Exists(Users()));

    // A key with subkeys can't be removed.
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, std::string(kProduct) + "\\Below", "x", 1));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.ClearPwrSchemes()); }).back(),
                testing::StartsWith("open key Software\\Kelvo failed at "));
    EXPECT_TRUE(HasMachineKey());

    // No user scheme file.
    ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", "UserScheme", ""));
    EXPECT_EQ(-1, engine.ClearPwrSchemes());
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.ClearCurrentUserSettings()); }).back(),
                testing::StrEq("ClearPwrSchemes: initialize the user scheme cfg file failed"));
    EXPECT_TRUE(HasFiles("alice"));
}

TEST_F(Clearing, AnAccountThatCantBeReadIsPassedOver)
{
    ASSERT_TRUE(seeding::RemoveValue(
        HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\" + SidOf("alice"),
        "ProfileImagePath"));
    EXPECT_EQ(0, engine.ClearCfgSettings());
    EXPECT_TRUE(HasFiles("alice"));
    EXPECT_FALSE(HasFiles("bob"));
    EXPECT_FALSE(HasFiles("carol"));
}

TEST_F(Clearing, PrivilegesMustBeThere)
{
    EXPECT_EQ(1, engine.EnableRestoreBackupPrivilege());
    for (const char* function : {"OpenProcessToken", "LookupPrivilegeValueW", "AdjustTokenPrivileges"})
    {
        Faults::Inject(function, 1, ERROR_ACCESS_DENIED);
        EXPECT_EQ(0, engine.EnableRestoreBackupPrivilege());
    }
}

using VistaClearing = OnVista<Clearing>;

// The profile's links lead to where the files lie now.
TEST_F(VistaClearing, ClearsThroughTheLinksOfAProfile)
{
    EXPECT_EQ(1, engine.ClearORV(0));
    for (const char* user : {"alice", "bob", "carol"})
    {
        EXPECT_FALSE(HasFiles(user));
    }
    EXPECT_FALSE(HasMachineKey());
}

} // namespace
