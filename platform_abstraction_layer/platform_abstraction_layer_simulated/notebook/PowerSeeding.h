// notebook/PowerSeeding.h
//
// What a fresh notebook and a fresh account hold of the power manager. The caller puts the values into the
// registry in whatever way is quick for it.
#pragma once

#include <windef.h>

#include <functional>
#include <string>

namespace simulated
{

/// Puts one value into a key, which comes into being: the key's path below the hive's root, the value's name,
/// its type (REG_...), its bytes as the registry keeps them. False stops the seeding.
using RegistryPut = std::function<bool(const std::string& path, const std::string& name, DWORD type,
                                       const void* data, DWORD size)>;

/// The machine's part, below HKEY_LOCAL_MACHINE: power source, the six standard index-based schemes and,
/// from major version 6 on, the three standard GUID-based ones.
bool SeedMachinePower(DWORD majorVersion, const RegistryPut& put);

/// An account's part, below the root of its hive: the six standard schemes, of which the one for notebooks
/// is active, and the global policy.
bool SeedUserPower(const RegistryPut& put);

} // namespace simulated
