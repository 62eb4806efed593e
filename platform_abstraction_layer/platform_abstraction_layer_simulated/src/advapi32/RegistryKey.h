// advapi32/RegistryKey.h
//
// Opened keys, and what is done to keys and values, on the folders and files of the host. Readers take no
// lock: a value's file is replaced whole. Writers of all processes exclude each other; a lock ends with its
// process.
//
// Paths and names are UTF-8. Functions answer error numbers; any of them can be ERROR_KEY_DELETED.
//
// Known differences from Windows: every account may do everything, so an opener gets the access that he asks
// for; there are no classes of keys and no links; volatile keys stay, since the machine never restarts.
#pragma once

#include "advapi32/RegistryNames.h"
#include "advapi32/ValueText.h"
#include "notebook/HandleTable.h"

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace simulated::registry
{

class Key : public Object
{
public:
    /// Takes the descriptors over: the key's folder and the shared lock of its hive, -1 when that has none.
    Key(int folder, int hive, REGSAM access, std::string path);
    ~Key() override;

    int Folder() const noexcept
    {
        return m_folder;
    }
    int Hive() const noexcept
    {
        return m_hive;
    }
    REGSAM Access() const noexcept
    {
        return m_access;
    }
    const std::string& Path() const noexcept
    {
        return m_path;
    }

    /// True when the folder isn't where it was opened any more.
    bool IsDeleted() const;

private:
    int m_folder;
    int m_hive;
    REGSAM m_access;
    std::string m_path;
};

/// The host's name of a key's folder through its descriptor, which leads to that folder wherever it is.
std::string FolderOf(const Key& key);

/// Where a path begins: an opened key, or one of the predefined ones.
struct Base
{
    std::string folder; ///< for access to the files inside
    std::string path;   ///< where it lies
    REGSAM access = 0;
    std::shared_ptr<Key> key; ///< null for a predefined one

    bool Allows(REGSAM rights) const noexcept
    {
        return (access & rights) == rights;
    }
};

/// ERROR_INVALID_HANDLE for a handle that is no key's.
DWORD FindBase(HKEY handle, Base& base);
bool IsPredefined(HKEY handle) noexcept;

/// Why something isn't there, and why the host refused a change, which `errno` tells.
DWORD MissingError(const Base& base);
DWORD ChangeError(const Base& base);

/// The access that is granted for the access asked for; 0 when none was asked for.
REGSAM GrantedAccess(REGSAM wanted) noexcept;

DWORD Open(const Base& base, std::string_view subKey, REGSAM access, std::shared_ptr<Key>& opened);
DWORD Create(const Base& base, std::string_view subKey, REGSAM access, std::shared_ptr<Key>& opened,
             bool& isNew);

/// ERROR_ACCESS_DENIED for a key with subkeys, and for a hive's root.
DWORD Delete(const Base& base, std::string_view subKey);

DWORD ReadValue(const Base& base, std::string_view name, Value& value);
DWORD WriteValue(const Base& base, std::string_view name, const Value& value);
DWORD DeleteValue(const Base& base, std::string_view name);

/// The names of the subkeys or the values, in order.
DWORD ListNames(const Base& base, EntryKind kind, std::vector<std::string>& names);

/// When something in the key changed last.
DWORD LastWrite(const Base& base, FILETIME& time);

} // namespace simulated::registry
