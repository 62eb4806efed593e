// host/Printing.h
//
// Prints replies and events, field by field for people and as JSON for programs.
#pragma once

#include "CommandCatalogue.h"
#include "Session.h"

#include <string>

namespace host
{

enum class Style
{
    Text,
    Json, ///< one object on a line
};

/// "OK", "REFUSED", "UNKNOWN COMMAND" or "FAILED", the words behind the four result codes.
const char* ResultWord(LONG code) noexcept;

/// An answer to `entry`'s command (null for a command that the host doesn't know).
std::string Show(const std::string& command, const CommandEntry* entry, const Answer& answer, Style style);

std::string Show(const Event& event, Style style);

/// All commands with payload and reply.
std::string ShowCatalogue(Style style);

} // namespace host
