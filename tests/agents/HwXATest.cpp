// agents/HwXATest.cpp
//
// The records of each access, what is refused before the driver, and the table of device names.

#include "agents/AgentsTest.h"

#include "agents/HwXA.h"
#include "foundation/Results.h"
#include "notebook/Chipset.h"
#include "notebook/KernelDriver.h"
#include "notebook/Processor.h"

using namespace simulated;

namespace
{

/// "5C 00 44 00 ...": a device name as its record holds it, filled up to 100 bytes.
std::string NameHex(const std::string& name)
{
    std::string text;
    for (std::size_t unit = 0; unit < 50; ++unit)
    {
        char digits[8];
        std::snprintf(digits, sizeof digits, "%02X 00 ", unit < name.size() ? name[unit] : 0);
        text += digits;
    }
    return text;
}

constexpr DWORD kRange = 0xFED1C000;

class HwXATest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        PhysicalMemory::AddRange(kRange, 0x4000);
        PhysicalMemory::SetWord(kRange + 0x10, 0x11223344);
        IoPorts::Set(0x1080, 4, 0xA1B2C3D4);
        PciBus::Add(3, {0, 31, 0}, 0x8086, 0x27B9);
        PciBus::Add(4, {0, 31, 1}, 0x8086, 0x27DF);
        Processor::Fit(2, {6, 12, 10, 21});
        ASSERT_EQ(kSucceeded, hardware.Setup());
        ForgetDriver();
        NewLogLines();
    }

    std::string DeviceName(ULONG bus, ULONG device, ULONG function)
    {
        wchar_t name[51] = {};
        return hardware.GetDeviceName(bus, device, function, name, 51) < 0 ? "none" : seeding::Utf8(name);
    }

    /// How many of the first 32 device objects are there.
    static std::size_t PresentObjects()
    {
        std::size_t present = 0;
        for (unsigned object = 0; object < 32; ++object)
        {
            present += PciBus::Find(PciBus::ObjectName(object)).has_value() ? 1 : 0;
        }
        return present;
    }

    CHwXA hardware;
    wchar_t bridge[50] = L"\\Device\\NTPNP_PCI0003";
};

TEST_F(HwXATest, EachAccessSendsItsRecordAndMovesTheData)
{
    Processor::Set(0, Processor::kPerformanceControl, 0x0102030405060708);
    unsigned __int64 value = 0;
    EXPECT_EQ(kSucceeded, hardware.ReadMSR(Processor::kPerformanceControl, &value));
    EXPECT_EQ(0x0102030405060708U, value);
    value = 0xF1F2F3F4F5F6F7F8;
    EXPECT_EQ(kSucceeded, hardware.WriteMSR(Processor::kPerformanceControl, &value));

    DWORD data = 0;
    EXPECT_EQ(kSucceeded, hardware.ReadIoPort(0x51080, &data, 2));
    EXPECT_EQ(0xC3D4U, data);
    data = 0x0A0B;
    EXPECT_EQ(kSucceeded, hardware.WriteIoPort(0x1082, &data, 2));
    EXPECT_EQ(0x0A0BC3D4U, IoPorts::Read(0x1080, 4));

    EXPECT_EQ(kSucceeded, hardware.ReadPCIConfig(bridge, 2, &data, 2));
    EXPECT_EQ(0x27B9U, data);
    BYTE bytes[] = {1, 2, 3};
    EXPECT_EQ(kSucceeded, hardware.WritePCIConfig(bridge, 0x80, bytes, 3));
    EXPECT_EQ(kSucceeded, hardware.GetDeviceProperty(16, bridge, &data, 4));
    EXPECT_EQ(0x001F0000U, data);

    const std::string name = NameHex("\\Device\\NTPNP_PCI0003");
    EXPECT_THAT(DriverInputs(), testing::ElementsAre("99 01 00 00", "99 01 00 00 F4 F3 F2 F1 F8 F7 F6 F5",
                                                     "80 10 02 00 02 00 00 00 00 00 00 00",
                                                     "82 10 02 00 02 00 00 00 0B 0A 00 00 00",
                                                     name + "02 00 00 00 02 00 00 00 00 00 00 00",
                                                     name + "80 00 00 00 03 00 00 00 01 02 03 00 00 00",
                                                     "10 00 00 00 " + name.substr(0, name.size() - 1)));
}

