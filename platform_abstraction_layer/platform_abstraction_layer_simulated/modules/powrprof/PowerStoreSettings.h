// modules/powrprof/PowerStoreSettings.h
//
// The GUID-based schemes, where version 6 of Windows keeps them: below one key of HKEY_LOCAL_MACHINE, a
// subkey for each scheme and in it one for each subgroup and setting, with a value for either power source.
// Results are Win32 error numbers.
//
// Known differences from Windows: friendly names are plain texts, not references to a library's resources;
// a setting has no default value outside the schemes; there is no access control on schemes.
#pragma once

#include "PowerStoreKey.h"

namespace power_store
{

inline constexpr const wchar_t* kSettingSchemesKey =
    L"SYSTEM\\CurrentControlSet\\Control\\Power\\User\\PowerSchemes";

/// Which subgroups and settings there are.
inline constexpr const wchar_t* kKnownSettingsKey =
    L"SYSTEM\\CurrentControlSet\\Control\\Power\\PowerSettings";

inline constexpr const wchar_t* kActiveSchemeValue = L"ActivePowerScheme";
inline constexpr const wchar_t* kFriendlyNameValue = L"FriendlyName";
inline constexpr const wchar_t* kMainsValue = L"ACSettingIndex";
inline constexpr const wchar_t* kBatteryValue = L"DCSettingIndex";

/// What a call of the GUID-based functions names; a null part isn't named.
struct SettingPlace
{
    const GUID* scheme;
    const GUID* subGroup;
    const GUID* setting;
};

DWORD GetActiveScheme(GUID& scheme);

/// ERROR_FILE_NOT_FOUND for an unknown scheme.
DWORD SetActiveScheme(const GUID& scheme);

/// The name of a scheme, a subgroup or a setting. `size` is the room in bytes on entry and the name's size,
/// terminator included, on return. Without a buffer only the size is returned; a buffer that is too small
/// gives ERROR_MORE_DATA.
DWORD ReadFriendlyName(const SettingPlace& place, BYTE* buffer, DWORD& size);

/// `source` is `kMainsValue` or `kBatteryValue`. ERROR_FILE_NOT_FOUND when scheme, setting or value is
/// missing, ERROR_INVALID_PARAMETER when a part isn't named.
DWORD ReadValueIndex(const SettingPlace& place, const wchar_t* source, DWORD& value);

/// ERROR_FILE_NOT_FOUND when the scheme or the setting is unknown.
DWORD WriteValueIndex(const SettingPlace& place, const wchar_t* source, DWORD value);

/// ERROR_ACCESS_DENIED for the active scheme.
DWORD DeleteSettingScheme(const GUID& scheme);

/// Copies a scheme whole to `destination`; ERROR_ALREADY_EXISTS when that is taken.
DWORD DuplicateScheme(const GUID& source, const GUID& destination);

/// A GUID that no scheme has.
DWORD ChooseGuid(GUID& guid);

} // namespace power_store
