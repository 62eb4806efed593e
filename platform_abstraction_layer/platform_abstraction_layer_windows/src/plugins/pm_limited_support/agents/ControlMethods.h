// agents/ControlMethods.h
//
// The firmware's control methods by their four-letter names.
#pragma once

#include <windows.h>

/// A method's name as the number that the driver takes: the first letter at the lowest address.
constexpr ULONG ControlMethod(const char (&name)[5]) noexcept
{
    ULONG number = 0;
    for (int letter = 3; letter >= 0; --letter)
    {
        number = (number << 8) | static_cast<unsigned char>(name[letter]);
    }
    return number;
}

constexpr ULONG kGeneralRead = ControlMethod("GRDI");  ///< item; the item's value
constexpr ULONG kGeneralWrite = ControlMethod("GWRI"); ///< item, value; a result word
constexpr ULONG kDebug = ControlMethod("GDBG");
constexpr ULONG kStatus = ControlMethod("_STA");
constexpr ULONG ORVL_GCW_BATTERY_METHOD = ControlMethod("EBTR"); ///< rows, 0, selector; the rows

/// The rows that the battery method answers; each carries one byte in its low eight bits.
constexpr ULONG kBatteryRows = 12;

static_assert(kGeneralRead == 0x49445247 && kGeneralWrite == 0x49525747 && kDebug == 0x47424447 &&
              kStatus == 0x4154535F && ORVL_GCW_BATTERY_METHOD == 0x52544245);
