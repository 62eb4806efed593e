// plugin/CommandTable.h
//
// How the plug-in serves each command.
#pragma once

#include "plugin/Commands.h"
#include "plugin/ConfigCommands.h"
#include "plugin/DeviceCommands.h"
#include "plugin/SchemeCommands.h"

class CPluginHelper;
struct Command;

/// Carries a request out and gives the result code. `request` is the plug-in's copy of the host's record.
using CommandHandler = LONG (*)(CPluginHelper& context, const PM_Request& request,
                                const Command& command) noexcept;

/// A command as the plug-in serves it: who carries it out, and what that handler needs to know.
struct Command
{
    CommandInfo info;
    CommandHandler handler = nullptr;  ///< null for a command that is known and not served
    const wchar_t* entryLog = nullptr; ///< logged before the length is checked; may show `paramsLen`; or null
    const wchar_t* lengthLog = nullptr; ///< logged for a wrong length; or null
    device_commands::Function device = nullptr;
    config_commands::Function config = nullptr;
    scheme_commands::Function scheme = nullptr;
};

// The handlers, each in a source of its own.

/// Live hardware: backlight, radios, LAN, batteries.
LONG ProcessDeviceFunc(CPluginHelper& context, const PM_Request& request, const Command& command) noexcept;

/// One key of a configuration file.
LONG ProcessConfigFunc(CPluginHelper& context, const PM_Request& request, const Command& command) noexcept;

/// Schemes, for the user that the request names.
LONG ProcessPwrSchemeFunc(CPluginHelper& context, const PM_Request& request, const Command& command) noexcept;

/// The companion application's start with Windows.
LONG ProcessORVARequest(CPluginHelper& context, const PM_Request& request, const Command& command) noexcept;

/// The command of this name, case-sensitively, or null; `name` ends at its first NUL or after 32 bytes.
const Command* FindCommand(const char* name) noexcept;
