// control/FreshNotebook.cpp
//
// Builds the content of a fresh notebook.

#include "control/FreshNotebook.h"

#include "control/Notebook.h"
#include "control/Profiles.h"
#include "control/Seeding.h"
#include "modules/advapi32/Hives.h"

#include <winnt.h>

#include <map>
#include <mutex>
#include <tuple>

namespace simulated
{

namespace
{

constexpr DWORD kEarlyMajor = 5;

// The system's own accounts; "%services%" is where their generation of Windows keeps their profiles.
struct ServiceAccount
{
    const char* name;
    const char* sid;
    const char* profile;
};
constexpr ServiceAccount kServiceAccounts[] = {
    {Notebook::kServiceAccount, "S-1-5-18", "C:\\WINDOWS\\system32\\config\\systemprofile"},
    {"LOCAL SERVICE", "S-1-5-19", "%services%\\LocalService"},
    {"NETWORK SERVICE", "S-1-5-20", "%services%\\NetworkService"},
};

std::string Replaced(const std::string& text, std::string_view begin, std::string_view with)
{
    return text.starts_with(begin) ? std::string(with) + text.substr(begin.size()) : text;
}

std::vector<Account> FreshAccounts(const profiles::Layout& layout)
{
    std::vector<Account> accounts;
    for (const ServiceAccount& service : kServiceAccounts)
    {
        accounts.push_back({service.name, "NT AUTHORITY", service.sid,
                            Replaced(service.profile, "%services%", layout.services), true, true});
    }
    unsigned number = kFirstUserNumber;
    for (const char* const user : {Notebook::kFirstUser, Notebook::kSecondUser, Notebook::kAbsentUser})
    {
        accounts.push_back({user, kComputerName, kUserSidBegin + std::to_string(number++),
                            std::string(layout.users) + '\\' + user, user != Notebook::kAbsentUser, false});
    }
    return accounts;
}

registry::Hive MachineHive(DWORD major, const std::vector<Account>& accounts)
{
    registry::Hive hive(hives::kMachine);
    hive.Put("SOFTWARE\\Kelvo\\ORVL", "CfgPath", registry::TextValue(Notebook::kInstallationFolder, REG_SZ));
    for (const char* const key :
         {"SOFTWARE\\Kelvo\\ORVA", "SOFTWARE\\Classes\\CLSID",
          "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", "SYSTEM\\CurrentControlSet\\Services"})
    {
        hive.Make(key);
    }
    SeedMachinePower(major, hive);
    SeedMachineDevices(hive);
    for (const Account& account : accounts)
    {
        hive.Put(std::string(kProfileList) + '\\' + account.sid, "ProfileImagePath",
                 registry::TextValue(UnexpandedProfile(account.profile), REG_EXPAND_SZ));
    }
    return hive;
}

std::string StateText(const SystemVersion& version, unsigned codePage, const std::vector<Account>& accounts)
{
    const auto line = [](const char* key, const std::string& value) { return key + ('=' + value) + '\n'; };
    std::string text = std::string("[Machine]\n") + line("Major", std::to_string(version.major)) +
                       line("Minor", std::to_string(version.minor)) +
                       line("Build", std::to_string(version.build)) +
                       line("ServicePack", std::to_string(version.servicePack)) +
                       line("FoldersOf", std::to_string(version.major)) +
                       line("AnsiCodePage", std::to_string(codePage)) + line("ComputerName", kComputerName);
    for (const Account& account : accounts)
    {
        text += "\n[Account " + account.name + "]\n" + line("Sid", account.sid) +
                line("Domain", account.domain) + line("Profile", account.profile) +
                line("LoggedOn", account.isLoggedOn ? "1" : "0") +
                line("WellKnown", account.isWellKnown ? "1" : "0");
    }
    // The service account's hive is also the one of whoever has none of its own.
    text += "\n[Hives]\n" + line(".DEFAULT", Notebook::kServiceAccount);
    for (const Account& account : accounts)
    {
        text += account.isLoggedOn ? line(account.sid.c_str(), account.name) : "";
    }
    return text + '\n' + DefaultHardware();
}

host_files::Tree FreshTree(DWORD major, const std::vector<Account>& accounts)
{
    host_files::Tree tree;
    for (const char* const folder : {"registry", "objects", "drives/C/WINDOWS/system32/config",
                                     "drives/C/WINDOWS/Temp", "drives/C/Program Files/Kelvo/ORVL/Cfg"})
    {
        tree.AddFolder(folder);
    }
    for (const Account& account : accounts)
    {
        profiles::Add(tree, account, major);
    }
    if (major != kEarlyMajor)
    {
        tree.AddLink(profiles::PartOf(profiles::LayoutOf(kEarlyMajor).users), "Users");
    }
    tree.AddFile(hives::PartOf(hives::kMachine), MachineHive(major, accounts).Text());
    return tree;
}

} // namespace

std::string UnexpandedProfile(const std::string& profile)
{
    return Replaced(Replaced(profile, "C:\\WINDOWS\\", "%systemroot%\\"), "C:\\", "%SystemDrive%\\");
}

const FreshNotebook& FreshNotebook::Of(const SystemVersion& version, unsigned codePage)
{
    static std::mutex mutex;
    static std::map<std::tuple<DWORD, DWORD, unsigned>, FreshNotebook> known;
    const std::lock_guard lock(mutex);
    const auto [place, isNew] = known.try_emplace({version.major, version.minor, codePage});
    if (isNew)
    {
        const std::vector<Account> accounts = FreshAccounts(profiles::LayoutOf(version.major));
        place->second = {FreshTree(version.major, accounts), StateText(version, codePage, accounts)};
    }
    return place->second;
}

} // namespace simulated
