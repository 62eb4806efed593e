// tests/foundation/ConfigurationFilesTest.cpp
//
// Finding configuration files, and the numbers in them.

#include "acceptance/Seeding.h"
#include "base/HostFiles.h"
#include "base/Trace.h"
#include "control/Profiles.h"
#include "foundation/EntryLimit.h"
#include "foundation/OrvlProfile.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"
#include "support/NotebookTest.h"

using seeding::Utf8;
using seeding::Wide;
using simulated::Faults;

namespace
{

const std::string kFolder = "C:\\Cfg\\";
constexpr const char* kInstallationKey = "Software\\Kelvo\\ORVL";

class ConfigurationFiles : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        ASSERT_TRUE(seeding::SetText(HKEY_LOCAL_MACHINE, kInstallationKey, "CfgPath", kFolder));
        ASSERT_TRUE(seeding::WriteBytes("C:\\Cfg\\a.ini", "[S]\r\nHex=0x1F\r\n"));
    }

    // The result of `Initialize` and the path afterwards.
    static std::string Found(CORVLCfg& file, const std::string& name)
    {
        const int answer = file.Initialize(Wide(name).data());
        return std::to_string(answer) + ' ' + Utf8(file.GetFullPath());
    }
    static std::string Found(CORVLProfile& file, const std::string& name, const char* where, int isUser)
    {
        const int answer =
            file.Initialize(Wide(name).data(), where == nullptr ? nullptr : Wide(where).data(), isUser);
        return std::to_string(answer) + ' ' + Utf8(file.GetFullPath());
    }

    std::string FolderOf(const std::string& account)
    {
        simulated::Machine::RunAs(account);
        const std::string folder = seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg";
        simulated::Machine::RunAs({});
        return folder;
    }

    CORVLCfg cfg;
};

// A cut name would be that of another file.
TEST_F(ConfigurationFiles, APathThatDoesntFitGivesNoFile)
{
    constexpr std::size_t kLongest = text::kPathCapacity - 1;
    const std::string longest(kLongest - kFolder.size(), 'n');
    for (const std::string& name : {longest, 'm' + longest, 'm' + longest + longest})
    {
        EXPECT_EQ("0 " + kFolder + longest, Found(cfg, name)) << "there is no such file";
    }
    ASSERT_TRUE(
        seeding::SetText(HKEY_LOCAL_MACHINE, kInstallationKey, "CfgPath", std::string(kLongest, 'f')));
    CORVLCfg fresh;
    EXPECT_EQ("0 ", Found(fresh, "a.ini"));

    char letter = 'a';
    for (const std::size_t length : {kLongest, kLongest + 1, 2 * kLongest, 4 * kLongest})
    {
        const std::string folder = "C:\\" + std::string(200, letter++);
        const std::string name(length - folder.size() - 1, 'n');
        const bool fits = length == kLongest;
        CORVLProfile profile;
        EXPECT_EQ(fits ? "1 " + folder + '\\' + name : "0 ", Found(profile, name, folder.c_str(), 0));
        EXPECT_EQ(fits, seeding::Exists(folder)) << "nothing is created for a path that doesn't fit";
        EXPECT_EQ("0 ", Found(profile, "p.ini", ("C:\\" + std::string(length, letter)).c_str(), 0));
    }
}

TEST_F(ConfigurationFiles, HexadecimalNumbersNeedTheirPrefix)
{
    ASSERT_EQ(1, cfg.InitializeInstallPath(L"a.ini"));
    constexpr std::pair<const char*, int> kCases[] = {
        {"0x1F", 31}, {"0xffffffff", -1}, {"11", 7},  {"0x", 7},
        {"0X1F", 7},  {"1x5", 7},         {"0xg", 7}, {"0x1000000000000000ABCDE", 10},
    };
    for (const auto& [text, number] : kCases)
    {
        ASSERT_NE(0, cfg.PutString(L"S", L"Number", Wide(text).data()));
        EXPECT_EQ(number, cfg.GetHex(L"S", L"Number", 7)) << text;
    }
    for (const int number : {0, 1, 0x7FFFFFFF, -1})
    {
        EXPECT_EQ(1, cfg.PutHex(L"S", L"Number", number));
        EXPECT_EQ(number, cfg.GetHex(L"S", L"Number", 7));
    }
    wchar_t room[8] = L"#";
    EXPECT_EQ(0, cfg.GetString(L"S", L"Number", L"", room, -1));
    EXPECT_EQ(L'#', room[0]);
}

