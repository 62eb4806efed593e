// agents/BatAgentTest.cpp
//
// Which batteries are opened, and the times computed from the system's state. The queries to a battery are
// in the golden file.

#include "agents/AgentsTest.h"

#include "agents/BatAgent.h"
#include "base/Clock.h"
#include "control/Batteries.h"
#include "control/PowerSource.h"
#include "foundation/Results.h"

using namespace simulated;

namespace
{

using BatAgentTest = AgentsTest;

TEST_F(BatAgentTest, AtMostFiveBatteriesAreOpenedAndAllAreClosed)
{
    CBatAgent agent;
    BATTERY_INFORMATION info = {};
    for (const unsigned present : {6U, 5U, 0U})
    {
        while (Batteries::Count() != present)
        {
            Batteries::Count() < present ? void(Batteries::Add()) : Batteries::Remove(0);
        }
        Trace::Clear();
        EXPECT_EQ(kSucceeded, agent.Setup());
        const unsigned expected = std::min(present, 5U);
        EXPECT_EQ(expected, agent.GetBatteryCount());
        EXPECT_EQ(expected, Calls("CreateFileW"));
        for (const auto& [index, isThere] :
             {std::pair{-1, false}, {0, expected > 0}, {4, expected > 4}, {5, false}})
        {
            EXPECT_EQ(isThere ? kSucceeded : kBadArgument, agent.GetInfo(index, info)) << index;
        }
        EXPECT_EQ(kSucceeded, agent.Cleanup());
        EXPECT_EQ(expected, agent.GetBatteryCount()) << "the count stays";
        EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
    }
}

TEST_F(BatAgentTest, QueriesGoByTheTagAndTheRoom)
{
    Batteries::SetValue(0, "UniqueID", "U-1");
    CBatAgent agent;
    ASSERT_EQ(kSucceeded, agent.Setup());
    EXPECT_THAT(Trace::CallsOf("CreateFileW").front().arguments,
                testing::EndsWith("\", 0xC0000000, 3, 3, 0, null"));
    BATTERY_INFORMATION info = {};
    wchar_t text[16] = {};
    EXPECT_EQ(kBadArgument, agent.GetUniqueID(0, nullptr, sizeof text));
    EXPECT_EQ(kBadArgument, agent.GetUniqueID(0, text, -1));
    EXPECT_EQ(kGeneralFailure, agent.GetUniqueID(0, text, 0));
    EXPECT_EQ(kSucceeded, agent.GetUniqueID(0, text, 8));

    // Another battery has another tag, which only the next set-up learns; an empty slot is waited for.
    Batteries::Eject(0);
    BATTERY_STATUS status = {};
    const std::uint64_t before = Clock::Now();
    EXPECT_EQ(kGeneralFailure, agent.GetStatus(0, status));
    EXPECT_LT(Clock::Now() - before, 1000U);
    EXPECT_EQ(kSucceeded, CBatAgent().Setup());
    EXPECT_EQ(5U, (Clock::Now() - before + 500) / 1000);
    Batteries::Insert(0);
    EXPECT_EQ(kGeneralFailure, agent.GetInfo(0, info));
    EXPECT_EQ(kSucceeded, agent.Setup());
    EXPECT_EQ(kSucceeded, agent.GetInfo(0, info));
    EXPECT_EQ(kSucceeded, agent.Reset());
}

TEST_F(BatAgentTest, TimesFollowFromTheSystemState)
{
    constexpr ULONG kUnknown = 0xFFFFFFFF;
    constexpr DWORD kEstimate = 5400;
    constexpr struct
    {
        BOOLEAN charging, discharging;
        DWORD maxCapacity, remaining, rate;
        ULONG complete, usage; ///< seconds
        float fraction;
        ULONG capacity;
    } kCases[] = {
        {1, 0, 50000, 20000, 30000, 3600, 2400, 0.4F, 20000},
        {1, 1, 50000, 49999, 7, 514, 25713771, 0.99998F, 49999},
        {1, 0, 50000, 20000, 0, kUnknown, kUnknown, 0.4F, 20000},
        {0, 1, 50000, 20000, 0, kEstimate, kEstimate, 0.4F, 20000},
        {0, 0, 50000, 60000, 9, kUnknown, kUnknown, 1.2F, 60000},
        {0, 0, 0, 60000, 9, kUnknown, kUnknown, 0.0F, 0},
    };
    CBatAgent agent;
    for (const auto& row : kCases)
    {
        PowerAnswers answers = PowerSource::Get();
        answers.battery.Charging = row.charging;
        answers.battery.Discharging = row.discharging;
        answers.battery.MaxCapacity = row.maxCapacity;
        answers.battery.RemainingCapacity = row.remaining;
        answers.battery.Rate = row.rate;
        answers.battery.EstimatedTime = kEstimate;
        ASSERT_TRUE(PowerSource::Set(answers));
        EXPECT_EQ(row.complete, agent.GetCompleteTime(0));
        EXPECT_EQ(row.usage, agent.GetRemainingUsageTime(0));
        EXPECT_FLOAT_EQ(row.fraction, agent.GetRemainBatPer(0));
        EXPECT_EQ(row.capacity, agent.GetRemainCapacity(0));
        EXPECT_THAT((std::array{agent.GetCompleteTime(1), agent.GetRemainingUsageTime(-1),
                                agent.GetRemainCapacity(1)}),
                    testing::Each(0U));
        EXPECT_EQ(0.0F, agent.GetRemainBatPer(1));
    }
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Rate=0"));
    SYSTEM_POWER_STATUS status = {};
    EXPECT_NE(0, CBatAgent::GetSystemPowerStatus(&status));
    EXPECT_EQ(PowerSource::Get().status.BatteryLifePercent, status.BatteryLifePercent);
}

} // namespace
