// modules/setupapi/DeviceNodes.h
//
// What the device installer and the configuration manager both know of a device, which they get by its
// instance id. Known difference: of its properties only the two texts exist.
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <vector>

namespace simulated::nodes
{

/// The number by which this process names a device; the same for the life of the process.
DWORD NumberOf(const std::string& instanceId);

/// The instance id behind a number that was given out; nothing for any other.
std::optional<std::string> IdOf(DWORD number);

/// The setup class of a device; all zeros when it has none.
GUID SetupClassOf(const std::string& instanceId);

/// True when `number` names a property at all: SPDRP_..., which is one below CM_DRP_....
bool IsProperty(DWORD number);

/// The property, a text (REG_SZ) with its terminator; nothing when the device doesn't have it.
std::optional<std::vector<wchar_t>> Property(const std::string& instanceId, DWORD number);

} // namespace simulated::nodes
