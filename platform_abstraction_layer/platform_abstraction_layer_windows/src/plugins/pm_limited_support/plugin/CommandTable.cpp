// plugin/CommandTable.cpp
//
// One row for each command, in the order of their numbers.

#include "plugin/CommandTable.h"

#include <algorithm>
#include <cstring>

namespace
{

using namespace config_commands;
using namespace device_commands;
using namespace scheme_commands;

consteval CommandInfo InfoOf(PmCommand number)
{
    return *std::ranges::find(commands::kAll, number, &CommandInfo::number);
}

consteval Command Device(PmCommand number, device_commands::Function run, const wchar_t* entryLog = nullptr)
{
    return {.info = InfoOf(number), .handler = ProcessDeviceFunc, .entryLog = entryLog, .device = run};
}

consteval Command Config(PmCommand number, config_commands::Function run)
{
    return {.info = InfoOf(number), .handler = ProcessConfigFunc, .config = run};
}

consteval Command Scheme(PmCommand number, scheme_commands::Function run, const wchar_t* entryLog = nullptr,
                         const wchar_t* lengthLog = nullptr)
{
    return {.info = InfoOf(number),
            .handler = ProcessPwrSchemeFunc,
            .entryLog = entryLog,
            .lengthLog = lengthLog,
            .scheme = run};
}

constexpr Command kCommands[] = {
    Scheme(PM_GET_CPU_SPEED, GetCpuSpeed),
    Scheme(PM_SET_CPU_SPEED, SetCpuSpeed),
    Device(PM_GET_MAX_LCD_BRIGHTNESS, GetMaxLcdBrightness),
    Device(PM_GET_LCD_BRIGHTNESS, GetLcdBrightness, L"Get brightness level.\n"),
    Device(PM_SET_LCD_BRIGHTNESS, SetLcdBrightness, L"Set brightness level.\n"),
    Device(PM_GET_LAN_STATUS, GetLanStatus, L"Get LAN status.\n"),
    Device(PM_SET_LAN_STATUS, SetLanStatus, L"Set LAN status.\n"),
    Device(PM_GET_LAN_ENABLED_STATUS, GetLanEnabledStatus),
    Device(PM_GET_WIRELESS_STATUS, GetWirelessStatus),
    Device(PM_SET_WIRELESS_STATUS, SetWirelessStatus),
    Device(PM_GET_WIRELESS_ENABLED_STATUS, GetWirelessEnabledStatus),
    Device(PM_GET_BLUETOOTH_STATUS, GetBluetoothStatus),
    Device(PM_SET_BLUETOOTH_STATUS, SetBluetoothStatus),
    Device(PM_GET_LAN_SPEED, GetLanSpeed, L"Get LAN speed.\n"),
    Device(PM_SET_LAN_SPEED, SetLanSpeed),
    Device(PM_GET_3G_STATUS, Get3GStatus),
    Device(PM_SET_3G_STATUS, Set3GStatus),
    Device(PM_GET_LUMS_LEVEL, Refuse, L"Get LUMS level.\n"),
    Device(PM_SET_LUMS_LEVEL, Refuse, L"Set LUMS level.\n"),
    Device(PM_GET_BATTERY_INFO, GetBatteryInfo, L"Get battery information.\n"),
    Scheme(PM_ADD_SCHEME, AddScheme),
    Scheme(PM_EDIT_SCHEME, EditScheme),
    Scheme(PM_DELETE_SCHEME, DeleteScheme),
    Scheme(PM_QUERY_SCHEME, QueryScheme, L"paramLen=%d\n",
           L"pRequest->paramsLen != sizeof(PM_Variable_Data)"),
    Device(PM_GET_BATTERY_COUNT, GetBatteryCount, L"Get battery count.\n"),
    Scheme(PM_GET_SCHEME_NAME, GetSchemeName, L"Get Scheme name.\n"),
    Scheme(PM_GET_ACTIVE_SCHEME, GetActiveScheme),
    Command{.info = InfoOf(PM_POST_DOWN_INTERFACE)},
    Scheme(PM_GET_USERID, GetUserId),
    Device(PM_GET_POWER_INFO, GetPowerInfo, L"Get power information.\n"),
    Scheme(PM_GET_SCHEME_VAR_COUNT, GetSchemeVarCount),
    Scheme(PM_GET_SCHEME_VAR_OPT_VALUE, GetSchemeVarOptValue),
    Scheme(PM_INIT_CFG_FILE, InitCfgFile),
    Config(PM_GET_INT_FROM_CONFIG, GetInt),
    Config(PM_GET_STR_FROM_CONFIG, GetString),
    Config(PM_PUT_INT_INTO_CONFIG, PutInt),
    Config(PM_PUT_STR_INTO_CONFIG, PutString),
    Scheme(PM_ADD_SCHEME_ALL, AddSchemeAll, nullptr, L"the len check failed in  PM_ADD_SCHEME_ALL\n"),
    Scheme(PM_QUERY_SCHEME_ALL, QuerySchemeAll),
    Scheme(PM_EDIT_SCHEME_ALL, EditSchemeAll, L"enter PM_EDIT_SCHEME_ALL",
           L"the len check failed in  PM_EDIT_SCHEME_ALL\n"),
    Scheme(PM_APPLY_SCHEME, ApplyScheme, L"enter PM_APPLY_SCHEME\n", L"result = TRX_OPERATION_FAIL"),
    Scheme(PM_CLEAR_SCHEMES, ClearSchemes, L"PM_CLEAR_SCHEMES"),
    Command{.info = InfoOf(PM_AUTORUN_ORVA), .handler = ProcessORVARequest},
};
static_assert(std::ranges::equal(
                  kCommands, commands::kAll, {}, [](const Command& row) { return row.info.number; },
                  &CommandInfo::number),
              "a command of the list has no row here, or stands in another place");

} // namespace

const Command* FindCommand(const char* name) noexcept
{
    for (const Command& command : kCommands)
    {
        if (std::strncmp(name, command.info.name, kCommandNameSize) == 0)
        {
            return &command;
        }
    }
    return nullptr;
}
