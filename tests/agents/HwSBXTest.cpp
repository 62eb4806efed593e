// agents/HwSBXTest.cpp
//
// How the chipset is recognised, and which bit of which register a function's section means.

#include "agents/AgentsTest.h"

#include "agents/HwSBX.h"
#include "foundation/Results.h"
#include "notebook/Chipset.h"

using namespace simulated;

namespace
{

constexpr PciAddress kBridge = {0, 31, 0};
constexpr DWORD kRange = 0xE0000000;

// Sections without their headers. Of a key that stands twice the first counts, so a change goes in front.
const std::string kIdentification = "RegisterType=PCIConfig\nBus=0\nDevice=31\nFunction=0\nOffset="
                                    "0\nValueSize=4\nValue=0x27B98086\nName=Hub\n";
const std::string kInPci = "RegisterType=PCIConfig\nBus=0\nDevice=31\nFunction=0\nValueOffset=0x20\nBit=9\n"
                           "ValueSize=2\nDisableType=1\n";
// The base register at 0xF0 is 0xE0001001; its flag bits are masked off.
const std::string kInMemory =
    "RegisterType=Memory\nAddressOffset=0xF0\nAddressSize=4\nAddressMask=0xFFFFC000\nValueOffset=0x18\n" +
    kInPci;
// The base register at 0xF4 is 0x00001081.
const std::string kInPorts =
    "RegisterType=IO\nAddressOffset=0xF4\nAddressSize=2\nAddressMask=0xFFFE\nValueOffset=0x4\n" + kInPci;

class HwSBXTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        PciBus::Add(3, kBridge, 0x8086, 0x27B9);
        PciBus::Set(kBridge, 0xF0, std::array<BYTE, 8>{0x01, 0x10, 0x00, 0xE0, 0x81, 0x10, 0x00, 0x00});
        PhysicalMemory::AddRange(kRange, 0x4000);
        UseFile(kInPci);
    }

    /// Writes the file anew, with one function and two identifications of which the second fits.
    static void UseFile(const std::string& function, const std::string& firstIdentification = kIdentification,
                        const std::string& list = "DeviceNumbers=3\nName0=Other\nName2=HD Audio\n")
    {
        WriteInstalled("SBXCfg.ini", "[Device Identifications]\nSBXIdNumbers=2\n[SBX Identification 0]\n" +
                                         firstIdentification + "[SBX Identification 1]\n" + kIdentification +
                                         "[Hub Devices]\n" + list + "[HD Audio]\n" + function);
    }

    /// Gives the three registers that a function can have here the value `word`.
    static void SetRegisters(DWORD word)
    {
        PciBus::Set(kBridge, 0x20, std::array<BYTE, 2>{LOBYTE(word), HIBYTE(word)});
        PhysicalMemory::SetWord(kRange + 0x18, word);
        IoPorts::Set(0x1084, 2, word);
    }
    /// Their values: in configuration space, in memory, in the ports.
    static std::vector<DWORD> Registers()
    {
        std::array<BYTE, 2> bytes = {};
        PciBus::Read(kBridge, 0x20, bytes);
        return {bytes[0] | (DWORD{bytes[1]} << 8), PhysicalMemory::Word(kRange + 0x18),
                IoPorts::Read(0x1084, 2).value_or(0)};
    }
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
    CHwSBX chipset;
    ASSERT_EQ(kSucceeded, chipset.Setup(1));
    for (const auto& [section, place] : {std::pair{&kInPci, 0U}, {&kInMemory, 1U}, {&kInPorts, 2U}})
    {
        for (const auto& row : kCases)
        {
            SCOPED_TRACE(std::to_string(place) + ' ' + row.disableType + ' ' + std::to_string(row.disable));
            UseFile(std::string("DisableType=") + row.disableType + '\n' + *section);
            const DWORD before = row.isSet ? 0x0103 : 0xFFFF;
            SetRegisters(before);
            std::vector<DWORD> expected(3, before);
            expected[place] ^= 0x200;
            int disabled = -1;
            EXPECT_EQ(kSucceeded, chipset.FunctionDisable(L"HD Audio", row.disable));
            EXPECT_EQ(expected, Registers());
            EXPECT_EQ(kSucceeded, chipset.GetFunctionDisable(L"HD Audio", &disabled));
            EXPECT_EQ(row.disabled, disabled);
        }
    }
}

