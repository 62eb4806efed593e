// advapi32/RegistryHives.cpp
//
// Loading and unloading hives, with the rules that Windows has for it.

#include "advapi32/RegistryHives.h"

#include "advapi32/Hives.h"
#include "advapi32/RegistryKey.h"
#include "advapi32/Tokens.h"
#include "kernel32/Paths.h"
#include "notebook/Accounts.h"
#include "notebook/Text.h"
#include "notebook/WholeFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace simulated::registry
{

namespace
{

// What both functions ask of their caller: a subkey of HKEY_USERS, and both privileges.
DWORD CheckCaller(HKEY key, LPCWSTR subKey)
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
    const std::string name = ToUtf8(subKey);
    const bool isName = !KeyFileName(name).empty() && name.find('\\') == std::string::npos;
    return isName && base.path == hives::UsersRoot() ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
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

// True when a process has a key of the hive open.
bool IsInUse(const std::string& hive)
{
    const int folder = open(hives::FolderOf(hive).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isFree = folder < 0 || flock(folder, LOCK_EX | LOCK_NB) == 0;
    if (folder >= 0)
    {
        close(folder);
    }
    return !isFree;
}

} // namespace

DWORD LoadHive(HKEY key, LPCWSTR subKey, LPCWSTR file)
{
    std::string hive;
    DWORD error = CheckCaller(key, subKey);
    error = error == ERROR_SUCCESS ? ReadHiveFile(file, hive) : error;
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(hives::WritersLock());
    if (hives::IsLoaded(hive))
    {
        return ERROR_SHARING_VIOLATION;
    }
    const std::string name = ToUtf8(subKey);
    if (!FindIgnoringCase(hives::UsersRoot(), KeyFileName(name)).empty())
    {
        return ERROR_ACCESS_DENIED; // another hive has that place
    }
    return lock.IsHeld() && hives::Link(name, hive) ? ERROR_SUCCESS : ERROR_CANTWRITE;
}

DWORD UnloadHive(HKEY key, LPCWSTR subKey)
{
    if (const DWORD error = CheckCaller(key, subKey); error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(hives::WritersLock());
    const std::string link = KeyName(FindIgnoringCase(hives::UsersRoot(), KeyFileName(ToUtf8(subKey))));
    if (link.empty())
    {
        return ERROR_FILE_NOT_FOUND;
    }
    const std::string hive = hives::BehindLink(link);
    if (IsLoggedOn(hive) || IsInUse(hive))
    {
        return ERROR_ACCESS_DENIED;
    }
    return lock.IsHeld() && hives::Unlink(link) ? ERROR_SUCCESS : ERROR_CANTWRITE;
}

} // namespace simulated::registry
