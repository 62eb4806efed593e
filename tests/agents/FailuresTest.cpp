// agents/FailuresTest.cpp
//
// Whatever call of the platform fails, an agent leaves nothing open, mapped or allocated.

#include "agents/AgentsTest.h"

#include "agents/BatAgent.h"
#include "agents/DevMgr.h"
#include "agents/DriverRecords.h"
#include "agents/HwSBX.h"
#include "agents/LanAgent.h"
#include "notebook/Adapters.h"
#include "notebook/Batteries.h"
#include "notebook/DeviceTree.h"
#include "notebook/HexText.h"

#include <algorithm>

using namespace simulated;

namespace
{

class FailuresTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        Adapters::Clear();
        for (const std::string& device : DeviceTree::All())
        {
            DeviceTree::Remove(device);
        }
        Batteries::Add();
        Adapters::Add("Realtek Wireless", {{"DuplexMode", "1"}});
        WriteInstalled("ORVLCfg.ini", "[OrvlDevMgr]\nDmOptions=0\n[DevGUIDs]\nNum=1\n"
                                      "GUID0={4D36E972-E325-11CE-BFC1-08002BE10318}\n");
        const std::string bridge = "RegisterType=PCIConfig\nBus=0\nDevice=31\nFunction=0\n";
        WriteInstalled("SBXCfg.ini", "[Device Identifications]\nSBXIdNumbers=1\n[SBX Identification 0]\n" +
                                         bridge +
                                         "Offset=0\nValueSize=4\nValue=0x27B98086\nName=Hub\n"
                                         "[Hub Devices]\nDeviceNumbers=1\nName0=HD Audio\n"
                                         "[HD Audio]\nRegisterType=Memory\n" +
                                         bridge +
                                         "AddressOffset=0xF0\nAddressSize=4\nAddressMask=0xFFFFC000\n"
                                         "ValueOffset=0x3418\nValueSize=4\nBit=4\nDisableType=0\n");
    }
};

void UseBatteries()
{
    CBatAgent().Setup();
}

void UseDevices()
{
    wchar_t id[64];
    CDevMgr devices;
    devices.Setup();
    devices.ChangeState(0, OrvlDeviceDisable);
    devices.ExecStateChange2(L"Realtek Wireless", OrvlDeviceEnable);
    devices.DrvDescToInstID(L"Nothing", id, 64);
}

void UseAdapter()
{
    CLanAgent adapter;
    adapter.Initialize();
    adapter.SetLanSpeed(3);
    adapter.GetLanSpeed();
    adapter.ApplySettings();
    adapter.SetLANConnectStatus(0);
    adapter.SetLANConnectStatus(1);
    adapter.GetWLANConnectStatus();
}

void UseChipset()
{
    wchar_t bridge[] = L"\\Device\\NTPNP_PCI0005";
    DWORD data = 0;
    int disabled = 0;
    CHwSBX chipset;
    chipset.Setup(1);
    chipset.FunctionDisable(L"HD Audio", 1);
    chipset.GetFunctionDisable(L"HD Audio", &disabled);
    chipset.WriteIoPort(0x1000, &data, 4);
    chipset.WritePCIConfig(bridge, 0x80, &data, 4);
}

/// How often the driver was sent an I/O control since the trace was cleared, or sent it with success.
std::size_t DriverCalls(DWORD code, bool onlySuccessful)
{
    const std::string argument = ", " + ToHex(code, 8) + ", ";
    const std::vector<TracedCall> calls = Trace::CallsOf("DeviceIoControl");
    return static_cast<std::size_t>(std::count_if(calls.begin(), calls.end(),
                                                  [&](const TracedCall& call) {
                                                      return call.arguments.find(argument) !=
                                                                 std::string::npos &&
                                                             (call.succeeded || !onlySuccessful);
                                                  }));
}

TEST_F(FailuresTest, NothingStaysHeldWhicheverCallFails)
{
    // A busy channel keeps the request to unmap from the driver, so the chipset's sweeps leave that call
    // alone.
    constexpr std::pair<void (*)(), const char*> kSweeps[] = {
        {&UseBatteries, "*"},       {&UseDevices, "*"}, {&UseAdapter, "*"}, {&UseChipset, "DeviceIoControl"},
        {&UseChipset, "HeapAlloc"},
    };
    for (const auto& [use, function] : kSweeps)
    {
        unsigned nth = 1;
        for (bool wasHit = true; wasHit && !HasFailure(); ++nth)
        {
            Trace::Clear();
            Faults::Inject(function, nth, ERROR_ACCESS_DENIED);
            use();
            wasHit = Faults::AllHit();
            Faults::Clear();
            // A refused request to unmap leaves the driver with a mapping, but it was made.
            const std::size_t unmapped = DriverCalls(IOCTL_UNMAP_MEMEMORY, false);
            EXPECT_EQ(DriverCalls(IOCTL_MAP_MEMORY, true), unmapped) << nth;
            EXPECT_EQ(unmapped - DriverCalls(IOCTL_UNMAP_MEMEMORY, true), Leaks::Count())
                << nth << ": " << Leaks::Describe();
            Leaks::Forget();
        }
        EXPECT_GT(nth, 2U) << "nothing was there to fail";
    }
}

} // namespace
