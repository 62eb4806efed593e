// modules/kernel32/ShareModes.h
//
// The share modes of open files. The claims are locks on the host's file, so they hold between
// processes and end with their holder, killed or not.
#pragma once

#include <windef.h>

#include <string>

namespace simulated::share_modes
{

/// Denies others what `share` doesn't name, until the descriptor, which must be open for reading, is closed.
void Claim(int descriptor, DWORD share);

/// Whether an opener with `access` (GENERIC_READ, GENERIC_WRITE, DELETE) would be let in just now: 0, or
/// ERROR_SHARING_VIOLATION. A file that can't be opened counts as free.
DWORD Check(const std::string& host, DWORD access);
DWORD Check(int descriptor, DWORD access);

} // namespace simulated::share_modes
