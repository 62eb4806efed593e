// agents/HwXATest.cpp
//
// What is refused before the driver, and the table of device names. The records of each access are in the
// golden file.

#include "agents/AgentsTest.h"

#include "agents/HwXA.h"
#include "foundation/Results.h"
#include "machine/Chipset.h"
#include "machine/KernelDriver.h"

using namespace simulated;

namespace
{

class HwXATest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        PciBus::Add(3, {0, 30, 0}, 0x8086, 0x27B9);
        PciBus::Add(4, {0, 30, 1}, 0x8086, 0x27DF);
        ASSERT_EQ(kSucceeded, hardware.Setup());
        NewLogLines();
    }
    void TearDown() override
    {
        hardware.Cleanup();
        AgentsTest::TearDown();
    }

    std::string DeviceName(ULONG bus, ULONG device, ULONG function)
    {
        wchar_t name[51] = {};
        NewDriverInputs();
        return hardware.GetDeviceName(bus, device, function, name, 51) < 0 ? "none" : seeding::Utf8(name);
    }

    CHwXA hardware;
    wchar_t bridge[50] = L"\\Device\\NTPNP_PCI0003";
};

TEST_F(HwXATest, BadArgumentsNeverReachTheDriver)
{
    DWORD data = 0;
    unsigned __int64 value = 0;
    void* mapping = nullptr;
    void* const somewhere = &value;
    wchar_t longName[64] = {};
    std::fill_n(longName, 50, L'x');
    const auto refused = [&](const std::vector<LONG>& results, const char* line)
    {
        EXPECT_THAT(results, testing::Each(kGeneralFailure)) << line;
        EXPECT_EQ(std::vector<std::string>(*line == 0 ? 0 : results.size(), line), NewLogLines());
    };
    refused({hardware.WriteIoPort(0x80, &data, 3)}, "The uPortSize is invalid 3.");
    refused({hardware.MapMemorySpace(nullptr, 4, &mapping), hardware.MapMemorySpace(somewhere, 0, &mapping),
             hardware.MapMemorySpace(somewhere, 4, nullptr), hardware.UnmapMemorySpace(nullptr),
             hardware.ReadMemory(nullptr, &data, 4), hardware.WriteMemory(somewhere, &data, 0),
             hardware.ReadPCIConfig(nullptr, 0, &data, 4), hardware.WritePCIConfig(bridge, 0, nullptr, 4)},
            "Invalidate parameters.");
    refused({hardware.ReadPCIConfig(longName, 0, &data, 4), hardware.WritePCIConfig(longName, 0, &data, 4),
             hardware.GetDeviceProperty(14, longName, &data, 4)},
            "The device name is too long");
    refused({hardware.ReadMSR(0x199, nullptr), hardware.WriteMSR(0x199, nullptr),
             hardware.ReadIoPort(0x80, nullptr, 1), hardware.WriteIoPort(0x80, nullptr, 1),
             hardware.WriteMemory(somewhere, &data, 0xFFFFFFFF), // no such message
             hardware.GetDeviceProperty(14, nullptr, &data, 4),
             hardware.GetDeviceName(0, 30, 0, longName, 50), hardware.GetDeviceName(0, 30, 0, nullptr, 64)},
            "");
    EXPECT_TRUE(NewDriverInputs().empty());

    // A name of 49 characters fits; the driver then doesn't know it.
    longName[49] = L'\0';
    EXPECT_EQ(static_cast<LONG>(0x80070002), hardware.ReadPCIConfig(longName, 0, &data, 4));
    EXPECT_EQ(static_cast<LONG>(0x80070002), hardware.WritePCIConfig(longName, 0, &data, 4));
    EXPECT_EQ(kGeneralFailure, hardware.GetDeviceProperty(14, longName, &data, 4)) << "any error is this one";
    // So is a result that is too short.
    EXPECT_EQ(kGeneralFailure, hardware.ReadPCIConfig(bridge, 252, &value, 8));
    EXPECT_EQ("IOCTL_READ_PCI_CONFIG failed", NewLogLines().back());
    EXPECT_LT(hardware.ReadIoPort(0x1080, &data, 3), 0) << "the driver judges the size";
    EXPECT_EQ(kSucceeded, hardware.GetDeviceProperty(16, bridge, &data, 4));
    EXPECT_EQ(0x001E0000U, data);

    hardware.Cleanup();
    NewDriverInputs();
    NewLogLines();
    refused({hardware.ReadMSR(0x199, &value), hardware.WriteMSR(0x199, &value),
             hardware.ReadIoPort(0x80, &data, 1), hardware.WriteIoPort(0x80, &data, 1),
             hardware.MapMemorySpace(somewhere, 4, &mapping), hardware.UnmapMemorySpace(somewhere),
             hardware.ReadMemory(somewhere, &data, 4), hardware.WriteMemory(somewhere, &data, 4),
             hardware.ReadPCIConfig(bridge, 0, &data, 4), hardware.WritePCIConfig(bridge, 0, &data, 4),
             hardware.GetDeviceProperty(14, bridge, &data, 4),
             hardware.GetDeviceName(0, 30, 0, longName, 64)},
            "The handle of the device doesn't exist.");
}

TEST_F(HwXATest, DeviceNamesComeFromTheTableWhileTheHardwareConfirmsThem)
{
    EXPECT_EQ("none", DeviceName(9, 0, 0)) << "fills the table";
    const std::size_t search = NewDriverInputs().size();
    EXPECT_GT(search, 32U) << "32 buses, and the addresses of those that are there";
    EXPECT_EQ("\\Device\\NTPNP_PCI0003", DeviceName(0, 30, 0));
    EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 30, 1));
    EXPECT_EQ(2U, NewDriverInputs().size()) << "bus and address of the entry";

    // Another function behind the device object, which the table doesn't know yet.
    PciBus::Move(4, {0, 30, 0});
    EXPECT_EQ("none", DeviceName(0, 30, 1));
    PciBus::Move(4, {0, 30, 1});
    PciBus::Move(3, {0, 30, 0});
    EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 30, 1));

    // The function moves behind another device object: the stale entry is found, the table is made anew.
    PciBus::Move(7, {0, 30, 1});
    EXPECT_EQ("\\Device\\NTPNP_PCI0007", DeviceName(0, 30, 1));
    EXPECT_EQ(search, NewDriverInputs().size()) << "one check more, one object less";

    EXPECT_EQ("none", DeviceName(5, 0, 0));
    EXPECT_EQ(search - 1, NewDriverInputs().size());
    PciBus::Add(32, {5, 0, 0}, 0x10EC, 0x8168);
    EXPECT_EQ("none", DeviceName(5, 0, 0)) << "only the first 32 objects are looked at";
}

// A driver that fails or is busy says nothing about the devices.
TEST_F(HwXATest, OnlyAMissingObjectLosesItsPlaceInTheTable)
{
    EXPECT_EQ("none", DeviceName(9, 0, 0)) << "fills the table";
    for (const DWORD error : {DWORD{ERROR_BUSY}, DWORD{ERROR_GEN_FAILURE}, DWORD{ERROR_PATH_NOT_FOUND}})
    {
        KernelDriver::RefuseRequests(error);
        EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 30, 1)) << error;
        EXPECT_EQ("none", DeviceName(9, 0, 0)) << error;
    }
    KernelDriver::RefuseRequests(ERROR_SUCCESS);
    EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 30, 1));
    EXPECT_EQ(2U, NewDriverInputs().size()) << "confirmed as before";

    KernelDriver::RefuseRequests(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ("none", DeviceName(0, 30, 1));
}

} // namespace
