// scheme/VariableTable.h
//
// The settings of a scheme, one row each, and where each is stored on either path. A row's place in the table
// is the variable's number.
#pragma once

#include "scheme/PackedValue.h"
#include "scheme/PwrSet.h"
#include "scheme/xp/Policies.h"

#include <windows.h>

/// Where a variable is stored on the XP path.
enum class XpStorage : unsigned char
{
    File,           ///< the scheme values file; everything else is in the operating system's records
    Timeout,        ///< a time in a field of its own
    Standby,        ///< see StandbyRules.h
    Hibernate,      ///< see StandbyRules.h
    Unsupported,    ///< reads as -1; a write changes nothing
    ThrottlePolicy, ///< the throttle policy number
    Speed           ///< the forced throttle, 0 while adaptive
};

/// Where a variable is stored on the Vista path: all but `Setting` in the scheme values file.
enum class VistaStorage : unsigned char
{
    File,            ///< the file alone
    Setting,         ///< a setting of the operating system alone
    ThrottleMinimum, ///< the operating system's, with a copy in the file
    ThrottleMaximum, ///< the operating system's, with a copy in the file
    Adaptive,        ///< the file; a write also sets the operating system's processor policy
    Speed,           ///< the file; a write of 0 also writes the adaptive variable
    Backlight        ///< the operating system's, as a percentage, with a copy in the file
};

/// The device whose live state goes by a variable's name.
enum class LiveDevice : unsigned char
{
    None,
    Bluetooth,
    Wifi,
    ChipsetFunction
};

struct Variable
{
    const wchar_t* name;
    XpStorage xp = XpStorage::File;
    VistaStorage vista = VistaStorage::File;
    LiveDevice device = LiveDevice::None; ///< for the device status operations
    bool isPacked = true;                 ///< in the file: a value for AC and one for battery power
    bool hasDisplayName = true;
    LONG vistaDefault = kNoValue;            ///< what an absent key becomes on the Vista path
    LONG PWRVALUES::*member = nullptr;       ///< in the whole-scheme record, or null
    ULONG* PolicyFields::*timeout = nullptr; ///< the field of `XpStorage::Timeout`
};

enum VariableNumber : int
{
    kMonitorOffTimeOut = 0,
    kDiskOffTimeOut = 1,
    kStandbyTimeOut = 2,
    kHibernateTimeOut = 3,
    kCpuSpeedMin = 4,
    kCpuSpeedMax = 5,
    kCpuAdaptive = 6,
    kCpuSpeed = 7,
    kBacklightLevel = 8,
    kLums = 10,
    kLanSpeed = 11,
    kLanStatus = 12,
    kWifi = 15,
    kThreeG = 16,
    kVariableCount = 42
};

/// The row of a number below `kVariableCount`.
const Variable& VariableOf(int number) noexcept;
int NumberOf(const Variable& variable) noexcept;

/// The variable of that name, or null. The case of the letters A to Z plays no part.
const Variable* FindVariable(const wchar_t* name) noexcept;

/// True where the operating system keeps the variable on the Vista path, so that the catalogue has to name
/// its setting.
bool HasSetting(const Variable& variable) noexcept;
