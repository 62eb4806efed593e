// agents/EcAgentTest.cpp
//
// What each operation sends to the firmware, and what follows from its answer.

#include "agents/AgentsTest.h"

#include "agents/EcAgent.h"
#include "foundation/Results.h"
#include "notebook/DeviceTree.h"
#include "notebook/EmbeddedController.h"
#include "notebook/KernelDriver.h"

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

ULONG word;

/// An operation and the input that it sends, up to the zeros that fill it up to sixteen bytes.
struct MethodCall
{
    LONG (*call)(CEcAgent&);
    const char* input;
};

// clang-format off
constexpr MethodCall kMethodCalls[] = {
    {[](CEcAgent& ec) -> LONG { return ec.GetBacklightLevel(); },     "47 52 44 49 C0"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(3); },    "47 57 52 49 C0 00 00 00 03"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(100); },  "47 57 52 49 C0 00 00 00 07"},
    {[](CEcAgent& ec) -> LONG { return ec.GetWifiStatus(); },         "47 52 44 49 C1"},
    {[](CEcAgent& ec) -> LONG { return ec.SetWifiStatus(0); },        "47 57 52 49 C1"},
    {[](CEcAgent& ec) -> LONG { return ec.GetLANStatus(); },          "47 52 44 49 C2"},
    {[](CEcAgent& ec) -> LONG { return ec.SetLANStatus(2); },         "47 57 52 49 C2 00 00 00 02"},
    {[](CEcAgent& ec) -> LONG { return ec.Get3GStatus(); },           "47 52 44 49 C3"},
    {[](CEcAgent& ec) -> LONG { return ec.Set3GStatus(1); },          "47 57 52 49 C3 00 00 00 01"},
    {[](CEcAgent& ec) -> LONG { return ec.GetBluetoothStatus(); },    "47 52 44 49 C4"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBluetoothStatus(0); },   "47 57 52 49 C4"},
    {[](CEcAgent& ec) -> LONG { return ec.GetCurrentDisplayMode(); }, "47 52 44 49 C3"},
    {[](CEcAgent& ec) -> LONG { return ec.SwitchDisplayMode(); },     "47 57 52 49 C3"},
    {[](CEcAgent& ec) -> LONG { return ec.SelfTest(5); },             "47 44 42 47"},
    {[](CEcAgent& ec) { return ec.GetStatus(&word); },                "5F 53 54 41"},
    {[](CEcAgent& ec) { return ec.GeneralWrite(0xC0, 0x01020304, &word); },
     "47 57 52 49 C0 00 00 00 04 03 02 01"},
    {[](CEcAgent& ec) { return ec.ToExecCtrlMethod(0x4154535F, &word, 1, 2, 3); },
     "5F 53 54 41 01 00 00 00 02 00 00 00 03"},
};
// clang-format on

TEST_F(EcAgentTest, EachOperationSendsItsControlMethodAndFailsWithTheDriver)
{
    CEcAgent fresh;
    for (const MethodCall& row : kMethodCalls)
    {
        std::string expected = row.input;
        while (expected.size() < 16 * 3 - 1)
        {
            expected += " 00";
        }
        ForgetDriver();
        EXPECT_GE(row.call(agent), 0) << expected;
        EXPECT_THAT(DriverInputs(), testing::ElementsAre(expected));
        KernelDriver::SetBusy(true);
        EXPECT_LT(row.call(agent), 0) << expected;
        KernelDriver::SetBusy(false);
        EXPECT_LT(row.call(fresh), 0) << expected << " without Setup";
    }
    EXPECT_EQ(kNotSetUp, fresh.GetStatus(&word));
}

TEST_F(EcAgentTest, RefusedArgumentsCostNoDriverCall)
{
    EXPECT_EQ(-1, agent.SetBacklightLevel(-1));
    EXPECT_EQ(kBadArgument, agent.GeneralRead(0xC0, nullptr));
    EXPECT_EQ(kBadArgument, agent.GeneralWrite(0xC0, 1, nullptr));
    EXPECT_EQ(kBadArgument, agent.GetBatteryExtends(nullptr, 15));
    EXPECT_EQ(kGeneralFailure, agent.GetAudioJackin());
    EXPECT_EQ(kAlreadySetUp, agent.Setup());
    EXPECT_TRUE(DriverInputs().empty());
}

TEST_F(EcAgentTest, SetupWithoutTheDriverGivesTheTranslatedErrorAndStaysUnusable)
{
    agent.Cleanup();
    KernelDriver::SetPresent(false);
    EXPECT_EQ(static_cast<LONG>(0x80070002), agent.Setup());
    EXPECT_EQ(kNotSetUp, agent.GetStatus(&word));
    EXPECT_THAT(NewLogLines(), testing::Contains("Open connection with driver failed for 0x80070002"));
}

TEST_F(EcAgentTest, SwitchingANetworkOnBringsItsAdapterBack)
{
    constexpr struct
    {
        int (CEcAgent::*change)(int) noexcept;
        DWORD item;
        const char* adapter; ///< description
        DWORD before;        ///< the item's value
        bool disabled;       ///< the adapter, before
        int status;
        std::size_t requests; ///< to the firmware
        std::size_t sleeps;
        std::size_t looks; ///< at the adapter's state; each change takes one too
        bool runs;         ///< the adapter, afterwards
    } kCases[] = {
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 1, true, 1, 1, 0, 2, true},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor WIFI Card", 0, true, 1, 2, 1, 2, true},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wifi Card", 0, false, 1, 2, 1, 1, true},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 1, true, 0, 1, 0, 0, false},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 0, true, 2, 1, 0, 0, false},
        {&CEcAgent::SetLANStatus, 0xC2, "REALTEK Card", 1, true, 1, 1, 0, 2, true},
        {&CEcAgent::SetLANStatus, 0xC2, "JMicron Card", 0, true, 1, 2, 0, 1, true},
        {&CEcAgent::SetLANStatus, 0xC2, "JMicron Card", 0, false, 1, 2, 0, 1, true},
        {&CEcAgent::SetLANStatus, 0xC2, "Realtek Card", 1, true, 0, 1, 0, 0, false},
    };
    for (const auto& row : kCases)
    {
        SCOPED_TRACE(&row - kCases);
        UseOneAdapter(row.adapter);
        DeviceTree::SetValue(kAdapter, "DisabledInProfile", row.disabled ? "1" : "0");
        EmbeddedController::SetItem(row.item, row.before);
        Trace::Clear();
        ForgetDriver();
        EXPECT_EQ(1, (agent.*row.change)(row.status));
        EXPECT_EQ(row.requests, DriverInputs().size());
        const std::vector<TracedCall> sleeps = Trace::CallsOf("Sleep");
        EXPECT_EQ(row.sleeps, sleeps.size());
        EXPECT_TRUE(sleeps.empty() || sleeps[0].arguments == "1000") << "a second for the radio";
        EXPECT_EQ(row.looks, Calls("CM_Get_DevNode_Status"));
        EXPECT_EQ(row.runs, DeviceTree::StateOf(kAdapter).problem == 0);
    }
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
