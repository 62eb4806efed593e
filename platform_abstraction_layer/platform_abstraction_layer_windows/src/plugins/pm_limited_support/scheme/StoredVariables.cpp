// scheme/StoredVariables.cpp
//
// The variables of one scheme in the scheme values file.

#include "scheme/StoredVariables.h"

StoredVariables::StoredVariables(int index) noexcept
    : m_rootIsOpen(files::OpenRoot(m_root)),
      m_fileIsOpen(m_rootIsOpen && files::OpenOwn(m_file, m_root, files::kValuesName))
{
    text::Format(m_section, files::kVariablesSection, index);
}

LONG StoredVariables::Read(const Variable& variable, LONG absent) noexcept
{
    return m_fileIsOpen ? m_file.GetInt(m_section, variable.name, static_cast<int>(absent)) : absent;
}

void StoredVariables::Write(const Variable& variable, LONG value) noexcept
{
    if (m_fileIsOpen)
    {
        m_file.PutInt(m_section, variable.name, static_cast<int>(value));
    }
}

void StoredVariables::Merge(const Variable& variable, bool ac, LONG value) noexcept
{
    Write(variable, ReplaceHalf(Read(variable, 0), ac, value));
}

LONG StoredVariables::MaxBrightLevel() noexcept
{
    return m_rootIsOpen ? m_root.GetInt(L"ORVLCfg", L"MaxBrightLevel", 0) : 0;
}
