// modules/advapi32/Tokens.h
//
// The access token of this process: which privileges its account has, and which of them are switched on.
// Administrators and the service account have all that are known here, the other services only shutdown.
#pragma once

#include <string_view>

namespace simulated::tokens
{

/// True when the running account's token has the privilege switched on.
bool IsEnabled(std::string_view privilege);

/// Switches everything back to what a fresh process has.
void Reset();

} // namespace simulated::tokens
