// include/winnls.h
//
// kernel32: code pages, and the comparison of text.
#pragma once

#include <winnt.h>

#define CP_ACP 0
#define CP_UTF8 65001

/// Lengths are in units of the respective text; a source length of -1 stands for a terminated text and
/// includes the terminator, a target length of 0 asks for the length that is needed. Knows CP_ACP and
/// CP_UTF8.
SIM_API int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH source, int sourceLength,
                                       LPWSTR target, int targetLength);
SIM_API int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH source, int sourceLength,
                                       LPSTR target, int targetLength, LPCCH defaultChar,
                                       LPBOOL usedDefaultChar);

SIM_API int WINAPI lstrlenW(LPCWSTR text);
SIM_API int WINAPI lstrcmpiW(LPCWSTR left, LPCWSTR right);
