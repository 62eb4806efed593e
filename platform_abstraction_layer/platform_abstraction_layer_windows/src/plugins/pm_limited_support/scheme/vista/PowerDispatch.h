// scheme/vista/PowerDispatch.h
//
// The GUID-based functions of the power manager, which exist from major version 6 on and so are bound at run
// time. The index-based ones are bound at link time and need no table.
#pragma once

#include "foundation/Modules.h"

#include <atomic>

using PowerValueReader = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, LPDWORD);
using PowerValueWriter = DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, DWORD);

/// A function of the power manager as it was looked up, null where the system lacks it. Every caller binds
/// the same value, so a reader sees either null or the right one.
struct BoundFunction
{
    std::atomic<FARPROC> address;
};

template <class Function>
struct PowerFunction : BoundFunction
{
    Function load() const noexcept
    {
        return FunctionCast<Function>(address.load());
    }
};

/// One entry for each function. The root key of all calls is null, and their results are Win32 error numbers.
struct PowerFunctions
{
    PowerFunction<DWORD(WINAPI*)(HKEY, GUID**)> PowerGetActiveScheme; ///< the GUID is for `LocalFree`
    PowerFunction<DWORD(WINAPI*)(HKEY, const GUID*)> PowerSetActiveScheme;
    PowerFunction<DWORD(WINAPI*)(HKEY, const GUID*, const GUID*, const GUID*, PUCHAR, LPDWORD)>
        PowerReadFriendlyName;
    PowerFunction<PowerValueReader> PowerReadACValueIndex;
    PowerFunction<PowerValueReader> PowerReadDCValueIndex;
    PowerFunction<PowerValueWriter> PowerWriteACValueIndex;
    PowerFunction<PowerValueWriter> PowerWriteDCValueIndex;
    PowerFunction<DWORD(WINAPI*)(HKEY, const GUID*)> PowerDeleteScheme;
};

/// The process's table. It is filled by `BindPowerFunctions` and never cleared.
extern PowerFunctions PowerDispatch;

/// Looks each function up in `library`.
void BindPowerFunctions(HMODULE library) noexcept;
