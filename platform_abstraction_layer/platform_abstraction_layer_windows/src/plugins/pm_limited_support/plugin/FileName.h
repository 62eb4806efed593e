// plugin/FileName.h
//
// Which file names a request may give: access is by name, inside the configuration folders alone.
#pragma once

#include <windows.h>

/// True for a name that is a file's wherever it stands. Not one: an empty name, one that leads out of its
/// folder, one with a line break, and a device's, which is that device in every folder.
bool IsFileName(const wchar_t* name) noexcept;
