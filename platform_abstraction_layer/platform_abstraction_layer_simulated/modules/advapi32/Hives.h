// modules/advapi32/Hives.h
//
// The hives of the registry on the host: one text file each in the notebook's folder "registry", that of
// HKEY_LOCAL_MACHINE and that of each account. Section "Hives" of machine.ini names for each subkey of
// HKEY_USERS the account whose hive is loaded there. A hive's file on drive C ("NTUSER.DAT") holds one line
// that names the account.
//
// A process with an open key of such a hive holds a shared lock on it, which ends with the process.
//
// Known differences from Windows: the file of a loaded hive can be opened and deleted, and a copy of it names
// the same hive.
#pragma once

#include "base/WholeFile.h"
#include "modules/advapi32/Hive.h"

#include <functional>
#include <memory>

namespace simulated::hives
{

inline constexpr std::string_view kMachine = "HKEY_LOCAL_MACHINE";

/// A key: the name of its hive, which is empty for HKEY_USERS, and its path below the root.
struct Place
{
    std::string hive;
    std::string path;
};

/// A hive's file below the notebook's folder, and its path on the host.
std::string PartOf(std::string_view hive);
std::string FileOf(std::string_view hive);

/// Passes the hive to `look` and returns its result; HKEY_USERS is a hive whose keys are the loaded hives.
DWORD Read(std::string_view hive, const std::function<DWORD(const registry::Hive& content)>& look);

/// Lets `change` edit the hive, and stores it when that returns ERROR_SUCCESS; else `change` must leave it as
/// it is. ERROR_ACCESS_DENIED for HKEY_USERS; ERROR_DISK_FULL and the like when the file can't be written.
DWORD Edit(std::string_view hive, const std::function<DWORD(registry::Hive& content)>& change);

/// What the file of the hive holds, and the hive that such a text names; nothing for another text.
std::string FileText(std::string_view hive);
std::optional<std::string> ParseFileText(std::string_view text);

/// Mounts a hive as `subKey` of HKEY_USERS, and unmounts it. True also when nothing changes.
bool Load(std::string_view subKey, std::string_view hive);
bool Unload(std::string_view subKey);

/// The hive mounted as a subkey of HKEY_USERS; empty for none.
std::string Loaded(std::string_view subKey);

/// True when the hive is mounted.
bool IsLoaded(std::string_view hive);

/// A lock that keeps a hive loaded or, `AloneNow`, one that is granted only when nobody holds such a lock.
std::shared_ptr<FileLock> Use(std::string_view hive, FileLock::Kind kind = FileLock::Kind::Shared);

} // namespace simulated::hives
