// control/PowerSeeding.h
//
// What a fresh notebook and a fresh account hold of the power manager.
#pragma once

#include "modules/advapi32/Hive.h"

namespace simulated
{

/// The machine's part: power source, the six standard index-based schemes and, from major version 6 on, the
/// three standard GUID-based ones.
void SeedMachinePower(DWORD majorVersion, registry::Hive& hive);

/// An account's part: the six standard schemes, of which the one for notebooks is active, and the global
/// policy.
void SeedUserPower(registry::Hive& hive);

} // namespace simulated
