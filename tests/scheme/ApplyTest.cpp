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

using Names = std::vector<std::string>;

Names operator+(Names left, const Names& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

Names operator*(int count, const Names& calls)
{
    Names all;
    for (int i = 0; i < count; ++i)
    {
        all = all + calls;
    }
    return all;
}

// What the parts of the road ask of the platform. On a fresh notebook every file is there but the user
// scheme file.
const Names kOpenRoot = {"RegOpenKeyExW", "RegQueryValueExW", "RegCloseKey", "PathFileExistsW"};
const Names kReadString = {"GetPrivateProfileStringW"};
const Names kReadInt = {"GetPrivateProfileIntW"};
const Names kWrite = {"WritePrivateProfileStringW"};
const Names kOpenOwn = {"SHGetFolderPathW", "PathFileExistsW", "PathFileExistsW"};
const Names kOpenFile = kOpenRoot + kReadString + kOpenOwn;
const Names kOpenCatalogue = kOpenRoot + kReadString + kOpenRoot;
const Names kQueryValue = {"RegOpenKeyExW", "RegQueryValueExW", "RegCloseKey"};
const Names kParseGuid = {"LoadLibraryW", "GetProcAddress", "GUIDFromStringW"};

class XpApply : public SchemeTest
{
protected:
    explicit XpApply(DWORD major = 5) : SchemeTest(major)
    {
    }

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

    static std::string ActiveOf(const std::string& user)
    {
        return seeding::GetKey(Users(), SidOf(user), "ActiveSchemeID");
    }

    /// The options up to the one that is taken, as validation reads them.
    int Reads(const wchar_t* name, int value)
    {
        for (int option = 0; option < 50; ++option)
        {
            if (engine.GetPwrVariableOptValue(name, option) == value)
            {
                return option + 1;
            }
        }
        return 0;
    }
};

class VistaApply : public XpApply
{
protected:
    VistaApply() : XpApply(6)
    {
    }
};

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
    EXPECT_EQ(2, engine.SetActivePwrScheme(2));
}

// Every platform call of the whole road, in order.
TEST_F(XpApply, AsksThePlatformForWhatTheRoadNeedsAndNothingElse)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    const auto calls = CallsOf([&] { engine.SetActivePwrScheme(2, L"alice"); });

    // The third subkey of the store is scheme 2.
    const Names find = Names{"RegOpenKeyExW"} + 3 * Names{"RegEnumKeyExW"} + Names{"RegCloseKey"};
    const Names read = {"ReadPwrScheme", "ReadProcessorPwrScheme"};
    const Names write = {"WriteProcessorPwrScheme", "WritePwrScheme"};
    const POWER_POLICY target = Policy(2);
    const auto validate = [&](const wchar_t* name, ULONG value)
    {
        const int reads = Reads(name, static_cast<int>(value));
        EXPECT_NE(0, reads);
        return kOpenCatalogue + kReadInt + reads * kReadInt;
    };
    const auto set = [&](const wchar_t* name, const Names& first, ULONG value)
    { return find + read + first + validate(name, value) + write; };
    const auto hibernateTime = [&](int ifAC)
    { return static_cast<ULONG>(engine.GetPwrVariable(2, ifAC, L"HibernateTimeOut")); };
    const Names allowed = {"IsPwrHibernateAllowed"};
    // On battery the target's standby time has overtaken the user's hibernate time, so a later one is sought.
    const Names hibernate = set(L"HibernateTimeOut", allowed, hibernateTime(1)) + allowed +
                            validate(L"HibernateTimeOut", hibernateTime(0)) +
                            set(L"HibernateTimeOut", allowed, hibernateTime(0));
    const Names userTimes = kQueryValue + kQueryValue +
                            set(L"DiskOffTimeOut", {}, target.user.SpindownTimeoutAc) +
                            set(L"DiskOffTimeOut", {}, target.user.SpindownTimeoutDc) + kQueryValue +
                            2 * (find + read) + hibernate;
    const Names globalPolicy = {"RegOpenKeyExW",        "RegQueryValueExW",    "LoadLibraryW",
                                "GetProcAddress",       "ReadGlobalPwrPolicy", "GetProcAddress",
                                "WriteGlobalPwrPolicy", "RegCloseKey"};
    const Names activate = find + Names{"GetActivePwrScheme", "SetActivePwrScheme"};
    const Names records = kOpenFile + kWrite + kOpenFile + kWrite + kReadInt + Names{"SHGetFolderPathW"};
    const Names expected = userTimes + globalPolicy + activate + records;
    ASSERT_GT(calls.size(), expected.size());
    EXPECT_THAT(Names(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(expected.size())),
                testing::ElementsAreArray(expected));
    // What follows is the exchange over the boards.
    EXPECT_EQ("OpenEventW", calls[expected.size()]);
}

