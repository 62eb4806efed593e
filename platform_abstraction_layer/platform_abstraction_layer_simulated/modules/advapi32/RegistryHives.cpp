// modules/advapi32/RegistryHives.cpp
//
// Loading and unloading hives, with the rules that Windows has for it.

#include "modules/advapi32/RegistryHives.h"

#include "base/Text.h"
#include "base/WholeFile.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"
#include "modules/advapi32/Hives.h"
#include "modules/advapi32/RegistryKey.h"
#include "modules/advapi32/Tokens.h"
#include "modules/kernel32/Paths.h"

namespace simulated::registry
{

namespace
{

// Both functions require a subkey of HKEY_USERS and both privileges.
DWORD CheckCaller(HKEY key, const std::string& subKey)
{
    Base base;
    if (const DWORD error = FindBase(key, base); error != ERROR_SUCCESS)
    {
        return error;
    }
    if (!tokens::IsEnabled("SeRestorePrivilege") || !tokens::IsEnabled("SeBackupPrivilege"))
    {
        return ERROR_PRIVILEGE_NOT_HELD;
    }
    const bool isName = !subKey.empty() && subKey.find_first_of("\\=;[") == std::string::npos;
    return isName && base.place.hive.empty() ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

DWORD ReadHiveFile(LPCWSTR file, std::string& hive)
{
    paths::Place place;
    if (const DWORD error = paths::FindExisting(ToUtf8(file), place); error != ERROR_SUCCESS)
    {
        return error;
    }
    const std::optional<std::string> text = ReadWhole(place.host);
    const std::optional<std::string> named = text ? hives::ParseFileText(*text) : std::nullopt;
    hive = named.value_or(std::string());
    return named ? ERROR_SUCCESS : ERROR_BADDB;
}

bool IsLoggedOn(const std::string& hive)
{
    const std::optional<Account> account = Accounts::Find(hive);
    return account && account->isLoggedOn;
}

// Excludes others who load or unload.
std::string LoadersLock()
{
    return Machine::PathOf("registry/loaders");
}

} // namespace

DWORD LoadHive(HKEY key, LPCWSTR subKey, LPCWSTR file)
{
    std::string hive;
    const std::string name = ToUtf8(subKey);
    DWORD error = CheckCaller(key, name);
    error = error == ERROR_SUCCESS ? ReadHiveFile(file, hive) : error;
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(LoadersLock());
    if (hives::IsLoaded(hive))
    {
        return ERROR_SHARING_VIOLATION;
    }
    if (!hives::Loaded(name).empty())
    {
        return ERROR_ACCESS_DENIED; // another hive has that place
    }
    return lock.IsHeld() && hives::Load(name, hive) ? ERROR_SUCCESS : ERROR_CANTWRITE;
}

DWORD UnloadHive(HKEY key, LPCWSTR subKey)
{
    const std::string name = ToUtf8(subKey);
    if (const DWORD error = CheckCaller(key, name); error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(LoadersLock());
    const std::string hive = hives::Loaded(name);
    if (hive.empty())
    {
        return ERROR_FILE_NOT_FOUND;
    }
    const std::shared_ptr<FileLock> alone = hives::Use(hive, FileLock::Kind::AloneNow);
    if (IsLoggedOn(hive) || !alone->IsHeld())
    {
        return ERROR_ACCESS_DENIED;
    }
    return lock.IsHeld() && hives::Unload(name) ? ERROR_SUCCESS : ERROR_CANTWRITE;
}

} // namespace simulated::registry
