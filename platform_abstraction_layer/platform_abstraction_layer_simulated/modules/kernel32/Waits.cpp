// modules/kernel32/Waits.cpp
//
// Waits on one or several objects, sleeping, and the tick count. A time-out runs on the notebook's clock:
// when that is instant, a wait keeps a short real grace and the clock moves on by the whole time-out.
//
// Known differences from Windows: waiters are not served in the order in which they came; a wait for all of
// several objects is refused; only events, semaphores and threads can be waited for.

#include "modules/kernel32/Waits.h"

#include "base/Clock.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace simulated
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A setter that is killed between its change and its announcement wakes nobody, so no sleep is longer.
constexpr std::uint64_t kLongestSleep = 1000;

struct Awaited
{
    std::shared_ptr<Waitable> object;
    std::uint32_t begun;
};

DWORD Collect(const HANDLE* handles, DWORD count, std::vector<Awaited>& awaited)
{
    for (DWORD index = 0; index < count; ++index)
    {
        const auto found = HandleTable::Find(handles[index]);
        if (found == nullptr)
        {
            return ERROR_INVALID_HANDLE;
        }
        // No right on a mapping or a key includes waiting for it.
        auto object = std::dynamic_pointer_cast<Waitable>(found);
        if (object == nullptr || !object->Grants(SYNCHRONIZE))
        {
            return ERROR_ACCESS_DENIED;
        }
        const std::uint32_t begun = object->Begin();
        awaited.push_back({std::move(object), begun});
    }
    return ERROR_SUCCESS;
}

std::uint64_t Since(steady_clock::time_point start)
{
    const auto passed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start).count();
    return static_cast<std::uint64_t>(passed);
}

} // namespace

Outcome<DWORD> WaitForAny(const HANDLE* handles, DWORD count, DWORD timeout)
{
    const steady_clock::time_point start = steady_clock::now();
    std::vector<Awaited> awaited;
    if (const DWORD error = Collect(handles, count, awaited); error != ERROR_SUCCESS)
    {
        return {WAIT_FAILED, error};
    }
    const std::uint64_t grace = timeout == INFINITE ? UINT64_MAX : Clock::Grace(timeout);
    WakeWord& wake = awaited.front().object->Wake();
    while (true)
    {
        const std::uint32_t seen = wake.Value();
        const auto taken = std::find_if(awaited.begin(), awaited.end(),
                                        [](Awaited& one) { return one.object->TryTake(one.begun); });
        if (taken != awaited.end())
        {
            return {WAIT_OBJECT_0 + static_cast<DWORD>(taken - awaited.begin()), ERROR_SUCCESS};
        }
        const std::uint64_t passed = Since(start);
        if (passed >= grace)
        {
            Clock::Advance(timeout > passed && Clock::IsInstant() ? timeout - passed : 0);
            return {WAIT_TIMEOUT, ERROR_SUCCESS};
        }
        wake.Sleep(seen, std::min(grace - passed, kLongestSleep));
    }
}

} // namespace simulated

using namespace simulated;

SIM_API DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD timeout)
{
    PlatformCall call(CallClass::Object, "WaitForSingleObject", SIM_CALLER);
    call.Arguments(handle, timeout);
    return call.Result<DWORD>(WAIT_FAILED, [&] { return WaitForAny(&handle, 1, timeout); });
}

SIM_API DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll, DWORD timeout)
{
    PlatformCall call(CallClass::Object, "WaitForMultipleObjects", SIM_CALLER);
    call.Arguments(count, waitAll, timeout);
    return call.Result<DWORD>(WAIT_FAILED,
                              [&]() -> Outcome<DWORD>
                              {
                                  if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || handles == nullptr)
                                  {
                                      return {WAIT_FAILED, ERROR_INVALID_PARAMETER};
                                  }
                                  if (waitAll && count > 1)
                                  {
                                      return {WAIT_FAILED, ERROR_NOT_SUPPORTED};
                                  }
                                  return WaitForAny(handles, count, timeout);
                              });
}

// INFINITE is for ever also when the clock is instant.
SIM_API void WINAPI Sleep(DWORD milliseconds)
{
    PlatformCall call(CallClass::Thread, "Sleep", SIM_CALLER);
    call.Arguments(milliseconds);
    do
    {
        Clock::Sleep(milliseconds);
    } while (milliseconds == INFINITE && !Clock::IsInstant());
    call.AnswerNothing();
}

SIM_API DWORD WINAPI GetTickCount()
{
    PlatformCall call(CallClass::System, "GetTickCount", SIM_CALLER);
    return call.Answer(static_cast<DWORD>(Clock::Now()));
}
