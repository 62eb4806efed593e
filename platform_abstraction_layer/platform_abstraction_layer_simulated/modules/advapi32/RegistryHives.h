// modules/advapi32/RegistryHives.h
//
// Loading and unloading hives.
//
// Known differences from Windows: a hive can be brought in below HKEY_USERS alone, under a name that a line
// of machine.ini can begin with; a hive's file that isn't there isn't made.
#pragma once

#include <windows.h>

namespace simulated::registry
{

DWORD LoadHive(HKEY key, LPCWSTR subKey, LPCWSTR file);
DWORD UnloadHive(HKEY key, LPCWSTR subKey);

} // namespace simulated::registry
