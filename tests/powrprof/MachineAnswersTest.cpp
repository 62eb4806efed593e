// tests/powrprof/MachineAnswersTest.cpp
//
// What the power manager answers about batteries and hibernation.

#include "Support.h"

#include <cstring>

namespace
{

class MachineAnswersTest : public FreshStore
{
};

const std::vector<wchar_t> kAnswers = Path(L"SOFTWARE\\SimulatedNotebook\\Power", "");

constexpr NTSTATUS kInvalidParameter = static_cast<NTSTATUS>(0xC000000D);
constexpr NTSTATUS kBufferTooSmall = static_cast<NTSTATUS>(0xC0000023);
constexpr NTSTATUS kUnsuccessful = static_cast<NTSTATUS>(0xC0000001);

std::vector<BYTE> Number(DWORD number)
{
    return BytesOf(number);
}

TEST_F(MachineAnswersTest, TheBatteryStateComesFromTheRegistry)
{
    WriteValue(HKEY_LOCAL_MACHINE, kAnswers, L"Charging", REG_DWORD, Number(1));
    WriteValue(HKEY_LOCAL_MACHINE, kAnswers, L"MaxCapacity", REG_DWORD, Number(50000));
    WriteValue(HKEY_LOCAL_MACHINE, kAnswers, L"RemainingCapacity", REG_DWORD, Number(20000));
    WriteValue(HKEY_LOCAL_MACHINE, kAnswers, L"Rate", REG_DWORD, Number(0xFFFFF000));
    SYSTEM_BATTERY_STATE state;
    std::memset(&state, 0x55, sizeof state);
    ASSERT_EQ(0, CallNtPowerInformation(SystemBatteryState, nullptr, 0, &state, sizeof state));
    EXPECT_EQ(TRUE, state.AcOnLine);
    EXPECT_EQ(TRUE, state.BatteryPresent);
    EXPECT_EQ(TRUE, state.Charging);
    EXPECT_EQ(FALSE, state.Discharging);
    EXPECT_EQ(50000u, state.MaxCapacity);
    EXPECT_EQ(20000u, state.RemainingCapacity);
    EXPECT_EQ(0xFFFFF000u, state.Rate);
    EXPECT_EQ(0xFFFFFFFFu, state.EstimatedTime);
}

TEST_F(MachineAnswersTest, WhatTheMachineDoesNotKnowIsRefused)
{
    struct Row
    {
        int level;
        ULONG inputSize;
        ULONG outputSize;
        NTSTATUS status;
    };
    for (const Row& row :
         {Row{5, 0, 31, kBufferTooSmall}, Row{5, 4, 32, kInvalidParameter}, Row{4, 0, 76, kInvalidParameter},
          Row{0, 0, 232, kInvalidParameter}, Row{99, 0, 32, kInvalidParameter}})
    {
        BYTE output[256];
        std::memset(output, 0x55, sizeof output);
        EXPECT_EQ(row.status, CallNtPowerInformation(static_cast<POWER_INFORMATION_LEVEL>(row.level),
                                                     row.inputSize == 0 ? nullptr : output, row.inputSize,
                                                     output, row.outputSize));
        EXPECT_EQ(0x55, output[0]);
    }
    EXPECT_EQ(kInvalidParameter, CallNtPowerInformation(SystemBatteryState, nullptr, 0, nullptr, 32));

    WriteValue(HKEY_LOCAL_MACHINE, kAnswers, L"Rate", REG_SZ, TextBytes("fast"));
    SYSTEM_BATTERY_STATE state{};
    EXPECT_EQ(kUnsuccessful, CallNtPowerInformation(SystemBatteryState, nullptr, 0, &state, sizeof state));
}

TEST_F(MachineAnswersTest, HibernationIsAllowedOrNot)
{
    EXPECT_TRUE(IsPwrHibernateAllowed());
    WriteValue(HKEY_LOCAL_MACHINE, kAnswers, L"HibernateAllowed", REG_DWORD, Number(0));
    EXPECT_FALSE(IsPwrHibernateAllowed());
}

} // namespace
