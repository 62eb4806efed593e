// tests/installation/InstallationTest.cpp
//
// The reference files of an installation are consistent with one another, the plug-in's tables and a fresh
// machine.

#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "agents/HwSBX.h"
#include "foundation/GuidText.h"
#include "machine/Chipset.h"
#include "scheme/VariableTable.h"

#include <powrprof.h>

#include <algorithm>
#include <bit>
#include <cctype>
#include <fstream>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace
{

constexpr const char* kCatalogue = "PowerSetting.ini";
constexpr const char* kSettings = "ORVLCfg.ini";
constexpr const char* kChipsets = "SBXCfg.ini";

class InstallationTest : public NotebookTest
{
protected:
    InstallationTest() : NotebookTest({.installation = INSTALLATION_FOLDER})
    {
    }

    static std::string Text(const std::string& file, const std::string& section, const std::string& key)
    {
        wchar_t value[256];
        const std::string path = simulated::Notebook::kInstallationFolder + file;
        GetPrivateProfileStringW(Wide(section).data(), Wide(key).data(), L"", value, 256, Wide(path).data());
        return Utf8(value);
    }

    static int Number(const std::string& file, const std::string& section, const std::string& key)
    {
        const std::string path = simulated::Notebook::kInstallationFolder + file;
        return static_cast<int>(
            GetPrivateProfileIntW(Wide(section).data(), Wide(key).data(), -1, Wide(path).data()));
    }

    /// The values that the catalogue offers for a variable.
    static std::vector<int> Options(const std::string& variable)
    {
        std::vector<int> options;
        const int count = Number(kCatalogue, variable, "OptionNumber");
        for (int i = 0; i < count; ++i)
        {
            options.push_back(Number(kCatalogue, variable, "ValueOption" + std::to_string(i)));
        }
        return options;
    }

    static bool Offers(const std::string& variable, ULONG value)
    {
        const std::vector<int> options = Options(variable);
        return std::count(options.begin(), options.end(), static_cast<int>(value)) == 1;
    }

    /// The GUID in braces as the catalogue writes it, or zeros.
    static GUID Guid(const std::string& variable, const std::string& key)
    {
        GUID guid{};
        EXPECT_TRUE(ParseGuid(Wide(Text(kCatalogue, variable, key)).data(), &guid));
        return guid;
    }
};

TEST_F(InstallationTest, TheCatalogueDescribesEachVariable)
{
    for (int number = 0; number < kVariableCount; ++number)
    {
        const Variable& variable = VariableOf(number);
        const std::string name = Utf8(variable.name);
        SCOPED_TRACE(name);
        const std::vector<int> options = Options(name);
        EXPECT_GE(options.size(), 2u);
        EXPECT_EQ(options.size(), std::set<int>(options.begin(), options.end()).size());
        for (std::size_t i = 0; i < options.size(); ++i)
        {
            // Half of a packed value holds 16 bits.
            EXPECT_TRUE(options[i] >= 0 && options[i] < 0xFFFF);
            EXPECT_NE("", Text(kCatalogue, name, "DescOption" + std::to_string(i)));
        }
        EXPECT_NE("", Text(kCatalogue, name, "Unit"));
        EXPECT_EQ(variable.hasDisplayName, Text(kCatalogue, name, "Name") != "");
    }
}

// How the table of variables in the document words where a variable is kept.
const char* StorageOnXp(XpStorage storage)
{
    return storage == XpStorage::File ? "file" : storage == XpStorage::Unsupported ? "none" : "Windows";
}

const char* StorageOnVista(VistaStorage storage)
{
    if (storage == VistaStorage::File || storage == VistaStorage::Speed)
    {
        return "file";
    }
    if (storage == VistaStorage::Adaptive)
    {
        return "file, sets Windows";
    }
    return storage == VistaStorage::Setting ? "Windows" : "Windows, copy in file";
}

TEST_F(InstallationTest, TheDocumentHasARowForEachVariable)
{
    std::stringstream document;
    document << std::ifstream(INSTALLATION_DOCUMENT).rdbuf();
    for (int number = 0; number < kVariableCount; ++number)
    {
        const Variable& variable = VariableOf(number);
        const std::string name = Utf8(variable.name);
        const std::size_t row = document.str().find("\n| `" + name + "` |");
        ASSERT_NE(std::string::npos, row) << name << " isn't in the table of variables";
        std::string unit = Text(kCatalogue, name, "Unit");
        unit[0] = static_cast<char>(std::tolower(unit[0]));
        std::string values;
        for (const int option : Options(name))
        {
            values += (values.empty() ? "" : ", ") + std::to_string(option);
        }
        const std::string end = " | " + unit + " | " + values + " | " + (variable.isPacked ? "each" : "one") +
                                " | " + StorageOnXp(variable.xp) + " | " + StorageOnVista(variable.vista) +
                                " |";
        const std::string line = document.str().substr(row + 1, document.str().find('\n', row + 1) - row - 1);
        EXPECT_TRUE(line.ends_with(end)) << line << "\ndoesn't end with\n" << end;
    }
}

TEST_F(InstallationTest, EachSettingOfTheSystemIsOneThatAFreshMachineKnows)
{
    Recreate({.major = 6, .minor = 0, .installation = INSTALLATION_FOLDER});
    GUID* active = nullptr;
    ASSERT_EQ(0u, PowerGetActiveScheme(nullptr, &active));
    for (int number = 0; number < kVariableCount; ++number)
    {
        const std::string name = Utf8(VariableOf(number).name);
        SCOPED_TRACE(name);
        if (!HasSetting(VariableOf(number)))
        {
            EXPECT_EQ("", Text(kCatalogue, name, "Guid"));
            continue;
        }
        const GUID subGroup = Guid(name, "SubGroupGuid");
        const GUID setting = Guid(name, "Guid");
        DWORD value = 0;
        EXPECT_EQ(0u, PowerReadACValueIndex(nullptr, active, &subGroup, &setting, &value));
    }
    LocalFree(active);
}

// An edit that restates what a standard scheme holds must pass the validation.
TEST_F(InstallationTest, TheOptionsCoverTheStandardSchemes)
{
    for (UINT scheme = 0; scheme < 6; ++scheme)
    {
        SCOPED_TRACE(scheme);
        POWER_POLICY policy{};
        ASSERT_TRUE(ReadPwrScheme(scheme, &policy));
        const USER_POWER_POLICY& user = policy.user;
        const std::pair<const char*, ULONG> values[] = {
            {"MonitorOffTimeOut", user.VideoTimeoutAc},
            {"MonitorOffTimeOut", user.VideoTimeoutDc},
            {"DiskOffTimeOut", user.SpindownTimeoutAc},
            {"DiskOffTimeOut", user.SpindownTimeoutDc},
            {"StandbyTimeOut", user.IdleTimeoutAc},
            {"StandbyTimeOut", user.IdleTimeoutDc},
            {"HibernateTimeOut", user.IdleTimeoutAc + policy.mach.DozeS4TimeoutAc},
            {"HibernateTimeOut", user.IdleTimeoutDc + policy.mach.DozeS4TimeoutDc},
            {"CpuAdaptive", user.ThrottlePolicyAc},
            {"CpuAdaptive", user.ThrottlePolicyDc},
        };
        for (const auto& [variable, value] : values)
        {
            EXPECT_TRUE(Offers(variable, value)) << variable << ' ' << value;
        }
    }
    // The first hibernate time above a given one is the next one.
    std::vector<int> hibernate = Options("HibernateTimeOut");
    hibernate.erase(std::remove(hibernate.begin(), hibernate.end(), 0), hibernate.end());
    EXPECT_TRUE(std::is_sorted(hibernate.begin(), hibernate.end()));
    EXPECT_TRUE(Offers("CpuSpeed", 0) && Offers("CpuSpeed", 50) && Offers("CpuSpeed", 75) &&
                Offers("CpuSpeed", 100));
    const std::vector<int> levels = Options("BacklightLevel");
    EXPECT_EQ(Number(kSettings, "ORVLCfg", "MaxBrightLevel"), static_cast<int>(levels.size()));
}

TEST_F(InstallationTest, TheBatteryItemsLieInTheirRecords)
{
    const std::pair<std::string, int> lists[] = {{"BEA", 16}, {"BA", 36}};
    for (const auto& [prefix, recordSize] : lists)
    {
        const int count = Number(kSettings, "BatteryInforList", prefix + "ItemNum");
        EXPECT_GT(count, 0);
        for (int i = 0; i < count; ++i)
        {
            const std::string at = std::to_string(i);
            const int start = Number(kSettings, "BatteryInforList", prefix + "Start" + at);
            const int size = Number(kSettings, "BatteryInforList", prefix + "Size" + at);
            EXPECT_NE("", Text(kSettings, "BatteryInforList", prefix + "Name" + at));
            EXPECT_TRUE(start >= 0 && size > 0 && start + size <= recordSize) << prefix << at;
        }
    }
}

TEST_F(InstallationTest, EachChipsetFunctionIsSwitchedByABitOfItsOwn)
{
    constexpr simulated::PciAddress kHub = {0, 31, 0};
    constexpr DWORD kRegister = 0xFED1F418;
    simulated::PhysicalMemory::AddRange(kRegister & ~0x3FFFU, 0x4000);
    const int chipsets = Number(kChipsets, "Device Identifications", "SBXIdNumbers");
    ASSERT_GT(chipsets, 0);
    std::set<std::string> identities;
    for (int i = 0; i < chipsets; ++i)
    {
        const std::string section = "SBX Identification " + std::to_string(i);
        const std::string identity = Text(kChipsets, section, "Value");
        EXPECT_TRUE(identities.insert(identity).second);
        const DWORD id = static_cast<DWORD>(std::stoul(identity, nullptr, 16));
        simulated::PciBus::Set(kHub, 0, std::span(reinterpret_cast<const BYTE*>(&id), sizeof id));
        CHwSBX chipset;
        ASSERT_EQ(0, chipset.Setup(1));
        const std::string devices = Text(kChipsets, section, "Name") + " Devices";
        const int count = Number(kChipsets, devices, "DeviceNumbers");
        EXPECT_GT(count, 0) << devices;
        EXPECT_EQ("", Text(kChipsets, devices, "Name" + std::to_string(count)));
        std::set<DWORD> bits;
        for (int j = 0; j < count; ++j)
        {
            const std::string name = Text(kChipsets, devices, "Name" + std::to_string(j));
            SCOPED_TRACE(name);
            EXPECT_NE(nullptr, FindVariable(Wide(name).data()));
            simulated::PhysicalMemory::SetWord(kRegister, 0);
            int disabled = 0;
            EXPECT_EQ(0, chipset.FunctionDisable(Wide(name).data(), 1));
            EXPECT_EQ(0, chipset.GetFunctionDisable(Wide(name).data(), &disabled));
            EXPECT_EQ(1, disabled);
            const DWORD bit = simulated::PhysicalMemory::Word(kRegister);
            EXPECT_TRUE(std::has_single_bit(bit));
            // Two ports share a USB controller; nothing else shares a bit.
            EXPECT_TRUE(bits.insert(bit).second || name.rfind("USBPort", 0) == 0);
            EXPECT_EQ(0, chipset.FunctionDisable(Wide(name).data(), 0));
            EXPECT_EQ(0U, simulated::PhysicalMemory::Word(kRegister));
        }
    }
}

} // namespace
