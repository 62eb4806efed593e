// tests/acceptance/WithoutHardwareTest.cpp
//
// The commands on live hardware on a machine that has neither the kernel driver nor a battery nor a network
// adapter of its own.

#include "acceptance/AcceptanceTest.h"
#include "plugin/WireRecords.h"

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

TEST_F(WithoutHardware, WhatNeedsItFails)
{
    for (const char* const command :
         {"GET_MAX_LCD_BRIGHTNESS", "GET_LCD_BRIGHTNESS", "GET_LAN_STATUS", "GET_WIRELESS_STATUS",
          "GET_3G_STATUS", "GET_BLUETOOTH_STATUS", "GET_LAN_ENABLED_STATUS", "GET_WIRELESS_ENABLED_STATUS",
          "GET_LAN_SPEED"})
    {
        const Answer answer = host.Send(command);
        EXPECT_EQ(6, answer.code) << command;
        EXPECT_FALSE(answer.reply.has_value()) << command;
    }
    for (const char* const command : {"SET_LCD_BRIGHTNESS", "SET_LAN_STATUS", "SET_WIRELESS_STATUS",
                                      "SET_3G_STATUS", "SET_BLUETOOTH_STATUS", "SET_LAN_SPEED"})
    {
        EXPECT_EQ(6, host.Send(command, LONG{1}).code) << command;
    }
    EXPECT_EQ(1, host.Send("SET_LAN_STATUS", LONG{0}).code) << "refused before the driver is asked";
    EXPECT_TRUE(host.TakeEvents().empty());
}

TEST_F(WithoutHardware, TheBatteryCommandsTellOfNone)
{
    SYSTEM_POWER_STATUS status{};
    ASSERT_NE(0, GetSystemPowerStatus(&status));
    ASSERT_TRUE(status.BatteryFlag == 255 || (status.BatteryFlag & 0x80) != 0) << "there is a battery";
    const LONG state = status.ACLineStatus == 1 ? 1 : -1;

    EXPECT_EQ(0, host.Send("GET_BATTERY_COUNT").Number());
    const auto whole = host.Send("GET_POWER_INFO").As<PM_Power_Info>();
    EXPECT_EQ(state, whole.powerState);
    EXPECT_EQ(-1, whole.percent);
    EXPECT_EQ(-1, whole.time);

    const Answer answer = host.Send("GET_BATTERY_INFO", LONG{0});
    EXPECT_EQ(state == 1 ? 0 : 6, answer.code) << "the driver is asked on battery power alone";
    const auto battery = answer.As<PM_Battery_Info>();
    EXPECT_EQ(state == 1 ? 1 : 0, battery.powerState);
    EXPECT_EQ(state == 1 ? -1 : 0, battery.percent);
}

} // namespace
