// agents/HwSBXTest.cpp
//
// How the chipset is recognised, and which bit of which register a function's section means.

#include "agents/AgentsTest.h"

#include "agents/DriverRecords.h"
#include "agents/HwSBX.h"
#include "foundation/Results.h"
#include "notebook/Chipset.h"
#include "notebook/Text.h"

#include <map>

using namespace simulated;

namespace
{

using Keys = std::map<std::string, std::string>;

constexpr PciAddress kBridge = {0, 31, 0};
constexpr DWORD kRange = 0xE0000000;

const Keys kIdentification = {{"RegisterType", "PCIConfig"},
                              {"Bus", "0"},
                              {"Device", "31"},
                              {"Function", "0"},
                              {"Offset", "0"},
                              {"ValueSize", "4"},
                              {"Value", "0x27B98086"},
                              {"Name", "Hub"}};
const Keys kInPci = {{"RegisterType", "PCIConfig"}, {"Bus", "0"}, {"Device", "31"},   {"Function", "0"},
                     {"ValueOffset", "0x20"},       {"Bit", "9"}, {"ValueSize", "2"}, {"DisableType", "1"}};

Keys With(Keys keys, const Keys& changes)
{
    for (const auto& [key, value] : changes)
    {
        keys[key] = value;
    }
    return keys;
}

// The base register at 0xF0 is 0xE0001001; its flag bits are masked off.
const Keys kInMemory = With(kInPci, {{"RegisterType", "Memory"},
                                     {"AddressOffset", "0xF0"},
                                     {"AddressSize", "4"},
                                     {"AddressMask", "0xFFFFC000"},
                                     {"ValueOffset", "0x18"}});
// The base register at 0xF4 is 0x00001081.
const Keys kInPorts = With(kInPci, {{"RegisterType", "IO"},
                                    {"AddressOffset", "0xF4"},
                                    {"AddressSize", "2"},
                                    {"AddressMask", "0xFFFE"},
                                    {"ValueOffset", "0x4"}});

class HwSBXTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        PciBus::Add(3, kBridge, 0x8086, 0x27B9);
        PciBus::Set(kBridge, 0xF0, std::array<BYTE, 8>{0x01, 0x10, 0x00, 0xE0, 0x81, 0x10, 0x00, 0x00});
        PhysicalMemory::AddRange(kRange, 0x4000);
        Configure(L"SBXCfg.ini", L"Device Identifications", "SBXIdNumbers", "1");
        UseSection(L"SBX Identification 0", kIdentification);
        UseSection(L"Hub Devices", {{"DeviceNumbers", "3"}, {"Name0", "Other"}, {"Name2", "HD Audio"}});
        UseSection(L"HD Audio", kInPci);
    }

    /// Replaces a section whole.
    static void UseSection(const wchar_t* section, const Keys& keys)
    {
        const std::vector<wchar_t> path =
            ToUtf16(std::string(Notebook::kInstallationFolder) + "SBXCfg.ini" + '\0');
        WritePrivateProfileStringW(section, nullptr, nullptr, path.data());
        for (const auto& [key, value] : keys)
        {
            Configure(L"SBXCfg.ini", section, key, value);
        }
    }

    /// Gives the function's register the value `word`, wherever it lies.
    static void SetRegister(DWORD word)
    {
        const std::array<BYTE, 2> bytes = {LOBYTE(word), HIBYTE(word)};
        PciBus::Set(kBridge, 0x20, bytes);
        PhysicalMemory::SetWord(kRange + 0x18, word);
        IoPorts::Set(0x1084, 2, word);
    }
    /// Its value, as three registers that should be looked at by their kind.
    static DWORD Register(const std::string& kind)
    {
        if (kind == "Memory")
        {
            return PhysicalMemory::Word(kRange + 0x18);
        }
        if (kind == "IO")
        {
            return IoPorts::Read(0x1084, 2).value_or(0);
        }
        std::array<BYTE, 2> bytes = {};
        PciBus::Read(kBridge, 0x20, bytes);
        return bytes[0] | (DWORD{bytes[1]} << 8);
    }
};

struct BitCase
{
    const char* disableType;
    int disable;
    bool isSet;   ///< the bit, afterwards
    int disabled; ///< what is read then
};

TEST_F(HwSBXTest, DisableTypeDecidesWhatTheBitMeans)
{
    constexpr BitCase kCases[] = {
        {"1", 1, false, 1}, {"1", 0, true, 0}, {"1", 2, true, 0}, {"0", 1, true, 1},
        {"0", 0, false, 0}, {"0", 2, true, 1}, {"5", 0, true, 1}, {"5", 1, true, 1},
    };
    for (const Keys& section : {kInPci, kInMemory, kInPorts})
    {
        for (const BitCase& row : kCases)
        {
            for (const DWORD before : {0x0000U, 0xFFFFU})
            {
                const std::string& kind = section.at("RegisterType");
                SCOPED_TRACE(kind + ' ' + row.disableType + ' ' + std::to_string(row.disable));
                UseSection(L"HD Audio", With(section, {{"DisableType", row.disableType}}));
                SetRegister(before);
                CHwSBX chipset;
                int disabled = -1;
                ASSERT_EQ(kSucceeded, chipset.Setup(1));
                EXPECT_EQ(kSucceeded, chipset.FunctionDisable(L"HD Audio", row.disable));
                EXPECT_EQ(row.isSet ? before | 0x200U : before & ~0x200U, Register(kind));
                EXPECT_EQ(kSucceeded, chipset.GetFunctionDisable(L"HD Audio", &disabled));
                EXPECT_EQ(row.disabled, disabled);
            }
        }
    }
}

