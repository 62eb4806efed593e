// modules/setupapi/DeviceProperties.h
//
// The properties of a device, as the device installer (SPDRP_...) and the configuration manager (CM_DRP_...,
// one above) both give them. Known difference: only the two texts exist.
#pragma once

#include <windef.h>

#include <optional>
#include <string>
#include <vector>

namespace simulated::properties
{

/// True when `number` (SPDRP_...) names a property at all.
bool IsKnown(DWORD number);

/// The property, a text (REG_SZ) with its terminator; nothing when the device doesn't have it.
std::optional<std::vector<wchar_t>> Read(const std::string& instanceId, DWORD number);

} // namespace simulated::properties
