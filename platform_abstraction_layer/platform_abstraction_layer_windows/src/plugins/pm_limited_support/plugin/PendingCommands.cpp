// plugin/PendingCommands.cpp
//
// Commands whose engine or agents aren't built yet fail.

#include "plugin/CommandNumbers.h"
#include "plugin/Handlers.h"

LONG ProcessDeviceFunc(CPluginHelper&, const PM_Request&, LONG number) noexcept
{
    const bool refused = number == PM_GET_LUMS_LEVEL || number == PM_SET_LUMS_LEVEL;
    return refused ? TRX_OPERATION_REFUSED : TRX_OPERATION_FAIL;
}

LONG ProcessPwrSchemeFunc(CPluginHelper&, const PM_Request&, LONG) noexcept
{
    return TRX_OPERATION_FAIL;
}

LONG ProcessORVARequest(const PM_Request&, LONG) noexcept
{
    return TRX_OPERATION_FAIL;
}
