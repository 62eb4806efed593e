// agents/EcAgentTest.cpp
//
// What each operation sends to the firmware, and what follows from the result.

#include "agents/AgentsTest.h"

#include "agents/EcAgent.h"
#include "foundation/Results.h"
#include "machine/DeviceTree.h"
#include "machine/EmbeddedController.h"
#include "machine/KernelDriver.h"

using namespace simulated;

namespace
{

using EcAgentTest = AgentsTest;

ULONG word;
_BATTERY_EXTEND_FIELDS fields;

// clang-format off
constexpr struct
{
    LONG (*call)(CEcAgent&);
    LONG result;       ///< item 0xC0 holds 2 and so on
    const char* input; ///< up to the zeros that fill it up to sixteen bytes
} kMethodCalls[] = {
    {[](CEcAgent& ec) -> LONG { return ec.GetBacklightLevel(); },     2, "47 52 44 49 C0"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(3); },    7, "47 57 52 49 C0 00 00 00 03"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(0); },    7, "47 57 52 49 C0"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBacklightLevel(100); },  7, "47 57 52 49 C0 00 00 00 07"},
    {[](CEcAgent& ec) -> LONG { return ec.GetWifiStatus(); },         3, "47 52 44 49 C1"},
    {[](CEcAgent& ec) -> LONG { return ec.SetWifiStatus(0); },        7, "47 57 52 49 C1"},
    {[](CEcAgent& ec) -> LONG { return ec.GetLANStatus(); },          4, "47 52 44 49 C2"},
    {[](CEcAgent& ec) -> LONG { return ec.SetLANStatus(2); },         7, "47 57 52 49 C2 00 00 00 02"},
    {[](CEcAgent& ec) -> LONG { return ec.Get3GStatus(); },           5, "47 52 44 49 C3"},
    {[](CEcAgent& ec) -> LONG { return ec.Set3GStatus(5); },          7, "47 57 52 49 C3 00 00 00 05"},
    {[](CEcAgent& ec) -> LONG { return ec.GetBluetoothStatus(); },    6, "47 52 44 49 C4"},
    {[](CEcAgent& ec) -> LONG { return ec.SetBluetoothStatus(0); },   7, "47 57 52 49 C4"},
    {[](CEcAgent& ec) -> LONG { return ec.GetCurrentDisplayMode(); }, 5, "47 52 44 49 C3"},
    {[](CEcAgent& ec) -> LONG { return ec.SwitchDisplayMode(); },     7, "47 57 52 49 C3"},
    {[](CEcAgent& ec) -> LONG { return ec.SelfTest(5); },             8, "47 44 42 47"},
    {[](CEcAgent& ec) { return ec.GetStatus(&word); },                0, "5F 53 54 41"},
    {[](CEcAgent& ec) { return ec.GeneralWrite(0xC0, 0x01020304, &word); }, 0, "47 57 52 49 C0 00 00 00 04 03 02 01"},
    {[](CEcAgent& ec) { return ec.ToExecCtrlMethod(0x4154535F, &word, 1, 2, 3); }, 0, "5F 53 54 41 01 00 00 00 02 00 00 00 03"},
    {[](CEcAgent& ec) { return ec.GetBatteryExtends(&fields, 15); },  0, "45 42 54 52 0C 00 00 00 00 00 00 00 0F"},
};
// clang-format on

const std::string kZeros = " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00";

