// tests/scheme/ApplyTest.cpp
//
// Applying a scheme: what is asked of the platform, in which order, and what a failure leaves behind.

#include "scheme/SchemeTest.h"
#include "service/ServiceProcess.h"

#include "foundation/Owners.h"
#include "notebook/Clock.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace
{

std::string Times(int count, const std::string& steps)
{
    return count == 1 ? steps : Times(count - 1, steps) + steps;
}

// What the power manager is asked, and what is written anywhere, in order, each followed by a blank. What
// lies between, the opening of files and the look for schemes, is counted by the acceptance tests.
std::string StepsOf(const std::vector<std::string>& calls)
{
    std::string steps;
    for (const std::string& name : calls)
    {
        // The first event is the result board's; with it the exchange with the service begins.
        if (name == "OpenEventW")
        {
            break;
        }
        if (name.find("Pwr") != std::string::npos || name.starts_with("Power") || name.starts_with("Write"))
        {
            steps += name + ' ';
        }
    }
    return steps;
}

class XpApply : public SchemeTest
{
protected:
    using SchemeTest::SchemeTest;

    void SetUp() override
    {
        SchemeTest::SetUp();
        // Two processes keep time together only in real time.
        Clock::SetInstant(false);
    }

    static std::string CurrentScheme()
    {
        return seeding::GetKey(Values(), "ORVLCfg", "CurrentScheme");
    }

    /// Stores a value below a key that exists.
    static void SetValue(HKEY root, const std::string& path, const wchar_t* name, const void* data,
                         DWORD size, DWORD type)
    {
        owners::Key opened;
        RegOpenKeyExW(root, seeding::Wide(path).data(), 0, KEY_ALL_ACCESS, opened.Receive());
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetValueExW(opened.Get(), name, 0, type, static_cast<const BYTE*>(data), size));
    }

    /// Stores a record below alice's power key; `size` bytes of it.
    static void SetPolicies(const std::string& key, const void* data, DWORD size, DWORD type = REG_BINARY)
    {
        SetValue(HKEY_USERS, SidOf("alice") + "\\Control Panel\\PowerCfg\\" + key, L"Policies", data, size,
                 type);
    }

    static std::string ActiveOf(const std::string& user)
    {
        return seeding::GetKey(Users(), SidOf(user), "ActiveSchemeID");
    }
};
using VistaApply = OnVista<XpApply>;

TEST_F(XpApply, TellsTheServiceAndRecordsTheChoice)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    const int before = engine.GetActivePwrScheme(0);
    EXPECT_EQ(before, engine.SetActivePwrScheme(4, L"alice"));
    EXPECT_EQ(4, engine.GetActivePwrScheme(0));
    EXPECT_EQ("4", CurrentScheme());
    EXPECT_EQ("4", ActiveOf("alice"));
    EXPECT_TRUE(service.WaitFor("request 3 (scheme applied), value 4"));
    EXPECT_THAT(service.Printed(), testing::HasSubstr("\\Kelvo\\ORVL\\Cfg\""));

    // The bare operation keeps no user's record and reads its own back.
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(4, engine.SetActivePwrScheme(2)); }),
                Contains("get current scheme in set avtive is 2"));
    EXPECT_EQ("2", CurrentScheme());
    EXPECT_EQ("4", ActiveOf("alice"));

    // Without a configured time it is a second, like that of the boards' own waits.
    for (const char* none : {"", "-1", "-2147483648"})
    {
        ASSERT_TRUE(seeding::SetKey(Root(), "OrvlDevMgr", "TimeoutMS", none));
        Trace::Clear();
        EXPECT_EQ(2, engine.SetActivePwrScheme(2));
        for (const TracedCall& call : Trace::CallsOf("WaitForSingleObject"))
        {
            EXPECT_THAT(call.arguments, testing::EndsWith(", 1000"));
        }
    }
}

// Without a service the scheme is active and recorded all the same.
TEST_F(XpApply, TheStepsOfTheRoadComeInTheirOrder)
{
    const std::string read = "ReadPwrScheme ReadProcessorPwrScheme ";
    const std::string allowed = "IsPwrHibernateAllowed ";
    const std::string write = "WriteProcessorPwrScheme WritePwrScheme ";
    // On battery the target's standby time has overtaken the user's hibernate time, so a later one is sought.
    const std::string expected =
        Times(2, read + write) + Times(2, read) + read + allowed + write + allowed + read + allowed + write +
        "ReadGlobalPwrPolicy WriteGlobalPwrPolicy GetActivePwrScheme SetActivePwrScheme "
        "WritePrivateProfileStringW WritePrivateProfileStringW ";
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    EXPECT_EQ(expected, StepsOf(CallsOf([&] { EXPECT_EQ(-1, engine.SetActivePwrScheme(2, L"alice")); })));
    EXPECT_EQ(2, engine.GetActivePwrScheme(0));
    EXPECT_EQ("2", CurrentScheme());
    EXPECT_EQ("2", ActiveOf("alice"));
}

