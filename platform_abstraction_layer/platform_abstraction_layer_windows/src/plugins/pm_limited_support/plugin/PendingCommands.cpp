// plugin/PendingCommands.cpp
//
// Commands whose engine or agents aren't built yet fail.

#include "plugin/Handlers.h"

LONG ProcessDeviceFunc(CPluginHelper&, const PM_Request&, LONG) noexcept
{
    return TRX_OPERATION_FAIL;
}

LONG ProcessPwrSchemeFunc(CPluginHelper&, const PM_Request&, LONG) noexcept
{
    return TRX_OPERATION_FAIL;
}

LONG ProcessORVARequest(const PM_Request&, LONG) noexcept
{
    return TRX_OPERATION_FAIL;
}
