// scheme/xp/CopyScheme.h
//
// New schemes as copies of existing ones, and new names for schemes, as in `PowerBackend`.
#pragma once

class SchemeName;

namespace xp
{

int CopyScheme(SchemeName& name, const wchar_t* description, int from) noexcept;
int RenameScheme(int index, SchemeName& name, const wchar_t* description) noexcept;

} // namespace xp
