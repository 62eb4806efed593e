// modules/drivers/BatteryDevice.cpp
//
// The battery class driver: opening a battery by its interface path, its tag, its information and its status.
// Known difference: a waiting query looks at the battery every tenth of a second of the notebook's clock.

#include "base/Clock.h"
#include "base/Text.h"
#include "machine/DeviceTree.h"
#include "modules/drivers/BatteryAnswers.h"
#include "modules/kernel32/Devices.h"

#include <winbase.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <span>

namespace simulated
{

namespace
{

constexpr ULONG kForever = 0xFFFFFFFF;
constexpr ULONG kLookEvery = 100;

// What goes back to the caller.
struct Answer
{
    std::span<BYTE> room;
    DWORD returned = 0;

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

// A level that a battery knows nothing of is refused like a function that it doesn't have.

template <class Value>
DWORD PutIfKnown(const std::optional<Value>& value, Answer& answer)
{
    return value ? answer.Put(&*value, sizeof *value) : DWORD{ERROR_INVALID_FUNCTION};
}

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
    const BATTERY_INFORMATION information = batteries::Information(battery);
    return answer.Put(&information, sizeof information);
}

struct Level
{
    BATTERY_QUERY_INFORMATION_LEVEL number;
    DWORD (*put)(const std::string& battery, Answer& answer);
};

constexpr Level kLevels[] = {
    {BatteryInformation, &PutInformation},
    {BatteryTemperature, [](const std::string& battery, Answer& answer)
     { return PutIfKnown(batteries::Temperature(battery), answer); }},
    {BatteryDeviceName,
     [](const std::string& battery, Answer& answer) { return PutText(battery, "DeviceName", answer); }},
    {BatteryManufactureDate, [](const std::string& battery, Answer& answer)
     { return PutIfKnown(batteries::ManufactureDate(battery), answer); }},
    {BatteryManufactureName,
     [](const std::string& battery, Answer& answer) { return PutText(battery, "ManufactureName", answer); }},
    {BatteryUniqueID,
     [](const std::string& battery, Answer& answer) { return PutText(battery, "UniqueID", answer); }},
    {BatterySerialNumber,
     [](const std::string& battery, Answer& answer) { return PutText(battery, "SerialNumber", answer); }},
};

// Waits up to `milliseconds` until `isThere` answers true; what it answered last.
template <class Condition>
bool WaitFor(ULONG milliseconds, Condition isThere)
{
    const std::uint64_t end = Clock::Now() + milliseconds;
    while (!isThere())
    {
        if (milliseconds != kForever && Clock::Now() >= end)
        {
            return false;
        }
        Clock::Sleep(kLookEvery);
    }
    return true;
}

DWORD QueryTag(const std::string& battery, std::span<const BYTE> in, Answer& answer)
{
    // Without input the query doesn't wait.
    ULONG wait = 0;
    if (!in.empty() && in.size() < sizeof wait)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (!in.empty())
    {
        std::memcpy(&wait, in.data(), sizeof wait);
    }
    if (answer.room.size() < sizeof(ULONG))
    {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    ULONG tag = BATTERY_TAG_INVALID;
    if (!WaitFor(wait, [&] { return (tag = batteries::Tag(battery)) != BATTERY_TAG_INVALID; }))
    {
        return ERROR_FILE_NOT_FOUND;
    }
    return answer.Put(&tag, sizeof tag);
}

bool IsCurrent(const std::string& battery, ULONG tag)
{
    return tag != BATTERY_TAG_INVALID && tag == batteries::Tag(battery);
}

DWORD QueryInformation(const std::string& battery, std::span<const BYTE> in, Answer& answer)
{
    if (in.size() < sizeof(BATTERY_QUERY_INFORMATION))
    {
        return ERROR_INVALID_PARAMETER;
    }
    // The level may be a number that the enumeration doesn't have.
    ULONG tag = BATTERY_TAG_INVALID;
    ULONG number = 0;
    std::memcpy(&tag, in.data() + offsetof(BATTERY_QUERY_INFORMATION, BatteryTag), sizeof tag);
    std::memcpy(&number, in.data() + offsetof(BATTERY_QUERY_INFORMATION, InformationLevel), sizeof number);
    if (!IsCurrent(battery, tag))
    {
        return ERROR_FILE_NOT_FOUND;
    }
    const auto* const level =
        std::find_if(std::begin(kLevels), std::end(kLevels),
                     [&](const Level& row) { return static_cast<ULONG>(row.number) == number; });
    return level == std::end(kLevels) ? DWORD{ERROR_INVALID_FUNCTION} : level->put(battery, answer);
}

DWORD QueryStatus(const std::string& battery, std::span<const BYTE> in, Answer& answer)
{
    BATTERY_WAIT_STATUS query = {};
    if (in.size() < sizeof query)
    {
        return ERROR_INVALID_PARAMETER;
    }
    std::memcpy(&query, in.data(), sizeof query);
    if (answer.room.size() < sizeof(BATTERY_STATUS))
    {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    // A query that waits ends early when the battery leaves what the caller thinks of it.
    BATTERY_STATUS status = {};
    bool isGone = false;
    WaitFor(query.Timeout,
            [&]
            {
                isGone = !IsCurrent(battery, query.BatteryTag);
                status = batteries::Status(battery);
                return isGone || status.PowerState != query.PowerState ||
                       status.Capacity < query.LowCapacity || status.Capacity > query.HighCapacity;
            });
    return isGone ? DWORD{ERROR_FILE_NOT_FOUND} : answer.Put(&status, sizeof status);
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
        struct Row
        {
            DWORD code;
            DWORD (*query)(const std::string&, std::span<const BYTE>, Answer&);
        };
        static constexpr Row kRows[] = {
            {IOCTL_BATTERY_QUERY_TAG, &QueryTag},
            {IOCTL_BATTERY_QUERY_INFORMATION, &QueryInformation},
            {IOCTL_BATTERY_QUERY_STATUS, &QueryStatus},
        };
        const auto* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                             [&](const Row& candidate) { return candidate.code == code; });
        if (row == std::end(kRows))
        {
            return ERROR_INVALID_FUNCTION;
        }
        Answer answer = {{static_cast<BYTE*>(out), outSize}};
        const DWORD error = row->query(m_battery, {static_cast<const BYTE*>(in), inSize}, answer);
        returned = error == ERROR_SUCCESS ? answer.returned : 0;
        return error;
    }

private:
    std::string m_battery; ///< instance id
};

Outcome<std::shared_ptr<Object>> OpenBattery(std::string_view path, DWORD, DWORD, const PlatformCall&)
{
    for (const std::string& battery : batteries::All())
    {
        if (!EqualIgnoringCase(path, DeviceTree::InterfacePath(battery, GUID_DEVICE_BATTERY)))
        {
            continue;
        }
        const DWORD refusal = batteries::OpenError(battery);
        if (refusal != ERROR_SUCCESS)
        {
            return {nullptr, refusal};
        }
        return {std::make_shared<BatteryDevice>(battery)};
    }
    return {nullptr, ERROR_FILE_NOT_FOUND};
}

const devices::Registration kBattery(&OpenBattery);

} // namespace

} // namespace simulated
