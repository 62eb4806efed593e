// modules/drivers/BatteryDevice.cpp
//
// The battery class driver: opening a battery by its interface path, its tag, its information and its status,
// from the lines of its section in machine.ini (control/Batteries.h) and its share of what the power manager
// says of all batteries. Known differences: a query for the tag that waits looks at the battery every tenth
// of a second of the notebook's clock, and one for the status doesn't wait.

#include "base/Clock.h"
#include "base/Text.h"
#include "machine/DeviceTree.h"
#include "modules/kernel32/Devices.h"
#include "modules/powrprof/PowerStoreMachine.h"

#include <poclass.h>
#include <winbase.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <span>

namespace simulated
{

namespace
{

using power_store::MachineAnswers;

constexpr ULONG kForever = 0xFFFFFFFF;
constexpr ULONG kLookEvery = 100;

std::vector<std::string> Batteries()
{
    return DeviceTree::WithInterface(GUID_DEVICE_BATTERY);
}

// All zeros when the machine has none.
MachineAnswers Power()
{
    MachineAnswers answers{};
    return power_store::ReadMachineAnswers(answers) == ERROR_SUCCESS ? answers : MachineAnswers{};
}

ULONG FullCapacity(const std::string& battery, const MachineAnswers& power)
{
    return DeviceTree::Number(battery, "FullChargedCapacity").value_or(power.battery.MaxCapacity);
}

ULONG PowerState(const MachineAnswers& power)
{
    ULONG state = power.battery.AcOnLine ? BATTERY_POWER_ON_LINE : 0;
    state |= power.battery.Charging ? BATTERY_CHARGING : 0;
    state |= power.battery.Discharging ? BATTERY_DISCHARGING : 0;
    const bool flagsKnown = power.status.BatteryFlag != BATTERY_FLAG_UNKNOWN;
    return state | (flagsKnown && (power.status.BatteryFlag & BATTERY_FLAG_CRITICAL) ? BATTERY_CRITICAL : 0);
}

// 0 when no battery is in the slot.
ULONG TagOf(const std::string& battery, const MachineAnswers& power)
{
    return power.battery.BatteryPresent ? DeviceTree::Number(battery, "Tag").value_or(BATTERY_TAG_INVALID)
                                        : BATTERY_TAG_INVALID;
}

// This battery's part of a figure that the power source gives for all.
ULONG ShareOf(ULONG whole, const std::string& battery, const MachineAnswers& power)
{
    ULONGLONG all = 0;
    for (const std::string& id : Batteries())
    {
        all += TagOf(id, power) == BATTERY_TAG_INVALID ? 0 : FullCapacity(id, power);
    }
    return all == 0 ? 0 : static_cast<ULONG>(ULONGLONG{whole} * FullCapacity(battery, power) / all);
}

LONG RateOf(const std::string& battery, const MachineAnswers& power)
{
    if (power.battery.Rate == BATTERY_UNKNOWN_RATE)
    {
        return static_cast<LONG>(BATTERY_UNKNOWN_RATE);
    }
    const auto rate = static_cast<LONG>(power.battery.Rate);
    const ULONG size = ShareOf(static_cast<ULONG>(rate < 0 ? -rate : rate), battery, power);
    return power.battery.Discharging ? -static_cast<LONG>(size) : static_cast<LONG>(size);
}

// What is returned to the caller.
struct Answer
{
    std::span<BYTE> room;
    DWORD& returned;