TEST_F(VistaApply, TheStepsOfTheRoadComeInTheirOrder)
{
    // Not adaptive on battery: that source's range is left alone.
    ASSERT_EQ(0, engine.SetPwrVariable(2, 0, L"CpuAdaptive", 0));
    ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"CpuAdaptive", 1));
    for (const wchar_t* name : {L"CpuSpeedMin", L"CpuSpeedMax"})
    {
        ASSERT_GE(engine.GetPwrVariable(2, 1, name), 0);
    }
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    const std::string steps = StepsOf(CallsOf([&] { engine.SetActivePwrScheme(2, L"alice"); }));

    const std::string known = "PowerReadFriendlyName ";
    const std::string readLimit = Times(2, known) + "PowerReadDCValueIndex PowerReadACValueIndex ";
    const std::string read = Times(2, known) + Times(2, readLimit);
    const std::string write = Times(2, known) + "WritePrivateProfileStringW PowerWriteACValueIndex ";
    EXPECT_EQ("WriteGlobalPwrPolicy " + known + "PowerGetActiveScheme " + read + Times(2, write) + read +
                  "PowerSetActiveScheme " + Times(2, "WritePrivateProfileStringW "),
              steps.substr(steps.find("WriteGlobalPwrPolicy")));
    EXPECT_EQ("2", CurrentScheme());
    EXPECT_EQ("2", ActiveOf("alice"));
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
    const int before = engine.GetActivePwrScheme(0);
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
        EXPECT_EQ(before, engine.GetActivePwrScheme(0));
        EXPECT_EQ(kAbsent, CurrentScheme());
        EXPECT_EQ(kAbsent, ActiveOf("alice"));
    }
}

TEST_F(XpApply, WithoutConfigurationTheServiceIsStillTold)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    seeding::Remove(Root());
    const auto lines = LinesOf([&] { EXPECT_GE(engine.SetActivePwrScheme(4), 0); });
    EXPECT_EQ("SetActivePwrScheme 4: initialize ORVLCfg.ini failed", lines.front());
    EXPECT_TRUE(service.WaitFor("value 4"));
    EXPECT_EQ(kAbsent, CurrentScheme());
    Faults::Inject("SHGetFolderPathW", 1, ERROR_FILE_NOT_FOUND, true);
    EXPECT_GE(engine.SetActivePwrScheme(3), 0);
    EXPECT_TRUE(service.WaitFor("value 3, text \"\""));
}

TEST_F(VistaApply, ARefusedSchemeStaysInactiveAndUnrecorded)
{
    ASSERT_EQ(1, engine.GetActivePwrScheme(0));
    Faults::Inject("PowerSetActiveScheme", 1, ERROR_ACCESS_DENIED);
    EXPECT_TRUE(LinesOf([&] { EXPECT_EQ(-1, engine.SetActivePwrScheme(2)); }).empty());
    EXPECT_EQ(-1, engine.SetActivePwrScheme(-1));
    EXPECT_EQ(1, engine.GetActivePwrScheme(0));
    EXPECT_EQ(kAbsent, CurrentScheme());
    EXPECT_EQ(-1, engine.SetActivePwrScheme(2));
    EXPECT_EQ("2", CurrentScheme());
}

// The user's settings come from his own hive, by way of the scheme that is active there.
TEST_F(XpApply, TheUsersOwnSettingsAreTakenOver)
{
    ASSERT_TRUE(seeding::SetText(HKEY_USERS, SidOf("alice") + "\\Control Panel\\PowerCfg",
                                 "CurrentPowerPolicy", "5"));
    USER_POWER_POLICY user = Policy(5).user;
    user.SpindownTimeoutAc = 1500;
    user.SpindownTimeoutDc = 600;
    user.IdleAc.Action = PowerActionHibernate;
    user.IdleTimeoutAc = 1800;
    user.IdleDc.Action = PowerActionNone;
    SetPolicies("PowerPolicies\\5", &user, sizeof user);
    ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"HibernateTimeOut", 0));
    ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"StandbyTimeOut", 1800));

    engine.SetGolbalPwrPolicyFromCurrentUser(2);
    EXPECT_EQ(1500, engine.GetPwrVariable(2, 1, L"DiskOffTimeOut"));
    EXPECT_EQ(600, engine.GetPwrVariable(2, 0, L"DiskOffTimeOut"));
    // His 1800 has been overtaken by the target's standby time.
    EXPECT_EQ(2700, engine.GetPwrVariable(2, 1, L"HibernateTimeOut"));
    EXPECT_EQ(0, engine.GetPwrVariable(2, 0, L"HibernateTimeOut"));
}

