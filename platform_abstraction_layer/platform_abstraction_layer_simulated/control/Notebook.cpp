// control/Notebook.cpp
//
// Making a notebook, and changes to its accounts and its system.

#include "control/Notebook.h"

#include "base/CodePage.h"
#include "base/HostFiles.h"
#include "base/WholeFile.h"
#include "control/FreshNotebook.h"
#include "control/Profiles.h"
#include "control/RegistryEditor.h"
#include "machine/Machine.h"
#include "modules/advapi32/Hives.h"
#include "modules/advapi32/Tokens.h"

#include <winnt.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <tuple>

namespace simulated
{

namespace
{

constexpr const char* kMachineSection = "Machine";
constexpr const char* kInstallationFiles = ".ini";
constexpr const char* kPowerSchemesFile = "PowerSchemes.ini";

// What a notebook's folder contains, apart from the temporary files of WholeFile.
constexpr const char* kParts[] = {"drives", "machine.ini", "objects", "registry"};

constexpr SystemVersion kVersions[] = {
    {5, 1, 2600, 3},
    {6, 0, 6002, 2},
    {6, 1, 7601, 1},
    {10, 0, 19045, 0},
};

const SystemVersion* FindVersion(DWORD major, DWORD minor)
{
    const auto* const found = std::find_if(std::begin(kVersions), std::end(kVersions),
                                           [major, minor](const SystemVersion& version)
                                           { return version.major == major && version.minor == minor; });
    return found == std::end(kVersions) ? nullptr : found;
}

DWORD MajorVersion()
{
    return static_cast<DWORD>(Machine::ReadNumber(kMachineSection, "Major", kVersions[0].major));
}

// The generation that the folders were made for.
DWORD FoldersVersion()
{
    return static_cast<DWORD>(Machine::ReadNumber(kMachineSection, "FoldersOf", MajorVersion()));
}

std::string ProfileListKey(const Account& account)
{
    return std::string("HKLM\\") + kProfileList + '\\' + account.sid;
}

bool EnterInProfileList(const Account& account)
{
    return RegistryEditor::Write(ProfileListKey(account), "ProfileImagePath",
                                 registry::TextValue(UnexpandedProfile(account.profile), REG_EXPAND_SZ));
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
    const SystemVersion* const version = FindVersion(options.major, options.minor);
    std::error_code ignored;
    const bool isPossible =
        version != nullptr && IsAnsiCodePage(options.codePage) && IsReplaceable(folder) &&
        (options.installation.empty() || std::filesystem::is_directory(options.installation, ignored));
    // Nothing is emptied for a notebook that can't be made.
    if (!isPossible || !host_files::RemoveAll(folder))
    {
        return false;
    }
    std::filesystem::create_directories(folder, ignored); // a failure shows in the next step
    Machine::Use(folder);
    tokens::Reset();
    const FreshNotebook& fresh = FreshNotebook::Of(*version, options.codePage);
    // machine.ini comes last: a folder without it is no notebook.
    return fresh.tree.MakeIn(folder) && host_files::Write(Machine::PathOf("machine.ini"), fresh.state) &&
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
    return Machine::Read(kMachineSection, "Major").has_value();
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
        service->profile + '\\' + std::string(layout.localAppData) + "\\Kelvo\\ORVL\\Cfg\\";
    host_files::Tree tree;
    std::error_code error;
    for (const auto& file : std::filesystem::directory_iterator(hostFolder, error))
    {
        if (file.path().extension() != kInstallationFiles)
        {
            continue; // the Windows install scripts
        }
        const std::string name = file.path().filename().string();
        const std::optional<std::string> bytes = ReadWhole(file.path().string());
        if (!bytes)
        {
            return false;
        }
        tree.AddFile(profiles::PartOf((name == kPowerSchemesFile ? data : kInstallationFolder) + name),
                     *bytes);
    }
    return !error && tree.MakeIn(Machine::PathOf({}));
}

bool Notebook::AddStranger(const std::string& name)
{
    const bool isName = !name.empty() && name.find_first_of("\"/\\[]:;|=,+*?<>") == std::string::npos;
    return isName && !Accounts::Find(name) &&
           Accounts::Store({name, kComputerName, NextUserSid(), "", false, false});
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
    return Accounts::Store(*account) && hives::Load(account->sid, account->name);
}

bool Notebook::LogOff(const std::string& name)
{
    std::optional<Account> account = Accounts::Find(name);
    if (!account || account->isWellKnown)
    {
        return false;
    }
    account->isLoggedOn = false;
    hives::Unload(account->sid); // false when it wasn't loaded
    return Accounts::Store(*account);
}

bool Notebook::RemoveUser(const std::string& name)
{
    const std::optional<Account> account = Accounts::Find(name);
    if (!account || account->isWellKnown)
    {
        return false;
    }
    std::ignore = RegistryEditor::RemoveKey(ProfileListKey(*account)); // a stranger has none
    return Accounts::Remove(name) && profiles::Remove(*account);
}

bool Notebook::SetVersion(DWORD major, DWORD minor)
{
    const SystemVersion* const version = FindVersion(major, minor);
    return version != nullptr &&
           Machine::Write(kMachineSection, {{"Major", std::to_string(version->major)},
                                            {"Minor", std::to_string(version->minor)},
                                            {"Build", std::to_string(version->build)},
                                            {"ServicePack", std::to_string(version->servicePack)}});
}

bool Notebook::SetCodePage(unsigned codePage)
{
    return IsAnsiCodePage(codePage) && Machine::WriteNumber(kMachineSection, "AnsiCodePage", codePage);
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
