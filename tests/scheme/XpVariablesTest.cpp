// tests/scheme/XpVariablesTest.cpp
//
// Single variables on the XP back end: where each is stored, what a read leaves behind, what a write refuses.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "control/PowerSource.h"

#include <gmock/gmock.h>

#include <array>

using namespace simulated;
using testing::ElementsAre;

namespace
{

constexpr int kScheme = 3;

class XpVariables : public SchemeTest
{
protected:
    /// Lets `change` edit the record of scheme 3.
    template <class Change>
    static void Edit(Change change)
    {
        POWER_POLICY policy = Policy(kScheme);
        change(policy);
        UINT scheme = kScheme;
        ASSERT_TRUE(WritePwrScheme(&scheme, nullptr, nullptr, &policy));
    }

    /// The same for both power sources.
    static void SetIdle(int action, ULONG idle, ULONG doze)
    {
        const auto change = [&](POWER_POLICY& policy)
        {
            memcpy(&policy.user.IdleAc.Action, &action, sizeof action);
            memcpy(&policy.user.IdleDc.Action, &action, sizeof action);
            policy.user.IdleTimeoutAc = policy.user.IdleTimeoutDc = idle;
            policy.mach.DozeS4TimeoutAc = policy.mach.DozeS4TimeoutDc = doze;
        };
        Edit(change);
    }
};

TEST_F(XpVariables, StandbyAndHibernationShareTheirFields)
{
    // The catalogue's next time after 1800 is 2700.
    Run("set 3 ac HibernateTimeOut = 0 -> 1; set 3 ac StandbyTimeOut = 600 -> 1; "
        "set 3 ac HibernateTimeOut = 1800 -> 1; get 3 ac HibernateTimeOut -> 1800; "
        "set 3 ac StandbyTimeOut = 1800 -> 1; get 3 ac hibernatetimeout -> 2700");
    Run("set 3 ac HibernateTimeOut = 300 -> -2; get 3 ac HibernateTimeOut -> 2700; "
        "set 3 ac StandbyTimeOut = 0 -> 1; set 3 dc StandbyTimeOut = 300 -> 1");
    EXPECT_THAT(LinesOf([&] { Run("get 3 ac StandbyTimeOut -> 0; get 3 dc StandbyTimeOut -> 300"); }),
                ElementsAre("pwrPolicy.user.IdleAc.Action!=PowerActionSleep", ""));
    EXPECT_EQ(2700, engine.GetPwrVariable(kScheme, 5, L"HibernateTimeOut")) << "any number but 0 is mains";

    // The sources differ in what they refuse.
    SetIdle(PowerActionSleep, 600, 0);
    Run("set 3 ac HibernateTimeOut = 600 -> -2; set 3 dc HibernateTimeOut = 600 -> 1");
    SetIdle(PowerActionSleep, 3600, static_cast<ULONG>(-1800));
    Run("set 3 ac StandbyTimeOut = 2700 -> -2; set 3 dc StandbyTimeOut = 2700 -> 1");
    // A damaged store may hold any number in the place of an action.
    SetIdle(-1, 0xFFFFFFFF, 0xFFFFFFFF);
    Run("get 3 dc StandbyTimeOut -> 0; get 3 dc HibernateTimeOut -> 0; "
        "set 3 dc StandbyTimeOut = 600 -> 1; get 3 dc StandbyTimeOut -> 600");

    for (const bool allowed : {true, false})
    {
        ASSERT_TRUE(PowerSource::AllowHibernate(allowed));
        EXPECT_EQ(allowed ? 1 : 0, engine.ValidateData(L"HibernateTimeOut", 3600));
        EXPECT_EQ(1, engine.ValidateData(L"HibernateTimeOut", 0));
        EXPECT_EQ(0, engine.ValidateData(L"Nothing", -1) + engine.ValidateData(L"Wifi", -1));
        EXPECT_EQ(allowed ? 900 : 0, engine.GetHiberTimeFromStandbyTime(600));
        EXPECT_EQ(0, engine.GetHiberTimeFromStandbyTime(21600));
    }
}

TEST_F(XpVariables, SpeedAndAdaptivePolicyChangeThreeFieldsTogether)
{
    const auto fields = [](bool ac)
    {
        const USER_POWER_POLICY user = Policy(kScheme).user;
        const MACHINE_PROCESSOR_POWER_POLICY both = Processor(kScheme);
        const auto& dynamic = (ac ? both.ProcessorPolicyAc : both.ProcessorPolicyDc).DynamicThrottle;
        return std::array<int, 3>{ac ? user.ThrottlePolicyAc : user.ThrottlePolicyDc,
                                  ac ? user.ForcedThrottleAc : user.ForcedThrottleDc, dynamic};
    };
    for (const auto& [source, work, policy, forced, speed] :
         {std::tuple{" 3 ac ", "CpuSpeed = 75", 0, 75, 75}, std::tuple{" 3 ac ", "CpuSpeed = 0", 3, 100, 0},
          std::tuple{" 3 dc ", "CpuSpeed = 0", 3, 100, 0}, std::tuple{" 3 dc ", "CpuSpeed = 50", 0, 50, 50},
          std::tuple{" 3 ac ", "CpuAdaptive = 2", 2, 100, 0},
          std::tuple{" 3 ac ", "CpuAdaptive = 0", 0, 100, 100},
          std::tuple{" 3 dc ", "CpuAdaptive = 1", 1, 100, 0}})
    {
        const bool ac = source[3] == 'a';
        const auto other = fields(!ac);
        Run("set" + std::string(source) + work + " -> 1");
        EXPECT_EQ(speed, ResultOf("get" + std::string(source) + "CpuSpeed"));
        EXPECT_EQ(policy, ResultOf("get" + std::string(source) + "CpuAdaptive"));
        EXPECT_EQ((std::array{policy, forced, policy}), fields(ac));
        EXPECT_EQ(other, fields(!ac));
    }
    // Adaptive takes both fields.
    for (const auto& [set, other] : {std::pair{0, PO_THROTTLE_ADAPTIVE}, std::pair{2, PO_THROTTLE_NONE}})
    {
        Run("set 3 ac CpuAdaptive = " + std::to_string(set) + " -> 1");
        Edit([policy = static_cast<UCHAR>(other)](POWER_POLICY& edited)
             { edited.user.ThrottlePolicyAc = policy; });
        Run("get 3 ac CpuSpeed -> 100");
    }
    // The processor's range isn't stored here.
    Run("set 3 ac CpuSpeedMin = 50 -> 1; get 3 ac CpuSpeedMin -> -1");
}

// Every variable of the scheme values file: both halves are apart, and nothing else moves.
TEST_F(XpVariables, StoredVariablesKeepTheirHalvesApart)
{
    for (int number = kBacklightLevel; number < kVariableCount; ++number)
    {
        const std::string key = seeding::Utf8(VariableOf(number).name);
        const std::string ac = " 3 ac " + key;
        const std::string dc = " 3 dc " + key;
        Run("get" + ac + " -> -1");
        EXPECT_EQ("-1", Stored(kScheme, key));
        Run("set" + ac + " = 1 -> 1");
        if (number == kLums)
        {
            Run("get" + dc + " -> 1");
            continue;
        }
        // The other half of "no value" shows until it is written.
        EXPECT_EQ("-65535", Stored(kScheme, key));
        Run("get" + dc + " -> 65535; set" + dc + " = 0 -> 0; get" + ac + " -> 1; get" + dc + " -> 0");
        EXPECT_EQ("1", Stored(kScheme, key));
    }
}

// Logs and results of failed calls are in the transcripts.
TEST_F(XpVariables, RefusalsSayWhyAndChangeNothing)
{
    const auto before = Policy(kScheme);
    for (const auto& [work, line] :
         {std::pair{"set 77 ac Wifi = 1", "FindPwrScheme error"},
          std::pair{"set 3 ac Wif = 1", "ParseVarName error"},
          std::pair{"set 3 ac  = 1", "ParseVarName error"},
          std::pair{"set 3 ac MonitorOffTimeOut = 61", "ValidateData error"},
          std::pair{"get 3 ac Wif", "ParseVarName(Wif) error"}, std::pair{"set 3 ac LUMS = 6", ""}})
    {
        const Lines lines = LinesOf([&, step = work] { EXPECT_EQ(-1, ResultOf(step)) << step; });
        EXPECT_EQ(line, lines.empty() ? "" : lines[0]);
    }
    EXPECT_EQ(kAbsent, Stored(kScheme, "LUMS"));
    // The processor's record goes first and stays when the other can't follow.
    Faults::Inject("WritePwrScheme", 1, ERROR_ACCESS_DENIED);
    Run("set 3 ac CpuSpeed = 0 -> -1");
    EXPECT_EQ(3, Processor(kScheme).ProcessorPolicyAc.DynamicThrottle);
    const auto after = Policy(kScheme);
    EXPECT_EQ(BytesOf(before), BytesOf(after));
}

TEST_F(XpVariables, CatalogueTexts)
{
    wchar_t buffer[64] = L"untouched";
    EXPECT_EQ(0, engine.GetPwrVariableName(L"USBPort 0", buffer, 64));
    EXPECT_EQ(-1, engine.GetPwrVariableName(L"Nothing", buffer, 64));
    EXPECT_EQ("untouched", seeding::Utf8(buffer));
    EXPECT_EQ(0, engine.GetPwrVariableName(L"Thermal Throttle", buffer, 64));
    EXPECT_EQ("Thermal throttling", seeding::Utf8(buffer));
    EXPECT_EQ(-1, engine.GetPwrVariableOptDesc(L"DiskOffTimeOut", 14, buffer, 64));
    EXPECT_EQ(9, engine.GetPwrVariableOptDesc(L"DiskOffTimeOut", 0, buffer, 64));
    EXPECT_EQ("3 minutes", seeding::Utf8(buffer));
    EXPECT_EQ(-1, engine.GetPwrVariableUnit(L"DiskOffTimeOut", buffer, 0));
    EXPECT_EQ(3, engine.GetPwrVariableUnit(L"DiskOffTimeOut", buffer, 4));
    EXPECT_EQ("Sec", seeding::Utf8(buffer));
    EXPECT_EQ(0, engine.GetPwrVariable(3, 1, L"Wifi", buffer, 64));
    EXPECT_EQ(0, engine.SetPwrVariable(3, 1, L"Wifi", L"1"));
    EXPECT_EQ(1, engine.InitCfgFile());
}

} // namespace
