// scheme/SettingCatalogue.h
//
// What the setting catalogue says of a variable, in a section of the variable's name.
#pragma once

#include <windows.h>

namespace catalogue
{

/// True when `value` is one of the options of the variable `name`.
bool Offers(const wchar_t* name, int value) noexcept;

/// The first option of the hibernate time, in file order, that is greater than `standby`. 0 when there is
/// none, and where the machine doesn't hibernate.
int HibernateTimeAfter(int standby) noexcept;

/// The operating system's setting behind the variable `name`; false when the catalogue names none or names
/// it in a text that is no GUID.
[[nodiscard]] bool ReadSetting(const wchar_t* name, GUID& subGroup, GUID& setting) noexcept;

// See the operations of `CSchemeEx` on the catalogue.

int OptionCount(const wchar_t* name) noexcept;
int Option(const wchar_t* name, int option) noexcept;

/// Copies the text of one key; its length, or -1 for none with `buffer` left alone.
[[nodiscard]] int CopyText(const wchar_t* name, const wchar_t* key, wchar_t* buffer, int size) noexcept;

} // namespace catalogue
