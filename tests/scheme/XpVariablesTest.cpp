// tests/scheme/XpVariablesTest.cpp
//
// Single variables on the XP path: where each lies, what a read leaves behind, what a write refuses.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "notebook/PowerSource.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;

namespace
{

constexpr int kScheme = 3;

using XpVariables = SchemeTest;

TEST_F(XpVariables, PlainTimesLieInTheOperatingSystemBySource)
{
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"MonitorOffTimeOut", 1200));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 0, L"MonitorOffTimeOut", 60));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"DiskOffTimeOut", 1800));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 0, L"DiskOffTimeOut", 180));
    const POWER_POLICY policy = Policy(kScheme);
    EXPECT_EQ(1200U, policy.user.VideoTimeoutAc);
    EXPECT_EQ(60U, policy.user.VideoTimeoutDc);
    EXPECT_EQ(1800U, policy.user.SpindownTimeoutAc);
    EXPECT_EQ(180U, policy.user.SpindownTimeoutDc);
    EXPECT_EQ(1800, engine.GetPwrVariable(kScheme, 5, L"DiskOffTimeOut"));
    EXPECT_EQ(60, engine.GetPwrVariable(kScheme, 0, L"monitorofftimeout"));
}

TEST_F(XpVariables, StandbyAndHibernationShareTheirFields)
{
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"HibernateTimeOut", 0));
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", 600));
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"HibernateTimeOut", 1800));
    EXPECT_EQ(1200U, Policy(kScheme).mach.DozeS4TimeoutAc);
    EXPECT_EQ(1800, engine.GetPwrVariable(kScheme, 1, L"HibernateTimeOut"));

    // The catalogue's next time behind 1800 is 2700.
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", 1800));
    EXPECT_EQ(900U, Policy(kScheme).mach.DozeS4TimeoutAc);
    const POWER_POLICY before = Policy(kScheme);
    EXPECT_EQ(-2, engine.SetPwrVariable(kScheme, 1, L"HibernateTimeOut", 300));
    const POWER_POLICY after = Policy(kScheme);
    EXPECT_EQ(BytesOf(before), BytesOf(after));

    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", 0));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.GetPwrVariable(kScheme, 1, L"StandbyTimeOut")); }),
                ElementsAre("pwrPolicy.user.IdleAc.Action!=PowerActionSleep", ""));
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 0, L"StandbyTimeOut", 300));
    EXPECT_TRUE(
        LinesOf([&] { EXPECT_EQ(300, engine.GetPwrVariable(kScheme, 0, L"StandbyTimeOut")); }).empty());
    EXPECT_EQ(2700, engine.GetPwrVariable(kScheme, 1, L"HibernateTimeOut"));

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

// A damaged store may hold any number in the place of an action.
TEST_F(XpVariables, AnUnknownIdleActionIsNeitherSleepNorHibernation)
{
    POWER_POLICY policy = Policy(kScheme);
    const ULONG absurd = 0xFFFFFFFF;
    memcpy(&policy.user.IdleDc.Action, &absurd, sizeof absurd);
    policy.user.IdleTimeoutDc = absurd;
    policy.mach.DozeS4TimeoutDc = absurd;
    UINT scheme = kScheme;
    ASSERT_TRUE(WritePwrScheme(&scheme, nullptr, nullptr, &policy));
    EXPECT_EQ(0, engine.GetPwrVariable(kScheme, 0, L"StandbyTimeOut"));
    EXPECT_EQ(0, engine.GetPwrVariable(kScheme, 0, L"HibernateTimeOut"));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 0, L"StandbyTimeOut", 600));
    EXPECT_EQ(600, engine.GetPwrVariable(kScheme, 0, L"StandbyTimeOut"));
}

TEST_F(XpVariables, SpeedAndAdaptivePolicyChangeThreeFieldsTogether)
{
    for (const auto& [name, value, policy, forced, speedRead] : {std::tuple{L"CpuSpeed", 75, 0, 75, 75},
                                                                 {L"CpuSpeed", 0, 3, 100, 0},
                                                                 {L"CpuAdaptive", 2, 2, 100, 0},
                                                                 {L"CpuAdaptive", 0, 0, 100, 100}})
    {
        const UCHAR batteryBefore = Policy(kScheme).user.ForcedThrottleDc;
        ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, name, value));
        EXPECT_EQ(policy, Policy(kScheme).user.ThrottlePolicyAc);
        EXPECT_EQ(policy, Processor(kScheme).ProcessorPolicyAc.DynamicThrottle);
        EXPECT_EQ(forced, Policy(kScheme).user.ForcedThrottleAc);
        EXPECT_EQ(speedRead, engine.GetPwrVariable(kScheme, 1, L"CpuSpeed"));
        EXPECT_EQ(policy, engine.GetPwrVariable(kScheme, 1, L"CpuAdaptive"));
        EXPECT_EQ(batteryBefore, Policy(kScheme).user.ForcedThrottleDc);
    }
    // Adaptive takes both fields.
    POWER_POLICY policy = Policy(kScheme);
    policy.user.ThrottlePolicyAc = PO_THROTTLE_ADAPTIVE;
    policy.user.ForcedThrottleAc = 40;
    UINT scheme = kScheme;
    ASSERT_TRUE(WritePwrScheme(&scheme, nullptr, nullptr, &policy));
    EXPECT_EQ(40, engine.GetPwrVariable(kScheme, 1, L"CpuSpeed"));
    // The processor's range has no place here.
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"CpuSpeedMin", 50));
    EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, 1, L"CpuSpeedMin"));
}

