// scheme/VariableAccess.h
//
// Reading, checking and writing one variable of a scheme that exists, once for each generation of the power
// manager. The results are those of the operations of CSchemeEx, which chooses between the two.
#pragma once

class CSchemeEx;

namespace xp
{

int ReadVariable(int index, bool ac, const wchar_t* name) noexcept;
int WriteVariable(int index, bool ac, const wchar_t* name, int value) noexcept;

/// True when `value` may be written to the variable.
bool Accepts(const wchar_t* name, int value) noexcept;

} // namespace xp

namespace vista
{

int ReadVariable(int index, bool ac, const wchar_t* name) noexcept;

/// `engine` takes the writes that follow from this one.
int WriteVariable(CSchemeEx& engine, int index, bool ac, const wchar_t* name, int value) noexcept;

bool Accepts(const wchar_t* name, int value) noexcept;

} // namespace vista
