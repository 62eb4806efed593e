// control/PowerSource.h
//
// The hands of tests and tools on the notebook's power: mains, charge, hibernation. The operations keep what
// the different functions answer in agreement; `Set` makes any answer, also one that no real machine gives.
#pragma once

#include "modules/powrprof/PowerStoreAnswers.h"

namespace simulated
{

/// Everything that the machine answers about its power.
using PowerAnswers = power_store::MachineAnswers;

class PowerSource
{
public:
    /// The present answers. All zeros when the machine has none.
    static PowerAnswers Get();

    /// Replaces all answers; false when they can't be stored.
    [[nodiscard]] static bool Set(const PowerAnswers& answers);

    /// Mains on or off. With a battery that isn't full the charge begins, without mains the discharge.
    [[nodiscard]] static bool SetMains(bool on);

    /// The battery's charge in percent, at most 100.
    [[nodiscard]] static bool SetCharge(unsigned percent);

    /// How fast the battery charges or discharges, in mW, whichever is under way. 0 is the answer of a
    /// battery that doesn't tell.
    [[nodiscard]] static bool SetRate(DWORD milliwatts);

    /// The full capacity and the remaining one, in mWh.
    [[nodiscard]] static bool SetCapacity(DWORD full, DWORD remaining);

    /// Puts a full battery in, or takes it out.
    [[nodiscard]] static bool SetBattery(bool present);

    [[nodiscard]] static bool AllowHibernate(bool allowed);
};

} // namespace simulated
