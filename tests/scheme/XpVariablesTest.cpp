// tests/scheme/XpVariablesTest.cpp
//
// Single variables on the XP path: where each lies, what a read leaves behind, what a write refuses.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "notebook/PowerSource.h"

#include <gmock/gmock.h>

#include <array>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;

namespace
{

constexpr int kScheme = 3;

class XpVariables : public SchemeTest
{
protected:
    /// The same for both power sources.
    static void SetIdle(POWER_ACTION action, ULONG idle, ULONG doze)
    {
        POWER_POLICY policy = Policy(kScheme);
        memcpy(&policy.user.IdleAc.Action, &action, sizeof action);
        memcpy(&policy.user.IdleDc.Action, &action, sizeof action);
        policy.user.IdleTimeoutAc = policy.user.IdleTimeoutDc = idle;
        policy.mach.DozeS4TimeoutAc = policy.mach.DozeS4TimeoutDc = doze;
        UINT scheme = kScheme;
        ASSERT_TRUE(WritePwrScheme(&scheme, nullptr, nullptr, &policy));
    }
};

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
    EXPECT_EQ(2700, engine.GetPwrVariable(kScheme, 5, L"hibernatetimeout"));

    // A hibernate time at the standby time is refused on mains and means none on battery.
    for (const int ifAC : {1, 0})
    {
        ASSERT_EQ(1, engine.SetPwrVariable(kScheme, ifAC, L"HibernateTimeOut", 0));
        ASSERT_EQ(1, engine.SetPwrVariable(kScheme, ifAC, L"StandbyTimeOut", 600));
        EXPECT_EQ(ifAC != 0 ? -2 : 1, engine.SetPwrVariable(kScheme, ifAC, L"HibernateTimeOut", 600));
        EXPECT_EQ(0, engine.GetPwrVariable(kScheme, ifAC, L"HibernateTimeOut"));
    }
    SetIdle(PowerActionSleep, 3600, static_cast<ULONG>(-1800));
    EXPECT_EQ(-2, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", 2700));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 0, L"StandbyTimeOut", 2700));

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
    SetIdle(static_cast<POWER_ACTION>(0x7FFFFFFF), 0xFFFFFFFF, 0xFFFFFFFF);
    for (const int ifAC : {1, 0})
    {
        EXPECT_EQ(0, engine.GetPwrVariable(kScheme, ifAC, L"StandbyTimeOut"));
        EXPECT_EQ(0, engine.GetPwrVariable(kScheme, ifAC, L"HibernateTimeOut"));
        EXPECT_EQ(1, engine.SetPwrVariable(kScheme, ifAC, L"StandbyTimeOut", 600));
        EXPECT_EQ(600, engine.GetPwrVariable(kScheme, ifAC, L"StandbyTimeOut"));
    }
}

TEST_F(XpVariables, SpeedAndAdaptivePolicyChangeThreeFieldsTogether)
{
    struct Row
    {
        int ifAC;
        const wchar_t* name;
        int value;
        int policy;
        int forced;
        int speed; ///< as it is read
    };
    for (const Row& row : {Row{1, L"CpuSpeed", 75, 0, 75, 75}, Row{1, L"CpuSpeed", 0, 3, 100, 0},
                           Row{0, L"CpuSpeed", 0, 3, 100, 0}, Row{0, L"CpuSpeed", 50, 0, 50, 50},
                           Row{1, L"CpuAdaptive", 2, 2, 100, 0}, Row{1, L"CpuAdaptive", 0, 0, 100, 100},
                           Row{0, L"CpuAdaptive", 1, 1, 100, 0}})
    {
        const auto fields = [](bool ac)
        {
            const USER_POWER_POLICY user = Policy(kScheme).user;
            const MACHINE_PROCESSOR_POWER_POLICY machine = Processor(kScheme);
            return ac ? std::array<int, 3>{user.ThrottlePolicyAc, user.ForcedThrottleAc,
                                           machine.ProcessorPolicyAc.DynamicThrottle}
                      : std::array<int, 3>{user.ThrottlePolicyDc, user.ForcedThrottleDc,
                                           machine.ProcessorPolicyDc.DynamicThrottle};
        };
        const bool ac = row.ifAC != 0;
        const auto other = fields(!ac);
        ASSERT_EQ(1, engine.SetPwrVariable(kScheme, row.ifAC, row.name, row.value));
        EXPECT_EQ((std::array{row.policy, row.forced, row.policy}), fields(ac));
        EXPECT_EQ(other, fields(!ac));
        EXPECT_EQ(row.speed, engine.GetPwrVariable(kScheme, row.ifAC, L"CpuSpeed"));
        EXPECT_EQ(row.policy, engine.GetPwrVariable(kScheme, row.ifAC, L"CpuAdaptive"));
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

TEST_F(XpVariables, RefusalsSayWhyAndChangeNothingButTheProcessorsRecord)
{
    struct Row
    {
        int scheme;
        const wchar_t* name;
        int value;
        const char* refused; ///< the call that fails; null for none
        const char* line;    ///< null for none
        int throttle;        ///< the processor's record goes first
    };
    ASSERT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"CpuSpeed", 50));
    const auto before = Policy(kScheme);
    for (const Row& row :
         {Row{77, L"Wifi", 1, nullptr, "FindPwrScheme error", 0},
          Row{-1, L"Wifi", 1, nullptr, "FindPwrScheme error", 0},
          Row{kScheme, L"Wif", 1, nullptr, "ParseVarName error", 0},
          Row{kScheme, L"", 1, nullptr, "ParseVarName error", 0},
          Row{kScheme, L"MonitorOffTimeOut", 61, nullptr, "ValidateData error", 0},
          Row{kScheme, L"Wifi", 2, nullptr, nullptr, 0}, Row{kScheme, L"LUMS", 6, nullptr, nullptr, 0},
          Row{kScheme, L"CpuSpeed", 0, "ReadPwrScheme", "CSchemeEx::GetPwrVariable: Can't read pwr scheme: 3",
              0},
          Row{kScheme, L"CpuSpeed", 0, "ReadProcessorPwrScheme",
              "CSchemeEx::GetPwrVariable: Can't read cpu scheme: 3", 0},
          Row{kScheme, L"CpuSpeed", 0, "WriteProcessorPwrScheme", "::WriteProcessorPwrScheme error", 0},
          Row{kScheme, L"CpuSpeed", 0, "WritePwrScheme", "::WritePwrScheme error", 3}})
    {
        if (row.refused != nullptr)
        {
            Faults::Inject(row.refused, 1, ERROR_ACCESS_DENIED);
        }
        const auto lines =
            LinesOf([&] { EXPECT_EQ(-1, engine.SetPwrVariable(row.scheme, 1, row.name, row.value)); });
        EXPECT_EQ(row.line == nullptr ? Lines{} : Lines{row.line}, lines);
        const auto after = Policy(kScheme);
        EXPECT_EQ(BytesOf(before), BytesOf(after));
        EXPECT_EQ(row.throttle, Processor(kScheme).ProcessorPolicyAc.DynamicThrottle);
    }
    EXPECT_EQ(kAbsent, Stored(kScheme, "Wifi"));
    EXPECT_EQ(kAbsent, Stored(kScheme, "LUMS"));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, 1, L"Wif")); }),
                ElementsAre("ParseVarName(Wif) error", ""));
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
