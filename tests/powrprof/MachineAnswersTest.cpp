// tests/powrprof/MachineAnswersTest.cpp
//
// What the power manager answers about batteries and hibernation.

#include "Support.h"

#include <cstring>
#include <tuple>

namespace
{

using MachineAnswersTest = FreshStore;

constexpr NTSTATUS kInvalidParameter = static_cast<NTSTATUS>(0xC000000D);
constexpr NTSTATUS kBufferTooSmall = static_cast<NTSTATUS>(0xC0000023);
constexpr NTSTATUS kUnsuccessful = static_cast<NTSTATUS>(0xC0000001);

void Answer(const wchar_t* name, DWORD type, const std::vector<BYTE>& data)
{
    EXPECT_EQ(ERROR_SUCCESS,
              WriteValue(HKEY_LOCAL_MACHINE, "SOFTWARE\\SimulatedNotebook\\Power", name, type, data));
}

void Answer(const wchar_t* name, DWORD number)
{
    Answer(name, REG_DWORD, BytesOf(number));
}

TEST_F(MachineAnswersTest, TheBatteryStateComesFromTheRegistry)
{
    Answer(L"Charging", 1);
    Answer(L"MaxCapacity", 50000);
    Answer(L"RemainingCapacity", 20000);
    Answer(L"Rate", 0xFFFFF000);
    SYSTEM_BATTERY_STATE state;
    std::memset(&state, 0x55, sizeof state);
    ASSERT_EQ(0, CallNtPowerInformation(SystemBatteryState, nullptr, 0, &state, sizeof state));
    const SYSTEM_BATTERY_STATE expected = {1, 1, 1, 0, {}, 50000, 20000, 0xFFFFF000, 0xFFFFFFFF, 1440, 4800};
    EXPECT_EQ(BytesOf(expected), BytesOf(state));
}

TEST_F(MachineAnswersTest, WhatTheMachineDoesNotKnowIsRefused)
{
    const std::tuple<int, ULONG, ULONG, NTSTATUS> rows[] = {{5, 0, 31, kBufferTooSmall},
                                                            {5, 4, 32, kInvalidParameter},
                                                            {4, 0, 76, kInvalidParameter},
                                                            {0, 0, 232, kInvalidParameter},
                                                            {99, 0, 32, kInvalidParameter}};
    for (const auto& [level, inputSize, outputSize, status] : rows)
    {
        BYTE output[256];
        std::memset(output, 0x55, sizeof output);
        EXPECT_EQ(status,
                  CallNtPowerInformation(static_cast<POWER_INFORMATION_LEVEL>(level),
                                         inputSize == 0 ? nullptr : output, inputSize, output, outputSize));
        EXPECT_EQ(0x55, output[0]);
    }
    EXPECT_EQ(kInvalidParameter, CallNtPowerInformation(SystemBatteryState, nullptr, 0, nullptr, 32));

    Answer(L"Rate", REG_SZ, TextBytes("fast"));
    SYSTEM_BATTERY_STATE state{};
    EXPECT_EQ(kUnsuccessful, CallNtPowerInformation(SystemBatteryState, nullptr, 0, &state, sizeof state));
}

TEST_F(MachineAnswersTest, HibernationIsAllowedOrNot)
{
    EXPECT_TRUE(IsPwrHibernateAllowed());
    Answer(L"HibernateAllowed", 0);
    EXPECT_FALSE(IsPwrHibernateAllowed());
}

} // namespace
