// plugin/SchemeCommands.h
//
// The commands on schemes, one function each. When they run, the requesting user is known, the engine is set
// up for the user, and payload and pointers have been checked; all give the result code.
#pragma once

#include "foundation/Text.h"
#include "plugin/HostRecords.h"
#include "scheme/SchemeEx.h"

class CPluginHelper;

namespace scheme_commands
{

/// A request with what the common steps made of it.
struct Call
{
    CPluginHelper& context;
    const PM_Request& request;
    CSchemeEx& engine;
    const char* userId;      ///< the account name as the host gave it
    const wchar_t* userName; ///< the same in wide characters
};

using Function = LONG (*)(const Call& call) noexcept;

// Reading, editing and applying.
LONG GetActiveScheme(const Call& call) noexcept;
LONG ApplyScheme(const Call& call) noexcept;
LONG EditScheme(const Call& call) noexcept;
LONG EditSchemeAll(const Call& call) noexcept;
LONG QueryScheme(const Call& call) noexcept;
LONG QuerySchemeAll(const Call& call) noexcept;
LONG GetSchemeVarCount(const Call& call) noexcept;
LONG GetSchemeVarOptValue(const Call& call) noexcept;
LONG GetUserId(const Call& call) noexcept;
LONG InitCfgFile(const Call& call) noexcept;

// The life of schemes and the speed of the processor.
LONG GetCpuSpeed(const Call& call) noexcept;
LONG SetCpuSpeed(const Call& call) noexcept;
LONG GetSchemeName(const Call& call) noexcept;
LONG AddScheme(const Call& call) noexcept;
LONG AddSchemeAll(const Call& call) noexcept;
LONG DeleteScheme(const Call& call) noexcept;
LONG ClearSchemes(const Call& call) noexcept;

/// Gives the engine's answer as a 4-byte reply.
void ReplyNumber(const Call& call, LONG number) noexcept;

/// The same unless the answer is negative, which is a failure without a reply. The result code.
LONG ReplyOnSuccess(const Call& call, LONG answer) noexcept;

} // namespace scheme_commands
