// scheme/StoredVariables.h
//
// The variables of one scheme that lie in the scheme values file.
#pragma once

#include "scheme/SchemeFiles.h"
#include "scheme/VariableTable.h"

/// Opens the file when it is built. Where that fails every variable counts as absent, and a write is lost
/// like one that the disk refuses: callers don't ask.
class StoredVariables
{
public:
    explicit StoredVariables(int index) noexcept;

    /// The stored number, `kNoValue` for none.
    LONG Read(const Variable& variable) noexcept;

    /// The value of a number that was read. In place of none `absent` is stored and its value given.
    int ValueOrDefault(const Variable& variable, bool ac, LONG stored, LONG absent) noexcept;

    /// Stores a number as it is.
    void Write(const Variable& variable, LONG number) noexcept;

    /// Stores a value; the other power source's stays as it is.
    void WriteValue(const Variable& variable, bool ac, int value) noexcept;

    /// The configured number of backlight levels, 0 when there is none.
    LONG MaxBrightLevel() noexcept;

private:
    LONG ReadOr(const Variable& variable, LONG absent) noexcept;

    CORVLCfg m_root;
    CORVLProfile m_file;
    bool m_rootIsOpen;
    bool m_fileIsOpen;
    files::NumberedKey m_section;
};
