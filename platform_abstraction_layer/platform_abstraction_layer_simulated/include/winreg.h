// include/winreg.h
//
// advapi32: the registry. Every function returns an error number and leaves the last error alone. Sizes of
// data are in bytes, of names in characters.
#pragma once

#include <winnt.h>

struct SECURITY_ATTRIBUTES;

#define SIM_PREDEFINED_KEY(number) (reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(number))))
#define HKEY_CLASSES_ROOT SIM_PREDEFINED_KEY(0x80000000)
#define HKEY_CURRENT_USER SIM_PREDEFINED_KEY(0x80000001)
#define HKEY_LOCAL_MACHINE SIM_PREDEFINED_KEY(0x80000002)
#define HKEY_USERS SIM_PREDEFINED_KEY(0x80000003)

/// Opens a subkey. A null or empty `subKey` opens the key itself once more. `access` decides what the new
/// handle can be used for. ERROR_FILE_NOT_FOUND when there is no such key.
SIM_API LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);

/// Like `RegOpenKeyExW` with the maximum access; a null or empty `subKey` returns `key` itself.
SIM_API LSTATUS WINAPI RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result);

/// Opens a subkey, or creates it with all keys on the way. `disposition`, which may be null, becomes
/// REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY.
SIM_API LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass,
                                       DWORD options, REGSAM access, SECURITY_ATTRIBUTES* security,
                                       PHKEY result, LPDWORD disposition);

/// Closing one of the predefined keys succeeds and does nothing.
SIM_API LSTATUS WINAPI RegCloseKey(HKEY key);

/// Reads a value; a null or empty `name` means the default value. `size` comes in as the room in `data` and
/// goes out as the size of the value; with null `data` only the latter. ERROR_MORE_DATA when the room is too
/// small, ERROR_FILE_NOT_FOUND when there is no such value.
SIM_API LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                        LPDWORD size);

/// Stores `size` bytes as they are, texts without a terminator included.
SIM_API LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                                      DWORD size);

/// The subkey number `index` in the order of names. `nameSize` comes in as the room in characters, with the
/// terminator, and goes out as the length without. ERROR_NO_MORE_ITEMS behind the last one.
SIM_API LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved,
                                     LPWSTR keyClass, LPDWORD classSize, PFILETIME lastWrite);
SIM_API LSTATUS WINAPI RegEnumKeyW(HKEY key, DWORD index, LPWSTR name, DWORD nameSize);

/// The value number `index`; name and data as in `RegEnumKeyExW` and `RegQueryValueExW`.
SIM_API LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved,
                                     LPDWORD type, LPBYTE data, LPDWORD size);

/// Deletes a subkey with its values. ERROR_ACCESS_DENIED when it has subkeys of its own.
SIM_API LSTATUS WINAPI RegDeleteKeyW(HKEY key, LPCWSTR subKey);
SIM_API LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name);

/// Loads the hive in `file` as the subkey `subKey` of HKEY_USERS or HKEY_LOCAL_MACHINE, and unloads it
/// again. The process needs "SeRestorePrivilege" and "SeBackupPrivilege" enabled, else
/// ERROR_PRIVILEGE_NOT_HELD. ERROR_SHARING_VIOLATION when the hive is loaded already, ERROR_ACCESS_DENIED
/// when a hive in use is to be unloaded.
SIM_API LSTATUS WINAPI RegLoadKeyW(HKEY key, LPCWSTR subKey, LPCWSTR file);
SIM_API LSTATUS WINAPI RegUnLoadKeyW(HKEY key, LPCWSTR subKey);
