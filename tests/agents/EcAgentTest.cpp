// agents/EcAgentTest.cpp
//
// What each operation sends to the firmware, and what follows from its answer.

#include "agents/AgentsTest.h"

#include "agents/EcAgent.h"
#include "foundation/Results.h"
#include "notebook/DeviceTree.h"
#include "notebook/EmbeddedController.h"
#include "notebook/KernelDriver.h"

#include <cfgmgr32.h>

using namespace simulated;

namespace
{

class EcAgentTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        for (DWORD item = EmbeddedController::kBacklight; item <= EmbeddedController::kBluetooth; ++item)
        {
            EmbeddedController::SetItem(item, 1);
        }
        for (const char* method : {"GWRI", "GDBG", "_STA"})
        {
            EmbeddedController::SetMethod(method, 1);
        }
        ASSERT_EQ(kSucceeded, agent.Setup());
        ForgetDriver();
    }
    void TearDown() override
    {
        agent.Cleanup();
        AgentsTest::TearDown();
    }

    CEcAgent agent;
};

struct MethodCall
{
    const char* name;
    LONG (*call)(CEcAgent&);
    const char* input;
};

ULONG word;

constexpr MethodCall kMethodCalls[] = {
    {"GetBacklightLevel", [](CEcAgent& ec) -> LONG { return ec.GetBacklightLevel(); },
     "47 52 44 49 C0 00 00 00 00 00 00 00 00 00 00 00"},
    {"SetBacklightLevel", [](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(3); },
     "47 57 52 49 C0 00 00 00 03 00 00 00 00 00 00 00"},
    {"SetBacklightLevel above", [](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(100); },
     "47 57 52 49 C0 00 00 00 07 00 00 00 00 00 00 00"},
    {"GetWifiStatus", [](CEcAgent& ec) -> LONG { return ec.GetWifiStatus(); },
     "47 52 44 49 C1 00 00 00 00 00 00 00 00 00 00 00"},
    {"SetWifiStatus", [](CEcAgent& ec) -> LONG { return ec.SetWifiStatus(0); },
     "47 57 52 49 C1 00 00 00 00 00 00 00 00 00 00 00"},
    {"GetLANStatus", [](CEcAgent& ec) -> LONG { return ec.GetLANStatus(); },
     "47 52 44 49 C2 00 00 00 00 00 00 00 00 00 00 00"},
    {"SetLANStatus", [](CEcAgent& ec) -> LONG { return ec.SetLANStatus(2); },
     "47 57 52 49 C2 00 00 00 02 00 00 00 00 00 00 00"},
    {"Get3GStatus", [](CEcAgent& ec) -> LONG { return ec.Get3GStatus(); },
     "47 52 44 49 C3 00 00 00 00 00 00 00 00 00 00 00"},
    {"Set3GStatus", [](CEcAgent& ec) -> LONG { return ec.Set3GStatus(1); },
     "47 57 52 49 C3 00 00 00 01 00 00 00 00 00 00 00"},
    {"GetBluetoothStatus", [](CEcAgent& ec) -> LONG { return ec.GetBluetoothStatus(); },
     "47 52 44 49 C4 00 00 00 00 00 00 00 00 00 00 00"},
    {"SetBluetoothStatus", [](CEcAgent& ec) -> LONG { return ec.SetBluetoothStatus(0); },
     "47 57 52 49 C4 00 00 00 00 00 00 00 00 00 00 00"},
    {"GetCurrentDisplayMode", [](CEcAgent& ec) -> LONG { return ec.GetCurrentDisplayMode(); },
     "47 52 44 49 C3 00 00 00 00 00 00 00 00 00 00 00"},
    {"SwitchDisplayMode", [](CEcAgent& ec) -> LONG { return ec.SwitchDisplayMode(); },
     "47 57 52 49 C3 00 00 00 00 00 00 00 00 00 00 00"},
    {"SelfTest", [](CEcAgent& ec) -> LONG { return ec.SelfTest(5); },
     "47 44 42 47 00 00 00 00 00 00 00 00 00 00 00 00"},
    {"GetStatus", [](CEcAgent& ec) { return ec.GetStatus(&word); },
     "5F 53 54 41 00 00 00 00 00 00 00 00 00 00 00 00"},
    {"GeneralWrite", [](CEcAgent& ec) { return ec.GeneralWrite(0xC0, 0x01020304, &word); },
     "47 57 52 49 C0 00 00 00 04 03 02 01 00 00 00 00"},
    {"ToExecCtrlMethod", [](CEcAgent& ec) { return ec.ToExecCtrlMethod(0x4154535F, &word, 1, 2, 3); },
     "5F 53 54 41 01 00 00 00 02 00 00 00 03 00 00 00"},
};

TEST_F(EcAgentTest, EachOperationSendsItsControlMethodAndFailsWithTheDriver)
{
    for (const MethodCall& row : kMethodCalls)
    {
        SCOPED_TRACE(row.name);
        ForgetDriver();
        EXPECT_GE(row.call(agent), 0);
        EXPECT_THAT(DriverInputs(), testing::ElementsAre(row.input));

        KernelDriver::SetBusy(true);
        EXPECT_LT(row.call(agent), 0);
        KernelDriver::SetBusy(false);
    }
}

TEST_F(EcAgentTest, RefusedArgumentsCostNoDriverCall)
{
    EXPECT_EQ(-1, agent.SetBacklightLevel(-1));
    EXPECT_EQ(kBadArgument, agent.GeneralRead(0xC0, nullptr));
    EXPECT_EQ(kBadArgument, agent.GeneralWrite(0xC0, 1, nullptr));
    EXPECT_EQ(kBadArgument, agent.GetBatteryExtends(nullptr, 15));
    EXPECT_EQ(kGeneralFailure, agent.GetAudioJackin());
    EXPECT_TRUE(DriverInputs().empty());
}

