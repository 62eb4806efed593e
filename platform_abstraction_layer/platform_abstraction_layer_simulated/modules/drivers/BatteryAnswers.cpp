// modules/drivers/BatteryAnswers.cpp
//
// How the batteries share what the power manager says of them all.

#include "modules/drivers/BatteryAnswers.h"

#include "machine/DeviceTree.h"
#include "modules/powrprof/PowerStoreMachine.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace simulated
{

namespace
{

using power_store::MachineAnswers;

// All zeros when the machine has none.
MachineAnswers Power()
{
    MachineAnswers answers{};
    return power_store::ReadMachineAnswers(answers) == ERROR_SUCCESS ? answers : MachineAnswers{};
}

ULONG FullCapacity(const std::string& instanceId, const MachineAnswers& power)
{
    return DeviceTree::Number(instanceId, "FullChargedCapacity").value_or(power.battery.MaxCapacity);
}

ULONG PowerState(const MachineAnswers& power)
{
    ULONG state = power.battery.AcOnLine ? BATTERY_POWER_ON_LINE : 0;
    state |= power.battery.Charging ? BATTERY_CHARGING : 0;
    state |= power.battery.Discharging ? BATTERY_DISCHARGING : 0;
    const bool flagsKnown = power.status.BatteryFlag != BATTERY_FLAG_UNKNOWN;
    return state | (flagsKnown && (power.status.BatteryFlag & BATTERY_FLAG_CRITICAL) ? BATTERY_CRITICAL : 0);
}

// This battery's part of a figure that the power source gives for all.
ULONG ShareOf(ULONG whole, const std::string& instanceId, const MachineAnswers& power)
{
    ULONGLONG all = 0;
    for (const std::string& id : batteries::All())
    {
        all += batteries::Tag(id) == BATTERY_TAG_INVALID ? 0 : FullCapacity(id, power);
    }
    return all == 0 ? 0 : static_cast<ULONG>(ULONGLONG{whole} * FullCapacity(instanceId, power) / all);
}

LONG RateOf(const std::string& instanceId, const MachineAnswers& power)
{
    if (power.battery.Rate == BATTERY_UNKNOWN_RATE)
    {
        return static_cast<LONG>(BATTERY_UNKNOWN_RATE);
    }
    const auto rate = static_cast<LONG>(power.battery.Rate);
    const ULONG size = ShareOf(static_cast<ULONG>(rate < 0 ? -rate : rate), instanceId, power);
    return power.battery.Discharging ? -static_cast<LONG>(size) : static_cast<LONG>(size);
}

} // namespace

std::vector<std::string> batteries::All()
{
    return DeviceTree::WithInterface(GUID_DEVICE_BATTERY);
}

DWORD batteries::OpenError(const std::string& instanceId)
{
    return DeviceTree::Number(instanceId, "OpenError").value_or(ERROR_SUCCESS);
}

ULONG batteries::Tag(const std::string& instanceId)
{
    const bool anyBattery = Power().battery.BatteryPresent != 0;
    return anyBattery ? DeviceTree::Number(instanceId, "Tag").value_or(BATTERY_TAG_INVALID)
                      : BATTERY_TAG_INVALID;
}

BATTERY_INFORMATION batteries::Information(const std::string& instanceId)
{
    const auto number = [&](const char* key) { return DeviceTree::Number(instanceId, key).value_or(0); };
    BATTERY_INFORMATION information = {};
    information.Capabilities = number("Capabilities");
    information.Technology = static_cast<UCHAR>(number("Technology"));
    const std::string chemistry = DeviceTree::Value(instanceId, "Chemistry").value_or("");
    std::memcpy(information.Chemistry, chemistry.data(),
                std::min(chemistry.size(), sizeof information.Chemistry));
    information.DesignedCapacity = number("DesignedCapacity");
    information.FullChargedCapacity = FullCapacity(instanceId, Power());
    information.DefaultAlert1 = number("DefaultAlert1");
    information.DefaultAlert2 = number("DefaultAlert2");
    information.CriticalBias = number("CriticalBias");
    information.CycleCount = number("CycleCount");
    return information;
}

BATTERY_STATUS batteries::Status(const std::string& instanceId)
{
    const MachineAnswers power = Power();
    const std::optional<ULONG> state = DeviceTree::Number(instanceId, "PowerState");
    const std::optional<ULONG> capacity = DeviceTree::Number(instanceId, "Capacity");
    const std::optional<ULONG> rate = DeviceTree::Number(instanceId, "Rate");
    return {state ? *state : PowerState(power),
            capacity ? *capacity : ShareOf(power.battery.RemainingCapacity, instanceId, power),
            DeviceTree::Number(instanceId, "Voltage").value_or(BATTERY_UNKNOWN_VOLTAGE),
            rate ? static_cast<LONG>(*rate) : RateOf(instanceId, power)};
}

std::optional<ULONG> batteries::Temperature(const std::string& instanceId)
{
    return DeviceTree::Number(instanceId, "Temperature");
}

std::optional<BATTERY_MANUFACTURE_DATE> batteries::ManufactureDate(const std::string& instanceId)
{
    const std::string text = DeviceTree::Value(instanceId, "ManufactureDate").value_or("");
    unsigned year = 0;
    unsigned month = 0;
    unsigned day = 0;
    if (std::sscanf(text.c_str(), "%u-%u-%u", &year, &month, &day) != 3)
    {
        return std::nullopt;
    }
    return BATTERY_MANUFACTURE_DATE{static_cast<UCHAR>(day), static_cast<UCHAR>(month),
                                    static_cast<USHORT>(year)};
}

} // namespace simulated