TEST_F(XpApply, TheGlobalPolicyIsTheUsersButForTheMachinesPart)
{
    GLOBAL_POWER_POLICY before{};
    ASSERT_TRUE(ReadGlobalPwrPolicy(&before));
    GLOBAL_USER_POWER_POLICY user = before.user;
    user.GlobalFlags ^= EnablePasswordLogon;
    user.LidCloseAc.Action = PowerActionHibernate;
    SetPolicies("GlobalPowerPolicy", &user, sizeof user);

    // Without the one function there is no machine part to keep, so nothing is written and nothing claimed.
    ASSERT_TRUE(Notebook::SetModule("PowrProf.dll.ReadGlobalPwrPolicy", false));
    const auto lines = LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); });
    EXPECT_THAT(lines, Contains("Error! Can't get ReadGlobalPwrPolicy"));
    EXPECT_THAT(lines, Not(Contains("Success! fn_PWRDL_WriteGlobalPwrPolicy")));
    ASSERT_TRUE(Notebook::SetModule("PowrProf.dll.ReadGlobalPwrPolicy", true));
    GLOBAL_POWER_POLICY after{};
    ASSERT_TRUE(ReadGlobalPwrPolicy(&after));
    EXPECT_EQ(BytesOf(before), BytesOf(after));

    engine.SetGolbalPwrPolicyFromCurrentUser(2);
    ASSERT_TRUE(ReadGlobalPwrPolicy(&after));
    EXPECT_EQ(BytesOf(user), BytesOf(after.user));
    EXPECT_EQ(BytesOf(before.mach), BytesOf(after.mach));

    const BYTE other[177] = {};
    for (const auto& [type, size] :
         {std::pair{REG_BINARY, 177U}, {REG_BINARY, 175U}, {REG_BINARY, 0U}, {REG_SZ, 10U}, {REG_SZ, 176U}})
    {
        SetPolicies("GlobalPowerPolicy", other, size, static_cast<DWORD>(type));
        const std::string line = LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); }).back();
        EXPECT_THAT(line,
                    testing::HasSubstr("ReadUserPowerPolicy: Query value Policies at Key " + SidOf("alice") +
                                       "\\Control Panel\\PowerCfg\\GlobalPowerPolicy " +
                                       "failed, nsize=" + std::to_string(size) + ",error="));
        EXPECT_EQ(size <= 176, line.ends_with("error=13")) << "the query itself succeeded";
        GLOBAL_POWER_POLICY still{};
        ASSERT_TRUE(ReadGlobalPwrPolicy(&still));
        EXPECT_EQ(BytesOf(after), BytesOf(still)) << size;
    }
}

TEST_F(XpApply, ARecordOfAnotherTypeOrTooShortIsUnreadable)
{
    const std::string machine =
        "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\PowerPolicies\\5";
    const std::string user = SidOf("alice") + "\\Control Panel\\PowerCfg";
    const std::string schemes = user + "\\PowerPolicies";
    BYTE bytes[100] = {};
    const auto readUser = [&](ULONG room)
    { return engine.ReadUserPowerPolicy(5, seeding::Wide(schemes).data(), bytes, &room); };
    const auto readMachine = [&](ULONG room) { return engine.ReadMachinePowerPolicy(5, bytes, &room); };
    struct Row
    {
        DWORD type;
        int more; ///< bytes than the record's
        int result;
    };
    for (const Row& row : {Row{REG_BINARY, 0, 1}, Row{REG_BINARY, -1, 0}, Row{REG_BINARY, 1, 0},
                           Row{REG_SZ, 0, 0}, Row{REG_DWORD, 0, 0}})
    {
        const BYTE value[81] = {};
        SetPolicies("PowerPolicies\\5", value, static_cast<DWORD>(80 + row.more), row.type);
        SetValue(HKEY_LOCAL_MACHINE, machine, L"Policies", value, static_cast<DWORD>(64 + row.more),
                 row.type);
        const auto lines = LinesOf(
            [&]
            {
                EXPECT_EQ(row.result, readUser(80)) << row.type << ' ' << row.more;
                EXPECT_EQ(row.result, readMachine(64)) << row.type << ' ' << row.more;
            });
        const std::string error = row.more > 0 ? "" : "13";
        EXPECT_EQ(row.result == 0 ? 2U : 0U, lines.size());
        for (const std::string& line : lines)
        {
            const bool isUser = &line == &lines.front();
            EXPECT_THAT(line,
                        testing::StartsWith(
                            (isUser ? "ReadUserPowerPolicy: Query value Policies at Key " + schemes + "\\5"
                                    : "ReadMachinePowerPolicy: Query value Policies at Key " + machine) +
                            " failed, error=" + error));
        }
        // Room for more than the record doesn't make the record too short.
        EXPECT_EQ(row.type == REG_BINARY && row.more >= 0 ? 1 : 0, readUser(100));
    }

    const auto readActive = [&] { return engine.ReadUserActivePowerScheme(seeding::Wide(user).data()); };
    for (const auto& [type, result] : {std::pair{REG_SZ, 5}, {REG_BINARY, 0}, {REG_DWORD, 0}})
    {
        SetValue(HKEY_USERS, user, L"CurrentPowerPolicy", L"5", 4, static_cast<DWORD>(type));
        EXPECT_THAT(LinesOf([&, wanted = result] { EXPECT_EQ(wanted, readActive()) << type; }),
                    ElementsAre(result != 0 ? "ReadUserActivePowerScheme: Query current ID is 5"
                                            : "ReadUserActivePowerScheme: Query CurrentPowerPolicy at Key " +
                                                  user + " failed"));
    }
}

} // namespace
