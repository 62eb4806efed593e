// base/Trace.h
//
// What the plug-in asked of the platform, in order, and the faults that a test or a tool injects there.
// Both see only calls that the plug-in itself makes: those that return to an address inside of it.
#pragma once

#include "base/PlatformCall.h"

#include <array>
#include <string>
#include <vector>

namespace simulated
{

/// True when `address` lies in the loaded plug-in.
bool IsInPlugIn(const void* address) noexcept;

/// Notes that the plug-in occupies the addresses from `begin` up to `end`; null and null when it is unloaded.
void SetPlugInRange(const void* begin, const void* end) noexcept;

/// One call and its result.
struct TracedCall
{
    CallClass callClass;
    std::string function;
    std::string arguments;
    std::string answer;
    bool succeeded;
    DWORD error;
    const void* site; ///< where the call returned to
};

/// The calls of this process since the last `Clear`. Threads may call at once.
class Trace
{
public:
    /// Keeps calls in a list from now on, or stops doing so.
    static void Record(bool on);

    /// Writes each call to standard error as it returns; `SIM_TRACE=1` in the environment does the same.
    static void Print(bool on);

    static void Clear();
    static std::vector<TracedCall> Calls();
    static std::vector<TracedCall> CallsOf(const std::string& function);

    /// How many calls each class has made since the last `Clear`; counted also when nothing is recorded.
    static std::array<unsigned, static_cast<std::size_t>(CallClass::kCount)> Counts();
    static unsigned Count(CallClass callClass);

    /// For `PlatformCall`: whether calls need describing; counts a call and returns
    /// the error of the injected fault that refuses it, or 0; records a finished call.
    static bool IsListening() noexcept;
    static DWORD Enter(CallClass callClass, const char* function) noexcept;
    static void Add(TracedCall call);
};

/// Failures injected into platform calls.
class Faults
{
public:
    /// Lets the `nth` call (from 1) of `function` from now on fail with `error`; with `repeat` every later
    /// one too. `function` "*" means any.
    static void Inject(const std::string& function, unsigned nth, DWORD error, bool repeat = false);
    static void Clear();

    /// True when every injected fault has refused a call, so that a test can step `nth` until none is hit.
    [[nodiscard]] static bool AllHit();
};

/// The platform's objects that the plug-in holds, by kind ("handle", "key", "block", ...).
class Leaks
{
public:
    static void Opened(const char* kind, const void* thing, const char* function);
    static void Closed(const char* kind, const void* thing);

    /// What the plug-in opened and hasn't released. What by design lives as long as the process
    /// is not counted: loaded modules, and the driver's handle from major version 6 on.
    static unsigned Count();

    /// One line for each of them.
    static std::string Describe();
    static void Forget();
};

} // namespace simulated
