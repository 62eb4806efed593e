// control/Profiles.cpp
//
// Profiles and hives of accounts.

#include "control/Profiles.h"

#include "control/Seeding.h"
#include "machine/Machine.h"
#include "modules/advapi32/Hives.h"

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

registry::Hive FreshHive(const Account& account, const Layout& layout)
{
    // The part that all share is computed once.
    static const registry::Hive kFresh = []
    {
        registry::Hive hive("HKEY_CURRENT_USER");
        SeedUserPower(hive);
        hive.Make("Software\\Kelvo");
        hive.Make("Environment");
        return hive;
    }();
    registry::Hive hive = kFresh;
    const std::string shellFolders = Joined(kExplorer, "Shell Folders");
    const auto put = [&](std::string_view name, std::string_view folder)
    { hive.Put(shellFolders, name, registry::TextValue(Joined(account.profile, folder), REG_SZ)); };
    put("Local AppData", layout.localAppData);
    put("AppData", layout.appData);
    for (const ShellFolder& folder : kShellFolders)
    {
        put(folder.value, folder.folder);
    }
    hive.Put(kExplorer, "Logon User Name", registry::TextValue(account.name, REG_SZ));
    return hive;
}

} // namespace

const Layout& LayoutOf(DWORD majorVersion)
{
    return kLayouts[majorVersion < kFirstOfLaterGeneration ? 0 : 1];
}

std::string PartOf(std::string_view windowsPath)
{
    std::string path(windowsPath);
    path.replace(0, std::min<std::size_t>(path.size(), sizeof "C:" - 1), "drives/C");
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

void Add(host_files::Tree& tree, const Account& account, DWORD majorVersion)
{
    const Layout& layout = LayoutOf(majorVersion);
    tree.AddFolder(PartOf(Joined(account.profile, layout.localAppData)));
    tree.AddFolder(PartOf(Joined(account.profile, layout.appData)));
    if (layout.localAppData != kEarlyLocalAppData)
    {
        // Older programs know the folder by its earlier name.
        tree.AddLink(PartOf(Joined(account.profile, kEarlyLocalAppData)), "../AppData/Local");
    }
    tree.AddFile(hives::PartOf(account.name), FreshHive(account, layout).Text());
    tree.AddFile(PartOf(Joined(account.profile, "NTUSER.DAT")), hives::FileText(account.name));
}

bool Create(const Account& account, DWORD majorVersion)
{
    host_files::Tree tree;
    Add(tree, account, majorVersion);
    return tree.MakeIn(Machine::PathOf({}));
}

bool Remove(const Account& account)
{
    hives::Unload(account.sid); // false when it wasn't loaded
    return host_files::RemoveAll(hives::FileOf(account.name)) &&
           (account.profile.empty() || host_files::RemoveAll(Machine::PathOf(PartOf(account.profile))));
}

} // namespace simulated::profiles
