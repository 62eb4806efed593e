// tests/scheme/WholeSchemeTest.cpp
//
// A whole scheme in one record, and the display attributes of each user.

#include "scheme/SchemeTest.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::Each;

namespace
{

using WholeScheme = SchemeTest;

// Values that the catalogue offers, all different where two could be mixed up.
PWRSET Sample(int scheme)
{
    PWRSET set{};
    set.schemeID = scheme;
    set.ac = {75, 6, 4, 3, 1200, 1800, 1, 0, 1};
    set.dc = {50, 2, 1, 77, 60, 300, 0, 1, 0};
    set.IfDefault = 1;
    set.IconNum = -7;
    set.IfShow = 3;
    return set;
}

TEST_F(WholeScheme, AMissingSchemeReadsAsNothing)
{
    PWRSET set = Sample(42);
    const auto lines = LinesOf([&] { EXPECT_EQ(42, engine.SetPwrVariable(set)); });
    EXPECT_EQ(17U, lines.size());
    EXPECT_THAT(lines, Each("FindPwrScheme error"));

    PWRSET read{};
    EXPECT_EQ(1, engine.GetPwrVariableAll(read, 42));
    PWRSET expected{};
    expected.schemeID = 42;
    std::fill_n(&expected.ac.cpuSpeed, 9, -1);
    std::fill_n(&expected.dc.cpuSpeed, 9, -1);
    expected.dc.lums = 0;
    expected.IfDefault = 1;
    expected.IconNum = -7;
    expected.IfShow = 3;
    EXPECT_EQ(BytesOf(expected), BytesOf(read));
}

// A value of -1 is refused, so a record that was read leaves what it couldn't read alone.
TEST_F(WholeScheme, ReadingChangingAndWritingLeavesTheRestAlone)
{
    ASSERT_EQ(1, engine.SetPwrVariable(3, 1, L"Wifi", 1));
    const POWER_POLICY before = Policy(3);
    PWRSET set{};
    ASSERT_EQ(1, engine.GetPwrVariableAll(set, 3));
    EXPECT_EQ(-1, set.ac.backlightLevel);
    set.ac.lanSpeed = 5;
    engine.SetPwrVariable(set);
    const POWER_POLICY after = Policy(3);
    EXPECT_EQ(0, memcmp(&before.user.VideoTimeoutAc, &after.user.VideoTimeoutAc, 16));
    EXPECT_EQ("-1", Stored(3, "BacklightLevel"));
    EXPECT_EQ(1, engine.GetPwrVariable(3, 1, L"Wifi"));
    EXPECT_EQ(5, engine.GetPwrVariable(3, 1, L"LanSpeed"));
}

TEST_F(WholeScheme, DisplayAttributesBelongToTheUser)
{
    Engine bob;
    ActFor(bob, "bob");
    PWRSET set = Sample(3);
    EXPECT_EQ(1, engine.SetPwrCfgVariable(set));
    EXPECT_EQ("-7", seeding::GetKey(Display("alice"), "Scheme3", "IconNum"));
    PWRSET read{};
    bob.GetPwrVariableAll(read, 3);
    EXPECT_EQ(0, read.IconNum);
    set.IconNum = 9;
    bob.SetPwrCfgVariable(set);
    engine.GetPwrVariableAll(read, 3);
    EXPECT_EQ(-7, read.IconNum);
}

} // namespace
