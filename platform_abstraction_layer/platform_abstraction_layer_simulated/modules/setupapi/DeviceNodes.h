// modules/setupapi/DeviceNodes.h
//
// The numbers by which the configuration manager names devices in this process.
#pragma once

#include <windef.h>

#include <optional>
#include <string>

namespace simulated::nodes
{

/// The number of a device that is known by its instance id; the same for the life of the process.
DWORD NumberOf(const std::string& instanceId);

/// The instance id behind a number that was given out; nothing for any other.
std::optional<std::string> IdOf(DWORD number);

} // namespace simulated::nodes
