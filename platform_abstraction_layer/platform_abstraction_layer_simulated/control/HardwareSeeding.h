// control/HardwareSeeding.h
//
// What a fresh notebook is fitted with: embedded controller, processor, chipset, two network adapters, one
// battery, a graphics driver.
#pragma once

#include "modules/advapi32/Hive.h"

#include <string_view>

namespace simulated
{

/// The hardware's sections of machine.ini.
std::string_view DefaultHardware();

/// The class keys of its devices, below HKEY_LOCAL_MACHINE.
void SeedMachineDevices(registry::Hive& hive);

} // namespace simulated
