// tests/scheme/ApplyTest.cpp
//
// Applying a scheme: the order of the steps, what a failure leaves behind, and the user's own policies as
// they may stand in the registry. What a request changes is pinned by the transcripts.

#include "scheme/SchemeTest.h"
#include "support/BoardService.h"
#include "support/Snapshot.h"

#include "notebook/Clock.h"
#include "notebook/RegistryEditor.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace
{

class XpApply : public SchemeTest
{
protected:
    using SchemeTest::SchemeTest;

    static std::string CurrentScheme()
    {
        return seeding::GetKey(Values(), "ORVLCfg", "CurrentScheme");
    }

    static std::string ActiveOf(const std::string& user)
    {
        return seeding::GetKey(Users(), SidOf(user), "ActiveSchemeID");
    }

    /// What the power manager is asked from the global policy on, and what is written to files.
    Lines LastSteps(int scheme)
    {
        Trace::Clear();
        engine.SetActivePwrScheme(scheme, L"alice");
        Lines steps;
        for (const TracedCall& call : Trace::Calls())
        {
            if (call.function == "WriteGlobalPwrPolicy")
            {
                steps.clear();
            }
            else if (call.function == "WritePrivateProfileStringW")
            {
                const std::string rest = call.arguments.substr(call.arguments.find(", ") + 2);
                steps.push_back(rest.substr(0, rest.find(',')));
            }
            else if (call.callClass == CallClass::Power && call.function != "PowerReadFriendlyName")
            {
                steps.push_back(call.function);
            }
        }
        return steps;
    }
};
using VistaApply = OnVista<XpApply>;

TEST_F(XpApply, TheServiceIsToldWhateverCanBeRead)
{
    // Two threads keep time together only in real time.
    Clock::SetInstant(false);
    BoardService service;
    for (const auto& [configured, wait] :
         {std::pair{"", "1000"}, {"-1", "1000"}, {"-2147483648", "1000"}, {"700", "700"}})
    {
        ASSERT_TRUE(seeding::SetKey(Root(), "OrvlDevMgr", "TimeoutMS", configured));
        Trace::Clear();
        EXPECT_EQ(1, engine.SetActivePwrScheme(1));
        const auto waits = Trace::CallsOf("WaitForSingleObject");
        EXPECT_EQ(*wait == '1' ? waits.size() : 1,
                  std::count_if(waits.begin(), waits.end(),
                                [&, ends = std::string(", ") + wait](const TracedCall& call)
                                { return call.arguments.ends_with(ends); }));
    }
    service.TakeRequests();
    seeding::Remove(Root());
    const auto lines = LinesOf([&] { EXPECT_EQ(1, engine.SetActivePwrScheme(4)); });
    EXPECT_EQ("SetActivePwrScheme 4: initialize ORVLCfg.ini failed", lines.front());
    EXPECT_EQ("1", CurrentScheme());
    Faults::Inject("SHGetFolderPathW", 1, ERROR_FILE_NOT_FOUND, true);
    EXPECT_EQ(4, engine.SetActivePwrScheme(3));
    const auto requests = service.TakeRequests();
    ASSERT_EQ(2U, requests.size());
    EXPECT_EQ(4U, requests[0].value);
    EXPECT_EQ(3U, requests[1].value);
    EXPECT_EQ("", seeding::Utf8(requests[1].text));
}

// Without a service the scheme is active and recorded all the same.
TEST_F(XpApply, TheStepsComeInTheirOrder)
{
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    EXPECT_THAT(LastSteps(2), ElementsAre("GetActivePwrScheme", "SetActivePwrScheme", "\"ActiveSchemeID\"",
                                          "\"CurrentScheme\""));
    EXPECT_EQ(2, engine.GetActivePwrScheme(0));
    EXPECT_EQ("2", CurrentScheme());
    EXPECT_EQ("2", ActiveOf("alice"));
}

TEST_F(VistaApply, TheStepsComeInTheirOrder)
{
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    // Not adaptive on battery: that source's range is left alone.
    ASSERT_EQ(0, engine.SetPwrVariable(2, 0, L"CpuAdaptive", 0));
    ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"CpuAdaptive", 1));
    for (const wchar_t* name : {L"CpuSpeedMin", L"CpuSpeedMax"})
    {
        ASSERT_GE(engine.GetPwrVariable(2, 1, name), 0);
    }
    const std::string dc = "PowerReadDCValueIndex";
    const std::string ac = "PowerReadACValueIndex";
    const std::string write = "PowerWriteACValueIndex";
    EXPECT_THAT(LastSteps(2), ElementsAre("PowerGetActiveScheme", dc, ac, dc, ac, "\"CpuSpeedMax\"", write,
                                          "\"CpuSpeedMin\"", write, dc, ac, dc, ac, "PowerSetActiveScheme",
                                          "\"ActiveSchemeID\"", "\"CurrentScheme\""));
    EXPECT_EQ(2, engine.GetActivePwrScheme(0));
}

