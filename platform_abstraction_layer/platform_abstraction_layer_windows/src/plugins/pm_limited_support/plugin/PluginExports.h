// plugin/PluginExports.h
//
// The five functions by which a host finds and drives the plug-in. They have C linkage, the C calling
// convention and undecorated names, and no exception leaves them. The header compiles as C and as C++.
#pragma once

#include "foundation/Api.h"
#include "plugin/HostRecords.h"

#ifdef __cplusplus
#define DP_NOEXCEPT noexcept
extern "C"
{
#else
#define DP_NOEXCEPT
#endif

    /// "Kelvo Power Manager", also the first argument of every event. Static; valid before `DP_Initialize`.
    ORVL_API const char* __cdecl DP_GetModuleId(void) DP_NOEXCEPT;

    /// "Kelvo Power Management Library". Static; valid before `DP_Initialize`.
    ORVL_API const char* __cdecl DP_GetDescription(void) DP_NOEXCEPT;

    /// Takes the host's table, which must live as long as events may come, and starts listening for applied
    /// schemes. 0, or 6 when the thread or its events can't be created. A null `host` is taken too: events
    /// are dropped then. A second call while running takes the new table and leaves the one thread.
    ORVL_API LONG __cdecl DP_Initialize(PM_HostInterface* host) DP_NOEXCEPT;

    /// Ends the notification thread and returns when neither that thread nor one of another start that is
    /// over runs any more, nor a request; a thread whose event can't be set goes on. On such a thread, from
    /// within `SendEvent`, it waits for requests alone; the thread then ends without calling the host again.
    /// Always 0.
    ORVL_API LONG __cdecl DP_Uninitialize(void) DP_NOEXCEPT;

    /// Carries out one request; the result code. Calls from several threads are served one after the other,
    /// and a call from within `SendEvent` at once.
    ORVL_API LONG __cdecl DP_HandleRequest(PM_Request* request) DP_NOEXCEPT;

#ifdef __cplusplus
}
#endif
