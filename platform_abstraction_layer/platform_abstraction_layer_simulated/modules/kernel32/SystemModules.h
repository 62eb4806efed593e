// modules/kernel32/SystemModules.h
//
// The modules that are no native libraries: the registered DLLs of the operating system and those that
// machine.ini adds. A module handle is the address of the module's record here.
#pragma once

#include "base/PlatformCall.h"

#include <optional>
#include <string>

namespace simulated::system_modules
{

/// The module that `name` means, with or without ".dll" and the system's folder: null for a DLL that this
/// machine lacks, nothing for a name that means no DLL of the system.
std::optional<HMODULE> Find(const std::string& name);

/// True for a handle that `Find` has given.
bool IsModule(HMODULE module);

/// The address of an entry by its name, or by its number when the pointer holds one. Null when the module
/// lacks it.
FARPROC FindFunction(HMODULE module, const char* nameOrOrdinal);

std::string WindowsPath(HMODULE module);

} // namespace simulated::system_modules
