// scheme/ClearSchemes.h
//
// Taking what the plug-in has stored off the machine. The results are those of the clearing operations of
// `CSchemeEx`.
#pragma once

class CSchemeEx;

namespace clear
{

/// The schemes, section and files of the engine's user.
int CurrentUser(CSchemeEx& engine) noexcept;

/// The schemes of all listed users, the machine's files and its key.
int AllUsers(CSchemeEx& engine) noexcept;

/// What lies in the profile and the hive of each account.
int Accounts() noexcept;
int UserHive(const wchar_t* hive, const wchar_t* sid) noexcept;
int EnableHivePrivileges() noexcept;

/// Deletes the file `suffix`, which begins with a backslash, below `folder` and logs `format` with its path.
/// The line reports the attempt: whether the file was there isn't asked.
void DeleteFileBelow(const wchar_t* folder, const wchar_t* suffix, const wchar_t* format) noexcept;

} // namespace clear
