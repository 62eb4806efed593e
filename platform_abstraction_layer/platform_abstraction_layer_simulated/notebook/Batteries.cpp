// notebook/Batteries.cpp
//
// Batteries in machine.ini, and how they share what the power source says of them all.

#include "notebook/Batteries.h"

#include "notebook/DeviceTree.h"
#include "notebook/HexText.h"
#include "notebook/Machine.h"
#include "notebook/PowerSource.h"

#include <devguid.h>

#include <cstdio>
#include <cstring>

namespace simulated
{

namespace
{

constexpr const char* kInstanceBegin = "ACPI\\PNP0C0A\\";

std::optional<ULONG> Number(const std::string& instanceId, const char* key)
{
    const auto number = ParseNumber(DeviceTree::Value(instanceId, key).value_or(""));
    return number ? std::optional(static_cast<ULONG>(*number)) : std::nullopt;
}

std::string IdOf(unsigned index)
{
    const std::vector<std::string> all = Batteries::All();
    return index < all.size() ? all[index] : std::string();
}

ULONG FullCapacity(const std::string& instanceId, const PowerAnswers& power)
{
    return Number(instanceId, "FullChargedCapacity").value_or(power.battery.MaxCapacity);
}

ULONG PowerState(const PowerAnswers& power)
{
    ULONG state = power.battery.AcOnLine ? BATTERY_POWER_ON_LINE : 0;
    state |= power.battery.Charging ? BATTERY_CHARGING : 0;
    state |= power.battery.Discharging ? BATTERY_DISCHARGING : 0;
    const bool flagsKnown = power.status.BatteryFlag != BATTERY_FLAG_UNKNOWN;
    return state | (flagsKnown && (power.status.BatteryFlag & BATTERY_FLAG_CRITICAL) ? BATTERY_CRITICAL : 0);
}

// This battery's part of a figure that the power source gives for all.
ULONG ShareOf(ULONG whole, const std::string& instanceId, const PowerAnswers& power)
{
    ULONGLONG all = 0;
    for (const std::string& id : Batteries::All())
    {
        all += Batteries::Tag(id) == BATTERY_TAG_INVALID ? 0 : FullCapacity(id, power);
    }
    return all == 0 ? 0 : static_cast<ULONG>(ULONGLONG{whole} * FullCapacity(instanceId, power) / all);
}

LONG RateOf(const std::string& instanceId, const PowerAnswers& power)
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

std::vector<std::string> Batteries::All()
{
    return DeviceTree::WithInterface(GUID_DEVICE_BATTERY);
}

unsigned Batteries::Add()
{
    unsigned unit = 0;
    while (DeviceTree::Find(kInstanceBegin + std::to_string(unit)))
    {
        ++unit;
    }
    DeviceTree::Description slot = {kInstanceBegin + std::to_string(unit), GUID_DEVCLASS_BATTERY,
                                    "Microsoft ACPI-Compliant Control Method Battery"};
    slot.interfaceClass = GUID_DEVICE_BATTERY;
    slot.values = {
        {"Tag", "1"},
        {"Capabilities", "0x80000000"},
        {"Technology", "1"},
        {"Chemistry", "LION"},
        {"DesignedCapacity", "57720"},
        {"DefaultAlert1", "2886"},
        {"DefaultAlert2", "5772"},
        {"CriticalBias", "0"},
        {"CycleCount", "41"},
        {"Voltage", "11842"},
        {"Temperature", "2982"},
        {"ManufactureDate", "2008-03-17"},
        {"DeviceName", "DS-4400"},
        {"ManufactureName", "Kelvo"},
        {"SerialNumber", "01207"},
        {"UniqueID", "01207KelvoDS-4400-" + std::to_string(unit)},
    };
    DeviceTree::Add(slot);
    return static_cast<unsigned>(All().size()) - 1;
}

void Batteries::Remove(unsigned index)
{
    DeviceTree::Remove(IdOf(index));
}

void Batteries::Eject(unsigned index)
{
    const std::string id = IdOf(index);
    DeviceTree::SetValue(id, "LastTag", std::to_string(Number(id, "Tag").value_or(0)));
    DeviceTree::SetValue(id, "Tag", "0");
}

void Batteries::Insert(unsigned index)
{
    const std::string id = IdOf(index);
    const ULONG last = std::max(Number(id, "Tag").value_or(0), Number(id, "LastTag").value_or(0));
    DeviceTree::SetValue(id, "Tag", std::to_string(last + 1));
}

void Batteries::RefuseOpening(unsigned index, DWORD error)
{
    SetValue(index, "OpenError", std::to_string(error));
}

void Batteries::SetStatus(unsigned index, const std::optional<BATTERY_STATUS>& status)
{
    if (!status)
    {
        for (const char* key : {"PowerState", "Capacity", "Rate"})
        {
            Machine::Remove("Device " + IdOf(index), key);
        }
        return;
    }
    Machine::Write("Device " + IdOf(index), {{"PowerState", ToHex(status->PowerState, 8)},
                                             {"Capacity", std::to_string(status->Capacity)},
                                             {"Voltage", std::to_string(status->Voltage)},
                                             {"Rate", ToHex(static_cast<ULONG>(status->Rate), 8)}});
}

void Batteries::SetValue(unsigned index, const std::string& key, const std::string& value)
{
    DeviceTree::SetValue(IdOf(index), key, value);
}

DWORD Batteries::OpenError(const std::string& instanceId)
{
    return Number(instanceId, "OpenError").value_or(ERROR_SUCCESS);
}

ULONG Batteries::Tag(const std::string& instanceId)
{
    const bool anyBattery = PowerSource::Get().battery.BatteryPresent != 0;
    return anyBattery ? Number(instanceId, "Tag").value_or(BATTERY_TAG_INVALID) : BATTERY_TAG_INVALID;
}

BATTERY_INFORMATION Batteries::Information(const std::string& instanceId)
{
    const auto number = [&](const char* key) { return Number(instanceId, key).value_or(0); };
    BATTERY_INFORMATION information = {};
    information.Capabilities = number("Capabilities");
    information.Technology = static_cast<UCHAR>(number("Technology"));
    const std::string chemistry = Text(instanceId, "Chemistry").value_or("");
    std::memcpy(information.Chemistry, chemistry.data(),
                std::min(chemistry.size(), sizeof information.Chemistry));
    information.DesignedCapacity = number("DesignedCapacity");
    information.FullChargedCapacity = FullCapacity(instanceId, PowerSource::Get());
    information.DefaultAlert1 = number("DefaultAlert1");
    information.DefaultAlert2 = number("DefaultAlert2");
    information.CriticalBias = number("CriticalBias");
    information.CycleCount = number("CycleCount");
    return information;
}

BATTERY_STATUS Batteries::Status(const std::string& instanceId)
{
    const PowerAnswers power = PowerSource::Get();
    const std::optional<ULONG> state = Number(instanceId, "PowerState");
    const std::optional<ULONG> capacity = Number(instanceId, "Capacity");
    const std::optional<ULONG> rate = Number(instanceId, "Rate");
    return {state ? *state : PowerState(power),
            capacity ? *capacity : ShareOf(power.battery.RemainingCapacity, instanceId, power),
            Number(instanceId, "Voltage").value_or(BATTERY_UNKNOWN_VOLTAGE),
            rate ? static_cast<LONG>(*rate) : RateOf(instanceId, power)};
}

std::optional<ULONG> Batteries::Temperature(const std::string& instanceId)
{
    return Number(instanceId, "Temperature");
}

std::optional<BATTERY_MANUFACTURE_DATE> Batteries::ManufactureDate(const std::string& instanceId)
{
    const std::string text = Text(instanceId, "ManufactureDate").value_or("");
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

std::optional<std::string> Batteries::Text(const std::string& instanceId, const std::string& key)
{
    return DeviceTree::Value(instanceId, key);
}

} // namespace simulated
