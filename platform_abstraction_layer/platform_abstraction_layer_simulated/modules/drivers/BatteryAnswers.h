// modules/drivers/BatteryAnswers.h
//
// What a battery's class driver answers, by instance id: the lines of the battery's section in machine.ini
// (control/Batteries.h), and its share of what the power manager says of all batteries.
#pragma once

#include <poclass.h>

#include <optional>
#include <string>
#include <vector>

namespace simulated::batteries
{

/// Instance ids in the order in which they are found.
std::vector<std::string> All();

/// The error by which opening the battery is refused; ERROR_SUCCESS when it isn't.
DWORD OpenError(const std::string& instanceId);

/// 0 when no battery is in the slot.
ULONG Tag(const std::string& instanceId);

BATTERY_INFORMATION Information(const std::string& instanceId);
BATTERY_STATUS Status(const std::string& instanceId);

/// Nothing when the battery doesn't know it.
std::optional<ULONG> Temperature(const std::string& instanceId);
std::optional<BATTERY_MANUFACTURE_DATE> ManufactureDate(const std::string& instanceId);

} // namespace simulated::batteries
