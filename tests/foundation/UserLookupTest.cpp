// tests/foundation/UserLookupTest.cpp
//
// Both ways from an account to its hive and folder.

#include "acceptance/Seeding.h"
#include "base/Trace.h"
#include "control/RegistryEditor.h"
#include "foundation/OrvlCfg.h"
#include "foundation/UserFolders.h"
#include "machine/Accounts.h"
#include "modules/advapi32/Hives.h"
#include "support/NotebookTest.h"

using seeding::Utf8;
using seeding::Wide;
using simulated::Faults;
using simulated::RegistryEditor;

namespace
{

const std::string kExplorer = "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
const std::string kShellFolders = kExplorer + "\\Shell Folders";
const std::string kPolicies = "\\Control Panel\\PowerCfg\\PowerPolicies";

class UserLookup : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        seeding::SwitchLogsOn();
    }

    // Whether the user is found, and the last line in the log.
    std::pair<int, std::string> FindByAccount(const char* user)
    {
        text::Copy(m_path, L"untouched");
        const int found = GetCurrentUserSubkeyProfilePath(Wide(user).data(), m_subKey, m_path);
        return {found, seeding::LogLines("trxpm.log").back()};
    }

    // The subkey, empty when the user isn't found.
    std::string FindByLogon(const char* user, ULONG room = sizeof(wchar_t) * text::kPathCapacity)
    {
        m_pathSize = room;
        CORVLCfg anyObject;
        const int found = anyObject.GetCurrentUserSubkeyProfilePath(Wide(user).data(), m_subKey, nullptr,
                                                                    m_path, &m_pathSize);
        return found == 1 ? Utf8(m_subKey) : found == 0 ? "" : "another result";
    }

    static std::string Sid(const char* user)
    {
        return simulated::Accounts::Find(user)->sid;
    }
    static void SetFolder(const std::string& hive, const std::string& folder)
    {
        ASSERT_TRUE(seeding::SetText(HKEY_USERS, hive + kShellFolders, "Local AppData", folder));
    }

    wchar_t m_subKey[text::kPathCapacity];
    wchar_t m_path[text::kPathCapacity];
    ULONG m_pathSize = 0;
};

// The lookup through the account database is covered by the transcripts.
TEST_F(UserLookup, ALoggedOnUserIsFoundByLogonName)
{
    const std::string sid = Sid("alice");
    const std::string folder = seeding::GetText(HKEY_USERS, sid + kShellFolders, "Local AppData").value();
    EXPECT_EQ(sid + kPolicies, FindByLogon("Alice"));
    EXPECT_EQ(folder, Utf8(m_path));
    EXPECT_EQ((folder.size() + 1) * sizeof(wchar_t), m_pathSize);
    EXPECT_EQ(std::vector<std::string>{"enter GetCurrentUserSubkeyProfilePath"},
              seeding::LogLines("orvl.log"));
    Faults::Inject("RegOpenKeyW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ("", FindByLogon("alice"));
    EXPECT_EQ("GetCurrentUserSubkeyProfilePath: Open key HKEY_USERS failed",
              seeding::LogLines("orvl.log").back());
}

TEST_F(UserLookup, FailuresAreLogged)
{
    const std::string absent = "GetCurrentUserSubkeyProfilePath: open shell folder key " + Sid("carol") +
                               kShellFolders + " failed 2";
    for (const auto& [user, fault, line] :
         {std::tuple{"nobody", "", std::string("Get SID failed 1332 in LookupAcountName ")},
          {"alice", "ConvertSidToStringSidW", "Convert SID to str failed 5"},
          {"carol", "", absent},
          {"alice", "RegQueryValueExW",
           "GetCurrentUserSubkeyProfilePath: query local settings folder failed at 5."}})
    {
        if (*fault != 0)
        {
            Faults::Inject(fault, 1, ERROR_ACCESS_DENIED);
        }
        EXPECT_EQ(std::pair(0, line), FindByAccount(user));
        EXPECT_EQ("untouched", Utf8(m_path));
    }
}

TEST_F(UserLookup, AnEmptyFolderLeavesThePathAlone)
{
    for (const auto& [folder, path] : {std::pair{"", "untouched"}, {"C:\\L\\", "C:\\L\\Kelvo\\ORVL\\Cfg"}})
    {
        SetFolder(Sid("alice"), folder);
        EXPECT_EQ(1, FindByAccount("alice").first);
        EXPECT_EQ(path, Utf8(m_path));
    }
}

// Keys that come before the user's in the order of names and lead to a hive with the user's logon name.
TEST_F(UserLookup, TheSearchSkipsWhatBelongsToNobody)
{
    const std::string hive = simulated::hives::Loaded(Sid("alice"));
    for (const auto& [name, isUser] :
         {std::pair{"S-1-4_Classes", false}, {"Classes-1", false}, {"S-1-4", true}})
    {
        ASSERT_TRUE(simulated::hives::Load(name, hive));
        EXPECT_EQ((isUser ? name : Sid("alice")) + kPolicies, FindByLogon("alice"));
    }
    EXPECT_EQ("", FindByLogon("nobody"));
    EXPECT_FALSE(seeding::GetText(HKEY_USERS, kShellFolders.substr(1) + '\\' + Sid("alice"), "Local AppData"))
        << "a hive is found by the first name of a path alone";
    // ".DEFAULT" is another name of the service account's hive.
    ASSERT_TRUE(seeding::SetText(HKEY_USERS, ".DEFAULT" + kExplorer, "Logon User Name", "system"));
    EXPECT_EQ("S-1-5-18" + kPolicies, FindByLogon("system"));
}

TEST_F(UserLookup, TheSearchContinuesAfterAFolderThatDoesntFit)
{
    const std::string first = std::min(Sid("alice"), Sid("bob"));
    const std::string second = std::max(Sid("alice"), Sid("bob"));
    for (const std::string& sid : {first, second})
    {
        ASSERT_TRUE(seeding::SetText(HKEY_USERS, sid + kExplorer, "Logon User Name", "both"));
    }
    SetFolder(first, "C:\\" + std::string(257, 'x'));
    EXPECT_EQ(second + kPolicies, FindByLogon("both"));
    EXPECT_EQ("", FindByLogon("both", 10));
    SetFolder(first, "C:\\" + std::string(256, 'x'));
    EXPECT_EQ(first + kPolicies, FindByLogon("both"));

    // Without a terminator: half a character is none, and what fills the room loses its last one.
    const std::string key = "HKEY_USERS\\" + first + kShellFolders;
    simulated::registry::Value value = RegistryEditor::Read(key, "Local AppData").value();
    for (const auto& [bytes, room] : {std::pair{11U, 20U}, {12U, 12U}})
    {
        value.bytes.resize(bytes);
        ASSERT_TRUE(RegistryEditor::Write(key, "Local AppData", value));
        EXPECT_EQ(first + kPolicies, FindByLogon("both", room));
        EXPECT_EQ("C:\\xx", Utf8(m_path));
        value.bytes.push_back('x');
    }
}

} // namespace
