// plugin/CommandTable.h
//
// From a command's name to its number, and from the number to who serves it.
#pragma once

#include "plugin/HostRecords.h"

class CPluginHelper;

/// Carries a request out and gives the result code. `request` is the plug-in's copy of the host's record.
using CommandHandler = LONG (*)(CPluginHelper& context, const PM_Request& request, LONG number) noexcept;

/// Gives the number of the command that bears this name, told apart by case; `name` ends at its first NUL or
/// after 32 bytes. 1, or 0 with `number` left alone for any other name.
int CommandNumberFromName(const char* name, LONG* number) noexcept;

/// Who serves the command; null for one that is known and not served.
CommandHandler FindHandler(LONG number) noexcept;
