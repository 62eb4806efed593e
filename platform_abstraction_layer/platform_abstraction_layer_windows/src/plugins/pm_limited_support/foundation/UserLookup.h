// foundation/UserLookup.h
//
// From an account name to the user's loaded hive and his configuration folder, by way of the account
// database.
#pragma once

#include <windows.h>

/// Resolves `userName`. 1 on success: `subKey` is the SID string, which names the user's key below
/// HKEY_USERS, and `profilePath` his configuration folder; both hold 260 characters. 0 when the account is
/// unknown or its hive isn't loaded. With an empty "Local AppData" the result is 1 and `profilePath` is left
/// alone.
int GetCurrentUserSubkeyProfilePath(const wchar_t* userName, wchar_t* subKey, wchar_t* profilePath) noexcept;