TEST_F(XpApply, NothingIsRecordedForASchemeThatIsNotActivated)
{
    struct Row
    {
        int scheme;
        bool refused;
        const char* bareLine;
        const char* userLine; ///< null for none
    };
    for (const Row& row :
         {Row{-1, false, "SetActivePwrScheme -1 failed at nIndex<0",
              "SetActivePwrScheme -1 failed at nIndex<0 "},
          Row{77, false, "SetActivePwrScheme 77 failed at can't find scheme", nullptr},
          Row{3, true, "SetActivePwrScheme 3 failed at 5", "SetActivePwrScheme 3 failed at 5 "}})
    {
        if (row.refused)
        {
            Faults::Inject("SetActivePwrScheme", 1, ERROR_ACCESS_DENIED, true);
        }
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.SetActivePwrScheme(row.scheme)); }),
                    ElementsAre(row.bareLine));
        // The user's own policy has been installed before the index is looked at.
        const auto lines = LinesOf([&] { EXPECT_EQ(-1, engine.SetActivePwrScheme(row.scheme, L"alice")); });
        EXPECT_THAT(lines, Contains("Success! fn_PWRDL_WriteGlobalPwrPolicy"));
        EXPECT_EQ(row.userLine != nullptr ? row.userLine : "Start recording log information:", lines.back());
        EXPECT_EQ(1, engine.GetActivePwrScheme(0));
        EXPECT_EQ(kAbsent, CurrentScheme());
        EXPECT_EQ(kAbsent, ActiveOf("alice"));
    }
}

TEST_F(VistaApply, ARefusedSchemeStaysInactiveAndUnrecorded)
{
    Faults::Inject("PowerSetActiveScheme", 1, ERROR_ACCESS_DENIED);
    for (const int scheme : {2, -1, 77})
    {
        EXPECT_TRUE(LinesOf([&] { EXPECT_EQ(-1, engine.SetActivePwrScheme(scheme)); }).empty());
        EXPECT_EQ(1, engine.GetActivePwrScheme(0));
        EXPECT_EQ(kAbsent, CurrentScheme());
    }
}

/// The user's policies, which are those of scheme 5 there, and scheme 2 as the target of the times.
class UsersPolicy : public XpApply
{
protected:
    static constexpr const char* kMachine =
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\"
        "Controls Folder\\PowerCfg\\PowerPolicies\\5";

    void SetUp() override
    {
        XpApply::SetUp();
        m_power = "HKEY_USERS\\" + SidOf("alice") + "\\Control Panel\\PowerCfg";
        ASSERT_TRUE(RegistryEditor::WriteText(m_power, "CurrentPowerPolicy", "5"));
        m_user = Policy(5).user;
        m_machine = Policy(5).mach;
        Store(PowerActionSleep, 1200, 2400);
    }

