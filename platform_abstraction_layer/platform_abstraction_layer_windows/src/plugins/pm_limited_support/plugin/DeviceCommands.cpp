// plugin/DeviceCommands.cpp
//
// The common steps of the commands on live hardware.

#include "plugin/DeviceCommands.h"

#include "foundation/Log.h"
#include "plugin/CommandTable.h"
#include "plugin/RequestIo.h"

// The live setting isn't served; it exists as a variable of a scheme.
LONG device_commands::Refuse(CPluginHelper&, const PM_Request&) noexcept
{
    return TRX_OPERATION_REFUSED;
}

LONG ProcessDeviceFunc(CPluginHelper& context, const PM_Request& request, const Command& command) noexcept
{
    if (command.entryLog != nullptr)
    {
        PmLog(command.entryLog);
    }
    if (!request_io::IsLengthRight(request, command.info) ||
        !request_io::HasRequiredPointers(request, command.info))
    {
        return TRX_OPERATION_FAIL;
    }
    return command.device(context, request);
}
