// include/powrprof.h
//
// powrprof: the power manager. The index-based functions, which know a scheme by its number, and the
// GUID-based ones of version 6, which a program that also runs on version 5 finds at run time.
#pragma once

#include <windows.h>

#include <cstddef>

/// The part of the global policy that the machine keeps.
struct GLOBAL_MACHINE_POWER_POLICY
{
    ULONG Revision;                    ///< offset 0
    SYSTEM_POWER_STATE LidOpenWakeAc;  ///< offset 4
    SYSTEM_POWER_STATE LidOpenWakeDc;  ///< offset 8
    ULONG BroadcastCapacityResolution; ///< offset 12: percent
};
static_assert(sizeof(GLOBAL_MACHINE_POWER_POLICY) == 16);

#define EnableSysTrayBatteryMeter 0x01
#define EnablePasswordLogon 0x04

/// The part of the global policy that belongs to a user: buttons, lid, battery alarms.
struct GLOBAL_USER_POWER_POLICY
{
    ULONG Revision;                                             ///< offset 0
    POWER_ACTION_POLICY PowerButtonAc;                          ///< offset 4
    POWER_ACTION_POLICY PowerButtonDc;                          ///< offset 16
    POWER_ACTION_POLICY SleepButtonAc;                          ///< offset 28
    POWER_ACTION_POLICY SleepButtonDc;                          ///< offset 40
    POWER_ACTION_POLICY LidCloseAc;                             ///< offset 52
    POWER_ACTION_POLICY LidCloseDc;                             ///< offset 64
    SYSTEM_POWER_LEVEL DischargePolicy[NUM_DISCHARGE_POLICIES]; ///< offset 76: indexed DISCHARGE_POLICY_...
    ULONG GlobalFlags;                                          ///< offset 172: Enable...
};
static_assert(sizeof(GLOBAL_USER_POWER_POLICY) == 176);
static_assert(offsetof(GLOBAL_USER_POWER_POLICY, GlobalFlags) == 172);

struct GLOBAL_POWER_POLICY
{
    GLOBAL_USER_POWER_POLICY user;    ///< offset 0
    GLOBAL_MACHINE_POWER_POLICY mach; ///< offset 176
};
using PGLOBAL_POWER_POLICY = GLOBAL_POWER_POLICY*;
static_assert(sizeof(GLOBAL_POWER_POLICY) == 192);

/// The part of a scheme that the machine keeps.
struct MACHINE_POWER_POLICY
{
    ULONG Revision;                           ///< offset 0
    SYSTEM_POWER_STATE MinSleepAc;            ///< offset 4
    SYSTEM_POWER_STATE MinSleepDc;            ///< offset 8
    SYSTEM_POWER_STATE ReducedLatencySleepAc; ///< offset 12
    SYSTEM_POWER_STATE ReducedLatencySleepDc; ///< offset 16
    ULONG DozeTimeoutAc;                      ///< offset 20: seconds
    ULONG DozeTimeoutDc;                      ///< offset 24
    ULONG DozeS4TimeoutAc;                    ///< offset 28: seconds of sleep before hibernation
    ULONG DozeS4TimeoutDc;                    ///< offset 32
    UCHAR MinThrottleAc;                      ///< offset 36: percent
    UCHAR MinThrottleDc;                      ///< offset 37
    UCHAR pad1[2];                            ///< offset 38
    POWER_ACTION_POLICY OverThrottledAc;      ///< offset 40
    POWER_ACTION_POLICY OverThrottledDc;      ///< offset 52
};
static_assert(sizeof(MACHINE_POWER_POLICY) == 64);
static_assert(offsetof(MACHINE_POWER_POLICY, DozeS4TimeoutAc) == 28);
static_assert(offsetof(MACHINE_POWER_POLICY, OverThrottledDc) == 52);

/// The part of a scheme that belongs to a user.
struct USER_POWER_POLICY
{
    ULONG Revision;                ///< offset 0
    POWER_ACTION_POLICY IdleAc;    ///< offset 4
    POWER_ACTION_POLICY IdleDc;    ///< offset 16
    ULONG IdleTimeoutAc;           ///< offset 28: seconds, 0 for never, as all times here
    ULONG IdleTimeoutDc;           ///< offset 32
    UCHAR IdleSensitivityAc;       ///< offset 36: percent
    UCHAR IdleSensitivityDc;       ///< offset 37
    UCHAR ThrottlePolicyAc;        ///< offset 38: PO_THROTTLE_...
    UCHAR ThrottlePolicyDc;        ///< offset 39
    SYSTEM_POWER_STATE MaxSleepAc; ///< offset 40
    SYSTEM_POWER_STATE MaxSleepDc; ///< offset 44
    ULONG Reserved[2];             ///< offset 48
    ULONG VideoTimeoutAc;          ///< offset 56
    ULONG VideoTimeoutDc;          ///< offset 60
    ULONG SpindownTimeoutAc;       ///< offset 64
    ULONG SpindownTimeoutDc;       ///< offset 68
    BOOLEAN OptimizeForPowerAc;    ///< offset 72
    BOOLEAN OptimizeForPowerDc;    ///< offset 73
    UCHAR FanThrottleToleranceAc;  ///< offset 74: percent
    UCHAR FanThrottleToleranceDc;  ///< offset 75
    UCHAR ForcedThrottleAc;        ///< offset 76: percent
    UCHAR ForcedThrottleDc;        ///< offset 77
};
static_assert(sizeof(USER_POWER_POLICY) == 80);
static_assert(offsetof(USER_POWER_POLICY, VideoTimeoutAc) == 56);
static_assert(offsetof(USER_POWER_POLICY, ForcedThrottleDc) == 77);

