// scheme/ClearAccounts.cpp
//
// Taking what lies in the profile and the hive of each account off the machine, whether its user is logged on
// or not. An account that can't be read is passed over.

#include "foundation/Owners.h"
#include "foundation/Registry.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"

#include <iterator>

namespace
{

constexpr const wchar_t* kProfileList = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr const wchar_t* kProfileFiles[] = {
    L"\\Local Settings\\Application Data\\Kelvo\\ORVL\\Cfg\\PowerSchemes.ini",
    L"\\Local Settings\\Application Data\\Kelvo\\ORVL\\Cfg\\OrvProfile.ini",
};
constexpr const wchar_t* kPrivileges[] = {L"SeRestorePrivilege", L"SeBackupPrivilege"};

using Path = wchar_t[text::kPathCapacity];
using LongPath = text::Formatted<2 * text::kPathCapacity>;

// The profile's folder as the list names it, environment strings included.
bool ReadProfilePath(HKEY list, const wchar_t* sid, Path& profile) noexcept
{
    owners::Key key;
    if (RegOpenKeyExW(list, sid, 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"ClearCfgSettings: open subkey %s failed", sid);
        return false;
    }
    const LSTATUS read = registry::ReadText(key.Get(), L"ProfileImagePath", profile);
    if (read != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"ClearCfgSettings: query user Path at %s failed at %d", sid, read);
        return false;
    }
    return true;
}

void ClearAccount(CSchemeEx& engine, HKEY list, const wchar_t* sid) noexcept
{
    Path profile;
    if (!ReadProfilePath(list, sid, profile))
    {
        return;
    }
    CORVLBase::DBGOUT(L"ClearCfgSettings: get user's path = %s", profile);
    Path folder = {};
    ExpandEnvironmentStringsW(profile, folder, static_cast<DWORD>(std::size(folder)));
    folder[std::size(folder) - 1] = L'\0';

    const LongPath hive(L"%s\\NTUSER.DAT", static_cast<const wchar_t*>(folder));
    engine.ClearUserRegSettings(hive.Text(), sid);
    for (const wchar_t* file : kProfileFiles)
    {
        files::DeleteBelow(folder, file, L"ClearCfgSettings: delete file = %s");
    }
}

// Removes the companion application's key from the loaded hive of an account.
void RemoveUserKey(const wchar_t* sid) noexcept
{
    const LongPath path(L"%s\\Software\\Kelvo", sid);
    owners::Key key;
    LSTATUS result = RegOpenKeyExW(HKEY_USERS, path.Text(), 0, KEY_ALL_ACCESS, key.Put());
    if (result == ERROR_SUCCESS)
    {
        result = RegDeleteKeyW(key.Get(), L"ORVA");
    }
    if (result != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"open key %s failed at %d", path.Text(), result);
    }
}

bool EnablePrivilege(HANDLE token, const LUID& privilege) noexcept
{
    TOKEN_PRIVILEGES wanted = {};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Luid = privilege;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    // A privilege that the account doesn't have is no failure of the call; the last error tells.
    return AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr) &&
           GetLastError() == ERROR_SUCCESS;
}

} // namespace

int CSchemeEx::ClearCfgSettings() noexcept
{
    EnableRestoreBackupPrivilege();
    owners::Key list;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kProfileList, 0, KEY_READ, list.Put()) != ERROR_SUCCESS)
    {
        DBGOUT(L"ClearCfgSettings: open key %s failed", kProfileList);
        return 0;
    }
    for (DWORD place = 0;; ++place)
    {
        Path sid;
        auto length = static_cast<DWORD>(std::size(sid));
        const LSTATUS result =
            RegEnumKeyExW(list.Get(), place, sid, &length, nullptr, nullptr, nullptr, nullptr);
        if (result != ERROR_SUCCESS)
        {
            DBGOUT(L"ClearCfgSettings: enumerate key failed at %d", result);
            return 0;
        }
        DBGOUT(L"ClearCfgSettings: enumerate SID = %s", static_cast<const wchar_t*>(sid));
        ClearAccount(*this, list.Get(), sid);
    }
}

int CSchemeEx::ClearUserRegSettings(const wchar_t* hive, const wchar_t* sid) noexcept
{
    const LSTATUS loaded = RegLoadKeyW(HKEY_USERS, sid, hive);
    if (loaded != ERROR_SUCCESS)
    {
        // A hive that is loaded already belongs to a user who is logged on.
        DBGOUT(L"RegLoadKey %s failed at %d", hive, loaded);
    }
    else
    {
        DBGOUT(L"RegLoadKey %s succeed at %d", hive, loaded);
        RemoveUserKey(sid);
    }
    const LSTATUS unloaded = RegUnLoadKeyW(HKEY_USERS, sid);
    if (unloaded != ERROR_SUCCESS)
    {
        DBGOUT(L"Unload key %s failed at %d", sid, unloaded);
        return 0;
    }
    DBGOUT(L"Unload key temp successfully");
    return 1;
}

int CSchemeEx::EnableRestoreBackupPrivilege() noexcept
{
    owners::Handle token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, token.Put()))
    {
        return 0;
    }
    LUID privileges[std::size(kPrivileges)] = {};
    for (std::size_t place = 0; place < std::size(kPrivileges); ++place)
    {
        if (!LookupPrivilegeValueW(nullptr, kPrivileges[place], &privileges[place]))
        {
            return 0;
        }
    }
    bool allEnabled = true;
    for (const LUID& privilege : privileges)
    {
        allEnabled = EnablePrivilege(token.Get(), privilege) && allEnabled;
    }
    return allEnabled ? 1 : 0;
}
