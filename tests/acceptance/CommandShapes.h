// tests/acceptance/CommandShapes.h
//
// What each of the commands takes and gives, as the tests that go through all of them need it.
#pragma once

#include "plugin/WireRecords.h"

#include <cstddef>

enum class Takes
{
    Nothing,
    Exactly,
    AtLeast,
    Always, ///< the length isn't looked at, and the host always gives that many bytes
};

enum class Gives
{
    Nothing,
    Reply,
    ReplyIfWanted,
};

struct CommandShape
{
    const char* name;
    Takes takes;
    std::size_t payload; ///< bytes
    Gives gives;
    std::size_t reply; ///< bytes at most
    bool forUser;      ///< needs to know for whom the request is
};

inline constexpr CommandShape kCommandShapes[] = {
    {"GET_CPU_SPEED", Takes::Nothing, 0, Gives::Reply, 4, true},
    {"SET_CPU_SPEED", Takes::AtLeast, 4, Gives::Nothing, 0, true},
    {"GET_MAX_LCD_BRIGHTNESS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"GET_LCD_BRIGHTNESS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"SET_LCD_BRIGHTNESS", Takes::AtLeast, 4, Gives::Nothing, 0, false},
    {"GET_LAN_STATUS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"SET_LAN_STATUS", Takes::AtLeast, 4, Gives::Nothing, 0, false},
    {"GET_LAN_ENABLED_STATUS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"GET_WIRELESS_STATUS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"SET_WIRELESS_STATUS", Takes::AtLeast, 4, Gives::Nothing, 0, false},
    {"GET_WIRELESS_ENABLED_STATUS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"GET_BLUETOOTH_STATUS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"SET_BLUETOOTH_STATUS", Takes::AtLeast, 4, Gives::Nothing, 0, false},
    {"GET_LAN_SPEED", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"SET_LAN_SPEED", Takes::AtLeast, 4, Gives::Nothing, 0, false},
    {"GET_3G_STATUS", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"SET_3G_STATUS", Takes::AtLeast, 4, Gives::Nothing, 0, false},
    {"GET_LUMS_LEVEL", Takes::Nothing, 0, Gives::Nothing, 0, false},
    {"SET_LUMS_LEVEL", Takes::Nothing, 0, Gives::Nothing, 0, false},
    {"GET_BATTERY_INFO", Takes::AtLeast, 4, Gives::Reply, 40, false},
    {"ADD_SCHEME", Takes::Exactly, 552, Gives::Reply, 4, true},
    {"EDIT_SCHEME", Takes::Exactly, 44, Gives::ReplyIfWanted, 4, true},
    {"DELETE_SCHEME", Takes::AtLeast, 4, Gives::ReplyIfWanted, 4, true},
    {"QUERY_SCHEME", Takes::Exactly, 44, Gives::Reply, 4, true},
    {"GET_BATTERY_COUNT", Takes::Nothing, 0, Gives::Reply, 4, false},
    {"GET_SCHEME_NAME", Takes::AtLeast, 4, Gives::Reply, 552, true},
    {"GET_ACTIVE_SCHEME", Takes::Nothing, 0, Gives::Reply, 4, true},
    {"POST_DOWN_INTERFACE", Takes::Nothing, 0, Gives::Nothing, 0, false},
    {"GET_USERID", Takes::Nothing, 0, Gives::Reply, 1024, true},
    {"GET_POWER_INFO", Takes::Nothing, 0, Gives::Reply, 12, false},
    {"GET_SCHEME_VAR_COUNT", Takes::Exactly, 44, Gives::Reply, 4, true},
    {"GET_SCHEME_VAR_OPT_VALUE", Takes::Exactly, 44, Gives::Reply, 4, true},
    {"INIT_CFG_FILE", Takes::Nothing, 0, Gives::Nothing, 0, true},
    {"GET_INT_FROM_CONFIG", Takes::Exactly, 1036, Gives::Reply, 4, false},
    {"GET_STR_FROM_CONFIG", Takes::Exactly, 1036, Gives::Reply, 256, false},
    {"PUT_INT_INTO_CONFIG", Takes::Exactly, 1036, Gives::Nothing, 0, false},
    {"PUT_STR_INTO_CONFIG", Takes::Exactly, 1036, Gives::Nothing, 0, false},
    {"ADD_SCHEME_ALL", Takes::Exactly, 632, Gives::Reply, 4, true},
    {"QUERY_SCHEME_ALL", Takes::AtLeast, 4, Gives::Reply, 632, true},
    {"EDIT_SCHEME_ALL", Takes::Exactly, 632, Gives::ReplyIfWanted, 4, true},
    {"APPLY_SCHEME", Takes::AtLeast, 4, Gives::ReplyIfWanted, 4, true},
    {"CLEAR_SCHEMES", Takes::Always, 4, Gives::Nothing, 0, true},
    {"AUTORUN_ORVA", Takes::Always, 264, Gives::Nothing, 0, false},
};
static_assert(std::size(kCommandShapes) == 43);
