// include/processenv.h
//
// kernel32: the environment of a process.
#pragma once

#include <winnt.h>

/// The characters of the expanded text with its terminator, also when `size` characters don't hold it.
SIM_API DWORD WINAPI ExpandEnvironmentStringsW(LPCWSTR source, LPWSTR target, DWORD size);
