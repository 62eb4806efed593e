// agents/DevMgrTest.cpp
//
// Which devices are managed, how they are changed, and the search of the device tree. Plain uses and failing
// calls are in the golden file.

#include "agents/AgentsTest.h"

#include "agents/DevMgr.h"
#include "base/ListBox.h"
#include "foundation/Results.h"
#include "machine/DeviceTree.h"
#include "support/BoardService.h"

#include <devguid.h>

using namespace simulated;

namespace
{

constexpr const char* kNetText = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
constexpr GUID kModemClass = {0x4D36E96D, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
constexpr const char* kModemText = "{4D36E96D-E325-11CE-BFC1-08002BE10318}";
constexpr const char* kCard = "PCI\\VEN_10EC\\1";
constexpr const char* kSecondCard = "PCI\\VEN_10EC\\9";
constexpr const char* kModem = "HDAUDIO\\FUNC_02\\2";

class DevMgrTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        UseOneAdapter("Network Card");
        DeviceTree::Remove(kAdapter);
        DeviceTree::Add({"ACPI\\BUS\\0", GUID_DEVCLASS_SYSTEM, "Bus"});
        DeviceTree::Add({"ACPI\\BUS\\1", GUID_DEVCLASS_SYSTEM, "Inner Bus", "ACPI\\BUS\\0"});
        DeviceTree::Add({kModem, kModemClass, "100%s Modem", "ACPI\\BUS\\1"});
        DeviceTree::Add({kCard, GUID_DEVCLASS_NET, "Network Card"});
        DeviceTree::Add({kSecondCard, GUID_DEVCLASS_NET, "Second C\u00E4rd \u0436"});
        UseClasses({kNetText});
    }

    /// Writes the configuration anew, with these classes and options.
    static void UseClasses(const std::vector<std::string>& classes,
                           const std::string& options = "DmOptions=0\n")
    {
        std::string content =
            "[OrvlDevMgr]\n" + options + "[DevGUIDs]\nNum=" + std::to_string(classes.size()) + '\n';
        for (std::size_t index = 0; index < classes.size(); ++index)
        {
            content += "GUID" + std::to_string(index) + '=' + classes[index] + '\n';
        }
        WriteInstalled("ORVLCfg.ini", content);
    }
    static bool Runs(const char* device)
    {
        return DeviceTree::StateOf(device).problem == 0;
    }
};

/// Exposes what the configuration sets.
struct Manager : CDevMgr
{
    using CDevMgr::DoStateChangeRemote;
    using CDevMgr::m_nTimeout;
};

TEST_F(DevMgrTest, SetupGathersTheDevicesOfTheConfiguredClasses)
{
    const struct
    {
        std::vector<std::string> classes;
        LONG result;
        std::vector<std::string> devices;
    } cases[] = {
        {{}, kSucceeded, {}},
        {{kModemText, kNetText}, kSucceeded, {kModem, kCard, kSecondCard}},
        {{kModemText, "", kNetText}, kGeneralFailure, {kModem}},
        {{"not a GUID", kModemText}, kSucceeded, {kModem}},
        {{"{00000000-0000-0000-0000-000000000001}", kModemText}, kSucceeded, {kModem}},
    };
    for (const auto& [classes, result, devices] : cases)
    {
        UseClasses(classes);
        Manager manager;
        ListBox list;
        manager.SetListenList(list.Window());
        EXPECT_EQ(0, manager.GetDeviceCount());
        EXPECT_EQ(result, manager.Setup());
        EXPECT_EQ(static_cast<LONG>(devices.size()), manager.GetDeviceCount());
        EXPECT_EQ(devices, list.Items());
        NewLogLines();
        EXPECT_EQ(kAlreadySetUp, manager.Setup());
        EXPECT_THAT(NewLogLines(), testing::ElementsAre("Setup has been invoked."));
        EXPECT_EQ(kSucceeded, manager.ForceRefresh());
        EXPECT_EQ(kSucceeded, manager.Cleanup());
    }
}

TEST_F(DevMgrTest, DevicesAreDescribedAndChangedByTheirNumber)
{
    Manager manager;
    wchar_t text[64] = {};
    ULONG status = 0;
    ULONG problem = 0;
    EXPECT_EQ(kGeneralFailure, manager.GetDesc(0, text, sizeof text)) << "before Setup";
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(0, OrvlDeviceDisable)) << "before Setup";
    ASSERT_EQ(kSucceeded, manager.Setup());
    DeviceTree::SetValue(kCard, "FriendlyName", "Friend");
    EXPECT_EQ(kSucceeded, manager.GetName(0, text, sizeof text));
    EXPECT_EQ("Friend", seeding::Utf8(text));
    EXPECT_EQ(kSucceeded, manager.GetInstID(1, text, 64));
    EXPECT_EQ(kSecondCard, seeding::Utf8(text));
    EXPECT_EQ(kGeneralFailure, manager.GetDesc(2, text, sizeof text));
    for (const int size : {-1, 0, 3})
    {
        EXPECT_EQ(kGeneralFailure, manager.GetInstID(0, text, size));
        EXPECT_EQ(kGeneralFailure, manager.GetDesc(0, text, size));
    }
    EXPECT_EQ(kGeneralFailure, manager.GetDeviceStatus(2, &status, &problem));
    EXPECT_EQ(kGeneralFailure, manager.GetDeviceStatus(0, nullptr, &problem));
    EXPECT_EQ(kGeneralFailure, manager.GetDeviceStatus(0, &status, nullptr));
    EXPECT_EQ(kSucceeded, manager.ChangeState(1, OrvlDeviceDisable));
    EXPECT_FALSE(Runs(kSecondCard));
    EXPECT_TRUE(Runs(kCard));
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(2, OrvlDeviceDisable));
    EXPECT_THAT(Trace::CallsOf("LoadCursorW").front().arguments, testing::EndsWith("0x7F02"));
}

