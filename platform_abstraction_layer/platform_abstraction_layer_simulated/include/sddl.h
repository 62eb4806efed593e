// include/sddl.h
//
// advapi32: security identifiers as text.
#pragma once

#include <windows.h>

/// The SID as "S-1-...", in memory that the caller gives back with LocalFree. ERROR_INVALID_SID.
SIM_API BOOL WINAPI ConvertSidToStringSidW(PSID sid, LPWSTR* text);

/// The other way round, also to be given back with LocalFree. ERROR_INVALID_SID for a text that is none.
