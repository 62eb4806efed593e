// modules/kernel32/LocalMemory.h
//
// Memory that a platform function returns and its caller frees with LocalFree: SID strings, GUIDs,
// security descriptors.
#pragma once

#include "base/PlatformCall.h"

#include <cstddef>

namespace simulated
{

/// `size` bytes of zeros, or null. When the call is the plug-in's, the leak count knows the block.
void* AllocateLocal(std::size_t size, const PlatformCall& call);

/// Frees a block; null is fine. For platform functions that fail after they have allocated.
void FreeLocal(void* block);

} // namespace simulated
