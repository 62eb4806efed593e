// foundation/UserFolders.h
//
// Where an account keeps the system's configuration files: the folder "Kelvo\ORVL\Cfg" in its local
// application data folder.
#pragma once

#include <windows.h>

#include <cstddef>

namespace folders
{

/// Appends the configuration folder to a local application data folder; a path that doesn't fit is cut.
void AppendConfigurationFolder(wchar_t* folder, std::size_t capacity) noexcept;

/// The configuration folder of the running account, without a final backslash; cut at `capacity`
/// characters. False, with `target` empty, when there is no local application data folder; where the system
/// refuses to tell, its reason is logged as "SHGetFolderPath failed for %ld".
[[nodiscard]] bool GetConfigurationFolder(wchar_t* target, std::size_t capacity) noexcept;

} // namespace folders

/// Resolves an account name by way of the account database. 1 on success: `subKey` is the SID string, which
/// names the user's key below HKEY_USERS, and `profilePath` the configuration folder, left alone when "Local
/// AppData" is empty. Both have room for 260 characters. 0 when the account is unknown, with both left alone,
/// and when its hive isn't loaded or has no "Local AppData"; `subKey` is filled then and `profilePath` is
/// not.
[[nodiscard]] int GetCurrentUserSubkeyProfilePath(const wchar_t* userName, wchar_t* subKey,
                                                  wchar_t* profilePath) noexcept;