TEST_F(HwXATest, MemoryIsMappedReadWrittenAndUnmapped)
{
    void* mapping = nullptr;
    DWORD data = 0;
    ASSERT_EQ(kSucceeded,
              hardware.MapMemorySpace(reinterpret_cast<void*>(ULONG_PTR{kRange + 0x10}), 4, &mapping));
    EXPECT_EQ("04 00 00 00 00 00 00 00", Hex({static_cast<const BYTE*>(mapping) + 8, 8}));
    const std::string descriptor = Hex({static_cast<const BYTE*>(mapping), 8});
    EXPECT_EQ(kSucceeded, hardware.ReadMemory(mapping, &data, 4));
    EXPECT_EQ(0x11223344U, data);
    data = 0xCAFE;
    EXPECT_EQ(kSucceeded, hardware.WriteMemory(mapping, &data, 2));
    EXPECT_EQ(0x1122CAFEU, PhysicalMemory::Word(kRange + 0x10));
    EXPECT_EQ(kSucceeded, hardware.UnmapMemorySpace(mapping));
    EXPECT_THAT(DriverInputs(), testing::ElementsAre("10 C0 D1 FE 00 00 00 00 04 00 00 00 00 00 00 00",
                                                     descriptor + " 04 00 00 00 00 00 00 00",
                                                     descriptor + " 02 00 00 00 FE CA 00 00 00",
                                                     descriptor + " 04 00 00 00 00 00 00 00"));
}

TEST_F(HwXATest, BadArgumentsNeverReachTheDriver)
{
    DWORD data = 0;
    void* mapping = nullptr;
    void* const somewhere = &data;
    wchar_t longName[64] = {};
    std::fill_n(longName, 50, L'x');

    EXPECT_EQ(kGeneralFailure, hardware.WriteIoPort(0x80, &data, 3));
    EXPECT_EQ(kGeneralFailure, hardware.MapMemorySpace(nullptr, 4, &mapping));
    EXPECT_EQ(kGeneralFailure, hardware.MapMemorySpace(somewhere, 0, &mapping));
    EXPECT_EQ(kGeneralFailure, hardware.MapMemorySpace(somewhere, 4, nullptr));
    EXPECT_EQ(kGeneralFailure, hardware.UnmapMemorySpace(nullptr));
    EXPECT_EQ(kGeneralFailure, hardware.ReadMemory(nullptr, &data, 4));
    EXPECT_EQ(kGeneralFailure, hardware.WriteMemory(somewhere, &data, 0));
    EXPECT_EQ(kGeneralFailure, hardware.WriteMemory(somewhere, &data, 0xFFFFFFFF)) << "no such message";
    EXPECT_EQ(kGeneralFailure, hardware.ReadPCIConfig(nullptr, 0, &data, 4));
    EXPECT_EQ(kGeneralFailure, hardware.WritePCIConfig(bridge, 0, nullptr, 4));
    EXPECT_EQ(kGeneralFailure, hardware.ReadPCIConfig(longName, 0, &data, 4));
    EXPECT_EQ(kGeneralFailure, hardware.WritePCIConfig(longName, 0, &data, 4));
    EXPECT_EQ(kGeneralFailure, hardware.GetDeviceProperty(14, longName, &data, 4));
    hardware.Cleanup();
    EXPECT_EQ(kGeneralFailure, hardware.ReadIoPort(0x80, &data, 1));
    EXPECT_EQ(kGeneralFailure, hardware.GetDeviceName(0, 31, 0, longName, 64));
    EXPECT_TRUE(DriverInputs().empty());

    std::vector<std::string> expected(13, "Invalidate parameters.");
    expected.front() = "The uPortSize is invalid 3.";
    std::fill(expected.begin() + 9, expected.begin() + 12, "The device name is too long");
    expected.back() = "Windows version 5.1";
    expected.insert(expected.end(), 2, "The handle of the device doesn't exist.");
    EXPECT_THAT(NewLogLines(), testing::ElementsAreArray(expected));

    // A name of 49 characters fits; the driver then doesn't know it.
    ASSERT_EQ(kSucceeded, hardware.Setup());
    longName[49] = L'\0';
    EXPECT_EQ(static_cast<LONG>(0x80070002), hardware.ReadPCIConfig(longName, 0, &data, 4));
    EXPECT_EQ(kGeneralFailure, hardware.GetDeviceProperty(14, longName, &data, 4)) << "any error is this one";
}

