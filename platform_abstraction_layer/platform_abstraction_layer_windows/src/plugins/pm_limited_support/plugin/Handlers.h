// plugin/Handlers.h
//
// The four handlers, each in a source of its own. A handler is thin: it checks the payload, converts, calls
// the engine or an agent, and replies. `number` is the command's; all give the result code.
#pragma once

#include "plugin/HostRecords.h"

class CPluginHelper;

/// Live hardware: backlight, radios, LAN, batteries.
LONG ProcessDeviceFunc(CPluginHelper& context, const PM_Request& request, LONG number) noexcept;

/// One key of a configuration file.
LONG ProcessConfigFunc(const PM_Request& request, LONG number) noexcept;

/// Schemes, for the user that the request names.
LONG ProcessPwrSchemeFunc(CPluginHelper& context, const PM_Request& request, LONG number) noexcept;

/// The companion application's start with Windows.
LONG ProcessORVARequest(const PM_Request& request, LONG number) noexcept;
