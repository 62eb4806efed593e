// scheme/vista/ReadVariable.cpp
//
// Reading one variable on the Vista path. Nothing is logged here.

#include "scheme/StoredVariables.h"
#include "scheme/vista/Operations.h"
#include "scheme/vista/PowerDispatch.h"

namespace
{

class SettingReader : public vista::SystemSetting
{
public:
    // False when the system lacks the functions.
    bool Bind() noexcept
    {
        m_readAc = PowerDispatch.PowerReadACValueIndex.load();
        m_readDc = PowerDispatch.PowerReadDCValueIndex.load();
        return m_readAc != nullptr && m_readDc != nullptr;
    }

    bool Read(bool ac, DWORD& value) const noexcept
    {
        const PowerValueReader read = ac ? m_readAc : m_readDc;
        return read(nullptr, &scheme, &subGroup, &setting, &value) == ERROR_SUCCESS;
    }

private:
    PowerValueReader m_readAc = nullptr;
    PowerValueReader m_readDc = nullptr;
};

int ReadSetting(const SettingReader& reader, bool ac) noexcept
{
    DWORD value = 0;
    return reader.Read(ac, value) ? static_cast<int>(value) : -1;
}

// The operating system's pair wins over the copy in the file, which is only made where it is missing.
int ReadThrottle(const SettingReader& reader, StoredVariables& stored, const Variable& variable, LONG copy,
                 bool ac) noexcept
{
    DWORD dcValue = 0;
    DWORD acValue = 0;
    if (!reader.Read(false, dcValue) || !reader.Read(true, acValue))
    {
        return -1;
    }
    const LONG packed = PackValues(acValue, dcValue);
    if (copy == kNoValue)
    {
        stored.Write(variable, packed);
    }
    return static_cast<int>(ValueFor(packed, ac));
}

int ReadBacklight(const SettingReader& reader, StoredVariables& stored, bool ac) noexcept
{
    const LONG levels = stored.MaxBrightLevel();
    DWORD percentage = 0;
    if (levels <= 0 || !reader.Read(ac, percentage))
    {
        return -1;
    }
    return static_cast<int>((percentage + 1) * (static_cast<DWORD>(levels) - 1) / 100);
}

} // namespace

int vista::ReadVariable(int index, bool ac, const Variable& variable) noexcept
{
    SettingReader reader;
    if (!reader.Bind() || !reader.Find(index, variable))
    {
        return -1;
    }
    if (variable.vista == VistaStorage::Setting)
    {
        return ReadSetting(reader, ac);
    }

    StoredVariables stored(index);
    const LONG number = stored.Read(variable);
    switch (variable.vista)
    {
    case VistaStorage::ThrottleMinimum:
    case VistaStorage::ThrottleMaximum:
        return ReadThrottle(reader, stored, variable, number, ac);
    case VistaStorage::Backlight:
        return ReadBacklight(reader, stored, ac);
    case VistaStorage::Setting:
    case VistaStorage::File:
    case VistaStorage::Adaptive:
    case VistaStorage::Speed:
        break;
    }
    return stored.ValueOrDefault(variable, ac, number, variable.vistaDefault);
}
