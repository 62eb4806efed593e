// scheme/SettingCatalogue.h
//
// What the setting catalogue says of a variable, as the engine itself asks for it. The queries for callers
// are operations of CSchemeEx.
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
bool ReadSetting(const wchar_t* name, GUID& subGroup, GUID& setting) noexcept;

} // namespace catalogue
