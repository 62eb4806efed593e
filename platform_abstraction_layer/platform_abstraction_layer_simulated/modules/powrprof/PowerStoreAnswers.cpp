// modules/powrprof/PowerStoreAnswers.cpp
//
// The table of the values that the machine reports.

#include "PowerStoreAnswers.h"

#include <cstring>

namespace power_store
{

namespace
{

constexpr std::size_t kStatus = offsetof(MachineAnswers, status);
constexpr std::size_t kBattery = offsetof(MachineAnswers, battery);

constexpr MachineAnswer kAnswers[] = {
    {AnswerGroup::Status, L"ACLineStatus", kStatus + offsetof(SYSTEM_POWER_STATUS, ACLineStatus), 1},
    {AnswerGroup::Status, L"BatteryFlag", kStatus + offsetof(SYSTEM_POWER_STATUS, BatteryFlag), 1},
    {AnswerGroup::Status, L"BatteryLifePercent", kStatus + offsetof(SYSTEM_POWER_STATUS, BatteryLifePercent),
     1},
    {AnswerGroup::Status, L"BatteryLifeTime", kStatus + offsetof(SYSTEM_POWER_STATUS, BatteryLifeTime), 4},
    {AnswerGroup::Status, L"BatteryFullLifeTime",
     kStatus + offsetof(SYSTEM_POWER_STATUS, BatteryFullLifeTime), 4},
    {AnswerGroup::Battery, L"AcOnLine", kBattery + offsetof(SYSTEM_BATTERY_STATE, AcOnLine), 1},
    {AnswerGroup::Battery, L"BatteryPresent", kBattery + offsetof(SYSTEM_BATTERY_STATE, BatteryPresent), 1},
    {AnswerGroup::Battery, L"Charging", kBattery + offsetof(SYSTEM_BATTERY_STATE, Charging), 1},
    {AnswerGroup::Battery, L"Discharging", kBattery + offsetof(SYSTEM_BATTERY_STATE, Discharging), 1},
    {AnswerGroup::Battery, L"MaxCapacity", kBattery + offsetof(SYSTEM_BATTERY_STATE, MaxCapacity), 4},
    {AnswerGroup::Battery, L"RemainingCapacity", kBattery + offsetof(SYSTEM_BATTERY_STATE, RemainingCapacity),
     4},
    {AnswerGroup::Battery, L"Rate", kBattery + offsetof(SYSTEM_BATTERY_STATE, Rate), 4},
    {AnswerGroup::Battery, L"EstimatedTime", kBattery + offsetof(SYSTEM_BATTERY_STATE, EstimatedTime), 4},
    {AnswerGroup::Battery, L"DefaultAlert1", kBattery + offsetof(SYSTEM_BATTERY_STATE, DefaultAlert1), 4},
    {AnswerGroup::Battery, L"DefaultAlert2", kBattery + offsetof(SYSTEM_BATTERY_STATE, DefaultAlert2), 4},
    {AnswerGroup::Hibernation, L"HibernateAllowed", offsetof(MachineAnswers, hibernateAllowed), 1},
};

} // namespace

std::span<const MachineAnswer> MachineAnswerTable() noexcept
{
    return kAnswers;
}

DWORD NumberOf(const MachineAnswers& answers, const MachineAnswer& answer) noexcept
{
    DWORD number = 0;
    std::memcpy(&number, reinterpret_cast<const BYTE*>(&answers) + answer.offset, answer.size);
    return number;
}

} // namespace power_store
