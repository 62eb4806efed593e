// modules/powrprof/PowerStoreSchemes.h
//
// The index-based schemes, where Windows keeps them: each scheme's user part below HKEY_CURRENT_USER, its
// machine and processor parts below HKEY_LOCAL_MACHINE. Code that reads the registry and code that calls
// these functions see the same store. Results are Win32 error numbers.
//
// Known differences from Windows: the policies of an activated scheme act on no hardware; there is no
// fallback for a scheme without a processor part; from 6.0 on, where Windows carries these functions out on
// the GUID-based schemes, they keep to this store, which has nothing to do with those.
#pragma once

#include "PowerStoreKey.h"

// Some editions of this header have no guard, so no other header here includes it.
#include <powrprof.h>

namespace power_store
{

inline constexpr const wchar_t* kUserPowerKey = L"Control Panel\\PowerCfg";
inline constexpr const wchar_t* kUserSchemesKey = L"Control Panel\\PowerCfg\\PowerPolicies";
inline constexpr const wchar_t* kUserGlobalKey = L"Control Panel\\PowerCfg\\GlobalPowerPolicy";
inline constexpr const wchar_t* kMachinePowerKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg";
inline constexpr const wchar_t* kMachineSchemesKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\PowerPolicies";
inline constexpr const wchar_t* kProcessorSchemesKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\ProcessorPolicies";
inline constexpr const wchar_t* kMachineGlobalKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\GlobalPowerPolicy";

inline constexpr const wchar_t* kCurrentSchemeValue = L"CurrentPowerPolicy";
inline constexpr const wchar_t* kLastIdValue = L"LastID";
inline constexpr const wchar_t* kPoliciesValue = L"Policies";
inline constexpr const wchar_t* kNameValue = L"Name";
inline constexpr const wchar_t* kDescriptionValue = L"Description";

/// A scheme number that asks `WriteScheme` for a new one.
inline constexpr UINT kNewScheme = 0xFFFFFFFFu;

DWORD GetActive(UINT& scheme);

/// Makes a scheme the current user's active one. ERROR_FILE_NOT_FOUND for an unknown scheme; its records
/// must be readable.
DWORD SetActive(UINT scheme);

DWORD ReadScheme(UINT scheme, POWER_POLICY& policy);

/// Creates or replaces the scheme of the given number. Null texts leave name and description as they are.
DWORD WriteScheme(UINT& scheme, const wchar_t* name, const wchar_t* description, const POWER_POLICY* policy);

DWORD ReadProcessorScheme(UINT scheme, MACHINE_PROCESSOR_POWER_POLICY& policy);
DWORD WriteProcessorScheme(UINT scheme, const MACHINE_PROCESSOR_POWER_POLICY& policy);

/// Calls `callback` for each readable scheme in the order of the numbers until it returns FALSE.
DWORD EnumerateSchemes(PWRSCHEMESENUMPROC callback, LPARAM argument);

/// ERROR_ACCESS_DENIED for the active scheme, ERROR_FILE_NOT_FOUND for an unknown one.
DWORD DeleteScheme(UINT scheme);

DWORD ReadGlobalPolicy(GLOBAL_POWER_POLICY& policy);
DWORD WriteGlobalPolicy(const GLOBAL_POWER_POLICY& policy);

} // namespace power_store
