// kernel32/SampleModule.h
//
// What the sample DLL exports.
#pragma once

#include <windows.h>

/// While an event of this name exists, DllMain refuses to be loaded.
constexpr wchar_t kRefusal[] = L"RefuseSample";

/// The exit code of the thread of `SampleStart`.
constexpr DWORD kLeaveCode = 23;

/// Starts a thread that holds the module, waits for `go` and ends by freeing the module.
using SampleStartFunction = HANDLE (*)(HANDLE go);
