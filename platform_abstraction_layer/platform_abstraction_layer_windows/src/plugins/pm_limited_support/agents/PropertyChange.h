// agents/PropertyChange.h
//
// The request record by which the device installer changes a device's state.
#pragma once

#include <windows.h>

#include <setupapi.h>

/// A change to `stateChange` in all profiles or in the present one, as `scope` says.
inline SP_PROPCHANGE_PARAMS PropertyChange(DWORD stateChange, DWORD scope) noexcept
{
    return {{sizeof(SP_CLASSINSTALL_HEADER), DIF_PROPERTYCHANGE}, stateChange, scope, 0};
}

/// Hands the request to the installer as the device's parameters.
[[nodiscard]] inline bool SetPropertyChange(HDEVINFO devices, SP_DEVINFO_DATA& device,
                                            SP_PROPCHANGE_PARAMS& change) noexcept
{
    return SetupDiSetClassInstallParamsW(devices, &device, &change.ClassInstallHeader, sizeof change) !=
           FALSE;
}

/// An empty record for a device of a list.
inline SP_DEVINFO_DATA EmptyDeviceRecord() noexcept
{
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof device;
    return device;
}

// A header of 8 bytes, 20 in all; 28 for a device record where a pointer has 4.
static_assert(sizeof(SP_CLASSINSTALL_HEADER) == 8 && sizeof(SP_PROPCHANGE_PARAMS) == 20);
static_assert(sizeof(void*) != 4 || sizeof(SP_DEVINFO_DATA) == 28);
