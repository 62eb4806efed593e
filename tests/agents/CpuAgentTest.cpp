// agents/CpuAgentTest.cpp
//
// The level that is reached, and what it writes to the registers of each core.

#include "agents/AgentsTest.h"

#include "agents/CpuAgent.h"
#include "machine/KernelDriver.h"
#include "machine/Machine.h"
#include "machine/Processor.h"

using namespace simulated;

namespace
{

constexpr DWORD kControl = Processor::kPerformanceControl;
constexpr DWORD kModulation = Processor::kClockModulation;

class CpuAgentTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        ASSERT_EQ(1, agent->Initialize());
    }
    void TearDown() override
    {
        // The agent leaves the thread bound to the last core written.
        SetThreadAffinityMask(GetCurrentThread(), 0xF);
        agent.reset();
        AgentsTest::TearDown();
    }

    /// The low half of a register of each of the first `cores` cores.
    static std::vector<DWORD> Low(DWORD index, unsigned cores = 4)
    {
        std::vector<DWORD> halves;
        for (unsigned core = 0; core < cores; ++core)
        {
            halves.push_back(static_cast<DWORD>(Processor::Read(core, index).value_or(0)));
        }
        return halves;
    }
    static void SetOnAll(DWORD index, std::uint64_t value)
    {
        for (unsigned core = 0; core < 4; ++core)
        {
            Processor::Set(core, index, value);
        }
    }

    std::optional<CCpuAgent> agent{std::in_place};
};

TEST_F(CpuAgentTest, LevelIsReachedByTheLowestRatioAndThenTheLowestDuty)
{
    constexpr struct
    {
        int level, reached;
        DWORD control;    ///< ratio in bits 12..8, voltage below
        DWORD modulation; ///< duty in bits 3..1 with the enable bit, 2 for none
    } kLevels[] = {
        {1, 6, 0x060A, 0x12},   {18, 18, 0x060A, 0x16}, {25, 25, 0x060A, 0x18}, {40, 43, 0x060A, 0x1E},
        {50, 50, 0x060A, 0x02}, {51, 51, 0x070B, 0x1E}, {75, 75, 0x090F, 0x02}, {100, 100, 0x0C15, 0x02},
    };
    for (const auto& row : kLevels)
    {
        EXPECT_EQ(row.reached, agent->SetEblLevel(row.level)) << row.level;
        EXPECT_THAT(Low(kControl), testing::Each(row.control)) << row.level;
        EXPECT_THAT(Low(kModulation), testing::Each(row.modulation)) << row.level;
        EXPECT_EQ(row.reached, agent->GetEblLevel()) << row.level;
    }
    NewDriverInputs();
    EXPECT_EQ(100, agent->SetEblLevel(100));
    EXPECT_EQ(2U, NewDriverInputs().size()) << "what is there already is read and not written";
}

TEST_F(CpuAgentTest, RegistersAreReadAndChangedByTheirFields)
{
    for (const auto& [low, level] :
         {std::pair{0x16U, 37}, {0x0EU, 100}, {0x02U, 100}, {0x10U, -1}, {0x1EU, 87}})
    {
        SetOnAll(kModulation, low);
        EXPECT_EQ(level, agent->GetEblLevel()) << low;
    }
    Processor::Fit(4, {5, 10, 0x20, 0x30});
    ASSERT_EQ(1, agent->Initialize());
    SetOnAll(kControl, 0x12345678'0000FFFF);
    NewDriverInputs();
    EXPECT_EQ(50, agent->SetEblLevel(50));
    EXPECT_EQ(0x12345678'0000E5E0U, Processor::Read(3, kControl));
    EXPECT_THAT(NewDriverInputs(), testing::Contains("99 01 00 00 78 56 34 12 E0 E5 00 00").Times(4));
}

TEST_F(CpuAgentTest, OnlyTheFirstFourCoresOfTheProcessAreWritten)
{
    Processor::Fit(6, {6, 12, 10, 21});
    ASSERT_TRUE(Machine::Write("Processor", "ProcessMask", "0x3A"));
    Trace::Clear();
    EXPECT_EQ(50, agent->SetEblLevel(50));
    EXPECT_THAT(Low(kControl, 6), testing::ElementsAre(0x0C15, 0x060A, 0x0C15, 0x060A, 0x0C15, 0x0C15));
    EXPECT_EQ(2U, Calls("SetThreadAffinityMask"));
}

TEST_F(CpuAgentTest, ImpossibleLevelsAndProcessorsAreRefused)
{
    NewDriverInputs();
    CCpuAgent fresh;
    for (const int level : {0, 101, -1})
    {
        EXPECT_EQ(-1, agent->SetEblLevel(level));
    }
    EXPECT_EQ(-1, fresh.SetEblLevel(50));
    EXPECT_EQ(-1, fresh.GetEblLevel());
    EXPECT_TRUE(NewDriverInputs().empty());

    const std::pair<Processor::Limits, const char*> processors[] = {
        {{6, 12, 0, 21}, "Cannot calucate VID."},   // no voltage at the lowest ratio
        {{12, 12, 10, 10}, "Cannot calucate VID."}, // a range of one ratio has no slope
        {{12, 6, 10, 10}, "Invalid level 12."},     // nor has an inverted one
        {{0, 0, 10, 10}, "m_nMinCBR0,m_nMaxCBR0,m_nMinVID10,m_nMaxVID10"}, // nothing is tried
    };
    constexpr DWORD kStatus = Processor::kPerformanceStatus;
    for (const auto& [limits, line] : processors)
    {
        Processor::Fit(4, limits);
        NewLogLines();
        ASSERT_EQ(1, agent->Initialize());
        SetOnAll(kStatus, *Processor::Read(0, kStatus) ^ 0x100); // runs at another ratio
        EXPECT_EQ(-1, agent->SetEblLevel(1));
        std::vector<std::string> lines = NewLogLines();
        EXPECT_EQ(line, lines.at(lines.size() - 2));
        EXPECT_EQ(limits.highestRatio == 0, agent->GetEblLevel() == -1);
    }
}

} // namespace
