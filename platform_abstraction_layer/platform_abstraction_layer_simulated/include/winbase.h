// winbase.h
//
// kernel32: files, kernel objects, threads, modules, memory, time.
#pragma once

#include <winnt.h>

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

SIM_API DWORD WINAPI GetLastError();
SIM_API void WINAPI SetLastError(DWORD error);
