// drivers/BatteryDeviceTest.cpp
//
// The battery class driver: tags, information, status, and how both follow the power source.

#include "notebook/Batteries.h"
#include "notebook/Clock.h"
#include "notebook/DeviceTree.h"
#include "notebook/PowerSource.h"
#include "notebook/Text.h"
#include "support/NotebookTest.h"

#include <windows.h>

#include <poclass.h>

#include <cstring>

namespace
{

using namespace simulated;

constexpr DWORD kQueryTag = 0x294040;
constexpr DWORD kQueryInformation = 0x294044;
constexpr DWORD kQueryStatus = 0x29404C;

} // namespace

class BatteryDeviceTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        std::vector<wchar_t> path =
            ToUtf16(DeviceTree::InterfacePath(Batteries::All()[0], GUID_DEVICE_BATTERY) + '\0');
        m_battery = CreateFileW(path.data(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, m_battery);
        ASSERT_EQ(0U, QueryTag(0));
    }
    void TearDown() override
    {
        CloseHandle(m_battery);
        NotebookTest::TearDown();
    }

    DWORD Send(DWORD code, const void* input, DWORD inputSize, DWORD outputSize)
    {
        std::memset(output, 0xCC, sizeof output);
        returned = 0;
        const auto* const bytes = static_cast<const BYTE*>(input);
        std::vector<BYTE> in(bytes, bytes + inputSize);
        return DeviceIoControl(m_battery, code, in.data(), inputSize, output, outputSize, &returned, nullptr)
                   ? DWORD{ERROR_SUCCESS}
                   : GetLastError();
    }
    DWORD QueryTag(ULONG wait)
    {
        const DWORD error = Send(kQueryTag, &wait, 4, 4);
        std::memcpy(&tag, output, sizeof tag);
        return error;
    }
    DWORD QueryInformation(ULONG level, DWORD size)
    {
        const ULONG query[] = {tag, level, 0};
        return Send(kQueryInformation, query, sizeof query, size);
    }
    BATTERY_STATUS QueryStatus()
    {
        const BATTERY_WAIT_STATUS query = {tag, 0, BATTERY_POWER_ON_LINE, 0, 0};
        EXPECT_EQ(0U, Send(kQueryStatus, &query, sizeof query, sizeof(BATTERY_STATUS)));
        BATTERY_STATUS status = {};
        std::memcpy(&status, output, sizeof status);
        return status;
    }

    BYTE output[64] = {};
    DWORD returned = 0;
    ULONG tag = 0;

private:
    HANDLE m_battery = INVALID_HANDLE_VALUE;
};

TEST_F(BatteryDeviceTest, InformationLevels)
{
    const struct
    {
        ULONG level;
        DWORD room;
        DWORD error;
        DWORD size;
    } cases[] = {
        {0, 36, 0, 36}, {0, 35, 122, 0}, {2, 4, 0, 4},   {2, 3, 122, 0}, {5, 4, 0, 4},
        {6, 64, 0, 12}, {6, 11, 122, 0}, {7, 64, 0, 36}, {8, 12, 0, 12}, {8, 11, 122, 0},
        {1, 64, 1, 0},  {3, 64, 1, 0},   {9, 64, 1, 0},  {99, 64, 1, 0},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.level);
        EXPECT_EQ(row.error, QueryInformation(row.level, row.room));
        EXPECT_EQ(row.size, returned);
    }
    Batteries::SetValue(0, "FullChargedCapacity", "50000");
    EXPECT_EQ(0U, QueryInformation(0, 36));
    BATTERY_INFORMATION information = {};
    std::memcpy(&information, output, sizeof information);
    EXPECT_EQ(57720U, information.DesignedCapacity);
    EXPECT_EQ(50000U, information.FullChargedCapacity);
}

TEST_F(BatteryDeviceTest, ControlsAreChecked)
{
    const ULONG words[] = {tag, 0, 1, 0, 0};
    const struct
    {
        DWORD code;
        DWORD inputSize;
        DWORD outputSize;
        DWORD error;
    } cases[] = {
        {kQueryInformation, 11, 36, 87}, {kQueryStatus, 19, 16, 87}, {kQueryStatus, 20, 15, 122},
        {kQueryTag, 4, 3, 122},          {kQueryTag, 2, 4, 87},      {kQueryTag, 0, 4, 0},
        {0x294048, 12, 36, 1},
    };
    for (const auto& row : cases)
    {
        EXPECT_EQ(row.error, Send(row.code, words, row.inputSize, row.outputSize)) << row.code;
    }
}

TEST_F(BatteryDeviceTest, AnotherBatteryMakesTheTagStale)
{
    Batteries::Eject(0);
    const std::uint64_t begin = Clock::Now();
    EXPECT_EQ(2U, QueryTag(5000));
    EXPECT_GE(Clock::Now() - begin, 5000U);
    tag = 1;
    EXPECT_EQ(2U, QueryInformation(0, 36));
    Batteries::Insert(0);
    EXPECT_EQ(2U, QueryInformation(0, 36));
    EXPECT_EQ(0U, QueryTag(5000));
    EXPECT_EQ(2U, tag);
    EXPECT_EQ(0U, QueryInformation(0, 36));
}

TEST_F(BatteryDeviceTest, StatusFollowsThePowerSource)
{
    const auto expectStatus = [this](ULONG powerState, ULONG capacity, LONG rate)
    {
        const BATTERY_STATUS status = QueryStatus();
        EXPECT_EQ(powerState, status.PowerState);
        EXPECT_EQ(capacity, status.Capacity);
        EXPECT_EQ(rate, status.Rate);
    };
    ASSERT_TRUE(PowerSource::SetCapacity(50000, 20000));
    ASSERT_TRUE(PowerSource::Unplug());
    ASSERT_TRUE(PowerSource::SetRate(9000));
    expectStatus(BATTERY_DISCHARGING, 20000, -9000);
    ASSERT_TRUE(PowerSource::Plug());
    ASSERT_TRUE(PowerSource::SetRate(9000));
    expectStatus(BATTERY_POWER_ON_LINE | BATTERY_CHARGING, 20000, 9000);
    ASSERT_TRUE(PowerSource::SetRate(BATTERY_UNKNOWN_RATE));
    const auto unknown = static_cast<LONG>(BATTERY_UNKNOWN_RATE);
    expectStatus(BATTERY_POWER_ON_LINE | BATTERY_CHARGING, 20000, unknown);

    // Two batteries share by their capacities.
    Batteries::SetValue(0, "FullChargedCapacity", "30000");
    Batteries::SetValue(Batteries::Add(), "FullChargedCapacity", "10000");
    expectStatus(BATTERY_POWER_ON_LINE | BATTERY_CHARGING, 15000, unknown);
    Batteries::SetStatus(0, BATTERY_STATUS{BATTERY_CRITICAL, 7, 8, -9});
    expectStatus(BATTERY_CRITICAL, 7, -9);
    Batteries::SetStatus(0, std::nullopt);
    expectStatus(BATTERY_POWER_ON_LINE | BATTERY_CHARGING, 15000, unknown);

    ASSERT_TRUE(PowerSource::RemoveBattery());
    EXPECT_EQ(2U, QueryTag(0));
}
