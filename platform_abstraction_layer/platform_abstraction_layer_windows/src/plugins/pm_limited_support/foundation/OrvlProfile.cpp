// foundation/OrvlProfile.cpp
//
// A configuration file in a user's folder.

#include "foundation/OrvlProfile.h"

#include "foundation/UserFolders.h"

#include <shlobj.h>
#include <shlwapi.h>

#include <iterator>

namespace
{

void CutTrailingSeparator(wchar_t* folder) noexcept
{
    const std::size_t length = text::Length(folder);
    if (length > 0 && folder[length - 1] == L'\\')
    {
        folder[length - 1] = L'\0';
    }
}

// Room for more than a path, so that one that doesn't fit shows.
using Room = wchar_t[2 * text::kPathCapacity];

// Finds the folder that `where` means; empty when it can't be had.
void FindFolder(CORVLProfile& profile, const wchar_t* where, int whereIsUser, Room& folder) noexcept
{
    folder[0] = L'\0';
    if (where == nullptr)
    {
        profile.GetHomePath(folder, static_cast<int>(std::size(folder)));
        return;
    }
    if (whereIsUser == 0)
    {
        text::Copy(folder, where);
        CutTrailingSeparator(folder);
        return;
    }
    wchar_t subKey[text::kPathCapacity];
    ULONG subKeySize = sizeof subKey;
    ULONG size = text::kPathCapacity * sizeof(wchar_t);
    if (profile.GetCurrentUserSubkeyProfilePath(where, subKey, &subKeySize, folder, &size) == 0)
    {
        folder[0] = L'\0';
    }
    else if (folder[0] != L'\0')
    {
        folders::AppendConfigurationFolder(folder, std::size(folder));
    }
}

} // namespace

CORVLProfile::CORVLProfile() noexcept = default;
CORVLProfile::CORVLProfile(const CORVLProfile&) noexcept = default;
CORVLProfile& CORVLProfile::operator=(const CORVLProfile&) noexcept = default;
CORVLProfile::~CORVLProfile() = default;

ULONG CORVLProfile::GetVersion() noexcept
{
    return kClassVersion;
}

int CORVLProfile::Initialize(const wchar_t* file, const wchar_t* where, int whereIsUser) noexcept
{
    m_szFullPath[0] = L'\0';
    Room folder;
    FindFolder(*this, where, whereIsUser, folder);
    if (folder[0] == L'\0')
    {
        return 0;
    }
    Room path;
    text::Copy(path, folder);
    text::Append(path, L"\\");
    text::Append(path, file);
    if (!text::Copy(m_szFullPath, path))
    {
        m_szFullPath[0] = L'\0'; // a cut name would be another file's
        return 0;
    }

    if (!PathFileExistsW(folder))
    {
        SHCreateDirectoryExW(nullptr, folder, nullptr);
    }
    const bool exists =
        PathFileExistsW(m_szFullPath) || WritePrivateProfileStringW(L"", nullptr, nullptr, m_szFullPath);
    return exists ? 1 : 0;
}

wchar_t* CORVLProfile::GetHomePath(wchar_t* buffer, int size) noexcept
{
    if (buffer == nullptr || size <= 0)
    {
        return nullptr;
    }
    return folders::GetConfigurationFolder(buffer, static_cast<std::size_t>(size)) ? buffer : nullptr;
}
