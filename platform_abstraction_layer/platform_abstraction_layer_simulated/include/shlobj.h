// include/shlobj.h
//
// shell32: known folders.
#pragma once

#include <windows.h>

#define CSIDL_LOCAL_APPDATA 0x001C

#define SHGFP_TYPE_CURRENT 0

/// The folder of the account that the process runs as, in `path` of MAX_PATH characters. S_OK, or
/// E_INVALIDARG for a folder that isn't known, a token or a type; S_FALSE or an error number folded when the
/// folder doesn't exist.
SIM_API HRESULT WINAPI SHGetFolderPathW(HWND window, int folder, HANDLE token, DWORD type, LPWSTR path);

/// Makes a folder, its parents included. An error number; ERROR_ALREADY_EXISTS when it was there.
SIM_API int WINAPI SHCreateDirectoryExW(HWND window, LPCWSTR path, const SECURITY_ATTRIBUTES* attributes);
