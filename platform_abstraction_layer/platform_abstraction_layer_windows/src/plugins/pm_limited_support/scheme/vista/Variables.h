// scheme/vista/Variables.h
//
// Reading, checking and writing one variable on the Vista path, as in `PowerBackend`.
#pragma once

#include "scheme/PowerBackend.h"

namespace vista
{

int ReadVariable(int index, bool ac, const Variable& variable) noexcept;
int WriteVariable(int index, bool ac, const NamedVariable& variable, int value) noexcept;
bool Accepts(const wchar_t* name, int value) noexcept;

} // namespace vista
