// tests/scheme/XpVariablesTest.cpp
//
// Single variables on the XP path: where each lies, what a read leaves behind, what a write refuses.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "notebook/PowerSource.h"

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
        Edit(
            [&](POWER_POLICY& policy)
            {
                memcpy(&policy.user.IdleAc.Action, &action, sizeof action);
                memcpy(&policy.user.IdleDc.Action, &action, sizeof action);
                policy.user.IdleTimeoutAc = policy.user.IdleTimeoutDc = idle;
                policy.mach.DozeS4TimeoutAc = policy.mach.DozeS4TimeoutDc = doze;
            });
    }
};

TEST_F(XpVariables, StandbyAndHibernationShareTheirFields)
{
    // The catalogue's next time behind 1800 is 2700.
    Run({{"3 ac HibernateTimeOut = 0", 1},
         {"3 ac StandbyTimeOut = 600", 1},
         {"3 ac HibernateTimeOut = 1800", 1},
         {"3 ac HibernateTimeOut", 1800},
         {"3 ac StandbyTimeOut = 1800", 1},
         {"3 ac hibernatetimeout", 2700}});
    EXPECT_EQ(900U, Policy(kScheme).mach.DozeS4TimeoutAc);
    const POWER_POLICY before = Policy(kScheme);
    Run({{"3 ac HibernateTimeOut = 300", -2}});
    const POWER_POLICY after = Policy(kScheme);
    EXPECT_EQ(BytesOf(before), BytesOf(after));
    Run({{"3 ac StandbyTimeOut = 0", 1}, {"3 dc StandbyTimeOut = 300", 1}});
    EXPECT_THAT(LinesOf(
                    [&] {
                        Run({{"3 ac StandbyTimeOut", 0}, {"3 dc StandbyTimeOut", 300}});
                    }),
                ElementsAre("pwrPolicy.user.IdleAc.Action!=PowerActionSleep", ""));
    EXPECT_EQ(2700, engine.GetPwrVariable(kScheme, 5, L"HibernateTimeOut")) << "any number but 0 is mains";

    // At the standby time a hibernate time is refused on mains and means none on battery.
    SetIdle(PowerActionSleep, 600, 0);
    Run({{"3 ac HibernateTimeOut = 600", -2},
         {"3 dc HibernateTimeOut = 600", 1},
         {"3 dc HibernateTimeOut", 0}});
    SetIdle(PowerActionSleep, 3600, static_cast<ULONG>(-1800));
    Run({{"3 ac StandbyTimeOut = 2700", -2}, {"3 dc StandbyTimeOut = 2700", 1}});
    // A damaged store may hold any number in the place of an action.
    SetIdle(-1, 0xFFFFFFFF, 0xFFFFFFFF);
    Run({{"3 dc StandbyTimeOut", 0},
         {"3 dc HibernateTimeOut", 0},
         {"3 dc StandbyTimeOut = 600", 1},
         {"3 dc StandbyTimeOut", 600}});

    for (const bool allowed : {true, false})
    {
        ASSERT_TRUE(PowerSource::AllowHibernate(allowed));
        EXPECT_EQ(allowed ? 1 : 0, engine.ValidateData(L"HibernateTimeOut", 3600));
        EXPECT_EQ(1, engine.ValidateData(L"HibernateTimeOut", 0));
        EXPECT_EQ(0, engine.ValidateData(L"Nothing", -1));
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
    for (const auto& [work, policy, forced, speed] : {std::tuple{"3 ac CpuSpeed = 75", 0, 75, 75},
                                                      {"3 ac CpuSpeed = 0", 3, 100, 0},
                                                      {"3 dc CpuSpeed = 0", 3, 100, 0},
                                                      {"3 dc CpuSpeed = 50", 0, 50, 50},
                                                      {"3 ac CpuAdaptive = 2", 2, 100, 0},
                                                      {"3 ac CpuAdaptive = 0", 0, 100, 100},
                                                      {"3 dc CpuAdaptive = 1", 1, 100, 0}})
    {
        const bool ac = work[2] == 'a';
        const auto other = fields(!ac);
        const std::string source(work, 5);
        Run({{work, 1}, {source + "CpuSpeed", speed}, {source + "CpuAdaptive", policy}});
        EXPECT_EQ((std::array{policy, forced, policy}), fields(ac));
        EXPECT_EQ(other, fields(!ac));
    }
    // Adaptive takes both fields.
    Edit(
        [](POWER_POLICY& policy)
        {
            policy.user.ThrottlePolicyAc = PO_THROTTLE_ADAPTIVE;
            policy.user.ForcedThrottleAc = 40;
        });
    // The processor's range has no place here.
    Run({{"3 ac CpuSpeed", 40}, {"3 ac CpuSpeedMin = 50", 1}, {"3 ac CpuSpeedMin", -1}});
}

// Every variable of the scheme values file: both halves are apart, and nothing else moves.
TEST_F(XpVariables, StoredVariablesKeepTheirHalvesApart)
{
    for (int number = kBacklightLevel; number < kVariableCount; ++number)
    {
        const std::string key = seeding::Utf8(VariableOf(number).name);
        const auto expectStored = [&](const char* value, const std::vector<Step>& steps)
        {
            Run(steps);
            EXPECT_EQ(value, Stored(kScheme, key)) << key;
        };
        expectStored("-1", {{"3 ac " + key, -1}});
        if (number == kLums)
        {
            expectStored("1", {{"3 ac " + key + " = 1", 1}, {"3 dc " + key, 1}});
            continue;
        }
        // The other half of "no value" shows until it is written.
        expectStored("-65535", {{"3 ac " + key + " = 1", 1}, {"3 dc " + key, 65535}});
        expectStored("1", {{"3 dc " + key + " = 0", 0}, {"3 ac " + key, 1}, {"3 dc " + key, 0}});
    }
}

// What failed calls say and answer is in the transcripts.
TEST_F(XpVariables, RefusalsSayWhyAndChangeNothing)
{
    const auto before = Policy(kScheme);
    for (const auto& [work, line] : {std::pair{"77 ac Wifi = 1", "FindPwrScheme error"},
                                     {"-1 ac Wifi = 1", "FindPwrScheme error"},
                                     {"3 ac Wif = 1", "ParseVarName error"},
                                     {"3 ac  = 1", "ParseVarName error"},
                                     {"3 ac MonitorOffTimeOut = 61", "ValidateData error"},
                                     {"3 ac Wif", "ParseVarName(Wif) error\n"},
                                     {"3 ac Wifi = 2", ""},
                                     {"3 ac LUMS = 6", ""}})
    {
        const Lines lines = LinesOf([&] { Run({{work, -1}}); });
        EXPECT_EQ(std::string(line).substr(0, std::string(line).find('\n')), lines.empty() ? "" : lines[0]);
    }
    EXPECT_EQ(kAbsent, Stored(kScheme, "Wifi"));
    EXPECT_EQ(kAbsent, Stored(kScheme, "LUMS"));
    // The processor's record goes first and stays when the other can't follow.
    Faults::Inject("WritePwrScheme", 1, ERROR_ACCESS_DENIED);
    Run({{"3 ac CpuSpeed = 0", -1}});
    EXPECT_EQ(3, Processor(kScheme).ProcessorPolicyAc.DynamicThrottle);
    const auto after = Policy(kScheme);
    EXPECT_EQ(BytesOf(before), BytesOf(after));
}

TEST_F(XpVariables, CatalogueTexts)
{
    wchar_t buffer[64] = L"untouched";
    EXPECT_EQ(0, engine.GetPwrVariableName(L"USBPort 11", buffer, 64));
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
    EXPECT_EQ(-1, engine.GetPwrVariableOptCount(L"Nothing"));
    EXPECT_EQ(0, engine.GetPwrVariable(3, 1, L"Wifi", buffer, 64));
    EXPECT_EQ(0, engine.SetPwrVariable(3, 1, L"Wifi", L"1"));
    EXPECT_EQ(1, engine.InitCfgFile());
}

} // namespace