TEST_F(VistaApply, AsksThePlatformForWhatTheRoadNeedsAndNothingElse)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    ASSERT_EQ(1, engine.AddtoUserList(L"alice"));
    // Not adaptive on battery: that source's range is left alone.
    ASSERT_EQ(0, engine.SetPwrVariable(2, 0, L"CpuAdaptive", 0));
    ASSERT_EQ(1, engine.SetPwrVariable(2, 1, L"CpuAdaptive", 1));
    for (const wchar_t* name : {L"CpuSpeedMin", L"CpuSpeedMax"})
    {
        ASSERT_GE(engine.GetPwrVariable(2, 1, name), 0);
    }
    ASSERT_EQ(1, engine.GetActivePwrScheme(0));
    Names calls;
    int previous = -1;
    calls = CallsOf([&] { previous = engine.SetActivePwrScheme(2, L"alice"); });
    EXPECT_EQ(1, previous);

    const Names toGuid = kOpenFile + kReadString + kParseGuid + Names{"PowerReadFriendlyName"};
    const Names parse = kOpenCatalogue + 2 * (kReadString + kParseGuid);
    const Names readPair = {"PowerReadDCValueIndex", "PowerReadACValueIndex"};
    const Names readAdaptive = 2 * toGuid + parse + kOpenFile + kReadInt;
    const Names readLimit = 2 * toGuid + parse + kOpenFile + kReadInt + readPair;
    const auto writeLimit = [&](const wchar_t* name)
    {
        const int reads = Reads(name, engine.GetPwrVariable(2, 1, name));
        return 2 * toGuid + parse + kOpenFile + kOpenCatalogue + kReadInt + reads * kReadInt + kReadInt +
               kWrite + Names{"PowerWriteACValueIndex"};
    };
    // Row 1 is active.
    const Names active = Names{"PowerGetActiveScheme"} + kOpenFile + kOpenFile + kReadInt +
                         2 * (kReadString + kParseGuid) + Names{"LocalFree"};
    const Names restate = readAdaptive + 2 * readLimit + writeLimit(L"CpuSpeedMax") +
                          writeLimit(L"CpuSpeedMin") + readAdaptive + 2 * readLimit;
    const Names records = kOpenFile + kWrite + kOpenFile + kWrite + kReadInt + Names{"SHGetFolderPathW"};
    const Names expected = toGuid + active + restate + Names{"PowerSetActiveScheme"} + records;
    const auto policy = std::find(calls.begin(), calls.end(), "WriteGlobalPwrPolicy");
    ASSERT_GT(calls.end() - policy, static_cast<std::ptrdiff_t>(expected.size()) + 2);
    const auto begin = policy + 2;
    EXPECT_THAT(Names(begin, begin + static_cast<std::ptrdiff_t>(expected.size())),
                testing::ElementsAreArray(expected));
    EXPECT_EQ("2", CurrentScheme());
    EXPECT_EQ("2", ActiveOf("alice"));
}

TEST_F(XpApply, AnUnansweredServiceLeavesTheSchemeActiveAndRecorded)
{
    EXPECT_EQ(-1, engine.SetActivePwrScheme(4, L"alice"));
    EXPECT_EQ(4, engine.GetActivePwrScheme(0));
    EXPECT_EQ("4", CurrentScheme());
    EXPECT_EQ("4", ActiveOf("alice"));
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
    const std::string hive = SidOf("alice") + "\\Control Panel\\PowerCfg";
    ASSERT_TRUE(seeding::SetText(HKEY_USERS, hive, "CurrentPowerPolicy", "5"));
    owners::Key key;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_USERS, seeding::Wide(hive + "\\PowerPolicies\\5").data(), 0,
                                           KEY_ALL_ACCESS, key.Receive()));
    USER_POWER_POLICY user = Policy(5).user;
    user.SpindownTimeoutAc = 1500;
    user.SpindownTimeoutDc = 600;
    user.IdleAc.Action = PowerActionHibernate;
    user.IdleTimeoutAc = 1800;
    user.IdleDc.Action = PowerActionNone;
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key.Get(), L"Policies", 0, REG_BINARY,
                                            reinterpret_cast<const BYTE*>(&user), sizeof user));
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
    const std::string place = SidOf("alice") + "\\Control Panel\\PowerCfg\\GlobalPowerPolicy";
    const auto setPolicy = [&](const void* data, DWORD size)
    {
        owners::Key key;
        RegOpenKeyExW(HKEY_USERS, seeding::Wide(place).data(), 0, KEY_ALL_ACCESS, key.Receive());
        EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key.Get(), L"Policies", 0, REG_BINARY,
                                                static_cast<const BYTE*>(data), size));
    };
    GLOBAL_POWER_POLICY before{};
    ASSERT_TRUE(ReadGlobalPwrPolicy(&before));
    GLOBAL_USER_POWER_POLICY user = before.user;
    user.GlobalFlags ^= EnablePasswordLogon;
    user.LidCloseAc.Action = PowerActionHibernate;
    setPolicy(&user, sizeof user);

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

    const BYTE tooBig[177] = {};
    setPolicy(tooBig, sizeof tooBig);
    EXPECT_THAT(LinesOf([&] { engine.SetGolbalPwrPolicyFromCurrentUser(2); }).back(),
                testing::StartsWith("ReadUserPowerPolicy: Query value Policies at Key " + place));
}

} // namespace
