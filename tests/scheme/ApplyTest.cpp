// tests/scheme/ApplyTest.cpp
//
// Applying a scheme: the order of the steps, what a failure leaves behind, and the user's own policies as
// they may stand in the registry. What a request changes is in the transcripts.

#include "control/Snapshot.h"
#include "scheme/SchemeTest.h"
#include "support/BoardService.h"

#include "base/Clock.h"
#include "control/RegistryEditor.h"

#include <gmock/gmock.h>

#include <set>

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

    /// What the machine and the user have on record.
    static std::string Recorded()
    {
        return seeding::GetKey(Values(), "ORVLCfg", "CurrentScheme") + ' ' +
               seeding::GetKey(Users(), SidOf("alice"), "ActiveSchemeID");
    }
};
using VistaApply = OnVista<XpApply>;

TEST_F(XpApply, TheServiceIsNotifiedWhateverCanBeRead)
{
    // Two threads agree on the time only in real time.
    Clock::SetInstant(false);
    BoardService service;
    // The boards' own waits take a second.
    for (const auto& [configured, expected] : {std::pair{"-2147483648", std::set<std::string>{"1000"}},
                                               {"-1", {"1000"}},
                                               {"700", {"1000", "700"}}})
    {
        ASSERT_TRUE(seeding::SetKey(kRoot, "OrvlDevMgr", "TimeoutMS", configured));
        Trace::Clear();
        EXPECT_EQ(1, engine.SetActivePwrScheme(1));
        std::set<std::string> waits;
        for (const TracedCall& call : Trace::CallsOf("WaitForSingleObject"))
        {
            waits.insert(call.arguments.substr(call.arguments.rfind(' ') + 1));
        }
        EXPECT_EQ(expected, waits);
    }
    service.TakeRequests();
    seeding::Remove(kRoot);
    const auto lines = LinesOf([&] { EXPECT_EQ(1, engine.SetActivePwrScheme(4)); });
    EXPECT_EQ("SetActivePwrScheme 4: initialize ORVLCfg.ini failed", lines.front());
    EXPECT_EQ("1 (absent)", Recorded());
    Faults::Inject("SHGetFolderPathW", 1, ERROR_FILE_NOT_FOUND, true);
    EXPECT_EQ(4, engine.SetActivePwrScheme(3));
    const auto requests = service.TakeRequests();
    ASSERT_EQ(2U, requests.size());
    EXPECT_EQ(4U, requests[0].value);
    EXPECT_EQ(3U, requests[1].value);
    EXPECT_EQ("", seeding::Utf8(requests[1].text));
}

