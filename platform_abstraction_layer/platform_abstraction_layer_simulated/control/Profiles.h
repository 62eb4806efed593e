// control/Profiles.h
//
// What an account has on the machine once it has logged on: a profile folder on drive C with "NTUSER.DAT",
// and a registry hive, which "NTUSER.DAT" names.
#pragma once

#include "base/HostFiles.h"
#include "machine/Accounts.h"

#include <windef.h>

namespace simulated::profiles
{

/// The folders of a generation of Windows: 5 or 6 and later.
struct Layout
{
    std::string_view users;        ///< where the users' profiles lie
    std::string_view services;     ///< and those of LocalService and NetworkService
    std::string_view localAppData; ///< inside a profile
    std::string_view appData;
};
const Layout& LayoutOf(DWORD majorVersion);

inline constexpr std::string_view kEarlyLocalAppData = "Local Settings\\Application Data";

/// A path on drive C below the notebook's folder, as spelled.
std::string PartOf(std::string_view windowsPath);

/// Makes profile and hive, or adds them to a tree that is made later. The hive isn't loaded yet.
void Add(host_files::Tree& tree, const Account& account, DWORD majorVersion);
[[nodiscard]] bool Create(const Account& account, DWORD majorVersion);

/// Removes both.
[[nodiscard]] bool Remove(const Account& account);

} // namespace simulated::profiles
