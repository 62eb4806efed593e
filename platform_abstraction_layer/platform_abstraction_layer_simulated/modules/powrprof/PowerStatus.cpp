// modules/powrprof/PowerStatus.cpp
//
// GetSystemPowerStatus, which kernel32 exports, on the power manager's values.

#include "PowerStoreMachine.h"
#include "base/PlatformCall.h"

using simulated::CallClass;
using simulated::PlatformCall;

SIM_API BOOL WINAPI GetSystemPowerStatus(LPSYSTEM_POWER_STATUS status)
{
    PlatformCall call(CallClass::Power, "GetSystemPowerStatus", SIM_CALLER);
    return call.Boolean(
        [&]
        {
            return status == nullptr ? static_cast<DWORD>(ERROR_INVALID_PARAMETER)
                                     : power_store::ReadPowerStatus(*status);
        });
}
