// tests/acceptance/DeviceCommandsTest.cpp
//
// The commands on live hardware, on a simulated notebook, in states that the transcripts don't have.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "base/Trace.h"
#include "control/Adapters.h"
#include "control/Batteries.h"
#include "control/PowerSource.h"
#include "machine/EmbeddedController.h"
#include "machine/KernelDriver.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <tuple>

using simulated::EmbeddedController;
using simulated::Faults;
using simulated::Trace;
using simulated::TracedCall;
using Ec = EmbeddedController;

namespace
{

class DeviceCommands : public AcceptanceTest
{
protected:
    Host host;
};

TEST_F(DeviceCommands, ValuesAreCheckedBeforeAnythingIsTouched)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"SET_LCD_BRIGHTNESS", "level=-1", "6"},  {"SET_3G_STATUS", "status=2", "6"},
        {"SET_3G_STATUS", "status=-1", "6"},      {"SET_LAN_STATUS", "status=0", "1"},
        {"SET_LAN_STATUS", "status=2", "6"},      {"SET_LAN_STATUS", "status=-1", "6"},
        {"SET_WIRELESS_STATUS", "status=2", "6"}, {"SET_BLUETOOTH_STATUS", "status=2", "6"},
        {"SET_LAN_SPEED", "speed=5", "6"},        {"SET_LAN_SPEED", "speed=-1", "6"},
        {"GET_BATTERY_INFO", "battery=-1", "6"},
    };
    host.Uninitialize(); // the calls of its thread aren't a request's
    for (const auto& [command, fields, outcome] : rows)
    {
        environment::ForgetCalls();
        EXPECT_EQ(outcome, Ask(host, command, fields)) << command << ' ' << fields;
        EXPECT_TRUE(environment::HasOnlyLogged()) << command << ' ' << fields;
    }
}

TEST_F(DeviceCommands, SwitchesOfTheController)
{
    // The item, its state before, the request and its outcome.
    const std::tuple<DWORD, BYTE, const char*, const char*, const char*> rows[] = {
        {Ec::kWifi, 0, "SET_WIRELESS_STATUS", "status=on", "0, WLAN_CHANGED 1"},
        {Ec::kWifi, Ec::kNotFitted, "GET_WIRELESS_STATUS", "", "0 status=2"},
        {Ec::kWifi, Ec::kNotFitted, "SET_WIRELESS_STATUS", "status=on", "0, WLAN_CHANGED 2"},
        {Ec::kBluetooth, 0, "SET_BLUETOOTH_STATUS", "status=on", "0"},
        {Ec::kBluetooth, 1, "SET_BLUETOOTH_STATUS", "status=on", "0"},
        {Ec::kBluetooth, Ec::kNotFitted, "GET_BLUETOOTH_STATUS", "", "0 status=2"},
        {Ec::k3G, 1, "SET_3G_STATUS", "status=off", "0, 3G_CHANGED 0"},
        {Ec::k3G, 1, "SET_3G_STATUS", "status=on", "0"},
        {Ec::k3G, Ec::kNotFitted, "GET_3G_STATUS", "", "0 status=2"},
        {Ec::k3G, Ec::kNotFitted, "SET_3G_STATUS", "status=on", "6"},
        {Ec::kLan, 1, "SET_LAN_STATUS", "status=on", "0"},
        {Ec::kLan, Ec::kNotFitted, "GET_LAN_STATUS", "", "6"},
    };
    for (const auto& [item, before, command, fields, outcome] : rows)
    {
        EmbeddedController::SetItem(item, before);
        EXPECT_EQ(outcome, Ask(host, command, fields)) << command << ' ' << fields << ' ' << int{before};
    }
}

