// plugin/DllMain.cpp
//
// What the library does when it is loaded: set up its locks, and nothing else. No file, driver or registry
// key is touched before a request asks for it.

#include "agents/OrvlDrvMgr.h"
#include "plugin/NotifyThread.h"
#include "plugin/RequestLock.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) noexcept
{
    if (reason == DLL_PROCESS_ATTACH)
    {
        driver_channel::SetUp();
        request_lock::SetUp();
        notification::SetUp();
    }
    // When the process ends, its other threads may have died inside a lock; the system takes everything back.
    // For the same reason no static object has a destructor that does anything.
    else if (reason == DLL_PROCESS_DETACH && processEnds == nullptr)
    {
        notification::TearDown();
        request_lock::TearDown();
        driver_channel::TearDown();
    }
    return TRUE;
}
