// plugin/Commands.h
//
// The commands of the request interface, one row each: name, number, payload, reply, and whether a user must
// be named. The plug-in's own table, the host tool and the check of the documents go by it.
#pragma once

#include "plugin/WireRecords.h"

#include <algorithm>
#include <functional>
#include <iterator>

/// The numbers of the commands. 8, 12 and 34 aren't used.
enum PmCommand : LONG
{
    PM_GET_CPU_SPEED = 0,
    PM_SET_CPU_SPEED = 1,
    PM_GET_MAX_LCD_BRIGHTNESS = 2,
    PM_GET_LCD_BRIGHTNESS = 3,
    PM_SET_LCD_BRIGHTNESS = 4,
    PM_GET_LAN_STATUS = 5,
    PM_SET_LAN_STATUS = 6,
    PM_GET_LAN_ENABLED_STATUS = 7,
    PM_GET_WIRELESS_STATUS = 9,
    PM_SET_WIRELESS_STATUS = 10,
    PM_GET_WIRELESS_ENABLED_STATUS = 11,
    PM_GET_BLUETOOTH_STATUS = 13,
    PM_SET_BLUETOOTH_STATUS = 14,
    PM_GET_LAN_SPEED = 15,
    PM_SET_LAN_SPEED = 16,
    PM_GET_3G_STATUS = 17,
    PM_SET_3G_STATUS = 18,
    PM_GET_LUMS_LEVEL = 19,
    PM_SET_LUMS_LEVEL = 20,
    PM_GET_BATTERY_INFO = 21,
    PM_ADD_SCHEME = 22,
    PM_EDIT_SCHEME = 23,
    PM_DELETE_SCHEME = 24,
    PM_QUERY_SCHEME = 25,
    PM_GET_BATTERY_COUNT = 26,
    PM_GET_SCHEME_NAME = 27,
    PM_GET_ACTIVE_SCHEME = 28,
    PM_POST_DOWN_INTERFACE = 29,
    PM_GET_USERID = 30,
    PM_GET_POWER_INFO = 31,
    PM_GET_SCHEME_VAR_COUNT = 32,
    PM_GET_SCHEME_VAR_OPT_VALUE = 33,
    PM_INIT_CFG_FILE = 35,
    PM_GET_INT_FROM_CONFIG = 36,
    PM_GET_STR_FROM_CONFIG = 37,
    PM_PUT_INT_INTO_CONFIG = 38,
    PM_PUT_STR_INTO_CONFIG = 39,
    PM_ADD_SCHEME_ALL = 40,
    PM_QUERY_SCHEME_ALL = 41,
    PM_EDIT_SCHEME_ALL = 42,
    PM_APPLY_SCHEME = 43,
    PM_CLEAR_SCHEMES = 44,
    PM_AUTORUN_ORVA = 45,
};

/// What a command expects of `paramsLen`.
enum class PayloadLength
{
    None,      ///< no payload; the length isn't looked at
    Exact,     ///< `size` bytes
    AtLeast,   ///< `size` bytes or more
    Unchecked, ///< the host always gives `size` bytes; the length isn't looked at
};

struct PayloadSpec
{
    PayloadLength length;
    DWORD size; ///< bytes that the command reads
};

enum class ReplyKind
{
    None,     ///< nothing goes into `result`; a command may still set `resultLen`
    Optional, ///< written when the host gives both pointers
    Required, ///< both pointers must be given
};

struct ReplySpec
{
    ReplyKind kind;
    DWORD size; ///< bytes of the longest reply
};

struct CommandInfo
{
    PmCommand number;
    const char* name;
    PayloadSpec payload;
    ReplySpec reply;
    bool needsUser; ///< the request must name the account for which it is made
};

