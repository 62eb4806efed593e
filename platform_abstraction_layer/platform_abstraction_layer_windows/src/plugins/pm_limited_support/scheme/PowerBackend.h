// scheme/PowerBackend.h
//
// What the engine asks of the operating system's power manager, the same operations for each generation of
// its interface: `xp/` goes by scheme numbers, `vista/` by GUIDs. A further generation is one more folder and
// one more line in `BackendOf`.
#pragma once

#include "foundation/PowerProfile.h"
#include "scheme/VariableTable.h"

class CSchemeEx;
class SchemeName;

/// What an activation logs, each with the index; null for what isn't logged.
struct ActivationTexts
{
    const wchar_t* negative;
    const wchar_t* notFound;
    const wchar_t* refused; ///< also with the system's error
};

/// A variable as a caller spells it: the rules for times go by the exact spelling, and in other letters only
/// the catalogue decides.
struct NamedVariable
{
    NamedVariable(const Variable& variable) noexcept : row(variable), name(variable.name)
    {
    }
    NamedVariable(const Variable& variable, const wchar_t* spelling) noexcept : row(variable), name(spelling)
    {
    }

    const Variable& row;
    const wchar_t* name;
};

struct PowerBackend
{
    /// What is logged for a variable that isn't in the table, with its name; null for nothing.
    const wchar_t* unknownRead;
    const wchar_t* unknownWrite;

    /// The test with which nearly every operation starts.
    bool (*exists)(int index) noexcept;

    /// See `CSchemeEx::GetPwrSchemeMaxIndex`.
    int (*maxIndex)() noexcept;

    /// The active scheme's index, or -1.
    int (*active)() noexcept;

    /// Makes the scheme the active one; `previous` becomes the one before, -1 when unknown.
    bool (*activate)(int index, const ActivationTexts& texts, int& previous) noexcept;

    // One variable of a scheme that exists; the results are those of the operations of `CSchemeEx`.

    int (*read)(int index, bool ac, const Variable& variable) noexcept;
    int (*write)(int index, bool ac, const NamedVariable& variable, int value) noexcept;

    /// True when `value` may be written to the variable of that name, in the table or not.
    bool (*accepts)(const wchar_t* name, int value) noexcept;

    /// The operating system's setting behind a variable, untouched where it has none; false where there are
    /// no settings, and when the catalogue lacks it.
    bool (*findSetting)(const Variable& variable, GUID& subGroup, GUID& setting) noexcept;

    /// True for an index that is never deleted, which no look at the system is needed for.
    bool (*isProtected)(int index) noexcept;

    /// Deletes a scheme with its stored variables.
    bool (*remove)(int index) noexcept;

    /// Nonzero when `callback` was called for the schemes.
    int (*enumerate)(PWRSCHEMESENUMPROC callback, LPARAM argument) noexcept;

    /// Copies the settings of scheme `from` under a new name; the new scheme's index, or -1.
    int (*copy)(SchemeName& name, const wchar_t* description, int from) noexcept;

    /// `index`, or -1.
    int (*rename)(int index, SchemeName& name, const wchar_t* description) noexcept;
};

namespace xp
{
extern const PowerBackend kBackend;
}
namespace vista
{
extern const PowerBackend kBackend;
}

/// The generation that `engine` has chosen.
const PowerBackend& BackendOf(const CSchemeEx& engine) noexcept;
