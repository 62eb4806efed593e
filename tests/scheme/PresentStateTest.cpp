// tests/scheme/PresentStateTest.cpp
//
// What is in force now: the processor's speed, the companion application's start, batteries and devices by
// name.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include "control/PowerSource.h"
#include "control/RegistryEditor.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstring>

using namespace simulated;
using testing::ElementsAre;
using testing::StartsWith;

namespace
{

constexpr int kFirstChipsetFunction = 17;
// What the notebook's chipset doesn't have.
const std::string kMissing[] = {"Serial ATA2", "PCIE5", "PCIE6", "Thermal Throttle"};
constexpr const char* kRunKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kApplicationKey = "SOFTWARE\\Kelvo\\ORVA";

using PresentState = SchemeTest;

TEST_F(PresentState, SpeedBelongsToTheSourceThatFeedsTheMachine)
{
    Run("set 1 ac CpuSpeed = 100 -> 1; set 1 dc CpuSpeed = 50 -> 1");
    using Row = std::tuple<int, int, std::string, std::string>;
    // The source, the speed that is set, both speeds then.
    for (const auto& [line, speed, ac, dc] :
         {Row{AC_LINE_ONLINE, 75, "75", "50"}, Row{AC_LINE_ONLINE, 33, "75", "50"},
          Row{AC_LINE_OFFLINE, 100, "75", "100"}, Row{AC_LINE_UNKNOWN, 0, "75", "0"}})
    {
        PowerAnswers answers = PowerSource::Get();
        answers.status.ACLineStatus = static_cast<BYTE>(line);
        ASSERT_TRUE(PowerSource::Set(answers));
        const int before = engine.GetCPUSpeed();
        EXPECT_EQ(before, engine.GetPwrVariable(1, line == AC_LINE_ONLINE ? 1 : 0, L"CpuSpeed"));
        // Also a refused speed applies the scheme.
        EXPECT_THAT(CallsOf([&, set = speed] { EXPECT_EQ(before, engine.SetCPUSpeed(set)); }),
                    testing::Contains("SetActivePwrScheme"));
        Run("get 1 ac CpuSpeed -> " + ac + "; get 1 dc CpuSpeed -> " + dc);
    }
}

TEST_F(PresentState, PoliciesAreReadFromTheStoreOfAnyAccount)
{
    constexpr const wchar_t* kSchemes = L"S-1-5-18\\Control Panel\\PowerCfg\\PowerPolicies";
    EXPECT_EQ(1, engine.ReadUserActivePowerScheme(L"S-1-5-18\\Control Panel\\PowerCfg"));
    EXPECT_EQ(0, engine.ReadUserActivePowerScheme(L"S-1-5-18"));
    POWER_POLICY policy{};
    for (const auto& [scheme, isThere] : {std::pair{2, 1}, std::pair{77, 0}})
    {
        ULONG size = sizeof policy.user;
        auto* bytes = reinterpret_cast<unsigned char*>(&policy.user);
        EXPECT_EQ(isThere, engine.ReadUserPowerPolicy(scheme, kSchemes, bytes, &size));
        size = sizeof policy.mach;
        bytes = reinterpret_cast<unsigned char*>(&policy.mach);
        EXPECT_EQ(isThere, engine.ReadMachinePowerPolicy(scheme, bytes, &size));
    }
    POWER_POLICY present{};
    ASSERT_TRUE(ReadPwrScheme(2, &present));
    EXPECT_EQ(0, std::memcmp(&present, &policy, sizeof policy));
}

// The bytes are the path's, with its terminator where that is within the size.
TEST_F(PresentState, AutoRunTakesBothEntriesOutAndRecordsAnyFlag)
{
    ASSERT_TRUE(seeding::SetText(HKEY_LOCAL_MACHINE, kRunKey, "ORVA.exe", "old"));
    ASSERT_TRUE(seeding::MakeKey(HKEY_LOCAL_MACHINE, kApplicationKey));
    using Row = std::tuple<int, const wchar_t*, ULONG, int, std::size_t, std::string>;
    for (const auto& [flag, path, size, result, bytes, recorded] :
         {Row{1, L"C:\\A.exe", 260, 1, 18, "1"}, Row{1, nullptr, 9, 0, 18, "1"},
          Row{2, nullptr, 0, 1, 18, "2"}, Row{1, L"C:\\cut", 5, 1, 10, "1"}, Row{0, nullptr, 0, 1, 0, "0"},
          Row{0, nullptr, 0, 0, 0, "0"}})
    {
        EXPECT_EQ(result, engine.SetAutoRunORVA(flag, path, size));
        const auto entry = RegistryEditor::Read(std::string("HKEY_LOCAL_MACHINE\\") + kRunKey, "ORVA");
        EXPECT_EQ(bytes, entry ? entry->bytes.size() : 0);
        EXPECT_EQ(recorded, seeding::GetKey(kRoot, "ORVACfg", "AutoRun"));
        EXPECT_EQ(std::stoul(recorded),
                  seeding::GetNumber(HKEY_LOCAL_MACHINE, kApplicationKey, "AutoRunFlag"));
    }
    EXPECT_FALSE(seeding::GetText(HKEY_LOCAL_MACHINE, kRunKey, "ORVA.exe").has_value());
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.SetAutoRunORVA(1, nullptr, 9)); }),
                ElementsAre("WriteAutoRunSettings: Write ORVA path into Run failed at 87"));
}

