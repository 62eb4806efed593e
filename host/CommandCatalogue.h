// host/CommandCatalogue.h
//
// What the host knows of each command: its payload, its reply and what it is for. The plug-in has a table of
// its own; this one is the client's view.
#pragma once

#include "RecordShapes.h"

#include <span>
#include <string_view>

namespace host
{

struct CommandEntry
{
    const char* name;
    const RecordShape& payload;
    const RecordShape& reply;
    bool needsUser; ///< the request must name an account
    const char* summary;
};

/// All 43 commands, in the order of the topics: live devices, schemes, configuration, maintenance.
std::span<const CommandEntry> Commands() noexcept;

/// The entry of `name`, whatever its case, or null.
const CommandEntry* FindCommand(std::string_view name) noexcept;

} // namespace host
