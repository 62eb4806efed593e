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
        m_battery = Open(0, GENERIC_READ | GENERIC_WRITE);
        ASSERT_NE(INVALID_HANDLE_VALUE, m_battery);
        ASSERT_EQ(0U, QueryTag(0));
    }
    void TearDown() override
    {
        CloseHandle(m_battery);
        NotebookTest::TearDown();
    }

    static HANDLE Open(unsigned index, DWORD access)
    {
        std::vector<wchar_t> path =
            ToUtf16(DeviceTree::InterfacePath(Batteries::All()[index], GUID_DEVICE_BATTERY));
        path.push_back(0);
        return CreateFileW(path.data(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                           nullptr);
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
    EXPECT_EQ(0, std::memcmp(information.Chemistry, "LION", 4));
    EXPECT_EQ(57720U, information.DesignedCapacity);
    EXPECT_EQ(50000U, information.FullChargedCapacity);
    EXPECT_EQ(0U, QueryInformation(5, 4));
    const BATTERY_MANUFACTURE_DATE date = {17, 3, 2008};
    EXPECT_EQ(0, std::memcmp(output, &date, sizeof date));
    EXPECT_EQ(0U, QueryInformation(6, 64));
    EXPECT_EQ("Kelvo", ToUtf8(reinterpret_cast<const wchar_t*>(output)));
}

TEST_F(BatteryDeviceTest, ControlsAreChecked)
{
    const ULONG information[] = {tag, 0, 0};
    const BATTERY_WAIT_STATUS status = {tag, 0, 1, 0, 0};
    EXPECT_EQ(87U, Send(kQueryInformation, information, 11, 36));
    EXPECT_EQ(87U, Send(kQueryStatus, &status, 19, 16));
    EXPECT_EQ(122U, Send(kQueryStatus, &status, 20, 15));
    EXPECT_EQ(122U, Send(kQueryTag, &tag, 4, 3));
    EXPECT_EQ(87U, Send(kQueryTag, &tag, 2, 4));
    EXPECT_EQ(0U, Send(kQueryTag, &tag, 0, 4));
    EXPECT_EQ(1U, Send(0x294048, information, 12, 36));
    Batteries::RefuseOpening(0, ERROR_ACCESS_DENIED);
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(0, GENERIC_READ));
    EXPECT_EQ(5U, GetLastError());
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
    ASSERT_TRUE(PowerSource::SetCapacity(50000, 20000));
    ASSERT_TRUE(PowerSource::Unplug());
    ASSERT_TRUE(PowerSource::SetRate(9000));
    BATTERY_STATUS status = QueryStatus();
    EXPECT_EQ(BATTERY_DISCHARGING, status.PowerState);
    EXPECT_EQ(20000U, status.Capacity);
    EXPECT_EQ(-9000, status.Rate);
    ASSERT_TRUE(PowerSource::Plug());
    ASSERT_TRUE(PowerSource::SetRate(9000));
    status = QueryStatus();
    EXPECT_EQ(BATTERY_POWER_ON_LINE | BATTERY_CHARGING, status.PowerState);
    EXPECT_EQ(9000, status.Rate);
    ASSERT_TRUE(PowerSource::SetRate(BATTERY_UNKNOWN_RATE));
    EXPECT_EQ(BATTERY_UNKNOWN_RATE, static_cast<ULONG>(QueryStatus().Rate));

    // Two batteries share by their capacities.
    Batteries::SetValue(0, "FullChargedCapacity", "30000");
    Batteries::SetValue(Batteries::Add(), "FullChargedCapacity", "10000");
    EXPECT_EQ(15000U, QueryStatus().Capacity);

    Batteries::SetStatus(0, BATTERY_STATUS{BATTERY_CRITICAL, 7, 8, -9});
    status = QueryStatus();
    EXPECT_EQ(BATTERY_CRITICAL, status.PowerState);
    EXPECT_EQ(7U, status.Capacity);
    EXPECT_EQ(-9, status.Rate);
    Batteries::SetStatus(0, std::nullopt);
    EXPECT_EQ(15000U, QueryStatus().Capacity);

    ASSERT_TRUE(PowerSource::RemoveBattery());
    EXPECT_EQ(2U, QueryTag(0));
}
