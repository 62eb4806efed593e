// foundation/Modules.h
//
// Functions that are bound at run time, because not every Windows that the plug-in runs on has them.
#pragma once

#include <windows.h>

/// What `GetProcAddress` answered as a pointer of type `Function`; null stays null.
template <class Function>
Function FunctionCast(FARPROC function) noexcept
{
    // By way of an untyped pointer: the compiler rightly distrusts a cast between function types.
    return reinterpret_cast<Function>(reinterpret_cast<void*>(function));
}

/// The function `name` of a loaded module, or null. `Function` is its pointer type.
template <class Function>
Function FindFunction(HMODULE module, LPCSTR name) noexcept
{
    return FunctionCast<Function>(GetProcAddress(module, name));
}