// Without a service the scheme is active and recorded all the same.
TEST_F(XpApply, TheSystemComesBeforeTheRecordsAndTheUsersRecordFirst)
{
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    EXPECT_EQ(1, engine.AddtoUserList(L"alice")) << "listed already";
    Faults::Inject("SetActivePwrScheme", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(-1, engine.SetActivePwrScheme(2, L"alice"));
    EXPECT_EQ("(absent) (absent)", Recorded());
    Faults::Inject("WritePrivateProfileStringW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(-1, engine.SetActivePwrScheme(2, L"alice"));
    EXPECT_EQ("2 (absent)", Recorded());
    EXPECT_EQ(-1, engine.SetActivePwrScheme(0, L"alice"));
    EXPECT_EQ("0 0", Recorded());
    EXPECT_EQ(-1, engine.SetActivePwrScheme(3));
    EXPECT_EQ("3 0", Recorded());
    Run("active -> 3");
}

// What a refusal of the operating system leaves behind is in the transcripts.
TEST_F(XpApply, NothingIsRecordedForASchemeThatIsNotThere)
{
    EXPECT_EQ(Lines{"SetActivePwrScheme -1 failed at nIndex<0"},
              LinesOf([&] { EXPECT_EQ(-1, engine.SetActivePwrScheme(-1)); }));
    for (const auto& [scheme, line] : {std::pair{-1, "SetActivePwrScheme -1 failed at nIndex<0 "},
                                       {77, "Start recording log information:"}})
    {
        // The user's own policy has been installed before the index is looked at.
        const auto lines =
            LinesOf([&, index = scheme] { EXPECT_EQ(-1, engine.SetActivePwrScheme(index, L"alice")); });
        EXPECT_THAT(lines, Contains("Success! fn_PWRDL_WriteGlobalPwrPolicy"));
        EXPECT_EQ(line, lines.back());
    }
    Run("active -> 1");
    EXPECT_EQ("(absent) (absent)", Recorded());
}

// A source that isn't adaptive has its range left alone; the other's maximum is restated before its minimum.
TEST_F(VistaApply, TheRangeOfAnAdaptiveSourceIsStatedAgain)
{
    Run("set 2 dc CpuAdaptive = 0 -> 0; set 2 ac CpuAdaptive = 1 -> 1; "
        "set 2 ac CpuSpeedMin = 20 -> 20");
    Trace::Clear();
    Faults::Inject("PowerSetActiveScheme", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(-1, engine.SetActivePwrScheme(2));
    EXPECT_EQ("(absent) (absent)", Recorded());
    EXPECT_TRUE(Trace::CallsOf("PowerWriteDCValueIndex").empty());
    const auto writes = Trace::CallsOf("PowerWriteACValueIndex");
    ASSERT_EQ(2U, writes.size());
    EXPECT_EQ("100 20", writes[0].arguments + ' ' + writes[1].arguments);
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
        m_user = SidOf("alice") + "\\Control Panel\\PowerCfg";
        m_power = "HKEY_USERS\\" + m_user;
        ASSERT_TRUE(RegistryEditor::WriteText(m_power, "CurrentPowerPolicy", "5"));
        StoreTimes(PowerActionSleep, 1200, 2400);
        Run("set 2 ac HibernateTimeOut = 0 -> 1; set 2 ac StandbyTimeOut = 0 -> 1; "
            "set 2 ac HibernateTimeOut = 21600 -> 1; set 2 ac DiskOffTimeOut = 300 -> 1");
    }

    void StoreTimes(POWER_ACTION action, ULONG idle, ULONG doze)
    {
        POWER_POLICY policy = Policy(5);
        policy.user.SpindownTimeoutAc = 1500;
        policy.user.IdleAc.Action = action;
        policy.user.IdleTimeoutAc = idle;
        policy.mach.DozeS4TimeoutAc = doze;
        ASSERT_TRUE(RegistryEditor::Write(m_power + "\\PowerPolicies\\5", "Policies",
                                          {REG_BINARY, BytesOf(policy.user)}));
        ASSERT_TRUE(RegistryEditor::Write(kMachine, "Policies", {REG_BINARY, BytesOf(policy.mach)}));
    }

    std::string m_user;
    std::string m_power;
};

TEST_F(UsersPolicy, AHibernateTimeThatTheTargetHasOvertakenGivesWayToALaterOne)
{
    for (const auto& [action, idle, doze, standby, expected] :
         {std::tuple{PowerActionSleep, 600U, 1200U, 900, 1800},
          std::tuple{PowerActionSleep, 600U, 1200U, 1800, 2700},
          std::tuple{PowerActionSleep, 600U, 1200U, 2700, 3600},
          std::tuple{PowerActionSleep, 600U, 0U, 900, 0},
          std::tuple{PowerActionHibernate, 1800U, 0U, 900, 1800},
          std::tuple{PowerActionNone, 1800U, 600U, 0, 0}})
    {
        StoreTimes(action, idle, doze);
        Run("set 2 ac HibernateTimeOut = 0 -> 1; set 2 ac StandbyTimeOut = " + std::to_string(standby) +
            " -> 1");
        engine.SetGolbalPwrPolicyFromCurrentUser(2);
        EXPECT_EQ(expected, engine.GetPwrVariable(2, 1, L"HibernateTimeOut"));
    }
}

// Each damage skips what depends on it, says so, and leaves the rest alone.
TEST_F(UsersPolicy, WhatCantBeReadIsSkipped)
{
    const std::tuple<std::string, std::size_t, const char*, const char*, std::string> records[] = {
        {m_power + "\\PowerPolicies\\5", 80, "user",
         "failed, error=", "get 2 ac DiskOffTimeOut -> 300; get 2 ac HibernateTimeOut -> 21600"},
        {kMachine, 64, "machine",
         "failed, error=", "get 2 ac DiskOffTimeOut -> 1500; get 2 ac HibernateTimeOut -> 21600"},
        {m_power + "\\GlobalPowerPolicy", 176, "",
         "failed, nsize=", "get 2 ac DiskOffTimeOut -> 1500; get 2 ac HibernateTimeOut -> 3600"},
    };
    Snapshot sound(Folder());
    for (const auto& [key, size, policy, failed, times] : records)
    {
        // One that is too long, one that is too short, one of another type.
        for (const auto& [length, type] :
             {std::pair{size + 1, REG_BINARY}, {size - 1, REG_BINARY}, {size, REG_SZ}})
        {
            SCOPED_TRACE(key + ' ' + std::to_string(length));
            ASSERT_TRUE(RegistryEditor::Write(key, "Policies",
                                              {static_cast<DWORD>(type), std::string(length, '\1')}));
            const std::string said =
                (key == kMachine ? "ReadMachine" : "ReadUser") +
                ("PowerPolicy: Query value Policies at Key " + key.substr(key.find('\\') + 1)) + ' ' + failed;
            EXPECT_THAT(LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); }),
                        Contains(StartsWith(said)));
            Run(times);
            ASSERT_TRUE(sound.Restore());
        }
        ASSERT_TRUE(RegistryEditor::RemoveKey(key));
        const std::vector<std::string> lines = LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); });
        EXPECT_THAT(lines, Contains(StartsWith((key == kMachine ? "ReadMachine" : "ReadUser") +
                                               ("PowerPolicy: Open key " + key.substr(key.find('\\') + 1)) +
                                               " failed, error=")));
        if (*policy != 0)
        {
            EXPECT_THAT(lines, Contains(std::string("SetGolbalPwrPolicyFromCurrentUser: Can't read ") +
                                        policy + " power policy: 2"));
        }
        ASSERT_TRUE(sound.Restore());
    }
}

// A number of another type counts as none.
TEST_F(UsersPolicy, WithoutANumberTheTimesAreThoseOfScheme0)
{
    const std::string times = std::to_string(Policy(0).user.SpindownTimeoutAc);
    for (const DWORD type : {DWORD{REG_BINARY}, DWORD{REG_DWORD}})
    {
        ASSERT_TRUE(RegistryEditor::Write(m_power, "CurrentPowerPolicy", {type, std::string("5\0\0\0", 4)}));
        EXPECT_THAT(
            LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); }),
            Contains("ReadUserActivePowerScheme: Query CurrentPowerPolicy at Key " + m_user + " failed"));
        Run("get 2 ac DiskOffTimeOut -> " + times + "; set 2 ac DiskOffTimeOut = 300 -> 1");
    }
}

} // namespace
