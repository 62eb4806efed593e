// control/PowerSource.cpp
//
// Changes the power source and every value that depends on it.

#include "control/PowerSource.h"

#include "modules/powrprof/PowerStoreDefaults.h"
#include "modules/powrprof/PowerStoreMachine.h"

namespace simulated
{

namespace
{

constexpr DWORD kChargeRate = 24000;
constexpr DWORD kDischargeRate = 16000;
constexpr DWORD kSecondsPerHour = 3600;

// The level flag of a charge, with the thresholds of Windows.
BYTE LevelFlag(DWORD percent) noexcept
{
    constexpr DWORD kHighAbove = 66;
    constexpr DWORD kLowBelow = 33;
    constexpr DWORD kCriticalBelow = 5;
    if (percent > kHighAbove)
    {
        return BATTERY_FLAG_HIGH;
    }
    if (percent < kCriticalBelow)
    {
        return BATTERY_FLAG_CRITICAL;
    }
    return percent < kLowBelow ? BATTERY_FLAG_LOW : 0;
}

DWORD PercentOf(const SYSTEM_BATTERY_STATE& battery) noexcept
{
    if (battery.MaxCapacity == 0)
    {
        return 0;
    }
    const auto percent = static_cast<ULONGLONG>(battery.RemainingCapacity) * 100 / battery.MaxCapacity;
    return percent > 100 ? 100 : static_cast<DWORD>(percent);
}

// The charging state that follows from AC power and charge.
void SettleFlow(SYSTEM_BATTERY_STATE& battery) noexcept
{
    const bool present = battery.BatteryPresent != FALSE;
    const bool mains = battery.AcOnLine != FALSE;
    const bool full = battery.RemainingCapacity >= battery.MaxCapacity;
    battery.Charging = present && mains && !full ? TRUE : FALSE;
    battery.Discharging = present && !mains ? TRUE : FALSE;
    battery.Rate = battery.Charging ? kChargeRate : battery.Discharging ? 0u - kDischargeRate : 0u;
}

// The values that follow from the battery's state.
void SettleStatus(PowerAnswers& answers) noexcept
{
    SYSTEM_BATTERY_STATE& battery = answers.battery;
    const DWORD drain = battery.Discharging ? 0u - battery.Rate : 0u;
    battery.EstimatedTime =
        drain == 0
            ? BATTERY_LIFE_UNKNOWN
            : static_cast<DWORD>(static_cast<ULONGLONG>(battery.RemainingCapacity) * kSecondsPerHour / drain);

    SYSTEM_POWER_STATUS& status = answers.status;
    status.ACLineStatus = battery.AcOnLine ? AC_LINE_ONLINE : AC_LINE_OFFLINE;
    status.BatteryLifeTime = battery.EstimatedTime;
    status.BatteryFullLifeTime = BATTERY_LIFE_UNKNOWN;
    if (!battery.BatteryPresent)
    {
        status.BatteryFlag = BATTERY_FLAG_NO_BATTERY;
        status.BatteryLifePercent = BATTERY_PERCENTAGE_UNKNOWN;
        return;
    }
    const DWORD percent = PercentOf(battery);
    status.BatteryFlag =
        static_cast<BYTE>(LevelFlag(percent) | (battery.Charging ? BATTERY_FLAG_CHARGING : 0));
    status.BatteryLifePercent = static_cast<BYTE>(percent);
}

// Changes the battery's state, updates the rest and stores it.
template <class Change>
bool Update(Change change, bool settleFlow = true)
{
    PowerAnswers answers{};
    if (power_store::ReadMachineAnswers(answers) != ERROR_SUCCESS)
    {
        return false;
    }
    change(answers.battery);
    if (settleFlow)
    {
        SettleFlow(answers.battery);
    }
    SettleStatus(answers);
    return power_store::WriteMachineAnswers(answers) == ERROR_SUCCESS;
}

} // namespace

PowerAnswers PowerSource::Get()
{
    PowerAnswers answers{};
    return power_store::ReadMachineAnswers(answers) == ERROR_SUCCESS ? answers : PowerAnswers{};
}

bool PowerSource::Set(const PowerAnswers& answers)
{
    return power_store::WriteMachineAnswers(answers) == ERROR_SUCCESS;
}

bool PowerSource::SetMains(bool on)
{
    return Update([on](SYSTEM_BATTERY_STATE& battery) { battery.AcOnLine = on; });
}

bool PowerSource::SetCharge(unsigned percent)
{
    return Update(
        [percent](SYSTEM_BATTERY_STATE& battery)
        {
            battery.RemainingCapacity =
                static_cast<DWORD>(static_cast<ULONGLONG>(battery.MaxCapacity) * percent / 100);
        });
}

bool PowerSource::SetRate(DWORD milliwatts)
{
    return Update([milliwatts](SYSTEM_BATTERY_STATE& battery)
                  { battery.Rate = battery.Discharging ? 0u - milliwatts : milliwatts; },
                  false);
}

bool PowerSource::SetCapacity(DWORD full, DWORD remaining)
{
    return Update(
        [full, remaining](SYSTEM_BATTERY_STATE& battery)
        {
            battery.MaxCapacity = full;
            battery.RemainingCapacity = remaining;
        });
}

bool PowerSource::SetBattery(bool present)
{
    return Update(
        [present](SYSTEM_BATTERY_STATE& battery)
        {
            const BOOLEAN mains = battery.AcOnLine;
            battery = present ? power_store::DefaultMachineAnswers().battery : SYSTEM_BATTERY_STATE{};
            battery.AcOnLine = mains;
        });
}

bool PowerSource::AllowHibernate(bool allowed)
{
    PowerAnswers answers{};
    if (power_store::ReadMachineAnswers(answers) != ERROR_SUCCESS)
    {
        return false;
    }
    answers.hibernateAllowed = allowed;
    return Set(answers);
}

} // namespace simulated
