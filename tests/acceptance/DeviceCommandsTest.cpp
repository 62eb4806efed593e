// tests/acceptance/DeviceCommandsTest.cpp
//
// The commands on live hardware, on a simulated notebook: values, events, replies, and what costs no driver
// call.

#include "acceptance/AcceptanceTest.h"
#include "notebook/Adapters.h"
#include "notebook/Batteries.h"
#include "notebook/EmbeddedController.h"
#include "notebook/KernelDriver.h"
#include "notebook/PowerSource.h"
#include "notebook/Trace.h"
#include "plugin/WireRecords.h"

using simulated::EmbeddedController;
using simulated::KernelDriver;
using simulated::Trace;

namespace
{

constexpr LONG kNoEvent = -100;
constexpr LONG kNoReply = -100;

class DeviceCommands : public AcceptanceTest
{
protected:
    // Nothing of the driver, of the devices and of the file system was asked for.
    static bool NothingWasTouched()
    {
        return Trace::CallsOf("CreateFileW").empty() && Trace::CallsOf("DeviceIoControl").empty() &&
               Trace::CallsOf("SetupDiGetClassDevsW").empty() && Trace::CallsOf("RegSetValueExW").empty();
    }

    // The only event since the last call, or kNoEvent; the test fails when there are more.
    std::pair<std::string, LONG> OnlyEvent()
    {
        const std::vector<Event> events = host.TakeEvents();
        EXPECT_LE(events.size(), 1U);
        return events.empty() ? std::pair(std::string(), kNoEvent)
                              : std::pair(events[0].name, events[0].Number());
    }

