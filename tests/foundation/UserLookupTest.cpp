// tests/foundation/UserLookupTest.cpp
//
// Both ways from an account to his hive and folder.

#include "foundation/UserLookup.h"
#include "acceptance/Seeding.h"
#include "foundation/OrvlCfg.h"
#include "notebook/Trace.h"
#include "support/NotebookTest.h"

using seeding::Utf8;
using seeding::Wide;
using simulated::Faults;
using simulated::Notebook;

namespace
{

constexpr const char* kShellFolders =
    "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr const char* kExplorer = "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";

class UserLookup : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        seeding::SwitchLogsOn();
    }

    int FindByAccount(const char* user)
    {
        m_subKey[0] = L'\0';
        text::Copy(m_path, L"untouched");
        return GetCurrentUserSubkeyProfilePath(Wide(user).data(), m_subKey, m_path);
    }

    int FindByLogon(const char* user, ULONG room = sizeof(wchar_t) * text::kPathCapacity)
    {
        m_subKey[0] = L'\0';
        m_path[0] = L'\0';
        m_pathSize = room;
        CORVLCfg anyObject;
        return anyObject.GetCurrentUserSubkeyProfilePath(Wide(user).data(), m_subKey, nullptr, m_path,
                                                         &m_pathSize);
    }

    std::string SubKey() const
    {
        return Utf8(m_subKey);
    }
    std::string Path() const
    {
        return Utf8(m_path);
    }
    std::string Sid(const char* user)
    {
        FindByAccount(user);
        return SubKey();
    }

    wchar_t m_subKey[text::kPathCapacity];
    wchar_t m_path[text::kPathCapacity];
    ULONG m_pathSize = 0;
};

TEST_F(UserLookup, ALoggedOnUserIsFoundEitherWay)
{
    ASSERT_EQ(1, FindByAccount("alice"));
    const std::string sid = SubKey();
    EXPECT_EQ(0U, sid.find("S-1-5-21-"));
    const std::string folder =
        seeding::GetText(HKEY_USERS, sid + kShellFolders, "Local AppData").value_or("");
    EXPECT_EQ(folder + "\\Kelvo\\ORVL\\Cfg", Path());
    const std::vector<std::string> kLines = {
        "enter GetCurrentUserSubkeyProfilePath, alice=userID",
        "Get subkey is " + sid,
        "Get shell folder subkey is " + sid + kShellFolders,
        "get profile path " + folder + "\\Kelvo\\ORVL\\Cfg",
    };
    EXPECT_EQ(kLines, seeding::LogLines("trxpm.log"));

    ASSERT_EQ(1, FindByLogon("Alice"));
    EXPECT_EQ(sid + "\\Control Panel\\PowerCfg\\PowerPolicies", SubKey());
    EXPECT_EQ(folder, Path());
    EXPECT_EQ((folder.size() + 1) * sizeof(wchar_t), m_pathSize);
}

TEST_F(UserLookup, FailuresAreToldInTheLog)
{
    struct Case
    {
        const char* user;
        const char* fault; ///< the function that fails, or null
        const char* lastLine;
    };
    const std::string sid = Sid("alice");
    const std::string absentSid = Sid("carol");
    const std::string absent =
        "GetCurrentUserSubkeyProfilePath: open shell folder key " + absentSid + kShellFolders + " failed 2";
    const Case kCases[] = {
        {"nobody", nullptr, "Get SID failed 1332 in LookupAcountName "},
        {"alice", "ConvertSidToStringSidW", "Convert SID to str failed 5"},
        {"carol", nullptr, absent.c_str()},
        {"alice", "RegQueryValueExW",
         "GetCurrentUserSubkeyProfilePath: query local settings folder failed at 5."},
    };
    for (const Case& row : kCases)
    {
        if (row.fault != nullptr)
        {
            Faults::Inject(row.fault, 1, ERROR_ACCESS_DENIED);
        }
        EXPECT_EQ(0, FindByAccount(row.user));
        EXPECT_EQ(row.lastLine, seeding::LogLines("trxpm.log").back());
        EXPECT_EQ("untouched", Path());
    }
}

TEST_F(UserLookup, AnEmptyFolderLeavesThePathAlone)
{
    seeding::SetText(HKEY_USERS, Sid("alice") + kShellFolders, "Local AppData", "");
    EXPECT_EQ(1, FindByAccount("alice"));
    EXPECT_EQ("untouched", Path());
    seeding::SetText(HKEY_USERS, Sid("alice") + kShellFolders, "Local AppData", "C:\\L\\");
    EXPECT_EQ(1, FindByAccount("alice"));
    EXPECT_EQ("C:\\L\\Kelvo\\ORVL\\Cfg", Path());
}

// Keys that stand before the user's in the order of names and bear his logon name all the same.
TEST_F(UserLookup, TheWalkPassesOverWhatBelongsToNobody)
{
    const std::string policies = "\\Control Panel\\PowerCfg\\PowerPolicies";
    const std::string sid = Sid("alice");
    seeding::SetText(HKEY_USERS, std::string("S-1-5-1_Classes") + kExplorer, "Logon User Name", "alice");
    seeding::SetText(HKEY_USERS, std::string("S-1-5-1_Classes") + kShellFolders, "Local AppData",
                     "C:\\Wrong");
    ASSERT_EQ(1, FindByLogon("alice"));
    EXPECT_EQ(sid + policies, SubKey());
    EXPECT_EQ(0, FindByLogon("nobody"));

    // ".DEFAULT" is another name of the service account's hive.
    seeding::SetText(HKEY_USERS, std::string(".DEFAULT") + kExplorer, "Logon User Name", "alice");
    ASSERT_EQ(1, FindByLogon("alice"));
    EXPECT_EQ("S-1-5-18" + policies, SubKey());
}

TEST_F(UserLookup, TheWalkGoesOnAfterAFolderThatDoesntFit)
{
    seeding::SetText(HKEY_USERS, std::string("S-1-4") + kExplorer, "Logon User Name", "alice");
    seeding::SetText(HKEY_USERS, std::string("S-1-4") + kShellFolders, "Local AppData",
                     std::string(300, 'x'));
    EXPECT_EQ(1, FindByLogon("alice"));
    EXPECT_EQ(0, FindByLogon("alice", 10));
}

} // namespace
