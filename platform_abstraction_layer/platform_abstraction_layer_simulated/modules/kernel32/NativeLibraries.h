// modules/kernel32/NativeLibraries.h
//
// The libraries of this process that stand for DLLs and for the program: the plug-in, and the executable. A
// module handle is the address at which its library begins, as on Windows.
//
// To the process they lie in "C:\Program Files\Kelvo\ORVL": the library "libpm_limited_support.so" is
// "pm_limited_support.dll" there, the executable "trxhost" is "trxhost.exe".
#pragma once

#include "base/PlatformCall.h"

#include <string>

namespace simulated::libraries
{

/// Loads the library that `name` means: a path of the host ("./libx.so"), a DLL name ("x.dll", found beside
/// the executable, then where the native loader looks), or a DLL's path as `WindowsPath` gives it. Adds a
/// reference. ERROR_MOD_NOT_FOUND, or ERROR_BAD_EXE_FORMAT for a file that can't be loaded.
Outcome<HMODULE> Load(const std::string& name);

/// The library that `name` means when it is loaded, without a reference; ERROR_MOD_NOT_FOUND.
Outcome<HMODULE> FindLoaded(const std::string& name);

/// The library that `address` lies in, or null.
HMODULE FindByAddress(const void* address) noexcept;

HMODULE Executable() noexcept;

/// True when `module` is the beginning of a loaded library or of the executable.
bool IsLibrary(HMODULE module) noexcept;

/// One more reference; false when it isn't loaded.
bool AddReference(HMODULE module) noexcept;

/// Gives a reference back. What is bound at link time stays.
void Release(HMODULE module) noexcept;

/// The address of a name that the library itself exports, or null.
FARPROC FindFunction(HMODULE module, const char* name) noexcept;

/// The path as the process sees it.
std::string WindowsPath(HMODULE module);

} // namespace simulated::libraries
