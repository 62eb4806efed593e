// plugin/WireRecords.h
//
// The payloads and replies of the commands: fixed little-endian records without padding. Text in them is
// narrow, in the ANSI code page, and ends at a NUL or with its field. The host's buffers may lie at any
// address, so records are copied in and out whole.
#pragma once

#include <windows.h>

#include <cstddef>

/// One variable of one scheme, 44 bytes.
struct PM_Variable_Data
{
    LONG schemeID;    ///< offset 0
    LONG ifAC;        ///< offset 4: nonzero for AC power, 0 for battery
    char valName[32]; ///< offset 8: the variable's name
    LONG val;         ///< offset 40: the value to write, or an option's index
};
static_assert(offsetof(PM_Variable_Data, valName) == 8 && offsetof(PM_Variable_Data, val) == 40);
static_assert(sizeof(PM_Variable_Data) == 44);

/// A scheme's identity, 552 bytes.
struct PM_Power_Scheme_Data
{
    char name[32];  ///< offset 0
    char desc[512]; ///< offset 32: at most 255 bytes coming in, 511 going out
    LONG schemeID;  ///< offset 544: the scheme to copy from; 0 in a reply
    LONG reserved;  ///< offset 548: not read; 0 in a reply
};
static_assert(offsetof(PM_Power_Scheme_Data, desc) == 32 && offsetof(PM_Power_Scheme_Data, schemeID) == 544);
static_assert(sizeof(PM_Power_Scheme_Data) == 552);

/// The settings of a scheme for one power source as they stand on the wire, 36 bytes. LAN status comes before
/// 3G here.
struct PM_Power_Scheme_Values
{
    LONG cpuSpeed;          ///< offset 0
    LONG backlightLevel;    ///< offset 4
    LONG lanSpeed;          ///< offset 8
    LONG lums;              ///< offset 12
    LONG monitorOffTimeOut; ///< offset 16: seconds
    LONG standbyTimeOut;    ///< offset 20: seconds
    LONG wifi;              ///< offset 24
    LONG lanStatus;         ///< offset 28
    LONG threeG;            ///< offset 32
};
static_assert(sizeof(PM_Power_Scheme_Values) == 36);

/// A whole scheme, 632 bytes.
struct PM_Power_Scheme_Data_ALL
{
    char name[32];             ///< offset 0
    char desc[512];            ///< offset 32: at most 255 bytes coming in
    LONG schemeID;             ///< offset 544
    PM_Power_Scheme_Values ac; ///< offset 548: on AC power
    PM_Power_Scheme_Values dc; ///< offset 584: on battery
    LONG IfDefault;            ///< offset 620
    LONG IconNum;              ///< offset 624
    LONG IfShow;               ///< offset 628
};
static_assert(offsetof(PM_Power_Scheme_Data_ALL, schemeID) == 544);
static_assert(offsetof(PM_Power_Scheme_Data_ALL, ac) == 548 && offsetof(PM_Power_Scheme_Data_ALL, dc) == 584);
static_assert(offsetof(PM_Power_Scheme_Data_ALL, IfDefault) == 620);
static_assert(sizeof(PM_Power_Scheme_Data_ALL) == 632);

/// One access to a configuration file, 1036 bytes.
struct PM_Config_Data
{
    LONG fileType;         ///< offset 0: 0 installation file, 1 profile file
    char file[256];        ///< offset 4
    char section[256];     ///< offset 260
    char item[256];        ///< offset 516: the key
    char stringValue[256]; ///< offset 772: text to write
    LONG defaultValue;     ///< offset 1028: what an absent key gives
    LONG value;            ///< offset 1032: number to write
};
static_assert(offsetof(PM_Config_Data, section) == 260 && offsetof(PM_Config_Data, item) == 516);
static_assert(offsetof(PM_Config_Data, stringValue) == 772 && offsetof(PM_Config_Data, defaultValue) == 1028);
static_assert(sizeof(PM_Config_Data) == 1036);

/// A battery, 40 bytes.
struct PM_Battery_Info
{
    LONG powerState;          ///< offset 0: 2 discharging, 1 on line, 4 charging, 8 critical, 0 none of these
    LONG percent;             ///< offset 4: remaining charge of the whole system; -1 when unknown
    LONG time;                ///< offset 8: seconds until it is full while it charges, seconds left while it
                              ///< discharges; -1 when unknown, 0 for any but the first battery
    LONG designedCapacity;    ///< offset 12
    LONG fullChargedCapacity; ///< offset 16
    BYTE reserved1[3];        ///< offset 20: 0
    char chemistry[4];        ///< offset 23: four characters without a terminator
    BYTE reserved2;           ///< offset 27: 0
    DWORD extendedField[3];   ///< offset 28: the first fields of the firmware's battery record
};
static_assert(offsetof(PM_Battery_Info, reserved1) == 20 && offsetof(PM_Battery_Info, chemistry) == 23);
static_assert(offsetof(PM_Battery_Info, extendedField) == 28);
static_assert(sizeof(PM_Battery_Info) == 40);

/// The power source, 12 bytes; each field is -1 when unknown.
struct PM_Power_Info
{
    LONG powerState; ///< offset 0: 2 discharging, 1 on line, 4 charging
    LONG percent;    ///< offset 4: remaining charge
    LONG time;       ///< offset 8: seconds until the battery is full, or left while it discharges
};
static_assert(sizeof(PM_Power_Info) == 12);

/// The companion application's start with Windows, 264 bytes.
struct PM_AutoRun_Data
{
    LONG flag;      ///< offset 0: 1 on, 0 off
    char path[260]; ///< offset 4: the application's full path
};
static_assert(sizeof(PM_AutoRun_Data) == 264);