TEST_F(EcAgentTest, EachOperationSendsItsControlMethodAndFailsWithTheDriver)
{
    EmbeddedController::SetBattery(15, {0x12, 0x34, 0x56, 0x78, 0x1FF, 0x00, 0x9A, 0xFFFFFFBC, 1, 2, 3, 4});
    CEcAgent agent;
    CEcAgent fresh;
    ASSERT_EQ(kSucceeded, agent.Setup());
    for (const auto& row : kMethodCalls)
    {
        const std::string expected = (row.input + kZeros).substr(0, kZeros.size() - 1);
        for (DWORD item = EmbeddedController::kBacklight; item <= EmbeddedController::kBluetooth; ++item)
        {
            EmbeddedController::SetItem(item, item - 0xBE);
        }
        NewDriverInputs();
        EXPECT_EQ(row.result, row.call(agent)) << expected;
        EXPECT_THAT(NewDriverInputs(), testing::ElementsAre(expected));
        KernelDriver::SetBusy(true);
        EXPECT_LT(row.call(agent), 0) << expected;
        KernelDriver::SetBusy(false);
        EXPECT_LT(row.call(fresh), 0) << expected << " without Setup";
    }
    EXPECT_EQ(9U, word);
    KernelDriver::RefuseRequests(ERROR_BUSY);
    EXPECT_EQ(static_cast<LONG>(0x800700AA), agent.GetStatus(&word)) << "the driver's own answer";
    EXPECT_THAT(fields.field, testing::ElementsAre(0x5678, 0x1234, 0xFF00, 0x9ABC));
    EXPECT_EQ(kNotSetUp, fresh.GetStatus(&word));
    EXPECT_EQ(kNotSetUp, fresh.GetBatteryExtends(&fields, 15));
    EXPECT_EQ(0, agent.GetMinLevel());
    EXPECT_EQ(7, agent.GetMaxLevels());
}

TEST_F(EcAgentTest, RefusedArgumentsCostNoDriverCall)
{
    CEcAgent agent;
    ASSERT_EQ(kSucceeded, agent.Setup());
    EXPECT_EQ(kAlreadySetUp, agent.Setup());
    EXPECT_EQ(-1, agent.SetBacklightLevel(-1));
    for (const LONG refused : {agent.GetStatus(nullptr), agent.GeneralRead(0xC0, nullptr),
                               agent.GeneralWrite(0xC0, 1, nullptr), agent.GetBatteryExtends(nullptr, 15)})
    {
        EXPECT_EQ(kBadArgument, refused);
    }
    EXPECT_THAT((std::array{agent.GetAudioJackin(), agent.GetBatteryTemp(), agent.GetHotkeyIndex()}),
                testing::Each(kGeneralFailure));
    EXPECT_TRUE(NewDriverInputs().empty());
    EXPECT_EQ(1U, Calls("CreateFileW"));
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
        int result;
        /// F: firmware read or written, a second for the radio, ?: adapter read, !: changed
        const char* order;
        bool runs; ///< the adapter, afterwards
    } kCases[] = {
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 1, true, 1, 1, "F?\?!", true},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor WIFI Card", 0, true, 1, 7, "FF1000?\?!", true},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wifi Card", 0, false, 1, 7, "FF1000?", true},
        {&CEcAgent::SetWifiStatus, 0xC1, "Vendor Wireless Card", 0, true, 2, 7, "F", false},
        {&CEcAgent::SetLANStatus, 0xC2, "REALTEK Card", 1, true, 1, 1, "F?\?!", true},
        {&CEcAgent::SetLANStatus, 0xC2, "JMicron Card", 0, true, 1, 7, "FF?!", true},
        {&CEcAgent::SetLANStatus, 0xC2, "JMicron Card", 0, false, 1, 7, "FF?", true},
        {&CEcAgent::SetLANStatus, 0xC2, "Realtek Card", 1, true, 0, 7, "F", false},
    };
    CEcAgent agent;
    ASSERT_EQ(kSucceeded, agent.Setup());
    for (const auto& row : kCases)
    {
        SCOPED_TRACE(&row - kCases);
        UseOneAdapter(row.adapter);
        DeviceTree::SetValue(kAdapter, "DisabledInProfile", row.disabled ? "1" : "0");
        EmbeddedController::SetItem(row.item, row.before);
        Trace::Clear();
        EXPECT_EQ(row.result, (agent.*row.change)(row.status));
        std::string order;
        for (const TracedCall& call : Trace::Calls())
        {
            order += call.function == "DeviceIoControl"             ? "F"
                     : call.function == "Sleep"                     ? call.arguments
                     : call.function == "CM_Get_DevNode_Status"     ? "?"
                     : call.function == "SetupDiCallClassInstaller" ? "!"
                                                                    : "";
        }
        EXPECT_EQ(row.order, order);
        EXPECT_EQ(row.runs, DeviceTree::StateOf(kAdapter).problem == 0);
    }
}

} // namespace