    Host host;
};

TEST_F(DeviceCommands, SettersCheckBeforeTheyTouchAnything)
{
    struct Case
    {
        const char* command;
        LONG value;
        LONG code;
    };
    constexpr Case kCases[] = {
        {"SET_LCD_BRIGHTNESS", -1, 6}, {"SET_3G_STATUS", 2, 6},        {"SET_3G_STATUS", -1, 6},
        {"SET_LAN_STATUS", 0, 1},      {"SET_LAN_STATUS", 2, 6},       {"SET_LAN_STATUS", -1, 6},
        {"SET_WIRELESS_STATUS", 2, 6}, {"SET_BLUETOOTH_STATUS", 2, 6}, {"SET_LAN_SPEED", 5, 6},
        {"SET_LAN_SPEED", -1, 6},      {"GET_BATTERY_INFO", -1, 6},
    };
    for (const Case& row : kCases)
    {
        Trace::Clear();
        const Answer answer = host.Send(row.command, row.value);
        EXPECT_EQ(row.code, answer.code) << row.command << row.value;
        EXPECT_FALSE(answer.reply.has_value()) << row.command;
        EXPECT_TRUE(NothingWasTouched()) << row.command << row.value;
        EXPECT_TRUE(host.TakeEvents().empty()) << row.command;
    }
}

TEST_F(DeviceCommands, SwitchesOfTheController)
{
    struct Case
    {
        const char* get;
        const char* set;
        const char* event; ///< null for none
        DWORD item;
        LONG unknownAs; ///< the reply for a state that is neither on nor off, or kNoReply
    };
    constexpr Case kCases[] = {
        {"GET_WIRELESS_STATUS", "SET_WIRELESS_STATUS", "WLAN_CHANGED", EmbeddedController::kWifi, 2},
        {"GET_3G_STATUS", "SET_3G_STATUS", "3G_CHANGED", EmbeddedController::k3G, 2},
        {"GET_BLUETOOTH_STATUS", "SET_BLUETOOTH_STATUS", nullptr, EmbeddedController::kBluetooth, 2},
        {"GET_LAN_STATUS", "SET_LAN_STATUS", "LAN_CHANGED", EmbeddedController::kLan, kNoReply},
    };
    for (const Case& row : kCases)
    {
        SCOPED_TRACE(row.set);
        EmbeddedController::SetItem(row.item, 0);
        EXPECT_EQ(0, host.Send(row.get).Number());

        const Answer switched = host.Send(row.set, LONG{1});
        EXPECT_EQ(0, switched.code);
        EXPECT_FALSE(switched.reply.has_value());
        EXPECT_EQ(1U, EmbeddedController::Item(row.item));
        EXPECT_EQ(1, host.Send(row.get).Number());
        EXPECT_EQ(row.event == nullptr ? std::pair(std::string(), kNoEvent)
                                       : std::pair(std::string(row.event), LONG{1}),
                  OnlyEvent());

        // The present state again: success without an event.
        EXPECT_EQ(0, host.Send(row.set, LONG{1}).code);
        EXPECT_TRUE(host.TakeEvents().empty());

        EmbeddedController::SetItem(row.item, EmbeddedController::kNotFitted);
        const Answer unknown = host.Send(row.get);
        EXPECT_EQ(row.unknownAs == kNoReply ? 6 : 0, unknown.code);
        if (row.unknownAs != kNoReply)
        {
            EXPECT_EQ(row.unknownAs, unknown.Number());
        }
    }
    // A 3G module that isn't there can't be switched.
    EXPECT_EQ(6, host.Send("SET_3G_STATUS", LONG{1}).code);
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(DeviceCommands, TheBacklightTellsOfEverySuccess)
{
    EXPECT_EQ(7, host.Send("GET_MAX_LCD_BRIGHTNESS").Number());
    for (const auto& [level, reached] : {std::pair(LONG{3}, LONG{3}), {3, 3}, {0, 0}, {100, 7}})
    {
        const Answer answer = host.Send("SET_LCD_BRIGHTNESS", level);
        EXPECT_EQ(0, answer.code);
        EXPECT_FALSE(answer.reply.has_value());
        EXPECT_EQ(std::pair(std::string("LCD_BRIGHTNESS_CHANGED"), reached), OnlyEvent());
        EXPECT_EQ(reached, host.Send("GET_LCD_BRIGHTNESS").Number());
    }
}

TEST_F(DeviceCommands, LanSpeedsHaveNumbersOfTheirOwnOnTheWire)
{
    constexpr std::pair<LONG, LONG> kLevels[] = {{0, 2}, {1, 3}, {2, 4}, {3, 5}, {4, 1}, {4, 1}};
    for (const auto& [wire, level] : kLevels)
    {
        EXPECT_EQ(0, host.Send("SET_LAN_SPEED", wire).code);
        EXPECT_EQ(std::pair(std::string("LAN_CHANGED"), level), OnlyEvent());
        EXPECT_EQ(wire, host.Send("GET_LAN_SPEED").Number());
    }
    const std::string lan = simulated::Adapters::All().at(0);
    simulated::Adapters::SetSetting(lan, "DuplexMode", "0"); // a level that the wire has no number for
    EXPECT_EQ(6, host.Send("GET_LAN_SPEED").code);
    simulated::Adapters::Clear();
    EXPECT_EQ(6, host.Send("GET_LAN_SPEED").code);
    EXPECT_EQ(6, host.Send("SET_LAN_SPEED", LONG{0}).code);
    EXPECT_EQ(6, host.Send("GET_LAN_ENABLED_STATUS").code);
    EXPECT_EQ(6, host.Send("GET_WIRELESS_ENABLED_STATUS").code);
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(DeviceCommands, AdaptersAreEnabled)
{
    EXPECT_EQ(1, host.Send("GET_LAN_ENABLED_STATUS").Number());
    EXPECT_EQ(1, host.Send("GET_WIRELESS_ENABLED_STATUS").Number());
}

TEST_F(DeviceCommands, WithoutTheDriverOnlyWhatNeedsItFails)
{
    KernelDriver::SetPresent(false);
    EXPECT_EQ(6, host.Send("GET_LCD_BRIGHTNESS").code);
    for (const char* const command : {"GET_LAN_ENABLED_STATUS", "GET_WIRELESS_ENABLED_STATUS",
                                      "GET_LAN_SPEED", "GET_BATTERY_COUNT", "GET_POWER_INFO"})
    {
        EXPECT_EQ(0, host.Send(command).code) << command;
    }
    EXPECT_TRUE(host.TakeEvents().empty());
}

// An operation that the driver refuses half way ends without an event.
TEST_F(DeviceCommands, ABusyDriverIsAFailure)
{
    KernelDriver::SetBusy(true);
    EXPECT_EQ(6, host.Send("SET_LCD_BRIGHTNESS", LONG{1}).code);
    EXPECT_EQ(6, host.Send("GET_LCD_BRIGHTNESS").code);
    EXPECT_EQ(6, host.Send("SET_WIRELESS_STATUS", LONG{1}).code);
    EXPECT_EQ(2, host.Send("GET_WIRELESS_STATUS").Number());
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(DeviceCommands, TheLogFollowsTheRequest)
{
    host.Uninitialize(); // its thread writes to the log too
    seeding::SwitchLogsOn();
    host.Send("SET_LCD_BRIGHTNESS", LONG{4});
    host.Send("SET_WIRELESS_STATUS", LONG{1});
    host.Send("GET_WIRELESS_STATUS");
    host.Send("SET_LAN_SPEED", LONG{0});
    KernelDriver::SetPresent(false);
    host.Send("SET_LCD_BRIGHTNESS", LONG{4});
    const std::vector<std::string> kLines = {
        "Set brightness level.",
        "",
        "set LCD level 4 ",
        "send LCD level change event to TRX",
        "enter Set WLAN 1.",
        "",
        "WLAN power status isn't changed",
        "",
        "Get WLAN status 1.",
        "",
        "send LAN Speed change event to TRX",
        "Set brightness level.",
        "",
        "set brightness level, ec setup failed",
    };
    EXPECT_EQ(kLines, seeding::LogLines("trxpm.log"));
}

class PowerCommands : public DeviceCommands
{
protected:
    // Everything that the battery replies are made of.
    struct Machine
    {
        BYTE acLine = 1;
        BYTE batteryFlag = 0;
        BYTE percent = 80;
        ULONG powerState = 0;
        bool charging = false;
        bool discharging = false;
        DWORD rate = 10000; ///< remaining 20000 of 30000
        bool statusKnown = true;
    };

    static void Set(const Machine& machine)
    {
        simulated::PowerAnswers answers = simulated::PowerSource::Get();
        answers.status.ACLineStatus = machine.acLine;
        answers.status.BatteryFlag = machine.batteryFlag;
        answers.status.BatteryLifePercent = machine.percent;
        answers.battery.Charging = machine.charging;
        answers.battery.Discharging = machine.discharging;
        answers.battery.MaxCapacity = 30000;
        answers.battery.RemainingCapacity = 20000;
        answers.battery.Rate = machine.rate;
        answers.battery.EstimatedTime = 1234;
        simulated::PowerSource::Set(answers);
        simulated::Batteries::SetStatus(0, BATTERY_STATUS{machine.powerState, 20000, 11100, 0});
        simulated::Batteries::RefuseOpening(0, machine.statusKnown ? 0U : DWORD{ERROR_ACCESS_DENIED});
    }
};

TEST_F(PowerCommands, BatteryCount)
{
    EXPECT_EQ(1, host.Send("GET_BATTERY_COUNT").Number());
    simulated::Batteries::Add();
    EXPECT_EQ(2, host.Send("GET_BATTERY_COUNT").Number());
    Set({.batteryFlag = 255});
    EXPECT_EQ(0, host.Send("GET_BATTERY_COUNT").Number());
}

TEST_F(PowerCommands, StatesAsTheTwoRepliesTellThem)
{
    struct Case
    {
        Machine machine;
        LONG batteryReply[3]; ///< state, percent, time
        LONG powerReply[3];
    };
    const Case kCases[] = {
        {{.powerState = 1}, {1, 80, -1}, {1, 80, -1}},
        {{.acLine = 0, .powerState = 2, .discharging = true}, {2, 80, 1234}, {2, 80, 1234}},
        {{.powerState = 4, .charging = true}, {4, 80, 3600}, {4, 80, 3600}},
        // Charging on mains: the one takes the first flag, the other the last.
        {{.powerState = 5, .charging = true}, {1, 80, 3600}, {4, 80, 3600}},
        {{.acLine = 0, .powerState = 10, .discharging = true}, {2, 80, 1234}, {2, 80, 1234}},
        {{.acLine = 0, .powerState = 8}, {8, 80, -1}, {-1, 80, -1}},
        {{.powerState = 0}, {0, 80, -1}, {-1, 80, -1}},
        {{.percent = 255, .powerState = 1}, {1, -1, -1}, {1, -1, -1}},
        {{.powerState = 4, .charging = true, .rate = 0}, {4, 80, -1}, {4, 80, -1}},
        // No battery, on mains and on none.
        {{.batteryFlag = 128, .percent = 255}, {1, -1, -1}, {1, -1, -1}},
        {{.batteryFlag = 255, .percent = 255}, {1, -1, -1}, {1, -1, -1}},
        {{.acLine = 0, .batteryFlag = 128, .percent = 255, .powerState = 2}, {2, -1, -1}, {-1, -1, -1}},
        // A battery that can't be opened.
        {{.powerState = 1, .statusKnown = false}, {0, 80, -1}, {-1, 80, -1}},
    };
    int number = 0;
    for (const Case& row : kCases)
    {
        SCOPED_TRACE(number++);
        Set(row.machine);
        const Answer battery = host.Send("GET_BATTERY_INFO", LONG{0});
        EXPECT_EQ(0, battery.code);
        const auto info = battery.As<PM_Battery_Info>();
        const LONG told[] = {info.powerState, info.percent, info.time};
        EXPECT_TRUE(std::equal(std::begin(told), std::end(told), row.batteryReply));
        const Answer power = host.Send("GET_POWER_INFO");
        EXPECT_EQ(0, power.code);
        const auto whole = power.As<PM_Power_Info>();
        EXPECT_EQ(0, std::memcmp(&whole, row.powerReply, sizeof whole));
    }
}

TEST_F(PowerCommands, TheBatteryRecordByteForByte)
{
    Set({.acLine = 0, .powerState = 2, .discharging = true});
    simulated::Batteries::SetValue(0, "DesignedCapacity", "48840");
    simulated::Batteries::SetValue(0, "FullChargedCapacity", "30000");
    simulated::Batteries::SetValue(0, "Chemistry", "LION");
    EmbeddedController::SetBattery(15, {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0, 0, 0, 0, 0});
    const Answer answer = host.Send("GET_BATTERY_INFO", LONG{0});
    ASSERT_EQ(0, answer.code);
    constexpr BYTE kExpected[40] = {
        2,    0,    0, 0,                  // discharging
        80,   0,    0, 0,                  // percent
        0xD2, 0x04, 0, 0,                  // 1234 seconds
        0xC8, 0xBE, 0, 0,                  // designed capacity 48840
        0x30, 0x75, 0, 0,                  // full charged capacity 30000
        0,    0,    0, 'L', 'I', 'O', 'N', // reserved and chemistry
        0,                                 // reserved
        0x78, 0x56, 0, 0,                  // rows 2 and 3
        0x34, 0x12, 0, 0,                  // rows 0 and 1
        0xBC, 0x9A, 0, 0,                  // rows 4 and 5
    };
    ASSERT_EQ(sizeof kExpected, answer.reply->size());
    EXPECT_EQ(0, std::memcmp(kExpected, answer.reply->data(), sizeof kExpected));
}

TEST_F(PowerCommands, FailuresOfTheBatteryReply)
{
    Set({.acLine = 0, .powerState = 2, .discharging = true});
    EmbeddedController::RemoveBattery(15);
    const Answer withoutMethod = host.Send("GET_BATTERY_INFO", LONG{0});
    EXPECT_EQ(6, withoutMethod.code);
    EXPECT_EQ(0U, withoutMethod.reply->size());

    KernelDriver::SetPresent(false);
    const Answer withoutDriver = host.Send("GET_BATTERY_INFO", LONG{0});
    EXPECT_EQ(6, withoutDriver.code);
    EXPECT_EQ(std::vector<std::byte>(40), withoutDriver.reply);

    // What the system doesn't tell is unknown.
    simulated::Faults::Inject("GetSystemPowerStatus", 1, ERROR_ACCESS_DENIED);
    const auto untold = host.Send("GET_POWER_INFO").As<PM_Power_Info>();
    EXPECT_EQ((std::vector{-1, -1, -1}), (std::vector{untold.powerState, untold.percent, untold.time}));

    // On mains without a battery the driver isn't asked.
    Set({.batteryFlag = 128});
    Trace::Clear();
    EXPECT_EQ(0, host.Send("GET_BATTERY_INFO", LONG{0}).code);
    EXPECT_TRUE(NothingWasTouched());
}

TEST_F(PowerCommands, RepliesNeedTheirRoom)
{
    for (const auto& [command, room] : {std::pair("GET_BATTERY_INFO", 39U), {"GET_POWER_INFO", 11U}})
    {
        host.room = room;
        const Answer answer = host.Send(command, LONG{0});
        EXPECT_EQ(6, answer.code) << command;
        EXPECT_FALSE(answer.reply.has_value()) << command;
    }
}

} // namespace
