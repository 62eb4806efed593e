// include/fileapi.h
//
// kernel32: files and folders.
#pragma once

#include <winnt.h>

struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

#define OPEN_EXISTING 3

/// Opens a device, or a file that is there, for reading.
SIM_API HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                                  DWORD disposition, DWORD flags, HANDLE templateFile);

SIM_API BOOL WINAPI DeleteFileW(LPCWSTR path);