// Every variable of the scheme values file: both halves are apart, and nothing else moves.
TEST_F(XpVariables, StoredVariablesKeepTheirHalvesApart)
{
    for (int number = kBacklightLevel; number < kVariableCount; ++number)
    {
        const wchar_t* name = VariableOf(number).name;
        const std::string key = seeding::Utf8(name);
        SCOPED_TRACE(key);
        EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, 1, name));
        EXPECT_EQ("-1", Stored(kScheme, key));
        ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, name, 1));
        if (number == kLums)
        {
            EXPECT_EQ(1, engine.GetPwrVariable(kScheme, 0, name));
            EXPECT_EQ("1", Stored(kScheme, key));
            continue;
        }
        // The other half of "no value" shows until it is written.
        EXPECT_EQ("-65535", Stored(kScheme, key));
        EXPECT_EQ(65535, engine.GetPwrVariable(kScheme, 0, name));
        ASSERT_EQ(0, engine.SetPwrVariable(kScheme, 0, name, 0));
        EXPECT_EQ("1", Stored(kScheme, key));
        EXPECT_EQ(1, engine.GetPwrVariable(kScheme, 1, name));
        EXPECT_EQ(0, engine.GetPwrVariable(kScheme, 0, name));
    }
}

TEST_F(XpVariables, RefusalsSayWhyAndChangeNothing)
{
    struct Row
    {
        int scheme;
        const wchar_t* name;
        int value;
        const char* line; ///< null for none
    };
    const auto before = Policy(kScheme);
    for (const Row& row :
         {Row{77, L"Wifi", 1, "FindPwrScheme error"}, Row{-1, L"Wifi", 1, "FindPwrScheme error"},
          Row{kScheme, L"Wif", 1, "ParseVarName error"}, Row{kScheme, L"", 1, "ParseVarName error"},
          Row{kScheme, L"MonitorOffTimeOut", 61, "ValidateData error"}, Row{kScheme, L"Wifi", 2, nullptr}})
    {
        const auto lines =
            LinesOf([&] { EXPECT_EQ(-1, engine.SetPwrVariable(row.scheme, 1, row.name, row.value)); });
        EXPECT_EQ(row.line == nullptr ? Lines{} : Lines{row.line}, lines);
    }
    EXPECT_EQ(kAbsent, Stored(kScheme, "Wifi"));
    const auto after = Policy(kScheme);
    EXPECT_EQ(BytesOf(before), BytesOf(after));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, 1, L"Wif")); }),
                ElementsAre("ParseVarName(Wif) error", ""));
}

// The processor's record goes first and stays when the other can't follow.
TEST_F(XpVariables, RefusedRecordsLeaveWhatWasWrittenBefore)
{
    struct Row
    {
        const char* function;
        const char* line;
        int processorAfter;
    };
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"CpuSpeed", 50));
    for (const Row& row :
         {Row{"ReadPwrScheme", "CSchemeEx::GetPwrVariable: Can't read pwr scheme: 3", 0},
          Row{"ReadProcessorPwrScheme", "CSchemeEx::GetPwrVariable: Can't read cpu scheme: 3", 0},
          Row{"WriteProcessorPwrScheme", "::WriteProcessorPwrScheme error", 0},
          Row{"WritePwrScheme", "::WritePwrScheme error", 3}})
    {
        Faults::Inject(row.function, 1, ERROR_ACCESS_DENIED);
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, 1, L"CpuSpeed", 0)); }),
                    ElementsAre(row.line));
        EXPECT_TRUE(Faults::AllHit());
        Faults::Clear();
        EXPECT_EQ(50, Policy(kScheme).user.ForcedThrottleAc);
        EXPECT_EQ(row.processorAfter, Processor(kScheme).ProcessorPolicyAc.DynamicThrottle);
    }
}

// A catalogue or a root file that is missing refuses every write; reads treat the key as absent.
TEST_F(XpVariables, WithoutConfigurationKeysCountAsAbsent)
{
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"Wifi", 1));
    seeding::Remove(Root());
    EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, 1, L"Wifi"));
    EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, 1, L"Wifi", 0));
    EXPECT_EQ(-1, engine.GetPwrVariableOptCount(L"Wifi"));
    EXPECT_EQ("1", Stored(kScheme, "Wifi"));
}

TEST_F(XpVariables, CatalogueTexts)
{
    wchar_t buffer[64] = L"untouched";
    EXPECT_EQ(0, engine.GetPwrVariableName(L"USBPort 11", buffer, 64));
    EXPECT_EQ("untouched", seeding::Utf8(buffer));
    EXPECT_EQ(0, engine.GetPwrVariableName(L"Thermal Throttle", buffer, 64));
    EXPECT_EQ("Thermal throttling", seeding::Utf8(buffer));
    EXPECT_EQ(-1, engine.GetPwrVariableName(L"Nothing", buffer, 64));
    EXPECT_EQ(-1, engine.GetPwrVariableOptDesc(L"DiskOffTimeOut", 14, buffer, 64));
    EXPECT_EQ(9, engine.GetPwrVariableOptDesc(L"DiskOffTimeOut", 0, buffer, 64));
    EXPECT_EQ("3 minutes", seeding::Utf8(buffer));
    EXPECT_EQ(3, engine.GetPwrVariableUnit(L"DiskOffTimeOut", buffer, 4));
    EXPECT_EQ("Sec", seeding::Utf8(buffer));
    ASSERT_TRUE(seeding::SetKey(Catalogue(), "DiskOffTimeOut", "Unit", ""));
    EXPECT_EQ(-1, engine.GetPwrVariableUnit(L"DiskOffTimeOut", buffer, 64));
    EXPECT_EQ("Sec", seeding::Utf8(buffer));
}

} // namespace
