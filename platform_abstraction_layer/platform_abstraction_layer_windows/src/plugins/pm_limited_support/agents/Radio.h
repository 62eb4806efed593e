// agents/Radio.h
//
// A radio of the embedded controller, for code that treats all alike.
#pragma once

#include "agents/EcAgent.h"

/// The two operations on a radio, of an agent that is set up.
struct Radio
{
    int (CEcAgent::*get)() noexcept;
    int (CEcAgent::*set)(int status) noexcept;
};

inline constexpr Radio kWifiRadio{&CEcAgent::GetWifiStatus, &CEcAgent::SetWifiStatus};
inline constexpr Radio kBluetoothRadio{&CEcAgent::GetBluetoothStatus, &CEcAgent::SetBluetoothStatus};
inline constexpr Radio k3GRadio{&CEcAgent::Get3GStatus, &CEcAgent::Set3GStatus};
