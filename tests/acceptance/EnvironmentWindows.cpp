// tests/acceptance/EnvironmentWindows.cpp
//
// The machine as it is, with a folder of its own for the installation's files, and a power manager whose
// store is seeded anew. What a test leaves in the registry and in the account's configuration folder is
// removed after it; the account loses its own power schemes.

#include "acceptance/Environment.h"

#include "PowerStoreKey.h"
#include "PowerStoreSeeding.h"
#include "acceptance/Seeding.h"

#include <gtest/gtest.h>

#include <iterator>

namespace environment
{

namespace
{

constexpr const char* kInstallationKey = "Software\\Kelvo\\ORVL";
constexpr const char* kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kFolder = "C:\\OrvlAcceptance\\";
constexpr const char* kOtherLocalAppData = "C:\\OrvlAcceptance\\other";
constexpr const char* kExplorerKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr const char* kOtherUser = "SYSTEM";
constexpr const char* kOtherHive = "S-1-5-18";

// The files of an installation lie in this folder beside the program.
std::string ReferenceFile(const std::string& name)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::string path = seeding::Utf8(program);
    return path.substr(0, path.find_last_of('\\') + 1) + "installation\\" + name;
}

void InstallFile(const std::string& folder, const std::string& name)
{
    const std::optional<std::string> bytes = seeding::ReadBytes(ReferenceFile(name));
    ASSERT_TRUE(bytes.has_value()) << name << " is not beside the program";
    EXPECT_TRUE(seeding::WriteBytes(folder + name, *bytes));
}

// With its files; a folder that holds folders stays.
void RemoveFolder(const std::string& folder)
{
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(seeding::Wide(folder + "*.*").data(), &found);
    if (search == INVALID_HANDLE_VALUE)
    {
        return;
    }
    do
    {
        seeding::Remove(folder + seeding::Utf8(found.cFileName)); // refuses folders
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
    RemoveDirectoryW(seeding::Wide(folder).data());
}

// What a logon leaves in a hive, as far as it isn't there: Wine has no hive of the other user.
void MakeLogon(HKEY root, const std::string& hive, const std::string& user, const std::string& folder)
{
    const std::string explorer = hive + kExplorerKey;
    if (!seeding::GetText(root, explorer, "Logon User Name").has_value())
    {
        EXPECT_TRUE(seeding::SetText(root, explorer, "Logon User Name", user));
    }
    const std::string folders = explorer + "\\Shell Folders";
    if (!seeding::GetText(root, folders, "Local AppData").has_value())
    {
        EXPECT_TRUE(seeding::SetText(root, folders, "Local AppData", folder));
    }
}

void RemoveTraces()
{
    RemoveFolder("C:\\temp1234567890\\");
    power_store::Key::RemoveTree(HKEY_LOCAL_MACHINE, power_store::ToText(L"Software\\Kelvo"));
    seeding::RemoveValue(HKEY_LOCAL_MACHINE, kRunKey, "ORVA");
    for (const std::string& local : {seeding::LocalAppData(), std::string(kOtherLocalAppData)})
    {
        for (const char* const folder :
             {"\\Kelvo\\ORVL\\Cfg\\sub\\", "\\Kelvo\\ORVL\\Cfg\\", "\\Kelvo\\ORVL\\", "\\Kelvo\\"})
        {
            RemoveFolder(local + folder);
        }
    }
    RemoveFolder(std::string(kOtherLocalAppData) + "\\");
    RemoveFolder(std::string(kFolder) + "sub\\");
    RemoveFolder(kFolder);
}

DWORD MajorVersion()
{
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    GetVersionExW(&version);
    return version.dwMajorVersion;
}

} // namespace

std::string UserName()
{
    char name[256] = {};
    DWORD size = sizeof name;
    GetUserNameA(name, &size);
    return name;
}

std::string OtherUserName()
{
    return kOtherUser;
}

std::vector<DWORD> Generations()
{
    return {MajorVersion()};
}

void Recreate(DWORD major)
{
    RemoveTraces();
    EXPECT_EQ(DWORD{ERROR_SUCCESS}, power_store::RemoveStore());
    EXPECT_EQ(DWORD{ERROR_SUCCESS}, power_store::SeedMachine(major));
    EXPECT_EQ(DWORD{ERROR_SUCCESS}, power_store::SeedCurrentUser());
    for (const char* const name : {"ORVLCfg.ini", "PowerSetting.ini", "SBXCfg.ini"})
    {
        InstallFile(kFolder, name);
    }
    InstallFile(seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\", "PowerSchemes.ini");
    MakeLogon(HKEY_CURRENT_USER, "", UserName(), seeding::LocalAppData());
    MakeLogon(HKEY_USERS, std::string(kOtherHive) + "\\", kOtherUser, kOtherLocalAppData);
    EXPECT_TRUE(seeding::SetText(HKEY_LOCAL_MACHINE, kInstallationKey, "CfgPath", kFolder));
    EXPECT_TRUE(seeding::MakeKey(HKEY_LOCAL_MACHINE, "Software\\Kelvo\\ORVA"));
}

void RemoveHardware()
{
}

bool HasOnlyLogged()
{
    return true;
}

void ForgetCalls()
{
}

std::size_t HeapInUse()
{
    std::size_t bytes = 0;
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(std::size(heaps)), heaps);
    for (DWORD index = 0; index < count && index < std::size(heaps); ++index)
    {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[index], &entry) != 0)
        {
            bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        }
    }
    return bytes;
}

Holdings Held()
{
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return {handles, HeapInUse()};
}

std::vector<std::filesystem::path> Folders()
{
    return {kFolder, seeding::Wide(seeding::LocalAppData() + "\\Kelvo").data()};
}

Machine::Machine()
{
    Recreate(MajorVersion());
}

Machine::~Machine()
{
    RemoveTraces();
}

} // namespace environment
