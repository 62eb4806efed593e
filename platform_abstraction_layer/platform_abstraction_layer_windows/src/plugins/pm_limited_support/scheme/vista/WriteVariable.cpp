// scheme/vista/WriteVariable.cpp
//
// Writing one variable on the Vista path. Nothing is logged here. A refusal of the operating system leaves
// what was written before it, the copy in the file included.

#include "scheme/SettingCatalogue.h"
#include "scheme/StoredVariables.h"
#include "scheme/Variables.h"
#include "scheme/Wrapping.h"
#include "scheme/vista/Operations.h"
#include "scheme/vista/PowerDispatch.h"

namespace
{

constexpr int kAdaptivePolicy = 3;
constexpr int kFullSpeed = 100;

// Numbers of the operating system's two policy settings.
constexpr int kVaryingPolicy = 2;
constexpr int kFixedPolicy = 4;
constexpr int kOnBattery = 1; // more

// Settings of the processor. These are fixed: a write doesn't go by what the catalogue names for the
// processor's variables.
constexpr GUID kProcessorSettings = {
    0x54533251, 0x82BE, 0x4824, {0x96, 0xC1, 0x47, 0xB6, 0x0B, 0x74, 0x0D, 0x00}};
constexpr GUID kThrottleMaximum = {
    0xBC5038F7, 0x23E0, 0x4960, {0x96, 0xDA, 0x33, 0xAB, 0xAF, 0x59, 0x35, 0xEC}};
constexpr GUID kThrottleMinimum = {
    0x893DEE8E, 0x2BEF, 0x41E0, {0x89, 0xC6, 0xB5, 0x5D, 0x09, 0x29, 0x96, 0x4C}};
constexpr GUID kFirstPolicySetting = {
    0x68F262A7, 0xF621, 0x4069, {0xB9, 0xA5, 0x48, 0x74, 0x16, 0x9B, 0xE2, 0x3C}};
constexpr GUID kSecondPolicySetting = {
    0xBBDC3814, 0x18E9, 0x4463, {0x8A, 0x55, 0xD1, 0x97, 0x32, 0x7C, 0x45, 0xC0}};

// The operating system's settings of one scheme on one power source.
class SettingWriter : public vista::SystemSetting
{
public:
    // False when the system lacks the functions.
    bool Bind(bool ac) noexcept
    {
        const PowerValueWriter writeAc = PowerDispatch.PowerWriteACValueIndex.load();
        const PowerValueWriter writeDc = PowerDispatch.PowerWriteDCValueIndex.load();
        m_write = ac ? writeAc : writeDc;
        return writeAc != nullptr && writeDc != nullptr;
    }

    // The variable's own setting, as the catalogue names it.
    bool Write(int value) const noexcept
    {
        return WriteSetting(subGroup, setting, value);
    }

    bool WriteProcessor(const GUID& which, int value) const noexcept
    {
        return WriteSetting(kProcessorSettings, which, value);
    }

private:
    bool WriteSetting(const GUID& group, const GUID& which, int value) const noexcept
    {
        return m_write(nullptr, &scheme, &group, &which, static_cast<DWORD>(value)) == ERROR_SUCCESS;
    }

    PowerValueWriter m_write = nullptr;
};

// Not adaptive fixes the processor at full speed.
bool WriteAdaptive(const SettingWriter& writer, bool ac, int value) noexcept
{
    const int policy = (value == 0 ? kFixedPolicy : kVaryingPolicy) + (ac ? 0 : kOnBattery);
    if (!writer.WriteProcessor(kFirstPolicySetting, policy) ||
        !writer.WriteProcessor(kSecondPolicySetting, policy))
    {
        return false;
    }
    return value != 0 || (writer.WriteProcessor(kThrottleMinimum, kFullSpeed) &&
                          writer.WriteProcessor(kThrottleMaximum, kFullSpeed));
}

// The percentage that stands for a backlight level; false for a level that has none.
bool LevelToPercentage(int level, LONG levels, int& percentage) noexcept
{
    if (levels <= 1 || level > levels)
    {
        return false;
    }
    percentage = static_cast<int>(WrappingProduct(level, 100) / (levels - 1));
    return true;
}

int WriteBacklight(const SettingWriter& writer, StoredVariables& stored, int level) noexcept
{
    int percentage = 0;
    const bool isWritten =
        LevelToPercentage(level, stored.MaxBrightLevel(), percentage) && writer.Write(percentage);
    return isWritten ? percentage : -1;
}

// What follows from a variable that has been stored. The result is that of the whole write.
int ApplySideEffects(const SettingWriter& writer, StoredVariables& stored, VistaStorage storage, int index,
                     bool ac, int value) noexcept
{
    switch (storage)
    {
    case VistaStorage::ThrottleMinimum:
        return writer.WriteProcessor(kThrottleMinimum, value) ? value : -1;
    case VistaStorage::ThrottleMaximum:
        return writer.WriteProcessor(kThrottleMaximum, value) ? value : -1;
    case VistaStorage::Adaptive:
        return WriteAdaptive(writer, ac, value) ? value : -1;
    case VistaStorage::Backlight:
        return WriteBacklight(writer, stored, value);
    case VistaStorage::Speed:
        if (value == 0)
        {
            variables::Write(vista::kBackend, index, ac, VariableOf(kCpuAdaptive), kAdaptivePolicy);
        }
        break;
    case VistaStorage::Setting:
    case VistaStorage::File:
        break;
    }
    return value;
}

} // namespace

bool vista::Accepts(const wchar_t* name, int value) noexcept
{
    // A time may be any number of whole minutes, in seconds, whether the catalogue offers it or not.
    const Variable* const variable = FindVariable(name);
    const bool isTime =
        variable != nullptr && variable->vista == VistaStorage::Setting && text::Equal(name, variable->name);
    return isTime ? value >= 0 && value % 60 == 0 : catalogue::Offers(name, value);
}

int vista::WriteVariable(int index, bool ac, const NamedVariable& variable, int value) noexcept
{
    SettingWriter writer;
    const Variable& row = variable.row;
    if (!writer.Bind(ac) || !writer.Find(index, row))
    {
        return -1;
    }
    if (row.vista == VistaStorage::Setting)
    {
        return Accepts(variable.name, value) && writer.Write(value) ? 1 : -1;
    }
    StoredVariables stored(index);
    if (!Accepts(variable.name, value))
    {
        return -1;
    }
    stored.WriteValue(row, ac, value);
    return ApplySideEffects(writer, stored, row.vista, index, ac, value);
}
