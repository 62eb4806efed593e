// modules/drivers/PanelBridge.h
//
// The COM class that the graphics driver installs.
#pragma once

#include "base/PlatformCall.h"

namespace simulated::panel_bridge
{

inline constexpr const char* kProgId = "Pixlink.PanelBridge";
inline constexpr CLSID kClassId = {
    0x3E1B7F5A, 0x90C4, 0x4D27, {0xA6, 0x1D, 0x5B, 0x0E, 0x77, 0x48, 0xC2, 0x9F}};

/// Creates an object and returns the requested interface, with one reference.
HRESULT Create(REFIID interfaceId, void** object, const PlatformCall& call);

} // namespace simulated::panel_bridge