// Each of the driver's operations in a setter fails once: only a failed change fails, and the event carries
// what was read back.
TEST_F(DeviceCommands, StepsOfASetterThatFail)
{
    const std::tuple<const char*, const char*, unsigned, const char*, const char*> rows[] = {
        {"SET_WIRELESS_STATUS", "status=off", 2U, "6", "set WLAN power status failed"},
        {"SET_WIRELESS_STATUS", "status=off", 3U, "0, WLAN_CHANGED 2", ""},
        {"SET_BLUETOOTH_STATUS", "status=off", 2U, "6", "set Bluetooth power status failed"},
        {"SET_3G_STATUS", "status=on", 2U, "6", "enter set 3G Status 1"},
        {"SET_3G_STATUS", "status=on", 3U, "0, 3G_CHANGED 2", ""},
        {"SET_LAN_STATUS", "status=on", 3U, "6", "Set LAN status."},
        {"SET_LAN_STATUS", "status=on", 4U, "0, LAN_CHANGED -1", ""},
        {"SET_LCD_BRIGHTNESS", "level=2", 1U, "6", ""},
    };
    host.Uninitialize(); // its thread writes to the log too
    for (const auto& [command, fields, nth, outcome, line] : rows)
    {
        environment::Recreate(5);
        EmbeddedController::SetItem(Ec::kLan, 0);
        seeding::SwitchLogsOn();
        Faults::Inject("DeviceIoControl", nth, ERROR_GEN_FAILURE);
        EXPECT_EQ(outcome, Ask(host, command, fields)) << command << ' ' << nth;
        EXPECT_TRUE(Faults::AllHit());
        if (*line != 0)
        {
            std::vector<std::string> lines = seeding::LogLines("trxpm.log");
            std::erase(lines, "");
            EXPECT_EQ(line, lines.back()) << command;
        }
    }
}

TEST_F(DeviceCommands, LevelsAndSpeeds)
{
    constexpr int kLevels[] = {2, 3, 4, 5, 1}; // of the wire's speeds
    for (const char* const speed : {"0", "1", "2", "3", "4"})
    {
        EXPECT_EQ("0, LAN_CHANGED " + std::to_string(kLevels[*speed - '0']),
                  Ask(host, "SET_LAN_SPEED", speed));
        EXPECT_EQ(std::string("0 speed=") + speed, Ask(host, "GET_LAN_SPEED"));
    }
    EXPECT_TRUE(simulated::Adapters::SetSetting(simulated::Adapters::All().at(0), "DuplexMode", "0"));
    EXPECT_EQ("6", Ask(host, "GET_LAN_SPEED")) << "a level that the wire has no number for";
    for (const auto& [level, reached] : {std::pair("0", "0"), {"0", "0"}, {"100", "7"}})
    {
        EXPECT_EQ(std::string("0, LCD_BRIGHTNESS_CHANGED ") + reached,
                  Ask(host, "SET_LCD_BRIGHTNESS", level));
        EXPECT_EQ(std::string("0 level=") + reached, Ask(host, "GET_LCD_BRIGHTNESS"));
    }
}

// Everything that goes into the battery replies.
struct Battery
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

