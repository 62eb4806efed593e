// scheme/xp/Operations.h
//
// The operations of the XP path that have a source of their own, as in `PowerBackend`.
#pragma once

#include "scheme/PowerBackend.h"

namespace xp
{

int ReadVariable(int index, bool ac, const Variable& variable) noexcept;
int WriteVariable(int index, bool ac, const NamedVariable& variable, int value) noexcept;
bool Accepts(const wchar_t* name, int value) noexcept;

[[nodiscard]] int CopyScheme(SchemeName& name, const wchar_t* description, int from) noexcept;
[[nodiscard]] int RenameScheme(int index, SchemeName& name, const wchar_t* description) noexcept;

} // namespace xp
