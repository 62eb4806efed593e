// modules/kernel32/Threads.h
//
// The core that the calling thread runs on. machine.ini, section "Processor": "Cores" (4 when absent, 32 at
// most) and "ProcessMask" (all cores when absent).
#pragma once

namespace simulated
{

/// The core on which the calling thread runs, from 0: the lowest one of its mask.
unsigned CurrentCore();

} // namespace simulated