namespace commands
{

/// Bytes of an account name and of a configuration text on the wire, with the terminator.
inline constexpr DWORD kUserIdSize = 1024;
inline constexpr DWORD kConfigTextSize = 256;

inline constexpr PayloadSpec kNoPayload{PayloadLength::None, 0};
inline constexpr PayloadSpec kNumber{PayloadLength::AtLeast, sizeof(LONG)};
inline constexpr PayloadSpec kUncheckedNumber{PayloadLength::Unchecked, sizeof(LONG)};
template <class Record>
inline constexpr PayloadSpec kRecord{PayloadLength::Exact, sizeof(Record)};
template <class Record>
inline constexpr PayloadSpec kUncheckedRecord{PayloadLength::Unchecked, sizeof(Record)};

inline constexpr ReplySpec kNoReply{ReplyKind::None, 0};
inline constexpr ReplySpec kNumberReply{ReplyKind::Required, sizeof(LONG)};
inline constexpr ReplySpec kOptionalNumberReply{ReplyKind::Optional, sizeof(LONG)};
template <class Record>
inline constexpr ReplySpec kReply{ReplyKind::Required, sizeof(Record)};
template <DWORD Size>
inline constexpr ReplySpec kTextReply{ReplyKind::Required, Size};

inline constexpr bool kUser = true;
inline constexpr bool kNoUser = false;

/// In the order of their numbers.
inline constexpr CommandInfo kAll[] = {
    {PM_GET_CPU_SPEED, "GET_CPU_SPEED", kNoPayload, kNumberReply, kUser},
    {PM_SET_CPU_SPEED, "SET_CPU_SPEED", kNumber, kNoReply, kUser},
    {PM_GET_MAX_LCD_BRIGHTNESS, "GET_MAX_LCD_BRIGHTNESS", kNoPayload, kNumberReply, kNoUser},
    {PM_GET_LCD_BRIGHTNESS, "GET_LCD_BRIGHTNESS", kNoPayload, kNumberReply, kNoUser},
    {PM_SET_LCD_BRIGHTNESS, "SET_LCD_BRIGHTNESS", kNumber, kNoReply, kNoUser},
    {PM_GET_LAN_STATUS, "GET_LAN_STATUS", kNoPayload, kNumberReply, kNoUser},
    {PM_SET_LAN_STATUS, "SET_LAN_STATUS", kNumber, kNoReply, kNoUser},
    {PM_GET_LAN_ENABLED_STATUS, "GET_LAN_ENABLED_STATUS", kNoPayload, kNumberReply, kNoUser},
    {PM_GET_WIRELESS_STATUS, "GET_WIRELESS_STATUS", kNoPayload, kNumberReply, kNoUser},
    {PM_SET_WIRELESS_STATUS, "SET_WIRELESS_STATUS", kNumber, kNoReply, kNoUser},
    {PM_GET_WIRELESS_ENABLED_STATUS, "GET_WIRELESS_ENABLED_STATUS", kNoPayload, kNumberReply, kNoUser},
    {PM_GET_BLUETOOTH_STATUS, "GET_BLUETOOTH_STATUS", kNoPayload, kNumberReply, kNoUser},
    {PM_SET_BLUETOOTH_STATUS, "SET_BLUETOOTH_STATUS", kNumber, kNoReply, kNoUser},
    {PM_GET_LAN_SPEED, "GET_LAN_SPEED", kNoPayload, kNumberReply, kNoUser},
    {PM_SET_LAN_SPEED, "SET_LAN_SPEED", kNumber, kNoReply, kNoUser},
    {PM_GET_3G_STATUS, "GET_3G_STATUS", kNoPayload, kNumberReply, kNoUser},
    {PM_SET_3G_STATUS, "SET_3G_STATUS", kNumber, kNoReply, kNoUser},
    {PM_GET_LUMS_LEVEL, "GET_LUMS_LEVEL", kNoPayload, kNoReply, kNoUser},
    {PM_SET_LUMS_LEVEL, "SET_LUMS_LEVEL", kNoPayload, kNoReply, kNoUser},
    {PM_GET_BATTERY_INFO, "GET_BATTERY_INFO", kNumber, kReply<PM_Battery_Info>, kNoUser},
    {PM_ADD_SCHEME, "ADD_SCHEME", kRecord<PM_Power_Scheme_Data>, kNumberReply, kUser},
    {PM_EDIT_SCHEME, "EDIT_SCHEME", kRecord<PM_Variable_Data>, kOptionalNumberReply, kUser},
    {PM_DELETE_SCHEME, "DELETE_SCHEME", kNumber, kOptionalNumberReply, kUser},
    {PM_QUERY_SCHEME, "QUERY_SCHEME", kRecord<PM_Variable_Data>, kNumberReply, kUser},
    {PM_GET_BATTERY_COUNT, "GET_BATTERY_COUNT", kNoPayload, kNumberReply, kNoUser},
    {PM_GET_SCHEME_NAME, "GET_SCHEME_NAME", kNumber, kReply<PM_Power_Scheme_Data>, kUser},
    {PM_GET_ACTIVE_SCHEME, "GET_ACTIVE_SCHEME", kNoPayload, kNumberReply, kUser},
    {PM_POST_DOWN_INTERFACE, "POST_DOWN_INTERFACE", kNoPayload, kNoReply, kNoUser},
    {PM_GET_USERID, "GET_USERID", kNoPayload, kTextReply<kUserIdSize>, kUser},
    {PM_GET_POWER_INFO, "GET_POWER_INFO", kNoPayload, kReply<PM_Power_Info>, kNoUser},
    {PM_GET_SCHEME_VAR_COUNT, "GET_SCHEME_VAR_COUNT", kRecord<PM_Variable_Data>, kNumberReply, kUser},
    {PM_GET_SCHEME_VAR_OPT_VALUE, "GET_SCHEME_VAR_OPT_VALUE", kRecord<PM_Variable_Data>, kNumberReply, kUser},
    {PM_INIT_CFG_FILE, "INIT_CFG_FILE", kNoPayload, kNoReply, kUser},
    {PM_GET_INT_FROM_CONFIG, "GET_INT_FROM_CONFIG", kRecord<PM_Config_Data>, kNumberReply, kNoUser},
    {PM_GET_STR_FROM_CONFIG, "GET_STR_FROM_CONFIG", kRecord<PM_Config_Data>, kTextReply<kConfigTextSize>,
     kNoUser},
    {PM_PUT_INT_INTO_CONFIG, "PUT_INT_INTO_CONFIG", kRecord<PM_Config_Data>, kNoReply, kNoUser},
    {PM_PUT_STR_INTO_CONFIG, "PUT_STR_INTO_CONFIG", kRecord<PM_Config_Data>, kNoReply, kNoUser},
    {PM_ADD_SCHEME_ALL, "ADD_SCHEME_ALL", kRecord<PM_Power_Scheme_Data_ALL>, kNumberReply, kUser},
    {PM_QUERY_SCHEME_ALL, "QUERY_SCHEME_ALL", kNumber, kReply<PM_Power_Scheme_Data_ALL>, kUser},
    {PM_EDIT_SCHEME_ALL, "EDIT_SCHEME_ALL", kRecord<PM_Power_Scheme_Data_ALL>, kOptionalNumberReply, kUser},
    {PM_APPLY_SCHEME, "APPLY_SCHEME", kNumber, kOptionalNumberReply, kUser},
    {PM_CLEAR_SCHEMES, "CLEAR_SCHEMES", kUncheckedNumber, kNoReply, kUser},
    {PM_AUTORUN_ORVA, "AUTORUN_ORVA", kUncheckedRecord<PM_AutoRun_Data>, kNoReply, kNoUser},
};
// Which leaves one number for each.
static_assert(std::ranges::is_sorted(kAll, std::ranges::less_equal(), &CommandInfo::number) &&
                  std::ranges::none_of(
                      kAll, [](LONG number) { return number == 8 || number == 12 || number == 34; },
                      &CommandInfo::number) &&
                  std::size(kAll) == 43 && kAll[0].number == 0 && kAll[42].number == 45,
              "a command has a wrong number or stands in another place");

} // namespace commands
