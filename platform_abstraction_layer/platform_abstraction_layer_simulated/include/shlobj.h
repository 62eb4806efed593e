// shlobj.h
//
// shell32: known folders.
#pragma once

#include <windows.h>

#define CSIDL_PERSONAL 0x0005
#define CSIDL_DESKTOPDIRECTORY 0x0010
#define CSIDL_APPDATA 0x001A
#define CSIDL_LOCAL_APPDATA 0x001C
#define CSIDL_COMMON_APPDATA 0x0023
#define CSIDL_WINDOWS 0x0024
#define CSIDL_SYSTEM 0x0025
#define CSIDL_PROGRAM_FILES 0x0026
#define CSIDL_PROFILE 0x0028
#define CSIDL_FLAG_CREATE 0x8000

#define SHGFP_TYPE_CURRENT 0
#define SHGFP_TYPE_DEFAULT 1

/// The folder of the account that the process runs as, in `path` of MAX_PATH characters. S_OK, or
/// E_INVALIDARG for a folder that isn't known, a token or a type; an error number folded when the folder
/// doesn't exist or can't be created.
SIM_API HRESULT WINAPI SHGetFolderPathW(HWND window, int folder, HANDLE token, DWORD type, LPWSTR path);

/// Makes a folder, its parents included. An error number; ERROR_ALREADY_EXISTS when it was there.
SIM_API int WINAPI SHCreateDirectoryExW(HWND window, LPCWSTR path, const SECURITY_ATTRIBUTES* attributes);
