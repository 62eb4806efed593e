// modules/loader/DllEntry.cpp
//
// What the loader of Windows does for a DLL, compiled into the library itself: it registers where
// the library lies and calls its DllMain, if there is one. This file comes last among the library's objects,
// so the order is that of a DLL's start-up code: constructors of static objects, DllMain, use, DllMain,
// destructors of static objects. The platform knows the library's place around all of that.
//
// Known differences from Windows: DllMain isn't called for threads, the end of the process looks like an
// unload, and a library bound at link time starts whatever its DllMain returns.

#include "base/Trace.h"

#include <windows.h>

// The linker gives these to each library on its own: hidden, they can't be another library's.
extern "C" const char __ehdr_start __attribute__((visibility("hidden")));
extern "C" const char _end __attribute__((visibility("hidden")));
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved)
    __attribute__((weak, visibility("hidden")));

// The symbol by which the linker pulls this file in.
extern "C" __attribute__((visibility("hidden"))) const char simulated_dll_entry;
const char simulated_dll_entry = 0;

namespace
{

// The earliest and latest that a program may ask for.
constexpr int kOutermost = 101;

void CallDllMain(DWORD reason)
{
    if (DllMain != nullptr)
    {
        DllMain(reinterpret_cast<HINSTANCE>(const_cast<char*>(&__ehdr_start)), reason, nullptr);
    }
}

__attribute__((constructor(kOutermost))) void MarkPlace()
{
    simulated::SetPlugInRange(&__ehdr_start, &_end);
}

// A library that is loaded stays too: no DllMain here refuses.
__attribute__((constructor)) void Attach()
{
    CallDllMain(DLL_PROCESS_ATTACH);
}

__attribute__((destructor)) void Detach()
{
    CallDllMain(DLL_PROCESS_DETACH);
}

__attribute__((destructor(kOutermost))) void ForgetPlace()
{
    simulated::SetPlugInRange(nullptr, nullptr);
}

} // namespace
