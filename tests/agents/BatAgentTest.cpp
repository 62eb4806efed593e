// agents/BatAgentTest.cpp
//
// Which batteries are opened, what is asked of them, and the times reckoned from the system's state.

#include "agents/AgentsTest.h"

#include "agents/BatAgent.h"
#include "foundation/Results.h"
#include "notebook/Batteries.h"
#include "notebook/PowerSource.h"

#include <cstring>

using namespace simulated;

namespace
{

class BatAgentTest : public AgentsTest
{
protected:
    static void UseBatteries(unsigned count)
    {
        while (!Batteries::All().empty())
        {
            Batteries::Remove(0);
        }
        while (Batteries::All().size() < count)
        {
            Batteries::Add();
        }
    }
};

TEST_F(BatAgentTest, AtMostFiveBatteriesAreOpenedAndAllAreClosed)
{
    for (const unsigned present : {0U, 5U, 6U})
    {
        UseBatteries(present);
        Trace::Clear();
        CBatAgent agent;
        EXPECT_EQ(kSucceeded, agent.Setup());
        const unsigned expected = std::min(present, 5U);
        EXPECT_EQ(expected, agent.GetBatteryCount());
        EXPECT_EQ(expected, Calls("CreateFileW"));
        EXPECT_EQ(kSucceeded, agent.Cleanup());
        EXPECT_EQ(expected, agent.GetBatteryCount()) << "the count stays";
        EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
    }
}

TEST_F(BatAgentTest, BatteriesThatArentOpenAreRefusedByNumber)
{
    UseBatteries(2);
    Batteries::RefuseOpening(0, ERROR_ACCESS_DENIED);
    CBatAgent agent;
    EXPECT_EQ(kSucceeded, agent.Setup());
    EXPECT_EQ(2U, agent.GetBatteryCount());
    BATTERY_INFORMATION info = {};
    BATTERY_STATUS status = {};
    for (const auto& [index, result] : {std::pair{-1, kBadArgument},
                                        {0, kBadArgument},
                                        {1, kSucceeded},
                                        {2, kBadArgument},
                                        {5, kBadArgument}})
    {
        EXPECT_EQ(result, agent.GetInfo(index, info)) << index;
        EXPECT_EQ(result, agent.GetStatus(index, status)) << index;
    }
}

TEST_F(BatAgentTest, EachQueryAsksForItsLevel)
{
    UseBatteries(1);
    for (const auto& [key, value] : {std::pair{"FullChargedCapacity", "43210"},
                                     {"Chemistry", "LiP"},
                                     {"Temperature", "2999"},
                                     {"ManufactureDate", "2008-03-17"},
                                     {"ManufactureName", "Maker"},
                                     {"UniqueID", "U-1"},
                                     {"SerialNumber", "S-1"}})
    {
        Batteries::SetValue(0, key, value);
    }
    const BATTERY_STATUS charging = {5, 30000, 11100, -900};
    Batteries::SetStatus(0, charging);
    CBatAgent agent;
    ASSERT_EQ(kSucceeded, agent.Setup());

    BATTERY_INFORMATION info = {};
    BATTERY_STATUS status = {};
    BATTERY_MANUFACTURE_DATE date = {};
    ULONG temperature = 0;
    EXPECT_EQ(kSucceeded, agent.GetInfo(0, info));
    EXPECT_EQ(43210U, info.FullChargedCapacity);
    EXPECT_EQ("4C 69 50 00", Hex(info.Chemistry));
    EXPECT_EQ(kSucceeded, agent.GetStatus(0, status));
    EXPECT_EQ(0, std::memcmp(&charging, &status, sizeof status));
    EXPECT_EQ(kSucceeded, agent.GetTemperature(0, temperature));
    EXPECT_EQ(2999U, temperature);
    EXPECT_EQ(kSucceeded, agent.GetManufactureDate(0, date));
    EXPECT_THAT((std::array{+date.Day, +date.Month, +date.Year}), testing::ElementsAre(17, 3, 2008));

    wchar_t text[16] = {};
    using TextQuery = LONG (CBatAgent::*)(int, wchar_t*, int) noexcept;
    for (const auto& [query, expected] :
         {std::pair<TextQuery, const char*>{&CBatAgent::GetManufactureName, "Maker"},
          {&CBatAgent::GetUniqueID, "U-1"},
          {&CBatAgent::GetSerialNumber, "S-1"}})
    {
        EXPECT_EQ(kSucceeded, (agent.*query)(0, text, sizeof text));
        EXPECT_EQ(expected, seeding::Utf8(text));
        EXPECT_EQ(kBadArgument, (agent.*query)(0, text, -1));
    }

    // The tag went stale with the battery.
    Batteries::Eject(0);
    NewLogLines();
    EXPECT_EQ(kGeneralFailure, agent.GetInfo(0, info));
    EXPECT_EQ(kGeneralFailure, agent.GetStatus(0, status));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre(
                                   "IOCTL_BATTERY_QUERY_INFORMATION failed with return 0",
                                   testing::MatchesRegex("IOCTL_BATTERY_QUERY_STATUS failed for .* with 0")));
}

TEST_F(BatAgentTest, TimesFollowFromTheSystemState)
{
    constexpr ULONG kUnknown = 0xFFFFFFFF;
    constexpr DWORD kEstimate = 5400;
    constexpr struct
    {
        bool charging;
        bool discharging;
        DWORD maxCapacity;
        DWORD remaining;
        DWORD rate;
        ULONG complete;
        ULONG usage;
        float fraction;
        ULONG capacity;
    } kCases[] = {
        {true, false, 50000, 20000, 30000, 3600, 2400, 0.4F, 20000},
        {true, true, 50000, 49999, 7, 514, 25713771, 0.99998F, 49999},
        {true, false, 50000, 20000, 0, kUnknown, kUnknown, 0.4F, 20000},
        {false, true, 50000, 20000, 0, kEstimate, kEstimate, 0.4F, 20000},
        {false, false, 50000, 60000, 9, kUnknown, kUnknown, 1.2F, 60000},
        {false, false, 0, 60000, 9, kUnknown, kUnknown, 0.0F, 0},
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
        PowerSource::Set(answers);
        EXPECT_EQ(row.complete, agent.GetCompleteTime(0));
        EXPECT_EQ(row.usage, agent.GetRemainingUsageTime(0));
        EXPECT_FLOAT_EQ(row.fraction, agent.GetRemainBatPer(0));
        EXPECT_EQ(row.capacity, agent.GetRemainCapacity(0));
        EXPECT_EQ(0U,
                  agent.GetCompleteTime(1) + agent.GetRemainingUsageTime(-1) + agent.GetRemainCapacity(1));
        EXPECT_EQ(0.0F, agent.GetRemainBatPer(1));
    }
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("Rate=0"));
}

} // namespace
