// modules/powrprof/windows/Unloading.cpp
//
// What the C++ library of this DLL holds goes with the DLL: a host may load and unload it many times.

#include <windows.h>

namespace __gnu_cxx
{

// Gives back the memory that the library keeps for exceptions when there is no other; it declares this
// nowhere.
void __freeres();

} // namespace __gnu_cxx

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds)
{
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr)
    {
        __gnu_cxx::__freeres();
    }
    return TRUE;
}
