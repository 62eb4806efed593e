// scheme/vista/Operations.h
//
// The operations of the Vista path that have a source of their own.
#pragma once

#include "scheme/PowerBackend.h"

namespace vista
{

// One variable, as in `PowerBackend`.

int ReadVariable(int index, bool ac, const Variable& variable) noexcept;
int WriteVariable(int index, bool ac, const NamedVariable& variable, int value) noexcept;
bool Accepts(const wchar_t* name, int value) noexcept;

/// The operating system's setting behind a variable, in one scheme.
struct SystemSetting
{
    /// False for a scheme that isn't there, and when the catalogue lacks a setting that the variable has.
    [[nodiscard]] bool Find(int index, const Variable& variable) noexcept;

    GUID scheme{};
    GUID subGroup{};
    GUID setting{};
};

/// See `PowerBackend::findSetting`.
[[nodiscard]] bool FindSetting(const Variable& variable, GUID& subGroup, GUID& setting) noexcept;

// The rows of the scheme values file: a scheme's index is its row, and the row holds the GUID by which the
// operating system knows the scheme.

/// The GUID of a row. A row whose scheme the operating system no longer knows is removed with all that it
/// holds, and doesn't count.
[[nodiscard]] bool RowToGuid(int row, GUID& guid) noexcept;

/// The row that holds `guid`, or -1. It looks at the rows up to the number that `maxIndex` gives; a row with
/// a text that is no GUID ends the search.
int FindRow(const GUID& guid, int (*maxIndex)() noexcept) noexcept;

/// The next free row, or -1.
int NextFreeRow() noexcept;

/// Gives a scheme the next free row unless the row before is the scheme's already; the row, or -1.
[[nodiscard]] int AddRow(const GUID& guid) noexcept;

} // namespace vista
