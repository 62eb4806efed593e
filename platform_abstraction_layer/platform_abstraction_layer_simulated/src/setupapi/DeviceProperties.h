// setupapi/DeviceProperties.h
//
// The properties of a device, as the device installer (SPDRP_...) and the configuration manager (CM_DRP_...,
// one above) both give them.
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <vector>

namespace simulated::properties
{

struct Property
{
    DWORD type; ///< REG_...
    std::vector<BYTE> bytes;
};

/// True when `number` (SPDRP_...) names a property at all.
bool IsKnown(DWORD number);

/// The property, or nothing when the device doesn't have it.
std::optional<Property> Read(const std::string& instanceId, DWORD number);

} // namespace simulated::properties
