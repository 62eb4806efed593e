// plugin/ControllerCommands.cpp
//
// The commands on what the embedded controller owns: backlight, radios, LAN port. A value that the command
// can't take costs no call of the driver; a setter reads back what it set and tells the host.

#include "agents/Radio.h"
#include "foundation/Log.h"
#include "plugin/DeviceCommands.h"
#include "plugin/PluginHelper.h"
#include "plugin/RequestIo.h"

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
    request_io::WriteReply(request, number);
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

// How the commands on a radio speak of it.
struct RadioCommands
{
    Radio radio;
    const wchar_t* enterSetLog;
    const wchar_t* unchangedLog;
    const wchar_t* readLog = nullptr;   ///< null: nothing is logged
    const wchar_t* failedLog = nullptr; ///< null: nothing is logged
    const char* event = nullptr;        ///< null: no event is sent
    bool mayBeMissing = false;          ///< `kNotFitted` says that there is no such radio
};

constexpr int kNotFitted = 255;

constexpr RadioCommands k3G{.radio = k3GRadio,
                            .enterSetLog = L"enter set 3G Status %d",
                            .unchangedLog = L"3G Status isn't changed",
                            .event = "3G_CHANGED",
                            .mayBeMissing = true};
constexpr RadioCommands kWireless{.radio = kWifiRadio,
                                  .enterSetLog = L"enter Set WLAN %d.\n",
                                  .unchangedLog = L"WLAN power status isn't changed\n",
                                  .readLog = L"Get WLAN status %d.\n",
                                  .failedLog = L"set WLAN power status failed\n",
                                  .event = "WLAN_CHANGED"};
constexpr RadioCommands kBluetooth{.radio = kBluetoothRadio,
                                   .enterSetLog = L"enter Set Bluetooth %d.\n",
                                   .unchangedLog = L"Bluetooth power status isn't changed\n",
                                   .readLog = L"Get Bluetooth status %d.\n",
                                   .failedLog = L"set Bluetooth power status failed\n"};

LONG ReplyRadio(const RadioCommands& commands, const PM_Request& request) noexcept
{
    return WithController(
        [&](CEcAgent& agent) noexcept
        {
            const int status = (agent.*commands.radio.get)();
            if (commands.readLog != nullptr)
            {
                PmLog(commands.readLog, status);
            }
            return ReplyNumber(request, WireStatus(status));
        });
}

LONG SwitchRadio(const RadioCommands& commands, CPluginHelper& context, CEcAgent& agent, LONG value) noexcept
{
    const int status = (agent.*commands.radio.get)();
    if (commands.mayBeMissing && status == kNotFitted)
    {
        return TRX_OPERATION_FAIL;
    }
    if (status == value)
    {
        PmLog(commands.unchangedLog);
        return TRX_OPERATION_OK;
    }
    if ((agent.*commands.radio.set)(static_cast<int>(value)) == -1)
    {
        if (commands.failedLog != nullptr)
        {
            PmLog(commands.failedLog);
        }
        return TRX_OPERATION_FAIL;
    }
    if (commands.event != nullptr)
    {
        context.SendHostEvent(commands.event, WireStatus((agent.*commands.radio.get)()));
    }
    return TRX_OPERATION_OK;
}

LONG SwitchRadio(const RadioCommands& commands, CPluginHelper& context, const PM_Request& request) noexcept
{
    const auto value = request_io::ReadPayload<LONG>(request);
    if (!IsSwitch(value))
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(commands.enterSetLog, value);
    return WithController([&](CEcAgent& agent) noexcept
                          { return SwitchRadio(commands, context, agent, value); });
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
    const auto level = request_io::ReadPayload<LONG>(request);
    if (level < 0)
    {
        PmLog(L"set LCD level %d ", level);
        return TRX_OPERATION_FAIL;
    }
    CEcAgent agent;
    if (agent.Setup() < 0)
    {
        PmLog(L"set brightness level, ec setup failed");
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"set LCD level %d ", level);
    if (agent.SetBacklightLevel(static_cast<int>(level)) == -1)
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"send LCD level change event to TRX");
    context.SendHostEvent("LCD_BRIGHTNESS_CHANGED", agent.GetBacklightLevel());
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
    const auto value = request_io::ReadPayload<LONG>(request);
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
    return ReplyRadio(k3G, request);
}

LONG Set3GStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    return SwitchRadio(k3G, context, request);
}

LONG GetWirelessStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return ReplyRadio(kWireless, request);
}

LONG SetWirelessStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    return SwitchRadio(kWireless, context, request);
}

LONG GetBluetoothStatus(CPluginHelper&, const PM_Request& request) noexcept
{
    return ReplyRadio(kBluetooth, request);
}

LONG SetBluetoothStatus(CPluginHelper& context, const PM_Request& request) noexcept
{
    return SwitchRadio(kBluetooth, context, request);
}

} // namespace device_commands
