// agents/DevMgrTest.cpp
//
// Which devices are managed, how they are changed, and the search of the device tree.

#include "agents/AgentsTest.h"

#include "agents/DevMgr.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/Results.h"
#include "notebook/DeviceTree.h"
#include "notebook/ListBox.h"

#include <devguid.h>

#include <atomic>
#include <thread>

using namespace simulated;

namespace
{

constexpr const char* kNetText = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
constexpr GUID kModemClass = {0x4D36E96D, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
constexpr const char* kModemText = "{4D36E96D-E325-11CE-BFC1-08002BE10318}";
constexpr const char* kCard = "PCI\\VEN_10EC\\1";
constexpr const char* kModem = "HDAUDIO\\FUNC_02\\2";

class DevMgrTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        for (const std::string& device : DeviceTree::All())
        {
            DeviceTree::Remove(device);
        }
        DeviceTree::Add({"ACPI\\BUS\\0", GUID_DEVCLASS_SYSTEM, "Bus"});
        DeviceTree::Add({kModem, kModemClass, "100%s Modem", "ACPI\\BUS\\0"});
        DeviceTree::Add({"ROOT\\LEAF\\0", GUID_DEVCLASS_SYSTEM, "Leaf"});
        DeviceTree::Add({kCard, GUID_DEVCLASS_NET, "Network Card"});
        DeviceTree::Add({"PCI\\VEN_10EC\\9", GUID_DEVCLASS_NET, "Second C\u00E4rd \u0436"});
        UseClasses({kNetText});
    }

    void TearDown() override
    {
        manager.Cleanup();
        AgentsTest::TearDown();
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

    /// Shows what the configuration sets.
    class Manager : public CDevMgr
    {
    public:
        using CDevMgr::m_nTimeout;
    };
    Manager manager;
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
        {{kModemText, kNetText}, kSucceeded, {kModem, kCard, "PCI\\VEN_10EC\\9"}},
        {{kModemText, "", kNetText}, kGeneralFailure, {kModem}},
        {{"not a GUID", kModemText}, kSucceeded, {kModem}},
        {{"{00000000-0000-0000-0000-000000000001}", kModemText}, kSucceeded, {kModem}},
    };
    for (const auto& row : cases)
    {
        UseClasses(row.classes);
        ListBox list;
        manager.SetListenList(list.Window());
        EXPECT_EQ(0, manager.GetDeviceCount());
        EXPECT_EQ(row.result, manager.Setup());
        EXPECT_EQ(static_cast<LONG>(row.devices.size()), manager.GetDeviceCount());
        EXPECT_EQ(row.devices, list.Items());
        EXPECT_EQ(kAlreadySetUp, manager.Setup());
        EXPECT_EQ(kSucceeded, manager.Cleanup());
        EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
    }
}

TEST_F(DevMgrTest, DevicesAreDescribedByTheirNumber)
{
    wchar_t text[64] = {};
    ULONG status = 0;
    ULONG problem = 0;
    EXPECT_EQ(kGeneralFailure, manager.GetDesc(0, text, sizeof text)) << "before Setup";
    ASSERT_EQ(kSucceeded, manager.Setup());
    DeviceTree::SetValue(kCard, "FriendlyName", "Friend");
    DeviceTree::SetValue(kCard, "Disabled", "1");
    EXPECT_EQ(kSucceeded, manager.GetDesc(0, text, sizeof text));
    EXPECT_EQ("Network Card", seeding::Utf8(text));
    EXPECT_EQ(kSucceeded, manager.GetName(0, text, sizeof text));
    EXPECT_EQ("Friend", seeding::Utf8(text));
    EXPECT_EQ(kSucceeded, manager.GetInstID(0, text, 64));
    EXPECT_EQ(kCard, seeding::Utf8(text));
    EXPECT_EQ(kSucceeded, manager.GetDeviceStatus(0, &status, &problem));
    EXPECT_EQ(22U, problem);

    EXPECT_EQ(kGeneralFailure, manager.GetInstID(0, text, 3));
    EXPECT_EQ(kGeneralFailure, manager.GetDesc(0, text, 3));
    EXPECT_EQ(kGeneralFailure, manager.GetDesc(2, text, sizeof text));
    EXPECT_EQ(kGeneralFailure, manager.GetDeviceStatus(2, &status, &problem));
}

TEST_F(DevMgrTest, DirectChangeRunsTheInstallerAndRestoresTheCursor)
{
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(0, OrvlDeviceDisable)) << "before Setup";
    ASSERT_EQ(kSucceeded, manager.Setup());
    const unsigned cursor = Cursor::Shown();
    EXPECT_EQ(kSucceeded, manager.ChangeState(0, OrvlDeviceDisable));
    EXPECT_FALSE(Runs(kCard));
    EXPECT_EQ(kSucceeded, manager.ChangeState(0, OrvlDeviceEnable));
    EXPECT_TRUE(Runs(kCard));
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(2, OrvlDeviceDisable));

    NewLogLines();
    for (const char* function : {"SetupDiSetClassInstallParamsW", "SetupDiCallClassInstaller"})
    {
        Faults::Inject(function, 1, ERROR_ACCESS_DENIED);
        EXPECT_EQ(kGeneralFailure, manager.ChangeState(0, OrvlDeviceEnable)) << function;
    }
    Faults::Inject("SetupDiChangeState", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(kSucceeded, manager.ChangeState(0, OrvlDeviceEnable));
    EXPECT_EQ(cursor, Cursor::Shown());
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("SetupDiSetClassInstallParams failed for last error 5.",
                                                    "SetupDiChangeState failed for last error 5."));
}

