// modules/advapi32/RegistryKey.h
//
// Opened keys, and what is done to keys and values, on the hives.
//
// Paths and names are UTF-8. Functions answer error numbers; any of them can be ERROR_KEY_DELETED.
//
// Known differences from Windows: every account may do everything, so an opener gets the access that it asks
// for; there are no classes of keys and no links; volatile keys stay, since the machine never restarts; names
// of keys have no control characters; HKEY_USERS itself has no values; keys have no time of writing; a
// key that another process deletes and makes anew stays the same key for who had it open and
// hasn't looked in between.
#pragma once

#include "base/HandleTable.h"
#include "modules/advapi32/Hives.h"

#include <windows.h>

namespace simulated::registry
{

struct OpenedKey
{
    hives::Place place;
    std::uint64_t id; ///< see `HiveKey`
    REGSAM access;
    std::shared_ptr<FileLock> use; ///< keeps the hive loaded; null for the machine's
};

class Key : public Object, public OpenedKey
{
public:
    explicit Key(OpenedKey opened) : Object(ObjectKind::Key), OpenedKey(std::move(opened))
    {
    }
};

/// Where a path begins: an opened key, or one of the predefined ones.
struct Base
{
    hives::Place place;
    REGSAM access = 0;
    std::shared_ptr<Key> key; ///< null for a predefined one

    bool Allows(REGSAM rights) const noexcept
    {
        return (access & rights) == rights;
    }
};

/// ERROR_INVALID_HANDLE for a handle that is no key's.
DWORD FindBase(HKEY handle, Base& base);
Base BaseOf(const std::shared_ptr<Key>& key);

/// "HKEY_LOCAL_MACHINE" and so on, or null for an opened key.
const char* PredefinedName(HKEY handle) noexcept;

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

enum class EntryKind
{
    Key,
    Value
};

/// The names of the subkeys or the values, in order.
DWORD ListNames(const Base& base, EntryKind kind, std::vector<std::string>& names);

} // namespace simulated::registry
