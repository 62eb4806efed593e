// modules/kernel32/NativeLibraries.h
//
// The libraries of this process that stand for DLLs. A module handle is the address at which its library
// begins, as on Windows. The library "libpm_limited_support.so" is "pm_limited_support.dll" to the process.
#pragma once

#include "base/PlatformCall.h"

#include <string>

namespace simulated::libraries
{

/// Loads the library that `name` means: a path of the host ("./libx.so"), or a file ("libx.so", "x.dll")
/// beside the executable or where the native loader looks. Adds a reference. Returns ERROR_MOD_NOT_FOUND, or
/// ERROR_BAD_EXE_FORMAT for a file that can't be loaded.
Outcome<HMODULE> Load(const std::string& name);

/// The library that `name` means when it is loaded, without a reference; ERROR_MOD_NOT_FOUND.
Outcome<HMODULE> FindLoaded(const std::string& name);

/// The library that `address` lies in, with one more reference; null when there is none.
HMODULE AddReference(const void* address) noexcept;

/// Releases a reference. What is bound at link time stays. False for a handle of no library.
bool Release(HMODULE module) noexcept;

/// The address of a name that the library itself exports, or null.
FARPROC FindFunction(HMODULE module, const char* name) noexcept;

} // namespace simulated::libraries
