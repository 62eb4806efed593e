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

    /// The stored number, or `absent`.
    LONG Read(const Variable& variable, LONG absent) noexcept;

    void Write(const Variable& variable, LONG value) noexcept;

    /// Replaces the half for one power source.
    void Merge(const Variable& variable, bool ac, LONG value) noexcept;

    /// The configured number of backlight levels, 0 when there is none.
    LONG MaxBrightLevel() noexcept;

private:
    CORVLCfg m_root;
    CORVLProfile m_file;
    bool m_rootIsOpen;
    bool m_fileIsOpen;
    files::ShortText m_section;
};
