// agents/OsWin.cpp
//
// Helpers over the operating system. The composition functions are bound at run time: Windows has them only
// from major version 6 on.

#include "agents/OsWin.h"

#include "foundation/Log.h"
#include "foundation/Modules.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"

namespace
{

// Logs a refusal of the registry and gives the last error as it was before the log changed it.
LONG FailedRegistryCall(const wchar_t* format, const wchar_t* name) noexcept
{
    const DWORD error = GetLastError();
    CORVLBase::DBGOUT(format, name);
    return static_cast<LONG>(error);
}

} // namespace

constinit HINSTANCE COsWin::m_hDwmLibrary = nullptr;

COsWin::COsWin() noexcept = default;
COsWin::COsWin(const COsWin&) noexcept = default;
COsWin& COsWin::operator=(const COsWin&) noexcept = default;
COsWin::~COsWin() = default;

int COsWin::IsVista() noexcept
{
    const DWORD version = ::GetVersion();
    const int major = LOBYTE(LOWORD(version));
    DBGOUT(L"Windows version %d.%d", major, HIBYTE(LOWORD(version)));
    return major >= 6 ? 1 : 0;
}

LONG COsWin::LoadDwmLibrary() noexcept
{
    if (m_hDwmLibrary == nullptr)
    {
        m_hDwmLibrary = LoadLibraryW(L"dwmapi.dll");
    }
    return m_hDwmLibrary == nullptr ? kGeneralFailure : kSucceeded;
}

FARPROC COsWin::FindDwmFunction(const char* name) noexcept
{
    if (!Check(LoadDwmLibrary() >= 0, L"Failed to load dwmapi.dll %d"))
    {
        return nullptr;
    }
    const FARPROC function = GetProcAddress(m_hDwmLibrary, name);
    return Check(function != nullptr, L"Failed to get function in dwmapi.dll") ? function : nullptr;
}

LONG COsWin::SetAero(int enable) noexcept
{
    using EnableComposition = HRESULT(WINAPI*)(UINT);
    const auto enableComposition = FunctionCast<EnableComposition>(FindDwmFunction("DwmEnableComposition"));
    return enableComposition == nullptr ? kGeneralFailure : enableComposition(static_cast<UINT>(enable));
}

LONG COsWin::IsAeroOn(int* enabled) noexcept
{
    using IsCompositionEnabled = HRESULT(WINAPI*)(BOOL*);
    const auto isEnabled = FunctionCast<IsCompositionEnabled>(FindDwmFunction("DwmIsCompositionEnabled"));
    return isEnabled == nullptr ? kGeneralFailure : isEnabled(enabled);
}

LONG COsWin::SetLinkPowerMgr(int) noexcept
{
    return kSucceeded;
}

LONG COsWin::ReadRegValue(HKEY root, const wchar_t* subkey, const wchar_t* name, ULONG* type,
                          unsigned char* data, ULONG* size) noexcept
{
    if (root == nullptr || subkey == nullptr || name == nullptr || type == nullptr)
    {
        return kGeneralFailure;
    }
    owners::Key key;
    if (RegOpenKeyExW(root, subkey, 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        return FailedRegistryCall(L"failed to open %s to read.", subkey);
    }
    if (RegQueryValueExW(key.Get(), name, nullptr, type, data, size) != ERROR_SUCCESS)
    {
        return FailedRegistryCall(L"failed to query value %s", name);
    }
    return kSucceeded;
}

LONG COsWin::WriteRegValue(HKEY root, const wchar_t* subkey, const wchar_t* name, ULONG, ULONG* type,
                           void* data, ULONG* size) noexcept
{
    if (root == nullptr || subkey == nullptr || name == nullptr || type == nullptr || data == nullptr ||
        size == nullptr)
    {
        return kGeneralFailure;
    }
    owners::Key key;
    if (RegOpenKeyExW(root, subkey, 0, KEY_ALL_ACCESS, key.Put()) != ERROR_SUCCESS)
    {
        return FailedRegistryCall(L"failed to open %s to write.", subkey);
    }
    if (RegSetValueExW(key.Get(), name, 0, *type, static_cast<const BYTE*>(data), *size) != ERROR_SUCCESS)
    {
        return FailedRegistryCall(L"failed to set value %s .", name);
    }
    return kSucceeded;
}
