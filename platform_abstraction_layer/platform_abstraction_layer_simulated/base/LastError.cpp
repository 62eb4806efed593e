// base/LastError.cpp
//
// The last error of each thread.

#include "base/PlatformCall.h"

#include <winbase.h>

namespace simulated
{

namespace
{

thread_local DWORD lastError = ERROR_SUCCESS;

} // namespace

void PlatformCall::SetError(DWORD error) noexcept
{
    lastError = error;
}

} // namespace simulated

// Neither function is an entrance: looking at the last error is no work of the platform, and a fault there
// would hide the error that it reports.
SIM_API DWORD WINAPI GetLastError()
{
    return simulated::lastError;
}

SIM_API void WINAPI SetLastError(DWORD error)
{
    simulated::lastError = error;
}
