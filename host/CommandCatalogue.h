// host/CommandCatalogue.h
//
// What the host shows for each command: the fields of its payload and of its reply, and what it is for.
#pragma once

#include "RecordShapes.h"
#include "plugin/Commands.h"

#include <span>
#include <string_view>

namespace host
{

struct CommandEntry
{
    const CommandInfo& info;
    const RecordShape& payload;
    const RecordShape& reply;
    const char* summary;
};

/// All 43 commands, grouped by topic: live devices, schemes, configuration, maintenance.
std::span<const CommandEntry> Commands() noexcept;

/// The entry of `name`, ignoring case, or null.
const CommandEntry* FindCommand(std::string_view name) noexcept;

} // namespace host
