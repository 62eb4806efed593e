// base/PlugInModule.h
//
// Which part of the process is the plug-in: the trace tells its calls from those of host and tests by the
// address that a call returns to.
#pragma once

namespace simulated
{

/// True when `address` lies in the loaded plug-in.
bool IsInPlugIn(const void* address) noexcept;

/// Notes that the plug-in occupies the addresses from `begin` up to `end`; null and null when it is unloaded.
void SetPlugInRange(const void* begin, const void* end) noexcept;

} // namespace simulated
