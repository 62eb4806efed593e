// machine/KernelDriver.cpp
//
// The driver's switches in machine.ini, and the record of its requests.

#include "machine/KernelDriver.h"

#include "machine/Machine.h"

#include <winerror.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace simulated
{

namespace
{

constexpr const char* kDriverSection = "Driver";
constexpr std::size_t kMostRequests = 1000;

struct DriverState
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<KernelDriver::Request> requests;
    bool holdNext = false;
    bool held = false;
};

// Never destroyed: a thread may be held while the process ends.
DriverState& TheDriverState()
{
    static DriverState& state = *new DriverState;
    return state;
}

} // namespace

bool KernelDriver::IsPresent()
{
    return Machine::ReadNumber(kDriverSection, "Present", 0) != 0;
}

bool KernelDriver::SetPresent(bool present)
{
    return Machine::WriteNumber(kDriverSection, "Present", present);
}

bool KernelDriver::IsBusy()
{
    return Machine::ReadNumber(kDriverSection, "Busy", 0) != 0;
}

bool KernelDriver::SetBusy(bool busy)
{
    return Machine::WriteNumber(kDriverSection, "Busy", busy);
}

void KernelDriver::RefuseRequests(DWORD error)
{
    Machine::WriteNumber(kDriverSection, "RequestError", error);
}

std::vector<KernelDriver::Request> KernelDriver::Requests()
{
    DriverState& state = TheDriverState();
    const std::lock_guard lock(state.mutex);
    return {state.requests.begin(), state.requests.end()};
}

void KernelDriver::ForgetRequests()
{
    DriverState& state = TheDriverState();
    const std::lock_guard lock(state.mutex);
    state.requests.clear();
}

void KernelDriver::Hold()
{
    DriverState& state = TheDriverState();
    const std::lock_guard lock(state.mutex);
    state.holdNext = true;
}

bool KernelDriver::WaitUntilHeld(unsigned milliseconds)
{
    DriverState& state = TheDriverState();
    std::unique_lock lock(state.mutex);
    return state.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return state.held; });
}

void KernelDriver::LetGo()
{
    DriverState& state = TheDriverState();
    {
        const std::lock_guard lock(state.mutex);
        state.holdNext = false;
        state.held = false;
    }
    state.changed.notify_all();
}

DWORD DriverGate::ErrorOfRequest()
{
    return KernelDriver::IsBusy()
               ? ERROR_BUSY
               : static_cast<DWORD>(Machine::ReadNumber(kDriverSection, "RequestError", ERROR_SUCCESS));
}

void DriverGate::PassHold()
{
    DriverState& state = TheDriverState();
    std::unique_lock lock(state.mutex);
    if (!state.holdNext)
    {
        return;
    }
    state.holdNext = false;
    state.held = true;
    state.changed.notify_all();
    state.changed.wait(lock, [&] { return !state.held; });
}

void DriverGate::Note(KernelDriver::Request request)
{
    DriverState& state = TheDriverState();
    const std::lock_guard lock(state.mutex);
    state.requests.push_back(std::move(request));
    if (state.requests.size() > kMostRequests)
    {
        state.requests.pop_front();
    }
}

} // namespace simulated
