// scheme/AutoRun.h
//
// The companion application's start with Windows. The results are those of the operations of `CSchemeEx`.
#pragma once

#include <windows.h>

namespace auto_run
{

/// Changes the entry in the "Run" key.
int WriteEntry(int flag, const wchar_t* path, ULONG size) noexcept;

/// The same, and records the flag in registry and configuration.
int Set(int flag, const wchar_t* path, ULONG size) noexcept;

} // namespace auto_run