TEST_F(DevMgrTest, ChangeByInstanceIdSkipsWhatCantBeDisabled)
{
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"pci\\ven_10ec\\1", OrvlDeviceDisable));
    EXPECT_FALSE(Runs(kCard));
    Trace::Clear();
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"PCI\\VEN_10EC\\1", OrvlDeviceDisable))
        << "isn't started";
    DeviceTree::SetValue(kModem, "Disableable", "0");
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"HDAUDIO\\FUNC_02\\2", OrvlDeviceDisable));
    EXPECT_EQ(0U, Calls("SetupDiCallClassInstaller"));
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"HDAUDIO\\FUNC_02\\2", OrvlDeviceEnable));
    EXPECT_EQ(1U, Calls("SetupDiCallClassInstaller")) << "enabling goes to the installer whatever the status";
    EXPECT_EQ(kGeneralFailure, CDevMgr::ExecStateChange(L"NO\\SUCH\\1", OrvlDeviceEnable));
    EXPECT_EQ(kGeneralFailure, CDevMgr::ExecStateChange(nullptr, OrvlDeviceEnable));
}

TEST_F(DevMgrTest, DescriptionIsLookedForDepthFirstIgnoringCase)
{
    Manager manager;
    wchar_t id[64] = {};
    for (const auto& [description, device] : {std::pair{L"100%S mODEM", kModem},
                                              {L"SECOND C\u00C4RD \u0416", kSecondCard},
                                              {L"network card", kCard}})
    {
        EXPECT_EQ(kSucceeded, manager.DrvDescToInstID(description, id, 64));
        EXPECT_EQ(device, seeding::Utf8(id));
    }
    EXPECT_EQ(kGeneralFailure, manager.ExecStateChange2(L"Nothing", OrvlDeviceDisable));
    EXPECT_EQ(kGeneralFailure, manager.DrvDescToInstID(nullptr, id, 64));
    EXPECT_EQ(kGeneralFailure, manager.DrvDescToInstID(L"Network Card", nullptr, 64));
    const ULONG length = 14;
    EXPECT_EQ(kSucceeded, manager.DrvDescToInstID(L"Network Card", id, length + 1));
    EXPECT_EQ(kGeneralFailure, manager.DrvDescToInstID(L"Network Card", id, length));
    EXPECT_EQ("Input buffer is too small for 15", NewLogLines().back());
}

TEST_F(DevMgrTest, ByDefaultTheServiceIsCalledWithTheConfiguredTimeout)
{
    Manager manager;
    EXPECT_EQ(1000U, manager.m_nTimeout) << "until the file has been read";
    for (const auto& [configured, timeout] : {std::pair{"", 100000U},
                                              {"TimeoutMS=0\n", 0U},
                                              {"TimeoutMS=-1\n", 100000U},
                                              {"TimeoutMS=5000\n", 5000U}})
    {
        manager.Cleanup();
        UseClasses({kNetText}, configured);
        ASSERT_EQ(kSucceeded, manager.Setup());
        EXPECT_EQ(timeout, manager.m_nTimeout) << configured;
    }
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(0, OrvlDeviceDisable)) << "nobody serves";
    UseClasses({kNetText}, "DmOptions=2\n");
    CDevMgr direct;
    ASSERT_EQ(kSucceeded, direct.Setup());
    EXPECT_EQ(kSucceeded, direct.ChangeState(0, OrvlDeviceEnable)) << "that bit means something else";

    BoardService service(
        [](const service::Request&) {
            return service::Answer{service_boards::kDone, 0x77};
        });
    EXPECT_EQ(0x77, manager.ChangeState(0, OrvlDeviceDisable));
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(9, OrvlDeviceDisable));
    EXPECT_EQ(kGeneralFailure, manager.DoStateChangeRemote(nullptr, OrvlDeviceDisable));
    const std::vector<service::Request> requests = service.TakeRequests();
    ASSERT_EQ(1U, requests.size());
    EXPECT_EQ(std::pair(2U, 2U), std::pair(requests[0].code, requests[0].value));
    EXPECT_EQ(kCard, seeding::Utf8(requests[0].text));
    EXPECT_TRUE(Runs(kCard)) << "nothing is changed here";
}

} // namespace
