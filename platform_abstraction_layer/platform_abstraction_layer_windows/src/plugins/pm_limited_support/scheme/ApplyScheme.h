// scheme/ApplyScheme.h
//
// Applying a scheme. The results are those of `CSchemeEx::SetActivePwrScheme`.
#pragma once

class CSchemeEx;

namespace apply
{

int ForMachine(CSchemeEx& engine, int index) noexcept;

/// The same, and records the choice of the engine's user.
int ForUser(CSchemeEx& engine, int index) noexcept;

} // namespace apply
