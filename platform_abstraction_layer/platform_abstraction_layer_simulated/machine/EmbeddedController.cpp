// machine/EmbeddedController.cpp
//
// The controller's items and the firmware's methods in machine.ini.

#include "machine/EmbeddedController.h"

#include "base/HexText.h"
#include "machine/Machine.h"

#include <algorithm>

namespace simulated
{

namespace
{

constexpr const char* kItems = "EmbeddedController";
constexpr const char* kMethods = "ControlMethods";

std::string ItemKey(DWORD item)
{
    return ToHex(item, 2);
}

std::string BatteryKey(DWORD selector)
{
    return "EBTR " + ToHex(selector, 2);
}

std::optional<DWORD> ReadWord(const char* section, const std::string& key)
{
    const auto number = Machine::ReadNumber(section, key);
    return number ? std::optional(static_cast<DWORD>(*number)) : std::nullopt;
}

} // namespace

std::optional<DWORD> EmbeddedController::Item(DWORD item)
{
    return ReadWord(kItems, ItemKey(item));
}

void EmbeddedController::SetItem(DWORD item, DWORD value)
{
    Machine::Write(kItems, ItemKey(item), ToHex(value, 2));
}

void EmbeddedController::RemoveItem(DWORD item)
{
    Machine::Remove(kItems, ItemKey(item));
}

std::optional<DWORD> EmbeddedController::Method(const std::string& name)
{
    return ReadWord(kMethods, name);
}

void EmbeddedController::SetMethod(const std::string& name, DWORD answer)
{
    Machine::Write(kMethods, name, ToHex(answer, 8));
}

std::optional<EmbeddedController::BatteryRows> EmbeddedController::Battery(DWORD selector)
{
    const std::optional<std::string> text = Machine::Read(kMethods, BatteryKey(selector));
    const auto words = text ? ParseWords(*text) : std::nullopt;
    BatteryRows rows = {};
    if (!words || words->size() != rows.size())
    {
        return std::nullopt;
    }
    std::copy(words->begin(), words->end(), rows.begin());
    return rows;
}

void EmbeddedController::SetBattery(DWORD selector, const BatteryRows& rows)
{
    Machine::Write(kMethods, BatteryKey(selector), ToWords(rows));
}

void EmbeddedController::RemoveBattery(DWORD selector)
{
    Machine::Remove(kMethods, BatteryKey(selector));
}

} // namespace simulated
