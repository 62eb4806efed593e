// plugin/DeviceCommands.cpp
//
// What each command on live hardware wants of its request, and the way to its function.

#include "plugin/DeviceCommands.h"

#include "foundation/PmLog.h"
#include "plugin/CommandNumbers.h"
#include "plugin/Exchange.h"
#include "plugin/Handlers.h"

#include <algorithm>
#include <iterator>

namespace
{

using namespace device_commands;
using exchange::Length;
using exchange::Reply;
using exchange::Terms;

// The live setting isn't served; it exists as a variable of a scheme.
LONG Refuse(CPluginHelper&, const PM_Request&) noexcept
{
    return TRX_OPERATION_REFUSED;
}

constexpr Terms kNumberOut{Length::Any, 0, Reply::Required};
constexpr Terms kNumberIn{Length::AtLeast, sizeof(LONG), Reply::None};
constexpr Terms kNumberInRecordOut{Length::AtLeast, sizeof(LONG), Reply::Required};
constexpr Terms kNothing{};

struct DeviceCommand
{
    LONG number;
    const wchar_t* enterLog;
    Terms terms;
    Function run;
};

constexpr DeviceCommand kCommands[] = {
    {PM_GET_MAX_LCD_BRIGHTNESS, nullptr, kNumberOut, GetMaxLcdBrightness},
    {PM_GET_LCD_BRIGHTNESS, L"Get brightness level.\n", kNumberOut, GetLcdBrightness},
    {PM_SET_LCD_BRIGHTNESS, L"Set brightness level.\n", kNumberIn, SetLcdBrightness},
    {PM_GET_LAN_STATUS, L"Get LAN status.\n", kNumberOut, GetLanStatus},
    {PM_SET_LAN_STATUS, L"Set LAN status.\n", kNumberIn, SetLanStatus},
    {PM_GET_LAN_ENABLED_STATUS, nullptr, kNumberOut, GetLanEnabledStatus},
    {PM_GET_WIRELESS_STATUS, nullptr, kNumberOut, GetWirelessStatus},
    {PM_SET_WIRELESS_STATUS, nullptr, kNumberIn, SetWirelessStatus},
    {PM_GET_WIRELESS_ENABLED_STATUS, nullptr, kNumberOut, GetWirelessEnabledStatus},
    {PM_GET_BLUETOOTH_STATUS, nullptr, kNumberOut, GetBluetoothStatus},
    {PM_SET_BLUETOOTH_STATUS, nullptr, kNumberIn, SetBluetoothStatus},
    {PM_GET_LAN_SPEED, L"Get LAN speed.\n", kNumberOut, GetLanSpeed},
    {PM_SET_LAN_SPEED, nullptr, kNumberIn, SetLanSpeed},
    {PM_GET_3G_STATUS, nullptr, kNumberOut, Get3GStatus},
    {PM_SET_3G_STATUS, nullptr, kNumberIn, Set3GStatus},
    {PM_GET_LUMS_LEVEL, L"Get LUMS level.\n", kNothing, Refuse},
    {PM_SET_LUMS_LEVEL, L"Set LUMS level.\n", kNothing, Refuse},
    {PM_GET_BATTERY_INFO, L"Get battery information.\n", kNumberInRecordOut, GetBatteryInfo},
    {PM_GET_BATTERY_COUNT, L"Get battery count.\n", kNumberOut, GetBatteryCount},
    {PM_GET_POWER_INFO, L"Get power information.\n", kNumberOut, GetPowerInfo},
};

} // namespace

LONG ProcessDeviceFunc(CPluginHelper& context, const PM_Request& request, LONG number) noexcept
{
    const auto* const command =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [number](const DeviceCommand& row) { return row.number == number; });
    if (command == std::end(kCommands))
    {
        return TRX_UNKNOWN_COMMAND;
    }
    if (command->enterLog != nullptr)
    {
        PmLog(command->enterLog);
    }
    if (!exchange::IsLengthRight(request, command->terms) ||
        !exchange::ArePointersRight(request, command->terms))
    {
        return TRX_OPERATION_FAIL;
    }
    return command->run(context, request);
}
