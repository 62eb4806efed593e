// service/StopSignal.h
//
// How the service learns that it must end: a named event that another process signals, Ctrl-C, or the end of
// the pipe that feeds standard input, so that a service started by a test or a script ends with it.
#pragma once

#include "foundation/Owners.h"

namespace service
{

class StopSignal
{
public:
    /// Creates the named event and listens to the other two from now on. False when a service is running
    /// already, or when the event can't be created.
    bool Listen();

    /// What to wait for together with the doorbell.
    HANDLE Event() const noexcept
    {
        return m_event.Get();
    }

    /// True once the service must end. Only the named event ends a wait for `Event`; the other two are
    /// noticed within `kPollMilliseconds`.
    bool IsDue() const;

    static constexpr DWORD kPollMilliseconds = 100;

    /// Asks the running service to end; false when there is none.
    static bool Send();

private:
    owners::Handle m_event;
};

} // namespace service