TEST_F(PresentState, BatteryItemsAreFoundAtTheirConfiguredOffset)
{
    EXPECT_GT(engine.GetRemainBatPer(0), 0.0F);
    EXPECT_GT(engine.GetRemainingUsageTime(0), 0U);
    _BATTERY_INFORMATION info{};
    ASSERT_EQ(0, engine.GetBatteryInfo(0, info));
    for (const auto& [start, size, result] :
         {std::tuple{"16", "4", 0}, std::tuple{"0", "36", 0}, std::tuple{"33", "4", -1},
          std::tuple{"0", "37", -1}, std::tuple{"-2", "4", -1}, std::tuple{"4", "-1", -1},
          std::tuple{"2147483647", "2147483647", -1}, std::tuple{"36", "0", 0}, std::tuple{"36", "1", -1}})
    {
        ASSERT_TRUE(seeding::SetKey(kRoot, "BatteryInforList", "BAStart0", start));
        ASSERT_TRUE(seeding::SetKey(kRoot, "BatteryInforList", "BASize0", size));
        std::array<std::uint32_t, 9> value{};
        EXPECT_EQ(result,
                  engine.GetBatteryInformation(0, L"Capabilities", reinterpret_cast<ULONG*>(value.data())));
        const std::string copied =
            result == 0 ? BytesOf(info).substr(std::stoul(start), std::stoul(size)) : "";
        EXPECT_EQ(copied + std::string(sizeof value, '\0').substr(copied.size()), BytesOf(value)) << start;
    }
    ULONG value = 77;
    EXPECT_EQ(-1, engine.GetBatteryInformation(4, L"CycleCount", &value));
    EXPECT_EQ(0, engine.GetBatteryInformation(0, L"cyclecount", &value));
    EXPECT_EQ(77U, value);
    EXPECT_EQ(-1, engine.GetBatteryInformation(0, nullptr, &value));
    EXPECT_EQ(-1, engine.GetBatteryInformation(0, L"Capabilities", nullptr));
    // A name in both lists is the firmware's.
    ASSERT_TRUE(seeding::SetKey(kRoot, "BatteryInforList", "BEAName3", "CycleCount"));
    EXPECT_EQ(0, engine.GetBatteryInformation(4, L"CycleCount", &value));
    ASSERT_TRUE(seeding::SetKey(kRoot, "BatteryInforList", "BEAStart3", "13"));
    EXPECT_EQ(-1, engine.GetBatteryInformation(0, L"CycleCount", &value));
    for (const char* const count : {"BEAItemNum", "BAItemNum"})
    {
        ASSERT_TRUE(seeding::SetKey(kRoot, "BatteryInforList", count, "2147483647"));
    }
    EXPECT_EQ(0, engine.GetBatteryInformation(0, L"Nothing", &value)) << "doesn't last for hours";
    EXPECT_EQ(0, engine.GetBatteryInformation(0, L"", &value)) << "an item without a name is none";
}

// Without a battery state nothing else is queried; nor when the query fails.
TEST_F(PresentState, WithoutAStateThereIsNoBattery)
{
    PowerAnswers answers = PowerSource::Get();
    answers.status.BatteryFlag = BATTERY_FLAG_UNKNOWN;
    ASSERT_TRUE(PowerSource::Set(answers));
    EXPECT_THAT(CallsOf([&] { EXPECT_EQ(0U, engine.GetBatteryCount()); }),
                ElementsAre("GetSystemPowerStatus"));
    EXPECT_TRUE(CallsOf([&] { EXPECT_EQ(0U, engine.GetRemainCapacity(1)); }).empty());
    _BATTERY_STATUS status{};
    EXPECT_EQ(0, engine.GetBatteryStatus(0, status));
    Faults::Inject("SetupDiGetClassDevsW", 1, ERROR_ACCESS_DENIED, true);
    EXPECT_EQ(-1, engine.GetBatteryStatus(0, status));
    _BATTERY_INFORMATION info{};
    EXPECT_EQ(0, engine.GetBatteryInfo(0, info));
    EXPECT_EQ(0U, engine.GetCompleteTime(0) + engine.GetRemainingUsageTime(0) + engine.GetRemainCapacity(0));
}

TEST_F(PresentState, LiveDevicesHaveTheirVariablesName)
{
    int status = 77;
    EXPECT_EQ(-1, engine.GetDeviceStatus(L"Nothing", &status));
    EXPECT_EQ(-1, engine.SetDeviceStatus(L"Nothing", 1));
    EXPECT_EQ(0, engine.GetDeviceStatus(L"USBPort 3", &status));
    EXPECT_EQ(0, engine.GetDeviceStatus(L"USBPort 3", nullptr));
    EXPECT_EQ(-1, engine.GetDeviceStatus(L"Wifi", nullptr));
    EXPECT_EQ(0, engine.SetDeviceStatus(L"CpuSpeed", 1));
    EXPECT_EQ(77, status);
    for (const auto& [radio, value] :
         {std::pair{L"btstatus", 0}, std::pair{L"btstatus", 1}, std::pair{L"Wifi", 0}, std::pair{L"Wifi", 1}})
    {
        EXPECT_EQ(1, engine.SetDeviceStatus(radio, value));
        EXPECT_EQ(value, engine.GetDeviceStatus(radio, &status));
        EXPECT_EQ(value, status);
    }
    ASSERT_EQ(1, engine.SetDeviceStatus(L"BTStatus", 0));
    EXPECT_EQ(1, engine.GetDeviceStatus(L"Wifi", &status)) << "switched by the other's name";
    for (int number = kFirstChipsetFunction; VariableOf(number).device == LiveDevice::ChipsetFunction;
         ++number)
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
        const auto lines = LinesOf(
            [&] { EXPECT_EQ(-2, engine.GetDeviceStatus(name, &status) + engine.SetDeviceStatus(name, 1)); });
        const std::string failed = seeding::Utf8(name) + " device status failed for HRESULT: 0x80";
        EXPECT_THAT(lines, testing::IsSupersetOf({StartsWith("Get " + failed), StartsWith("Set " + failed)}));
    }
}

} // namespace