TEST_F(DevMgrTest, ChangeByInstanceIdPassesOverWhatCantBeDisabled)
{
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"pci\\ven_10ec\\1", OrvlDeviceDisable));
    EXPECT_FALSE(Runs(kCard));
    Trace::Clear();
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"PCI\\VEN_10EC\\1", OrvlDeviceDisable))
        << "isn't started";
    DeviceTree::SetDisableable(kModem, false);
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"HDAUDIO\\FUNC_02\\2", OrvlDeviceDisable));
    EXPECT_EQ(0U, Calls("SetupDiCallClassInstaller"));
    EXPECT_EQ(kSucceeded, CDevMgr::ExecStateChange(L"HDAUDIO\\FUNC_02\\2", OrvlDeviceEnable));
    EXPECT_EQ(1U, Calls("SetupDiCallClassInstaller")) << "enabling goes to the installer whatever the status";

    NewLogLines();
    EXPECT_EQ(kGeneralFailure, CDevMgr::ExecStateChange(L"NO\\SUCH\\1", OrvlDeviceEnable));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre(testing::StartsWith(
                                   "ExecStateChange failed in SetupDiOpenDeviceInfo(NO\\SUCH\\1), le=")));
}

TEST_F(DevMgrTest, DescriptionIsLookedForDepthFirstIgnoringCase)
{
    wchar_t id[64] = {};
    EXPECT_EQ(kSucceeded, manager.DrvDescToInstID(L"100%S mODEM", id, 64));
    EXPECT_EQ(kModem, seeding::Utf8(id));
    // The root has no description; the texts on the way are logged as they are.
    EXPECT_THAT(NewLogLines(),
                testing::ElementsAre(testing::StartsWith("Cannot Get_DevNode_Registry_Property for "), "Bus",
                                     "100%s Modem", kModem));
    EXPECT_EQ(kSucceeded, manager.DrvDescToInstID(L"SECOND C\u00C4RD \u0416", id, 64));
    EXPECT_EQ("PCI\\VEN_10EC\\9", seeding::Utf8(id));
    EXPECT_EQ(kGeneralFailure, manager.DrvDescToInstID(L"Nothing", id, 64));

    const ULONG length = 14;
    EXPECT_EQ(kGeneralFailure, manager.DrvDescToInstID(L"Network Card", id, length));
    EXPECT_THAT(NewLogLines(), testing::Contains("Input buffer is too small for 15"));
    EXPECT_EQ(kSucceeded, manager.DrvDescToInstID(L"Network Card", id, length + 1));

    EXPECT_EQ(kSucceeded, manager.ExecStateChange2(L"network card", OrvlDeviceDisable));
    EXPECT_FALSE(Runs(kCard));
    EXPECT_EQ(kGeneralFailure, manager.ExecStateChange2(L"Nothing", OrvlDeviceDisable));
}

TEST_F(DevMgrTest, ANegativeTimeIsTheDefaultOne)
{
    for (const auto& [configured, timeout] :
         {std::pair{"", 100000U}, {"TimeoutMS=0\n", 0U}, {"TimeoutMS=-1\n", 100000U}})
    {
        UseClasses({}, configured);
        ASSERT_EQ(kSucceeded, manager.Setup());
        EXPECT_EQ(timeout, manager.m_nTimeout) << configured;
        manager.Cleanup();
    }
}

TEST_F(DevMgrTest, ByDefaultTheServiceIsAsked)
{
    UseClasses({kNetText}, "TimeoutMS=5000\n");
    ASSERT_EQ(kSucceeded, manager.Setup());
    EXPECT_EQ(kGeneralFailure, manager.ChangeState(0, OrvlDeviceDisable)) << "nobody serves";

    CInterProcessBoard requests;
    CInterProcessBoard answers;
    ASSERT_EQ(0, requests.Reset(L"ORVL_IPB_PARA", 1024, 1, 0));
    ASSERT_EQ(0, answers.Reset(L"ORVL_IPB_RSLT", 1024, 1, 0));
    BYTE message[42] = {};
    std::thread service(
        [&]
        {
            for (int tries = 0; tries < 500 && requests.IsDataAvailble(100) == 0; ++tries)
            {
            }
            requests.Read(0, message, sizeof message);
            IpbDataHeader answer = {1, 0x77, 0};
            answers.Paste(0, &answer, sizeof answer);
            answers.Flag(0);
        });
    EXPECT_EQ(0x77, manager.ChangeState(0, OrvlDeviceDisable));
    service.join();
    // Code 2, action 2, 30 bytes of text.
    EXPECT_EQ(
        "02 00 00 00 02 00 00 00 1E 00 00 00 50 00 43 00 49 00 5C 00 56 00 45 00 4E 00 5F 00 31 00 30 00 "
        "45 00 43 00 5C 00 31 00 00 00",
        Hex(message));
    EXPECT_TRUE(Runs(kCard)) << "nothing is changed here";
}

} // namespace
