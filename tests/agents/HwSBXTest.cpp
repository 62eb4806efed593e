// agents/HwSBXTest.cpp
//
// How the chipset is recognised, and which bit of which register a function's section means.

#include "agents/AgentsTest.h"

#include "agents/HwSBX.h"
#include "foundation/Results.h"
#include "machine/Chipset.h"

using namespace simulated;

namespace
{

constexpr PciAddress kBridge = {1, 30, 2};

// Sections without their headers. The first of two equal keys counts, so a change goes in front.
const std::string kAddress = "Bus=1\nDevice=30\nFunction=2\n";
const std::string kIdentification =
    "RegisterType=PCIConfig\nOffset=2\nValueSize=2\nValue=0x27B9\nName=Hub\n" + kAddress;
const std::string kInPci =
    "RegisterType=PCIConfig\nValueOffset=0x20\nBit=9\nValueSize=2\nDisableType=1\n" + kAddress;
const std::string kInMemory =
    "RegisterType=Memory\nAddressOffset=0xF0\nAddressSize=4\nAddressMask=0xFFFFC000\nValueOffset=0x18\n" +
    kInPci;
const std::string kInPorts = "RegisterType=IO\nAddressOffset=0xF4\nAddressSize=2\nValueOffset=0x4\n" + kInPci;

class HwSBXTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        PciBus::Add(3, kBridge, 0x8086, 0x27B9);
        UseFile(kInPci);
        ASSERT_EQ(kSucceeded, chipset.Setup(1));
    }
    void TearDown() override
    {
        chipset.Cleanup();
        AgentsTest::TearDown();
    }

    /// Writes the file anew, with one function and two identifications of which the second fits.
    static void UseFile(const std::string& function, const std::string& firstIdentification = kIdentification,
                        const std::string& list = "DeviceNumbers=3\nName0=Other\nName2=HD Audio\n")
    {
        WriteInstalled("SBXCfg.ini", "[Device Identifications]\nSBXIdNumbers=2\n[SBX Identification 0]\n" +
                                         firstIdentification + "[SBX Identification 1]\n" + kIdentification +
                                         "[Hub Devices]\n" + list + "[HD Audio]\n" + function);
    }

    /// The register of a function in configuration space.
    static void SetRegister(DWORD word)
    {
        PciBus::Set(kBridge, 0x20, std::array<BYTE, 2>{LOBYTE(word), HIBYTE(word)});
    }
    static DWORD Register()
    {
        std::array<BYTE, 2> bytes = {};
        PciBus::Read(kBridge, 0x20, bytes);
        return bytes[0] | (DWORD{bytes[1]} << 8);
    }

    CHwSBX chipset;
    int disabled = -1;
};

TEST_F(HwSBXTest, DisableTypeDecidesWhatTheBitMeans)
{
    constexpr struct
    {
        const char* disableType;
        int disable;
        bool isSet;   ///< the bit, afterwards
        int disabled; ///< what is read then
    } kCases[] = {
        {"1", 1, false, 1}, {"1", 0, true, 0}, {"1", 2, true, 0}, {"0", 1, true, 1},
        {"0", 0, false, 0}, {"0", 2, true, 1}, {"5", 0, true, 1}, {"5", 1, true, 1},
    };
    for (const auto& row : kCases)
    {
        SCOPED_TRACE(std::string(row.disableType) + ' ' + std::to_string(row.disable));
        UseFile(std::string("DisableType=") + row.disableType + '\n' + kInPci);
        const DWORD before = row.isSet ? 0x0103 : 0xFFFF;
        SetRegister(before);
        EXPECT_EQ(kSucceeded, chipset.FunctionDisable(L"HD Audio", row.disable));
        EXPECT_EQ(before ^ 0x200, Register());
        EXPECT_EQ(kSucceeded, chipset.GetFunctionDisable(L"HD Audio", &disabled));
        EXPECT_EQ(row.disabled, disabled);
    }
}

