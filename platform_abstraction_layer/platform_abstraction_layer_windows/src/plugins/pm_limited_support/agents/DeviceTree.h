// agents/DeviceTree.h
//
// The search for a device in the tree of all devices.
#pragma once

#include <windows.h>

/// The instance id, in `size` characters, of the first device in depth-first order whose description is
/// `description`, case ignored. 0, or 0x80004005, also when there is none.
LONG FindInstanceId(const wchar_t* description, wchar_t* instanceId, ULONG size) noexcept;
