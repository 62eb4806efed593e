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

// Doesn't compile for an unknown name.
consteval const CommandInfo& Named(std::string_view name)
{
    return *std::ranges::find(commands::kAll, name, &CommandInfo::name);
}

const CommandEntry kCommands[] = {
    {Named("GET_MAX_LCD_BRIGHTNESS"), kNoRecord, kBacklightLevel, "highest backlight level"},
    {Named("GET_LCD_BRIGHTNESS"), kNoRecord, kBacklightLevel, "present backlight level"},
    {Named("SET_LCD_BRIGHTNESS"), kBacklightLevel, kNoRecord, "set the backlight; LCD_BRIGHTNESS_CHANGED"},
    {Named("GET_LUMS_LEVEL"), kNoRecord, kNoRecord, "not carried out (1)"},
    {Named("SET_LUMS_LEVEL"), kBacklightLevel, kNoRecord, "not carried out (1)"},
    {Named("GET_WIRELESS_STATUS"), kNoRecord, kSwitchStatus, "wireless radio"},
    {Named("SET_WIRELESS_STATUS"), kSwitch, kNoRecord, "switch the wireless radio; WLAN_CHANGED"},
    {Named("GET_WIRELESS_ENABLED_STATUS"), kNoRecord, kSwitchStatus,
     "whether the wireless adapter is enabled"},
    {Named("GET_BLUETOOTH_STATUS"), kNoRecord, kSwitchStatus, "Bluetooth radio"},
    {Named("SET_BLUETOOTH_STATUS"), kSwitch, kNoRecord, "switch the Bluetooth radio"},
    {Named("GET_3G_STATUS"), kNoRecord, kSwitchStatus, "3G radio"},
    {Named("SET_3G_STATUS"), kSwitch, kNoRecord, "switch the 3G radio; 3G_CHANGED"},
    {Named("GET_LAN_STATUS"), kNoRecord, kSwitchStatus, "LAN port"},
    {Named("SET_LAN_STATUS"), kSwitch, kNoRecord, "switch the LAN port on (off is refused, 1); LAN_CHANGED"},
    {Named("GET_LAN_ENABLED_STATUS"), kNoRecord, kSwitchStatus, "whether the LAN adapter is enabled"},
    {Named("GET_LAN_SPEED"), kNoRecord, kLanSpeed, "LAN link speed, 0 to 4"},
    {Named("SET_LAN_SPEED"), kLanSpeed, kNoRecord, "set the LAN link speed, 0 to 4; LAN_CHANGED"},
    {Named("GET_BATTERY_COUNT"), kNoRecord, kCount, "how many batteries"},
    {Named("GET_BATTERY_INFO"), kBatteryIndex, kBatteryInfo, "one battery"},
    {Named("GET_POWER_INFO"), kNoRecord, kPowerInfo, "power state of the machine"},

    {Named("ADD_SCHEME"), kSchemeIdentity, kSchemeNumber, "add a copy of a scheme"},
    {Named("ADD_SCHEME_ALL"), kWholeScheme, kSchemeNumber, "add a scheme with all its values"},
    {Named("EDIT_SCHEME"), kVariableData, kAnswer, "write one variable"},
    {Named("EDIT_SCHEME_ALL"), kWholeScheme, kAnswer, "write a whole scheme"},
    {Named("QUERY_SCHEME"), kVariableData, kAnswer, "read one variable"},
    {Named("QUERY_SCHEME_ALL"), kSchemeNumber, kWholeScheme, "read a whole scheme"},
    {Named("DELETE_SCHEME"), kSchemeNumber, kAnswer, "delete a scheme"},
    {Named("GET_SCHEME_NAME"), kSchemeNumber, kSchemeIdentity, "name and description of a scheme"},
    {Named("GET_ACTIVE_SCHEME"), kNoRecord, kSchemeNumber, "the active scheme"},
    {Named("APPLY_SCHEME"), kSchemeNumber, kAnswer, "make a scheme the active one"},
    {Named("GET_CPU_SPEED"), kNoRecord, kCpuSpeed, "CPU speed of the active scheme"},
    {Named("SET_CPU_SPEED"), kCpuSpeed, kNoRecord,
     "set the CPU speed of the active scheme; CPU_SPEED_CHANGED"},
    {Named("GET_SCHEME_VAR_COUNT"), kVariableData, kCount, "how many options a variable has"},
    {Named("GET_SCHEME_VAR_OPT_VALUE"), kVariableData, kAnswer, "the value of option number `value`"},
    {Named("GET_USERID"), kNoRecord, kTextReply, "the requesting account's name"},
    {Named("INIT_CFG_FILE"), kNoRecord, kNoRecord, "resolve the requesting account"},

    {Named("GET_INT_FROM_CONFIG"), kConfigData, kAnswer, "read a number from a configuration file"},
    {Named("GET_STR_FROM_CONFIG"), kConfigData, kTextReply, "read a text from a configuration file"},
    {Named("PUT_INT_INTO_CONFIG"), kConfigData, kNoRecord, "write a number into a configuration file"},
    {Named("PUT_STR_INTO_CONFIG"), kConfigData, kNoRecord, "write a text into a configuration file"},

    {Named("CLEAR_SCHEMES"), kClearSelector, kNoRecord, "remove schemes and settings"},
    {Named("AUTORUN_ORVA"), kAutoRun, kNoRecord, "enter the companion application for auto-run"},
    {Named("POST_DOWN_INTERFACE"), kNoRecord, kNoRecord, "known and not served (5)"},
};
static_assert(std::size(kCommands) == std::size(commands::kAll));

} // namespace

std::span<const CommandEntry> Commands() noexcept
{
    return kCommands;
}

const CommandEntry* FindCommand(std::string_view name) noexcept
{
    const auto* found =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [name](const CommandEntry& entry) { return EqualIgnoringCase(entry.info.name, name); });
    return found == std::end(kCommands) ? nullptr : found;
}

} // namespace host
