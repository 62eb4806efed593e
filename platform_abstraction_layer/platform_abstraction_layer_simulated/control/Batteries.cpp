// control/Batteries.cpp
//
// Batteries in machine.ini.

#include "control/Batteries.h"

#include "base/HexText.h"
#include "machine/DeviceTree.h"
#include "machine/Machine.h"

#include <devguid.h>

#include <algorithm>
#include <vector>

namespace simulated
{

namespace
{

constexpr const char* kInstanceBegin = "ACPI\\PNP0C0A\\";

std::vector<std::string> All()
{
    return DeviceTree::WithInterface(GUID_DEVICE_BATTERY);
}

std::string IdOf(unsigned index)
{
    const std::vector<std::string> all = All();
    return index < all.size() ? all[index] : std::string();
}

} // namespace

unsigned Batteries::Count()
{
    return static_cast<unsigned>(All().size());
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
    return Count() - 1;
}

void Batteries::Remove(unsigned index)
{
    DeviceTree::Remove(IdOf(index));
}

void Batteries::Eject(unsigned index)
{
    const std::string id = IdOf(index);
    DeviceTree::SetValue(id, "LastTag", std::to_string(DeviceTree::Number(id, "Tag").value_or(0)));
    DeviceTree::SetValue(id, "Tag", "0");
}

void Batteries::Insert(unsigned index)
{
    const std::string id = IdOf(index);
    const ULONG last =
        std::max(DeviceTree::Number(id, "Tag").value_or(0), DeviceTree::Number(id, "LastTag").value_or(0));
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

} // namespace simulated
