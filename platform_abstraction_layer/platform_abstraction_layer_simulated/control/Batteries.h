// control/Batteries.h
//
// The batteries as their class driver sees them. A battery is a device of the tree (DeviceTree.h) that
// exposes the battery interface; its section in machine.ini has these lines besides:
//
//   Tag=1                 changes with every battery that is put in; 0: there is none in the slot
//   OpenError=0           opening the battery is refused with this error
//   Chemistry=LION, Technology=1, Capabilities=0x80000000, DesignedCapacity, FullChargedCapacity,
//   DefaultAlert1, DefaultAlert2, CriticalBias, CycleCount, Voltage: numbers in mWh and mV
//   Temperature=2982      in tenths of a kelvin
//   ManufactureDate=2008-03-17, DeviceName, ManufactureName, UniqueID, SerialNumber
//   PowerState, Capacity, Rate: what the battery reports whatever the power source does
//
// A line that is missing is unknown to the battery. Without the last three the battery follows the
// power source (PowerSource.h), so that AC power and charge are changed in one place; several batteries share
// the charge by their full capacities. A missing FullChargedCapacity is that of the power source.
#pragma once

#include <poclass.h>

#include <optional>
#include <string>

namespace simulated
{

/// `index` is a place in the order in which the batteries are found.
class Batteries
{
public:
    static unsigned Count();

    /// Adds a battery and returns its index.
    static unsigned Add();

    /// Removes battery and slot.
    static void Remove(unsigned index);

    /// Empties the slot, or inserts another battery. The old tag is stale from then on.
    static void Eject(unsigned index);
    static void Insert(unsigned index);

    static void RefuseOpening(unsigned index, DWORD error);

    /// What the battery reports from now on; nothing lets it follow the power source again.
    static void SetStatus(unsigned index, const std::optional<BATTERY_STATUS>& status);

    /// Sets one of the lines described above.
    static void SetValue(unsigned index, const std::string& key, const std::string& value);
};

} // namespace simulated
