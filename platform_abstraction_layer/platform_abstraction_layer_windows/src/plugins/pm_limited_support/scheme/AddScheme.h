// scheme/AddScheme.h
//
// Adding schemes. The results are those of `CSchemeEx::AddPwrScheme`. An addition isn't atomic, and nothing
// is undone.
#pragma once

#include "scheme/PwrSet.h"

class CSchemeEx;

namespace add
{

int Copy(CSchemeEx& engine, const wchar_t* name, const wchar_t* description, int from) noexcept;
int CopyForUser(CSchemeEx& engine, const wchar_t* name, const wchar_t* description, int from,
                const wchar_t* user) noexcept;
int WholeForUser(CSchemeEx& engine, PWRSET& set, const wchar_t* user) noexcept;

} // namespace add
