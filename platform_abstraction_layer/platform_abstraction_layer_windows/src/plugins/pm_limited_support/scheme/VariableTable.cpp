// scheme/VariableTable.cpp
//
// The table of the variables.

#include "scheme/VariableTable.h"

#include "foundation/Text.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr LiveDevice kChipset = LiveDevice::ChipsetFunction;

// The adaptive policy number, and full speed in percent, on both power sources.
constexpr LONG kBothAdaptive = PackValues(3, 3);
constexpr LONG kBothFullSpeed = PackValues(100, 100);

// clang-format off
constexpr Variable kVariables[] = {
    {.name = L"MonitorOffTimeOut", .xp = XpStorage::Timeout, .vista = VistaStorage::Setting, .member = &PWRVALUES::monitorOffTimeOut, .timeout = &PolicyFields::videoTimeout},
    {.name = L"DiskOffTimeOut", .xp = XpStorage::Timeout, .vista = VistaStorage::Setting, .timeout = &PolicyFields::spindownTimeout},
    {.name = L"StandbyTimeOut", .xp = XpStorage::Standby, .vista = VistaStorage::Setting, .member = &PWRVALUES::standbyTimeOut},
    {.name = L"HibernateTimeOut", .xp = XpStorage::Hibernate, .vista = VistaStorage::Setting},
    {.name = L"CpuSpeedMin", .xp = XpStorage::Unsupported, .vista = VistaStorage::ThrottleMinimum},
    {.name = L"CpuSpeedMax", .xp = XpStorage::Unsupported, .vista = VistaStorage::ThrottleMaximum},
    {.name = L"CpuAdaptive", .xp = XpStorage::ThrottlePolicy, .vista = VistaStorage::Adaptive, .vistaDefault = kBothAdaptive},
    {.name = L"CpuSpeed", .xp = XpStorage::Speed, .vista = VistaStorage::Speed, .vistaDefault = kBothFullSpeed, .member = &PWRVALUES::cpuSpeed},
    {.name = L"BacklightLevel", .vista = VistaStorage::Backlight, .member = &PWRVALUES::backlightLevel},
    {.name = L"BTStatus", .device = LiveDevice::Bluetooth},
    {.name = L"LUMS", .isPacked = false, .member = &PWRVALUES::lums},
    {.name = L"LanSpeed", .member = &PWRVALUES::lanSpeed},
    {.name = L"LANStatus", .member = &PWRVALUES::lanStatus},
    {.name = L"Display"},
    {.name = L"LinkStepOption"},
    {.name = L"Wifi", .device = LiveDevice::Wifi, .member = &PWRVALUES::wifi},
    {.name = L"3G", .member = &PWRVALUES::threeG},
    {.name = L"HD Audio", .device = kChipset},
    {.name = L"Modem", .device = kChipset},
    {.name = L"DVD Drive", .device = kChipset},
    {.name = L"Serial ATA1", .device = kChipset},
    {.name = L"Serial ATA2", .device = kChipset},
    {.name = L"SM Bus", .device = kChipset},
    {.name = L"PCIE1", .device = kChipset},
    {.name = L"PCIE2", .device = kChipset},
    {.name = L"PCIE3", .device = kChipset},
    {.name = L"PCIE4", .device = kChipset},
    {.name = L"PCIE5", .device = kChipset},
    {.name = L"PCIE6", .device = kChipset},
    {.name = L"Thermal Throttle", .device = kChipset},
    {.name = L"USBPort 0", .hasDisplayName = false},
    {.name = L"USBPort 1", .hasDisplayName = false},
    {.name = L"USBPort 2", .hasDisplayName = false},
    {.name = L"USBPort 3", .hasDisplayName = false},
    {.name = L"USBPort 4", .hasDisplayName = false},
    {.name = L"USBPort 5", .hasDisplayName = false},
    {.name = L"USBPort 6", .hasDisplayName = false},
    {.name = L"USBPort 7", .hasDisplayName = false},
    {.name = L"USBPort 8", .hasDisplayName = false},
    {.name = L"USBPort 9", .hasDisplayName = false},
    {.name = L"USBPort 10", .hasDisplayName = false},
    {.name = L"USBPort 11", .hasDisplayName = false},
};
// clang-format on
static_assert(std::size(kVariables) == kVariableCount);
static_assert(kVariables[kDiskOffTimeOut].timeout == &PolicyFields::spindownTimeout &&
              kVariables[kStandbyTimeOut].xp == XpStorage::Standby &&
              kVariables[kHibernateTimeOut].xp == XpStorage::Hibernate &&
              kVariables[kCpuSpeedMin].vista == VistaStorage::ThrottleMinimum &&
              kVariables[kCpuSpeedMax].vista == VistaStorage::ThrottleMaximum &&
              kVariables[kCpuAdaptive].vista == VistaStorage::Adaptive &&
              kVariables[kCpuSpeed].vista == VistaStorage::Speed &&
              kVariables[kBacklightLevel].vista == VistaStorage::Backlight && !kVariables[kLums].isPacked &&
              kVariables[kLanSpeed].member == &PWRVALUES::lanSpeed &&
              kVariables[kLanStatus].member == &PWRVALUES::lanStatus &&
              kVariables[kWifi].member == &PWRVALUES::wifi &&
              kVariables[kThreeG].member == &PWRVALUES::threeG);

} // namespace

const Variable& VariableOf(int number) noexcept
{
    return kVariables[number];
}

int NumberOf(const Variable& variable) noexcept
{
    return static_cast<int>(&variable - kVariables);
}

const Variable* FindVariable(const wchar_t* name) noexcept
{
    if (name == nullptr)
    {
        return nullptr;
    }
    const auto* found =
        std::find_if(std::begin(kVariables), std::end(kVariables),
                     [name](const Variable& row) { return text::EqualIgnoringCase(row.name, name); });
    return found == std::end(kVariables) ? nullptr : found;
}

bool HasSetting(const Variable& variable) noexcept
{
    return variable.vista != VistaStorage::File && variable.vista != VistaStorage::Speed;
}
