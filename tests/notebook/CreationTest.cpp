// tests/notebook/CreationTest.cpp
//
// What a fresh notebook holds where programs look, on both generations of Windows, and how its accounts and
// its system change.

#include "support/NotebookTest.h"

#include "notebook/Accounts.h"
#include "notebook/DriveC.h"
#include "notebook/RegistryEditor.h"
#include "notebook/Text.h"

#include <windows.h>

#include <filesystem>
#include <fstream>

using namespace simulated;

namespace
{

constexpr const char* kProfileList = "HKLM\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\";

struct Generation
{
    DWORD major;
    DWORD minor;
    std::string users;
    std::string localAppData;
};

class CreationTest : public NotebookTest, public testing::WithParamInterface<Generation>
{
protected:
    CreationTest() : NotebookTest({GetParam().major, GetParam().minor})
    {
    }

    const std::string& localAppData = GetParam().localAppData;
};

INSTANTIATE_TEST_SUITE_P(Windows, CreationTest,
                         testing::Values(Generation{5, 1, "C:\\Documents and Settings",
                                                    "Local Settings\\Application Data"},
                                         Generation{6, 0, "C:\\Users", "AppData\\Local"},
                                         Generation{6, 1, "C:\\Users", "AppData\\Local"},
                                         Generation{10, 0, "C:\\Users", "AppData\\Local"}),
                         [](const auto& of)
                         { return std::to_string(of.param.major) + '_' + std::to_string(of.param.minor); });

TEST_P(CreationTest, EachAccountHasAProfile)
{
    EXPECT_EQ(6U, Accounts::All().size());
    for (const Account& account : Accounts::All())
    {
        SCOPED_TRACE(account.name);
        EXPECT_TRUE(DriveC::Exists(account.profile + "\\NTUSER.DAT"));
        EXPECT_TRUE(DriveC::Exists(account.profile + '\\' + localAppData));
        EXPECT_TRUE(account.isWellKnown || account.profile == GetParam().users + '\\' + account.name);

        std::optional<registry::Value> image =
            RegistryEditor::Read(kProfileList + account.sid, "ProfileImagePath");
        ASSERT_TRUE(image);
        EXPECT_EQ(REG_EXPAND_SZ, image->type);
        wchar_t expanded[MAX_PATH] = {};
        ExpandEnvironmentStringsW(reinterpret_cast<const wchar_t*>(image->bytes.data()), expanded, MAX_PATH);
        EXPECT_EQ(account.profile, ToUtf8(expanded));
    }
}

TEST_P(CreationTest, EachHiveHasWhatALogonLeaves)
{
    for (const Account& account : Accounts::All())
    {
        SCOPED_TRACE(account.name);
        const std::string hive = "HKU\\" + account.sid;
        ASSERT_EQ(account.isLoggedOn, RegistryEditor::HasKey(hive));
        if (!account.isLoggedOn)
        {
            continue;
        }
        const std::string explorer = hive + "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
        EXPECT_EQ(account.name, RegistryEditor::ReadText(explorer, "Logon User Name"));
        EXPECT_EQ(account.profile + '\\' + localAppData,
                  RegistryEditor::ReadText(explorer + "\\Shell Folders", "Local AppData"));
        const std::string power = hive + "\\Control Panel\\PowerCfg";
        EXPECT_TRUE(RegistryEditor::ReadText(power, "CurrentPowerPolicy"));
        EXPECT_EQ(6U, RegistryEditor::Keys(power + "\\PowerPolicies").size());
        EXPECT_EQ(80U, RegistryEditor::Read(power + "\\PowerPolicies\\3", "Policies")->bytes.size());
        EXPECT_EQ(176U, RegistryEditor::Read(power + "\\GlobalPowerPolicy", "Policies")->bytes.size());
    }
}

// Programs of the earlier generation find the later one's folders under the names that they know.
TEST_P(CreationTest, EarlyNamesOfFoldersLeadToTheData)
{
    const std::string data = GetParam().users + "\\alice\\" + localAppData;
    ASSERT_TRUE(DriveC::Write(data + "\\Kelvo\\a.ini", "x"));
    const std::string early = "c:\\documents and settings\\ALICE\\Local Settings\\Application Data\\kelvo";
    EXPECT_EQ("x", DriveC::Read(early + "\\a.ini"));
    EXPECT_TRUE(DriveC::Remove(data + "\\KELVO"));
    EXPECT_FALSE(DriveC::Exists(early));
}

TEST_P(CreationTest, AnInstallationsFilesGoToTwoFolders)
{
    const std::filesystem::path source = Folder() + "-installation";
    std::filesystem::create_directory(source);
    for (const char* const name : {"ORVLCfg.ini", "PowerSchemes.ini", "install.cmd"})
    {
        std::ofstream(source / name) << name;
    }
    EXPECT_TRUE(Notebook::Install(source.string()));
    std::filesystem::remove_all(source);
    const std::string data = Accounts::Find("SYSTEM")->profile + '\\' + localAppData + "\\Kelvo\\ORVL\\Cfg\\";
    const std::string installation = Notebook::kInstallationFolder;
    EXPECT_EQ("ORVLCfg.ini", DriveC::Read(installation + "ORVLCfg.ini"));
    EXPECT_EQ("PowerSchemes.ini", DriveC::Read(data + "PowerSchemes.ini"));
    EXPECT_FALSE(DriveC::Exists(installation + "PowerSchemes.ini"));
    EXPECT_FALSE(DriveC::Exists(installation + "install.cmd"));
    EXPECT_FALSE(Notebook::Install(source.string())); // it is gone by now
}

class UsersTest : public NotebookTest
{
protected:
    static bool IsLoaded(const std::string& name)
    {
        return RegistryEditor::HasKey("HKU\\" + Accounts::Find(name)->sid);
    }
};

TEST_F(UsersTest, LogonsLoadHives)
{
    EXPECT_TRUE(Notebook::LogOff("alice"));
    EXPECT_FALSE(IsLoaded("alice"));
    EXPECT_TRUE(Notebook::LogOff("alice")); // nothing more to do
    EXPECT_TRUE(Notebook::LogOn("Alice"));
    EXPECT_TRUE(Notebook::LogOn("carol"));
    EXPECT_TRUE(IsLoaded("alice") && IsLoaded("carol"));
    EXPECT_FALSE(Notebook::LogOn("nobody"));
    EXPECT_FALSE(Notebook::LogOff("SYSTEM"));
}

TEST_F(UsersTest, AStrangersFirstLogonMakesHisProfile)
{
    ASSERT_TRUE(Notebook::AddStranger("dave"));
    EXPECT_FALSE(Notebook::AddStranger("DAVE"));
    const std::string sid = Accounts::Find("dave")->sid;
    EXPECT_EQ("S-1-5-21-1220945662-1202660629-1417001333-1006", sid);
    EXPECT_FALSE(DriveC::Exists("C:\\Documents and Settings\\dave"));
    EXPECT_FALSE(RegistryEditor::HasKey(kProfileList + sid));
    ASSERT_TRUE(Notebook::LogOn("dave"));
    EXPECT_TRUE(IsLoaded("dave"));
    EXPECT_TRUE(DriveC::Exists("C:\\Documents and Settings\\dave\\NTUSER.DAT"));
    EXPECT_EQ("%SystemDrive%\\Documents and Settings\\dave",
              RegistryEditor::ReadText(kProfileList + sid, "ProfileImagePath"));
}

TEST_F(UsersTest, AUserIsRemovedWithAllThatIsHis)
{
    ASSERT_TRUE(Notebook::AddUser("erin"));
    const Account erin = *Accounts::Find("erin");
    EXPECT_FALSE(IsLoaded("erin"));
    EXPECT_TRUE(Notebook::LogOn("erin"));
    EXPECT_TRUE(Notebook::RemoveUser("erin"));
    EXPECT_FALSE(Accounts::Find("erin"));
    EXPECT_FALSE(DriveC::Exists(erin.profile));
    EXPECT_FALSE(RegistryEditor::HasKey("HKU\\" + erin.sid));
    EXPECT_FALSE(RegistryEditor::HasKey(kProfileList + erin.sid));
    EXPECT_FALSE(Notebook::RemoveUser("erin"));
    EXPECT_FALSE(Notebook::RemoveUser("SYSTEM"));
}

} // namespace
