// scheme/Variables.h
//
// One variable of a scheme. The scheme has to exist, then the generation decides; what fails is logged.
#pragma once

#include "scheme/PowerBackend.h"

namespace variables
{

/// The results are those of `CSchemeEx::GetPwrVariable` and `CSchemeEx::SetPwrVariable`.
int Read(const PowerBackend& backend, int index, bool ac, const Variable& variable) noexcept;
int Write(const PowerBackend& backend, int index, bool ac, const NamedVariable& variable, int value) noexcept;

// The same by a caller's name, which may be unknown.

int Read(const PowerBackend& backend, int index, bool ac, const wchar_t* name) noexcept;
int Write(const PowerBackend& backend, int index, bool ac, const wchar_t* name, int value) noexcept;

} // namespace variables