TEST_F(EcAgentTest, WithoutSetupEveryMethodIsRefused)
{
    CEcAgent fresh;
    _BATTERY_EXTEND_FIELDS fields = {};
    EXPECT_EQ(kNotSetUp, fresh.GetStatus(&word));
    EXPECT_EQ(kNotSetUp, fresh.GetBatteryExtends(&fields, 15));
    EXPECT_EQ(-1, fresh.GetWifiStatus());
    EXPECT_EQ(-1, fresh.SetWifiStatus(1));
    EXPECT_TRUE(DriverInputs().empty());
    EXPECT_EQ(kAlreadySetUp, agent.Setup());
}

TEST_F(EcAgentTest, SetupWithoutTheDriverGivesTheTranslatedErrorAndStaysUnusable)
{
    agent.Cleanup();
    KernelDriver::SetPresent(false);
    EXPECT_EQ(static_cast<LONG>(0x80070002), agent.Setup());
    EXPECT_EQ(kNotSetUp, agent.GetStatus(&word));
    EXPECT_THAT(NewLogLines(), testing::Contains("Open connection with driver failed for 0x80070002"));
}

struct SwitchCase
{
    const char* name;
    int (CEcAgent::*change)(int) noexcept;
    DWORD item;
    const char* description;
    DWORD before;  ///< the item's value
    bool disabled; ///< the adapter, before
    int status;
    std::size_t requests;
    std::size_t sleeps;
    bool runs; ///< the adapter, afterwards
};

constexpr SwitchCase kSwitchCases[] = {
    {"Wifi on when it is on", &CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 1, true, 1, 1, 0, true},
    {"Wifi on", &CEcAgent::SetWifiStatus, 0xC1, "Vendor WIFI Card", 0, true, 1, 2, 1, true},
    {"Wifi on, adapter enabled", &CEcAgent::SetWifiStatus, 0xC1, "Vendor Wifi Card", 0, false, 1, 2, 1, true},
    {"Wifi off", &CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 1, true, 0, 1, 0, false},
    {"Wifi other", &CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 0, true, 2, 1, 0, false},
    {"LAN on when it is on", &CEcAgent::SetLANStatus, 0xC2, "REALTEK Card", 1, true, 1, 1, 0, true},
    {"LAN on", &CEcAgent::SetLANStatus, 0xC2, "JMicron Card", 0, true, 1, 2, 0, true},
    {"LAN off", &CEcAgent::SetLANStatus, 0xC2, "Realtek Card", 1, true, 0, 1, 0, false},
};

TEST_F(EcAgentTest, SwitchingANetworkOnBringsItsAdapterBack)
{
    for (const SwitchCase& row : kSwitchCases)
    {
        SCOPED_TRACE(row.name);
        UseOneAdapter(row.description);
        DeviceTree::SetValue(kAdapter, "DisabledInProfile", row.disabled ? "1" : "0");
        EmbeddedController::SetItem(row.item, row.before);
        Trace::Clear();
        ForgetDriver();

        EXPECT_EQ(1, (agent.*row.change)(row.status));
        EXPECT_EQ(row.requests, DriverInputs().size());
        EXPECT_EQ(row.sleeps, Calls("Sleep"));
        EXPECT_EQ(row.runs, DeviceTree::StateOf(kAdapter).problem == 0);
    }
}

// Only the wireless adapter is asked for its state before it is enabled.
TEST_F(EcAgentTest, LanPortEnablesItsAdapterUnasked)
{
    UseOneAdapter("Realtek Card");
    EmbeddedController::SetItem(0xC2, 0);
    NewLogLines();
    EXPECT_EQ(1, agent.SetLANStatus(1));
    EXPECT_THAT(NewLogLines(),
                testing::Contains("!((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))"));
    EXPECT_EQ(1U, Calls("CM_Get_DevNode_Status"));
}

TEST_F(EcAgentTest, BatteryRecordJoinsTheLowBytesOfItsRows)
{
    EmbeddedController::SetBattery(15, {0x12, 0x34, 0x56, 0x78, 0x1FF, 0x00, 0x9A, 0xFFFFFFBC, 1, 2, 3, 4});
    _BATTERY_EXTEND_FIELDS fields = {};
    EXPECT_EQ(kSucceeded, agent.GetBatteryExtends(&fields, 15));
    EXPECT_THAT(fields.field, testing::ElementsAre(0x5678, 0x1234, 0xFF00, 0x9ABC));
    EXPECT_THAT(DriverInputs(), testing::ElementsAre("45 42 54 52 0C 00 00 00 00 00 00 00 0F 00 00 00"));
    EXPECT_EQ(48U, KernelDriver::Requests().front().outputSize);
    EXPECT_THAT(NewLogLines(), testing::IsSupersetOf({"BatteryExtRow[0] = 18", "BatteryExtRow[11] = 4"}));

    EmbeddedController::RemoveBattery(15);
    NewLogLines();
    EXPECT_EQ(static_cast<LONG>(0x80070002), agent.GetBatteryExtends(&fields, 15));
    EXPECT_THAT(NewLogLines(),
                testing::Contains("Calling driver function ORVL_GCW_BATTERY_METHOD error. Last "
                                  "error 0x80070002 ulReturn 0"));
}

} // namespace
