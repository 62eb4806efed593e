// tests/foundation/ConfigurationFilesTest.cpp
//
// Finding configuration files, and the numbers in them.

#include "acceptance/Seeding.h"
#include "foundation/OrvlProfile.h"
#include "foundation/SystemFolders.h"
#include "notebook/Machine.h"
#include "notebook/Trace.h"
#include "support/NotebookTest.h"

using seeding::Utf8;
using seeding::Wide;
using simulated::Faults;
using simulated::Trace;

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
        Trace::Clear();
    }

    std::string FolderOf(const std::string& account)
    {
        simulated::Machine::RunAs(account);
        const std::string folder = seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg";
        simulated::Machine::RunAs({});
        return folder;
    }
};

TEST_F(ConfigurationFiles, InstallationFileIsFoundThroughTheRegistry)
{
    CORVLCfg file;
    EXPECT_EQ(1, file.Initialize(L"a.ini"));
    EXPECT_EQ("C:\\Cfg\\a.ini", Utf8(file.GetFullPath()));
    EXPECT_EQ(0, file.InitializeInstallPath(L"missing.ini"));
    EXPECT_EQ("C:\\Cfg\\missing.ini", Utf8(file.GetFullPath()));
    EXPECT_FALSE(seeding::Exists("C:\\Cfg\\missing.ini"));
    EXPECT_EQ(4U + 4U, Trace::Calls().size()); // open, query, close, exists
}

TEST_F(ConfigurationFiles, WithoutTheRegistryThePathStaysAsItWas)
{
    CORVLCfg file;
    ASSERT_EQ(1, file.Initialize(L"a.ini"));
    for (const char* const function : {"RegOpenKeyExW", "RegQueryValueExW"})
    {
        Faults::Inject(function, 1, ERROR_ACCESS_DENIED);
        EXPECT_EQ(0, file.Initialize(L"b.ini")) << function;
        EXPECT_EQ("C:\\Cfg\\a.ini", Utf8(file.GetFullPath()));
    }
    ASSERT_TRUE(seeding::RemoveValue(HKEY_LOCAL_MACHINE, kInstallationKey, "CfgPath"));
    CORVLCfg fresh;
    EXPECT_EQ(0, fresh.Initialize(L"a.ini"));
    EXPECT_EQ("", Utf8(fresh.GetFullPath()));
}

TEST_F(ConfigurationFiles, AFolderWithoutATerminatorIsReadAsItIs)
{
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegOpenKeyExW(HKEY_LOCAL_MACHINE, Wide(kInstallationKey).data(), 0, KEY_ALL_ACCESS, &key));
    RegSetValueExW(key, L"CfgPath", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"C:\\Cfg\\"),
                   7 * sizeof(wchar_t));
    RegCloseKey(key);
    CORVLCfg file;
    EXPECT_EQ(1, file.Initialize(L"a.ini"));
}

// A cut name would be that of another file.
TEST_F(ConfigurationFiles, APathThatDoesntFitGivesNoFile)
{
    constexpr std::size_t kLongest = text::kPathCapacity - 1;
    const std::string longest(kLongest - kFolder.size(), 'n');
    CORVLCfg file;
    for (const std::string& name : {longest, 'm' + longest, 'm' + longest + longest})
    {
        EXPECT_EQ(0, file.Initialize(Wide(name).data())) << "there is no such file";
        EXPECT_EQ(kFolder + longest, Utf8(file.GetFullPath()));
    }
    ASSERT_TRUE(
        seeding::SetText(HKEY_LOCAL_MACHINE, kInstallationKey, "CfgPath", std::string(kLongest, 'f')));
    CORVLCfg fresh;
    EXPECT_EQ(0, fresh.Initialize(L"a.ini"));
    EXPECT_EQ("", Utf8(fresh.GetFullPath()));

    char letter = 'a';
    for (const std::size_t length : {kLongest, kLongest + 1, 2 * kLongest, 4 * kLongest})
    {
        const std::string folder = "C:\\" + std::string(200, letter++);
        const std::string name(length - folder.size() - 1, 'n');
        const bool fits = length == kLongest;
        CORVLProfile profile;
        EXPECT_EQ(fits ? 1 : 0, profile.Initialize(Wide(name).data(), Wide(folder).data(), 0));
        EXPECT_EQ(fits ? folder + '\\' + name : "", Utf8(profile.GetFullPath()));
        EXPECT_EQ(fits, seeding::Exists(folder)) << "nothing is created for a path that doesn't fit";
        EXPECT_EQ(0, profile.Initialize(L"p.ini", Wide("C:\\" + std::string(length, letter)).data(), 0));
        EXPECT_EQ("", Utf8(profile.GetFullPath()));
    }
}

