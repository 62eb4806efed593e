// include/poclass.h
//
// The records and I/O controls of the battery class driver, with their published layouts.
#pragma once

#include <windows.h>

/// The interface class of batteries.
inline constexpr GUID GUID_DEVICE_BATTERY = {
    0x72631E54, 0x78A4, 0x11D0, {0xBC, 0xF7, 0x00, 0xAA, 0x00, 0xB7, 0xB3, 0x2A}};

typedef enum
{
    BatteryInformation,
    BatteryGranularityInformation,
    BatteryTemperature,
    BatteryEstimatedTime,
    BatteryDeviceName,
    BatteryManufactureDate,
    BatteryManufactureName,
    BatteryUniqueID,
    BatterySerialNumber
} BATTERY_QUERY_INFORMATION_LEVEL;

typedef struct _BATTERY_QUERY_INFORMATION
{
    ULONG BatteryTag;
    BATTERY_QUERY_INFORMATION_LEVEL InformationLevel;
    LONG AtRate;
} BATTERY_QUERY_INFORMATION, *PBATTERY_QUERY_INFORMATION;
static_assert(sizeof(BATTERY_QUERY_INFORMATION) == 12);

typedef struct _BATTERY_INFORMATION
{
    ULONG Capabilities; ///< a bit set
    UCHAR Technology;   ///< 1 when it can be charged
    UCHAR Reserved[3];
    UCHAR Chemistry[4];     ///< not terminated
    ULONG DesignedCapacity; ///< in mWh, as all capacities
    ULONG FullChargedCapacity;
    ULONG DefaultAlert1;
    ULONG DefaultAlert2;
    ULONG CriticalBias;
    ULONG CycleCount;
} BATTERY_INFORMATION, *PBATTERY_INFORMATION;
static_assert(sizeof(BATTERY_INFORMATION) == 36);

typedef struct _BATTERY_WAIT_STATUS
{
    ULONG BatteryTag;
    ULONG Timeout; ///< in milliseconds
    ULONG PowerState;
    ULONG LowCapacity;
    ULONG HighCapacity;
} BATTERY_WAIT_STATUS, *PBATTERY_WAIT_STATUS;
static_assert(sizeof(BATTERY_WAIT_STATUS) == 20);

typedef struct _BATTERY_STATUS
{
    ULONG PowerState; ///< BATTERY_POWER_ON_LINE, ...
    ULONG Capacity;
    ULONG Voltage; ///< in mV
    LONG Rate;     ///< in mW, negative while discharging
} BATTERY_STATUS, *PBATTERY_STATUS;
static_assert(sizeof(BATTERY_STATUS) == 16);

typedef struct _BATTERY_MANUFACTURE_DATE
{
    UCHAR Day;
    UCHAR Month;
    USHORT Year;
} BATTERY_MANUFACTURE_DATE, *PBATTERY_MANUFACTURE_DATE;
static_assert(sizeof(BATTERY_MANUFACTURE_DATE) == 4);

#define BATTERY_TAG_INVALID 0U

#define BATTERY_POWER_ON_LINE 0x00000001U
#define BATTERY_DISCHARGING 0x00000002U
#define BATTERY_CHARGING 0x00000004U
#define BATTERY_CRITICAL 0x00000008U

#define BATTERY_UNKNOWN_VOLTAGE 0xFFFFFFFFU
#define BATTERY_UNKNOWN_RATE 0x80000000U

#define IOCTL_BATTERY_QUERY_TAG CTL_CODE(FILE_DEVICE_BATTERY, 0x10, METHOD_BUFFERED, FILE_READ_ACCESS)
#define IOCTL_BATTERY_QUERY_INFORMATION CTL_CODE(FILE_DEVICE_BATTERY, 0x11, METHOD_BUFFERED, FILE_READ_ACCESS)
#define IOCTL_BATTERY_QUERY_STATUS CTL_CODE(FILE_DEVICE_BATTERY, 0x13, METHOD_BUFFERED, FILE_READ_ACCESS)
