// modules/kernel32/ObjectNames.h
//
// From the name of a kernel object to the name of its file below "objects"; how its security is traced.
#pragma once

#include "base/PlatformCall.h"

#include <windows.h>

#include <string>

namespace simulated
{

/// "global." or "local." and the name, with everything but letters, digits, "-", "_" and "." as %XX. Names
/// tell case apart. ERROR_FILENAME_EXCED_RANGE for one that is too long for a file, ERROR_PATH_NOT_FOUND for
/// a folder that isn't "Global" or "Local", ERROR_INVALID_PARAMETER for a null pointer.
Outcome<std::string> ObjectFileName(const wchar_t* name);

/// Adds to the trace whom a new object is open to and whether it is inherited, where the caller says so.
void NoteSecurity(PlatformCall& call, const SECURITY_ATTRIBUTES* attributes);

} // namespace simulated
