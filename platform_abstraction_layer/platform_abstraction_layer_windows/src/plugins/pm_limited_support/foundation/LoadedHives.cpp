// foundation/LoadedHives.cpp
//
// The lookup by logon name: a walk through the hives below HKEY_USERS, without the account database.

#include "foundation/Log.h"
#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/Registry.h"
#include "foundation/Text.h"

#include <iterator>

namespace
{

constexpr const wchar_t* kExplorer = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
constexpr const wchar_t* kShellFolders =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\";
constexpr const wchar_t* kPowerPolicies = L"Control Panel\\PowerCfg\\PowerPolicies";

// Room of a logon name, in characters.
constexpr std::size_t kLogonNameCapacity = 130;

// The defaults of users to come, and the hives of file associations, belong to no user.
bool IsUserHive(const wchar_t* name) noexcept
{
    return !text::EqualIgnoringCase(name, L".default") && !text::Contains(name, L"Classes");
}

owners::Key OpenBelow(HKEY users, const wchar_t* hive, const wchar_t* path) noexcept
{
    const text::Formatted<text::kPathCapacity * 2> name(L"%s\\%s", hive, path);
    owners::Key key;
    RegOpenKeyExW(users, name.Text(), 0, KEY_READ, key.Put());
    return key;
}

bool BelongsTo(HKEY users, const wchar_t* hive, const wchar_t* userName) noexcept
{
    const owners::Key explorer = OpenBelow(users, hive, kExplorer);
    wchar_t logonName[kLogonNameCapacity];
    return explorer && registry::ReadText(explorer.Get(), L"Logon User Name", logonName) == ERROR_SUCCESS &&
           text::EqualNames(logonName, userName);
}

} // namespace

int CORVLBase::GetCurrentUserSubkeyProfilePath(const wchar_t* userName, wchar_t* subKey, ULONG*,
                                               wchar_t* profilePath, ULONG* profileSize) noexcept
{
    DBGOUT(L"enter GetCurrentUserSubkeyProfilePath");
    owners::Key users;
    if (!Check(RegOpenKeyW(HKEY_USERS, nullptr, users.Put()) == ERROR_SUCCESS,
               L"GetCurrentUserSubkeyProfilePath: Open key HKEY_USERS failed"))
    {
        return 0;
    }
    const ULONG capacity = *profileSize;
    for (DWORD index = 0;; ++index)
    {
        wchar_t hive[text::kPathCapacity];
        auto length = static_cast<DWORD>(std::size(hive));
        if (RegEnumKeyExW(users.Get(), index, hive, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
        {
            return 0;
        }
        if (!IsUserHive(hive) || !BelongsTo(users.Get(), hive, userName))
        {
            continue;
        }
        text::Format(subKey, text::kPathCapacity, L"%s\\%s", hive, kPowerPolicies);
        const owners::Key folders = OpenBelow(users.Get(), hive, kShellFolders);
        *profileSize = capacity;
        if (folders &&
            registry::ReadText(folders.Get(), L"Local AppData", profilePath, *profileSize) == ERROR_SUCCESS)
        {
            return 1;
        }
    }
}
