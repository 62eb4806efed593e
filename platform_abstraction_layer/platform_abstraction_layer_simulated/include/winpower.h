// include/winpower.h
//
// Power declarations of the base of Windows: states, actions, the policies' building blocks, the state of
// the batteries as a whole, and the status of the power source (kernel32). The functions of the power
// manager itself stand in powrprof.h.
#pragma once

#include <winnt.h>

#include <cstddef>

// The enumerations have a fixed type because records from a registry or a file may hold any number.
enum SYSTEM_POWER_STATE : int
{
    PowerSystemWorking = 1,
    PowerSystemSleeping1 = 2,
    PowerSystemSleeping3 = 4,
    PowerSystemHibernate = 5
};
static_assert(sizeof(SYSTEM_POWER_STATE) == 4);

enum POWER_ACTION : int
{
    PowerActionNone = 0,
    PowerActionSleep = 2,
    PowerActionHibernate = 3,
    PowerActionShutdown = 4
};
static_assert(sizeof(POWER_ACTION) == 4);

#define POWER_ACTION_QUERY_ALLOWED 0x00000001
#define POWER_ACTION_CRITICAL 0x80000000U

#define POWER_LEVEL_USER_NOTIFY_TEXT 0x00000001
#define POWER_LEVEL_USER_NOTIFY_SOUND 0x00000002

#define PO_THROTTLE_NONE 0
#define PO_THROTTLE_DEGRADE 2
#define PO_THROTTLE_ADAPTIVE 3

#define DISCHARGE_POLICY_CRITICAL 0
#define DISCHARGE_POLICY_LOW 1
#define NUM_DISCHARGE_POLICIES 4

/// What the system does when a button is pressed, the lid closes, a time runs out or a battery runs low.
struct POWER_ACTION_POLICY
{
    POWER_ACTION Action; ///< offset 0
    DWORD Flags;         ///< offset 4: POWER_ACTION_...
    DWORD EventCode;     ///< offset 8: POWER_LEVEL_USER_NOTIFY_... for the battery alarms
};
static_assert(sizeof(POWER_ACTION_POLICY) == 12);

/// A battery alarm.
struct SYSTEM_POWER_LEVEL
{
    BOOLEAN Enable;                    ///< offset 0
    BYTE Spare[3];                     ///< offset 1
    DWORD BatteryLevel;                ///< offset 4: percent
    POWER_ACTION_POLICY PowerPolicy;   ///< offset 8
    SYSTEM_POWER_STATE MinSystemState; ///< offset 20
};
static_assert(sizeof(SYSTEM_POWER_LEVEL) == 24);

/// When the processor goes to a deeper or a lighter idle state.
struct PROCESSOR_POWER_POLICY_INFO
{
    DWORD TimeCheck;         ///< offset 0: microseconds
    DWORD DemoteLimit;       ///< offset 4
    DWORD PromoteLimit;      ///< offset 8
    BYTE DemotePercent;      ///< offset 12
    BYTE PromotePercent;     ///< offset 13
    BYTE Spare[2];           ///< offset 14
    DWORD AllowDemotion : 1; ///< offset 16
    DWORD AllowPromotion : 1;
    DWORD Reserved : 30;
};
static_assert(sizeof(PROCESSOR_POWER_POLICY_INFO) == 20);

/// The processor's policy on one power source.
struct PROCESSOR_POWER_POLICY
{
    DWORD Revision;           ///< offset 0
    BYTE DynamicThrottle;     ///< offset 4: PO_THROTTLE_...
    BYTE Spare[3];            ///< offset 5
    DWORD DisableCStates : 1; ///< offset 8
    DWORD Reserved : 31;
    DWORD PolicyCount;                     ///< offset 12
    PROCESSOR_POWER_POLICY_INFO Policy[3]; ///< offset 16
};
static_assert(sizeof(PROCESSOR_POWER_POLICY) == 76);

/// What `CallNtPowerInformation` can be asked for; the power manager here knows `SystemBatteryState` alone.
enum POWER_INFORMATION_LEVEL : int
{
    SystemBatteryState = 5
};
static_assert(sizeof(POWER_INFORMATION_LEVEL) == 4);

/// All batteries taken together.
struct SYSTEM_BATTERY_STATE
{
    BOOLEAN AcOnLine;        ///< offset 0
    BOOLEAN BatteryPresent;  ///< offset 1
    BOOLEAN Charging;        ///< offset 2
    BOOLEAN Discharging;     ///< offset 3
    BOOLEAN Spare1[4];       ///< offset 4
    DWORD MaxCapacity;       ///< offset 8: mWh
    DWORD RemainingCapacity; ///< offset 12: mWh
    DWORD Rate;              ///< offset 16: mW; a discharge is negative
    DWORD EstimatedTime;     ///< offset 20: seconds
    DWORD DefaultAlert1;     ///< offset 24: mWh
    DWORD DefaultAlert2;     ///< offset 28: mWh
};
static_assert(sizeof(SYSTEM_BATTERY_STATE) == 32);

#define AC_LINE_OFFLINE 0x00
#define AC_LINE_ONLINE 0x01
#define AC_LINE_UNKNOWN 0xFF

#define BATTERY_FLAG_HIGH 0x01
#define BATTERY_FLAG_LOW 0x02
#define BATTERY_FLAG_CRITICAL 0x04
#define BATTERY_FLAG_CHARGING 0x08
#define BATTERY_FLAG_NO_BATTERY 0x80
#define BATTERY_FLAG_UNKNOWN 0xFF

#define BATTERY_PERCENTAGE_UNKNOWN 0xFF
#define BATTERY_LIFE_UNKNOWN 0xFFFFFFFFU

/// The power source at a glance.
struct SYSTEM_POWER_STATUS
{
    BYTE ACLineStatus;         ///< offset 0: AC_LINE_...
    BYTE BatteryFlag;          ///< offset 1: BATTERY_FLAG_...
    BYTE BatteryLifePercent;   ///< offset 2: 0 to 100, or BATTERY_PERCENTAGE_UNKNOWN
    BYTE Reserved1;            ///< offset 3: 0
    DWORD BatteryLifeTime;     ///< offset 4: seconds, or BATTERY_LIFE_UNKNOWN
    DWORD BatteryFullLifeTime; ///< offset 8: seconds, or BATTERY_LIFE_UNKNOWN
};
using _SYSTEM_POWER_STATUS = SYSTEM_POWER_STATUS;
using LPSYSTEM_POWER_STATUS = SYSTEM_POWER_STATUS*;
static_assert(sizeof(SYSTEM_POWER_STATUS) == 12);

SIM_API BOOL WINAPI GetSystemPowerStatus(LPSYSTEM_POWER_STATUS status);
