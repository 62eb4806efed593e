// plugin/DeviceCommands.h
//
// The commands on live hardware, one function each. Payload and pointers have been checked when they run; all
// give the result code.
#pragma once

#include "plugin/HostRecords.h"

class CPluginHelper;

namespace device_commands
{

using Function = LONG (*)(CPluginHelper& context, const PM_Request& request) noexcept;

// What the embedded controller owns.
LONG GetMaxLcdBrightness(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetLcdBrightness(CPluginHelper& context, const PM_Request& request) noexcept;
LONG SetLcdBrightness(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetLanStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG SetLanStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG Get3GStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG Set3GStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetWirelessStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG SetWirelessStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetBluetoothStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG SetBluetoothStatus(CPluginHelper& context, const PM_Request& request) noexcept;

// Network adapters as the operating system sees them.
LONG GetLanEnabledStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetWirelessEnabledStatus(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetLanSpeed(CPluginHelper& context, const PM_Request& request) noexcept;
LONG SetLanSpeed(CPluginHelper& context, const PM_Request& request) noexcept;

// Batteries and the power source.
LONG GetBatteryCount(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetBatteryInfo(CPluginHelper& context, const PM_Request& request) noexcept;
LONG GetPowerInfo(CPluginHelper& context, const PM_Request& request) noexcept;

// The brightness of the LUMS display.
LONG Refuse(CPluginHelper& context, const PM_Request& request) noexcept;

} // namespace device_commands
