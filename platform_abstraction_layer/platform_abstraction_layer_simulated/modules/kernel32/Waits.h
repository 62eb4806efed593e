// modules/kernel32/Waits.h
//
// What a thread can wait for.
#pragma once

#include "base/HandleTable.h"
#include "modules/kernel32/WakeWord.h"

#include <winbase.h>

namespace simulated
{

class Waitable : public Object
{
public:
    Waitable(ObjectKind kind, DWORD access, std::shared_ptr<WakeWord> wake)
        : Object(kind), m_access(access), m_wake(std::move(wake))
    {
    }

    /// The rights of the handle.
    bool Grants(DWORD access) const noexcept
    {
        return (m_access & access) == access;
    }

    /// What moves when the object changes.
    WakeWord& Wake() const noexcept
    {
        return *m_wake;
    }

    /// What a wait remembers of the object from its start, for `TryTake`.
    virtual std::uint32_t Begin() const noexcept
    {
        return 0;
    }

    /// True when the wait that started at `begun` is satisfied, and then consumes what it uses up.
    virtual bool TryTake(std::uint32_t begun) noexcept = 0;

private:
    DWORD m_access;
    std::shared_ptr<WakeWord> m_wake;
};

/// Waits until one of the objects is signalled, the first of them counting: its place, WAIT_TIMEOUT, or
/// WAIT_FAILED with ERROR_INVALID_HANDLE, ERROR_ACCESS_DENIED or ERROR_INVALID_PARAMETER.
Outcome<DWORD> WaitForAny(const HANDLE* handles, DWORD count, DWORD milliseconds);

} // namespace simulated
