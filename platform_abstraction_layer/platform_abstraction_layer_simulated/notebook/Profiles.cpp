// notebook/Profiles.cpp
//
// Profiles and hives of accounts.

#include "notebook/Profiles.h"

#include "advapi32/Hives.h"
#include "notebook/HostFiles.h"
#include "notebook/Machine.h"
#include "notebook/RegistrySeeder.h"

#include <winnt.h>

#include <algorithm>

namespace simulated::profiles
{

namespace
{

constexpr DWORD kFirstOfLaterGeneration = 6;

constexpr Layout kLayouts[] = {
    {"C:\\Documents and Settings", "C:\\Documents and Settings", kEarlyLocalAppData, "Application Data"},
    {"C:\\Users", "C:\\WINDOWS\\ServiceProfiles", "AppData\\Local", "AppData\\Roaming"},
};

constexpr std::string_view kExplorer = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";

// The other folders that a logon enters in "Shell Folders", inside a profile.
struct ShellFolder
{
    const char* value;
    const char* folder;
};
constexpr ShellFolder kShellFolders[] = {{"Desktop", "Desktop"},
                                         {"Favorites", "Favorites"},
                                         {"Personal", "My Documents"},
                                         {"Start Menu", "Start Menu"}};

std::string Joined(std::string_view folder, std::string_view rest)
{
    return std::string(folder) + '\\' + std::string(rest);
}

bool FillHive(RegistrySeeder& hive, const Account& account, const Layout& layout)
{
    const std::string shellFolders = Joined(kExplorer, "Shell Folders");
    bool done = hive.PutText(kExplorer, "Logon User Name", account.name) &&
                hive.PutText(shellFolders, "Local AppData", Joined(account.profile, layout.localAppData)) &&
                hive.PutText(shellFolders, "AppData", Joined(account.profile, layout.appData)) &&
                hive.AddKey("Software\\Kelvo") && hive.AddKey("Environment");
    // Every hive gets the same, so it is worked out once.
    static const std::vector<RegistrySeeder::File> kPower = RegistrySeeder::Record(&SeedUserPower);
    for (const RegistrySeeder::File& file : kPower)
    {
        done = done && hive.Put(file);
    }
    for (const ShellFolder& folder : kShellFolders)
    {
        done = done && hive.PutText(shellFolders, folder.value, Joined(account.profile, folder.folder));
    }
    return done;
}

bool MakeFolders(const Account& account, const Layout& layout)
{
    const std::string profile = HostPath(account.profile);
    bool done = host_files::MakeFolders(HostPath(Joined(account.profile, layout.localAppData))) &&
                host_files::MakeFolders(HostPath(Joined(account.profile, layout.appData)));
    if (layout.localAppData != kEarlyLocalAppData)
    {
        // Programs of the earlier generation know the folder by the name that it had there.
        done = done && host_files::MakeFolder(HostPath(Joined(account.profile, "Local Settings"))) &&
               host_files::Link(HostPath(Joined(account.profile, kEarlyLocalAppData)), "../AppData/Local");
    }
    return done;
}

} // namespace

const Layout& LayoutOf(DWORD majorVersion)
{
    return kLayouts[majorVersion < kFirstOfLaterGeneration ? 0 : 1];
}

std::string HostPath(std::string_view windowsPath)
{
    std::string path(windowsPath);
    path.erase(0, std::min<std::size_t>(path.size(), sizeof "C:" - 1));
    std::replace(path.begin(), path.end(), '\\', '/');
    return Machine::PathOf("drives/C") + path;
}

bool Create(const Account& account, DWORD majorVersion)
{
    const Layout& layout = LayoutOf(majorVersion);
    RegistrySeeder hive(hives::FolderOf(account.name));
    return MakeFolders(account, layout) && FillHive(hive, account, layout) &&
           host_files::Write(HostPath(Joined(account.profile, "NTUSER.DAT")), hives::FileText(account.name));
}

bool Remove(const Account& account)
{
    return Unload(account) && host_files::RemoveAll(hives::FolderOf(account.name)) &&
           (account.profile.empty() || host_files::RemoveAll(HostPath(account.profile)));
}

bool Load(const Account& account)
{
    return hives::Link(account.sid, account.name);
}

bool Unload(const Account& account)
{
    return hives::Unlink(account.sid);
}

} // namespace simulated::profiles
