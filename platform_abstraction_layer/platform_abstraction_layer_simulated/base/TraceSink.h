// base/TraceSink.h
//
// The side of the trace that the entrance of the platform functions talks to.
#pragma once

#include "base/Trace.h"

namespace simulated
{

class TraceSink
{
public:
    /// True when calls are recorded or printed, so that their arguments are worth describing.
    static bool IsListening() noexcept;

    /// Counts a call; the error of the injected fault that refuses it, or 0.
    static DWORD Enter(CallClass callClass, const char* function) noexcept;

    static void Add(TracedCall call);
};

} // namespace simulated