TEST_F(ConfigurationFiles, ProfileFilesAreCreated)
{
    for (const auto& [where, isUser, folder] :
         {std::tuple{static_cast<const char*>(nullptr), 0, FolderOf({})},
          {"C:\\New\\Folder", 0, "C:\\New\\Folder"},
          {"C:\\New\\Other\\", 0, "C:\\New\\Other"},
          {"alice", 1, FolderOf("alice")},
          {"ALICE", 1, FolderOf("alice")}})
    {
        const std::string path = folder + "\\p.ini";
        for (int round = 0; round < 2; ++round)
        {
            CORVLProfile file;
            EXPECT_EQ("1 " + path, Found(file, "p.ini", where, isUser));
            EXPECT_EQ("", seeding::ReadBytes(path));
        }
        seeding::Remove(path);
    }
    const std::string longFolder = "C:\\" + std::string(200, 'l');
    ASSERT_TRUE(
        seeding::SetText(HKEY_USERS,
                         simulated::Accounts::Find("alice")->sid +
                             "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders",
                         "Local AppData", longFolder));
    CORVLProfile file;
    EXPECT_EQ("1 " + longFolder + "\\Kelvo\\ORVL\\Cfg\\p.ini", Found(file, "p.ini", "alice", 1));
}

TEST_F(ConfigurationFiles, AProfileFileWithoutAFolderFails)
{
    CORVLProfile file;
    ASSERT_EQ(1, file.Initialize(L"p.ini", nullptr, 0));
    EXPECT_EQ("0 ", Found(file, "p.ini", "nobody", 1));
    EXPECT_EQ("0 ", Found(file, "p.ini", "carol", 1)); // not logged on
    EXPECT_EQ("0 ", Found(file, "p.ini", "", 0));
    Faults::Inject("WritePrivateProfileStringW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(0, file.Initialize(L"new.ini", nullptr, 0));
}

TEST_F(ConfigurationFiles, FoldersAreBoundedByTheCallersRoom)
{
    const auto shown = [](const wchar_t* answer) { return answer == nullptr ? "none" : Utf8(answer); };
    CORVLProfile file;
    wchar_t folder[text::kPathCapacity];
    EXPECT_EQ(FolderOf({}), shown(file.GetHomePath(folder, static_cast<int>(std::size(folder)))));
    folder[10] = L'#';
    EXPECT_EQ(FolderOf({}).substr(0, 9), shown(file.GetHomePath(folder, 10)));
    EXPECT_EQ(L'#', folder[10]);
    EXPECT_EQ("none none", shown(file.GetHomePath(folder, 0)) + ' ' + shown(file.GetHomePath(nullptr, 10)));
    ASSERT_TRUE(simulated::host_files::RemoveAll(
        simulated::Machine::PathOf(simulated::profiles::PartOf(seeding::LocalAppData()))));
    EXPECT_EQ("none", shown(file.GetHomePath(folder, 260))) << "an account without the folder";
    // The folder of the installation's module, and its parent.
    EXPECT_EQ("none none", shown(cfg.GetDllPath(folder, 260)) + ' ' + shown(cfg.GetHomePath(folder, 260)));
    ASSERT_TRUE(simulated::Machine::Write("Modules", "ORVLDLL.DLL", "C:\\ORVL\\Bin\\ORVLDLL.DLL"));
    EXPECT_EQ("C:\\ORVL\\Bin", shown(cfg.GetDllPath(folder, 24)));
    EXPECT_EQ("C:\\ORVL", shown(cfg.GetHomePath(folder, 24)));
    EXPECT_EQ("none", shown(cfg.GetDllPath(folder, 23))) << "the module's own name doesn't fit";
    EXPECT_EQ("none none", shown(cfg.GetDllPath(folder, 0)) + ' ' + shown(cfg.GetDllPath(nullptr, 24)));
}

TEST(EntryLimitTest, ALongListCountsAsFarAsItsEntriesGo)
{
    EXPECT_EQ(1001, EntryLimit().Take(1001, [](int) { return true; }));
    EXPECT_EQ(3, EntryLimit().Take(1001, [](int entry) { return entry < 3; }));
}

} // namespace
