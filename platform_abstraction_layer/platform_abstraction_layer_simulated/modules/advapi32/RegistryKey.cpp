// modules/advapi32/RegistryKey.cpp
//
// Finding, opening, creating and deleting keys, and what is in them.

#include "modules/advapi32/RegistryKey.h"

#include "base/Text.h"
#include "machine/Accounts.h"

#include <algorithm>

namespace simulated::registry
{

namespace
{

using hives::Place;

constexpr std::size_t kLongestKeyName = 255;
constexpr std::size_t kLongestValueName = 16383;
constexpr REGSAM kViewFlags = KEY_WOW64_32KEY | KEY_WOW64_64KEY;

Place CurrentUser()
{
    // A user whose hive isn't loaded gets the default one, as on Windows.
    const std::string own = hives::Loaded(Accounts::RunningSid());
    return {own.empty() ? hives::Loaded(".DEFAULT") : own, ""};
}

struct PredefinedKey
{
    std::uintptr_t handle;
    const char* name;
    Place (*place)();
};
const PredefinedKey kPredefinedKeys[] = {
    {reinterpret_cast<std::uintptr_t>(HKEY_LOCAL_MACHINE), "HKEY_LOCAL_MACHINE",
     [] {
         return Place{std::string(hives::kMachine), ""};
     }},
    {reinterpret_cast<std::uintptr_t>(HKEY_CURRENT_USER), "HKEY_CURRENT_USER", &CurrentUser},
    {reinterpret_cast<std::uintptr_t>(HKEY_USERS), "HKEY_USERS", [] { return Place{}; }},
    {reinterpret_cast<std::uintptr_t>(HKEY_CLASSES_ROOT), "HKEY_CLASSES_ROOT",
     [] {
         return Place{std::string(hives::kMachine), "SOFTWARE\\Classes"};
     }},
};

const PredefinedKey* FindPredefined(HKEY handle) noexcept
{
    const auto* const found = std::find_if(std::begin(kPredefinedKeys), std::end(kPredefinedKeys),
                                           [handle](const PredefinedKey& key) {
                                               return key.handle == reinterpret_cast<std::uintptr_t>(handle);
                                           });
    return found == std::end(kPredefinedKeys) ? nullptr : found;
}

bool IsKeyName(std::string_view name)
{
    return (name.size() <= kLongestKeyName || ToUtf16(name).size() <= kLongestKeyName) &&
           std::all_of(name.begin(), name.end(),
                       [](char character) { return static_cast<unsigned char>(character) >= 0x20; });
}

// Moves `place` along a path, in which doubled backslashes count once and one at the end not at all.
// ERROR_INVALID_PARAMETER for a name that can't be, ERROR_BAD_PATHNAME for a path that begins with a
// backslash.
DWORD Descend(Place& place, std::string_view path)
{
    if (path.starts_with('\\'))
    {
        return ERROR_BAD_PATHNAME;
    }
    while (!path.empty())
    {
        const std::string_view name = path.substr(0, path.find('\\'));
        path.remove_prefix(std::min(name.size() + 1, path.size()));
        if (!IsKeyName(name))
        {
            return ERROR_INVALID_PARAMETER;
        }
        // Hives are loaded right below HKEY_USERS only.
        const bool isBelowUsers = place.hive.empty() && place.path.empty();
        std::string hive = isBelowUsers ? hives::Loaded(name) : std::string();
        if (!hive.empty())
        {
            place.hive = std::move(hive);
        }
        else if (!name.empty())
        {
            place.path += place.path.empty() ? "" : "\\";
            place.path += name;
        }
    }
    return ERROR_SUCCESS;
}

// The key that a base stands for; null when it is gone, also when there is another in its place.
const HiveKey* Find(const Hive& hive, const Base& base)
{
    const HiveKey* const key = hive.Find(base.place.path);
    return key != nullptr && base.key != nullptr && key->id != base.key->id ? nullptr : key;
}

DWORD MissingError(const Base& base)
{
    return base.key == nullptr ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED;
}

// True when a path from `base` to `place` begins at a key of `hive` that is gone.
bool IsGone(const Hive& hive, const Base& base, const Place& place)
{
    return place.hive == base.place.hive && Find(hive, base) == nullptr;
}

// Passes the key that a base stands for to `work`, to read or to change it.
template <class Work>
DWORD Look(const Base& base, Work work)
{
    return hives::Read(base.place.hive,
                       [&](const Hive& hive)
                       {
                           const HiveKey* const key = Find(hive, base);
                           return key == nullptr ? MissingError(base) : work(hive, *key);
                       });
}
template <class Work>
DWORD Change(const Base& base, Work work)
{
    return hives::Edit(base.place.hive,
                       [&](Hive& hive)
                       {
                           const bool isThere = Find(hive, base) != nullptr;
                           return isThere ? work(hive, hive.Make(base.place.path)) : MissingError(base);
                       });
}

// The lock that a key of the hive holds. Null for the machine's, which always stays; also when the hive has
// been unloaded meanwhile, see `isLoaded`.
std::shared_ptr<FileLock> Use(const Base& base, const std::string& hive, bool& isLoaded)
{
    isLoaded = true;
    if (base.key != nullptr && base.key->use != nullptr)
    {
        return base.key->use;
    }
    if (hive.empty() || hive == hives::kMachine)
    {
        return nullptr;
    }
    std::shared_ptr<FileLock> use = hives::Use(hive);
    PlatformCall::Renew();
    isLoaded = use->IsHeld() && hives::IsLoaded(hive);
    return use;
}

} // namespace

DWORD FindBase(HKEY handle, Base& base)
{
    if (const PredefinedKey* const predefined = FindPredefined(handle))
    {
        base = {predefined->place(), KEY_ALL_ACCESS, nullptr};
        return ERROR_SUCCESS;
    }
    const auto key = HandleTable::Find<Key>(handle);
    if (key == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    base = BaseOf(key);
    return ERROR_SUCCESS;
}

Base BaseOf(const std::shared_ptr<Key>& key)
{
    return {key->place, key->access, key};
}

const char* PredefinedName(HKEY handle) noexcept
{
    const PredefinedKey* const predefined = FindPredefined(handle);
    return predefined == nullptr ? nullptr : predefined->name;
}

REGSAM GrantedAccess(REGSAM wanted) noexcept
{
    REGSAM granted = wanted & KEY_ALL_ACCESS;
    granted |= (wanted & GENERIC_READ) != 0 ? KEY_READ : 0;
    granted |= (wanted & GENERIC_WRITE) != 0 ? KEY_WRITE : 0;
    granted |= (wanted & (GENERIC_ALL | MAXIMUM_ALLOWED)) != 0 ? KEY_ALL_ACCESS : 0;
    return granted & ~static_cast<REGSAM>(kViewFlags);
}

DWORD Open(const Base& base, std::string_view subKey, REGSAM access, std::shared_ptr<Key>& opened)
{
    Place place = base.place;
    if (const DWORD error = Descend(place, subKey); error != ERROR_SUCCESS)
    {
        return error;
    }
    bool isLoaded = false;
    const std::shared_ptr<FileLock> use = Use(base, place.hive, isLoaded);
    const REGSAM granted = GrantedAccess(access);
    const auto open = [&](const Hive& hive) -> DWORD
    {
        if (IsGone(hive, base, place))
        {
            return MissingError(base);
        }
        const HiveKey* const key = hive.Find(place.path);
        if (key == nullptr)
        {
            return ERROR_FILE_NOT_FOUND;
        }
        opened = std::make_shared<Key>(OpenedKey{place, key->id, granted, use});
        return granted == 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
    };
    return isLoaded ? hives::Read(place.hive, open) : ERROR_FILE_NOT_FOUND;
}

DWORD Create(const Base& base, std::string_view subKey, REGSAM access, std::shared_ptr<Key>& opened,
             bool& isNew)
{
    isNew = false;
    if (const DWORD error = Open(base, subKey, access, opened); error != ERROR_FILE_NOT_FOUND)
    {
        return error;
    }
    Place place = base.place;
    Descend(place, subKey);
    if (place.hive.empty())
    {
        return ERROR_INVALID_PARAMETER; // only hives can lie there
    }
    const auto make = [&](Hive& hive) -> DWORD
    {
        if (IsGone(hive, base, place))
        {
            return MissingError(base);
        }
        const bool isInHive = hive.Find(place.path.substr(0, place.path.find('\\'))) != nullptr;
        if (!isInHive && place.hive == hives::kMachine)
        {
            return ERROR_INVALID_PARAMETER; // as above
        }
        isNew = hive.Find(place.path) == nullptr;
        hive.Make(place.path);
        return ERROR_SUCCESS;
    };
    const DWORD error = hives::Edit(place.hive, make);
    return error == ERROR_SUCCESS ? Open(base, subKey, access, opened) : error;
}

DWORD Delete(const Base& base, std::string_view subKey)
{
    Place place = base.place;
    if (const DWORD error = Descend(place, subKey); error != ERROR_SUCCESS)
    {
        return error;
    }
    const auto remove = [&](Hive& hive) -> DWORD
    {
        if (IsGone(hive, base, place))
        {
            return MissingError(base);
        }
        if (hive.Find(place.path) == nullptr)
        {
            return ERROR_FILE_NOT_FOUND;
        }
        if (place.path.empty() || !hive.Subkeys(place.path).empty())
        {
            return ERROR_ACCESS_DENIED;
        }
        hive.Remove(place.path);
        return ERROR_SUCCESS;
    };
    return hives::Edit(place.hive, remove);
}

DWORD ReadValue(const Base& base, std::string_view name, Value& value)
{
    return Look(base,
                [&](const Hive&, const HiveKey& key) -> DWORD
                {
                    const HiveValue* const found = key.Find(name);
                    if (found == nullptr)
                    {
                        return ERROR_FILE_NOT_FOUND;
                    }
                    std::optional<Value> parsed = ParseValue(found->text);
                    if (!parsed)
                    {
                        return ERROR_BADDB; // the file was edited by hand and is damaged
                    }
                    value = *std::move(parsed);
                    return ERROR_SUCCESS;
                });
}

DWORD WriteValue(const Base& base, std::string_view name, const Value& value)
{
    if (name.size() > kLongestValueName && ToUtf16(name).size() > kLongestValueName)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return Change(base,
                  [&](Hive&, HiveKey& key) -> DWORD
                  {
                      key.Put(name, FormatValue(value));
                      return ERROR_SUCCESS;
                  });
}

DWORD DeleteValue(const Base& base, std::string_view name)
{
    return Change(base,
                  [&](Hive&, HiveKey& key) -> DWORD
                  { return key.values.erase(FoldCase(name)) != 0 ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND; });
}

DWORD ListNames(const Base& base, EntryKind kind, std::vector<std::string>& names)
{
    return Look(base,
                [&](const Hive& hive, const HiveKey& key) -> DWORD
                {
                    if (kind == EntryKind::Key)
                    {
                        names = hive.Subkeys(key.path);
                        return ERROR_SUCCESS;
                    }
                    for (const auto& [folded, value] : key.values)
                    {
                        names.push_back(value.name);
                    }
                    return ERROR_SUCCESS;
                });
}

} // namespace simulated::registry