void Set(const Battery& battery)
{
    simulated::PowerAnswers answers = simulated::PowerSource::Get();
    answers.status.ACLineStatus = battery.acLine;
    answers.status.BatteryFlag = battery.batteryFlag;
    answers.status.BatteryLifePercent = battery.percent;
    answers.battery.Charging = battery.charging;
    answers.battery.Discharging = battery.discharging;
    answers.battery.MaxCapacity = 30000;
    answers.battery.RemainingCapacity = 20000;
    answers.battery.Rate = battery.rate;
    answers.battery.EstimatedTime = 1234;
    EXPECT_TRUE(simulated::PowerSource::Set(answers));
    simulated::Batteries::SetStatus(0, BATTERY_STATUS{battery.powerState, 20000, 11100, 0});
    simulated::Batteries::RefuseOpening(0, battery.statusKnown ? 0U : DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(DeviceCommands, StatesInTheTwoBatteryReplies)
{
    // State, percentage and time of the battery reply and of the power reply.
    using Reported = std::array<int, 3>;
    const std::tuple<Battery, Reported, Reported> rows[] = {
        {{.powerState = 1}, {1, 80, -1}, {1, 80, -1}},
        {{.acLine = 0, .powerState = 2, .discharging = true}, {2, 80, 1234}, {2, 80, 1234}},
        {{.powerState = 4, .charging = true}, {4, 80, 3600}, {4, 80, 3600}},
        // Charging on AC power: one reply takes the first flag, the other the last.
        {{.powerState = 5, .charging = true}, {1, 80, 3600}, {4, 80, 3600}},
        {{.acLine = 0, .powerState = 10, .discharging = true}, {2, 80, 1234}, {2, 80, 1234}},
        {{.acLine = 0, .powerState = 8}, {8, 80, -1}, {-1, 80, -1}},
        {{.powerState = 0}, {0, 80, -1}, {-1, 80, -1}},
        {{.percent = 255, .powerState = 1}, {1, -1, -1}, {1, -1, -1}},
        {{.powerState = 4, .charging = true, .rate = 0}, {4, 80, -1}, {4, 80, -1}},
        // No battery, on AC power and without.
        {{.batteryFlag = 128, .percent = 255}, {1, -1, -1}, {1, -1, -1}},
        {{.batteryFlag = 255, .percent = 255}, {1, -1, -1}, {1, -1, -1}},
        {{.acLine = 0, .batteryFlag = 128, .percent = 255, .powerState = 2}, {2, -1, -1}, {-1, -1, -1}},
        {{.powerState = 1, .statusKnown = false}, {0, 80, -1}, {-1, 80, -1}},
    };
    const auto inWords = [](const Reported& reported)
    {
        return "0 state=" + std::to_string(reported[0]) + " percent=" + std::to_string(reported[1]) +
               " time=" + std::to_string(reported[2]);
    };
    for (const auto& [battery, info, power] : rows)
    {
        Set(battery);
        EXPECT_THAT(Ask(host, "GET_BATTERY_INFO", "battery=0"), testing::StartsWith(inWords(info) + ' '));
        EXPECT_EQ(inWords(power), Ask(host, "GET_POWER_INFO"));
    }
    EXPECT_EQ("0 count=1", Ask(host, "GET_BATTERY_COUNT"));
    Set({.batteryFlag = 255});
    EXPECT_EQ("0 count=0", Ask(host, "GET_BATTERY_COUNT"));
}

// While the batteries are asked, which may take seconds, the controller's driver is closed again.
TEST_F(DeviceCommands, TheControllerIsLetGoBeforeTheBatteriesAreAsked)
{
    for (const LONG code : {0, 6})
    {
        Trace::Clear();
        EXPECT_EQ(code, host.Send("GET_BATTERY_INFO", PayloadOf("GET_BATTERY_INFO", "battery=0")).code);
        const std::vector<TracedCall> calls = Trace::Calls();
        const auto first = [&](const char* function)
        {
            return std::find_if(calls.begin(), calls.end(),
                                [&](const auto& call) { return call.function == function; });
        };
        EXPECT_LT(first("CloseHandle"), first("SetupDiGetClassDevsW"));
        EmbeddedController::RemoveBattery(15);
    }
}

// The host's figure for the reply's room is trusted. Where the firmware fails, the rest of the record is
// written all the same, and not counted.
TEST_F(DeviceCommands, TheRoomOfTheBatteryReplies)
{
    const std::vector<std::byte> payload = PayloadOf("GET_BATTERY_INFO", "battery=0");
    std::vector<std::byte> reply(40);
    const auto ask = [&](const char* command, DWORD room)
    {
        PM_Request request{};
        std::memcpy(request.command, command, std::strlen(command));
        request.params = payload.data();
        request.paramsLen = static_cast<DWORD>(payload.size());
        request.result = reply.data();
        request.resultLen = &room;
        const LONG code = host.Send(&request);
        return std::pair(code, room);
    };
    host.Uninitialize(); // its thread writes to the log too
    EXPECT_EQ(std::pair(LONG{6}, DWORD{39}), ask("GET_BATTERY_INFO", 39));
    EXPECT_EQ(std::pair(LONG{0}, DWORD{40}), ask("GET_BATTERY_INFO", 40));
    EXPECT_EQ(std::pair(LONG{0}, DWORD{12}), ask("GET_POWER_INFO", 12));
    seeding::SwitchLogsOn();
    EXPECT_EQ(std::pair(LONG{6}, DWORD{11}), ask("GET_POWER_INFO", 11));
    EXPECT_EQ("Get power information failed for smaller length.", seeding::LogLines("trxpm.log").at(2));

    Set({.acLine = 0, .powerState = 2, .discharging = true});
    EmbeddedController::RemoveBattery(15);
    EXPECT_EQ(std::pair(LONG{6}, DWORD{0}), ask("GET_BATTERY_INFO", 40));
    EXPECT_EQ("state=2 percent=80 time=1234 designed=57720 fullCharged=30000 chemistry=\"LION\" extended0=0 "
              "extended1=0 extended2=0",
              ReplyInWords("GET_BATTERY_INFO", reply));
}

} // namespace
