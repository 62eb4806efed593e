// scheme/BatteryQueries.cpp
//
// Battery queries, each with an agent of its own, so that no battery stays open between them.

#include "agents/BatAgent.h"
#include "agents/EcAgent.h"
#include "foundation/EntryLimit.h"
#include "foundation/Results.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr BYTE kNoBattery = 0x80; // also set where the system knows nothing
constexpr const wchar_t* kSection = L"BatteryInforList";

// One of the two lists of named items, by the formats of its keys.
struct ItemList
{
    const wchar_t* count;
    const wchar_t* name;
    const wchar_t* start;
    const wchar_t* size;
};
constexpr ItemList kExtendedItems{L"BEAItemNum", L"BEAName%d", L"BEAStart%d", L"BEASize%d"};
constexpr ItemList kSystemItems{L"BAItemNum", L"BAName%d", L"BAStart%d", L"BASize%d"};

// Reads the name of an item; false for none.
bool ReadName(CORVLCfg& root, const ItemList& list, int item, files::ShortText& name) noexcept
{
    return root.GetString(kSection, files::NumberedKey(list.name, item).Text(), name) > 0;
}

// The number of the item of that name, or -1.
int FindItem(CORVLCfg& root, const ItemList& list, const wchar_t* name) noexcept
{
    files::ShortText found;
    const int count = EntryLimit().Take(root.GetInt(kSection, list.count, 0),
                                        [&](int item) { return ReadName(root, list, item, found); });
    for (int item = 0; item < count; ++item)
    {
        if (ReadName(root, list, item, found) && text::Equal(found, name))
        {
            return item;
        }
    }
    return -1;
}

bool ReadRecord(int, _BATTERY_EXTEND_FIELDS& fields) noexcept
{
    CEcAgent agent;
    return agent.Setup() >= 0 && agent.GetBatteryExtends(&fields, kExtendedBatteryRecord) == kSucceeded;
}

bool ReadRecord(int battery, _BATTERY_INFORMATION& info) noexcept
{
    CBatAgent agent;
    return agent.Setup() == kSucceeded && agent.GetInfo(battery, info) == kSucceeded;
}

// Copies an item out of the record of its list. -1 when the item doesn't lie in the record, or it can't be
// read.
template <class Record>
int CopyItem(CORVLCfg& root, const ItemList& list, int item, int battery, ULONG* value) noexcept
{
    // What is negative or missing lies behind every record.
    const auto start =
        static_cast<std::size_t>(root.GetInt(kSection, files::NumberedKey(list.start, item).Text(), -1));
    const auto size =
        static_cast<std::size_t>(root.GetInt(kSection, files::NumberedKey(list.size, item).Text(), -1));
    Record record = {};
    if (size > sizeof record || start > sizeof record - size || !ReadRecord(battery, record))
    {
        return -1;
    }
    std::memcpy(value, reinterpret_cast<const unsigned char*>(&record) + start, size);
    return 0;
}

} // namespace

ULONG CSchemeEx::GetBatteryCount() noexcept
{
    SYSTEM_POWER_STATUS status = {};
    if (!::GetSystemPowerStatus(&status) || (status.BatteryFlag & kNoBattery) != 0)
    {
        return 0;
    }
    CBatAgent agent;
    return agent.Setup() == kSucceeded ? agent.GetBatteryCount() : 0;
}

int CSchemeEx::GetBatteryStatus(int index, _BATTERY_STATUS& status) noexcept
{
    CBatAgent agent;
    return agent.Setup() == kSucceeded && agent.GetStatus(index, status) == kSucceeded ? 0 : -1;
}

int CSchemeEx::GetSystemPowerStatus(_SYSTEM_POWER_STATUS* status) noexcept
{
    return ::GetSystemPowerStatus(status);
}

ULONG CSchemeEx::GetCompleteTime(int index) noexcept
{
    CBatAgent agent;
    return agent.Setup() == kSucceeded ? agent.GetCompleteTime(index) : 0;
}

ULONG CSchemeEx::GetRemainingUsageTime(int index) noexcept
{
    CBatAgent agent;
    return agent.Setup() == kSucceeded ? agent.GetRemainingUsageTime(index) : 0;
}

LONG CSchemeEx::GetBatteryInfo(int index, _BATTERY_INFORMATION& info) noexcept
{
    CBatAgent agent;
    return agent.Setup() == kSucceeded ? agent.GetInfo(index, info) : 0;
}

float CSchemeEx::GetRemainBatPer(int index) noexcept
{
    // Only the system's state is read here, so no battery is opened.
    CBatAgent agent;
    return std::min(agent.GetRemainBatPer(index), 1.0F);
}

ULONG CSchemeEx::GetRemainCapacity(int index) noexcept
{
    if (index != 0)
    {
        return 0;
    }
    CBatAgent agent;
    return agent.Setup() == kSucceeded ? agent.GetRemainCapacity(index) : 0;
}

int CSchemeEx::GetBatteryInformation(int index, wchar_t const* name, ULONG* value) noexcept
{
    CORVLCfg root;
    if (name == nullptr || value == nullptr || !files::OpenRoot(root))
    {
        return -1;
    }
    if (const int item = FindItem(root, kExtendedItems, name); item >= 0)
    {
        return CopyItem<_BATTERY_EXTEND_FIELDS>(root, kExtendedItems, item, index, value);
    }
    if (const int item = FindItem(root, kSystemItems, name); item >= 0)
    {
        return CopyItem<_BATTERY_INFORMATION>(root, kSystemItems, item, index, value);
    }
    return 0;
}
