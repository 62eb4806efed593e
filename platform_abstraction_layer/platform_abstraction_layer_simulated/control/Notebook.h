// control/Notebook.h
//
// Makes a simulated notebook and changes it: its accounts, its version of Windows, its code
// page, its modules, its files and its registry. Hardware and power have headers of their own beside this
// one.
//
// What other parts of the platform read of machine.ini, section "Machine": "Major", "Minor", "Build",
// "ServicePack", "AnsiCodePage" and "ComputerName"; section "Modules": see kernel32/Modules.h.
#pragma once

#include "machine/Accounts.h"

#include <windef.h>

#include <string>

namespace simulated
{

struct NotebookOptions
{
    DWORD major = 5;
    DWORD minor = 1;
    unsigned codePage = 1252;      ///< or 65001
    std::string installation = {}; ///< host folder with the files of an installation, see `Notebook::Install`
};

/// All operations are on the notebook that this process uses, and return false when the host's file system
/// refuses.
class Notebook
{
public:
    // The accounts of a fresh notebook: the system's own three, two users who are logged on, and one who has
    // a profile but isn't.
    static constexpr const char* kServiceAccount = "SYSTEM";
    static constexpr const char* kFirstUser = "alice";
    static constexpr const char* kSecondUser = "bob";
    static constexpr const char* kAbsentUser = "carol";

    /// Where an installation puts its files, with the final backslash as the registry has it.
    static constexpr const char* kInstallationFolder = "C:\\Program Files\\Kelvo\\ORVL\\Cfg\\";

    /// Makes a fresh notebook in `folder`, which needn't exist and is emptied when it does, and lets this
    /// process use it. False also for a folder that `IsReplaceable` spares, for a version of Windows and a
    /// code page that aren't known, and for an installation that isn't there.
    [[nodiscard]] static bool Create(const std::string& folder, const NotebookOptions& options = {});

    /// True for a folder that isn't there or holds nothing but parts of a notebook, a damaged one's included.
    [[nodiscard]] static bool IsReplaceable(const std::string& folder);

    /// True when a notebook has been made in the folder that this process uses.
    [[nodiscard]] static bool Exists();

    /// Copies the files of an installation (*.ini): "PowerSchemes.ini" to "Kelvo\ORVL\Cfg" in the local
    /// application data of the service account, all others to `kInstallationFolder`.
    [[nodiscard]] static bool Install(const std::string& hostFolder);

    /// A new user with the next free SID, a profile and a hive; not logged on. False also when there is an
    /// account of that name, and for one with characters that no account's name has.
    [[nodiscard]] static bool AddUser(const std::string& name);

    /// An account that the machine knows but that never logged on: no profile, no hive, no entry in
    /// "ProfileList".
    [[nodiscard]] static bool AddStranger(const std::string& name);

    /// Loads a user's hive, or unloads it; the first logon of a stranger creates a profile. False for an
    /// unknown account.
    [[nodiscard]] static bool LogOn(const std::string& name);
    [[nodiscard]] static bool LogOff(const std::string& name);

    /// Removes the account, its profile and its hive.
    [[nodiscard]] static bool RemoveUser(const std::string& name);

    /// The version that the system reports. Folders and registry stay those of the version that the notebook
    /// was made for. False for a version that isn't known.
    [[nodiscard]] static bool SetVersion(DWORD major, DWORD minor);

    /// False for a code page that isn't known.
    [[nodiscard]] static bool SetCodePage(unsigned codePage);

    /// Removes a DLL of the system, or one of its functions ("PowrProf.dll.PowerDeleteScheme"), or restores
    /// back.
    [[nodiscard]] static bool SetModule(const std::string& name, bool isPresent);
};

} // namespace simulated
