// scheme/GlobalPolicy.h
//
// Bringing a user's own power settings to the account in which this process runs.
#pragma once

#include "scheme/PowerBackend.h"

/// Takes over what lies in the key `user` below HKEY_USERS: disk and hibernate times into scheme `index`;
/// buttons, lid actions and battery alarms into the global policy.
void TakeOverUserPolicy(const PowerBackend& backend, const wchar_t* user, int index) noexcept;
