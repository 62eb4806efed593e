// control/PowerSource.h
//
// The hands of tests and tools on the notebook's power: mains, charge, hibernation. The operations keep what
// the different functions answer in agreement; `Set` makes any answer, also one that no real machine gives.
#pragma once

#include <windows.h>

namespace simulated
{

/// Everything that the machine answers about its power.
struct PowerAnswers
{
    SYSTEM_POWER_STATUS status;
    SYSTEM_BATTERY_STATE battery;
    bool hibernateAllowed;
};

class PowerSource
{
public:
    /// The present answers. All zeros when the machine has none.
    static PowerAnswers Get();

    /// Replaces all answers; false when they can't be stored.
    [[nodiscard]] static bool Set(const PowerAnswers& answers);

    /// Mains on or off. With a battery that isn't full the charge begins, without mains the discharge.
    [[nodiscard]] static bool Plug();
    [[nodiscard]] static bool Unplug();

    /// The battery's charge in percent, 0 to 100.
    [[nodiscard]] static bool SetCharge(unsigned percent);

    /// How fast the battery charges or discharges, in mW, whichever is under way. 0 is the answer of a
    /// battery that doesn't tell.
    [[nodiscard]] static bool SetRate(DWORD milliwatts);

    /// The full capacity and the remaining one, in mWh.
    [[nodiscard]] static bool SetCapacity(DWORD full, DWORD remaining);

    /// Takes the battery out, or puts a full one in.
    [[nodiscard]] static bool RemoveBattery();
    [[nodiscard]] static bool InsertBattery();

    [[nodiscard]] static bool AllowHibernate(bool allowed);
};

} // namespace simulated