struct POWER_POLICY
{
    USER_POWER_POLICY user;    ///< offset 0
    MACHINE_POWER_POLICY mach; ///< offset 80
};
using PPOWER_POLICY = POWER_POLICY*;
static_assert(sizeof(POWER_POLICY) == 144);

/// The processor part of a scheme.
struct MACHINE_PROCESSOR_POWER_POLICY
{
    ULONG Revision;                           ///< offset 0
    PROCESSOR_POWER_POLICY ProcessorPolicyAc; ///< offset 4
    PROCESSOR_POWER_POLICY ProcessorPolicyDc; ///< offset 80
};
using PMACHINE_PROCESSOR_POWER_POLICY = MACHINE_PROCESSOR_POWER_POLICY*;
static_assert(sizeof(MACHINE_PROCESSOR_POWER_POLICY) == 156);
static_assert(offsetof(MACHINE_PROCESSOR_POWER_POLICY, ProcessorPolicyDc) == 80);

/// Called with number, size of the name in bytes, name, size of the description in bytes, description,
/// policy and the caller's argument of each scheme. FALSE ends the enumeration.
using PWRSCHEMESENUMPROC = BOOLEAN(CALLBACK*)(UINT, DWORD, LPWSTR, DWORD, LPWSTR, PPOWER_POLICY, LPARAM);

SIM_API BOOLEAN WINAPI GetActivePwrScheme(PUINT scheme);
SIM_API BOOLEAN WINAPI SetActivePwrScheme(UINT scheme, PGLOBAL_POWER_POLICY globalPolicy,
                                          PPOWER_POLICY policy);
SIM_API BOOLEAN WINAPI ReadPwrScheme(UINT scheme, PPOWER_POLICY policy);
SIM_API BOOLEAN WINAPI WritePwrScheme(PUINT scheme, LPWSTR name, LPWSTR description, PPOWER_POLICY policy);
SIM_API BOOLEAN WINAPI ReadProcessorPwrScheme(UINT scheme, PMACHINE_PROCESSOR_POWER_POLICY policy);
SIM_API BOOLEAN WINAPI WriteProcessorPwrScheme(UINT scheme, PMACHINE_PROCESSOR_POWER_POLICY policy);
SIM_API BOOLEAN WINAPI EnumPwrSchemes(PWRSCHEMESENUMPROC callback, LPARAM argument);
SIM_API BOOLEAN WINAPI DeletePwrScheme(UINT scheme);
SIM_API BOOLEAN WINAPI IsPwrHibernateAllowed();
SIM_API BOOLEAN WINAPI ReadGlobalPwrPolicy(PGLOBAL_POWER_POLICY policy);
SIM_API BOOLEAN WINAPI WriteGlobalPwrPolicy(PGLOBAL_POWER_POLICY policy);
SIM_API NTSTATUS WINAPI CallNtPowerInformation(POWER_INFORMATION_LEVEL level, PVOID input, ULONG inputSize,
                                               PVOID output, ULONG outputSize);

// From version 6 on. The results are Win32 error numbers; the root key is null.
SIM_API DWORD WINAPI PowerGetActiveScheme(HKEY root, GUID** scheme);
SIM_API DWORD WINAPI PowerSetActiveScheme(HKEY root, const GUID* scheme);
SIM_API DWORD WINAPI PowerReadFriendlyName(HKEY root, const GUID* scheme, const GUID* subGroup,
                                           const GUID* setting, PUCHAR buffer, LPDWORD size);
SIM_API DWORD WINAPI PowerReadACValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                           const GUID* setting, LPDWORD value);
SIM_API DWORD WINAPI PowerReadDCValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                           const GUID* setting, LPDWORD value);
SIM_API DWORD WINAPI PowerWriteACValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                            const GUID* setting, DWORD value);
SIM_API DWORD WINAPI PowerWriteDCValueIndex(HKEY root, const GUID* scheme, const GUID* subGroup,
                                            const GUID* setting, DWORD value);
SIM_API DWORD WINAPI PowerDeleteScheme(HKEY root, const GUID* scheme);
SIM_API DWORD WINAPI PowerDuplicateScheme(HKEY root, const GUID* source, GUID** destination);