TEST_F(HwSBXTest, IncompleteSectionsAreRefusedAndChangeNothing)
{
    struct Case
    {
        const Keys& section;
        const char* key;
        const char* value; ///< empty: the key is missing
    };
    const Case cases[] = {
        {kInPci, "RegisterType", ""},
        {kInPci, "RegisterType", "pciconfig"},
        {kInPci, "Bus", ""},
        {kInPci, "Device", ""},
        {kInPci, "Function", ""},
        {kInPci, "ValueOffset", "20"},
        {kInPci, "ValueOffset", "0X20"},
        {kInPci, "ValueOffset", "0x"},
        {kInPci, "ValueSize", "5"},
        {kInPci, "ValueSize", "0"},
        {kInPci, "Bit", ""},
        {kInPci, "Bit", "32"},
        {kInPci, "Bit", "-2"},
        {kInPci, "DisableType", ""},
        {kInMemory, "AddressOffset", ""},
        {kInMemory, "AddressSize", "5"},
        {kInPorts, "AddressSize", ""},
        {kInPci, "Device", "30"},
    };
    CHwSBX chipset;
    ASSERT_EQ(kSucceeded, chipset.Setup(1));
    for (const Case& row : cases)
    {
        SCOPED_TRACE(std::string(row.key) + '=' + row.value);
        UseSection(L"HD Audio", With(row.section, {{row.key, row.value}}));
        SetRegister(0);
        int disabled = -1;
        EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(L"HD Audio", 0));
        EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", &disabled));
        EXPECT_EQ(0U, Register(row.section.at("RegisterType")));
        EXPECT_EQ(-1, disabled);
    }
}

TEST_F(HwSBXTest, FunctionIsFoundByItsExactName)
{
    CHwSBX chipset;
    int disabled = -1;
    ASSERT_EQ(kSucceeded, chipset.Setup(1));
    EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(L"hd audio", 1));
    EXPECT_EQ(kGeneralFailure, chipset.FunctionDisable(nullptr, 1));
    EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", nullptr));
    EXPECT_EQ(kSucceeded, chipset.GetFunctionDisable(L"HD Audio", &disabled));
    UseSection(L"Hub Devices", {{"DeviceNumbers", "2"}, {"Name2", "HD Audio"}});
    EXPECT_EQ(kGeneralFailure, chipset.GetFunctionDisable(L"HD Audio", &disabled));
}

TEST_F(HwSBXTest, FirstMatchingIdentificationNamesTheChipset)
{
    struct Case
    {
        Keys first;
        LONG result;
    };
    const Case cases[] = {
        {kIdentification, kSucceeded},
        {With(kIdentification, {{"Value", "0x1"}}), kSucceeded},
        {With(kIdentification, {{"RegisterType", "Memory"}}), kSucceeded},
        {With(kIdentification, {{"RegisterType", ""}}), kSucceeded},
        {With(kIdentification, {{"Name", ""}}), kGeneralFailure},
        {With(kIdentification, {{"ValueSize", "3"}}), kGeneralFailure},
        {With(kIdentification, {{"Bus", ""}}), kGeneralFailure},
        {With(kIdentification, {{"Device", "30"}}), kGeneralFailure},
        {With(kIdentification, {{"Offset", "254"}}), kGeneralFailure},
        {With(kIdentification, {{"ValueSize", "2"}, {"Value", "0x8086"}}), kSucceeded},
    };
    Configure(L"SBXCfg.ini", L"Device Identifications", "SBXIdNumbers", "2");
    UseSection(L"SBX Identification 1", kIdentification);
    for (const Case& row : cases)
    {
        UseSection(L"SBX Identification 0", row.first);
        CHwSBX chipset;
        EXPECT_EQ(row.result, chipset.Setup(1)) << testing::PrintToString(row.first);
        EXPECT_EQ(row.result == kSucceeded ? kAlreadySetUp : row.result, chipset.Setup(1));
    }

    CHwSBX unidentified;
    EXPECT_EQ(kSucceeded, unidentified.Setup(0));
    EXPECT_EQ(kGeneralFailure, unidentified.FunctionDisable(L"HD Audio", 1));
    Configure(L"SBXCfg.ini", L"Device Identifications", "SBXIdNumbers", "0");
    EXPECT_EQ(kGeneralFailure, unidentified.Setup(1));
}

TEST_F(HwSBXTest, MemoryIsUnmappedWhicheverRequestFails)
{
    UseSection(L"HD Audio", kInMemory);
    CHwSBX chipset;
    ASSERT_EQ(kSucceeded, chipset.Setup(1));
    WithEachFailure(
        "DeviceIoControl", ERROR_GEN_FAILURE,
        [&chipset]
        {
            int disabled = 0;
            chipset.FunctionDisable(L"HD Audio", 1);
            chipset.GetFunctionDisable(L"HD Audio", &disabled);
        },
        [&chipset](unsigned nth)
        {
            chipset.Cleanup();
            // A refused request to unmap leaves the driver with a mapping, but it was made.
            EXPECT_EQ(DriverCalls(IOCTL_MAP_MEMORY, true), DriverCalls(IOCTL_UNMAP_MEMEMORY, false)) << nth;
            Leaks::Forget();
            Trace::Clear();
            chipset.Setup(1);
        });
}

} // namespace
