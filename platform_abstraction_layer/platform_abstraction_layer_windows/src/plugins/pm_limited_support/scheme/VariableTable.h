// scheme/VariableTable.h
//
// The settings of a scheme by name, and where each lies on either path. A row's place is the variable's
// number.
#pragma once

#include "scheme/PackedValue.h"
#include "scheme/PolicyFields.h"
#include "scheme/PwrSet.h"

#include <windows.h>

/// Where a variable lies on the XP path: in the operating system's records down to `Speed`, in the scheme
/// values file from `Packed` on.
enum class XpPlace
{
    Timeout,        ///< a time in a field of its own
    Standby,        ///< see StandbyRules.h
    Hibernate,      ///< see StandbyRules.h
    Nowhere,        ///< reads as -1; a write changes nothing
    ThrottlePolicy, ///< the throttle policy number
    Speed,          ///< the forced throttle, 0 while adaptive
    Packed,
    Whole
};

/// Where a variable lies on the Vista path.
enum class VistaPlace
{
    Setting,         ///< a setting of the operating system alone
    ThrottleMinimum, ///< the operating system's, with a packed copy
    ThrottleMaximum, ///< the operating system's, with a packed copy
    Adaptive,        ///< packed; a write also sets the operating system's processor policy
    Speed,           ///< packed; 0 is handed on to the adaptive variable
    Backlight,       ///< the operating system's, as a percentage, with a packed copy
    Packed,
    Whole
};

/// The device whose live state goes by a variable's name.
enum class LiveDevice
{
    None,
    Bluetooth,
    Wifi,
    ChipsetFunction
};

struct Variable
{
    const wchar_t* name;
    XpPlace xp;
    VistaPlace vista;
    LONG PWRVALUES::*member;                 ///< in the whole-scheme record, or null
    LiveDevice device = LiveDevice::None;    ///< for the device status operations
    LONG vistaDefault = kNoValue;            ///< what an absent key becomes on the Vista path
    ULONG* PolicyFields::*timeout = nullptr; ///< the field of `XpPlace::Timeout`
};

enum VariableNumber : int
{
    kMonitorOffTimeOut = 0,
    kStandbyTimeOut = 2,
    kCpuAdaptive = 6,
    kCpuSpeed = 7,
    kBacklightLevel = 8,
    kLums = 10,
    kLanSpeed = 11,
    kLanStatus = 12,
    kWifi = 15,
    kThreeG = 16,
    kFirstUsbPort = 30, ///< from here on variables have no display name
    kVariableCount = 42
};

/// The row of a number below `kVariableCount`.
const Variable& VariableOf(int number) noexcept;

/// The number of the variable of that name, or -1. The case of the letters A to Z plays no part.
int FindVariable(const wchar_t* name) noexcept;

/// True where the operating system keeps the variable on the Vista path, so that the catalogue has to name
/// its setting.
bool HasSetting(const Variable& variable) noexcept;
