// modules/kernel32/EventsAndSemaphores.cpp
//
// Events, and semaphores: a count that waits take from and releases add to. The lowest bit of an event's word
// is its state, the other bits count how often it was set: a wait on an event that is reset by hand is
// satisfied by any setting since its begin, also when the event was reset at once.
//
// Known difference from Windows: an event that resets itself keeps nothing for the present waiters, so a
// reset right after the setting may take it back from all of them.

#include "modules/kernel32/KernelState.h"
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
        : Waitable(ObjectKind::Event, GrantedAccess(access, EVENT_ALL_ACCESS), WakeWord::Current()),
          m_state(std::move(state))
    {
    }

    DWORD Set() noexcept
    {
        std::uint32_t word = m_state->Word().load();
        while (!m_state->Word().compare_exchange_weak(word, (word | kSignalled) + kOneSetting))
        {
        }
        Wake().Announce();
        return ERROR_SUCCESS;
    }

    DWORD Reset() noexcept
    {
        m_state->Word().fetch_and(~kSignalled);
        return ERROR_SUCCESS;
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

class Semaphore final : public Waitable
{
public:
    Semaphore(std::shared_ptr<KernelState> state, DWORD access)
        : Waitable(ObjectKind::Semaphore, GrantedAccess(access, SEMAPHORE_ALL_ACCESS), WakeWord::Current()),
          m_state(std::move(state))
    {
    }

    // ERROR_TOO_MANY_POSTS, with the count left alone, when that is more than it holds.
    DWORD Release(LONG count, LONG* previous) noexcept
    {
        if (count <= 0)
        {
            return ERROR_INVALID_PARAMETER;
        }
        const auto added = static_cast<std::uint32_t>(count);
        std::uint32_t present = m_state->Word().load();
        do
        {
            if (added > m_state->Constant() - present)
            {
                return ERROR_TOO_MANY_POSTS;
            }
        } while (!m_state->Word().compare_exchange_weak(present, present + added));
        Wake().Announce();
        if (previous != nullptr)
        {
            *previous = static_cast<LONG>(present);
        }
        return ERROR_SUCCESS;
    }

    bool TryTake(std::uint32_t) noexcept override
    {
        std::uint32_t present = m_state->Word().load();
        while (present > 0)
        {
            if (m_state->Word().compare_exchange_weak(present, present - 1))
            {
                return true;
            }
        }
        return false;
    }

private:
    std::shared_ptr<KernelState> m_state;
};

// Lets `change` change the object of class `Kind` behind a handle that has the right to it.
template <class Kind, class Change>
DWORD ChangeState(HANDLE handle, DWORD right, Change change)
{
    const auto object = HandleTable::Find<Kind>(handle);
    if (object == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    return object->Grants(right) ? change(*object) : static_cast<DWORD>(ERROR_ACCESS_DENIED);
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
    SetLastError(ERROR_SUCCESS); // distinguishes a new object from an existing one
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
    return call.Boolean(
        [&] { return ChangeState<Event>(event, EVENT_MODIFY_STATE, [](Event& one) { return one.Set(); }); });
}

SIM_API BOOL WINAPI ResetEvent(HANDLE event)
{
    PlatformCall call(CallClass::Object, "ResetEvent", SIM_CALLER);
    call.Arguments(event);
    return call.Boolean(
        [&]
        { return ChangeState<Event>(event, EVENT_MODIFY_STATE, [](Event& one) { return one.Reset(); }); });
}

SIM_API HANDLE WINAPI CreateSemaphoreW(LPSECURITY_ATTRIBUTES attributes, LONG initialCount, LONG maximumCount,
                                       LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "CreateSemaphoreW", SIM_CALLER);
    call.Arguments(initialCount, maximumCount, name);
    NoteSecurity(call, attributes);
    SetLastError(ERROR_SUCCESS); // distinguishes a new object from an existing one
    return call.Result<HANDLE>(
        nullptr,
        [&]() -> Outcome<HANDLE>
        {
            if (initialCount < 0 || maximumCount <= 0 || initialCount > maximumCount)
            {
                return {nullptr, ERROR_INVALID_PARAMETER};
            }
            const NewState wanted{ObjectKind::Semaphore, static_cast<std::uint32_t>(maximumCount),
                                  static_cast<std::uint32_t>(initialCount)};
            return HandOut<Semaphore>(KernelState::Create(name, wanted), SEMAPHORE_ALL_ACCESS, call);
        });
}

SIM_API HANDLE WINAPI OpenSemaphoreW(DWORD access, BOOL inherit, LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "OpenSemaphoreW", SIM_CALLER);
    call.Arguments(access, inherit, name);
    return call.Result<HANDLE>(
        nullptr,
        [&] { return HandOut<Semaphore>(KernelState::Open(name, ObjectKind::Semaphore), access, call); });
}

SIM_API BOOL WINAPI ReleaseSemaphore(HANDLE semaphore, LONG releaseCount, LPLONG previousCount)
{
    PlatformCall call(CallClass::Object, "ReleaseSemaphore", SIM_CALLER);
    call.Arguments(semaphore, releaseCount);
    return call.Boolean(
        [&]
        {
            return ChangeState<Semaphore>(semaphore, SEMAPHORE_MODIFY_STATE,
                                          [&](Semaphore& one)
                                          { return one.Release(releaseCount, previousCount); });
        });
}
