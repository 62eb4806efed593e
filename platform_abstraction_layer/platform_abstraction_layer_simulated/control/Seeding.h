// control/Seeding.h
//
// What a fresh notebook is fitted with, and what it and a fresh account hold of the power manager.
#pragma once

#include "modules/advapi32/Hive.h"

#include <string>

namespace simulated
{

/// The sections of machine.ini for the hardware: embedded controller, processor, chipset, two network
/// adapters, one battery, a graphics driver.
std::string DefaultHardware();

/// The class keys of its devices, below HKEY_LOCAL_MACHINE.
void SeedMachineDevices(registry::Hive& hive);

/// The machine's part of the power manager: power source, the six standard index-based schemes and, from
/// major version 6 on, the three standard GUID-based ones.
void SeedMachinePower(DWORD majorVersion, registry::Hive& hive);

/// An account's part: the six standard schemes, of which the one for notebooks is active, and the global
/// policy.
void SeedUserPower(registry::Hive& hive);

} // namespace simulated
