// tests/scheme/WholeSchemeTest.cpp
//
// A whole scheme in one record, and the display attributes of each user.

#include "scheme/SchemeTest.h"

#include "base/Trace.h"

#include <gmock/gmock.h>

#include <algorithm>

using simulated::Trace;
using simulated::TracedCall;
using testing::Each;

namespace
{

using WholeScheme = SchemeTest;

// The display attributes are written and read all the same.
TEST_F(WholeScheme, AMissingSchemeReadsAsNothing)
{
    PWRSET set{};
    set.schemeID = 42;
    set.IfDefault = 1;
    set.IconNum = -7;
    set.IfShow = 3;
    const auto lines = LinesOf([&] { EXPECT_EQ(42, engine.SetPwrVariable(set)); });
    EXPECT_EQ(17U, lines.size());
    EXPECT_THAT(lines, Each("FindPwrScheme error"));
    PWRSET read{};
    EXPECT_EQ(1, engine.GetPwrVariableAll(read, 42));
    std::fill_n(&set.ac.cpuSpeed, 9, -1);
    std::fill_n(&set.dc.cpuSpeed, 9, -1);
    set.dc.lums = 0;
    EXPECT_EQ(BytesOf(set), BytesOf(read));
    set.IconNum = 8;
    EXPECT_EQ(1, engine.SetPwrCfgVariable(set));
    EXPECT_EQ(1, engine.GetPwrVariableAll(read, 42));
    EXPECT_EQ(8, read.IconNum);
}

// A value of -1 is refused, so a record that was read leaves what it couldn't read alone.
TEST_F(WholeScheme, ReadingChangingAndWritingLeavesTheRestAlone)
{
    // Without a time there would be no action.
    Run("set 3 ac Wifi = 1 -> 1; set 3 ac StandbyTimeOut = 600 -> 1; "
        "set 3 dc StandbyTimeOut = 600 -> 1");
    PWRSET set{};
    ASSERT_EQ(1, engine.GetPwrVariableAll(set, 3));
    EXPECT_EQ(-1, set.ac.backlightLevel);
    set.ac.lanSpeed = 5;
    const auto state = []
    {
        const POWER_POLICY power = Policy(3);
        const MACHINE_PROCESSOR_POWER_POLICY processor = Processor(3);
        return BytesOf(power) + BytesOf(processor) + seeding::ReadBytes(Values()).value_or("");
    };
    const std::string before = state();
    EXPECT_EQ(3, engine.SetPwrVariable(set));
    Run("get 3 ac LanSpeed -> 5");
    ASSERT_TRUE(Store(3, "LanSpeed", "-1"));
    EXPECT_EQ(before, state());
}

TEST_F(WholeScheme, TheStepsComeInTheirOrder)
{
    PWRSET set{};
    set.schemeID = 3;
    Trace::Clear();
    engine.SetPwrVariable(set);
    std::string order;
    for (const TracedCall& call : Trace::CallsOf("GetPrivateProfileIntW"))
    {
        // Each write looks for its value in the catalogue.
        if (call.arguments.find("OptionNumber") != std::string::npos)
        {
            order += call.arguments.substr(1, call.arguments.find('"', 1) - 1) + ' ';
        }
    }
    EXPECT_EQ("CpuSpeed CpuSpeed StandbyTimeOut StandbyTimeOut MonitorOffTimeOut MonitorOffTimeOut "
              "BacklightLevel BacklightLevel LANStatus LANStatus LanSpeed LanSpeed LUMS Wifi Wifi 3G 3G ",
              order);
}

} // namespace
