// base/Trace.cpp
//
// The list of calls, the injected faults and the count of what is held.

#include "base/Trace.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

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

// Never destroyed: a thread of the simulated platform may still call while the process ends.
struct TraceState
{
    std::mutex mutex;
    std::vector<TracedCall> calls;
    std::vector<Fault> faults;
    std::map<std::pair<std::string, const void*>, std::string>
        held; ///< by kind and address: the function that opened it
    std::array<unsigned, static_cast<std::size_t>(CallClass::kCount)> counts{};
    std::atomic<bool> recording{false};
    std::atomic<bool> printing{false};

    TraceState()
    {
        const char* const trace = std::getenv("SIM_TRACE");
        printing = trace != nullptr && std::strcmp(trace, "0") != 0;
    }
};

TraceState& TheTraceState()
{
    static TraceState& state = *new TraceState;
    return state;
}

std::atomic<std::uintptr_t> rangeBegin{0};
std::atomic<std::uintptr_t> rangeEnd{0};

} // namespace

bool IsInPlugIn(const void* address) noexcept
{
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    return place >= rangeBegin && place < rangeEnd;
}

void SetPlugInRange(const void* begin, const void* end) noexcept
{
    rangeBegin = reinterpret_cast<std::uintptr_t>(begin);
    rangeEnd = reinterpret_cast<std::uintptr_t>(end);
}

bool Trace::IsListening() noexcept
{
    const TraceState& state = TheTraceState();
    return state.recording || state.printing;
}

DWORD Trace::Enter(CallClass callClass, const char* function) noexcept
{
    TraceState& state = TheTraceState();
    const std::lock_guard lock(state.mutex);
    ++state.counts[static_cast<std::size_t>(callClass)];
    DWORD refusal = ERROR_SUCCESS;
    for (Fault& fault : state.faults)
    {
        const bool isMeant = fault.function == "*" || fault.function == function;
        const bool isDue = isMeant && (fault.callsToGo == 0 ? fault.repeat : --fault.callsToGo == 0);
        fault.hit = fault.hit || isDue;
        refusal = isDue ? fault.error : refusal;
    }
    return refusal;
}

void Trace::Add(TracedCall call)
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
    state.held[{kind, thing}] = function;
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
    for (const auto& [thing, function] : state.held)
    {
        lines += thing.first + " from " + function + '\n';
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