TEST_F(HwXATest, ShortAnswersAreFailures)
{
    BYTE bytes[8] = {};
    EXPECT_EQ(kGeneralFailure, hardware.ReadPCIConfig(bridge, 252, bytes, 8));
    EXPECT_THAT(NewLogLines(), testing::ElementsAre("IOCTL_READ_PCI_CONFIG failed"));
    EXPECT_LT(hardware.ReadIoPort(0x1080, bytes, 3), 0) << "the driver judges the size";
    EXPECT_THAT(bytes, testing::Each(0)) << "nothing was read";
}

TEST_F(HwXATest, DeviceNamesComeFromTheTableWhileTheHardwareConfirmsThem)
{
    EXPECT_EQ("none", DeviceName(9, 0, 0)) << "fills the table";
    EXPECT_EQ("\\Device\\NTPNP_PCI0003", DeviceName(0, 31, 0));
    ForgetDriver();
    EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 31, 1));
    EXPECT_EQ(2U, DriverInputs().size()) << "bus and address of the entry";

    // The function moves behind another device object: the stale entry is found, the table is made anew.
    PciBus::Move(7, {0, 31, 1});
    ForgetDriver();
    EXPECT_EQ("\\Device\\NTPNP_PCI0007", DeviceName(0, 31, 1));
    EXPECT_EQ(1 + 32 + PresentObjects(), DriverInputs().size()) << "one check, 32 buses, addresses";

    ForgetDriver();
    EXPECT_EQ("none", DeviceName(5, 0, 0));
    EXPECT_EQ(32 + PresentObjects(), DriverInputs().size());
    PciBus::Add(32, {5, 0, 0}, 0x10EC, 0x8168);
    EXPECT_EQ("none", DeviceName(5, 0, 0)) << "only the first 32 objects are looked at";

    wchar_t name[64] = {};
    ForgetDriver();
    EXPECT_EQ(kGeneralFailure, hardware.GetDeviceName(0, 31, 0, name, 50));
    EXPECT_EQ(kGeneralFailure, hardware.GetDeviceName(0, 31, 0, nullptr, 64));
    EXPECT_TRUE(DriverInputs().empty());
}

// A driver that fails or is busy says nothing about the devices.
TEST_F(HwXATest, OnlyAMissingObjectLosesItsPlaceInTheTable)
{
    EXPECT_EQ("none", DeviceName(9, 0, 0)) << "fills the table";
    for (const DWORD error : {DWORD{ERROR_BUSY}, DWORD{ERROR_GEN_FAILURE}, DWORD{ERROR_PATH_NOT_FOUND}})
    {
        KernelDriver::RefuseRequests(error);
        EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 31, 1)) << error;
        EXPECT_EQ("none", DeviceName(9, 0, 0)) << error;
    }
    KernelDriver::RefuseRequests(ERROR_SUCCESS);
    ForgetDriver();
    EXPECT_EQ("\\Device\\NTPNP_PCI0004", DeviceName(0, 31, 1));
    EXPECT_EQ(2U, DriverInputs().size()) << "confirmed as before";

    KernelDriver::RefuseRequests(ERROR_FILE_NOT_FOUND);
    EXPECT_EQ("none", DeviceName(0, 31, 1));
}

} // namespace
