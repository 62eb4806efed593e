// tests/powrprof/PowerSourceTest.cpp
//
// The hands on the power source: one change is seen in every answer. On the simulated notebook alone.

#include "Support.h"

#include "notebook/PowerSource.h"

#include <array>
#include <tuple>

namespace
{

using simulated::PowerAnswers;
using simulated::PowerSource;

constexpr DWORD kDraw = 0u - 16000;

using PowerSourceTest = FreshStore;

TEST_F(PowerSourceTest, TheAnswersFollowEachChange)
{
    // Line, flag, percent, life; present, charging, discharging, left, rate. Each row goes on from the one
    // before.
    using Change = bool (*)();
    const std::tuple<const char*, Change, std::array<DWORD, 9>> rows[] = {
        {"fresh", [] { return true; }, {1, 1, 100, 0xFFFFFFFF, 1, 0, 0, 48000, 0}},
        {"unplugged", PowerSource::Unplug, {0, 1, 100, 10800, 1, 0, 1, 48000, kDraw}},
        {"half empty", [] { return PowerSource::SetCharge(50); }, {0, 0, 50, 5400, 1, 0, 1, 24000, kDraw}},
        {"low", [] { return PowerSource::SetCharge(32); }, {0, 2, 32, 3456, 1, 0, 1, 15360, kDraw}},
        {"critical", [] { return PowerSource::SetCharge(4); }, {0, 4, 4, 432, 1, 0, 1, 1920, kDraw}},
        {"slower", [] { return PowerSource::SetRate(1920); }, {0, 4, 4, 3600, 1, 0, 1, 1920, 0u - 1920}},
        {"plugged in", PowerSource::Plug, {1, 12, 4, 0xFFFFFFFF, 1, 1, 0, 1920, 24000}},
        {"untold rate", [] { return PowerSource::SetRate(0); }, {1, 12, 4, 0xFFFFFFFF, 1, 1, 0, 1920, 0}},
        {"above full",
         [] { return PowerSource::SetCapacity(1000, 1500); },
         {1, 1, 100, 0xFFFFFFFF, 1, 0, 0, 1500, 0}},
        {"no capacity", [] { return PowerSource::SetCapacity(0, 0); }, {1, 4, 0, 0xFFFFFFFF, 1, 0, 0, 0, 0}},
        {"taken out", PowerSource::RemoveBattery, {1, 128, 255, 0xFFFFFFFF, 0, 0, 0, 0, 0}},
        {"on nothing", PowerSource::Unplug, {0, 128, 255, 0xFFFFFFFF, 0, 0, 0, 0, 0}},
        {"put in", PowerSource::InsertBattery, {0, 1, 100, 10800, 1, 0, 1, 48000, kDraw}},
    };
    for (const auto& [name, change, expected] : rows)
    {
        SCOPED_TRACE(name);
        ASSERT_TRUE(change());
        SYSTEM_POWER_STATUS status{};
        ASSERT_TRUE(GetSystemPowerStatus(&status));
        SYSTEM_BATTERY_STATE battery{};
        ASSERT_EQ(0, CallNtPowerInformation(SystemBatteryState, nullptr, 0, &battery, sizeof battery));
        const std::array<DWORD, 9> seen = {
            status.ACLineStatus,    status.BatteryFlag,        status.BatteryLifePercent,
            status.BatteryLifeTime, battery.BatteryPresent,    battery.Charging,
            battery.Discharging,    battery.RemainingCapacity, battery.Rate};
        EXPECT_EQ(expected, seen);
        EXPECT_EQ(status.ACLineStatus, battery.AcOnLine);
        EXPECT_EQ(status.BatteryLifeTime, battery.EstimatedTime);
    }
    EXPECT_FALSE(PowerSource::SetCharge(101));
}

TEST_F(PowerSourceTest, AnyAnswerCanBeMade)
{
    PowerAnswers answers = PowerSource::Get();
    answers.status = {AC_LINE_UNKNOWN, BATTERY_FLAG_UNKNOWN, 255, 0, 1, 2};
    answers.battery.Rate = 0x80000000;
    answers.hibernateAllowed = false;
    ASSERT_TRUE(PowerSource::Set(answers));
    SYSTEM_POWER_STATUS status{};
    ASSERT_TRUE(GetSystemPowerStatus(&status));
    EXPECT_EQ(BytesOf(answers.status), BytesOf(status));
    EXPECT_EQ(BytesOf(answers.battery), BytesOf(PowerSource::Get().battery));
    EXPECT_FALSE(IsPwrHibernateAllowed());
    ASSERT_TRUE(PowerSource::AllowHibernate(true));
    EXPECT_TRUE(IsPwrHibernateAllowed());
    EXPECT_FALSE(GetSystemPowerStatus(nullptr));
}

} // namespace
