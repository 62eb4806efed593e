// modules/kernel32/Affinity.h
//
// The cores of the machine and the one that the calling thread runs on. machine.ini, section "Processor":
// "Cores" (4 when absent) and "ProcessMask" (all cores when absent).
#pragma once

#include <windef.h>

namespace simulated
{

/// How many cores the machine has, 1 to 32.
unsigned CoreCount();

/// One bit for each core of the machine.
DWORD_PTR SystemMask();

/// The cores that this process may use; never 0.
DWORD_PTR ProcessMask();

/// The core on which the calling thread runs, from 0: the lowest one of its mask.
unsigned CurrentCore();

} // namespace simulated
