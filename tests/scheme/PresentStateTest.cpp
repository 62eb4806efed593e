// tests/scheme/PresentStateTest.cpp
//
// What is in force now: the processor's speed, the companion application's start, batteries and devices by
// name.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "notebook/PowerSource.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace simulated;
using testing::ElementsAre;

namespace
{

constexpr int kFirstChipsetFunction = 17;
constexpr const char* kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kApplicationKey = "SOFTWARE\\Kelvo\\ORVA";

using PresentState = SchemeTest;

void SetLine(BYTE line)
{
    PowerAnswers answers = PowerSource::Get();
    answers.status.ACLineStatus = line;
    ASSERT_TRUE(PowerSource::Set(answers));
}

TEST_F(PresentState, SpeedBelongsToTheSourceThatFeedsTheMachine)
{
    const int active = engine.GetActivePwrScheme(0);
    const int battery = engine.GetPwrVariable(active, 0, L"CpuSpeed");
    SetLine(AC_LINE_ONLINE);
    const int before = engine.GetCPUSpeed();
    EXPECT_EQ(before, engine.SetCPUSpeed(75));
    EXPECT_EQ(75, engine.SetCPUSpeed(75));
    EXPECT_EQ(75, engine.GetCPUSpeed());
    EXPECT_EQ(battery, engine.GetPwrVariable(active, 0, L"CpuSpeed"));
    // Whatever isn't mains for certain counts as battery.
    SetLine(AC_LINE_UNKNOWN);
    EXPECT_EQ(0, engine.GetIfAC());
    EXPECT_EQ(battery, engine.SetCPUSpeed(50));
    EXPECT_EQ(75, engine.GetPwrVariable(active, 1, L"CpuSpeed"));
    EXPECT_EQ(50, engine.GetPwrVariable(active, 0, L"CpuSpeed"));
}

TEST_F(PresentState, ARefusedSpeedStillAppliesTheScheme)
{
    const int speed = engine.GetCPUSpeed();
    const auto calls = CallsOf([&] { EXPECT_EQ(speed, engine.SetCPUSpeed(33)); });
    EXPECT_THAT(calls, testing::Contains("SetActivePwrScheme"));
    EXPECT_EQ(speed, engine.GetCPUSpeed());
    Faults::Inject("GetActivePwrScheme", 1, ERROR_FILE_NOT_FOUND);
    EXPECT_THAT(CallsOf([&] { EXPECT_EQ(-1, engine.SetCPUSpeed(50)); }), ElementsAre("GetActivePwrScheme"));
}

TEST_F(PresentState, AutoRunTakesTheOldEntryOutAndRecordsAnyFlag)
{
    ASSERT_TRUE(seeding::SetText(HKEY_LOCAL_MACHINE, kRunKey, "ORVA.exe", "old"));
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag", 9));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.SetAutoRunORVA(0, nullptr, 0)); }),
                ElementsAre("WriteAutoRunSettings: flag = 0 delete Key failed at 2"));
    EXPECT_FALSE(seeding::GetText(HKEY_LOCAL_MACHINE, kRunKey, "ORVA.exe").has_value());
    EXPECT_EQ("0", seeding::GetKey(Root(), "ORVACfg", "AutoRun"));
    EXPECT_EQ(1, engine.SetAutoRunORVA(2, nullptr, 0));
    EXPECT_EQ("2", seeding::GetKey(Root(), "ORVACfg", "AutoRun"));
    EXPECT_EQ(2U, seeding::GetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag"));
    EXPECT_EQ(0, engine.SetAutoRunORVA(1, nullptr, 0));
}

TEST_F(PresentState, AutoRunFailuresLeaveWhatWasDoneBefore)
{
    struct Row
    {
        const char* function;
        unsigned nth;
        int result;
        const char* line;
        bool entered;
        const char* recorded;
    };
    ASSERT_TRUE(seeding::SetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag", 9));
    for (const Row& row :
         {Row{"RegOpenKeyExW", 1, 0,
              "WriteAutoRunSettings: Open Key Software\\Microsoft\\Windows\\CurrentVersion\\Run failed at 5!",
              false, "0"},
          Row{"RegSetValueExW", 1, 0, "WriteAutoRunSettings: Write ORVA path into Run failed at 5", false,
              "0"},
          Row{"RegOpenKeyExW", 2, 0, "SetAutoRunORVA: Open Key SOFTWARE\\Kelvo\\ORVA failed at 5!", true,
              "0"},
          Row{"RegSetValueExW", 2, 1, "SetAutoRunORVA: Write value AutoRunFlag failed at 5", true, "1"}})
    {
        Faults::Inject(row.function, row.nth, ERROR_ACCESS_DENIED);
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(row.result, engine.SetAutoRunORVA(1, L"C:\\ORVA.exe", 260)); }),
                    ElementsAre(row.line));
        EXPECT_EQ(row.entered, seeding::RemoveValue(HKEY_LOCAL_MACHINE, kRunKey, "ORVA"));
        EXPECT_EQ(row.recorded, seeding::GetKey(Root(), "ORVACfg", "AutoRun"));
        EXPECT_EQ(9U, seeding::GetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag"));
    }
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
    EXPECT_GE(engine.SetDeviceStatus(L"BTStatus", 0), 0);
    EXPECT_GE(engine.SetDeviceStatus(L"wifi", 1), 0);
    EXPECT_EQ(0, engine.GetDeviceStatus(L"btstatus", &status));
    EXPECT_EQ(0, status);
    EXPECT_EQ(1, engine.GetDeviceStatus(L"Wifi", &status));
    EXPECT_EQ(1, status);
    for (int number = kFirstChipsetFunction; number < kFirstUsbPort; ++number)
    {
        const wchar_t* name = VariableOf(number).name;
        for (const int disabled : {1, 0})
        {
            status = 77;
            // A function that this chipset doesn't have is refused.
            EXPECT_TRUE(engine.SetDeviceStatus(name, disabled) == -1 ||
                        (engine.GetDeviceStatus(name, &status) == 0 && status == disabled))
                << seeding::Utf8(name);
        }
    }
    Faults::Inject("CreateFileW", 1, ERROR_FILE_NOT_FOUND, true);
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.GetDeviceStatus(L"Wifi", &status)); }).back(),
                testing::StartsWith("Get Wifi device status failed for HRESULT: 0x8"));
}

} // namespace
