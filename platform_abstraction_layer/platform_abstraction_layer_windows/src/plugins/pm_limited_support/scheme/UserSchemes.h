// scheme/UserSchemes.h
//
// The user scheme file: which schemes belong to which user. A user's section describes the entries 0
// to "Number" less 1; what stands above is stale and isn't read.
#pragma once

#include "foundation/EntryLimit.h"
#include "scheme/SchemeFiles.h"

namespace user_schemes
{

constexpr const wchar_t* kUserList = L"UserList";
constexpr const wchar_t* kNumber = L"Number";
constexpr const wchar_t* kUser = L"User%d";
constexpr const wchar_t* kScheme = L"Scheme%d";
constexpr const wchar_t* kSchemeName = L"SchemeName%d";

/// Opens the file. Logs its name with `nameText`, and `failedText` when it can't be opened.
[[nodiscard]] bool Open(CORVLProfile& users, const wchar_t* nameText, const wchar_t* failedText) noexcept;

/// How many users are listed, as far as `limit` allows.
[[nodiscard]] int CountUsers(CORVLProfile& users, EntryLimit& limit) noexcept;

/// The section of one listed user, empty when the entry isn't there.
void ReadUser(CORVLProfile& users, int place, files::ShortText& section) noexcept;

/// How many schemes a user's section has; likewise.
[[nodiscard]] int CountSchemes(CORVLProfile& users, const wchar_t* section, EntryLimit& limit) noexcept;

/// The scheme of that name in a section, case-sensitive, or -1.
int FindByName(CORVLProfile& users, const wchar_t* section, const wchar_t* name) noexcept;

/// Enters a section in the list of users, unless it is there, and a scheme in a section. The results are
/// those of `CSchemeEx::AddtoUserList` and `CSchemeEx::AddtoUserScheme`; `user` is logged.
int AddUser(const wchar_t* section, const wchar_t* user) noexcept;
int AddScheme(const wchar_t* section, const wchar_t* name, const wchar_t* user, int number) noexcept;

/// True when the scheme stands in another listed user's section and not in `section`.
bool BelongsToAnother(CORVLProfile& users, const wchar_t* section, int scheme, EntryLimit& limit) noexcept;

/// Takes the scheme out of a section and closes the gap; a scheme that isn't there, and a
/// section with more entries than `limit` allows, change nothing.
void Remove(CORVLProfile& users, const wchar_t* section, int scheme, EntryLimit& limit) noexcept;

} // namespace user_schemes
