// foundation/SystemFolders.h
//
// Where the running account keeps the system's configuration files: the folder "Kelvo\ORVL\Cfg" in its local
// application data folder.
#pragma once

#include <windows.h>

#include <cstddef>

namespace folders
{

/// What stands behind a local application data folder, the running account's or a user's.
constexpr const wchar_t* kConfigurationFolder = L"Kelvo\\ORVL\\Cfg";

/// The configuration folder of the running account, without a final backslash; cut at `capacity`
/// characters. False, with `target` empty, when there is no local application data folder; where the system
/// refuses to tell, its reason is logged as "SHGetFolderPath failed for %ld".
bool GetConfigurationFolder(wchar_t* target, std::size_t capacity) noexcept;

template <std::size_t N>
bool GetConfigurationFolder(wchar_t (&target)[N]) noexcept
{
    return GetConfigurationFolder(target, N);
}

} // namespace folders
