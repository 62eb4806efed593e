// foundation/OrvlCfg.cpp
//
// A configuration file of the installation.

#include "foundation/OrvlCfg.h"

#include "foundation/Owners.h"
#include "foundation/Registry.h"

#include <shlwapi.h>

#include <iterator>

namespace
{

constexpr const wchar_t* kInstallationKey = L"Software\\Kelvo\\ORVL";
constexpr const wchar_t* kFolderValue = L"CfgPath";
constexpr const wchar_t* kInstallationModule = L"ORVLDLL.DLL";

// A number in text form.
constexpr std::size_t kNumberCapacity = 20;
using Number = text::Formatted<kNumberCapacity>;

// Ends `path` before its last backslash; false when it has none.
bool CutAtLastSeparator(wchar_t* path) noexcept
{
    for (std::size_t place = text::Length(path); place > 0; --place)
    {
        if (path[place - 1] == L'\\')
        {
            path[place - 1] = L'\0';
            return true;
        }
    }
    return false;
}

} // namespace

CORVLCfg::CORVLCfg() noexcept = default;
CORVLCfg::CORVLCfg(const CORVLCfg&) noexcept = default;
CORVLCfg& CORVLCfg::operator=(const CORVLCfg&) noexcept = default;
CORVLCfg::~CORVLCfg() = default;

ULONG CORVLCfg::GetVersion() noexcept
{
    return kClassVersion;
}

int CORVLCfg::Initialize(const wchar_t* file) noexcept
{
    owners::Key key;
    wchar_t path[text::kPathCapacity];
    // The folder ends in a separator. A cut name would be another file's.
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kInstallationKey, 0, KEY_READ, key.Put()) != ERROR_SUCCESS ||
        registry::ReadText(key.Get(), kFolderValue, path) != ERROR_SUCCESS || !text::Append(path, file))
    {
        return 0;
    }
    key.Reset();
    text::Copy(m_szFullPath, path);
    return PathFileExistsW(m_szFullPath) ? 1 : 0;
}

int CORVLCfg::InitializeInstallPath(const wchar_t* file) noexcept
{
    return Initialize(file);
}

const wchar_t* CORVLCfg::GetFullPath() noexcept
{
    return m_szFullPath;
}

wchar_t* CORVLCfg::GetDllPath(wchar_t* buffer, int size) noexcept
{
    if (buffer == nullptr || size <= 0)
    {
        return nullptr;
    }
    const HMODULE module = GetModuleHandleW(kInstallationModule);
    if (module == nullptr)
    {
        return nullptr;
    }
    // A cut name fills the whole buffer and, before Windows Vista, has no terminator.
    const auto capacity = static_cast<DWORD>(size);
    const DWORD length = GetModuleFileNameW(module, buffer, capacity);
    return length > 0 && length < capacity && CutAtLastSeparator(buffer) ? buffer : nullptr;
}

wchar_t* CORVLCfg::GetHomePath(wchar_t* buffer, int size) noexcept
{
    const bool found = GetDllPath(buffer, size) != nullptr && CutAtLastSeparator(buffer);
    return found ? buffer : nullptr;
}

int CORVLCfg::GetInt(const wchar_t* section, const wchar_t* key, int defaultValue) noexcept
{
    return static_cast<int>(GetPrivateProfileIntW(section, key, defaultValue, m_szFullPath));
}

int CORVLCfg::PutInt(const wchar_t* section, const wchar_t* key, int value) noexcept
{
    return PutString(section, key, Number(L"%d", value).Text());
}

int CORVLCfg::GetString(const wchar_t* section, const wchar_t* key, const wchar_t* defaultValue,
                        wchar_t* buffer, int size) noexcept
{
    const DWORD capacity = size < 0 ? 0 : static_cast<DWORD>(size);
    return static_cast<int>(
        GetPrivateProfileStringW(section, key, defaultValue, buffer, capacity, m_szFullPath));
}

int CORVLCfg::PutString(const wchar_t* section, const wchar_t* key, const wchar_t* value) noexcept
{
    return WritePrivateProfileStringW(section, key, value, m_szFullPath);
}

int CORVLCfg::GetHex(const wchar_t* section, const wchar_t* key, int defaultValue) noexcept
{
    wchar_t number[kNumberCapacity];
    ULONG value = 0;
    const bool isHex = GetString(section, key, number) > 2 && number[0] == L'0' && number[1] == L'x' &&
                       text::ScanHex(number + 2, value);
    return isHex ? static_cast<int>(value) : defaultValue;
}

int CORVLCfg::PutHex(const wchar_t* section, const wchar_t* key, int value) noexcept
{
    return PutString(section, key, Number(L"0x%x", value).Text());
}
