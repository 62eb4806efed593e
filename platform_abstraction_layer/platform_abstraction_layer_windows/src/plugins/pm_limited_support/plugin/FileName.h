// plugin/FileName.h
//
// Which file names a request may give: access is by name, inside the configuration folders alone.
#pragma once

#include <windows.h>

/// True for a name that means a file in every folder. False for an empty name, one that leads out of its
/// folder, one with a line break, and a device's name.
bool IsFileName(const wchar_t* name) noexcept;
