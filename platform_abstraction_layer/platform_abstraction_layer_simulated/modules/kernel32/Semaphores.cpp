// modules/kernel32/Semaphores.cpp
//
// Semaphores: a count that waits take from and releases add to.

#include "modules/kernel32/KernelState.h"
#include "modules/kernel32/ObjectNames.h"
#include "modules/kernel32/Waits.h"

#include <windows.h>

namespace simulated
{

namespace
{

class Semaphore final : public Waitable
{
public:
    Semaphore(std::shared_ptr<KernelState> state, DWORD access)
        : Waitable(ObjectKind::Semaphore, GrantedAccess(access, SEMAPHORE_ALL_ACCESS)),
          m_state(std::move(state))
    {
    }

    // Adds `count`, above 0. ERROR_TOO_MANY_POSTS, with the count left alone, when that is more than it
    // holds.
    DWORD Release(std::uint32_t count, LONG* previous) noexcept
    {
        std::uint32_t present = m_state->Word().load();
        do
        {
            if (count > m_state->Constant() - present)
            {
                return ERROR_TOO_MANY_POSTS;
            }
        } while (!m_state->Word().compare_exchange_weak(present, present + count));
        Wake().Announce();
        if (previous != nullptr)
        {
            *previous = static_cast<LONG>(present);
        }
        return ERROR_SUCCESS;
    }

    WakeWord& Wake() const noexcept override
    {
        return m_state->Wake();
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

Outcome<HANDLE> Create(LONG initial, LONG maximum, const wchar_t* name, const PlatformCall& call)
{
    if (initial < 0 || maximum <= 0 || initial > maximum)
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    const NewState wanted{ObjectKind::Semaphore, static_cast<std::uint32_t>(maximum),
                          static_cast<std::uint32_t>(initial)};
    return HandOut<Semaphore>(KernelState::Create(name, wanted), SEMAPHORE_ALL_ACCESS, call);
}

DWORD Release(HANDLE handle, LONG count, LONG* previous)
{
    const auto semaphore = HandleTable::Find<Semaphore>(handle);
    if (semaphore == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    if (!semaphore->Grants(SEMAPHORE_MODIFY_STATE))
    {
        return ERROR_ACCESS_DENIED;
    }
    if (count <= 0)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return semaphore->Release(static_cast<std::uint32_t>(count), previous);
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HANDLE WINAPI CreateSemaphoreW(LPSECURITY_ATTRIBUTES attributes, LONG initialCount, LONG maximumCount,
                                       LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "CreateSemaphoreW", SIM_CALLER);
    call.Arguments(initialCount, maximumCount, name);
    NoteSecurity(call, attributes);
    SetLastError(ERROR_SUCCESS); // what tells a new object from one that was there
    return call.Result<HANDLE>(nullptr, [&] { return Create(initialCount, maximumCount, name, call); });
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
    return call.Boolean([&] { return Release(semaphore, releaseCount, previousCount); });
}
