// include/profileapi.h
//
// kernel32: files with sections and "key=value" lines.
#pragma once

#include <winnt.h>

/// The number behind the key, wrapped to 32 bits; `otherwise` when file, section or key is missing or the
/// value is empty.
SIM_API UINT WINAPI GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT otherwise, LPCWSTR file);

/// The characters copied, without the terminator; of a cut text `size` - 1. A null `key` asks for the keys of
/// the section, a null `section` for the sections, as texts one behind the other with an empty one at the
/// end; a cut list gives `size` - 2.
SIM_API DWORD WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR otherwise, LPWSTR buffer,
                                              DWORD size, LPCWSTR file);

/// A null `value` removes the key, a null `key` the section.
SIM_API BOOL WINAPI WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file);
