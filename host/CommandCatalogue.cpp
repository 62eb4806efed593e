// host/CommandCatalogue.cpp
//
// The table of commands.

#include "CommandCatalogue.h"

#include "TextTools.h"

#include <algorithm>
#include <iterator>

namespace host
{

namespace
{

constexpr bool kUser = true;
constexpr bool kNoUser = false;

const CommandEntry kCommands[] = {
    {"GET_MAX_LCD_BRIGHTNESS", kNoRecord, kBacklightLevel, kNoUser, "highest backlight level"},
    {"GET_LCD_BRIGHTNESS", kNoRecord, kBacklightLevel, kNoUser, "present backlight level"},
    {"SET_LCD_BRIGHTNESS", kBacklightLevel, kNoRecord, kNoUser, "set the backlight; LCD_BRIGHTNESS_CHANGED"},
    {"GET_LUMS_LEVEL", kNoRecord, kNoRecord, kNoUser, "not carried out (1)"},
    {"SET_LUMS_LEVEL", kBacklightLevel, kNoRecord, kNoUser, "not carried out (1)"},
    {"GET_WIRELESS_STATUS", kNoRecord, kSwitchStatus, kNoUser, "wireless radio"},
    {"SET_WIRELESS_STATUS", kSwitch, kNoRecord, kNoUser, "switch the wireless radio; WLAN_CHANGED"},
    {"GET_WIRELESS_ENABLED_STATUS", kNoRecord, kSwitchStatus, kNoUser,
     "whether the wireless adapter is enabled"},
    {"GET_BLUETOOTH_STATUS", kNoRecord, kSwitchStatus, kNoUser, "Bluetooth radio"},
    {"SET_BLUETOOTH_STATUS", kSwitch, kNoRecord, kNoUser, "switch the Bluetooth radio"},
    {"GET_3G_STATUS", kNoRecord, kSwitchStatus, kNoUser, "3G radio"},
    {"SET_3G_STATUS", kSwitch, kNoRecord, kNoUser, "switch the 3G radio; 3G_CHANGED"},
    {"GET_LAN_STATUS", kNoRecord, kSwitchStatus, kNoUser, "LAN port"},
    {"SET_LAN_STATUS", kSwitch, kNoRecord, kNoUser,
     "switch the LAN port on (off is refused, 1); LAN_CHANGED"},
    {"GET_LAN_ENABLED_STATUS", kNoRecord, kSwitchStatus, kNoUser, "whether the LAN adapter is enabled"},
    {"GET_LAN_SPEED", kNoRecord, kLanSpeed, kNoUser, "LAN link speed, 0 to 4"},
    {"SET_LAN_SPEED", kLanSpeed, kNoRecord, kNoUser, "set the LAN link speed, 0 to 4; LAN_CHANGED"},
    {"GET_BATTERY_COUNT", kNoRecord, kCount, kNoUser, "how many batteries"},
    {"GET_BATTERY_INFO", kBatteryIndex, kBatteryInfo, kNoUser, "one battery"},
    {"GET_POWER_INFO", kNoRecord, kPowerInfo, kNoUser, "power state of the machine"},

    {"ADD_SCHEME", kSchemeIdentity, kSchemeNumber, kUser, "add a copy of a scheme"},
    {"ADD_SCHEME_ALL", kWholeScheme, kSchemeNumber, kUser, "add a scheme with all its values"},
    {"EDIT_SCHEME", kVariableData, kAnswer, kUser, "write one variable"},
    {"EDIT_SCHEME_ALL", kWholeScheme, kAnswer, kUser, "write a whole scheme"},
    {"QUERY_SCHEME", kVariableData, kAnswer, kUser, "read one variable"},
    {"QUERY_SCHEME_ALL", kSchemeNumber, kWholeScheme, kUser, "read a whole scheme"},
    {"DELETE_SCHEME", kSchemeNumber, kAnswer, kUser, "delete a scheme"},
    {"GET_SCHEME_NAME", kSchemeNumber, kSchemeIdentity, kUser, "name and description of a scheme"},
    {"GET_ACTIVE_SCHEME", kNoRecord, kSchemeNumber, kUser, "the active scheme"},
    {"APPLY_SCHEME", kSchemeNumber, kAnswer, kUser, "make a scheme the active one"},
    {"GET_CPU_SPEED", kNoRecord, kCpuSpeed, kUser, "CPU speed of the active scheme"},
    {"SET_CPU_SPEED", kCpuSpeed, kNoRecord, kUser,
     "set the CPU speed of the active scheme; CPU_SPEED_CHANGED"},
    {"GET_SCHEME_VAR_COUNT", kVariableData, kCount, kUser, "how many options a variable has"},
    {"GET_SCHEME_VAR_OPT_VALUE", kVariableData, kAnswer, kUser, "the value of option number `value`"},
    {"GET_USERID", kNoRecord, kTextReply, kUser, "the requesting account's name"},
    {"INIT_CFG_FILE", kNoRecord, kNoRecord, kUser, "resolve the requesting account"},

    {"GET_INT_FROM_CONFIG", kConfigData, kAnswer, kNoUser, "read a number from a configuration file"},
    {"GET_STR_FROM_CONFIG", kConfigData, kTextReply, kNoUser, "read a text from a configuration file"},
    {"PUT_INT_INTO_CONFIG", kConfigData, kNoRecord, kNoUser, "write a number into a configuration file"},
    {"PUT_STR_INTO_CONFIG", kConfigData, kNoRecord, kNoUser, "write a text into a configuration file"},

    {"CLEAR_SCHEMES", kClearSelector, kNoRecord, kUser, "remove schemes and settings"},
    {"AUTORUN_ORVA", kAutoRun, kNoRecord, kNoUser, "enter the companion application for auto-run"},
    {"POST_DOWN_INTERFACE", kNoRecord, kNoRecord, kNoUser, "known and not served (5)"},
};
static_assert(std::size(kCommands) == 43);

} // namespace

std::span<const CommandEntry> Commands() noexcept
{
    return kCommands;
}

const CommandEntry* FindCommand(std::string_view name) noexcept
{
    const auto* found =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [name](const CommandEntry& entry) { return EqualIgnoringCase(entry.name, name); });
    return found == std::end(kCommands) ? nullptr : found;
}

} // namespace host
