// tests/support/Wine.h
//
// Whether a test in plain Win32 runs on Wine, which differs from Windows in a few listed ways.
#pragma once

#include <windows.h>

inline bool IsWine()
{
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    return library != nullptr && GetProcAddress(library, "wine_get_version") != nullptr;
}
