// control/PowerSource.h
//
// Lets tests and tools change the notebook's power: AC power, charge, hibernation. The operations keep what
// the different functions report consistent; `Set` allows any value, even one that no real machine has.
#pragma once

#include "modules/powrprof/PowerStoreAnswers.h"

namespace simulated
{

/// Everything that the machine reports about its power.
using PowerAnswers = power_store::MachineAnswers;

class PowerSource
{
public:
    /// The present values. All zeros when the machine has none.
    static PowerAnswers Get();

    /// Replaces all values; false when they can't be stored.
    [[nodiscard]] static bool Set(const PowerAnswers& answers);

    /// AC power on or off. A battery that isn't full charges on AC power, and discharges without.
    [[nodiscard]] static bool SetMains(bool on);

    /// The battery's charge in percent, at most 100.
    [[nodiscard]] static bool SetCharge(unsigned percent);

    /// The rate at which the battery charges or discharges, in mW. 0 is reported by a
    /// battery that doesn't know.
    [[nodiscard]] static bool SetRate(DWORD milliwatts);

    /// The full capacity and the remaining one, in mWh.
    [[nodiscard]] static bool SetCapacity(DWORD full, DWORD remaining);

    /// Inserts a full battery, or removes it.
    [[nodiscard]] static bool SetBattery(bool present);

    [[nodiscard]] static bool AllowHibernate(bool allowed);
};

} // namespace simulated
