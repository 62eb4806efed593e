// advapi32/Hives.h
//
// The hives of the registry on the host: "registry/HKEY_LOCAL_MACHINE", and one folder in "registry/hives"
// for each account. A hive that is loaded is a link to its folder in "registry/HKEY_USERS"; loading and
// unloading make and remove the link, so what is changed in between is in the hive. A hive's file on drive C
// ("NTUSER.DAT") holds one line that names the hive.
//
// Who has a key of such a hive open holds a shared lock on the hive's folder, which ends with his process.
//
// Known differences from Windows: the file of a loaded hive can be opened and deleted, and a copy of it names
// the same hive.
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <string_view>

namespace simulated::hives
{

/// Folders of the host.
std::string MachineRoot();
std::string UsersRoot();

/// What the `FileLock` of the registry's writers is named after.
std::string WritersLock();

/// The folder of the hive of that name.
std::string FolderOf(std::string_view hive);

/// What the file of the hive holds, and the hive that such a text names; nothing for another text.
std::string FileText(std::string_view hive);
std::optional<std::string> ParseFileText(std::string_view text);

/// Makes `subKey` of HKEY_USERS lead to a hive, and takes it away again. True also when it was so before.
bool Link(std::string_view subKey, std::string_view hive);
bool Unlink(std::string_view subKey);

/// The hive that a subkey of HKEY_USERS leads to; empty for none.
std::string BehindLink(std::string_view subKey);

/// True when some subkey leads to the hive.
bool IsLoaded(std::string_view hive);

} // namespace simulated::hives