    DWORD Put(const void* bytes, std::size_t size)
    {
        if (size > room.size())
        {
            return ERROR_INSUFFICIENT_BUFFER;
        }
        std::memcpy(room.data(), bytes, size);
        returned = static_cast<DWORD>(size);
        return ERROR_SUCCESS;
    }
};

// An unknown information level is refused like an unsupported function.

DWORD PutText(const std::string& battery, const char* key, Answer& answer)
{
    const std::optional<std::string> text = DeviceTree::Value(battery, key);
    if (!text)
    {
        return ERROR_INVALID_FUNCTION;
    }
    std::vector<wchar_t> units = ToUtf16(*text);
    units.push_back(0);
    return answer.Put(units.data(), units.size() * sizeof units[0]);
}

DWORD PutInformation(const std::string& battery, Answer& answer)
{
    const auto number = [&](const char* key) { return DeviceTree::Number(battery, key).value_or(0); };
    BATTERY_INFORMATION information = {};
    information.Capabilities = number("Capabilities");
    information.Technology = static_cast<UCHAR>(number("Technology"));
    const std::string chemistry = DeviceTree::Value(battery, "Chemistry").value_or("");
    std::memcpy(information.Chemistry, chemistry.data(),
                std::min(chemistry.size(), sizeof information.Chemistry));
    information.DesignedCapacity = number("DesignedCapacity");
    information.FullChargedCapacity = FullCapacity(battery, Power());
    information.DefaultAlert1 = number("DefaultAlert1");
    information.DefaultAlert2 = number("DefaultAlert2");
    information.CriticalBias = number("CriticalBias");
    information.CycleCount = number("CycleCount");
    return answer.Put(&information, sizeof information);
}

DWORD PutTemperature(const std::string& battery, Answer& answer)
{
    const std::optional<ULONG> temperature = DeviceTree::Number(battery, "Temperature");
    return temperature ? answer.Put(&*temperature, sizeof *temperature) : DWORD{ERROR_INVALID_FUNCTION};
}

DWORD PutManufactureDate(const std::string& battery, Answer& answer)
{
    const std::string text = DeviceTree::Value(battery, "ManufactureDate").value_or("");
    BATTERY_MANUFACTURE_DATE date = {};
    return std::sscanf(text.c_str(), "%hu-%hhu-%hhu", &date.Year, &date.Month, &date.Day) == 3
               ? answer.Put(&date, sizeof date)
               : DWORD{ERROR_INVALID_FUNCTION};
}

DWORD PutLevel(const std::string& battery, ULONG level, Answer& answer)
{
    switch (level)
    {
    case BatteryInformation:
        return PutInformation(battery, answer);
    case BatteryTemperature:
        return PutTemperature(battery, answer);
    case BatteryManufactureDate:
        return PutManufactureDate(battery, answer);
    case BatteryDeviceName:
        return PutText(battery, "DeviceName", answer);
    case BatteryManufactureName:
        return PutText(battery, "ManufactureName", answer);
    case BatteryUniqueID:
        return PutText(battery, "UniqueID", answer);
    case BatterySerialNumber:
        return PutText(battery, "SerialNumber", answer);
    default:
        return ERROR_INVALID_FUNCTION;
    }
}

DWORD QueryTag(const std::string& battery, std::span<const BYTE> in, Answer& answer)
{
    ULONG wait = 0;
    if (in.size() < sizeof wait)
    {
        return ERROR_INVALID_PARAMETER;
    }
    std::memcpy(&wait, in.data(), sizeof wait);
    const std::uint64_t end = Clock::Now() + wait;
    ULONG tag = BATTERY_TAG_INVALID;
    while ((tag = TagOf(battery, Power())) == BATTERY_TAG_INVALID)
    {
        if (wait != kForever && Clock::Now() >= end)
        {
            return ERROR_FILE_NOT_FOUND;
        }
        Clock::Sleep(kLookEvery);
    }
    return answer.Put(&tag, sizeof tag);
}

bool IsCurrent(const std::string& battery, ULONG tag, const MachineAnswers& power)
{
    return tag != BATTERY_TAG_INVALID && tag == TagOf(battery, power);
}

DWORD QueryInformation(const std::string& battery, std::span<const BYTE> in, Answer& answer)
{
    if (in.size() < sizeof(BATTERY_QUERY_INFORMATION))
    {
        return ERROR_INVALID_PARAMETER;
    }
    // The level may be a number that the enumeration doesn't have.
    ULONG tag = BATTERY_TAG_INVALID;
    ULONG level = 0;
    std::memcpy(&tag, in.data() + offsetof(BATTERY_QUERY_INFORMATION, BatteryTag), sizeof tag);
    std::memcpy(&level, in.data() + offsetof(BATTERY_QUERY_INFORMATION, InformationLevel), sizeof level);
    return IsCurrent(battery, tag, Power()) ? PutLevel(battery, level, answer) : DWORD{ERROR_FILE_NOT_FOUND};
}

DWORD QueryStatus(const std::string& battery, std::span<const BYTE> in, Answer& answer)
{
    BATTERY_WAIT_STATUS query = {};
    if (in.size() < sizeof query)
    {
        return ERROR_INVALID_PARAMETER;
    }
    std::memcpy(&query, in.data(), sizeof query);
    const MachineAnswers power = Power();
    if (!IsCurrent(battery, query.BatteryTag, power))
    {
        return ERROR_FILE_NOT_FOUND;
    }
    // What has a line of its own doesn't follow the power source.
    const std::optional<ULONG> state = DeviceTree::Number(battery, "PowerState");
    const std::optional<ULONG> capacity = DeviceTree::Number(battery, "Capacity");
    const std::optional<ULONG> rate = DeviceTree::Number(battery, "Rate");
    const BATTERY_STATUS status = {state ? *state : PowerState(power),
                                   capacity ? *capacity
                                            : ShareOf(power.battery.RemainingCapacity, battery, power),
                                   DeviceTree::Number(battery, "Voltage").value_or(BATTERY_UNKNOWN_VOLTAGE),
                                   rate ? static_cast<LONG>(*rate) : RateOf(battery, power)};
    return answer.Put(&status, sizeof status);
}

class BatteryDevice : public Device
{
public:
    explicit BatteryDevice(std::string battery) : m_battery(std::move(battery))
    {
    }

    DWORD Control(DWORD code, const void* in, DWORD inSize, void* out, DWORD outSize,
                  DWORD& returned) override
    {
        const std::span<const BYTE> input(static_cast<const BYTE*>(in), inSize);
        Answer answer = {{static_cast<BYTE*>(out), outSize}, returned};
        switch (code)
        {
        case IOCTL_BATTERY_QUERY_TAG:
            return QueryTag(m_battery, input, answer);
        case IOCTL_BATTERY_QUERY_INFORMATION:
            return QueryInformation(m_battery, input, answer);
        case IOCTL_BATTERY_QUERY_STATUS:
            return QueryStatus(m_battery, input, answer);
        default:
            return ERROR_INVALID_FUNCTION;
        }
    }

private:
    std::string m_battery; ///< instance id
};

Outcome<std::shared_ptr<Object>> OpenBattery(std::string_view path, DWORD, DWORD, const PlatformCall&)
{
    for (const std::string& battery : Batteries())
    {
        if (!EqualIgnoringCase(path, DeviceTree::InterfacePath(battery, GUID_DEVICE_BATTERY)))
        {
            continue;
        }
        const DWORD refusal = DeviceTree::Number(battery, "OpenError").value_or(ERROR_SUCCESS);
        return {refusal == ERROR_SUCCESS ? std::make_shared<BatteryDevice>(battery) : nullptr, refusal};
    }
    return {nullptr, ERROR_FILE_NOT_FOUND};
}

const devices::Registration kBattery(&OpenBattery);

} // namespace

} // namespace simulated
