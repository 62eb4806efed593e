// scheme/VariableTable.cpp
//
// The table of the variables.

#include "scheme/VariableTable.h"

#include "foundation/Text.h"

#include <algorithm>
#include <iterator>

namespace
{

// The adaptive policy number, and full speed in percent, on both power sources.
constexpr LONG kBothAdaptive = PackHalves(3, 3);
constexpr LONG kBothFullSpeed = PackHalves(100, 100);

// clang-format off
constexpr Variable kVariables[] = {
    {L"MonitorOffTimeOut", XpPlace::Timeout, VistaPlace::Setting, &PWRVALUES::monitorOffTimeOut, LiveDevice::None, kNoValue, &PolicyFields::videoTimeout},
    {L"DiskOffTimeOut", XpPlace::Timeout, VistaPlace::Setting, nullptr, LiveDevice::None, kNoValue, &PolicyFields::spindownTimeout},
    {L"StandbyTimeOut", XpPlace::Standby, VistaPlace::Setting, &PWRVALUES::standbyTimeOut},
    {L"HibernateTimeOut", XpPlace::Hibernate, VistaPlace::Setting, nullptr},
    {L"CpuSpeedMin", XpPlace::Nowhere, VistaPlace::ThrottleMinimum, nullptr},
    {L"CpuSpeedMax", XpPlace::Nowhere, VistaPlace::ThrottleMaximum, nullptr},
    {L"CpuAdaptive", XpPlace::ThrottlePolicy, VistaPlace::Adaptive, nullptr, LiveDevice::None, kBothAdaptive},
    {L"CpuSpeed", XpPlace::Speed, VistaPlace::Speed, &PWRVALUES::cpuSpeed, LiveDevice::None, kBothFullSpeed},
    {L"BacklightLevel", XpPlace::Packed, VistaPlace::Backlight, &PWRVALUES::backlightLevel},
    {L"BTStatus", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::Bluetooth},
    {L"LUMS", XpPlace::Whole, VistaPlace::Whole, &PWRVALUES::lums},
    {L"LanSpeed", XpPlace::Packed, VistaPlace::Packed, &PWRVALUES::lanSpeed},
    {L"LANStatus", XpPlace::Packed, VistaPlace::Packed, &PWRVALUES::lanStatus},
    {L"Display", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"LinkStepOption", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"Wifi", XpPlace::Packed, VistaPlace::Packed, &PWRVALUES::wifi, LiveDevice::Wifi},
    {L"3G", XpPlace::Packed, VistaPlace::Packed, &PWRVALUES::threeG},
    {L"HD Audio", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"Modem", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"DVD Drive", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"Serial ATA1", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"Serial ATA2", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"SM Bus", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"PCIE1", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"PCIE2", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"PCIE3", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"PCIE4", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"PCIE5", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"PCIE6", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"Thermal Throttle", XpPlace::Packed, VistaPlace::Packed, nullptr, LiveDevice::ChipsetFunction},
    {L"USBPort 0", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 1", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 2", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 3", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 4", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 5", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 6", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 7", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 8", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 9", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 10", XpPlace::Packed, VistaPlace::Packed, nullptr},
    {L"USBPort 11", XpPlace::Packed, VistaPlace::Packed, nullptr},
};
// clang-format on
static_assert(std::size(kVariables) == kVariableCount);
static_assert(kVariables[kStandbyTimeOut].member == &PWRVALUES::standbyTimeOut &&
              kVariables[kCpuSpeed].member == &PWRVALUES::cpuSpeed &&
              kVariables[kBacklightLevel].member == &PWRVALUES::backlightLevel &&
              kVariables[kLums].member == &PWRVALUES::lums &&
              kVariables[kLanSpeed].member == &PWRVALUES::lanSpeed &&
              kVariables[kLanStatus].member == &PWRVALUES::lanStatus &&
              kVariables[kWifi].member == &PWRVALUES::wifi &&
              kVariables[kThreeG].member == &PWRVALUES::threeG);

} // namespace

const Variable& VariableOf(int number) noexcept
{
    return kVariables[number];
}

int FindVariable(const wchar_t* name) noexcept
{
    if (name == nullptr)
    {
        return -1;
    }
    const auto* found =
        std::find_if(std::begin(kVariables), std::end(kVariables),
                     [name](const Variable& row) { return text::EqualIgnoringCase(row.name, name); });
    return found == std::end(kVariables) ? -1 : static_cast<int>(found - kVariables);
}

bool HasSetting(const Variable& variable) noexcept
{
    switch (variable.vista)
    {
    case VistaPlace::Speed:
    case VistaPlace::Packed:
    case VistaPlace::Whole:
        return false;
    default:
        return true;
    }
}
