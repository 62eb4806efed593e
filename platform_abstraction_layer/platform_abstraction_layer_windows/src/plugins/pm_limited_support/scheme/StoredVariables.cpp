// scheme/StoredVariables.cpp
//
// The variables of one scheme in the scheme values file.

#include "scheme/StoredVariables.h"

StoredVariables::StoredVariables(int index) noexcept
    : m_rootIsOpen(files::OpenRoot(m_root)),
      m_fileIsOpen(m_rootIsOpen && files::OpenOwn(m_file, m_root, files::kValuesName)),
      m_section(files::kVariablesSection, index)
{
}

LONG StoredVariables::ReadOr(const Variable& variable, LONG absent) noexcept
{
    return m_fileIsOpen ? m_file.GetInt(m_section.Text(), variable.name, static_cast<int>(absent)) : absent;
}

LONG StoredVariables::Read(const Variable& variable) noexcept
{
    return ReadOr(variable, kNoValue);
}

int StoredVariables::ValueOrDefault(const Variable& variable, bool ac, LONG stored, LONG absent) noexcept
{
    if (stored == kNoValue)
    {
        stored = absent;
        Write(variable, stored);
    }
    return static_cast<int>(stored == kNoValue || !variable.isPacked ? stored : ValueFor(stored, ac));
}

void StoredVariables::Write(const Variable& variable, LONG number) noexcept
{
    if (m_fileIsOpen)
    {
        m_file.PutInt(m_section.Text(), variable.name, static_cast<int>(number));
    }
}

void StoredVariables::WriteValue(const Variable& variable, bool ac, int value) noexcept
{
    Write(variable, variable.isPacked ? ReplaceValue(ReadOr(variable, 0), ac, value) : value);
}

LONG StoredVariables::MaxBrightLevel() noexcept
{
    return m_rootIsOpen ? m_root.GetInt(L"ORVLCfg", L"MaxBrightLevel", 0) : 0;
}
