// modules/powrprof/windows/modules/kernel32/LocalMemory.h
//
// Memory that the caller gives back with LocalFree, where the power manager is built for Windows.
#pragma once

#include "base/PlatformCall.h"

namespace simulated
{

inline void* AllocateLocal(SIZE_T size, const PlatformCall&) noexcept
{
    return LocalAlloc(LPTR, size);
}

} // namespace simulated
