// modules/kernel32/Events.cpp
//
// Events. The lowest bit of an event's word is its state, the other bits count how often it was set: a wait
// on an event that is reset by hand is satisfied by any setting since its begin, also when the event was
// reset at once.
//
// Known difference from Windows: an event that resets itself keeps nothing for the present waiters, so a
// reset right after the setting may take it back from all of them.

#include "modules/kernel32/KernelState.h"
#include "modules/kernel32/ObjectNames.h"
#include "modules/kernel32/Waits.h"

#include <windows.h>

namespace simulated
{

namespace
{

constexpr std::uint32_t kSignalled = 1;
constexpr std::uint32_t kOneSetting = 2;

class Event final : public Waitable
{
public:
    Event(std::shared_ptr<KernelState> state, DWORD access)
        : Waitable(ObjectKind::Event, GrantedAccess(access, EVENT_ALL_ACCESS)), m_state(std::move(state))
    {
    }

    void Set() noexcept
    {
        std::uint32_t word = m_state->Word().load();
        while (!m_state->Word().compare_exchange_weak(word, (word | kSignalled) + kOneSetting))
        {
        }
        Wake().Announce();
    }

    void Reset() noexcept
    {
        m_state->Word().fetch_and(~kSignalled);
    }

    WakeWord& Wake() const noexcept override
    {
        return m_state->Wake();
    }

    std::uint32_t Begin() const noexcept override
    {
        return m_state->Word().load();
    }

    bool TryTake(std::uint32_t begun) noexcept override
    {
        std::uint32_t word = m_state->Word().load();
        const bool resetByHand = m_state->Constant() != 0;
        if (resetByHand)
        {
            return (word & kSignalled) != 0 || (word ^ begun) >= kOneSetting;
        }
        while ((word & kSignalled) != 0)
        {
            if (m_state->Word().compare_exchange_weak(word, word & ~kSignalled))
            {
                return true;
            }
        }
        return false;
    }

private:
    std::shared_ptr<KernelState> m_state;
};

template <class Change>
DWORD ChangeState(HANDLE handle, Change change)
{
    const auto event = HandleTable::Find<Event>(handle);
    if (event == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    if (!event->Grants(EVENT_MODIFY_STATE))
    {
        return ERROR_ACCESS_DENIED;
    }
    change(*event);
    return ERROR_SUCCESS;
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL manualReset, BOOL initialState,
                                   LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "CreateEventW", SIM_CALLER);
    call.Arguments(manualReset, initialState, name);
    NoteSecurity(call, attributes);
    const NewState wanted{ObjectKind::Event, manualReset != FALSE, initialState != FALSE ? kSignalled : 0};
    SetLastError(ERROR_SUCCESS); // what tells a new object from one that was there
    return call.Result<HANDLE>(
        nullptr, [&] { return HandOut<Event>(KernelState::Create(name, wanted), EVENT_ALL_ACCESS, call); });
}

SIM_API HANDLE WINAPI OpenEventW(DWORD access, BOOL inherit, LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "OpenEventW", SIM_CALLER);
    call.Arguments(access, inherit, name);
    return call.Result<HANDLE>(
        nullptr, [&] { return HandOut<Event>(KernelState::Open(name, ObjectKind::Event), access, call); });
}

SIM_API BOOL WINAPI SetEvent(HANDLE event)
{
    PlatformCall call(CallClass::Object, "SetEvent", SIM_CALLER);
    call.Arguments(event);
    return call.Boolean([&] { return ChangeState(event, [](Event& one) { one.Set(); }); });
}

SIM_API BOOL WINAPI ResetEvent(HANDLE event)
{
    PlatformCall call(CallClass::Object, "ResetEvent", SIM_CALLER);
    call.Arguments(event);
    return call.Boolean([&] { return ChangeState(event, [](Event& one) { one.Reset(); }); });
}
