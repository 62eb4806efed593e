// base/Trace.cpp
//
// The list of calls, the injected faults and the count of what is held.

#include "base/Trace.h"

#include "base/TraceSink.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <sstream>

namespace simulated
{

namespace
{

struct Fault
{
    std::string function;
    unsigned callsToGo; ///< the call that brings it to 0 is refused
    DWORD error;
    bool repeat;
    bool hit;
};

struct HeldThing
{
    std::string kind;
    std::string function;
};

// Never destroyed: a thread of the simulated platform may still call while the process ends.
struct TraceState
{
    std::mutex mutex;
    std::vector<TracedCall> calls;
    std::vector<Fault> faults;
    std::map<std::pair<std::string, const void*>, HeldThing> held;
    std::array<unsigned, static_cast<std::size_t>(CallClass::kCount)> counts{};
    std::atomic<bool> recording{false};
    std::atomic<bool> printing{false};

    TraceState()
    {
        const char* trace = std::getenv("SIM_TRACE");
        printing = trace != nullptr && std::strcmp(trace, "0") != 0;
        const char* list = std::getenv("SIM_FAULTS");
        if (list != nullptr)
        {
            ReadFaults(list);
        }
    }

    void ReadFaults(const std::string& list)
    {
        std::istringstream entries(list);
        std::string entry;
        while (std::getline(entries, entry, ';'))
        {
            const auto first = entry.find(':');
            const auto second = entry.find(':', first + 1);
            if (first == std::string::npos || second == std::string::npos)
            {
                std::fprintf(stderr, "SIM_FAULTS: '%s' isn't FUNCTION:NTH:ERROR\n", entry.c_str());
                continue;
            }
            const unsigned long nth = std::strtoul(entry.c_str() + first + 1, nullptr, 10);
            const unsigned long error = std::strtoul(entry.c_str() + second + 1, nullptr, 10);
            faults.push_back({entry.substr(0, first), static_cast<unsigned>(nth), static_cast<DWORD>(error),
                              false, false});
        }
    }
};

TraceState& TheTraceState()
{
    static TraceState& state = *new TraceState;
    return state;
}

} // namespace

bool TraceSink::IsListening() noexcept
{
    const TraceState& state = TheTraceState();
    return state.recording || state.printing;
}

DWORD TraceSink::Enter(CallClass callClass, const char* function) noexcept
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    ++state.counts[static_cast<std::size_t>(callClass)];
    DWORD refusal = ERROR_SUCCESS;
    for (Fault& fault : state.faults)
    {
        if (fault.function != "*" && fault.function != function)
        {
            continue;
        }
        if (fault.callsToGo > 0)
        {
            --fault.callsToGo;
        }
        else if (!fault.repeat)
        {
            continue;
        }
        if (fault.callsToGo == 0)
        {
            fault.hit = true;
            refusal = fault.error;
        }
    }
    return refusal;
}

void TraceSink::Add(TracedCall call)
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    if (state.printing)
    {
        std::fprintf(stderr, "  [%s] %s(%s) = %s", Name(call.callClass), call.function.c_str(),
                     call.arguments.c_str(), call.answer.c_str());
        std::fprintf(stderr, call.error == ERROR_SUCCESS ? "\n" : ", error %u\n", call.error);
    }
    if (state.recording)
    {
        state.calls.push_back(std::move(call));
    }
}

void Trace::Record(bool on)
{
    TheTraceState().recording = on;
}

void Trace::Print(bool on)
{
    TheTraceState().printing = on;
}

void Trace::Clear()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    state.calls.clear();
    state.counts.fill(0);
}

std::vector<TracedCall> Trace::Calls()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    return state.calls;
}

std::vector<TracedCall> Trace::CallsOf(const std::string& function)
{
    std::vector<TracedCall> calls = Calls();
    std::erase_if(calls, [&](const TracedCall& call) { return call.function != function; });
    return calls;
}

std::array<unsigned, static_cast<std::size_t>(CallClass::kCount)> Trace::Counts()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    return state.counts;
}

unsigned Trace::Count(CallClass callClass)
{
    return Counts()[static_cast<std::size_t>(callClass)];
}

void Faults::Inject(const std::string& function, unsigned nth, DWORD error, bool repeat)
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    state.faults.push_back({function, nth, error, repeat, false});
}

void Faults::Clear()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    state.faults.clear();
}

bool Faults::AllHit()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    return std::all_of(state.faults.begin(), state.faults.end(),
                       [](const Fault& fault) { return fault.hit; });
}

void Leaks::Opened(const char* kind, const void* thing, const char* function)
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    state.held[{kind, thing}] = {kind, function};
}

void Leaks::Closed(const char* kind, const void* thing)
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    state.held.erase({kind, thing});
}

unsigned Leaks::Count()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    return static_cast<unsigned>(state.held.size());
}

std::string Leaks::Describe()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    std::string lines;
    for (const auto& [key, thing] : state.held)
    {
        lines += thing.kind + " from " + thing.function + '\n';
    }
    return lines;
}

void Leaks::Forget()
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    state.held.clear();
}

} // namespace simulated
