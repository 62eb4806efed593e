// scheme/AutoRun.cpp
//
// The companion application's entry in the machine's "Run" key, and the two records of the choice. What was
// changed stays when a later step fails.

#include "foundation/Owners.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"

#include <algorithm>

namespace
{

constexpr const wchar_t* kRunKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kApplicationKey = L"SOFTWARE\\Kelvo\\ORVA";
constexpr const wchar_t* kEntry = L"ORVA";
constexpr const wchar_t* kOldEntry = L"ORVA.exe";

LSTATUS WritePath(HKEY key, const wchar_t* path, ULONG size) noexcept
{
    if (path == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::size_t characters = std::min<std::size_t>(text::Length(path, size) + 1, size);
    return RegSetValueExW(key, kEntry, 0, REG_SZ, reinterpret_cast<const BYTE*>(path),
                          static_cast<DWORD>(characters * sizeof(wchar_t)));
}

// The write makes the file where the installation has none.
void RecordFlagInFile(int flag) noexcept
{
    CORVLCfg root;
    static_cast<void>(files::OpenRoot(root));
    root.PutInt(L"ORVACfg", L"AutoRun", flag);
}

} // namespace

int CSchemeEx::WriteAutoRunSettings(int flag, const wchar_t* path, ULONG size) noexcept
{
    owners::Key key;
    const LSTATUS opened = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kRunKey, 0, KEY_ALL_ACCESS, key.Put());
    if (opened != ERROR_SUCCESS)
    {
        DBGOUT(
            L"WriteAutoRunSettings: Open Key Software\\Microsoft\\Windows\\CurrentVersion\\Run failed at %d!",
            opened);
        return 0;
    }
    if (flag == 0)
    {
        RegDeleteValueW(key.Get(), kOldEntry);
        if (const LSTATUS deleted = RegDeleteValueW(key.Get(), kEntry); deleted != ERROR_SUCCESS)
        {
            DBGOUT(L"WriteAutoRunSettings: flag = %d delete Key failed at %d", flag, deleted);
            return 0;
        }
    }
    else if (flag == 1)
    {
        if (const LSTATUS written = WritePath(key.Get(), path, size); written != ERROR_SUCCESS)
        {
            DBGOUT(L"WriteAutoRunSettings: Write ORVA path into Run failed at %d", written);
            return 0;
        }
    }
    return 1;
}

int CSchemeEx::SetAutoRunORVA(int flag, const wchar_t* path, ULONG size) noexcept
{
    if (WriteAutoRunSettings(flag, path, size) != 1)
    {
        return 0;
    }
    owners::Key key;
    const LSTATUS opened = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kApplicationKey, 0, KEY_ALL_ACCESS, key.Put());
    if (opened != ERROR_SUCCESS)
    {
        DBGOUT(L"SetAutoRunORVA: Open Key SOFTWARE\\Kelvo\\ORVA failed at %d!", opened);
        return 0;
    }
    const LSTATUS written = RegSetValueExW(key.Get(), L"AutoRunFlag", 0, REG_DWORD,
                                           reinterpret_cast<const BYTE*>(&flag), sizeof flag);
    if (written != ERROR_SUCCESS)
    {
        DBGOUT(L"SetAutoRunORVA: Write value AutoRunFlag failed at %d", written);
    }
    key.Reset();
    RecordFlagInFile(flag);
    return 1;
}
