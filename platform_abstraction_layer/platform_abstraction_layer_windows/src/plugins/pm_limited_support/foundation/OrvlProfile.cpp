// foundation/OrvlProfile.cpp
//
// A configuration file in a user's folder.

#include "foundation/OrvlProfile.h"

#include "foundation/SystemFolders.h"

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
    if (where == nullptr)
    {
        GetHomePath(m_szFullPath, static_cast<int>(std::size(m_szFullPath)));
    }
    else if (whereIsUser == 0)
    {
        text::Copy(m_szFullPath, where);
        CutTrailingSeparator(m_szFullPath);
    }
    else
    {
        wchar_t subKey[text::kPathCapacity];
        ULONG subKeySize = sizeof subKey;
        ULONG size = sizeof m_szFullPath;
        if (GetCurrentUserSubkeyProfilePath(where, subKey, &subKeySize, m_szFullPath, &size) == 0)
        {
            m_szFullPath[0] = L'\0';
        }
        text::AppendSeparator(m_szFullPath, std::size(m_szFullPath));
        if (m_szFullPath[0] != L'\0')
        {
            text::Append(m_szFullPath, folders::kConfigurationFolder);
        }
    }
    if (m_szFullPath[0] == L'\0')
    {
        return 0;
    }

    if (!PathFileExistsW(m_szFullPath))
    {
        SHCreateDirectoryExW(nullptr, m_szFullPath, nullptr);
    }
    text::Append(m_szFullPath, L"\\");
    text::Append(m_szFullPath, file);
    if (!PathFileExistsW(m_szFullPath) &&
        WritePrivateProfileStringW(L"", nullptr, nullptr, m_szFullPath) == 0)
    {
        return 0;
    }
    return 1;
}

wchar_t* CORVLProfile::GetHomePath(wchar_t* buffer, int size) noexcept
{
    if (buffer == nullptr || size <= 0)
    {
        return nullptr;
    }
    return folders::GetConfigurationFolder(buffer, static_cast<std::size_t>(size)) ? buffer : nullptr;
}
