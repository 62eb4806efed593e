// foundation/UserLookup.h
//
// From an account name to the user's loaded hive and configuration folder, by way of the account
// database.
#pragma once

#include <windows.h>

/// Resolves `userName`. 1 on success: `subKey` is the SID string, which names the user's key below
/// HKEY_USERS, and `profilePath` the configuration folder, left alone when "Local AppData" is empty. Both
/// have room for 260 characters. 0 when the account is unknown, with both left alone, and when its hive isn't
/// loaded or has no "Local AppData"; `subKey` is filled then and `profilePath` is not.
int GetCurrentUserSubkeyProfilePath(const wchar_t* userName, wchar_t* subKey, wchar_t* profilePath) noexcept;
