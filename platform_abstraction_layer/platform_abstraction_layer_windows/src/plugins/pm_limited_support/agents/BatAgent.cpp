// agents/BatAgent.cpp
//
// Opens the batteries, asks their driver, and reckons with the system's battery state.

#include "agents/BatAgent.h"

#include "foundation/Log.h"
#include "foundation/Owners.h"
#include "foundation/PowerProfile.h"
#include "foundation/Results.h"

#include <setupapi.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace
{

// The interface class of batteries, {72631E54-78A4-11D0-BCF7-00AA00B7B32A}.
constexpr GUID kBatteryInterface = {
    0x72631E54, 0x78A4, 0x11D0, {0xBC, 0xF7, 0x00, 0xAA, 0x00, 0xB7, 0xB3, 0x2A}};

constexpr ULONG kTagPatience = 5000; ///< milliseconds
constexpr ULONG kSecondsPerHour = 3600;
constexpr ULONG kUnknownTime = 0xFFFFFFFF;

static_assert(sizeof(BATTERY_QUERY_INFORMATION) == 12 && sizeof(BATTERY_WAIT_STATUS) == 20);
static_assert(sizeof(BATTERY_INFORMATION) == 36 && sizeof(BATTERY_STATUS) == 16);
static_assert(sizeof(BATTERY_MANUFACTURE_DATE) == 4 && sizeof(SYSTEM_BATTERY_STATE) == 32);
static_assert(IOCTL_BATTERY_QUERY_TAG == 0x294040 && IOCTL_BATTERY_QUERY_INFORMATION == 0x294044 &&
              IOCTL_BATTERY_QUERY_STATUS == 0x29404C);

enum class Found
{
    Battery,
    End,
    Failure
};

// Opens the battery of that number. `battery` is INVALID_HANDLE_VALUE for one that can't be opened.
Found OpenBattery(HDEVINFO list, DWORD index, HANDLE& battery) noexcept
{
    SP_DEVICE_INTERFACE_DATA interfaceData = {};
    interfaceData.cbSize = sizeof interfaceData;
    if (!SetupDiEnumDeviceInterfaces(list, nullptr, &kBatteryInterface, index, &interfaceData))
    {
        return GetLastError() == ERROR_NO_MORE_ITEMS ? Found::End : Found::Failure;
    }

    // Without a buffer the call has to fail and only tells the size.
    DWORD size = 0;
    if (SetupDiGetDeviceInterfaceDetailW(list, &interfaceData, nullptr, 0, &size, nullptr) ||
        size < sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W))
    {
        return Found::Failure;
    }
    const owners::HeapBlock block = owners::AllocateBlock(size);
    if (!block)
    {
        return Found::Failure;
    }
    auto* detail = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(block.Get());
    detail->cbSize = sizeof *detail;
    if (!SetupDiGetDeviceInterfaceDetailW(list, &interfaceData, detail, size, &size, nullptr))
    {
        return Found::Failure;
    }
    battery = CreateFileW(detail->DevicePath, GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    return Found::Battery;
}

// The state of the whole system's battery, for which battery 0 alone stands; all zeros when the system gives
// none.
std::optional<SYSTEM_BATTERY_STATE> ReadSystemState(int index) noexcept
{
    if (index != 0)
    {
        return std::nullopt;
    }
    SYSTEM_BATTERY_STATE state = {};
    CallNtPowerInformation(SystemBatteryState, nullptr, 0, &state, sizeof state);
    return state;
}

// The seconds that `capacity` takes while charging, -1 when nothing flows; the system's estimate while
// discharging, else -1.
ULONG TimeFor(ULONG capacity, const SYSTEM_BATTERY_STATE& state) noexcept
{
    if (state.Charging)
    {
        return state.Rate == 0 ? kUnknownTime : capacity * kSecondsPerHour / state.Rate;
    }
    return state.Discharging ? state.EstimatedTime : kUnknownTime;
}

} // namespace

CBatAgent::CBatAgent(const CBatAgent&) noexcept = default;
CBatAgent& CBatAgent::operator=(const CBatAgent&) noexcept = default;

CBatAgent::CBatAgent() noexcept : m_hBattery(), m_nBatteryTag(), m_nBatteryCount()
{
    std::fill(std::begin(m_hBattery), std::end(m_hBattery), INVALID_HANDLE_VALUE);
}

CBatAgent::~CBatAgent()
{
    Cleanup();
}

ULONG CBatAgent::GetVersion() noexcept
{
    return kClassVersion;
}

LONG CBatAgent::Setup() noexcept
{
    Cleanup();
    const owners::DeviceList list(
        SetupDiGetClassDevsW(&kBatteryInterface, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE));
    m_nBatteryCount = 0;
    Found found = list ? Found::Battery : Found::Failure;
    for (int index = 0; found == Found::Battery && index < kMaxBatteries; ++index)
    {
        found = OpenBattery(list.Get(), static_cast<DWORD>(index), m_hBattery[index]);
        if (found == Found::Battery)
        {
            QueryBatteryTag(index);
            ++m_nBatteryCount;
        }
    }
    return Check(found != Found::Failure, L"Setup of the batteries failed for 0x%x\n") ? kSucceeded
                                                                                       : kGeneralFailure;
}

