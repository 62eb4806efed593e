// notebook/Notebook.cpp
//
// A fresh notebook, and changes to its accounts and its system.

#include "notebook/Notebook.h"

#include "advapi32/Hives.h"
#include "advapi32/Tokens.h"
#include "notebook/CodePage.h"
#include "notebook/HardwareSeeding.h"
#include "notebook/HostFiles.h"
#include "notebook/Machine.h"
#include "notebook/Profiles.h"
#include "notebook/RegistryEditor.h"
#include "notebook/RegistrySeeder.h"
#include "notebook/WholeFile.h"

#include <winnt.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace simulated
{

namespace
{

constexpr const char* kSection = "Machine";
constexpr const char* kComputerName = "NOTEBOOK";
constexpr const char* kProfileList = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr const char* kUserSidBegin = "S-1-5-21-1220945662-1202660629-1417001333-";
constexpr unsigned kFirstUserNumber = 1003;
constexpr const char* kInstallationFiles = ".ini";
constexpr const char* kPowerSchemesFile = "PowerSchemes.ini";

// What lies in a notebook's folder, beside the files that WholeFile needs for a while.
constexpr const char* kParts[] = {"drives", "machine.ini", "objects", "registry"};

struct Version
{
    DWORD major;
    DWORD minor;
    DWORD build;
    DWORD servicePack;
};
constexpr Version kVersions[] = {
    {5, 1, 2600, 3},
    {6, 0, 6002, 2},
    {6, 1, 7601, 1},
    {10, 0, 19045, 0},
};

const Version* FindVersion(DWORD major, DWORD minor)
{
    const auto* const found = std::find_if(std::begin(kVersions), std::end(kVersions),
                                           [major, minor](const Version& version)
                                           { return version.major == major && version.minor == minor; });
    return found == std::end(kVersions) ? nullptr : found;
}

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

DWORD MajorVersion()
{
    return static_cast<DWORD>(Machine::ReadNumber(kSection, "Major", kVersions[0].major));
}

// The generation that the folders were made for.
DWORD FoldersVersion()
{
    return static_cast<DWORD>(Machine::ReadNumber(kSection, "FoldersOf", MajorVersion()));
}

std::string Replaced(const std::string& text, std::string_view begin, std::string_view with)
{
    return text.starts_with(begin) ? std::string(with) + text.substr(begin.size()) : text;
}

// A profile path as "ProfileList" has it.
std::string Unexpanded(const std::string& profile)
{
    return Replaced(Replaced(profile, "C:\\WINDOWS\\", "%systemroot%\\"), "C:\\", "%SystemDrive%\\");
}

bool FillMachineHive(RegistrySeeder& hive, const NotebookOptions& options,
                     const std::vector<Account>& accounts)
{
    bool done = hive.PutText("SOFTWARE\\Kelvo\\ORVL", "CfgPath", Notebook::kInstallationFolder) &&
                hive.AddKey("SOFTWARE\\Kelvo\\ORVA") && hive.AddKey("SOFTWARE\\Classes\\CLSID") &&
                hive.AddKey("SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run") &&
                hive.AddKey("SYSTEM\\CurrentControlSet\\Control\\Class") &&
                hive.AddKey("SYSTEM\\CurrentControlSet\\Services") && hive.AddKey(kProfileList) &&
                SeedMachinePower(options.major, hive.AsPut()) && SeedMachineDevices(hive.AsPut());
    for (const Account& account : accounts)
    {
        done = done && hive.Put(std::string(kProfileList) + '\\' + account.sid, "ProfileImagePath",
                                registry::TextValue(Unexpanded(account.profile), REG_EXPAND_SZ));
    }
    return done;
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

std::string StateText(const Version& version, unsigned codePage, const std::vector<Account>& accounts)
{
    const auto line = [](const char* key, const std::string& value) { return key + ('=' + value) + '\n'; };
    std::string text = std::string("[") + kSection + "]\n" + line("Major", std::to_string(version.major)) +
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
    return text + '\n' + std::string(DefaultHardware());
}

bool MakeFolders(DWORD major)
{
    bool done = true;
    for (const char* const folder : {"registry/hives", "registry/HKEY_LOCAL_MACHINE", "registry/HKEY_USERS",
                                     "objects", "drives/C/WINDOWS/system32/config", "drives/C/WINDOWS/Temp",
                                     "drives/C/Program Files/Kelvo/ORVL/Cfg"})
    {
        done = done && host_files::MakeFolders(Machine::PathOf(folder));
    }
    const profiles::Layout& layout = profiles::LayoutOf(major);
    done = done && host_files::MakeFolders(profiles::HostPath(layout.users));
    const std::string early = profiles::HostPath(profiles::LayoutOf(kVersions[0].major).users);
    return done && (early == profiles::HostPath(layout.users) || host_files::Link(early, "Users"));
}

bool MakeProfiles(const std::vector<Account>& accounts, DWORD major)
{
    // The service account's hive is also the one of whoever has none of his own.
    bool done = hives::Link(".DEFAULT", Notebook::kServiceAccount);
    for (const Account& account : accounts)
    {
        done = done && profiles::Create(account, major) && (!account.isLoggedOn || profiles::Load(account));
    }
    return done;
}

std::string ProfileListKey(const Account& account)
{
    return std::string("HKLM\\") + kProfileList + '\\' + account.sid;
}

bool EnterInProfileList(const Account& account)
{
    return RegistryEditor::Write(ProfileListKey(account), "ProfileImagePath",
                                 registry::TextValue(Unexpanded(account.profile), REG_EXPAND_SZ));
}

std::string NextUserSid()
{
    unsigned number = kFirstUserNumber;
    while (Accounts::FindSid(kUserSidBegin + std::to_string(number)))
    {
        ++number;
    }
    return kUserSidBegin + std::to_string(number);
}

} // namespace

bool Notebook::Create(const std::string& folder, const NotebookOptions& options)
{
    const Version* const version = FindVersion(options.major, options.minor);
    std::error_code ignored;
    const bool isPossible =
        version != nullptr && IsAnsiCodePage(options.codePage) && IsReplaceable(folder) &&
        (options.installation.empty() || std::filesystem::is_directory(options.installation, ignored));
    // Nothing is emptied for a notebook that can't be made.
    if (!isPossible || !host_files::RemoveAll(folder) || !host_files::MakeFolders(folder))
    {
        return false;
    }
    Machine::Use(folder);
    tokens::Reset();
    const std::vector<Account> accounts = FreshAccounts(profiles::LayoutOf(options.major));
    if (!MakeFolders(options.major) || !MakeProfiles(accounts, options.major))
    {
        return false;
    }
    RegistrySeeder machine(hives::MachineRoot());
    // The state comes last: a folder without it is no notebook.
    return FillMachineHive(machine, options, accounts) &&
           host_files::Write(Machine::PathOf("machine.ini"),
                             StateText(*version, options.codePage, accounts)) &&
           (options.installation.empty() || Install(options.installation));
}

bool Notebook::IsReplaceable(const std::string& folder)
{
    std::error_code error;
    const std::filesystem::directory_iterator entries(folder, error);
    if (error)
    {
        return error == std::errc::no_such_file_or_directory;
    }
    return std::all_of(begin(entries), end(entries),
                       [](const std::filesystem::directory_entry& entry)
                       {
                           const std::string name = entry.path().filename().string();
                           return IsHousekeepingName(name) ||
                                  std::find(std::begin(kParts), std::end(kParts), name) != std::end(kParts);
                       });
}

bool Notebook::Exists()
{
    return Machine::Read(kSection, "Major").has_value();
}

bool Notebook::Install(const std::string& hostFolder)
{
    const std::optional<Account> service = Accounts::Find(kServiceAccount);
    const profiles::Layout& layout = profiles::LayoutOf(FoldersVersion());
    if (!service)
    {
        return false;
    }
    const std::string data =
        profiles::HostPath(service->profile + '\\' + std::string(layout.localAppData) + "\\Kelvo\\ORVL\\Cfg");
    const std::string installation = profiles::HostPath(kInstallationFolder);
    if (!host_files::MakeFolders(data) || !host_files::MakeFolders(installation))
    {
        return false;
    }
    std::error_code error;
    for (const auto& file : std::filesystem::directory_iterator(hostFolder, error))
    {
        if (file.path().extension() != kInstallationFiles)
        {
            continue; // what puts the files in place on Windows
        }
        const std::string name = file.path().filename().string();
        const std::optional<std::string> bytes = ReadWhole(file.path().string());
        const std::string target = (name == kPowerSchemesFile ? data : installation) + '/' + name;
        if (!bytes || !host_files::Write(target, *bytes))
        {
            return false;
        }
    }
    return !error;
}

bool Notebook::AddStranger(const std::string& name)
{
    return !Accounts::Find(name) && Accounts::Store({name, kComputerName, NextUserSid(), "", false, false});
}

bool Notebook::AddUser(const std::string& name)
{
    return AddStranger(name) && LogOn(name) && LogOff(name);
}

bool Notebook::LogOn(const std::string& name)
{
    std::optional<Account> account = Accounts::Find(name);
    if (!account)
    {
        return false;
    }
    if (account->profile.empty())
    {
        const DWORD major = FoldersVersion();
        account->profile = std::string(profiles::LayoutOf(major).users) + '\\' + account->name;
        if (!profiles::Create(*account, major) || !EnterInProfileList(*account))
        {
            return false;
        }
    }
    account->isLoggedOn = true;
    return Accounts::Store(*account) && profiles::Load(*account);
}

bool Notebook::LogOff(const std::string& name)
{
    std::optional<Account> account = Accounts::Find(name);
    if (!account || account->isWellKnown)
    {
        return false;
    }
    account->isLoggedOn = false;
    return profiles::Unload(*account) && Accounts::Store(*account);
}

bool Notebook::RemoveUser(const std::string& name)
{
    const std::optional<Account> account = Accounts::Find(name);
    if (!account || account->isWellKnown)
    {
        return false;
    }
    RegistryEditor::RemoveKey(ProfileListKey(*account)); // a stranger has none
    return Accounts::Remove(name) && profiles::Remove(*account);
}

bool Notebook::SetVersion(DWORD major, DWORD minor)
{
    const Version* const version = FindVersion(major, minor);
    return version != nullptr &&
           Machine::Write(kSection, {{"Major", std::to_string(version->major)},
                                     {"Minor", std::to_string(version->minor)},
                                     {"Build", std::to_string(version->build)},
                                     {"ServicePack", std::to_string(version->servicePack)}});
}

bool Notebook::SetCodePage(unsigned codePage)
{
    return IsAnsiCodePage(codePage) && Machine::WriteNumber(kSection, "AnsiCodePage", codePage);
}

bool Notebook::SetModule(const std::string& name, bool isPresent)
{
    constexpr const char* kModules = "Modules";
    if (isPresent)
    {
        Machine::Remove(kModules, name); // false when it was there all the time
        return true;
    }
    return Machine::Write(kModules, name, "absent");
}

} // namespace simulated