TEST_F(ConfigurationFiles, HexadecimalNumbersNeedTheirPrefix)
{
    struct Case
    {
        const char* text;
        int number;
    };
    constexpr Case kCases[] = {
        {"0x1F", 31}, {"0xffffffff", -1}, {"1F", 7}, {"0x", 7},   {"0X1F", 7},
        {"0xg", 7},   {"0x5g", 5},        {"", 7},   {"0x 5", 5}, {"0x1000000000000000ABCDE", 10},
    };
    CORVLCfg file;
    ASSERT_EQ(1, file.Initialize(L"a.ini"));
    for (const Case& row : kCases)
    {
        ASSERT_NE(0, file.PutString(L"S", L"Number", Wide(row.text).data()));
        EXPECT_EQ(row.number, file.GetHex(L"S", L"Number", 7)) << row.text;
    }
    for (const int number : {0, 1, 0x7FFFFFFF, -1})
    {
        file.PutHex(L"S", L"Number", number);
        EXPECT_EQ(number, file.GetHex(L"S", L"Number", 7));
        file.PutInt(L"S", L"Number", number);
        EXPECT_EQ(number, file.GetInt(L"S", L"Number", 7));
    }
    EXPECT_EQ("-1", seeding::GetKey("C:\\Cfg\\a.ini", "S", "Number"));
}

TEST_F(ConfigurationFiles, ProfileFilesComeIntoBeing)
{
    struct Case
    {
        const char* where;
        int isUser;
        std::string folder;
    };
    const Case kCases[] = {
        {nullptr, 0, FolderOf({})},
        {nullptr, 1, FolderOf({})},
        {"C:\\New\\Folder", 0, "C:\\New\\Folder"},
        {"C:\\New\\Other\\", 0, "C:\\New\\Other"},
        {"alice", 1, FolderOf("alice")},
        {"ALICE", 1, FolderOf("alice")},
    };
    for (const Case& row : kCases)
    {
        const std::vector<wchar_t> where = Wide(row.where == nullptr ? "" : row.where);
        const std::string path = row.folder + "\\p.ini";
        for (int round = 0; round < 2; ++round)
        {
            CORVLProfile file;
            EXPECT_EQ(1,
                      file.Initialize(L"p.ini", row.where == nullptr ? nullptr : where.data(), row.isUser));
            EXPECT_EQ(path, Utf8(file.GetFullPath()));
            EXPECT_EQ("", seeding::ReadBytes(path));
        }
        seeding::Remove(path);
    }
}

TEST_F(ConfigurationFiles, AProfileFileWithoutAFolderFails)
{
    CORVLProfile file;
    EXPECT_EQ(0, file.Initialize(L"p.ini", L"nobody", 1));
    EXPECT_EQ(0, file.Initialize(L"p.ini", L"carol", 1)); // not logged on
    EXPECT_EQ(0, file.Initialize(L"p.ini", L"", 0));
    seeding::SwitchLogsOn();
    Faults::Inject("SHGetFolderPathW", 1, ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(0, file.Initialize(L"p.ini", nullptr, 0));
    EXPECT_EQ("SHGetFolderPath failed for -2147024893", seeding::LogLines("orvl.log").back());
    Faults::Inject("WritePrivateProfileStringW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(0, file.Initialize(L"new.ini", nullptr, 0));
}

TEST_F(ConfigurationFiles, TheRunningAccountsFolderIsBoundedByTheCallersRoom)
{
    CORVLProfile file;
    wchar_t folder[text::kPathCapacity];
    EXPECT_EQ(folder, file.GetHomePath(folder, static_cast<int>(std::size(folder))));
    EXPECT_EQ(FolderOf({}), Utf8(folder));
    folder[10] = L'#';
    EXPECT_EQ(folder, file.GetHomePath(folder, 10));
    EXPECT_EQ(FolderOf({}).substr(0, 9), Utf8(folder));
    EXPECT_EQ(L'#', folder[10]);
    EXPECT_EQ(nullptr, file.GetHomePath(folder, 0));
}

TEST_F(ConfigurationFiles, TheInstallationsModuleTellsItsFolderAndTheParent)
{
    const auto told = [](const wchar_t* answer) { return answer == nullptr ? "none" : Utf8(answer); };
    CORVLCfg file;
    wchar_t folder[text::kPathCapacity];
    EXPECT_EQ("none", told(file.GetDllPath(folder, 260)));
    EXPECT_EQ("none", told(file.GetHomePath(folder, 260)));
    simulated::Machine::Write("Modules", "ORVLDLL.DLL", "C:\\ORVL\\Bin\\ORVLDLL.DLL");
    EXPECT_EQ("C:\\ORVL\\Bin", told(file.GetDllPath(folder, 24)));
    EXPECT_EQ("C:\\ORVL", told(file.GetHomePath(folder, 24)));
    EXPECT_EQ("none", told(file.GetDllPath(folder, 23))) << "the module's own name doesn't fit";
    EXPECT_EQ("none", told(file.GetDllPath(folder, 0)));
}

} // namespace