LONG CBatAgent::Cleanup() noexcept
{
    for (HANDLE& battery : m_hBattery)
    {
        if (battery != INVALID_HANDLE_VALUE)
        {
            CloseHandle(battery);
            battery = INVALID_HANDLE_VALUE;
        }
    }
    return kSucceeded;
}

LONG CBatAgent::Reset() noexcept
{
    return kSucceeded;
}

ULONG CBatAgent::GetBatteryCount() noexcept
{
    return m_nBatteryCount;
}

bool CBatAgent::IsOpen(int index) const noexcept
{
    return index >= 0 && index < kMaxBatteries && m_hBattery[index] != INVALID_HANDLE_VALUE;
}

LONG CBatAgent::QueryBatteryTag(int index) noexcept
{
    if (!IsOpen(index))
    {
        return kBadArgument;
    }
    ULONG patience = kTagPatience;
    DWORD returned = 0;
    return DeviceIoControl(m_hBattery[index], IOCTL_BATTERY_QUERY_TAG, &patience, sizeof patience,
                           &m_nBatteryTag[index], sizeof m_nBatteryTag[index], &returned, nullptr)
               ? kSucceeded
               : kGeneralFailure;
}

LONG CBatAgent::QueryBatteryInfo(int index, BATTERY_QUERY_INFORMATION_LEVEL level, void* buffer,
                                 ULONG size) noexcept
{
    if (!IsOpen(index) || buffer == nullptr)
    {
        return kBadArgument;
    }
    BATTERY_QUERY_INFORMATION query = {m_nBatteryTag[index], level, 0};
    DWORD returned = 0;
    const BOOL answered = DeviceIoControl(m_hBattery[index], IOCTL_BATTERY_QUERY_INFORMATION, &query,
                                          sizeof query, buffer, size, &returned, nullptr);
    if (!answered)
    {
        DBGOUT(L"IOCTL_BATTERY_QUERY_INFORMATION failed with return %d", answered);
        return kGeneralFailure;
    }
    return kSucceeded;
}

LONG CBatAgent::QueryText(int index, BATTERY_QUERY_INFORMATION_LEVEL level, wchar_t* text, int size) noexcept
{
    return size < 0 ? kBadArgument : QueryBatteryInfo(index, level, text, static_cast<ULONG>(size));
}

LONG CBatAgent::GetInfo(int index, _BATTERY_INFORMATION& info) noexcept
{
    return QueryBatteryInfo(index, BatteryInformation, &info, sizeof info);
}

LONG CBatAgent::GetTemperature(int index, ULONG& value) noexcept
{
    return QueryBatteryInfo(index, BatteryTemperature, &value, sizeof value);
}

LONG CBatAgent::GetManufactureDate(int index, _BATTERY_MANUFACTURE_DATE& date) noexcept
{
    return QueryBatteryInfo(index, BatteryManufactureDate, &date, sizeof date);
}

LONG CBatAgent::GetManufactureName(int index, wchar_t* text, int size) noexcept
{
    return QueryText(index, BatteryManufactureName, text, size);
}

LONG CBatAgent::GetUniqueID(int index, wchar_t* text, int size) noexcept
{
    return QueryText(index, BatteryUniqueID, text, size);
}

LONG CBatAgent::GetSerialNumber(int index, wchar_t* text, int size) noexcept
{
    return QueryText(index, BatterySerialNumber, text, size);
}

LONG CBatAgent::GetStatus(int index, _BATTERY_STATUS& status) noexcept
{
    if (!IsOpen(index))
    {
        return kBadArgument;
    }
    // Without patience, so that the driver answers at once and the state asked for doesn't matter.
    BATTERY_WAIT_STATUS wait = {m_nBatteryTag[index], 0, BATTERY_POWER_ON_LINE, 0, 0};
    DWORD returned = 0;
    if (!DeviceIoControl(m_hBattery[index], IOCTL_BATTERY_QUERY_STATUS, &wait, sizeof wait, &status,
                         sizeof status, &returned, nullptr))
    {
        DBGOUT(L"IOCTL_BATTERY_QUERY_STATUS failed for %x with %d", GetLastError(), returned);
        return kGeneralFailure;
    }
    return kSucceeded;
}

int CBatAgent::GetSystemPowerStatus(_SYSTEM_POWER_STATUS* status) noexcept
{
    return ::GetSystemPowerStatus(status);
}

ULONG CBatAgent::GetCompleteTime(int index) noexcept
{
    const auto state = ReadSystemState(index);
    if (state && state->Charging && state->Rate == 0)
    {
        DBGOUT(L"Rate=%d", state->Rate);
    }
    return state ? TimeFor(state->MaxCapacity - state->RemainingCapacity, *state) : 0;
}

ULONG CBatAgent::GetRemainingUsageTime(int index) noexcept
{
    const auto state = ReadSystemState(index);
    return state ? TimeFor(state->RemainingCapacity, *state) : 0;
}

float CBatAgent::GetRemainBatPer(int index) noexcept
{
    const auto state = ReadSystemState(index);
    return state && state->MaxCapacity != 0
               ? static_cast<float>(static_cast<double>(state->RemainingCapacity) / state->MaxCapacity)
               : 0.0F;
}

ULONG CBatAgent::GetRemainCapacity(int index) noexcept
{
    const auto state = ReadSystemState(index);
    return state && state->MaxCapacity != 0 ? state->RemainingCapacity : 0;
}
