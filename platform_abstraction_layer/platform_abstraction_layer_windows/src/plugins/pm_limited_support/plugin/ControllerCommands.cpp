// plugin/ControllerCommands.cpp
//
// The commands on what the embedded controller owns: backlight, radios, LAN port. A value that the command
// can't take costs no call of the driver; a setter reads back what it set and tells the host.

#include "agents/EcAgent.h"
#include "foundation/PmLog.h"
#include "plugin/DeviceCommands.h"
#include "plugin/Exchange.h"
#include "plugin/PluginHelper.h"

namespace device_commands
{

namespace
{

// Runs `work` on an agent that is set up; 6 when it can't be.
template <class Work>
LONG WithController(Work work) noexcept
{
    CEcAgent agent;
    if (agent.Setup() < 0)
    {
        return TRX_OPERATION_FAIL;
    }
    const LONG result = work(agent);
    agent.Cleanup();
    return result;
}

LONG ReplyNumber(const PM_Request& request, LONG number) noexcept
{
    exchange::WriteReply(request, number);
    return TRX_OPERATION_OK;
}

constexpr bool IsSwitch(LONG value) noexcept
{
    return value == 0 || value == 1;
}

// The controller knows more states of a radio than on and off; on the wire they are one.
constexpr LONG WireStatus(int status) noexcept
{
    return IsSwitch(status) ? status : 2;
}

// A radio: its two operations, its log lines (null where it has none) and its event.
struct Radio
{
    int (CEcAgent::*get)() noexcept;
    int (CEcAgent::*set)(int status) noexcept;
    const wchar_t* readLog;
    const wchar_t* enterSetLog;
    const wchar_t* unchangedLog;
    const wchar_t* failedLog;
    const char* event;
    bool mayBeMissing; ///< `kNotFitted` says that there is no such radio
};

constexpr int kNotFitted = 255;

constexpr Radio k3G{&CEcAgent::Get3GStatus,
                    &CEcAgent::Set3GStatus,
                    nullptr,
                    L"enter set 3G Status %d",
                    L"3G Status isn't changed",
                    nullptr,
                    "3G_CHANGED",
                    true};
constexpr Radio kWireless{&CEcAgent::GetWifiStatus,
                          &CEcAgent::SetWifiStatus,
                          L"Get WLAN status %d.\n",
                          L"enter Set WLAN %d.\n",
                          L"WLAN power status isn't changed\n",
                          L"set WLAN power status failed\n",
                          "WLAN_CHANGED",
                          false};
constexpr Radio kBluetooth{&CEcAgent::GetBluetoothStatus,
                           &CEcAgent::SetBluetoothStatus,
                           L"Get Bluetooth status %d.\n",
                           L"enter Set Bluetooth %d.\n",
                           L"Bluetooth power status isn't changed\n",
                           L"set Bluetooth power status failed\n",
                           nullptr,
                           false};

LONG GetRadio(const Radio& radio, const PM_Request& request) noexcept
{
    return WithController(
        [&](CEcAgent& agent) noexcept
        {
            const int status = (agent.*radio.get)();
            if (radio.readLog != nullptr)
            {
                PmLog(radio.readLog, status);
            }
            return ReplyNumber(request, WireStatus(status));
        });
}

LONG SwitchRadio(const Radio& radio, CPluginHelper& context, CEcAgent& agent, LONG value) noexcept
{
    const int status = (agent.*radio.get)();
    if (radio.mayBeMissing && status == kNotFitted)
    {
        return TRX_OPERATION_FAIL;
    }
    if (status == value)
    {
        PmLog(radio.unchangedLog);
        return TRX_OPERATION_OK;
    }
    if ((agent.*radio.set)(static_cast<int>(value)) == -1)
    {
        if (radio.failedLog != nullptr)
        {
            PmLog(radio.failedLog);
        }
        return TRX_OPERATION_FAIL;
    }
    if (radio.event != nullptr)
    {
        context.SendHostEvent(radio.event, WireStatus((agent.*radio.get)()));
    }
    return TRX_OPERATION_OK;
}

LONG SetRadio(const Radio& radio, CPluginHelper& context, const PM_Request& request) noexcept
{
    const auto value = exchange::ReadPayload<LONG>(request);
    if (!IsSwitch(value))
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(radio.enterSetLog, value);
    return WithController([&](CEcAgent& agent) noexcept
                          { return SwitchRadio(radio, context, agent, value); });
}

} // namespace

LONG GetMaxLcdBrightness(CPluginHelper&, const PM_Request& request) noexcept
{
    return WithController([&](CEcAgent& agent) noexcept
                          { return ReplyNumber(request, agent.GetMaxLevels()); });
}

LONG GetLcdBrightness(CPluginHelper&, const PM_Request& request) noexcept
{
    return WithController(
        [&](CEcAgent& agent) noexcept
        {
            const int level = agent.GetBacklightLevel();
            return level < 0 ? TRX_OPERATION_FAIL : ReplyNumber(request, level);
        });
}

LONG SetLcdBrightness(CPluginHelper& context, const PM_Request& request) noexcept
{
    const auto level = exchange::ReadPayload<LONG>(request);
    const bool isLevel = level >= 0; // anything else ends without a call of the driver
    CEcAgent agent;
    if (isLevel && agent.Setup() < 0)
    {
        PmLog(L"set brightness level, ec setup failed");
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"set LCD level %d ", level);
    if (!isLevel || agent.SetBacklightLevel(static_cast<int>(level)) == -1)
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"send LCD level change event to TRX");
    context.SendHostEvent("LCD_BRIGHTNESS_CHANGED", agent.GetBacklightLevel());
    agent.Cleanup();
    return TRX_OPERATION_OK;
}

LONG GetLanStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return WithController(
        [&](CEcAgent& agent) noexcept
        {
            const int status = agent.GetLANStatus();
            return IsSwitch(status) ? ReplyNumber(request, status) : TRX_OPERATION_FAIL;
        });
}

LONG SetLanStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    const auto value = exchange::ReadPayload<LONG>(request);
    if (value == 0)
    {
        return TRX_OPERATION_REFUSED;
    }
    if (value != 1)
    {
        return TRX_OPERATION_FAIL;
    }
    return WithController(
        [&](CEcAgent& agent) noexcept
        {
            if (agent.GetLANStatus() == 1)
            {
                return TRX_OPERATION_OK;
            }
            if (agent.SetLANStatus(1) == -1)
            {
                return TRX_OPERATION_FAIL;
            }
            context.SendHostEvent("LAN_CHANGED", agent.GetLANStatus());
            return TRX_OPERATION_OK;
        });
}

LONG Get3GStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return GetRadio(k3G, request);
}

LONG Set3GStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    return SetRadio(k3G, context, request);
}

LONG GetWirelessStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return GetRadio(kWireless, request);
}

LONG SetWirelessStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    return SetRadio(kWireless, context, request);
}

LONG GetBluetoothStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return GetRadio(kBluetooth, request);
}

LONG SetBluetoothStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    return SetRadio(kBluetooth, context, request);
}

} // namespace device_commands
