// tests/installation/InstallationTest.cpp
//
// The reference files of an installation fit together, fit the plug-in's tables and fit a fresh machine.

#include "support/NotebookTest.h"

#include "foundation/GuidText.h"
#include "foundation/Text.h"
#include "scheme/VariableTable.h"

#include <powrprof.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace
{

std::string Narrow(const wchar_t* text)
{
    return {text, text + text::Length(text)};
}

std::vector<wchar_t> Wide(const std::string& text)
{
    std::vector<wchar_t> wide(text.begin(), text.end());
    wide.push_back(0);
    return wide;
}

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
        return Narrow(value);
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
        const int count = Number("PowerSetting.ini", variable, "OptionNumber");
        for (int i = 0; i < count; ++i)
        {
            options.push_back(Number("PowerSetting.ini", variable, "ValueOption" + std::to_string(i)));
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
        EXPECT_TRUE(ParseGuid(Wide(Text("PowerSetting.ini", variable, key)).data(), &guid));
        return guid;
    }
};

TEST_F(InstallationTest, TheCatalogueDescribesEachVariable)
{
    for (int number = 0; number < kVariableCount; ++number)
    {
        const Variable& variable = VariableOf(number);
        const std::string name = Narrow(variable.name);
        SCOPED_TRACE(name);
        const std::vector<int> options = Options(name);
        EXPECT_GE(options.size(), 2u);
        EXPECT_EQ(options.size(), std::set<int>(options.begin(), options.end()).size());
        for (std::size_t i = 0; i < options.size(); ++i)
        {
            // Half of a packed value holds 16 bits.
            EXPECT_TRUE(options[i] >= 0 && options[i] < 0xFFFF);
            EXPECT_NE("", Text("PowerSetting.ini", name, "DescOption" + std::to_string(i)));
        }
        EXPECT_NE("", Text("PowerSetting.ini", name, "Unit"));
        EXPECT_EQ(number < kFirstUsbPort, Text("PowerSetting.ini", name, "Name") != "");
    }
}

TEST_F(InstallationTest, EachSettingOfTheSystemIsOneThatAFreshMachineKnows)
{
    Recreate({.major = 6, .minor = 0, .installation = INSTALLATION_FOLDER});
    GUID* active = nullptr;
    ASSERT_EQ(0u, PowerGetActiveScheme(nullptr, &active));
    for (int number = 0; number < kVariableCount; ++number)
    {
        const std::string name = Narrow(VariableOf(number).name);
        SCOPED_TRACE(name);
        if (!HasSetting(VariableOf(number)))
        {
            EXPECT_EQ("", Text("PowerSetting.ini", name, "Guid"));
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
        const MACHINE_POWER_POLICY& machine = policy.mach;
        for (const ULONG time : {user.VideoTimeoutAc, user.VideoTimeoutDc})
        {
            EXPECT_TRUE(Offers("MonitorOffTimeOut", time)) << time;
        }
        for (const ULONG time : {user.SpindownTimeoutAc, user.SpindownTimeoutDc})
        {
            EXPECT_TRUE(Offers("DiskOffTimeOut", time)) << time;
        }
        for (const ULONG time : {user.IdleTimeoutAc, user.IdleTimeoutDc})
        {
            EXPECT_TRUE(Offers("StandbyTimeOut", time)) << time;
        }
        for (const ULONG time :
             {user.IdleTimeoutAc + machine.DozeS4TimeoutAc, user.IdleTimeoutDc + machine.DozeS4TimeoutDc})
        {
            EXPECT_TRUE(Offers("HibernateTimeOut", time)) << time;
        }
        EXPECT_TRUE(Offers("CpuAdaptive", user.ThrottlePolicyAc) &&
                    Offers("CpuAdaptive", user.ThrottlePolicyDc));
    }
    // The first hibernate time above a given one is the next one.
    std::vector<int> hibernate = Options("HibernateTimeOut");
    hibernate.erase(std::remove(hibernate.begin(), hibernate.end(), 0), hibernate.end());
    EXPECT_TRUE(std::is_sorted(hibernate.begin(), hibernate.end()));
    EXPECT_TRUE(Offers("CpuSpeed", 0) && Offers("CpuSpeed", 50) && Offers("CpuSpeed", 75) &&
                Offers("CpuSpeed", 100));
    const std::vector<int> levels = Options("BacklightLevel");
    EXPECT_EQ(Number("ORVLCfg.ini", "ORVLCfg", "MaxBrightLevel"), static_cast<int>(levels.size()));
}

TEST_F(InstallationTest, TheBatteryItemsLieInTheirRecords)
{
    struct List
    {
        const char* prefix;
        int recordSize;
    };
    for (const List& list : {List{"BEA", 16}, List{"BA", 36}})
    {
        const std::string prefix = list.prefix;
        const int count = Number("ORVLCfg.ini", "BatteryInforList", prefix + "ItemNum");
        EXPECT_GT(count, 0);
        for (int i = 0; i < count; ++i)
        {
            const std::string at = std::to_string(i);
            const int start = Number("ORVLCfg.ini", "BatteryInforList", prefix + "Start" + at);
            const int size = Number("ORVLCfg.ini", "BatteryInforList", prefix + "Size" + at);
            EXPECT_NE("", Text("ORVLCfg.ini", "BatteryInforList", prefix + "Name" + at));
            EXPECT_TRUE(start >= 0 && size > 0 && start + size <= list.recordSize) << prefix << at;
        }
    }
}

TEST_F(InstallationTest, EachChipsetFunctionIsDescribedWhole)
{
    const int chipsets = Number("SBXCfg.ini", "Device Identifications", "SBXIdNumbers");
    ASSERT_GT(chipsets, 0);
    std::set<std::string> identities;
    for (int i = 0; i < chipsets; ++i)
    {
        const std::string section = "SBX Identification " + std::to_string(i);
        EXPECT_EQ("PCIConfig", Text("SBXCfg.ini", section, "RegisterType"));
        EXPECT_TRUE(identities.insert(Text("SBXCfg.ini", section, "Value")).second);
        const std::string devices = Text("SBXCfg.ini", section, "Name") + " Devices";
        const int count = Number("SBXCfg.ini", devices, "DeviceNumbers");
        EXPECT_GT(count, 0) << devices;
        EXPECT_EQ("", Text("SBXCfg.ini", devices, "Name" + std::to_string(count)));
        std::set<int> bits;
        for (int j = 0; j < count; ++j)
        {
            const std::string name = Text("SBXCfg.ini", devices, "Name" + std::to_string(j));
            SCOPED_TRACE(name);
            EXPECT_NE(-1, FindVariable(Wide(name).data()));
            EXPECT_EQ("Memory", Text("SBXCfg.ini", name, "RegisterType"));
            EXPECT_EQ("0xF0", Text("SBXCfg.ini", name, "AddressOffset"));
            EXPECT_EQ("0xFFFFC000", Text("SBXCfg.ini", name, "AddressMask"));
            EXPECT_EQ("0x3418", Text("SBXCfg.ini", name, "ValueOffset"));
            EXPECT_EQ(4, Number("SBXCfg.ini", name, "ValueSize"));
            EXPECT_EQ(0, Number("SBXCfg.ini", name, "DisableType"));
            const int bit = Number("SBXCfg.ini", name, "Bit");
            EXPECT_TRUE(bit >= 0 && bit < 32);
            // Two ports share a USB controller; nothing else shares a bit.
            EXPECT_TRUE(bits.insert(bit).second || name.rfind("USBPort", 0) == 0);
        }
    }
}

} // namespace
