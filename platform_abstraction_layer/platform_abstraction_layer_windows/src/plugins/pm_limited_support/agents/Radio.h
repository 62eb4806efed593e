// agents/Radio.h
//
// A radio of the embedded controller by its name, for code that treats all alike.
#pragma once

#include "agents/EcAgent.h"

enum class Radio
{
    Wifi,
    Bluetooth,
    ThreeG,
};

/// The state of a radio; the agent is set up.
inline int GetRadio(CEcAgent& agent, Radio radio) noexcept
{
    switch (radio)
    {
    case Radio::Wifi:
        return agent.GetWifiStatus();
    case Radio::Bluetooth:
        return agent.GetBluetoothStatus();
    case Radio::ThreeG:
        break;
    }
    return agent.Get3GStatus();
}

/// Switches a radio; the agent is set up.
inline int SetRadio(CEcAgent& agent, Radio radio, int status) noexcept
{
    switch (radio)
    {
    case Radio::Wifi:
        return agent.SetWifiStatus(status);
    case Radio::Bluetooth:
        return agent.SetBluetoothStatus(status);
    case Radio::ThreeG:
        break;
    }
    return agent.Set3GStatus(status);
}
