// plugin/CommandTable.h
//
// The commands by name.
#pragma once

#include "plugin/HostRecords.h"

class CPluginHelper;

/// Carries a request out and gives the result code. `request` is the plug-in's copy of the host's record.
using CommandHandler = LONG (*)(CPluginHelper& context, const PM_Request& request, LONG number) noexcept;

struct Command
{
    const char* name;
    LONG number;
    CommandHandler handler; ///< null for a command that is known and not served
};

/// The command that bears this name, told apart by case; `name` ends at its first NUL or after 32 bytes. Null
/// for any other name.
const Command* FindCommand(const char* name) noexcept;

/// 1 with `number` set when `name` is a command's, else 0.
int CommandNumberFromName(const char* name, LONG* number) noexcept;
