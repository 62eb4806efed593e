// foundation/UserFolders.cpp
//
// The configuration folder of the running account, and the lookup by account name: account database, SID,
// loaded hive, local application data folder.

#include "foundation/UserFolders.h"

#include "foundation/Log.h"
#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/Registry.h"
#include "foundation/Text.h"

#include <sddl.h>
#include <shlobj.h>

#include <iterator>

namespace
{

constexpr std::size_t kSidSize = 100;
constexpr std::size_t kDomainCapacity = 100;
constexpr const wchar_t* kShellFolders =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// The account's SID as text; empty, with the reason logged, when there is no such account.
owners::LocalBlock FindSid(const wchar_t* userName) noexcept
{
    alignas(DWORD) BYTE sid[kSidSize];
    DWORD sidSize = sizeof sid;
    wchar_t domain[kDomainCapacity];
    auto domainSize = static_cast<DWORD>(std::size(domain));
    SID_NAME_USE use{};
    if (!LookupAccountNameW(nullptr, userName, sid, &sidSize, domain, &domainSize, &use))
    {
        PmLog(L"Get SID failed %d in LookupAcountName ", GetLastError());
        return {};
    }
    LPWSTR sidText = nullptr;
    if (!ConvertSidToStringSidW(sid, &sidText))
    {
        PmLog(L"Convert SID to str failed %d", GetLastError());
        return {};
    }
    return owners::LocalBlock(sidText);
}

// Reads the user's local application data folder. False, with the reason logged, when the hive isn't loaded
// or lacks it.
bool ReadLocalAppData(const wchar_t* keyName, wchar_t (&folder)[text::kPathCapacity]) noexcept
{
    owners::Key key;
    LSTATUS status = RegOpenKeyExW(HKEY_USERS, keyName, 0, KEY_READ, key.Put());
    if (status != ERROR_SUCCESS)
    {
        PmLog(L"GetCurrentUserSubkeyProfilePath: open shell folder key %s failed %d", keyName, status);
        return false;
    }
    status = registry::ReadText(key.Get(), L"Local AppData", folder);
    if (status != ERROR_SUCCESS)
    {
        PmLog(L"GetCurrentUserSubkeyProfilePath: query local settings folder failed at %d.", status);
        return false;
    }
    return true;
}

} // namespace

void folders::AppendConfigurationFolder(wchar_t* folder, std::size_t capacity) noexcept
{
    const std::size_t length = text::Length(folder, capacity);
    if (length > 0 && folder[length - 1] != L'\\')
    {
        text::Append(folder, capacity, L"\\");
    }
    text::Append(folder, capacity, L"Kelvo\\ORVL\\Cfg");
}

bool folders::GetConfigurationFolder(wchar_t* target, std::size_t capacity) noexcept
{
    text::Copy(target, capacity, nullptr);

    // The system asks for room for a whole path, whatever room the caller has.
    wchar_t folder[MAX_PATH] = {};
    const HRESULT found = SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, folder);
    if (FAILED(found))
    {
        CORVLBase::DBGOUT(L"SHGetFolderPath failed for %ld", found);
        return false;
    }
    // Empty for a folder that the account doesn't have yet, which the system doesn't count as a failure.
    if (folder[0] == L'\0')
    {
        return false;
    }
    text::Copy(target, capacity, folder);
    AppendConfigurationFolder(target, capacity);
    return true;
}

int GetCurrentUserSubkeyProfilePath(const wchar_t* userName, wchar_t* subKey, wchar_t* profilePath) noexcept
{
    PmLog(L"enter GetCurrentUserSubkeyProfilePath, %s=userID", userName);
    const owners::LocalBlock sid = FindSid(userName);
    if (!sid)
    {
        return 0;
    }
    text::Copy(subKey, text::kPathCapacity, static_cast<const wchar_t*>(sid.Get()));
    PmLog(L"Get subkey is %s", subKey);
    const text::Formatted<text::kPathCapacity> keyName(L"%s\\%s", subKey, kShellFolders);
    PmLog(L"Get shell folder subkey is %s", keyName.Text());

    wchar_t folder[text::kPathCapacity];
    if (!ReadLocalAppData(keyName.Text(), folder))
    {
        return 0;
    }
    if (folder[0] == L'\0')
    {
        return 1;
    }
    folders::AppendConfigurationFolder(folder, std::size(folder));
    text::Copy(profilePath, text::kPathCapacity, folder);
    PmLog(L"get profile path %s", profilePath);
    return 1;
}