    void Store(POWER_ACTION action, ULONG idle, ULONG doze)
    {
        m_user.SpindownTimeoutAc = 1500;
        m_user.SpindownTimeoutDc = 600;
        m_user.IdleAc.Action = action;
        m_user.IdleTimeoutAc = idle;
        m_machine.DozeS4TimeoutAc = doze;
        ASSERT_TRUE(
            RegistryEditor::Write(m_power + "\\PowerPolicies\\5", "Policies", {REG_BINARY, BytesOf(m_user)}));
        ASSERT_TRUE(RegistryEditor::Write(kMachine, "Policies", {REG_BINARY, BytesOf(m_machine)}));
    }

    std::string m_power;
    USER_POWER_POLICY m_user{};
    MACHINE_POWER_POLICY m_machine{};
};

TEST_F(UsersPolicy, AHibernateTimeThatTheTargetHasOvertakenGivesWayToALaterOne)
{
    struct Row
    {
        POWER_ACTION action;
        ULONG idle;
        ULONG doze;
        int standby; ///< of the target
        int expected;
    };
    for (const Row& row :
         {Row{PowerActionSleep, 600, 1200, 900, 1800}, Row{PowerActionSleep, 600, 1200, 1800, 2700},
          Row{PowerActionSleep, 600, 1200, 2700, 3600}, Row{PowerActionSleep, 600, 0, 900, 0},
          Row{PowerActionHibernate, 1800, 0, 900, 1800}, Row{PowerActionNone, 1800, 600, 0, 0}})
    {
        Store(row.action, row.idle, row.doze);
        ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"HibernateTimeOut", 0));
        ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"StandbyTimeOut", row.standby));
        engine.SetGolbalPwrPolicyFromCurrentUser(2);
        EXPECT_EQ(row.expected, engine.GetPwrVariable(2, 1, L"HibernateTimeOut"))
            << row.idle << ' ' << row.standby;
    }
}

// Each damage skips what depends on it, says so, and leaves the rest alone.
TEST_F(UsersPolicy, WhatCantBeReadIsSkipped)
{
    enum Damage
    {
        NoKey,
        NoValue,
        TooLong,
        TooShort,
        OtherType
    };
    struct Record
    {
        std::string key;
        std::size_t size;
        std::string reader;
        std::string follows; ///< another line, where there is one
        int disk;            ///< the times that scheme 2 has then
        int hibernate;
    };
    const int disk = engine.GetPwrVariable(2, 1, L"DiskOffTimeOut");
    const int hibernate = engine.GetPwrVariable(2, 1, L"HibernateTimeOut");
    const std::string global = m_power + "\\GlobalPowerPolicy";
    const std::string cant = "SetGolbalPwrPolicyFromCurrentUser: Can't read ";
    const Record records[] = {
        {m_power + "\\PowerPolicies\\5", 80, "ReadUser", cant + "user power policy: 2", disk, hibernate},
        {kMachine, 64, "ReadMachine", cant + "machine power policy: 2", 1500, hibernate},
        {global, 176, "ReadUser", "", 1500, 3600},
    };
    Snapshot sound(Folder());
    for (const Record& record : records)
    {
        for (const Damage damage : {NoKey, NoValue, TooLong, TooShort, OtherType})
        {
            SCOPED_TRACE(record.key + ' ' + std::to_string(damage));
            sound.Restore();
            const std::size_t size =
                damage == TooLong ? record.size + 1 : record.size - (damage == TooShort ? 1 : 0);
            const DWORD type = damage == OtherType ? REG_SZ : REG_BINARY;
            ASSERT_TRUE(damage == NoKey ? RegistryEditor::RemoveKey(record.key)
                        : damage == NoValue
                            ? RegistryEditor::RemoveValue(record.key, "Policies")
                            : RegistryEditor::Write(record.key, "Policies", {type, std::string(size, '\1')}));
            const auto lines = LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); });
            const bool isGlobal = record.key == global;
            std::string line = record.reader + "PowerPolicy: " +
                               (damage == NoKey ? "Open key " : "Query value Policies at Key ") +
                               record.key.substr(record.key.find('\\') + 1) + " failed, ";
            line += isGlobal && damage > NoValue ? "nsize=" + std::to_string(size) + ',' : "";
            line += damage > TooLong ? "error=13" : "";
            EXPECT_THAT(lines, Contains(StartsWith(line)));
            EXPECT_TRUE(isGlobal || std::count(lines.begin(), lines.end(), record.follows) == 1);
            EXPECT_EQ(isGlobal, lines.back() != "Start recording log information:");
            EXPECT_EQ(record.disk, engine.GetPwrVariable(2, 1, L"DiskOffTimeOut"));
            EXPECT_EQ(record.hibernate, engine.GetPwrVariable(2, 1, L"HibernateTimeOut"));
        }
    }
    sound.Restore();
}

