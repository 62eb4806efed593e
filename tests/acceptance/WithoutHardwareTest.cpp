// tests/acceptance/WithoutHardwareTest.cpp
//
// The commands on live hardware on a machine that has neither the kernel driver nor a battery nor a network
// adapter of its own.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"

#include <tuple>

namespace
{

class WithoutHardware : public AcceptanceTest
{
protected:
    void SetUp() override
    {
        environment::RemoveHardware();
    }

    Host host;
};

TEST_F(WithoutHardware, WhatNeedsItFailsAndTheRestReportsNone)
{
    SYSTEM_POWER_STATUS status{};
    ASSERT_NE(0, GetSystemPowerStatus(&status));
    ASSERT_TRUE(status.BatteryFlag == 255 || (status.BatteryFlag & 0x80) != 0) << "there is a battery";
    const bool isOnAc = status.ACLineStatus == 1; // otherwise the driver is asked for the battery
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"GET_MAX_LCD_BRIGHTNESS", "", "6"},
        {"GET_LCD_BRIGHTNESS", "", "6"},
        {"SET_LCD_BRIGHTNESS", "level=1", "6"},
        {"GET_LAN_STATUS", "", "6"},
        {"SET_LAN_STATUS", "status=on", "6"},
        {"SET_LAN_STATUS", "status=off", "1"},
        {"GET_WIRELESS_STATUS", "", "6"},
        {"SET_WIRELESS_STATUS", "status=on", "6"},
        {"GET_3G_STATUS", "", "6"},
        {"SET_3G_STATUS", "status=on", "6"},
        {"GET_BLUETOOTH_STATUS", "", "6"},
        {"SET_BLUETOOTH_STATUS", "status=on", "6"},
        {"GET_LAN_ENABLED_STATUS", "", "6"},
        {"GET_WIRELESS_ENABLED_STATUS", "", "6"},
        {"GET_LAN_SPEED", "", "6"},
        {"SET_LAN_SPEED", "speed=1", "6"},
        {"GET_BATTERY_COUNT", "", "0 count=0"},
        {"GET_POWER_INFO", "", isOnAc ? "0 state=1 percent=-1 time=-1" : "0 state=-1 percent=-1 time=-1"},
        {"GET_BATTERY_INFO", "battery=0",
         isOnAc ? "0 state=1 percent=-1 time=-1 designed=0 fullCharged=0 chemistry=\"\" extended0=0 "
                  "extended1=0 extended2=0"
                : "6 state=0 percent=0 time=0 designed=0 fullCharged=0 chemistry=\"\" extended0=0 "
                  "extended1=0 extended2=0"},
    };
    for (const auto& [command, fields, outcome] : rows)
    {
        EXPECT_EQ(outcome, Ask(host, command, fields)) << command;
    }
}

} // namespace