TEST_F(HwSBXTest, IncompleteSectionsAreRefusedAndChangeNothing)
{
    const std::pair<const std::string&, std::vector<const char*>> cases[] = {
        {kInPci,
         {"RegisterType=", "RegisterType=pciconfig", "Bus=", "Device=", "Device=30",
          "Function=", "ValueOffset=20", "ValueOffset=0X20", "ValueOffset=0x", "ValueSize=5", "ValueSize=0",
          "Bit=", "Bit=32", "Bit=-2", "DisableType="}},
        {kInMemory, {"AddressOffset=", "AddressSize=5"}},
        {kInPorts, {"AddressSize="}},
    };
    CHwSBX chipset;
    ASSERT_EQ(kSucceeded, chipset.Setup(1));
    SetRegisters(0);
    for (const auto& [section, changes] : cases)
    {
        for (const std::string change : changes)
        {
            UseFile(change + '\n' + section);
            int disabled = -1;
            EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(L"HD Audio", 0)) << change;
            EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", &disabled)) << change;
            EXPECT_EQ(-1, disabled);
        }
    }
    EXPECT_THAT(Registers(), testing::Each(0U));
}

TEST_F(HwSBXTest, FunctionIsFoundByItsExactNameInTheChipsetsList)
{
    CHwSBX chipset;
    int disabled = -1;
    ASSERT_EQ(kSucceeded, chipset.Setup(1));
    EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(L"hd audio", 1));
    EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(nullptr, 1));
    EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", nullptr));
    EXPECT_EQ(kSucceeded, chipset.GetFunctionDisable(L"HD Audio", &disabled));
    UseFile(kInPci, kIdentification, "DeviceNumbers=2\nName2=HD Audio\n");
    EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", &disabled));
    UseFile(kInPci, kIdentification, "DeviceNumbers=2147483647\nName0=Other\n");
    EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", &disabled))
        << "doesn't last for hours";
}

TEST_F(HwSBXTest, FirstMatchingIdentificationNamesTheChipset)
{
    WriteInstalled("SBXCfg.ini", "[Device Identifications]\nSBXIdNumbers=2147483647\n");
    EXPECT_EQ(kGeneralFailure, CHwSBX().Setup(1)) << "doesn't last for hours";
    constexpr std::pair<const char*, LONG> kCases[] = {
        {"", kSucceeded},
        {"Value=0x1\n", kSucceeded},
        {"RegisterType=Memory\n", kSucceeded},
        {"RegisterType=\n", kSucceeded},
        {"ValueSize=2\nValue=0x8086\n", kSucceeded},
        {"Name=\n", kGeneralFailure},
        {"ValueSize=3\n", kGeneralFailure},
        {"Bus=\n", kGeneralFailure},
        {"Device=30\n", kGeneralFailure},
        {"Offset=254\n", kGeneralFailure},
    };
    for (const auto& [change, result] : kCases)
    {
        UseFile(kInPci, change + kIdentification);
        CHwSBX chipset;
        EXPECT_EQ(result, chipset.Setup(1)) << change;
        EXPECT_EQ(result == kSucceeded ? kAlreadySetUp : result, chipset.Setup(1)) << change;
    }
    CHwSBX unidentified;
    EXPECT_EQ(kSucceeded, unidentified.Setup(0));
    EXPECT_EQ(kGeneralFailure, unidentified.FunctionDisable(L"HD Audio", 1));
    WriteInstalled("SBXCfg.ini", "");
    EXPECT_EQ(kGeneralFailure, unidentified.Setup(1));
}

} // namespace