TEST_F(UsersPolicy, WithoutANumberTheTimesAreThoseOfScheme0)
{
    const int times = static_cast<int>(Policy(0).user.SpindownTimeoutDc);
    for (const DWORD type : {DWORD{REG_BINARY}, DWORD{REG_DWORD}, DWORD{REG_NONE}})
    {
        ASSERT_TRUE(type == REG_NONE ? RegistryEditor::RemoveValue(m_power, "CurrentPowerPolicy")
                                     : RegistryEditor::Write(m_power, "CurrentPowerPolicy",
                                                             {type, std::string("5\0\0\0", 4)}));
        ASSERT_EQ(1, engine.SetPwrVariable(2, 0, L"DiskOffTimeOut", 600));
        EXPECT_THAT(LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); }),
                    Contains("ReadUserActivePowerScheme: Query CurrentPowerPolicy at Key " +
                             m_power.substr(m_power.find('\\') + 1) + " failed"));
        EXPECT_EQ(times, engine.GetPwrVariable(2, 0, L"DiskOffTimeOut"));
    }
}

TEST_F(UsersPolicy, OfAUserWhoIsNotLoggedOnChangesNothing)
{
    ASSERT_TRUE(Notebook::LogOff("alice"));
    const POWER_POLICY before = Policy(2);
    const auto calls = CallsOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); });
    EXPECT_THAT(calls, testing::Each(testing::Not(testing::HasSubstr("Write"))));
    const POWER_POLICY after = Policy(2);
    EXPECT_EQ(BytesOf(before), BytesOf(after));
}

// The machine's part stays, and without the function that gives it nothing is written and nothing claimed.
TEST_F(UsersPolicy, TheGlobalPolicyIsTheUsersButForTheMachinesPart)
{
    GLOBAL_POWER_POLICY before{};
    ASSERT_TRUE(ReadGlobalPwrPolicy(&before));
    GLOBAL_USER_POWER_POLICY user = before.user;
    user.LidCloseAc.Action = PowerActionHibernate;
    ASSERT_TRUE(
        RegistryEditor::Write(m_power + "\\GlobalPowerPolicy", "Policies", {REG_BINARY, BytesOf(user)}));
    for (const bool isPresent : {false, true})
    {
        ASSERT_TRUE(Notebook::SetModule("PowrProf.dll.ReadGlobalPwrPolicy", isPresent));
        const auto lines = LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); });
        EXPECT_EQ(isPresent ? 1 : 0,
                  std::count(lines.begin(), lines.end(), "Success! fn_PWRDL_WriteGlobalPwrPolicy"));
        ASSERT_TRUE(Notebook::SetModule("PowrProf.dll.ReadGlobalPwrPolicy", true));
        GLOBAL_POWER_POLICY after{};
        ASSERT_TRUE(ReadGlobalPwrPolicy(&after));
        EXPECT_EQ(BytesOf(isPresent ? user : before.user), BytesOf(after.user));
        EXPECT_EQ(BytesOf(before.mach), BytesOf(after.mach));
    }
}

} // namespace
