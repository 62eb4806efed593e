// plugin/CommandTable.cpp
//
// Name, number and handler of each command.

#include "plugin/CommandTable.h"

#include "plugin/CommandNumbers.h"
#include "plugin/Handlers.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

struct Command
{
    const char* name;
    LONG number;
    CommandHandler handler; // null for a command that is known and not served
};

// Handlers that need nothing of the context.

LONG HandleConfig(CPluginHelper&, const PM_Request& request, LONG number) noexcept
{
    return ProcessConfigFunc(request, number);
}

LONG HandleOrva(CPluginHelper&, const PM_Request& request, LONG number) noexcept
{
    return ProcessORVARequest(request, number);
}

constexpr Command kCommands[] = {
    {"GET_CPU_SPEED", PM_GET_CPU_SPEED, ProcessPwrSchemeFunc},
    {"SET_CPU_SPEED", PM_SET_CPU_SPEED, ProcessPwrSchemeFunc},
    {"GET_MAX_LCD_BRIGHTNESS", PM_GET_MAX_LCD_BRIGHTNESS, ProcessDeviceFunc},
    {"GET_LCD_BRIGHTNESS", PM_GET_LCD_BRIGHTNESS, ProcessDeviceFunc},
    {"SET_LCD_BRIGHTNESS", PM_SET_LCD_BRIGHTNESS, ProcessDeviceFunc},
    {"GET_LAN_STATUS", PM_GET_LAN_STATUS, ProcessDeviceFunc},
    {"SET_LAN_STATUS", PM_SET_LAN_STATUS, ProcessDeviceFunc},
    {"GET_LAN_ENABLED_STATUS", PM_GET_LAN_ENABLED_STATUS, ProcessDeviceFunc},
    {"GET_WIRELESS_STATUS", PM_GET_WIRELESS_STATUS, ProcessDeviceFunc},
    {"SET_WIRELESS_STATUS", PM_SET_WIRELESS_STATUS, ProcessDeviceFunc},
    {"GET_WIRELESS_ENABLED_STATUS", PM_GET_WIRELESS_ENABLED_STATUS, ProcessDeviceFunc},
    {"GET_BLUETOOTH_STATUS", PM_GET_BLUETOOTH_STATUS, ProcessDeviceFunc},
    {"SET_BLUETOOTH_STATUS", PM_SET_BLUETOOTH_STATUS, ProcessDeviceFunc},
    {"GET_LAN_SPEED", PM_GET_LAN_SPEED, ProcessDeviceFunc},
    {"SET_LAN_SPEED", PM_SET_LAN_SPEED, ProcessDeviceFunc},
    {"GET_3G_STATUS", PM_GET_3G_STATUS, ProcessDeviceFunc},
    {"SET_3G_STATUS", PM_SET_3G_STATUS, ProcessDeviceFunc},
    {"GET_LUMS_LEVEL", PM_GET_LUMS_LEVEL, ProcessDeviceFunc},
    {"SET_LUMS_LEVEL", PM_SET_LUMS_LEVEL, ProcessDeviceFunc},
    {"GET_BATTERY_INFO", PM_GET_BATTERY_INFO, ProcessDeviceFunc},
    {"ADD_SCHEME", PM_ADD_SCHEME, ProcessPwrSchemeFunc},
    {"EDIT_SCHEME", PM_EDIT_SCHEME, ProcessPwrSchemeFunc},
    {"DELETE_SCHEME", PM_DELETE_SCHEME, ProcessPwrSchemeFunc},
    {"QUERY_SCHEME", PM_QUERY_SCHEME, ProcessPwrSchemeFunc},
    {"GET_BATTERY_COUNT", PM_GET_BATTERY_COUNT, ProcessDeviceFunc},
    {"GET_SCHEME_NAME", PM_GET_SCHEME_NAME, ProcessPwrSchemeFunc},
    {"GET_ACTIVE_SCHEME", PM_GET_ACTIVE_SCHEME, ProcessPwrSchemeFunc},
    {"POST_DOWN_INTERFACE", PM_POST_DOWN_INTERFACE, nullptr},
    {"GET_USERID", PM_GET_USERID, ProcessPwrSchemeFunc},
    {"GET_POWER_INFO", PM_GET_POWER_INFO, ProcessDeviceFunc},
    {"GET_SCHEME_VAR_COUNT", PM_GET_SCHEME_VAR_COUNT, ProcessPwrSchemeFunc},
    {"GET_SCHEME_VAR_OPT_VALUE", PM_GET_SCHEME_VAR_OPT_VALUE, ProcessPwrSchemeFunc},
    {"INIT_CFG_FILE", PM_INIT_CFG_FILE, ProcessPwrSchemeFunc},
    {"GET_INT_FROM_CONFIG", PM_GET_INT_FROM_CONFIG, HandleConfig},
    {"GET_STR_FROM_CONFIG", PM_GET_STR_FROM_CONFIG, HandleConfig},
    {"PUT_INT_INTO_CONFIG", PM_PUT_INT_INTO_CONFIG, HandleConfig},
    {"PUT_STR_INTO_CONFIG", PM_PUT_STR_INTO_CONFIG, HandleConfig},
    {"ADD_SCHEME_ALL", PM_ADD_SCHEME_ALL, ProcessPwrSchemeFunc},
    {"QUERY_SCHEME_ALL", PM_QUERY_SCHEME_ALL, ProcessPwrSchemeFunc},
    {"EDIT_SCHEME_ALL", PM_EDIT_SCHEME_ALL, ProcessPwrSchemeFunc},
    {"APPLY_SCHEME", PM_APPLY_SCHEME, ProcessPwrSchemeFunc},
    {"CLEAR_SCHEMES", PM_CLEAR_SCHEMES, ProcessPwrSchemeFunc},
    {"AUTORUN_ORVA", PM_AUTORUN_ORVA, HandleOrva},
};
static_assert(std::size(kCommands) == 43);

} // namespace

int CommandNumberFromName(const char* name, LONG* number) noexcept
{
    for (const Command& command : kCommands)
    {
        if (std::strncmp(name, command.name, kCommandNameSize) == 0)
        {
            *number = command.number;
            return 1;
        }
    }
    return 0;
}

CommandHandler FindHandler(LONG number) noexcept
{
    const auto* const found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [number](const Command& row) { return row.number == number; });
    return found == std::end(kCommands) ? nullptr : found->handler;
}
