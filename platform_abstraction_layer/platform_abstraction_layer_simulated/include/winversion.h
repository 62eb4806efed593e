// include/winversion.h
//
// kernel32: the version of the operating system.
#pragma once

#include <winnt.h>

#define VER_PLATFORM_WIN32_NT 2

struct OSVERSIONINFOW
{
    DWORD dwOSVersionInfoSize; ///< offset 0
    DWORD dwMajorVersion;      ///< offset 4
    DWORD dwMinorVersion;      ///< offset 8
    DWORD dwBuildNumber;       ///< offset 12
    DWORD dwPlatformId;        ///< offset 16
    WCHAR szCSDVersion[128];   ///< offset 20: the service pack; natively empty
};
static_assert(sizeof(OSVERSIONINFOW) == 276);
using LPOSVERSIONINFOW = OSVERSIONINFOW*;

/// The longer form; its first 276 bytes are an `OSVERSIONINFOW`.
struct OSVERSIONINFOEXW
{
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
    WORD wServicePackMajor; ///< offset 276
    WORD wServicePackMinor; ///< offset 278
    WORD wSuiteMask;        ///< offset 280
    BYTE wProductType;      ///< offset 282
    BYTE wReserved;         ///< offset 283
};
static_assert(sizeof(OSVERSIONINFOEXW) == 284);

/// Major version in the low byte, minor version in the next, build number in the high word.
SIM_API DWORD WINAPI GetVersion();

/// Fills an `OSVERSIONINFOW`, whatever follows it; other sizes are refused with ERROR_INSUFFICIENT_BUFFER.
SIM_API BOOL WINAPI GetVersionExW(LPOSVERSIONINFOW information);
