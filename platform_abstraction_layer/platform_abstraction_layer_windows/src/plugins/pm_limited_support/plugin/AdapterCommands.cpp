// plugin/AdapterCommands.cpp
//
// The commands on network adapters as the operating system sees them. On the wire a LAN speed has a number of
// its own; everywhere else it is the agent's level, in the event as well.

#include "agents/LanAgent.h"
#include "foundation/Log.h"
#include "plugin/DeviceCommands.h"
#include "plugin/PluginHelper.h"
#include "plugin/RequestIo.h"

#include <algorithm>
#include <iterator>

namespace device_commands
{

namespace
{

// The agent's level for each wire value.
constexpr int kSpeedLevels[] = {2, 3, 4, 5, 1};

LONG ReplyEnabled(const PM_Request& request, int (CLanAgent::*get)() noexcept) noexcept
{
    CLanAgent agent;
    agent.Initialize();
    const LONG status = (agent.*get)();
    if (status != 0 && status != 1)
    {
        return TRX_OPERATION_FAIL;
    }
    request_io::WriteReply(request, status);
    return TRX_OPERATION_OK;
}

} // namespace

LONG GetLanEnabledStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return ReplyEnabled(request, &CLanAgent::GetLANConnectStatus);
}

LONG GetWirelessEnabledStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return ReplyEnabled(request, &CLanAgent::GetWLANConnectStatus);
}

LONG GetLanSpeed(CPluginHelper&, const PM_Request& request) noexcept
{
    CLanAgent agent;
    agent.Initialize();
    const auto* const found =
        std::find(std::begin(kSpeedLevels), std::end(kSpeedLevels), agent.GetLanSpeed());
    if (found == std::end(kSpeedLevels))
    {
        return TRX_OPERATION_FAIL;
    }
    request_io::WriteReply(request, static_cast<LONG>(found - std::begin(kSpeedLevels)));
    return TRX_OPERATION_OK;
}

LONG SetLanSpeed(CPluginHelper& context, const PM_Request& request) noexcept
{
    const auto value = request_io::ReadPayload<LONG>(request);
    if (value < 0 || value >= static_cast<LONG>(std::size(kSpeedLevels)))
    {
        return TRX_OPERATION_FAIL;
    }
    const int level = kSpeedLevels[value];
    CLanAgent agent;
    agent.Initialize();
    const int outcome = agent.GetLanSpeed() == level ? level : agent.SetLanSpeed(level);
    if (outcome == -1)
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"send LAN Speed change event to TRX");
    context.SendHostEvent("LAN_CHANGED", outcome);
    return TRX_OPERATION_OK;
}

} // namespace device_commands
