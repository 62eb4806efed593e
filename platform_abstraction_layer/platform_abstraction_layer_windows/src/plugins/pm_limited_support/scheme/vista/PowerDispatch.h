// scheme/vista/PowerDispatch.h
//
// The GUID-based functions of the power manager, which exist from major version 6 on and so are bound at run
// time. The index-based ones are bound at link time and need no table.
#pragma once

#include <windows.h>

#include <atomic>

using PowerValueReader = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, LPDWORD);
using PowerValueWriter = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, DWORD);

/// One entry for each function, null where the system lacks it. The root key of all calls is null, and their
/// results are Win32 error numbers. Every caller binds the same values, so a reader sees either null or
/// the right one.
struct PowerFunctions
{
    std::atomic<DWORD(WINAPI*)(HKEY, GUID**)> PowerGetActiveScheme; ///< the GUID is for `LocalFree`
    std::atomic<DWORD(WINAPI*)(HKEY, const GUID*)> PowerSetActiveScheme;
    std::atomic<DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, PUCHAR, LPDWORD)>
        PowerReadFriendlyName;
    std::atomic<PowerValueReader> PowerReadACValueIndex;
    std::atomic<PowerValueReader> PowerReadDCValueIndex;
    std::atomic<PowerValueWriter> PowerWriteACValueIndex;
    std::atomic<PowerValueWriter> PowerWriteDCValueIndex;
    std::atomic<DWORD(WINAPI*)(HKEY, const GUID*)> PowerDeleteScheme;
};

/// The process's table. It is filled by `BindPowerFunctions` and never cleared.
extern PowerFunctions PowerDispatch;

/// Looks each function up in `library`.
void BindPowerFunctions(HMODULE library) noexcept;
