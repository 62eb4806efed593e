// modules/powrprof/PowerStoreSeeding.h
//
// Fills an empty store through the registry functions, on any Windows. Results are Win32 error numbers.
#pragma once

#include <windows.h>

namespace power_store
{

/// The machine's part; from major version 6 on with the GUID-based schemes.
DWORD SeedMachine(DWORD majorVersion);

/// The current user's part.
DWORD SeedCurrentUser();

/// Removes both parts and what else lies below their keys.
DWORD RemoveStore();

} // namespace power_store