TEST_F(HwSBXTest, IncompleteSectionsAreRefusedAndChangeNothing)
{
    const std::pair<const std::string&, std::vector<const char*>> cases[] = {
        {kInPci,
         {"RegisterType=", "RegisterType=pciconfig", "Bus=", "Device=", "Device=29",
          "Function=", "ValueOffset=20", "ValueOffset=0X20", "ValueOffset=0x", "ValueSize=5", "ValueSize=0",
          "Bit=", "Bit=32", "Bit=-2", "DisableType="}},
        {kInMemory, {"AddressOffset=", "AddressOffset=0xFE", "AddressSize=5", "AddressSize=0"}},
        {kInPorts, {"AddressSize="}},
    };
    SetRegister(0);
    NewDriverInputs();
    for (const auto& [section, changes] : cases)
    {
        for (const std::string change : changes)
        {
            UseFile(change + '\n' + section);
            EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(L"HD Audio", 0)) << change;
            EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", &disabled)) << change;
            EXPECT_EQ(-1, disabled);
            const bool isTheHardwares = change == "Device=29" || change == "AddressOffset=0xFE";
            EXPECT_EQ(isTheHardwares, !NewDriverInputs().empty()) << change;
        }
    }
    EXPECT_EQ(0U, Register());
    UseFile("ValueSize=1\nBit=0\n" + kInPci);
    EXPECT_EQ(kSucceeded, chipset.GetFunctionDisable(L"HD Audio", &disabled));
    UseFile("AddressSize=1\n" + kInPorts);
    EXPECT_EQ(ResultFromWin32(ERROR_FILE_NOT_FOUND), chipset.GetFunctionDisable(L"HD Audio", &disabled))
        << "a base of one byte is read, and no port is there";
}

TEST_F(HwSBXTest, FunctionIsFoundByItsExactNameInTheChipsetsList)
{
    EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(L"hd audio", 1));
    EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(nullptr, 1));
    EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", nullptr));
    for (const auto& [list, result] :
         {std::pair{"DeviceNumbers=2\nName2=HD Audio\n", kGeneralFailure},
          {"Name0=HD Audio\n", kGeneralFailure},
          {"DeviceNumbers=2147483647\nName0=Other\nName1=HD Audio\n", kSucceeded},
          {"DeviceNumbers=2147483647\nName0=Other\n", kGeneralFailure}}) // doesn't last for hours
    {
        UseFile(kInPci, kIdentification, list);
        EXPECT_EQ(result, chipset.GetFunctionDisable(L"HD Audio", &disabled)) << list;
    }
}

TEST_F(HwSBXTest, FirstMatchingIdentificationNamesTheChipset)
{
    EXPECT_EQ(kAlreadySetUp, chipset.Setup(1));
    constexpr std::pair<const char*, LONG> kCases[] = {
        {"Value=0x1\n", kSucceeded},           {"Value=0x1\nRegisterType=Memory\nBus=\n", kSucceeded},
        {"RegisterType=\nBus=\n", kSucceeded}, {"Offset=2\nValueSize=1\nValue=0xB9\n", kSucceeded},
        {"Name=\n", kGeneralFailure},          {"ValueSize=3\n", kGeneralFailure},
        {"Bus=\n", kGeneralFailure},           {"Device=29\n", kGeneralFailure},
        {"Offset=255\n", kGeneralFailure},
    };
    for (const auto& [change, result] : kCases)
    {
        UseFile(kInPci, change + kIdentification);
        EXPECT_EQ(result, CHwSBX().Setup(1)) << change;
    }
    CHwSBX unidentified;
    EXPECT_EQ(kSucceeded, unidentified.Setup(0));
    EXPECT_EQ(kGeneralFailure, unidentified.FunctionDisable(L"HD Audio", 1));
    for (const char* const none : {"", "[Device Identifications]\nSBXIdNumbers=2147483647\n"})
    {
        WriteInstalled("SBXCfg.ini", none);
        EXPECT_EQ(kGeneralFailure, unidentified.Setup(1)) << none;
    }
}

} // namespace
