// tests/scheme/PresentStateTest.cpp
//
// What is in force now: the processor's speed, the companion application's start, batteries and devices by
// name.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "notebook/PowerSource.h"
#include "notebook/RegistryEditor.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace simulated;
using testing::ElementsAre;

namespace
{

constexpr int kFirstChipsetFunction = 17;
// What the notebook's chipset doesn't have.
const std::string kMissing[] = {"Serial ATA2", "PCIE5", "PCIE6", "Thermal Throttle"};
constexpr const char* kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kApplicationKey = "SOFTWARE\\Kelvo\\ORVA";

using PresentState = SchemeTest;

// The text of a value that ends with its terminator.
std::string TextOf(const registry::Value& value)
{
    std::string text;
    for (std::size_t place = 0; place < value.bytes.size(); place += sizeof(wchar_t))
    {
        text += value.bytes[place];
    }
    return text.ends_with('\0') ? text.substr(0, text.size() - 1) : text + "...";
}

TEST_F(PresentState, SpeedBelongsToTheSourceThatFeedsTheMachine)
{
    struct Row
    {
        BYTE line;
        int ifAC;
        int before;
        int speed; ///< 33 isn't offered
        int after;
    };
    ASSERT_EQ(1, engine.SetPwrVariable(1, 1, L"CpuSpeed", 100));
    ASSERT_EQ(1, engine.SetPwrVariable(1, 0, L"CpuSpeed", 50));
    for (const Row& row : {Row{AC_LINE_ONLINE, 1, 100, 75, 75}, Row{AC_LINE_ONLINE, 1, 75, 33, 75},
                           Row{AC_LINE_OFFLINE, 0, 50, 100, 100}, Row{AC_LINE_UNKNOWN, 0, 100, 50, 50}})
    {
        PowerAnswers answers = PowerSource::Get();
        answers.status.ACLineStatus = row.line;
        ASSERT_TRUE(PowerSource::Set(answers));
        EXPECT_EQ(row.ifAC, engine.GetIfAC());
        EXPECT_EQ(row.before, engine.GetCPUSpeed());
        const int other = engine.GetPwrVariable(1, 1 - row.ifAC, L"CpuSpeed");
        // Also a refused speed applies the scheme.
        EXPECT_THAT(CallsOf([&] { EXPECT_EQ(row.before, engine.SetCPUSpeed(row.speed)); }),
                    testing::Contains("SetActivePwrScheme"));
        EXPECT_EQ(row.after, engine.GetPwrVariable(1, row.ifAC, L"CpuSpeed"));
        EXPECT_EQ(other, engine.GetPwrVariable(1, 1 - row.ifAC, L"CpuSpeed"));
    }
    Faults::Inject("GetActivePwrScheme", 1, ERROR_FILE_NOT_FOUND, true);
    EXPECT_EQ(-1, engine.GetCPUSpeed());
    EXPECT_THAT(CallsOf([&] { EXPECT_EQ(-1, engine.SetCPUSpeed(50)); }), ElementsAre("GetActivePwrScheme"));
}

TEST_F(PresentState, AutoRunTakesBothEntriesOutAndRecordsAnyFlag)
{
    struct Row
    {
        int flag;
        const wchar_t* path;
        ULONG size;
        int result;
        const char* entry; ///< in the key "Run"
        int recorded;
    };
    ASSERT_TRUE(seeding::SetText(HKEY_LOCAL_MACHINE, kRunKey, "ORVA.exe", "old"));
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag", 9));
    for (const Row& row : {Row{1, L"C:\\ORVA.exe", 260, 1, "C:\\ORVA.exe", 1},
                           Row{1, nullptr, 0, 0, "C:\\ORVA.exe", 1}, Row{2, nullptr, 0, 1, "C:\\ORVA.exe", 2},
                           Row{0, nullptr, 0, 1, kAbsent, 0}, Row{1, L"C:\\cut", 5, 1, "C:\\cu...", 1},
                           Row{0, nullptr, 0, 1, kAbsent, 0}, Row{0, nullptr, 0, 0, kAbsent, 0}})
    {
        EXPECT_EQ(row.result, engine.SetAutoRunORVA(row.flag, row.path, row.size));
        const auto entry = RegistryEditor::Read(std::string("HKEY_LOCAL_MACHINE\\") + kRunKey, "ORVA");
        EXPECT_EQ(row.entry, entry ? TextOf(*entry) : kAbsent);
        EXPECT_EQ(std::to_string(row.recorded), seeding::GetKey(Root(), "ORVACfg", "AutoRun"));
        EXPECT_EQ(static_cast<DWORD>(row.recorded),
                  seeding::GetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag"));
    }
    EXPECT_FALSE(seeding::GetText(HKEY_LOCAL_MACHINE, kRunKey, "ORVA.exe").has_value());
}

TEST_F(PresentState, BatteryItemsAreFoundByTheirConfiguredPlace)
{
    struct Row
    {
        const char* start;
        const char* size;
        int result;
    };
    _BATTERY_INFORMATION info{};
    ASSERT_EQ(0, engine.GetBatteryInfo(0, info));
    for (const Row& row :
         {Row{"16", "4", 0}, Row{"0", "36", 0}, Row{"33", "4", -1}, Row{"0", "37", -1}, Row{"-2", "4", -1},
          Row{"4", "-1", -1}, Row{"2147483647", "2147483647", -1}, Row{"36", "0", 0}})
    {
        ASSERT_TRUE(seeding::SetKey(Root(), "BatteryInforList", "BAStart4", row.start));
        ASSERT_TRUE(seeding::SetKey(Root(), "BatteryInforList", "BASize4", row.size));
        ULONG value[9] = {};
        EXPECT_EQ(row.result, engine.GetBatteryInformation(0, L"FullChargedCapacity", value)) << row.start;
        if (row.result == 0)
        {
            EXPECT_EQ(0, memcmp(value, reinterpret_cast<const char*>(&info) + std::stoi(row.start),
                                static_cast<std::size_t>(std::stoi(row.size))));
        }
    }
    ULONG value = 77;
    EXPECT_EQ(-1, engine.GetBatteryInformation(4, L"CycleCount", &value));
    EXPECT_EQ(0, engine.GetBatteryInformation(0, L"cyclecount", &value));
    EXPECT_EQ(77U, value);
    // A name in both lists is the firmware's.
    ASSERT_TRUE(seeding::SetKey(Root(), "BatteryInforList", "BEAName3", "CycleCount"));
    EXPECT_EQ(0, engine.GetBatteryInformation(4, L"CycleCount", &value));
    ASSERT_TRUE(seeding::SetKey(Root(), "BatteryInforList", "BEAStart3", "13"));
    EXPECT_EQ(-1, engine.GetBatteryInformation(0, L"CycleCount", &value));
    for (const char* const count : {"BEAItemNum", "BAItemNum"})
    {
        ASSERT_TRUE(seeding::SetKey(Root(), "BatteryInforList", count, "2147483647"));
    }
    EXPECT_EQ(0, engine.GetBatteryInformation(0, L"Nothing", &value)) << "doesn't last for hours";
}

TEST_F(PresentState, BatteryQueriesOfAMachineWithoutAnswers)
{
    PowerAnswers answers = PowerSource::Get();
    EXPECT_GT(engine.GetRemainBatPer(0), 0.0F);
    EXPECT_EQ(answers.battery.RemainingCapacity, engine.GetRemainCapacity(0));
    EXPECT_TRUE(CallsOf([&] { EXPECT_EQ(0U, engine.GetRemainCapacity(1)); }).empty());
    Faults::Inject("GetSystemPowerStatus", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(0U, engine.GetBatteryCount());
    answers.status.BatteryFlag = BATTERY_FLAG_UNKNOWN;
    ASSERT_TRUE(PowerSource::Set(answers));
    EXPECT_THAT(CallsOf([&] { EXPECT_EQ(0U, engine.GetBatteryCount()); }),
                ElementsAre("GetSystemPowerStatus"));
    Faults::Inject("SetupDiGetClassDevsW", 1, ERROR_ACCESS_DENIED, true);
    _BATTERY_STATUS status{};
    EXPECT_EQ(-1, engine.GetBatteryStatus(0, status));
    EXPECT_EQ(0U, engine.GetCompleteTime(0));
    EXPECT_EQ(0U, engine.GetRemainingUsageTime(0));
}

TEST_F(PresentState, LiveDevicesGoByTheirVariablesName)
{
    int status = 77;
    EXPECT_EQ(-1, engine.GetDeviceStatus(L"Nothing", &status));
    EXPECT_EQ(-1, engine.SetDeviceStatus(L"Nothing", 1));
    EXPECT_TRUE(CallsOf(
                    [&]
                    {
                        EXPECT_EQ(0, engine.GetDeviceStatus(L"USBPort 3", &status));
                        EXPECT_EQ(0, engine.GetDeviceStatus(L"USBPort 3", nullptr));
                        EXPECT_EQ(-1, engine.GetDeviceStatus(L"Wifi", nullptr));
                        EXPECT_EQ(0, engine.SetDeviceStatus(L"CpuSpeed", 1));
                    })
                    .empty());
    EXPECT_EQ(77, status);
    for (const auto& [radio, value] :
         {std::pair{L"btstatus", 0}, {L"btstatus", 1}, {L"Wifi", 0}, {L"Wifi", 1}})
    {
        EXPECT_EQ(1, engine.SetDeviceStatus(radio, value));
        EXPECT_EQ(value, engine.GetDeviceStatus(radio, &status));
        EXPECT_EQ(value, status);
    }
    ASSERT_EQ(1, engine.SetDeviceStatus(L"BTStatus", 0));
    EXPECT_EQ(1, engine.GetDeviceStatus(L"Wifi", &status)) << "switched by the other's name";
    for (int number = kFirstChipsetFunction; number < kFirstUsbPort; ++number)
    {
        const wchar_t* name = VariableOf(number).name;
        SCOPED_TRACE(seeding::Utf8(name));
        const int result =
            std::count(std::begin(kMissing), std::end(kMissing), seeding::Utf8(name)) == 0 ? 0 : -1;
        for (const int disabled : {1, 0})
        {
            status = 1 - disabled;
            EXPECT_EQ(result, engine.SetDeviceStatus(name, disabled));
            EXPECT_EQ(result, engine.GetDeviceStatus(name, &status));
            EXPECT_EQ(result == 0 ? disabled : 1 - disabled, status);
        }
    }
    Faults::Inject("CreateFileW", 1, ERROR_FILE_NOT_FOUND, true);
    for (const wchar_t* const name : {L"Wifi", L"HD Audio"})
    {
        const std::string device = seeding::Utf8(name) + " device status failed for HRESULT: 0x80";
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.GetDeviceStatus(name, &status)); }).back(),
                    testing::StartsWith("Get " + device));
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.SetDeviceStatus(name, 1)); }).back(),
                    testing::StartsWith("Set " + device));
    }
}

} // namespace
