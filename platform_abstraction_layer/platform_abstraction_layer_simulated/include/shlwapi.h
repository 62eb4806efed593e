// include/shlwapi.h
//
// shlwapi: paths and text.
#pragma once

#include <windows.h>

/// TRUE for a file or a folder that exists.
SIM_API BOOL WINAPI PathFileExistsW(LPCWSTR path);

/// The first place where `part` stands in `whole`, case ignored; null when there is none or `part` is empty.
SIM_API LPWSTR WINAPI StrStrIW(LPCWSTR whole, LPCWSTR part);
