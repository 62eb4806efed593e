// modules/kernel32/ShareModes.h
//
// What openers of a file allow each other. The claims are locks on the host's file, so they hold between
// processes and end with their holder, killed or not.
#pragma once

#include <windef.h>

#include <string>

namespace simulated::share_modes
{

/// Claims the open file `descriptor` for `access` (GENERIC_... and FILE_..._DATA bits), allowing others what
/// `share` names. ERROR_SHARING_VIOLATION when another opener's claim stands against it. The claim lasts
/// until the descriptor is closed. The descriptor must be open for reading.
DWORD Claim(int descriptor, DWORD access, DWORD share);

/// Whether an opener with `access` (GENERIC_READ, GENERIC_WRITE, DELETE) that allows everything would be let
/// in just now: 0, or ERROR_SHARING_VIOLATION. A file that can't be opened counts as free.
DWORD Check(const std::string& host, DWORD access);
DWORD Check(int descriptor, DWORD access);

} // namespace simulated::share_modes
