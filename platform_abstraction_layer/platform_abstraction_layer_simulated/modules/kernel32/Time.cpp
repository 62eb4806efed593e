// modules/kernel32/Time.cpp
//
// Sleep and the tick count, on the notebook's clock.

#include "base/Clock.h"
#include "base/PlatformCall.h"

#include <windows.h>

using namespace simulated;

// INFINITE is for ever also when the clock is instant.
SIM_API void WINAPI Sleep(DWORD milliseconds)
{
    PlatformCall call(CallClass::Thread, "Sleep", SIM_CALLER);
    call.Arguments(milliseconds);
    do
    {
        Clock::Sleep(milliseconds);
    } while (milliseconds == INFINITE && !Clock::IsInstant());
    call.AnswerNothing();
}

SIM_API DWORD WINAPI GetTickCount()
{
    PlatformCall call(CallClass::System, "GetTickCount", SIM_CALLER);
    return call.Answer(static_cast<DWORD>(Clock::Now()));
}
